// Where the calendars lie bars no edit that is possible, and says nothing that is untrue.

#include "MoodyCalendarTest.h"

#include "records/RepeatBan.h"

namespace {

class CalendarPlace : public MoodyCalendarTest
{
protected:
    ~CalendarPlace() override { setCloudFolder({}); }

    /// The folder that devices share; empty for none.
    static void setCloudFolder(const QString &path)
    {
        PlatformConfiguration::setText(u"cloudFolder"_qs, path);
    }
    /// An account with one calendar.
    void makeAccount(const QString &title, const QString &type, const QString &calendar)
    {
        QDir().mkpath(root.filePath(title + u'/' + calendar));
        QFile file(root.filePath(title + u"/type"_qs));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(type.toUtf8());
    }
    /// Whether an activation in another situation than before asks nothing, and repetitions can be edited.
    bool isFree()
    {
        UserDefaults::standard().setObject(settings::sumStatuses, u"other"_qs);
        connectStore();
        ScriptedAlerts alerts({Alert::firstButton});
        delegate->applicationDidResignActive();
        delegate->applicationDidBecomeActive();
        MVTask series;
        series.repeat = u"FREQ=DAILY"_qs;
        return alerts.asked().empty() && !RepeatBan::concerns(series);
    }
    static QString isInCloud() { return UserDefaults::standard().string(settings::isiCloudCalendars); }
};

TEST_F(CalendarPlace, BarsNoEditThatIsPossible)
{
    const QTemporaryDir shared;
    EXPECT_TRUE(isFree());
    EXPECT_EQ(isInCloud(), u"NO"_qs);
    setCloudFolder(shared.path());
    EXPECT_TRUE(isFree()) << "a shared folder needs no calendars";

    makeAccount(u"Server"_qs, u"caldav"_qs, u"Team"_qs);
    EXPECT_TRUE(isFree());
    EXPECT_EQ(isInCloud(), u"NO"_qs) << "none of its calendars is chosen";
    choose({u"Work"_qs, u"Team"_qs});
    EXPECT_TRUE(isFree());
    EXPECT_EQ(isInCloud(), u"YES"_qs);
    setCloudFolder({});
    EXPECT_TRUE(isFree()) << "a calendar on a server needs no shared folder";
    EXPECT_EQ(isInCloud(), u"YES"_qs);
}

} // namespace

#include "CalendarTest.h"
#include "records/TaskFormState.h"
#include "store/queries/DBWorker.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class CalendarList : public CalendarTest
{
protected:
    static QStringList titlesOf(const std::vector<EKCalendar> &calendars)
    {
        QStringList titles;
        for (const EKCalendar &one : calendars)
            titles.append(one.title);
        titles.sort();
        return titles;
    }
};

TEST_F(CalendarList, NamesWritableOnesByTitleAndReadOnlyOnesByIdentifier)
{
    EKCalendar writable;
    writable.title = u"Home"_qs;
    EKCalendar readOnly;
    readOnly.title = u"Feast days"_qs;
    readOnly.calendarIdentifier = u"id 7"_qs;
    readOnly.allowsContentModifications = false;
    EXPECT_EQ(CalendarEvent::identifierOfCalendar(writable), u"Home"_qs);
    EXPECT_EQ(CalendarEvent::identifierOfCalendar(readOnly), u"Feast days[<±>]id 7"_qs);
    EXPECT_FALSE(CalendarEvent::calendarOfIdentifier(QString()));
    choose({u"Work"_qs});
    EXPECT_FALSE(CalendarEvent::calendarOfIdentifier(u"Home"_qs))
        << "only a chosen one is found by its title";
    const QString identifier = CalendarEvent::getAllCalendars().at(0).calendarIdentifier;
    EXPECT_FALSE(CalendarEvent::calendarOfIdentifier(u"any[<±>]"_qs + identifier)) << "and by its identifier";
    choose({u"Home"_qs});
    EXPECT_TRUE(CalendarEvent::calendarOfIdentifier(u"any[<±>]"_qs + identifier));
    EXPECT_EQ(CalendarEvent::localizedTitleCalendar(readOnly), u"Feast days"_qs);
    EXPECT_EQ(CalendarEvent::localizedTitleSource({u"other"_qs, EKSourceType::Local, {}}),
              u"Other calendar"_qs);
}

TEST_F(CalendarList, IsEmptyWithNothingChosenOrWithoutAccess)
{
    EXPECT_EQ(titlesOf(CalendarEvent::getAllAccessCalendars()), QStringList({u"Home"_qs, u"Work"_qs}));
    UserDefaults::standard().removeObject(settings::savedChooseCalendars);
    EXPECT_THAT(CalendarEvent::getAllAccessCalendars(), IsEmpty());
    // What is written down then is on its list, and not put where nobody looks.
    UserDefaults::standard().removeObject(settings::defaultCalendar);
    EXPECT_TRUE(CalendarEvent::getDefaultCalendar());
    EXPECT_FALSE(CalendarEvent::getDefaultAccessCalendar());
    TaskFormState form(NewTaskRequest{.typeTask = ListType::Someday});
    form.setTitle(u"Plan"_qs);
    EXPECT_TRUE(form.save());
    EXPECT_THAT(DBWorker::allSomedayTasks(), SizeIs(1));
    for (const int answer : {0, 2}) {
        PlatformConfiguration::setAuthorization(u"events"_qs, answer);
        EXPECT_FALSE(CalendarEvent::hasAccesToCalendar());
        EXPECT_FALSE(CalendarEvent::getCalendar());
        EXPECT_FALSE(CalendarEvent::isOurCalendar());
    }
}

TEST_F(CalendarList, MakesItsOwnCalendarOnceAndJoinsSeveral)
{
    EXPECT_FALSE(CalendarEvent::isOurCalendar());
    const auto own = CalendarEvent::getCalendar();
    ASSERT_TRUE(own);
    EXPECT_EQ(own->title, u"Morvane Pro"_qs);
    EXPECT_EQ(CalendarEvent::getCalendar()->calendarIdentifier, own->calendarIdentifier);
    EXPECT_EQ(UserDefaults::standard().string(settings::ownCalendarIdentifier), u"Morvane Pro"_qs);
    write(u"Work"_qs, u"one"_qs, u"SUMMARY:One\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs);
    rename(u"Work"_qs, u"Morvane Pro"_qs);
    connectStore();
    EXPECT_TRUE(CalendarEvent::isOurCalendar());
    connectStore();
    EXPECT_EQ(titlesOf(CalendarEvent::getAllCalendars()), QStringList({u"Home"_qs, u"Morvane Pro"_qs}));
    const auto moved = CalendarEvent::eventStore().calendarItemsWithExternalIdentifier(u"one"_qs);
    ASSERT_TRUE(moved);
    ASSERT_THAT(moved.value(), SizeIs(1));
    EXPECT_EQ(moved.value()[0].calendar->title, u"Morvane Pro"_qs);
}

TEST_F(CalendarList, NothingIsLostWhenSeveralAreJoined)
{
    const QString hour = u"SUMMARY:One\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs;
    makeCalendar(u"Third"_qs);
    write(u"Work"_qs, u"far"_qs, u"SUMMARY:Far\nDTSTART:20310101T080000Z\nRRULE:FREQ=DAILY\n"_qs);
    write(u"Third"_qs, u"broken"_qs, hour + u"BEGIN:VALARM\n"_qs);
    write(u"Third"_qs, u"whole"_qs, hour);
    for (const QString &folder : {u"Home"_qs, u"Work"_qs, u"Third"_qs})
        rename(folder, u"Morvane Pro"_qs);
    const auto third = files(u"Third"_qs);
    connectStore();
    EXPECT_TRUE(CalendarEvent::isOurCalendar());
    EXPECT_FALSE(QDir(folderOf(u"Work"_qs)).exists());
    EXPECT_EQ(files(u"Home"_qs).keys() + files(u"Third"_qs).keys(),
              QStringList({u"far.ics"_qs, u"broken.ics"_qs, u"whole.ics"_qs}))
        << "also what lies beyond the window, and what cannot be read";
    EXPECT_EQ(files(u"Third"_qs), third);
}

TEST_F(CalendarList, RenamedAndRemovedCalendarsAreFollowed)
{
    write(u"Home"_qs, u"one"_qs, u"SUMMARY:One\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\n"_qs);
    UserDefaults::standard().setObject(settings::defaultCalendar, u"Work"_qs);
    CalendarEvent::handleChangedCalendars();
    pass();
    rename(u"Home"_qs, u"House"_qs);
    rename(u"Work"_qs, u"Job"_qs);
    connectStore();
    CalendarEvent::handleChangedCalendars();
    EXPECT_EQ(titlesOf(CalendarEvent::getAllAccessCalendars()), QStringList({u"House"_qs, u"Job"_qs}))
        << "a renamed calendar stays chosen";
    EXPECT_EQ(rows().at(0)->calendarTitle(), u"House"_qs);
    EXPECT_EQ(UserDefaults::standard().string(settings::defaultCalendar), u"Job"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(1));
    QDir(folderOf(u"Home"_qs)).removeRecursively();
    connectStore();
    CalendarEvent::handleChangedCalendars();
    EXPECT_THAT(rows(), IsEmpty()) << "a removed calendar takes its tasks with it";
}

TEST_F(CalendarList, IsShownBySourcesFromTheEndOfTheAlphabet)
{
    QDir().mkpath(root.filePath(u"Cloud/Team"_qs));
    connectStore();
    choose({u"Team"_qs});
    const CalendarChooserData chooser = CalendarEvent::sortingAndGroupingByTitleForData(false);
    QStringList lines;
    for (const CalendarChooserRow &row : chooser.data)
        lines.append(std::holds_alternative<QString>(row) ? std::get<QString>(row)
                                                          : u"- "_qs + std::get<EKCalendar>(row).title);
    EXPECT_EQ(lines, QStringList({u"Local"_qs, u"- Home"_qs, u"- Work"_qs, u"Cloud"_qs, u"- Team"_qs}));
    EXPECT_EQ(titlesOf(chooser.selected), QStringList(u"Team"_qs));
}

} // namespace

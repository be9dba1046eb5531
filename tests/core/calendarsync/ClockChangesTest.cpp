#include "CalendarTest.h"
#include "foundation/Region.h"
#include "records/dates/MTDates.h"

#include <gmock/gmock.h>

#include <QTimeZone>

namespace {

using testing::SizeIs;

struct ClockChange
{
    const char *zone;
    QDate day;
};

void PrintTo(const ClockChange &change, std::ostream *stream)
{
    *stream << change.zone << ' ' << change.day.toString(Qt::ISODate).toStdString();
}

/// A series that crosses a change of the clocks keeps its wall time, wherever the user is.
class ClockChanges : public CalendarTest, public testing::WithParamInterface<ClockChange>
{
protected:
    ~ClockChanges() override { MTDates::reset(); }

    static void travel(const QByteArray &zone)
    {
        Region::setZone(zone);
        MTDates::reset();
    }

    /// By Qt's own zones, of which nothing here makes use otherwise.
    static Date at(const QDate &day, const QTime &time)
    {
        const QDateTime moment(day, time, QTimeZone(GetParam().zone));
        return Date::fromUnixSeconds(double(moment.toSecsSinceEpoch()));
    }
    static std::vector<Date> starts()
    {
        std::vector<Date> found;
        for (const TaskPtr &row : rows())
            found.push_back(*row->startDate());
        return found;
    }
    static std::vector<Date> expected(const QTime &time, int from = -3, int to = 3)
    {
        std::vector<Date> found;
        for (int day = from; day <= to; ++day)
            found.push_back(at(GetParam().day.addDays(day), time));
        return found;
    }
};

TEST_P(ClockChanges, ThroughPassesAndWrites)
{
    const FrozenClock before(at(GetParam().day.addDays(-4), {12, 0}));
    const QString first = GetParam().day.addDays(-3).toString(u"yyyyMMdd"_qs);
    for (const QByteArray &home : {QByteArray("Europe/Berlin"), QByteArray(GetParam().zone)}) {
        travel(home);
        startAnew();
        UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
        connectStore();
        for (const QString &name : files(u"Home"_qs).keys())
            QFile::remove(folderOf(u"Home"_qs) + u'/' + name);
        write(u"Home"_qs, u"daily"_qs,
              u"SUMMARY:Daily\nDTSTART;TZID=%1:%2T101500\nDTEND;TZID=%1:%2T104500\nRRULE:FREQ=DAILY;COUNT=7\n"
              u"BEGIN:VALARM\nACTION:DISPLAY\nDESCRIPTION:x\nTRIGGER:-PT15M\nEND:VALARM\n"_qs.arg(
                  QString::fromLatin1(GetParam().zone), first));
        pass();
        ASSERT_EQ(starts(), expected({10, 15})) << home.constData();
        for (const TaskPtr &row : rows()) {
            EXPECT_EQ((*row->dueDate() - *row->startDate()).count(), 1800);
            EXPECT_EQ(row->alert(), *row->startDate() + Seconds(-900));
        }
        // All later ones move along, over the change too.
        editSeries(rows().at(2), Span::FutureTasks, [](MVTask &task) {
            task.startDate = *task.startDate + Seconds(3600);
            task.dueDate = *task.dueDate + Seconds(3600);
        });
        pass();
        auto all = expected({10, 15}, -3, -2);
        for (const Date &later : expected({11, 15}, -1, 3))
            all.push_back(later);
        EXPECT_EQ(starts(), all) << home.constData();
        EXPECT_TRUE(files(u"Home"_qs)
                        .values()
                        .join(QString())
                        .contains(u"DTSTART;TZID=%1:"_qs.arg(QString::fromLatin1(GetParam().zone))));
        expectSettled();
    }
}

TEST_P(ClockChanges, OfTasksMadeHere)
{
    travel(GetParam().zone);
    UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
    const FrozenClock before(at(GetParam().day.addDays(-4), {12, 0}));
    MVTask copy;
    copy.title = u"Mine"_qs;
    copy.type = TaskType::Appointment;
    copy.status = TaskStatus::Open;
    copy.startDate = at(GetParam().day.addDays(-3), {9, 0});
    copy.dueDate = at(GetParam().day.addDays(-3), {9, 30});
    copy.repeat = u"RRULE:FREQ=DAILY;INTERVAL=1"_qs;
    copy.endRepeat = at(GetParam().day.addDays(3), {0, 0});
    copy.typeCalendarID = u"Home"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    pass();
    EXPECT_EQ(starts(), expected({9, 0}));
    expectSettled();
    // A whole day that has 23, 24 or 25 hours is one day still.
    MVTask day;
    day.title = u"Day"_qs;
    day.type = TaskType::ToDo;
    day.status = TaskStatus::Open;
    day.startDate = at(GetParam().day, {0, 0});
    day.dueDate = at(GetParam().day, {23, 59});
    day.typeCalendarID = u"Work"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(day, true));
    const QString text = files(u"Work"_qs).first();
    EXPECT_TRUE(text.contains(u"DTSTART;VALUE=DATE:"_qs + GetParam().day.toString(u"yyyyMMdd"_qs)));
    EXPECT_TRUE(text.contains(u"DTEND;VALUE=DATE:"_qs + GetParam().day.addDays(1).toString(u"yyyyMMdd"_qs)));
    pass();
    EXPECT_EQ(day.task()->dueDate(), at(GetParam().day, {23, 59, 59}));
    expectSettled();
}

INSTANTIATE_TEST_SUITE_P(Zones, ClockChanges,
                         testing::Values(ClockChange{"Europe/Berlin", {2026, 10, 25}},
                                         ClockChange{"Europe/Berlin", {2027, 3, 28}},
                                         ClockChange{"America/New_York", {2026, 11, 1}},
                                         ClockChange{"America/New_York", {2027, 3, 14}},
                                         ClockChange{"Australia/Lord_Howe", {2026, 10, 4}},
                                         ClockChange{"Australia/Lord_Howe", {2027, 4, 4}}));

} // namespace

#include "foundation/Region.h"
#include "records/calendars/CalendarManager.h"
#include "records/copies/MVTask.h"
#include "records/dates/MVDate.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <random>

namespace {

constexpr double usual = CalendarManager::defaultRowHeight;

CalendarForDaysItem itemFrom(OptionalDate start, OptionalDate due, TaskType type = TaskType::ToDo,
                             const QString &title = {})
{
    auto task = std::make_shared<MVTask>();
    task->title = title;
    task->type = type;
    task->startDate = start;
    task->dueDate = due;
    return CalendarForDaysItem(task);
}

/// An item that covers some columns, for what does not look at its task.
CalendarForDaysItem bar(qint64 column, qint64 duration, qint64 seconds = 0, const QString &title = {})
{
    CalendarForDaysItem item;
    item.column = column;
    item.duration = duration;
    item.workSeconds = seconds;
    item.title = title;
    return item;
}

TEST(Geometry, AMomentStandsWhereItsClockTimeIs)
{
    const Date day = localDate(2026, 11, 21);
    EXPECT_EQ(CalendarManager::convertTimeToPixel(localDate(2026, 11, 21, 9, 10, 59), usual), 641);
    EXPECT_EQ(CalendarManager::convertTimeToPixel(localDate(2026, 11, 21, 9, 10), 0), 641);
    EXPECT_EQ(wallClock(CalendarManager::convertPixelToTime(day, 0, usual)), u"2026-11-21 00:00:01 +0100"_qs);
    EXPECT_EQ(wallClock(CalendarManager::convertPixelToTime(day, 641.9, usual)),
              u"2026-11-21 09:09:01 +0100"_qs);
    EXPECT_EQ(wallClock(CalendarManager::convertPixelToTime(day, 1680, usual)),
              u"2026-11-22 00:00:01 +0100"_qs);
    // On a day of 23 hours the grid has its 24 all the same.
    const Date spring = localDate(2026, 3, 29);
    EXPECT_EQ(CalendarManager::convertTimeToPixel(localDate(2026, 3, 29, 12), usual), 840);
    EXPECT_EQ(wallClock(CalendarManager::convertPixelToTime(spring, 840, usual)),
              u"2026-03-29 12:00:01 +0200"_qs);
    // What no mouse can reach is no undefined number either.
    for (const double position : {std::numeric_limits<double>::infinity(), -1e300, std::nan("")})
        CalendarManager::convertPixelToTime(day, position, usual);
}

TEST(Geometry, RectanglesCrossWhenTheyTouchBesideEachOtherButNotAbove)
{
    const QRectF one(10, 10, 20, 20);
    const auto crosses = [&one](const QRectF &other) {
        EXPECT_EQ(CalendarManager::isCrossRect(one, other), CalendarManager::isCrossRect(other, one));
        return CalendarManager::isCrossRect(one, other);
    };
    EXPECT_TRUE(crosses({30, 10, 5, 20}));
    EXPECT_FALSE(crosses({30.001, 10, 5, 20}));
    EXPECT_FALSE(crosses({10, 30, 20, 5}));
    EXPECT_TRUE(crosses({10, 29, 20, 5}));
    EXPECT_FALSE(crosses({10, 29.001, 20, 5}));
    // Less than single precision tells is no distance.
    EXPECT_TRUE(crosses({30.0000001, 10, 5, 20}));
}

TEST(Geometry, AWeekHasSevenColumnsAndAMonthCountsFromTheDayBefore)
{
    const QRectF rect(50, 0, 700, 100);
    EXPECT_EQ(CalendarManager::columnWidth(rect), 100);
    EXPECT_EQ(CalendarManager::columnWithPosition(299, rect), 2);
    EXPECT_EQ(CalendarManager::columnWithPosition(1500, rect), 15);
    EXPECT_EQ(CalendarManager::columnWithPosition(5, QRectF()), std::numeric_limits<int>::max());
    EXPECT_EQ(CalendarManager::positionXWithColumn(3, rect), 300);

    // From a Monday at a clock time, over the change of the clocks on the Sunday.
    for (const Date &monday : {localDate(2026, 3, 23, 9, 15, 1), localDate(2026, 10, 19, 23, 59, 59)}) {
        for (int column = 0; column < 7; ++column) {
            const Date day = CalendarManager::dateWithColumn(column, monday);
            EXPECT_EQ(wallClock(day).mid(11, 8), wallClock(monday).mid(11, 8));
            EXPECT_EQ(CalendarManager::columnWithDate(MVDate::getStartOfDay(day), monday), column);
            EXPECT_EQ(CalendarManager::columnWithDate(MVDate::getEndOfDay(day), monday), column);
            EXPECT_EQ(CalendarManager::monthColumnWithDate(day, monday), column - 1);
        }
        EXPECT_EQ(CalendarManager::columnWithDate(MVDate::addDay(-1, monday), monday), -1);
        EXPECT_EQ(CalendarManager::columnWithDate(MVDate::addDay(7, monday), monday), -1);
        EXPECT_EQ(CalendarManager::monthColumnWithDate(MVDate::addDay(7, monday), monday), 6);
    }
}

TEST(Geometry, AMonthHasTheRowsOfItsWeeks)
{
    const auto rowsOf = [](Date month) {
        QStringList rows;
        for (const CalendarMonthRow &row : CalendarMonthRow::rowsOfMonth(month))
            rows.append(wallClock(row.startDate).left(19) + u" to "_qs + wallClock(row.endDate).left(19));
        return rows;
    };
    EXPECT_EQ(rowsOf(localDate(2026, 2, 17)).size(), 4);
    EXPECT_EQ(rowsOf(localDate(2026, 8, 1)).size(), 6);
    const QStringList march = rowsOf(localDate(2026, 3, 15, 23, 59, 59));
    EXPECT_EQ(march, rowsOf(localDate(2026, 3, 2)));
    EXPECT_EQ(march.value(0), u"2026-03-01 00:00:01 to 2026-03-07 23:59:59"_qs);
    EXPECT_EQ(march.value(4), u"2026-03-29 00:00:01 to 2026-04-04 23:59:59"_qs);

    Region::setLocale(u"de_DE"_qs);
    const CalendarMonthRow row = CalendarMonthRow::rowsOfMonth(localDate(2026, 10, 1)).at(3);
    EXPECT_EQ(wallClock(row.startDate), u"2026-10-19 00:00:01 +0200"_qs);
    EXPECT_EQ(CalendarMonthColumn::getColumnNumberWithDate(localDate(2026, 10, 19), row), 0);
    EXPECT_EQ(CalendarMonthColumn::getColumnNumberWithDate(localDate(2026, 10, 25, 23, 59, 59), row), 6);
    EXPECT_EQ(CalendarMonthColumn::getColumnNumberWithDate(localDate(2026, 10, 18, 23, 59), row), -1);
    EXPECT_EQ(CalendarMonthColumn::getColumnNumberWithDate(localDate(2026, 10, 26), row), -1);
    EXPECT_EQ(wallClock(row.dateOfColumn(6)), u"2026-10-25 00:00:01 +0200"_qs);
}

TEST(Items, TakeTheirLengthFromTheTask)
{
    const CalendarForDaysItem call =
        itemFrom(localDate(2026, 11, 1), localDate(2026, 11, 21, 9), TaskType::EmailCall);
    EXPECT_TRUE(call.startDueDate);
    EXPECT_EQ(std::tuple(call.row, call.workSeconds, call.duration, call.durationEvent),
              std::tuple(-1, 900, 1, 1));

    const CalendarForDaysItem days = itemFrom(localDate(2026, 10, 24), localDate(2026, 10, 26, 23, 59, 59),
                                              TaskType::ToDo, u"three days"_qs);
    EXPECT_FALSE(days.startDueDate);
    EXPECT_EQ(days.title, u"three days"_qs);
    EXPECT_EQ(days.workSeconds, 73 * 3600 - 1);
    EXPECT_EQ(days.durationEvent, 3);
    // The first centuries have the leap days of their own calendar.
    EXPECT_EQ(itemFrom(localDate(1, 1, 2), localDate(9999, 12, 30)).durationEvent, 3652059);
    EXPECT_EQ(itemFrom(localDate(2026, 11, 21, 9), localDate(2026, 11, 21, 8)).workSeconds, -3600);
    EXPECT_EQ(itemFrom(localDate(2026, 11, 21, 9), localDate(2026, 11, 21, 9)).durationEvent, 1);

    const CalendarForDaysItem open = itemFrom(localDate(2026, 11, 21), std::nullopt);
    EXPECT_EQ(std::tuple(open.workSeconds, open.durationEvent), std::tuple(1, 1));
}

TEST(Items, AreFittedToTheShownDays)
{
    const Date start = localDate(2026, 10, 19, 9, 15, 1);
    const Date end = localDate(2026, 10, 25, 23, 59, 59);
    const auto fitted = [&](Date from, Date to) {
        CalendarForDaysItem item = itemFrom(from, to);
        CalendarManager::settingEventItem(item, start, end, CalendarManager::columnWithDate(from, start),
                                          CalendarManager::columnWithDate(to, start));
        return QStringLiteral("%1+%2 from %3")
            .arg(item.column)
            .arg(item.duration)
            .arg(wallClock(*item.startDate).left(16));
    };
    EXPECT_EQ(fitted(localDate(2026, 10, 20, 8), localDate(2026, 10, 25, 7)),
              u"1+6 from 2026-10-20 08:00"_qs);
    EXPECT_EQ(fitted(localDate(2026, 10, 1, 8), localDate(2026, 10, 20, 7)), u"0+2 from 2026-10-19 09:15"_qs);
    EXPECT_EQ(fitted(localDate(2026, 10, 24, 8), localDate(2026, 11, 20)), u"5+2 from 2026-10-24 08:00"_qs);
    // What covers all days goes on to its own end.
    EXPECT_EQ(fitted(localDate(2026, 10, 1), localDate(2026, 11, 20)), u"0+33 from 2026-10-19 09:15"_qs);
    EXPECT_EQ(fitted(localDate(2026, 10, 23), localDate(2026, 10, 20)), u"4+-2 from 2026-10-23 00:00"_qs);
}

TEST(Lanes, AnItemClashesOnlyWithOneOfItsOwnEnds)
{
    CalendarForDaysItems placed{bar(2, 2)};
    placed[0].row = 1;
    EXPECT_EQ(CalendarManager::notBusyRow(bar(2, 1), placed), 2);
    EXPECT_EQ(CalendarManager::notBusyRow(bar(3, 4), placed), 2);
    EXPECT_EQ(CalendarManager::notBusyRow(bar(0, 3), placed), 2);
    EXPECT_EQ(CalendarManager::notBusyRow(bar(0, 2), placed), 1);
    EXPECT_EQ(CalendarManager::notBusyRow(bar(4, 1), placed), 1);
    EXPECT_EQ(CalendarManager::notBusyRow(bar(1, 6), placed), 1);
    EXPECT_EQ(CalendarManager::notBusyRow(bar(0, 7), {}), 1);
    // A lane between others that has room is taken first.
    placed = {bar(0, 7), bar(0, 3), bar(0, 7)};
    for (size_t place = 0; place < placed.size(); ++place)
        placed[place].row = static_cast<qint64>(place) + 1;
    EXPECT_EQ(CalendarManager::notBusyRow(bar(4, 2), placed), 2);
    EXPECT_EQ(CalendarManager::notBusyRow(bar(2, 2), placed), 4);
}

TEST(Lanes, TheLongestComesFirstThenTheTitleDecides)
{
    const auto lanes = [](CalendarForDaysItems items) {
        QStringList result;
        for (const CalendarForDaysItem &item : CalendarManager::sortedEvents(items))
            result.append(item.title + QString::number(item.row));
        return result.join(u' ');
    };
    EXPECT_EQ(lanes({}), QString());
    EXPECT_EQ(lanes({bar(0, 1, 10, u"b"_qs), bar(0, 1, 10, u"a"_qs), bar(0, 1, 20, u"c"_qs)}),
              u"c1 a2 b3"_qs);
    EXPECT_EQ(lanes({bar(0, 1, 1, u"x"_qs), bar(5, 1, 1, u"y"_qs), bar(3, 1, 9, u"z"_qs)}), u"z1 x1 y1"_qs);
    // By code point, not as in a dictionary.
    EXPECT_EQ(lanes({bar(0, 1, 1, u"a"_qs), bar(0, 1, 1, u"B"_qs)}), u"B1 a2"_qs);
}

TEST(Lanes, GeneratedBarsTakeTheFirstFreeLaneAndTheLastHoldsTheHighest)
{
    std::mt19937 random(testSeed());
    const auto pick = [&random](int below) { return std::uniform_int_distribution<>(0, below - 1)(random); };
    for (int round = 0; round < 100; ++round) {
        CalendarForDaysItems items;
        for (int count = pick(60); count > 0; --count) {
            const int column = pick(7);
            const int duration = pick(9) - 1;
            items.push_back(
                bar(column, duration, qint64(duration) * 86400 + pick(3), QString(QChar(u'a' + pick(5)))));
        }
        const CalendarForDaysItems sorted = CalendarManager::sortedEvents(items);
        CalendarForDaysItems byLength = sorted;
        std::stable_sort(byLength.begin(), byLength.end(), [](const auto &one, const auto &other) {
            return std::tuple(-one.workSeconds, one.title, one.column) <
                   std::tuple(-other.workSeconds, other.title, other.column);
        });
        CalendarForDaysItems placed;
        qint64 highest = 0;
        for (const CalendarForDaysItem &item : byLength) {
            EXPECT_EQ(item.row, CalendarManager::notBusyRow(item, placed));
            placed.push_back(item);
            highest = std::max(highest, item.row);
        }
        EXPECT_EQ(sorted.empty() ? 0 : sorted.back().row, highest);
    }
}

} // namespace

#include "BenchHome.h"
#include "Ratio.h"
#include "foundation/Clock.h"
#include "records/calendars/AllDayLanes.h"
#include "records/calendars/MonthGridLayout.h"
#include "records/calendars/TimedGridLayout.h"
#include "records/dates/MVDate.h"
#include "store/queries/HomeRows.h"

#include <sqlite3.h>

#include <string>

namespace {

/// Reads the identifiers that a query with two moments gives, and nothing else.
std::vector<std::string> bareIdentifiers(const char *query, Date first, Date last)
{
    std::vector<std::string> identifiers;
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(BenchHome::shared().bare(), query, -1, &statement, nullptr);
    sqlite3_bind_double(statement, 1, first.referenceSeconds());
    sqlite3_bind_double(statement, 2, last.referenceSeconds());
    while (sqlite3_step(statement) == SQLITE_ROW)
        identifiers.emplace_back(reinterpret_cast<const char *>(sqlite3_column_text(statement, 0)));
    sqlite3_finalize(statement);
    return identifiers;
}

/// The tasks that have one of some days among theirs.
std::vector<std::string> bareIdentifiersBetween(Date first, Date last)
{
    return bareIdentifiers("SELECT id FROM EntityTask WHERE (type = 0 AND startDate <= ?2 AND dueDate >= ?1) "
                           "OR (type IN (1, 2) AND dueDate BETWEEN ?1 AND ?2)",
                           first, last);
}

/// The open tasks that were due before a moment.
std::vector<std::string> bareIdentifiersOfOverdue(Date moment)
{
    return bareIdentifiers("SELECT id FROM EntityTask WHERE status IS NOT 3 AND dueDate < ?1", moment,
                           moment);
}

/// A week of the store, 300 tasks of it, fetched and laid out.
void week(benchmark::State &state)
{
    BenchHome::shared();
    const Date start = MVDate::startOfWeek(MVDate::getStartOfDay(Clock::now()));
    const Date end = MVDate::endOfWeek(start);
    const DayColumns columns{CalendarManager::daysInWeek, 1000};
    compare(
        state,
        [&] {
            const AllDayLanes lanes{columns, {}};
            for (const CalendarForDaysItem &item : CalendarManager::dataBaseGetItemsWithStartWeek(start, end))
                benchmark::DoNotOptimize(lanes.frame(item));
            const auto items = TimedItem::ofDays(DBWorker::calendarOtherTasks(start, columns.count));
            benchmark::DoNotOptimize(TimedGridLayout(start, columns, {}, items));
        },
        [&] { bareIdentifiersBetween(MVDate::getStartOfDay(start), end); });
}
BENCHMARK(week)->Unit(benchmark::kMillisecond)->MinTime(1);

void month(benchmark::State &state)
{
    BenchHome::shared();
    const std::vector<CalendarMonthRow> rows = CalendarMonthRow::rowsOfMonth(Clock::now());
    compare(
        state,
        [&] {
            benchmark::DoNotOptimize(
                MonthGridLayout({1000, 800}, {}, CalendarManager::dataBaseGetItems(rows)));
        },
        [&] { bareIdentifiersBetween(rows.front().startDate, rows.back().endDate); });
}
BENCHMARK(month)->Unit(benchmark::kMillisecond)->MinTime(1);

/// The week of Home against reading the identifiers of its tasks.
void homeWeek(benchmark::State &state)
{
    BenchHome::shared();
    constexpr Seconds week{7 * 86400.0};
    const Date start = MVDate::getStartOfDay(Clock::now());
    compare(
        state, [] { benchmark::DoNotOptimize(DBWorker::getWeekBlockData()); },
        [&] { bareIdentifiersBetween(start, start + week); });
}
BENCHMARK(homeWeek)->Unit(benchmark::kMillisecond)->MinTime(1);

/// What is overdue on Home against reading the identifiers of the open tasks that were due before today.
void homeOverdue(benchmark::State &state)
{
    BenchHome::shared();
    const Date start = MVDate::getStartOfDay(Clock::now());
    compare(
        state, [] { benchmark::DoNotOptimize(DBWorker::getOverdueBlockData()); },
        [&] { bareIdentifiersOfOverdue(start); });
}
BENCHMARK(homeOverdue)->Unit(benchmark::kMillisecond)->MinTime(1);

} // namespace

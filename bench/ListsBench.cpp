#include "BenchHome.h"
#include "Ratio.h"
#include "foundation/Clock.h"
#include "records/TaskRowContent.h"
#include "records/dates/MVDate.h"
#include "store/queries/DBWorker.h"

#include <sqlite3.h>

#include <string>

namespace {

/// How many rows a tall screen shows.
constexpr int screenRows = 30;

/// Reads the identifiers that a query finds, as text, and nothing else.
std::vector<std::string> bareIdentifiers(const char *sql, double bound)
{
    std::vector<std::string> identifiers;
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(BenchHome::shared().bare(), sql, -1, &statement, nullptr);
    for (int place = 1; place <= sqlite3_bind_parameter_count(statement); ++place)
        sqlite3_bind_double(statement, place, bound);
    while (sqlite3_step(statement) == SQLITE_ROW)
        identifiers.emplace_back(reinterpret_cast<const char *>(sqlite3_column_text(statement, 0)));
    sqlite3_finalize(statement);
    return identifiers;
}

double endOfToday()
{
    return MVDate::getEndOfDay(Clock::now()).referenceSeconds();
}

void showFirstScreen(const TaskList &list, ListType type)
{
    for (int row = 0; row < std::min(screenRows, list.size()); ++row)
        benchmark::DoNotOptimize(TaskRowContent::of(*list.at(row), type));
}

void today(benchmark::State &state)
{
    BenchHome::shared();
    compare(
        state, [] { showFirstScreen(DBWorker::allTodayTasks(), ListType::Today); },
        [] {
            bareIdentifiers("SELECT id FROM EntityTask WHERE ((type = 2 AND dueDate <= ?1) OR (type IN (0, "
                            "1) AND startDate "
                            "<= ?1)) AND status <> 3 AND dueSomeDay = 0 ORDER BY dueDate DESC, title",
                            endOfToday());
        });
}
BENCHMARK(today)->Unit(benchmark::kMillisecond)->MinTime(1);

void scheduled(benchmark::State &state)
{
    BenchHome::shared();
    compare(
        state, [] { showFirstScreen(DBWorker::allScheduledTasks(), ListType::Scheduled); },
        [] {
            bareIdentifiers(
                "SELECT id FROM EntityTask WHERE ((type IN (0, 1) AND dueDate IS NOT NULL AND startDate > "
                "?1) OR "
                "(type = 2 AND dueDate > ?1)) AND status <> 3 AND dueSomeDay = 0 ORDER BY startDate, title",
                endOfToday());
        });
}
BENCHMARK(scheduled)->Unit(benchmark::kMillisecond)->MinTime(1);

void notDone(benchmark::State &state)
{
    BenchHome::shared();
    compare(
        state, [] { showFirstScreen(DBWorker::allNotDoneTasks(), ListType::NotDone); },
        [] {
            bareIdentifiers("SELECT id FROM EntityTask WHERE status IS NOT 3 ORDER BY dueDate DESC, title",
                            0);
        });
}
BENCHMARK(notDone)->Unit(benchmark::kMillisecond)->MinTime(1);

void grouped(benchmark::State &state)
{
    BenchHome::shared();
    for (auto _ : state)
        benchmark::DoNotOptimize(DBWorker::allNotDoneTasksGrouped(static_cast<Grouping>(state.range(0))));
}
BENCHMARK(grouped)->ArgName("by")->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void done(benchmark::State &state)
{
    BenchHome::shared();
    for (auto _ : state)
        benchmark::DoNotOptimize(DBWorker::allDoneTasks());
}
BENCHMARK(done)->Unit(benchmark::kMillisecond);

} // namespace

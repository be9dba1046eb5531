#include "BenchHome.h"
#include "Ratio.h"
#include "foundation/Clock.h"
#include "records/dates/MVDate.h"
#include "store/queries/DBWorker.h"

#include <sqlite3.h>

namespace {

void bareCount(const char *condition, double bound)
{
    const std::string sql = std::string("SELECT COUNT(*) FROM EntityTask WHERE ") + condition;
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(BenchHome::shared().bare(), sql.c_str(), -1, &statement, nullptr);
    if (sqlite3_bind_parameter_count(statement) > 0)
        sqlite3_bind_double(statement, 1, bound);
    sqlite3_step(statement);
    benchmark::DoNotOptimize(sqlite3_column_int(statement, 0));
    sqlite3_finalize(statement);
}

void bareCounts()
{
    const double end = MVDate::getEndOfDay(Clock::now()).referenceSeconds();
    bareCount("status IS NOT 3 AND dueSomeDay IS NOT 1 AND startDate IS NULL AND type = 0", end);
    bareCount("((type = 2 AND dueDate <= ?1) OR (type IN (0, 1) AND startDate <= ?1)) AND status <> 3 AND "
              "dueSomeDay = 0",
              end);
    bareCount("((type IN (0, 1) AND dueDate IS NOT NULL AND startDate > ?1) OR (type = 2 AND dueDate > ?1)) "
              "AND status <> 3 "
              "AND dueSomeDay = 0",
              end);
    bareCount("type IN (0, 2) AND status <> 3 AND dueSomeDay = 1", end);
    bareCount("category IS NOT NULL AND status <> 3", end);
    bareCount("delegateToUser IS NOT NULL AND status <> 3", end);
    bareCount("status IS NOT 3", end);
    bareCount("status = 3 AND expirationDate IS NOT NULL", end);
}

void sidebarCounts(benchmark::State &state)
{
    BenchHome::shared();
    compare(
        state, [] { benchmark::DoNotOptimize(DBWorker::taskBadges()); }, bareCounts);
}
BENCHMARK(sidebarCounts)->Unit(benchmark::kMillisecond)->MinTime(1);

void programBadge(benchmark::State &state)
{
    BenchHome::shared();
    for (auto _ : state)
        benchmark::DoNotOptimize(DBWorker::countStaleTasks());
}
BENCHMARK(programBadge)->Unit(benchmark::kMillisecond);

} // namespace

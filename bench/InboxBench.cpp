#include "BenchHome.h"
#include "Ratio.h"
#include "store/queries/DBWorker.h"

#include <sqlite3.h>

#include <benchmark/benchmark.h>

namespace {

/// A row of a very long Inbox dragged from its end to its beginning, which numbers all rows anew.
void dragInInbox(benchmark::State &state)
{
    BenchHome::shared();
    const auto drag = [] {
        const std::vector<TaskPtr> rows = [] {
            std::vector<TaskPtr> all;
            for (TaskPtr task : DBWorker::allInboxTasks())
                all.push_back(std::move(task));
            return all;
        }();
        DBWorker::newPositionInboxTask({static_cast<int>(rows.size()) - 1}, 0, rows);
    };
    const auto bareDrag = [] {
        BenchHome::shared().runCaptured([](sqlite3 *database) {
            sqlite3_exec(database,
                         "UPDATE EntityTask SET position = position + 1 WHERE startDate IS NULL AND type = 0",
                         nullptr, nullptr, nullptr);
        });
    };
    state.counters["rows"] = DBWorker::allInboxTasks().size();
    compare(state, drag, bareDrag);
}
BENCHMARK(dragInInbox)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

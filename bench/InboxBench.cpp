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
        sqlite3 *database = BenchHome::shared().bare();
        sqlite3_exec(database, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
        sqlite3_session *session = nullptr;
        sqlite3session_create(database, "main", &session);
        sqlite3session_attach(session, nullptr);
        sqlite3_exec(database,
                     "UPDATE EntityTask SET position = position + 1 WHERE startDate IS NULL AND type = 0",
                     nullptr, nullptr, nullptr);
        int size = 0;
        void *changeset = nullptr;
        sqlite3session_changeset(session, &size, &changeset);
        sqlite3_free(changeset);
        sqlite3session_delete(session);
        sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
    };
    state.counters["rows"] = DBWorker::allInboxTasks().size();
    compare(state, drag, bareDrag);
}
BENCHMARK(dragInInbox)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

#include "BenchHome.h"
#include "records/TaskRowContent.h"
#include "store/queries/DBWorker.h"

#include <benchmark/benchmark.h>

namespace {

/// What scrolling through the whole list costs a row: loading it and making its texts.
void rowContent(benchmark::State &state)
{
    BenchHome::shared();
    const TaskList list = DBWorker::allNotDoneTasks();
    int row = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(TaskRowContent::of(*list.at(row), ListType::NotDone));
        row = (row + 1) % list.size();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(rowContent)->MinTime(1);

} // namespace

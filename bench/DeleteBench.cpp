#include "BenchHome.h"
#include "foundation/Alert.h"
#include "records/TaskManager.h"
#include "store/queries/DBWorker.h"

#include <benchmark/benchmark.h>

namespace {

constexpr int selected = 1000;

/// Presses the first button.
class Agreeing : public AlertPresenter
{
public:
    int present(const AlertQuestion &) override { return Alert::firstButton; }
};

/// A thousand selected rows of Not Done, after the question; undone outside of the time.
void deleteSelectedTasks(benchmark::State &state)
{
    ManagedObjectContext &context = BenchHome::shared().context();
    const TaskList tasks = DBWorker::allNotDoneTasks();
    std::vector<ObjectPtr> selection;
    for (int row = 0; static_cast<int>(selection.size()) < selected && row < tasks.size(); ++row) {
        if (tasks.at(row)->repeat().isEmpty())
            selection.push_back(tasks.at(row));
    }
    Alert::setPresenter(std::make_shared<Agreeing>());
    for (auto _ : state) {
        TaskManager::deleteTasks(selection, {});
        state.PauseTiming();
        if (context.undo())
            state.SkipWithError("The deletion cannot be undone");
        for (ObjectPtr &task : selection)
            task = context.object(task->entity().name(), task->identifier());
        state.ResumeTiming();
    }
}
BENCHMARK(deleteSelectedTasks)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

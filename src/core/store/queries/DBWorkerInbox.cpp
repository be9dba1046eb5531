#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/ListDefinitions.h"
#include "store/state/NotificationNames.h"

#include <algorithm>
#include <limits>

// The order that the user gives the Inbox by hand.

int DBWorker::maxPositionTaskInbox()
{
    const FetchRequest all = EntityTask::fetchRequest().where(
        Predicate::format("startDate ==  nil and type == %d", TaskType::ToDo));
    // Another program may have left any number there; the next position must be one, too.
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double greatest = std::numeric_limits<int>::max() - 1;
    return static_cast<int>(std::clamp(mainContext().maximum(all, "position").value_or(0), lowest, greatest));
}

namespace {

/// Moves the tasks at some places to the place of a target. What lay below the target pushes it down by one
/// as it is taken out; what lay behind it is put in at it, one by one.
void moveTo(std::vector<TaskPtr> &tasks, const std::set<size_t> &places, size_t target)
{
    size_t offset = 0;
    for (auto place = places.rbegin(); place != places.rend(); ++place) {
        const bool isBefore = *place < target;
        const auto taken = tasks.begin() + static_cast<std::ptrdiff_t>(isBefore ? *place : *place + offset);
        TaskPtr task = *taken;
        tasks.erase(taken);
        if (isBefore)
            --target;
        else
            ++offset;
        tasks.insert(tasks.begin() + static_cast<std::ptrdiff_t>(target), std::move(task));
    }
}

} // namespace

void DBWorker::newPositionInboxTask(const std::set<int> &rows, int toIndex,
                                    const std::vector<TaskPtr> &currentTasks)
{
    if (currentTasks.empty() || toIndex < 0)
        return;
    const size_t targetRow = std::min(static_cast<size_t>(toIndex), currentTasks.size() - 1);
    const TaskList inbox = allInboxTasks();
    const auto placeOf = [&inbox](const TaskPtr &task) { return task ? inbox.indexOf(*task) : -1; };
    const int target = placeOf(currentTasks[targetRow]);
    if (target < 0)
        return;
    std::set<size_t> places;
    for (const int row : rows) {
        const bool isRow = row >= 0 && static_cast<size_t>(row) < currentTasks.size();
        const int place = isRow ? placeOf(currentTasks[static_cast<size_t>(row)]) : -1;
        if (place >= 0)
            places.insert(static_cast<size_t>(place));
    }
    std::vector<TaskPtr> tasks;
    for (TaskPtr task : inbox)
        tasks.push_back(std::move(task));
    moveTo(tasks, places, static_cast<size_t>(target));
    for (size_t place = 0; place < tasks.size(); ++place)
        tasks[place]->setPosition(static_cast<int>(place) + 1);
    saveOrTell();
}

#include "records/SelectedTaskController.h"

#include "foundation/NotificationCenter.h"
#include "store/state/NotificationNames.h"

#include <algorithm>

static void postChange() {}

SelectedTaskController &SelectedTaskController::sharedCenter()
{
    static SelectedTaskController controller;
    return controller;
}

void SelectedTaskController::addTask(const TaskPtr &task)
{
    addTasks({task});
}

void SelectedTaskController::addTasks(const std::vector<TaskPtr> &added)
{
    for (const TaskPtr &task : added) {
        std::erase(tasks, task);
        tasks.push_back(task);
    }
    postChange();
}

void SelectedTaskController::removeTask(const TaskPtr &task)
{
    removeTasks({task});
}

void SelectedTaskController::removeTasks(const std::vector<TaskPtr> &removed)
{
    for (const TaskPtr &task : removed)
        std::erase(tasks, task);
    postChange();
}

void SelectedTaskController::removeAllTasks()
{
    tasks.clear();
    postChange();
}

bool SelectedTaskController::containsTask(const TaskPtr &task) const
{
    return std::ranges::find(tasks, task) != tasks.end();
}

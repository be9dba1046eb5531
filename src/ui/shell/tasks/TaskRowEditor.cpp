#include "shell/tasks/TaskRowEditor.h"

#include "records/Functional.h"
#include "records/MVTask.h"
#include "records/TaskManager.h"

#include <algorithm>

static bool isWritable(const TaskPtr &task)
{
    return task && task->allowsContentModifications().value_or(true);
}

static bool isDone(const TaskPtr &task)
{
    return task->status() == static_cast<int>(TaskStatus::Done);
}

void TaskRowEditor::toggleDone(const std::vector<TaskPtr> &tasks)
{
    std::vector<TaskPtr> writable;
    std::ranges::copy_if(tasks, std::back_inserter(writable), isWritable);
    const auto status = std::ranges::all_of(writable, isDone) ? TaskStatus::Open : TaskStatus::Done;
    for (const TaskPtr &task : writable)
        MVTask(task).changeStatusType(static_cast<unsigned>(status), true);
}

void TaskRowEditor::setStatus(const std::vector<TaskPtr> &tasks, int status)
{
    for (const TaskPtr &task : tasks)
        MVTask(task).changeStatus(Functional::statusStringFromType(status), true);
}

void TaskRowEditor::setPriority(const std::vector<TaskPtr> &tasks, int priority)
{
    for (const TaskPtr &task : tasks) {
        MVTask copy(task);
        copy.priority = priority;
        TaskManager::saveTaskTemp(copy, true);
    }
}

void TaskRowEditor::setCategory(const std::vector<TaskPtr> &tasks, const CategoryPtr &category)
{
    for (const TaskPtr &task : tasks) {
        MVTask copy(task);
        copy.category = category;
        TaskManager::saveTaskTemp(copy, true);
    }
}

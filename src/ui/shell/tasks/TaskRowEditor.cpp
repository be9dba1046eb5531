#include "shell/tasks/TaskRowEditor.h"

#include "records/Functional.h"
#include "records/MVTask.h"
#include "records/TaskManager.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "widgets/LongWork.h"

#include <algorithm>

static bool isWritable(const TaskPtr &task)
{
    return task && task->allowsContentModifications().value_or(true);
}

static bool isDone(const TaskPtr &task)
{
    return task->status() == static_cast<int>(TaskStatus::Done);
}

/// All tasks are saved together, and one undo takes all of it back. What was changed when the user stops it
/// is kept.
template <typename Change>
static void changeEach(const std::vector<TaskPtr> &tasks, Change change)
{
    {
        LongWork work(static_cast<int>(tasks.size()));
        const SaveGroup together(mainContext());
        for (const TaskPtr &task : tasks) {
            change(task);
            if (!work.step())
                break;
        }
    }
    DBWorker::saveContext();
}

void TaskRowEditor::toggleDone(const std::vector<TaskPtr> &tasks)
{
    std::vector<TaskPtr> writable;
    std::ranges::copy_if(tasks, std::back_inserter(writable), isWritable);
    const auto status = std::ranges::all_of(writable, isDone) ? TaskStatus::Open : TaskStatus::Done;
    changeEach(writable, [status](const TaskPtr &task) {
        MVTask(task).changeStatusType(static_cast<unsigned>(status), true);
    });
}

void TaskRowEditor::setStatus(const std::vector<TaskPtr> &tasks, int status)
{
    changeEach(tasks, [word = Functional::statusStringFromType(status)](const TaskPtr &task) {
        MVTask(task).changeStatus(word, true);
    });
}

void TaskRowEditor::setPriority(const std::vector<TaskPtr> &tasks, int priority)
{
    changeEach(tasks, [&](const TaskPtr &task) {
        MVTask copy(task);
        copy.priority = priority;
        TaskManager::saveTaskTemp(copy, true);
    });
}

void TaskRowEditor::setCategory(const std::vector<TaskPtr> &tasks, const CategoryPtr &category)
{
    changeEach(tasks, [&](const TaskPtr &task) {
        MVTask copy(task);
        copy.category = category;
        TaskManager::saveTaskTemp(copy, true);
    });
}

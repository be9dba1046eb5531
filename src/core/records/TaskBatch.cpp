#include "records/TaskBatch.h"

#include "calendarsync/RecordsTransaction.h"
#include "records/RepeatBan.h"
#include "records/TaskManager.h"
#include "records/copies/MVTask.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <algorithm>

namespace {

bool isWritable(const TaskPtr &task)
{
    return task && task->allowsContentModifications().value_or(true);
}

/// A task can go while the user is shown how far the work is.
bool isGone(const TaskPtr &task)
{
    return task->isDeleted() || !task->context();
}

std::vector<TaskPtr> writable(const std::vector<TaskPtr> &tasks)
{
    std::vector<TaskPtr> some;
    std::ranges::copy_if(tasks, std::back_inserter(some), isWritable);
    return some;
}

template <typename Change>
void changeEach(const std::vector<TaskPtr> &tasks, const StepBlock &step, Change change)
{
    RecordsTransaction transaction(QStringLiteral("Change Tasks"));
    for (const TaskPtr &task : tasks) {
        if (!isGone(task))
            change(transaction, task);
        if (step && !step())
            break;
    }
    DBWorker::tellOfFailure(transaction.commit());
}

/// Of several that are barred the user is told once.
void changeStatus(const std::vector<TaskPtr> &tasks, TaskStatus status, const StepBlock &step)
{
    bool isBarred = false;
    changeEach(tasks, step, [&](RecordsTransaction &transaction, const TaskPtr &task) {
        if (RepeatBan::concerns(*task))
            isBarred = true;
        else
            MVTask(task).changeStatusType(transaction, status);
    });
    if (isBarred)
        RepeatBan::tell();
}

template <typename Value>
void setField(const std::vector<TaskPtr> &tasks, const StepBlock &step, Value MVTask::*field,
              const Value &value)
{
    changeEach(writable(tasks), step, [&](RecordsTransaction &transaction, const TaskPtr &task) {
        MVTask copy(task);
        copy.*field = value;
        TaskManager::saveTaskTemp(transaction, copy);
    });
}

} // namespace

void TaskBatch::toggleDone(const std::vector<TaskPtr> &tasks, const StepBlock &step)
{
    const std::vector<TaskPtr> some = writable(tasks);
    const bool areAllDone =
        std::ranges::all_of(some, [](const TaskPtr &task) { return task->status() == TaskStatus::Done; });
    changeStatus(some, areAllDone ? TaskStatus::Open : TaskStatus::Done, step);
}

void TaskBatch::setStatus(const std::vector<TaskPtr> &tasks, TaskStatus status, const StepBlock &step)
{
    changeStatus(writable(tasks), status, step);
}

void TaskBatch::setPriority(const std::vector<TaskPtr> &tasks, Priority priority, const StepBlock &step)
{
    setField(tasks, step, &MVTask::priority, std::optional(priority));
}

void TaskBatch::setCategory(const std::vector<TaskPtr> &tasks, const CategoryPtr &category,
                            const StepBlock &step)
{
    setField(tasks, step, &MVTask::category, category);
}

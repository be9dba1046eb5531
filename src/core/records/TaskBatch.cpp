#include "records/TaskBatch.h"

#include "calendarsync/RecordsTransaction.h"
#include "foundation/Clock.h"
#include "records/CalendarDrag.h"
#include "records/NewTaskRequest.h"
#include "records/RepeatBan.h"
#include "records/TaskFormState.h"
#include "records/TaskManager.h"
#include "records/copies/MVTask.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <QRegularExpression>

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

/// Changes working copies and saves them.
template <typename Change>
void changeCopies(const std::vector<TaskPtr> &tasks, const StepBlock &step, Change change)
{
    changeEach(writable(tasks), step, [&](RecordsTransaction &transaction, const TaskPtr &task) {
        MVTask copy(task);
        change(copy);
        TaskManager::saveTaskTemp(transaction, copy);
    });
}

template <typename Value>
void setField(const std::vector<TaskPtr> &tasks, const StepBlock &step, Value MVTask::*field,
              const Value &value)
{
    changeCopies(tasks, step, [&](MVTask &copy) { copy.*field = value; });
}

void putOff(MVTask &task)
{
    task.type = TaskType::ToDo;
    task.dueSomeDay = true;
    task.repeat.clear();
    for (OptionalDate *date :
         {&task.startDate, &task.dueDate, &task.alert, &task.secondAlert, &task.endRepeat})
        date->reset();
}

/// Stores new tasks together.
std::vector<TaskPtr> store(const QString &name, std::vector<MVTask> copies, const StepBlock &step)
{
    std::vector<TaskPtr> stored;
    RecordsTransaction transaction(name);
    for (MVTask &copy : copies) {
        if (TaskManager::saveTaskTemp(transaction, copy) == SaveEnd::Saved && copy.task())
            stored.push_back(copy.task());
        if (step && !step())
            break;
    }
    DBWorker::tellOfFailure(transaction.commit());
    std::erase_if(stored, isGone);
    return stored;
}

/// Whether the numbers before lines are those of a list. Any others belong to the text, as in "24. December".
bool countOnFromOne(const QStringList &lines)
{
    static const QRegularExpression number(QStringLiteral(R"(^\s*(\d{1,3})[.)]\s)"));
    int last = 0;
    for (const QString &line : lines) {
        const auto match = number.match(line);
        if (match.hasMatch() && match.captured(1).toInt() != ++last)
            return false;
    }
    return last > 1;
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

void TaskBatch::setProject(const std::vector<TaskPtr> &tasks, const ProjectPtr &project,
                           const StepBlock &step)
{
    setField(tasks, step, &MVTask::project, project);
}

void TaskBatch::planOn(const std::vector<TaskPtr> &tasks, Date day, const StepBlock &step)
{
    changeCopies(tasks, step, [day](MVTask &copy) { CalendarDrag::planOn(copy, day); });
}

void TaskBatch::plan(const std::vector<TaskPtr> &tasks, QuickDay day, const StepBlock &step)
{
    if (const OptionalDate date = quickdays::dayOf(day, Clock::now()))
        return planOn(tasks, *date, step);
    changeCopies(tasks, step, putOff);
}

std::vector<TaskPtr> TaskBatch::duplicate(const std::vector<TaskPtr> &tasks, const StepBlock &step)
{
    std::vector<MVTask> copies;
    for (const TaskPtr &task : tasks) {
        if (isGone(task))
            continue;
        MVTask &copy = copies.emplace_back(task);
        const bool isOfReadOnlyCalendar = !isWritable(task);
        copy.detachFromEvent();
        copy.status = TaskStatus::Open;
        copy.creationDate.reset();
        copy.lastAsked.reset();
        copy.repeat.clear();
        copy.endRepeat.reset();
        if (isOfReadOnlyCalendar)
            copy.typeCalendarID = TaskFormState(NewTaskRequest()).currentTask().typeCalendarID;
    }
    return store(QStringLiteral("Duplicate Tasks"), std::move(copies), step);
}

std::vector<TaskPtr> TaskBatch::addLines(const QStringList &lines, const NewTaskRequest &request,
                                         const StepBlock &step)
{
    static const QString sign = QStringLiteral("[-*+•‣◦–—]");
    static const QString signOrNumber = sign + QStringLiteral(R"(|\d{1,3}[.)])");
    static const QString pattern = QStringLiteral(R"(^\s*(?:(?:%1)\s+)?(?:(\[[ xX]?\]|[☐☑☒✓✔])\s+)?)");
    const QRegularExpression beginning(pattern.arg(countOnFromOne(lines) ? signOrNumber : sign));
    const QStringList done = {QStringLiteral("[x]"), QStringLiteral("[X]"), QStringLiteral("☑"),
                              QStringLiteral("☒"),   QStringLiteral("✓"),   QStringLiteral("✔")};
    std::vector<MVTask> copies;
    for (const QString &line : lines) {
        const auto match = beginning.match(line);
        const QString title = line.mid(match.capturedEnd()).simplified();
        if (title.isEmpty())
            continue;
        MVTask &copy = copies.emplace_back(TaskFormState(request).currentTask());
        copy.title = title;
        if (done.contains(match.captured(1)))
            copy.changeStatusType(TaskStatus::Done, false);
    }
    return store(QStringLiteral("Add Tasks"), std::move(copies), step);
}

#include "calendarsync/CalendarEvent.h"
#include "calendarsync/RecordsTransaction.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "records/RecordRemoval.h"
#include "records/TaskManager.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <set>

// Deleting tasks and projects.

namespace {

struct Selection
{
    std::vector<TaskPtr> repeating;
    std::vector<TaskPtr> plain;
    std::vector<ProjectPtr> projects;
};

/// One task after the other, until the user has had enough. False if so.
template <typename Delete>
bool deleteEach(const std::vector<TaskPtr> &tasks, const StepBlock &step, Delete deleteOne)
{
    for (const TaskPtr &task : tasks) {
        deleteOne(task);
        if (step && !step())
            return false;
    }
    return true;
}

/// Each object once, however often it was selected.
Selection sorted(const std::vector<ObjectPtr> &objects)
{
    Selection selection;
    std::set<ObjectPtr> known;
    for (const ObjectPtr &object : objects) {
        if (!known.insert(object).second)
            continue;
        if (const auto task = std::dynamic_pointer_cast<EntityTask>(object))
            (task->repeat().isEmpty() ? selection.plain : selection.repeating).push_back(task);
        else if (const auto project = std::dynamic_pointer_cast<EntityProject>(object))
            selection.projects.push_back(project);
    }
    return selection;
}

/// How far the deletion of repeating tasks reaches; nothing if the user gives it up.
std::optional<Span> askedSpan(const std::vector<TaskPtr> &tasks)
{
    const bool isOne = tasks.size() == 1;
    const int answer = Alert::run(
        {{},
         localized(isOne ? QStringLiteral("This is a repeating task.")
                         : QStringLiteral("This is a repeating tasks.")),
         RecordRemoval::inWords({tasks.begin(), tasks.end()}),
         {localized(isOne ? QStringLiteral("Delete This Task Only")
                          : QStringLiteral("Delete This Tasks Only")),
          localized(QStringLiteral("Delete All Future Tasks")), localized(QStringLiteral("Cancel"))},
         {0, 1}});
    if (answer == Alert::firstButton)
        return Span::ThisTask;
    return answer == Alert::secondButton ? std::optional(Span::FutureTasks) : std::nullopt;
}

bool deleteRepeating(RecordsTransaction &transaction, const std::vector<TaskPtr> &tasks, Span span,
                     const StepBlock &step)
{
    const QString what = span == Span::ThisTask ? QStringLiteral("delete This Task Only")
                                                : QStringLiteral("delete All Future Tasks");
    Log::line(QStringLiteral("Start ") + what);
    const bool isAll = deleteEach(tasks, step, [&transaction, span](const TaskPtr &task) {
        // Another one of its series may have taken it along.
        if (!task->isDeleted() && task->context())
            CalendarEvent::removeEventCalendarFromTask(transaction, task, span, true);
    });
    Log::line(QStringLiteral("End ") + what);
    return isAll;
}

void deletePlain(RecordsTransaction &transaction, const Selection &selection, const StepBlock &step)
{
    for (const ProjectPtr &project : selection.projects)
        mainContext().deleteObject(project);
    deleteEach(selection.plain, step,
               [&transaction](const TaskPtr &task) { TaskManager::deleteTask(transaction, task); });
}

/// What was asked for, repeating tasks only with a span; nothing more once the user has had enough.
void deleteSelection(const Selection &selection, std::optional<Span> span, const StepBlock &step)
{
    RecordsTransaction transaction(QStringLiteral("Delete"));
    if (!span || deleteRepeating(transaction, selection.repeating, *span, step))
        deletePlain(transaction, selection, step);
    DBWorker::tellOfFailure(transaction.commit());
}

} // namespace

void TaskManager::deleteTask(RecordsTransaction &transaction, const TaskPtr &task)
{
    CalendarEvent::removeEventCalendarFromTask(transaction, task, Span::ThisTask, true);
}

void TaskManager::deleteTasks(const std::vector<ObjectPtr> &tasks, const std::function<void()> &compliteBlock,
                              const StepBlock &step)
{
    const Selection selection = sorted(tasks);
    std::optional<Span> span;
    if (selection.repeating.empty()) {
        std::vector<ObjectPtr> going(selection.plain.begin(), selection.plain.end());
        going.insert(going.end(), selection.projects.begin(), selection.projects.end());
        if (!RecordRemoval::isWanted(going))
            return;
    } else if (CalendarEvent::isAccessChangeRepeatTaskWithMessage(true)) {
        span = askedSpan(selection.repeating);
        if (!span)
            return;
    }
    deleteSelection(selection, span, step);
    if (compliteBlock)
        compliteBlock();
}

#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/EventMatching.h"
#include "store/queries/ListDefinitions.h"
#include "store/state/CoreContext.h"

#include <map>

// Rows that lie on calendars.

namespace {

FetchRequest byStart(const Predicate &predicate)
{
    return EntityTask::fetchRequest()
        .where(predicate)
        .sortedBy({ascending("startDate")})
        .reportedAs(QStringLiteral("Can't get task"));
}

std::vector<TaskPtr> loaded(const TaskList &list)
{
    std::vector<TaskPtr> tasks;
    for (TaskPtr task : list) {
        if (task)
            tasks.push_back(std::move(task));
    }
    return tasks;
}

bool isEarlierStart(const TaskPtr &one, const TaskPtr &other)
{
    // Absent dates come first, as in a fetch.
    return one->startDate() < other->startDate();
}

} // namespace

TaskPtr DBWorker::getTaskByEvent(const EKEvent &event)
{
    const Predicate candidates =
        Predicate::format("(title = %@ || calendarID = %@) && status != %i", event.title,
                          event.calendarItemExternalIdentifier, TaskStatus::Done);
    return matching::rowOf(
        event, loaded(mainContext().fetch<EntityTask>(EntityTask::fetchRequest()
                                                          .where(candidates)
                                                          .sortedBy({ascending("dueDate")})
                                                          .reportedAs(QStringLiteral("Can't get task")))));
}

TaskList DBWorker::getAllTasksWithCalendarID(const std::optional<QString> &calendarID)
{
    const Predicate own = calendarID ? Predicate::format("calendarID == %@", *calendarID)
                                     : Predicate::format("calendarID != nil");
    return mainContext().fetch<EntityTask>(byStart(own && tasklists::visibleTasks()));
}

TaskList DBWorker::getAllTasksWithOnlyCalendarIDs()
{
    return mainContext().fetch<EntityTask>(byStart(Predicate::format("calendarID != nil")));
}

TaskList DBWorker::getAllTasksWithTypeCalendarIDIsNil()
{
    return mainContext().fetch<EntityTask>(byStart(Predicate::format("typeCalendarID != nil")));
}

TaskList DBWorker::getAllTasksWithCalendarTitle(const QString &title)
{
    return mainContext().fetch<EntityTask>(
        EntityTask::fetchRequest().where(Predicate::format("calendarTitle == %@", title)));
}

std::vector<std::vector<TaskPtr>>
DBWorker::getTasksGroupedCalendarIDfromTasks(const std::vector<TaskPtr> &tasks)
{
    std::map<QString, std::vector<TaskPtr>> series;
    std::vector<std::vector<TaskPtr>> groups;
    for (const TaskPtr &task : tasks) {
        if (!task->calendarID().isEmpty())
            series[task->calendarID()].push_back(task);
        else if (task->dueDate())
            groups.push_back({task});
    }
    for (auto &[identifier, rows] : series) {
        std::stable_sort(rows.begin(), rows.end(), isEarlierStart);
        groups.push_back(std::move(rows));
    }
    return groups;
}

std::vector<TaskPtr> DBWorker::getAllModifyTasksFromTasks(const std::vector<TaskPtr> &tasks)
{
    if (!CoreContext::current().hasAccessToCalendars())
        return tasks;
    std::vector<TaskPtr> writable = tasks;
    std::erase_if(writable,
                  [](const TaskPtr &task) { return !task->allowsContentModifications().value_or(false); });
    return writable;
}

ObjectList<EntityLocation> DBWorker::getLocationsByLatitude(double latitude, double andLongitude,
                                                            const QString &andTitle)
{
    return mainContext().fetch<EntityLocation>(EntityLocation::fetchRequest().where(Predicate::format(
        "latitude = %@ and longitude = %@ and title = %@", latitude, andLongitude, andTitle)));
}

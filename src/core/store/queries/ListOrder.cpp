#include "store/queries/ListOrder.h"

#include "records/dates/MVDate.h"
#include "store/queries/DBWorker.h"

namespace listorder {

Date EffectiveDates::endOfDay(Date date)
{
    if (!dayStart || date < *dayStart || date > dayEnd) {
        dayStart = MVDate::getStartOfDay(date);
        dayEnd = MVDate::getEndOfDay(date);
    }
    return dayEnd;
}

OptionalDate EffectiveDates::due(std::optional<TaskType> type, OptionalDate dueDate)
{
    return dueDate && !isMoment(type) ? endOfDay(*dueDate) : dueDate;
}

OptionalDate EffectiveDates::start(std::optional<TaskType> type, OptionalDate startDate, OptionalDate dueDate)
{
    if (type == TaskType::EmailCall)
        return dueDate;
    return startDate && !isMoment(type) ? endOfDay(*startDate) : startDate;
}

bool isAfterByDue(const Key &first, const Key &second)
{
    if (first.date && second.date)
        return *first.date > *second.date;
    return !first.date && !second.date && second.isSomeday && !first.isSomeday;
}

bool isAfterByStart(const Key &first, const Key &second)
{
    return first.date && second.date && *first.date > *second.date;
}

} // namespace listorder

namespace {

using listorder::Key;

/// Loaded tasks with their keys, sorted by a comparison of keys.
template <typename MakeDate, typename IsAfter>
std::vector<TaskPtr> sortedTasks(std::vector<TaskPtr> tasks, MakeDate makeDate, IsAfter isAfter)
{
    std::vector<std::pair<Key, TaskPtr>> keyed;
    keyed.reserve(tasks.size());
    for (TaskPtr &task : tasks)
        keyed.emplace_back(Key{0, makeDate(*task), task->dueSomeDay().value_or(false)}, std::move(task));
    listorder::sortOneSided(keyed, [isAfter](const auto &first, const auto &second) {
        return isAfter(first.first, second.first);
    });
    for (size_t place = 0; place < keyed.size(); ++place)
        tasks[place] = std::move(keyed[place].second);
    return tasks;
}

std::vector<TaskPtr> sortedByDue(std::vector<TaskPtr> tasks)
{
    listorder::EffectiveDates dates;
    const auto due = [&dates](const EntityTask &task) { return dates.due(task.type(), task.dueDate()); };
    return sortedTasks(std::move(tasks), due, listorder::isAfterByDue);
}

/// Whether one value comes before another, an absent one before all.
bool precedes(const Value &one, const Value &other)
{
    if (isAbsent(one) || isAbsent(other))
        return isAbsent(one) && !isAbsent(other);
    return std::is_lt(compareValues(one, other));
}

constexpr int dueDateColumn = EntityTask::column<"dueDate">();
constexpr int titleColumn = EntityTask::column<"title">();

bool isTitleBefore(const TaskPtr &one, const TaskPtr &other)
{
    return precedes(one->value(titleColumn), other->value(titleColumn));
}

} // namespace

std::vector<TaskPtr> DBWorker::sortToday(std::vector<TaskPtr> tasks)
{
    std::stable_sort(tasks.begin(), tasks.end(), [](const TaskPtr &one, const TaskPtr &other) {
        if (precedes(other->value(dueDateColumn), one->value(dueDateColumn)))
            return true;
        return !precedes(one->value(dueDateColumn), other->value(dueDateColumn)) && isTitleBefore(one, other);
    });
    return sortedByDue(std::move(tasks));
}

std::vector<TaskPtr> DBWorker::dueDateArrayComparator(std::vector<TaskPtr> tasks)
{
    return sortedByDue(std::move(tasks));
}

std::vector<TaskPtr> DBWorker::sortNotDone(std::vector<TaskPtr> tasks)
{
    return sortedByDue(std::move(tasks));
}

std::vector<TaskPtr> DBWorker::dueDateWithSomedayArrayComparator(std::vector<TaskPtr> tasks)
{
    return sortedByDue(std::move(tasks));
}

std::vector<TaskPtr> DBWorker::sortScheduled(std::vector<TaskPtr> tasks)
{
    std::stable_sort(tasks.begin(), tasks.end(), isTitleBefore);
    listorder::EffectiveDates dates;
    const auto start = [&dates](const EntityTask &task) {
        return dates.start(task.type(), task.startDate(), task.dueDate());
    };
    return sortedTasks(std::move(tasks), start, listorder::isAfterByStart);
}

std::vector<ProjectPtr> DBWorker::sortProjects(std::vector<ProjectPtr> projects)
{
    listorder::sortOneSided(projects, [](const ProjectPtr &first, const ProjectPtr &second) {
        const OptionalDate firstDue = first->dueDate();
        const OptionalDate secondDue = second->dueDate();
        return firstDue && secondDue && *firstDue > *secondDue;
    });
    return projects;
}

std::vector<ContactPtr> DBWorker::sortContacta(std::vector<ContactPtr> contacts)
{
    std::vector<std::pair<Value, ContactPtr>> named;
    for (ContactPtr &contact : contacts)
        named.emplace_back(Value(contact->fullName()), std::move(contact));
    std::stable_sort(named.begin(), named.end(), [](const auto &one, const auto &other) {
        return std::is_lt(compareValues(one.first, other.first));
    });
    for (size_t place = 0; place < named.size(); ++place)
        contacts[place] = std::move(named[place].second);
    return contacts;
}

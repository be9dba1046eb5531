#include "records/TaskPlacement.h"

#include "foundation/Calendar.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/Functional.h"
#include "records/dates/MVDate.h"
#include "store/queries/ListDefinitions.h"

using tasklists::Condition;

namespace {

QString words(const QString &text, const QString &value)
{
    return localized(text).arg(value);
}

QString dayOf(Date date)
{
    static const QString skeleton = QStringLiteral("yMMMd");
    return DateFormatter::string(date, DateFormatter::patternFromTemplate(skeleton));
}

TaskType typeOf(const EntityTask &task)
{
    return task.type().value_or(TaskType::ToDo);
}

bool isEmailCall(const EntityTask &task)
{
    return task.type() == TaskType::EmailCall;
}

bool isAfterToday(Date date)
{
    return date > MVDate::getEndOfDay(MVDate::date());
}

// Clauses about what a task lacks.

QString typeClause(const EntityTask &task)
{
    const QString type = Functional::typeStringFromType(task.type());
    return type.isEmpty() ? localized(QStringLiteral("it is of no known type"))
                          : words(QStringLiteral("it is of the type “%1”"), type);
}

bool hasKnownType(const EntityTask &task)
{
    return task.type() >= TaskType::ToDo && task.type() <= TaskType::EmailCall;
}

QString notByToday(const EntityTask &task)
{
    if (!hasKnownType(task))
        return typeClause(task);
    const OptionalDate date = isEmailCall(task) ? task.dueDate() : task.startDate();
    if (!date)
        return localized(isEmailCall(task) ? QStringLiteral("it has no due date")
                                           : QStringLiteral("it has no start date"));
    return words(isEmailCall(task) ? QStringLiteral("it is due on %1, after today")
                                   : QStringLiteral("it starts on %1, after today"),
                 dayOf(*date));
}

QString notAfterToday(const EntityTask &task)
{
    if (!hasKnownType(task))
        return typeClause(task);
    if (!isEmailCall(task) && !task.startDate())
        return localized(QStringLiteral("it has no start date"));
    if (!task.dueDate())
        return localized(QStringLiteral("it has no due date"));
    return isEmailCall(task)
               ? words(QStringLiteral("it is due on %1, not after today"), dayOf(*task.dueDate()))
               : words(QStringLiteral("it starts on %1, not after today"), dayOf(*task.startDate()));
}

QString unmet(Condition condition, const EntityTask &task)
{
    switch (condition) {
    case Condition::NotDone:
        return localized(QStringLiteral("it is done"));
    case Condition::Done:
        return localized(QStringLiteral("it is not done"));
    case Condition::HasDoneDate:
        return localized(QStringLiteral("the day on which it was done is not known"));
    case Condition::NotSomeday:
        return localized(task.dueSomeDay() ? QStringLiteral("it is due someday")
                                           : QStringLiteral("it is neither due on a day nor someday"));
    case Condition::Someday:
        return localized(QStringLiteral("it is not due someday"));
    case Condition::IsToDo:
    case Condition::IsToDoOrEmailCall:
        return typeClause(task);
    case Condition::HasNoStart:
        return words(QStringLiteral("it starts on %1"), dayOf(task.startDate().value_or(MVDate::date())));
    case Condition::ByToday:
        return notByToday(task);
    case Condition::AfterToday:
        return notAfterToday(task);
    case Condition::HasCategory:
        return localized(QStringLiteral("it has no category"));
    case Condition::IsVisible:
        return localized(QStringLiteral("its calendar is not shown"));
    }
    return {};
}

// Clauses about what a task has.

QString onToday(const EntityTask &task)
{
    const OptionalDate date = isEmailCall(task) ? task.dueDate() : task.startDate();
    if (!date)
        return {};
    if (Calendar::current().isDateInToday(*date))
        return localized(isEmailCall(task) ? QStringLiteral("it is due today")
                                           : QStringLiteral("it starts today"));
    return words(isEmailCall(task) ? QStringLiteral("it was due on %1 and is not done")
                                   : QStringLiteral("it started on %1 and is not done"),
                 dayOf(*date));
}

QString onScheduled(const EntityTask &task)
{
    return notByToday(task);
}

QString onCategories(const EntityTask &task)
{
    const CategoryPtr category = task.category();
    return words(QStringLiteral("it is not done and has the category “%1”"),
                 category ? Categories::shownTitle(category) : QString());
}

QString onDelegated(const EntityTask &task)
{
    const ContactPtr contact = task.delegateToUser();
    return contact ? words(QStringLiteral("it is not done and delegated to %1"), contact->fullName())
                   : localized(QStringLiteral("it is not done and stands with those delegated to nobody"));
}

QString onDone(const EntityTask &task)
{
    const OptionalDate day = task.expirationDate();
    return day ? words(QStringLiteral("it was done on %1"), dayOf(*day)) : QString();
}

} // namespace

TaskPlacement::TaskPlacement(TaskPtr placedTask)
    : task(std::move(placedTask))
{}

ListType TaskPlacement::searchList(const EntityTask &task)
{
    const bool isToDo = typeOf(task) == TaskType::ToDo;
    const bool hasSpan = isToDo || typeOf(task) == TaskType::Appointment;
    const OptionalDate start = task.startDate();
    const OptionalDate due = task.dueDate();
    if (task.status() == TaskStatus::Done)
        return ListType::Done;
    if (task.dueSomeDay().value_or(false))
        return ListType::Someday;
    if (isToDo && !start)
        return ListType::Inbox;
    if ((hasSpan && start && !isAfterToday(*start)) || (isEmailCall(task) && due && !isAfterToday(*due)))
        return ListType::Today;
    if (hasSpan ? start && due : isEmailCall(task) && due)
        return ListType::Scheduled;
    return ListType::NotDone;
}

QString TaskPlacement::titleOf(ListType list)
{
    switch (list) {
    case ListType::Inbox:
        return localized(QStringLiteral("Inbox"));
    case ListType::Today:
        return localized(QStringLiteral("Today"));
    case ListType::Scheduled:
        return localized(QStringLiteral("Scheduled"));
    case ListType::Someday:
        return localized(QStringLiteral("Someday"));
    case ListType::Categories:
        return localized(QStringLiteral("Categories"));
    case ListType::Delegated:
        return localized(QStringLiteral("Delegated"));
    case ListType::NotDone:
        return localized(QStringLiteral("Not Done"));
    case ListType::Done:
        return localized(QStringLiteral("Done"));
    case ListType::Home:
        return localized(QStringLiteral("Home"));
    case ListType::ProjectDetail:
        break;
    }
    return localized(QStringLiteral("Project"));
}

bool TaskPlacement::isOn(ListType list, const FilterEntry *filter) const
{
    return reasonOff(list, filter).isEmpty();
}

QString TaskPlacement::reasonOff(ListType list, const FilterEntry *filter) const
{
    std::optional<Condition> failing;
    for (const tasklists::Requirement &requirement : tasklists::requirements(list)) {
        // That nothing is known of "someday" says less than any other condition.
        const bool isVague = requirement.condition == Condition::NotSomeday && !task->dueSomeDay();
        if (requirement.predicate.evaluate(*task))
            continue;
        failing = requirement.condition;
        if (!isVague)
            return unmet(requirement.condition, *task);
    }
    if (failing)
        return unmet(*failing, *task);
    return filter ? filterReasonOff(*filter) : QString();
}

/// A filter is taken apart into its criteria, so that the one that leaves the task out is known by its name.
QString TaskPlacement::filterReasonOff(const FilterEntry &filter) const
{
    const QString array = QStringLiteral("Array");
    FilterEntry single = filter;
    for (const QVariant &criterion : filter.value(array).toList()) {
        single.insert(array, QVariantList{criterion});
        for (const Predicate &predicate : DBWorker::predicateTasks(&single)) {
            if (!predicate.evaluate(*task))
                return words(QStringLiteral("the filter of the list leaves it out by “%1”"),
                             localized(criterion.toMap().value(QStringLiteral("Key")).toString()));
        }
    }
    return {};
}

QString TaskPlacement::reasonOn(ListType list) const
{
    switch (list) {
    case ListType::Inbox:
        return localized(QStringLiteral("it is a ToDo without a start date and not done"));
    case ListType::Today:
        return onToday(*task);
    case ListType::Scheduled:
        return onScheduled(*task);
    case ListType::Someday:
        return localized(QStringLiteral("it is due someday, on no certain day"));
    case ListType::Categories:
        return onCategories(*task);
    case ListType::Delegated:
        return onDelegated(*task);
    case ListType::Done:
        return onDone(*task);
    default:
        return localized(QStringLiteral("it is not done"));
    }
}

std::optional<ListType> TaskPlacement::home() const
{
    for (const ListType list : {searchList(*task), ListType::Inbox, ListType::Today, ListType::Scheduled,
                                ListType::Someday, ListType::NotDone, ListType::Done}) {
        if (isOn(list))
            return list;
    }
    return std::nullopt;
}

/// Without its full stop, so that both sentences close alike.
QString TaskPlacement::whereItIs() const
{
    if (const auto list = home())
        return localized(QStringLiteral("“%1” is on the list “%2”: %3"))
            .arg(task->title(), titleOf(*list), reasonOn(*list));
    const bool isDone = task->status() == TaskStatus::Done;
    return localized(QStringLiteral("“%1” is on no list: %2"))
        .arg(task->title(), reasonOff(isDone ? ListType::Done : ListType::NotDone));
}

QString TaskPlacement::explanation(std::optional<ListType> shown, const FilterEntry *filter) const
{
    const QString here = QStringLiteral("“%1” is on the list “%2”: %3");
    if (!shown)
        return whereItIs() + u'.';
    const QString off = reasonOff(*shown, filter);
    if (off.isEmpty())
        return localized(here).arg(task->title(), titleOf(*shown), reasonOn(*shown)) + u'.';
    if (home() == *shown || !home())
        return localized(QStringLiteral("“%1” is not on the list “%2”: %3"))
                   .arg(task->title(), titleOf(*shown), off) +
               u'.';
    return whereItIs() + QStringLiteral(". ") +
           localized(QStringLiteral("It is not on the list “%1”: %2")).arg(titleOf(*shown), off) + u'.';
}

#include "records/TaskRowContent.h"

#include "foundation/Localization.h"
#include "records/dates/MVDate.h"
#include "store/entities/Entities.h"

namespace {

bool isOfType(const EntityTask &task, TaskType type)
{
    return task.type() == type;
}

bool isLate(const EntityTask &task, ListType list)
{
    const OptionalDate due = task.dueDate();
    if (list == ListType::Done || !due)
        return false;
    const Date now = MVDate::date();
    return *due < (isMoment(task.type()) ? now : MVDate::getStartOfDay(now));
}

QString label(OptionalDate date, bool considerTime, bool inOrderToStartDate, bool isEmailCall)
{
    return MVDate::getLabelText(date, considerTime, inOrderToStartDate, isEmailCall);
}

QString labelFor(const EntityTask &task, ListType list)
{
    if (task.dueSomeDay().value_or(false))
        return localized(QStringLiteral("Due Someday"));
    if (isOfType(task, TaskType::EmailCall))
        return label(task.dueDate(), true, false, true);
    const bool hasTime = isOfType(task, TaskType::Appointment);
    if (list == ListType::Scheduled)
        return label(task.startDate(), hasTime, true, false);
    return label(task.dueDate(), hasTime, false, false);
}

} // namespace

TaskRowContent TaskRowContent::of(const EntityTask &task, ListType list)
{
    TaskRowContent content;
    content.title = task.title();
    content.dateLabel = labelFor(task, list);
    content.isOverdue = isLate(task, list);
    // A task that never met a calendar has no such mark and can be changed.
    content.hasCheckBox = task.allowsContentModifications().value_or(true);
    content.isChecked = task.status() == TaskStatus::Done;
    content.priority = content.hasCheckBox ? task.priority().value_or(Priority::None) : Priority::None;
    if (list == ListType::ProjectDetail && task.project())
        content.project = task.project()->title();
    return content;
}

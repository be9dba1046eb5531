#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/Functional.h"
#include "records/ProjectManager.h"
#include "records/TaskFormState.h"

// Which rows of a task's form are shown, and what they say.

using namespace Qt::Literals::StringLiterals;

std::vector<TaskType> TaskFormState::types() const
{
    std::vector<TaskType> types = {TaskType::Appointment, TaskType::EmailCall};
    if (mayBeToDo)
        types.insert(types.begin(), TaskType::ToDo);
    return types;
}

bool TaskFormState::isRowShown(TaskFormRow row) const
{
    switch (row) {
    case TaskFormRow::StartDate:
        return !task.isEmailCall() && !isSomeday();
    case TaskFormRow::Repeat:
        return calendarAccess && baseDate();
    case TaskFormRow::EndRepeat:
        return !task.repeat.isEmpty();
    case TaskFormRow::Alert:
        return !isSomeday() && (baseDate() || task.alert);
    case TaskFormRow::SecondAlert:
        return !isSomeday() && task.alert;
    default:
        return true;
    }
}

bool TaskFormState::isRowShownInPreview(TaskFormRow row) const
{
    return isRowShown(row) && hasValue(row);
}

bool TaskFormState::hasValue(TaskFormRow row) const
{
    return row == TaskFormRow::Title || !previewText(row).isEmpty();
}

QString TaskFormState::label(TaskFormRow row) const
{
    switch (row) {
    case TaskFormRow::Title:
        return {};
    case TaskFormRow::Calendar:
        return localized(u"Calendar"_s);
    case TaskFormRow::Type:
        return localized(u"Type"_s);
    case TaskFormRow::Category:
        return localized(u"Category"_s);
    case TaskFormRow::Status:
        return localized(u"Status"_s);
    case TaskFormRow::Priority:
        return localized(u"Priority"_s);
    case TaskFormRow::StartDate:
        return localized(u"Start Date"_s);
    case TaskFormRow::EndDate:
        return localized(task.isEmailCall() ? u"Start Date"_s : u"Due Date"_s);
    case TaskFormRow::Repeat:
        return localized(u"Repeat"_s);
    case TaskFormRow::EndRepeat:
        return localized(u"End Repeat"_s);
    case TaskFormRow::Alert:
        return localized(u"Alert"_s);
    case TaskFormRow::SecondAlert:
        return localized(u"Second Alert"_s);
    case TaskFormRow::Location:
        return localized(u"Location"_s);
    case TaskFormRow::Details:
        return localized(u"Details"_s);
    case TaskFormRow::Contacts:
        return localized(invited.hasAttendees ? u"Invitation from"_s : u"Delegate to user"_s);
    case TaskFormRow::Company:
        return localized(u"Company"_s);
    case TaskFormRow::Project:
        return localized(u"Project"_s);
    }
    return {};
}

QString TaskFormState::dateText(OptionalDate date, bool withTime) const
{
    using Style = DateFormatter::Style;
    return date ? DateFormatter::string(*date, Style::Medium, withTime ? Style::Short : Style::None)
                : QString();
}

QString TaskFormState::repeatText() const
{
    const RepeatPicker picker = repeatPicker();
    const auto preset = picker.presetOf(picker.occurrenceDate);
    if (preset == RepeatPicker::Never)
        return {};
    return preset == RepeatPicker::Custom ? picker.recurrenceRuleToTextForUser()
                                          : picker.presetTitles().at(preset);
}

QString TaskFormState::previewText(TaskFormRow row) const
{
    switch (row) {
    case TaskFormRow::Title:
        return task.title;
    case TaskFormRow::Calendar:
        return task.calendarTitle.isEmpty() ? QString() : localized(task.calendarTitle);
    case TaskFormRow::Type:
        return Functional::typeStringFromType(task.type.value_or(TaskType::ToDo));
    case TaskFormRow::Category:
        return task.category ? Categories::shownTitle(task.category) : QString();
    case TaskFormRow::Status:
        return task.statusString();
    case TaskFormRow::Priority:
        return task.priority.value_or(Priority::None) == Priority::None ? QString() : task.priorityString();
    case TaskFormRow::StartDate:
        return dateText(task.startDate, hasClock());
    case TaskFormRow::EndDate:
        return isSomeday() ? localized(u"Due Someday"_s) : dateText(task.dueDate, hasClock());
    case TaskFormRow::Repeat:
        return repeatText();
    case TaskFormRow::EndRepeat:
        return dateText(task.endRepeat, false);
    case TaskFormRow::Alert:
        return dateText(task.alert, true);
    case TaskFormRow::SecondAlert:
        return dateText(task.secondAlert, true);
    case TaskFormRow::Location:
        return task.location ? task.location->title() : QString();
    case TaskFormRow::Details:
        return task.details;
    case TaskFormRow::Contacts:
        if (invited.hasAttendees)
            return invited.organizerName();
        return task.delegateToUser ? task.delegateToUser->fullName() : QString();
    case TaskFormRow::Company:
        return task.company ? task.company->title() : QString();
    case TaskFormRow::Project:
        return task.project ? ProjectManager::shownTitle(*task.project) : QString();
    }
    return {};
}

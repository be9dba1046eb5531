#include "records/TaskFormState.h"

#include "calendarsync/CalendarEvent.h"
#include "records/Functional.h"
#include "records/TaskManager.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"

#include <QScopedValueRollback>

using namespace Qt::Literals::StringLiterals;
using PickerType = DatePickerState::Type;

TaskFormState::TaskFormState(const NewTaskRequest &request)
    : calendarAccess(CalendarEvent::hasAccesToCalendar())
    , mayBeToDo(request.showTodo)
{
    startEntityTaskValue(request);
}

TaskFormState::TaskFormState(const TaskPtr &storedTask)
    : task(storedTask)
    , invited(TaskInvitation::of(task))
    , calendarAccess(CalendarEvent::hasAccesToCalendar())
{}

void TaskFormState::startEntityTaskValue(const NewTaskRequest &request)
{
    if (const auto calendar = CalendarEvent::getDefaultAccessCalendar())
        task.typeCalendarID = CalendarEvent::identifierOfCalendar(*calendar);
    task.category = request.createWithCategory ? request.createWithCategory : EntityCategory::getCustom();
    task.delegateToUser = request.createWithContact;
    if (request.createWithContact)
        task.company = request.createWithCompany;
    task.type = static_cast<int>(request.type);
    task.status = static_cast<int>(TaskStatus::Open);
    task.priority = static_cast<int>(Priority::None);
    task.project = request.createWithProject;
    task.startDate = request.createWithStartDate;
    task.dueDate = request.createWithDueDate;
    if (request.typeTask == ListType::Someday)
        task.dueSomeDay = true;
}

void TaskFormState::note(TaskField field)
{
    // Alerts move while a save runs, and are shown all the same.
    if (savePause && field != TaskField::Alert)
        return;
    touched = true;
    if (fieldChanged)
        fieldChanged(field);
}

// Plain fields

void TaskFormState::setTitle(const QString &title)
{
    if (title == task.title)
        return;
    task.title = title;
    note(TaskField::Title);
}

void TaskFormState::setDetails(const QString &details)
{
    if (details == task.details)
        return;
    task.details = details;
    note(TaskField::Details);
}

void TaskFormState::setCalendar(const QString &typeCalendarID)
{
    task.typeCalendarID = typeCalendarID;
    note(TaskField::Calendar);
}

void TaskFormState::setCategory(const CategoryPtr &category)
{
    task.category = category;
    note(TaskField::Category);
}

void TaskFormState::setStatus(int status)
{
    task.expirationDate.reset();
    task.changeStatus(Functional::statusStringFromType(status), false);
    note(TaskField::Status);
}

void TaskFormState::setDone(bool done)
{
    setStatus(static_cast<int>(done ? TaskStatus::Done : TaskStatus::Open));
}

void TaskFormState::setPriority(int priority)
{
    task.priority = priority;
    note(TaskField::Priority);
}

void TaskFormState::setLocation(const std::shared_ptr<EntityLocation> &location)
{
    task.location = location;
    note(TaskField::Location);
}

void TaskFormState::setDelegate(const ContactPtr &contact)
{
    task.delegateToUser = contact;
    task.company = contact ? contact->company() : nullptr;
    note(TaskField::Delegate);
    note(TaskField::Company);
}

void TaskFormState::setCompany(const CompanyPtr &company)
{
    task.company = company;
    note(TaskField::Company);
}

bool TaskFormState::setProject(const ProjectPtr &project)
{
    const bool isRefused =
        project && TaskManager::incorrectTaskTimeMessageProjectStartDate(
                       project->startDate(), project->dueDate(), task.startDate, task.dueDate);
    if (!isRefused)
        task.project = project;
    note(TaskField::Project);
    return !isRefused;
}

void TaskFormState::setType(const QString &word)
{
    if (Functional::taskTypeFromString(word) == task.type)
        return;
    editDates([&] {
        task.secondAlert.reset();
        task.startDate.reset();
        task.dueDate.reset();
        task.alert.reset();
        task.changeType(word);
    });
    // No date is left on which these could hang, and only a ToDo can be due some day.
    dropRepeatAndAlerts();
    if (!task.isToDo())
        startDateChanged();
    note(TaskField::Type);
}

// Dates

/// Runs a change and lets each date that it changed have its effect on the other fields.
template <typename Edit>
void TaskFormState::editDates(Edit edit)
{
    const MVTask before = task;
    edit();
    if (task.startDate != before.startDate)
        startDateChanged();
    if (task.dueDate != before.dueDate)
        dueDateChanged();
    if (task.dueSomeDay != before.dueSomeDay)
        note(TaskField::DueSomeDay);
    if (task.alert != before.alert)
        note(TaskField::Alert);
    if (task.secondAlert != before.secondAlert)
        note(TaskField::SecondAlert);
    if (task.endRepeat != before.endRepeat)
        note(TaskField::EndRepeat);
}

void TaskFormState::dropRepeatAndAlerts()
{
    task.secondAlert.reset();
    task.alert.reset();
    task.repeat = u""_s;
    note(TaskField::Repeat);
}

void TaskFormState::startDateChanged()
{
    if (!task.startDate)
        dropRepeatAndAlerts();
    task.dueSomeDay = false;
    note(TaskField::StartDate);
    if (task.isAppointment() && task.startDate && !task.dueDate && dueDateWanted)
        dueDateWanted();
}

void TaskFormState::dueDateChanged()
{
    if (task.isEmailCall() && !task.dueDate)
        dropRepeatAndAlerts();
    note(TaskField::DueDate);
}

OptionalDate TaskFormState::dateOf(PickerType picker) const
{
    switch (picker) {
    case PickerType::StartDate:
        return task.startDate;
    case PickerType::DueDate:
        return task.dueDate;
    case PickerType::Alert:
        return task.alert;
    case PickerType::SecondAlert:
        return task.secondAlert;
    case PickerType::EndRepeat:
        return task.endRepeat;
    }
    return {};
}

void TaskFormState::clearDate(PickerType picker)
{
    editDates([&] {
        switch (picker) {
        case PickerType::StartDate:
            return task.startDate.reset();
        case PickerType::DueDate:
            task.dueSomeDay = false;
            return task.dueDate.reset();
        case PickerType::Alert:
            task.alert = std::exchange(task.secondAlert, std::nullopt);
            return;
        case PickerType::SecondAlert:
            return task.secondAlert.reset();
        case PickerType::EndRepeat:
            return task.endRepeat.reset();
        }
    });
}

/// The limits of the task's own dates are narrowed to those of its project, unless that leaves no date.
void TaskFormState::keepInsideProject(DatePickerState &picker) const
{
    const bool isOwnDate =
        picker.typePicker == PickerType::StartDate || picker.typePicker == PickerType::DueDate;
    if (!task.project || !isOwnDate)
        return;
    OptionalDate least = picker.minDate;
    OptionalDate most = picker.maxDate;
    if (const OptionalDate start = task.project->startDate())
        least = std::max(least.value_or(*start), MVDate::getStartOfDay(*start));
    if (const OptionalDate due = task.project->dueDate()) {
        const Date end = MTDates::endOfCurrentDay(*due);
        most = std::min(most.value_or(end), end);
    }
    if (least && most && *least > *most)
        return;
    picker.minDate = least;
    picker.maxDate = most;
}

DatePickerState TaskFormState::openPicker(PickerType picker)
{
    DatePickerState state(picker);
    task.datePickerMouseDown(state, true);
    if (state.showPopover) {
        task.datePickerWillShowPopover(state);
        keepInsideProject(state);
    }
    return state;
}

void TaskFormState::acceptDate(DatePickerState &picker, Date date)
{
    editDates([&] { task.datePickerClickButtonDone(picker, date); });
}

void TaskFormState::toggleCheck(DatePickerState &picker, bool isChecked)
{
    picker.isChecked = isChecked;
    editDates([&] { task.datePickerChangeStateCheck(picker); });
}

// Repetition

void TaskFormState::setRepeat(const QString &rule)
{
    task.repeat = rule;
    note(TaskField::Repeat);
}

void TaskFormState::setRepeatPreset(int index)
{
    RepeatPicker picker = repeatPicker();
    picker.updateRecurrenceRuleWithIndex(index, picker.occurrenceDate);
    setRepeat(picker.stringRule());
}

RepeatPicker TaskFormState::repeatPicker() const
{
    RepeatPicker picker;
    picker.occurrenceDate = task.startDate ? task.startDate : task.dueDate;
    if (!task.repeat.isEmpty())
        picker.setRepeatStringWithStr(task.isProgramRuleString() ? task.repeat : task.ruleForICalendar());
    return picker;
}

CustomRepeat TaskFormState::customRepeat() const
{
    const RepeatPicker picker = repeatPicker();
    return CustomRepeat(picker.rule, picker.occurrenceDate, task.endRepeat, picker.language);
}

// Editing and saving

bool TaskFormState::canEdit() const
{
    if (task.status == static_cast<int>(TaskStatus::Done) || !allowsModifyEvent())
        return false;
    return task.repeat.isEmpty() || CalendarEvent::isAccessChangeRepeatTaskWithMessage(true);
}

/// What a task keeps of its calendar besides the name.
void TaskFormState::takeCalendar()
{
    const auto calendar = CalendarEvent::calendarOfIdentifier(task.typeCalendarID);
    if (!calendar)
        return;
    const EKColor color = CalendarEvent::getColorOfCalendar(*calendar);
    task.calendarTitle = calendar->title;
    task.colorCalendarR = static_cast<float>(color.red);
    task.colorCalendarG = static_cast<float>(color.green);
    task.colorCalendarB = static_cast<float>(color.blue);
    task.colorCalendarA = static_cast<float>(color.alpha);
}

bool TaskFormState::save()
{
    if (!canSave())
        return false;
    takeCalendar();
    const QScopedValueRollback pause(savePause, true);
    return TaskManager::saveTaskTemp(task, true);
}

TaskFormState::EditEnd TaskFormState::finishEdit()
{
    if (!task.isChangedTask())
        return EditEnd::Unchanged;
    if (!save())
        return EditEnd::Refused;
    return task.title.isEmpty() ? EditEnd::Removed : EditEnd::Saved;
}

void TaskFormState::changeStatusNow(bool done)
{
    {
        const QScopedValueRollback pause(savePause, true);
        task.changeStatusType(static_cast<unsigned>(done ? TaskStatus::Done : TaskStatus::Open), true);
    }
    note(TaskField::Status);
}

bool TaskFormState::isGone() const
{
    const TaskPtr &row = task.task();
    // Every stored task knows when it was made; a row that is not there any more knows nothing.
    return !row || row->isDeleted() || !row->context() || (row->title().isEmpty() && !row->creationDate());
}

void TaskFormState::rollback()
{
    task.rollback();
    invited = TaskInvitation::of(task);
    note(TaskField::Title);
}

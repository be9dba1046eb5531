#include "records/TaskFormState.h"

#include "calendarsync/CalendarEvent.h"
#include "contacts/VCardContact.h"
#include "contacts/VCardReader.h"
#include "records/Functional.h"
#include "records/TaskManager.h"

#include <QBuffer>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

TaskFormState::TaskFormState(const NewTaskRequest &request)
    : calendarAccess(CalendarEvent::hasAccesToCalendar())
    , mayBeToDo(request.showTodo)
{
    startEntityTaskValue(request);
}

TaskFormState::TaskFormState(const TaskPtr &storedTask)
    : task(storedTask)
    , base(storedTask)
    , calendarAccess(CalendarEvent::hasAccesToCalendar())
{}

TaskFormState::TaskFormState(const TaskDraft &draft)
    : task(draft.edited)
    , calendarAccess(CalendarEvent::hasAccesToCalendar())
    , touched(true)
{
    task.detachFromEvent();
    // What was typed for one occurrence is no second series.
    const bool isOfSeries = !draft.base.repeat.isEmpty() && draft.edited.repeat == draft.base.repeat;
    if (isOfSeries) {
        task.repeat.clear();
        task.endRepeat.reset();
    }
}

void TaskFormState::startEntityTaskValue(const NewTaskRequest &request)
{
    if (const auto calendar = CalendarEvent::getDefaultAccessCalendar())
        task.typeCalendarID = CalendarEvent::identifierOfCalendar(*calendar);
    task.category = request.createWithCategory ? request.createWithCategory : EntityCategory::getCustom();
    task.delegateToUser = request.createWithContact;
    task.company = request.createWithCompany;
    task.type = request.type;
    task.status = TaskStatus::Open;
    task.priority = Priority::None;
    task.project = request.createWithProject;
    task.startDate = request.createWithStartDate;
    task.dueDate = request.createWithDueDate;
    // Said either way: a task that says nothing is on no list of days.
    task.dueSomeDay = request.typeTask == ListType::Someday;
}

void TaskFormState::note()
{
    if (!savePause)
        tell();
}

/// Alerts move while a save runs, and are shown all the same.
void TaskFormState::tell()
{
    touched = true;
    if (changed)
        changed();
}

// Plain fields

void TaskFormState::setTitle(const QString &title)
{
    if (title == task.title)
        return;
    task.title = title;
    note();
}

void TaskFormState::setDetails(const QString &details)
{
    if (details == task.details)
        return;
    task.details = details;
    note();
}

void TaskFormState::setCalendar(const QString &typeCalendarID)
{
    task.typeCalendarID = typeCalendarID;
    note();
}

void TaskFormState::setCategory(const CategoryPtr &category)
{
    task.category = category;
    note();
}

void TaskFormState::setStatus(TaskStatus status)
{
    task.expirationDate.reset();
    task.changeStatus(Functional::statusStringFromType(status), false);
    note();
}

void TaskFormState::setDone(bool done)
{
    setStatus(done ? TaskStatus::Done : TaskStatus::Open);
}

void TaskFormState::setPriority(Priority priority)
{
    task.priority = priority;
    note();
}

void TaskFormState::setLocation(const std::shared_ptr<EntityLocation> &location)
{
    task.location = location;
    note();
}

void TaskFormState::setDelegate(const ContactPtr &contact)
{
    task.delegateToUser = contact;
    task.company = contact ? contact->company() : nullptr;
    note();
}

void TaskFormState::setCompany(const CompanyPtr &company)
{
    task.company = company;
    note();
}

bool TaskFormState::setProject(const ProjectPtr &project)
{
    const bool isRefused =
        project && TaskManager::incorrectTaskTimeMessageProjectStartDate(
                       project->startDate(), project->dueDate(), task.startDate, task.dueDate);
    if (!isRefused)
        task.project = project;
    note();
    return !isRefused;
}

// Repetition

void TaskFormState::setRepeat(const QString &rule)
{
    task.repeat = rule;
    note();
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

void TaskFormState::findInvitation()
{
    invited = TaskInvitation::of(task);
    if (invited.mailOfStranger.isEmpty() || invited.mailOfStranger != askedMail)
        knownOrganizer.reset();
    if (knownOrganizer)
        invited.recognize(*knownOrganizer);
    note();
    if (!invited.mailOfStranger.isEmpty() && invited.mailOfStranger != askedMail)
        askAddressBooks();
}

/// The user may know in an address book of the desktop who invites.
void TaskFormState::askAddressBooks()
{
    askedMail = invited.mailOfStranger;
    addressBooks = std::make_unique<CNContactStore>();
    addressBooks->cardsWithMail(askedMail, [this, mail = askedMail](const Result<QByteArray> &answer) {
        if (!answer || mail != invited.mailOfStranger)
            return;
        QByteArray text = answer.value();
        QBuffer device(&text);
        device.open(QIODevice::ReadOnly);
        VCardReader reader(device);
        const auto hasMail = [&mail](const auto &one) {
            return one.value.compare(mail, Qt::CaseInsensitive) == 0;
        };
        while (const auto card = reader.next()) {
            const CNContact contact = contactFrom(*card, CardImage::Leave);
            if (!std::ranges::any_of(contact.emailAddresses, hasMail))
                continue;
            knownOrganizer = contact;
            if (invited.recognize(contact))
                note();
            return;
        }
    });
}

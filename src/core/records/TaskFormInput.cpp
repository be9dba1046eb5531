#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/Functional.h"
#include "records/ProjectManager.h"
#include "records/TaskFormChoices.h"
#include "records/TaskFormState.h"

// The rows of a task's form: which there are, what they offer, and what is put into them.

using namespace Qt::Literals::StringLiterals;
using Editor = FormRow::Editor;
using Picker = DatePickerState::Type;

static FormRow plainRow(TaskFormRow row, Editor editor, const QString &name, const QString &controlName)
{
    return {.id = static_cast<int>(row), .editor = editor, .name = name, .controlName = controlName};
}

static FormRow choiceRow(TaskFormRow id, const QString &name, const QString &shortName = {})
{
    FormRow made =
        plainRow(id, Editor::Choice, name, u"popUpButton"_s + (shortName.isEmpty() ? name : shortName));
    made.isClearable = id == TaskFormRow::Contacts || id == TaskFormRow::Company ||
                       id == TaskFormRow::Project || (id == TaskFormRow::Category && !DBWorker::isSample());
    return made;
}

static FormRow dateRow(TaskFormRow id, const QString &name, const QString &shortName, Picker picker)
{
    FormRow made = plainRow(id, Editor::Date, name, u"datePicker"_s + shortName);
    made.picker = picker;
    return made;
}

std::vector<FormRow> TaskFormState::rows() const
{
    using Row = TaskFormRow;
    FormRow title = plainRow(Row::Title, Editor::Title, u"Title"_s, u"textFieldTitle"_s);
    title.height = 50;
    title.placeholder = localized(u"What is to be done?"_s);
    FormRow priority = choiceRow(Row::Priority, u"Priority"_s);
    priority.height = 55;
    FormRow details = plainRow(Row::Details, Editor::Text, u"Details"_s, u"textFieldDetails"_s);
    details.height = 64;
    details.isClearable = true;
    details.placeholder = localized(u"Notes, links, whatever helps"_s);
    return {title,
            choiceRow(Row::Calendar, u"Calendar"_s),
            choiceRow(Row::Type, u"Type"_s),
            choiceRow(Row::Category, u"Category"_s),
            choiceRow(Row::Status, u"Status"_s),
            priority,
            dateRow(Row::StartDate, u"StartDate"_s, u"StartDate"_s, Picker::StartDate),
            dateRow(Row::EndDate, u"EndDate"_s, u"DueDate"_s, Picker::DueDate),
            plainRow(Row::Repeat, Editor::Own, u"Repeat"_s, u"popUpButtonRepeat"_s),
            dateRow(Row::EndRepeat, u"EndRepeat"_s, u"EndRepeat"_s, Picker::EndRepeat),
            dateRow(Row::Alert, u"Alert"_s, u"Alert"_s, Picker::Alert),
            dateRow(Row::SecondAlert, u"SecondAlert"_s, u"SecondAlert"_s, Picker::SecondAlert),
            plainRow(Row::Location, Editor::Own, u"Location"_s, {}),
            details,
            choiceRow(Row::Contacts, u"Contacts"_s, u"Delegate"_s),
            choiceRow(Row::Company, u"Company"_s),
            choiceRow(Row::Project, u"Project"_s)};
}

FormMark TaskFormState::mark(int number) const
{
    const auto of = TaskFormRow(number);
    if (of == TaskFormRow::Category && task.category)
        return task.category;
    if (of == TaskFormRow::Priority && task.priority)
        return *task.priority;
    return {};
}

bool TaskFormState::isGiven(int number) const
{
    return TaskFormRow(number) == TaskFormRow::Contacts && invited.hasAttendees;
}

std::optional<bool> TaskFormState::isTicked() const
{
    return allowsModifyEvent() ? std::optional(task.status == TaskStatus::Done) : std::nullopt;
}

void TaskFormState::setText(int number, const QString &text)
{
    TaskFormRow(number) == TaskFormRow::Title ? setTitle(text) : setDetails(text);
}

QString TaskFormState::formerText(int number) const
{
    return TaskFormRow(number) == TaskFormRow::Title ? base.title : base.details;
}

QString TaskFormState::reasonNotToSave() const
{
    return localized(u"A task needs a title"_s);
}

// Choices

void TaskFormState::offer(TaskFormRow of, FormChoice choice, Value value, std::vector<FormChoice> &choices)
{
    choices.push_back(std::move(choice));
    offered[of].push_back(std::move(value));
}

/// Records below "None".
template <typename Pointer>
void TaskFormState::offerRecords(TaskFormRow of, const std::vector<Pointer> &records,
                                 QString (*titleOf)(const Pointer &), std::vector<FormChoice> &choices)
{
    offer(of, {localized(u"None"_s)}, ObjectPtr(), choices);
    for (const Pointer &record : records)
        offer(of, {titleOf(record)}, ObjectPtr(record), choices);
}

/// The titles of accounts stand between them.
void TaskFormState::offerCalendars(std::vector<FormChoice> &choices)
{
    constexpr auto of = TaskFormRow::Calendar;
    const FormChoice header{.text = TaskFormChoices::calendarsHeader(calendarAccess), .isHeading = true};
    offer(of, header, QString(), choices);
    if (!calendarAccess)
        return;
    for (const CalendarChooserRow &one : TaskFormChoices::calendars()) {
        if (const auto *account = std::get_if<QString>(&one)) {
            offer(of, {.text = *account, .isHeading = true}, {}, choices);
            continue;
        }
        const auto &calendar = std::get<EKCalendar>(one);
        offer(of,
              {.text = CalendarEvent::localizedTitleCalendar(calendar),
               .mark = CalendarEvent::getColorOfCalendar(calendar)},
              CalendarEvent::identifierOfCalendar(calendar), choices);
    }
}

std::vector<FormChoice> TaskFormState::choices(int number)
{
    const auto of = TaskFormRow(number);
    std::vector<FormChoice> choices;
    offered[of].clear();
    switch (of) {
    case TaskFormRow::Calendar:
        offerCalendars(choices);
        break;
    case TaskFormRow::Type:
        for (const TaskType type : types())
            offer(of, {Functional::typeStringFromType(type)}, static_cast<int>(type), choices);
        break;
    case TaskFormRow::Category:
        for (const CategoryPtr &category : TaskFormChoices::categories()) {
            if (category)
                offer(of, {Categories::shownTitle(category), category}, ObjectPtr(category), choices);
            else
                offer(of, {localized(u"None"_s)}, ObjectPtr(), choices);
        }
        break;
    case TaskFormRow::Status:
        for (const TaskStatus status : allTaskStatuses)
            offer(of, {Functional::statusStringFromType(status)}, static_cast<int>(status), choices);
        break;
    case TaskFormRow::Priority:
        for (const Priority one : {Priority::None, Priority::High, Priority::Medium, Priority::Low})
            offer(of, {Functional::priorityStringFromType(one), one}, static_cast<int>(one), choices);
        break;
    case TaskFormRow::Contacts:
        // There may be very many, of whom one is loaded at most.
        offer(of, {localized(u"None"_s)}, RowId(0), choices);
        for (ContactRows::Named &contact : TaskFormChoices::contactNames())
            offer(of, {std::move(contact.fullName)}, contact.row, choices);
        break;
    case TaskFormRow::Company:
        offerRecords<CompanyPtr>(
            of, TaskFormChoices::companies(), [](const CompanyPtr &company) { return company->title(); },
            choices);
        break;
    case TaskFormRow::Project:
        offerRecords<ProjectPtr>(
            of, TaskFormChoices::projects(task.project),
            [](const ProjectPtr &project) { return ProjectManager::shownTitle(*project); }, choices);
        break;
    default:
        break;
    }
    return choices;
}

TaskFormState::Value TaskFormState::valueOf(TaskFormRow of) const
{
    switch (of) {
    case TaskFormRow::Calendar:
        return task.typeCalendarID.isEmpty() ? QString() : task.typeCalendarID;
    case TaskFormRow::Type:
        return static_cast<int>(task.type.value_or(TaskType::ToDo));
    case TaskFormRow::Category:
        return ObjectPtr(task.category);
    case TaskFormRow::Status:
        return static_cast<int>(task.status.value_or(TaskStatus::Open));
    case TaskFormRow::Priority:
        return static_cast<int>(task.priority.value_or(Priority::None));
    case TaskFormRow::Contacts:
        return task.delegateToUser ? task.delegateToUser->rowId() : RowId(0);
    case TaskFormRow::Company:
        return ObjectPtr(task.company);
    case TaskFormRow::Project:
        return ObjectPtr(task.project);
    default:
        return {};
    }
}

int TaskFormState::chosen(int number) const
{
    const auto of = TaskFormRow(number);
    const auto values = offered.find(of);
    if (values == offered.end())
        return -1;
    const auto found = std::ranges::find(values->second, valueOf(of));
    if (found != values->second.end())
        return static_cast<int>(found - values->second.begin());
    // Of these the first line says that there is none.
    return of == TaskFormRow::Calendar || of == TaskFormRow::Category ? 0 : -1;
}

bool TaskFormState::isEnabled(int number) const
{
    // Without calendars there is the sentence about them.
    const auto values = offered.find(TaskFormRow(number));
    return TaskFormRow(number) != TaskFormRow::Calendar || values == offered.end() ||
           values->second.size() > 1;
}

void TaskFormState::choose(int number, int place)
{
    const auto of = TaskFormRow(number);
    const Value value = offered.at(of).at(static_cast<std::size_t>(place));
    const auto *record = std::get_if<ObjectPtr>(&value);
    switch (of) {
    case TaskFormRow::Calendar:
        return setCalendar(std::get<QString>(value));
    case TaskFormRow::Type:
        return setType(Functional::typeStringFromType(TaskType(std::get<int>(value))));
    case TaskFormRow::Category:
        return setCategory(std::static_pointer_cast<EntityCategory>(*record));
    case TaskFormRow::Status:
        return setStatus(TaskStatus(std::get<int>(value)));
    case TaskFormRow::Priority:
        return setPriority(Priority(std::get<int>(value)));
    case TaskFormRow::Contacts:
        return setDelegate(TaskFormChoices::contactOfRow(std::get<RowId>(value)));
    case TaskFormRow::Company:
        return setCompany(std::static_pointer_cast<EntityCompany>(*record));
    case TaskFormRow::Project:
        setProject(std::static_pointer_cast<EntityProject>(*record));
        return;
    default:
        return;
    }
}

/// Who has invited to a meeting need not be a contact.
ObjectPtr TaskFormState::chosenRecord(int number) const
{
    switch (TaskFormRow(number)) {
    case TaskFormRow::Contacts:
        return invited.hasAttendees ? nullptr : task.delegateToUser;
    case TaskFormRow::Company:
        return task.company;
    case TaskFormRow::Project:
        return task.project;
    default:
        return nullptr;
    }
}

std::string_view TaskFormState::entityOfChoices(int number) const
{
    switch (TaskFormRow(number)) {
    case TaskFormRow::Category:
        return EntityCategory::entityName;
    case TaskFormRow::Contacts:
        return EntityContacts::entityName;
    case TaskFormRow::Company:
        return EntityCompany::entityName;
    case TaskFormRow::Project:
        return EntityProject::entityName;
    default:
        return {};
    }
}

// Dates

static Picker pickerOf(TaskFormRow of)
{
    switch (of) {
    case TaskFormRow::EndDate:
        return Picker::DueDate;
    case TaskFormRow::EndRepeat:
        return Picker::EndRepeat;
    case TaskFormRow::Alert:
        return Picker::Alert;
    case TaskFormRow::SecondAlert:
        return Picker::SecondAlert;
    default:
        return Picker::StartDate;
    }
}

FormDate TaskFormState::date(int number) const
{
    const Picker picker = pickerOf(TaskFormRow(number));
    const bool isAlert = picker == Picker::Alert || picker == Picker::SecondAlert;
    const bool isOwnDate = picker == Picker::StartDate || picker == Picker::DueDate;
    return {.date = dateOf(picker),
            .hasTime = isAlert || (isOwnDate && hasClock()),
            .isSomeday = isOwnDate && isSomeday()};
}

DatePickerState TaskFormState::openPicker(int number)
{
    return openPicker(pickerOf(TaskFormRow(number)));
}

void TaskFormState::clear(int number)
{
    switch (const auto of = TaskFormRow(number)) {
    case TaskFormRow::Category:
        return setCategory(nullptr);
    case TaskFormRow::Details:
        return setDetails({});
    case TaskFormRow::Contacts:
        return setDelegate(nullptr);
    case TaskFormRow::Company:
        return setCompany(nullptr);
    case TaskFormRow::Project:
        setProject(nullptr);
        return;
    default:
        return clearDate(pickerOf(of));
    }
}

#include "records/ProjectForm.h"

#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/Functional.h"
#include "records/ProjectManager.h"
#include "records/TaskFormChoices.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <QLocale>

#include <algorithm>
#include <set>

using namespace Qt::Literals::StringLiterals;
using Picker = DatePickerState::Type;

constexpr std::array offeredPriorities = {Priority::None, Priority::High, Priority::Medium, Priority::Low};

ProjectForm::ProjectForm()
    : values(MVProject::startEntityProjectValue())
    , base(values)
{}

ProjectForm::ProjectForm(const ProjectPtr &project)
    : values(project)
    , base(values)
{}

// Rows

std::vector<FormRow> ProjectForm::rows() const
{
    using Editor = FormRow::Editor;
    return {
        {.id = Title,
         .editor = Editor::Title,
         .name = u"Title"_s,
         .controlName = u"textFieldTitle"_s,
         .height = 50,
         .placeholder = localized(u"What is to be reached?"_s)},
        {.id = Category,
         .editor = Editor::Choice,
         .name = u"Category"_s,
         .controlName = u"popUpButtonCategory"_s,
         .isClearable = !DBWorker::isSample()},
        {.id = StatusRow,
         .editor = Editor::Choice,
         .name = u"Status"_s,
         .controlName = u"popUpButtonStatus"_s},
        {.id = PriorityRow,
         .editor = Editor::Choice,
         .name = u"Priority"_s,
         .controlName = u"popUpButtonPriority"_s,
         .height = 55},
        {.id = StartDate,
         .editor = Editor::Date,
         .name = u"StartDate"_s,
         .controlName = u"datePickerStartDate"_s,
         .picker = Picker::StartDate},
        {.id = DueDate,
         .editor = Editor::Date,
         .name = u"EndDate"_s,
         .controlName = u"datePickerDueDate"_s,
         .picker = Picker::DueDate},
        {.id = Details,
         .editor = Editor::Text,
         .name = u"Details"_s,
         .controlName = u"textFieldDetails"_s,
         .height = 64,
         .isClearable = true,
         .placeholder = localized(u"Notes, links, whatever helps"_s)},
        {.id = Contacts,
         .editor = Editor::Links,
         .name = u"Contacts"_s,
         .controlName = u"popUpButtonContacts"_s,
         .placeholder = localized(u"Add Contact"_s)},
    };
}

QString ProjectForm::label(int row) const
{
    switch (row) {
    case Category:
        return localized(u"Category"_s);
    case StatusRow:
        return localized(u"Status"_s);
    case PriorityRow:
        return localized(u"Priority"_s);
    case StartDate:
        return localized(u"Start Date"_s);
    case DueDate:
        return localized(u"Due Date"_s);
    case Details:
        return localized(u"Details"_s);
    case Contacts:
        return localized(u"Contacts"_s);
    default:
        return {};
    }
}

static QString dayInWords(OptionalDate date)
{
    using Style = DateFormatter::Style;
    return date ? DateFormatter::string(*date, Style::Medium, Style::None) : QString();
}

QString ProjectForm::textOf(const MVProject &project, int row)
{
    switch (row) {
    case Title:
        // The title for want of a better is shown in the words of the user.
        return project.project() && project.project()->title() == project.title
                   ? ProjectManager::shownTitle(*project.project())
                   : project.title;
    case Category:
        return project.category ? Categories::shownTitle(project.category) : QString();
    case StatusRow:
        return Functional::statusStringFromType(project.status.value_or(TaskStatus::Open));
    case PriorityRow:
        return project.priority.value_or(Priority::None) == Priority::None
                   ? QString()
                   : Functional::priorityStringFromType(*project.priority);
    case StartDate:
        return dayInWords(project.startDate);
    case DueDate:
        return dayInWords(project.dueDate);
    case Details:
        return project.details;
    default:
        break;
    }
    QStringList names;
    for (const ContactPtr &contact : project.sortedContacts())
        names.append(contact->fullName());
    return names.join(u", "_s);
}

FormMark ProjectForm::mark(int row) const
{
    if (row == Category && values.category)
        return values.category;
    if (row == PriorityRow && values.priority)
        return *values.priority;
    return {};
}

void ProjectForm::edit(const std::function<void()> &change)
{
    change();
    touched = true;
    if (changed)
        changed();
}

void ProjectForm::setText(int row, const QString &newText)
{
    if (newText != text(row))
        edit([&] { (row == Title ? values.title : values.details) = newText; });
}

// Choices

std::vector<FormChoice> ProjectForm::choices(int row)
{
    std::vector<FormChoice> choices;
    std::vector<ObjectPtr> &records = offered[row];
    records.clear();
    if (row == StatusRow) {
        for (const TaskStatus status : allTaskStatuses)
            choices.push_back({Functional::statusStringFromType(status)});
    } else if (row == PriorityRow) {
        for (const Priority one : offeredPriorities)
            choices.push_back({Functional::priorityStringFromType(one), one});
    } else if (row == Category) {
        for (const CategoryPtr &category : TaskFormChoices::categories()) {
            records.push_back(category);
            if (category)
                choices.push_back({Categories::shownTitle(category), category});
            else
                choices.push_back({localized(u"None"_s)});
        }
    } else {
        std::set<RowId> linked;
        for (const ContactPtr &contact : values.delegateToUser)
            linked.insert(contact->rowId());
        offeredContacts.clear();
        for (ContactRows::Named &contact : TaskFormChoices::contactNames()) {
            if (linked.contains(contact.row))
                continue;
            offeredContacts.push_back(contact.row);
            choices.push_back({std::move(contact.fullName)});
        }
    }
    return choices;
}

int ProjectForm::chosen(int row) const
{
    if (row == StatusRow)
        return static_cast<int>(std::ranges::find(allTaskStatuses, values.status.value_or(TaskStatus::Open)) -
                                allTaskStatuses.begin());
    if (row == PriorityRow)
        return static_cast<int>(
            std::ranges::find(offeredPriorities, values.priority.value_or(Priority::None)) -
            offeredPriorities.begin());
    const auto records = offered.find(row);
    if (row != Category || records == offered.end())
        return -1;
    const auto found = std::ranges::find(records->second, ObjectPtr(values.category));
    return found == records->second.end() ? 0 : static_cast<int>(found - records->second.begin());
}

void ProjectForm::choose(int row, int place)
{
    const auto index = static_cast<std::size_t>(place);
    // They may have gone since they were offered.
    const ContactPtr contact =
        row == Contacts ? TaskFormChoices::contactOfRow(offeredContacts.at(index)) : nullptr;
    if (row == Contacts && !contact)
        return;
    edit([&] {
        if (row == StatusRow)
            values.changeStatus(Functional::statusStringFromType(allTaskStatuses.at(index)));
        else if (row == PriorityRow)
            values.priority = offeredPriorities.at(index);
        else if (row == Category)
            values.category = std::static_pointer_cast<EntityCategory>(offered.at(row).at(index));
        else
            values.delegateToUser.push_back(contact);
    });
}

std::string_view ProjectForm::entityOfChoices(int row) const
{
    if (row == Category)
        return EntityCategory::entityName;
    return row == Contacts ? EntityContacts::entityName : std::string_view();
}

std::vector<FormLink> ProjectForm::links(int) const
{
    std::vector<FormLink> linked;
    for (const ContactPtr &contact : values.sortedContacts())
        linked.push_back({contact, contact->fullName(), Portrait::of(*contact)});
    return linked;
}

void ProjectForm::unlink(int, const ObjectPtr &record)
{
    edit([&] { std::erase(values.delegateToUser, record); });
}

void ProjectForm::clear(int row)
{
    edit([&] {
        if (row == Category)
            values.category = nullptr;
        else if (row == StartDate)
            values.startDate.reset();
        else if (row == DueDate)
            values.dueDate.reset();
        else
            values.details.clear();
    });
}

// Dates

FormDate ProjectForm::date(int row) const
{
    return {.date = row == StartDate ? values.startDate : values.dueDate};
}

DatePickerState ProjectForm::openPicker(int row)
{
    DatePickerState state(row == StartDate ? Picker::StartDate : Picker::DueDate);
    values.datePickerMouseDown(state, true);
    values.datePickerWillShowPopover(state);
    return state;
}

void ProjectForm::acceptDate(int, DatePickerState &picker, Date date)
{
    edit([&] { values.datePickerClickButtonDone(picker, date); });
}

// Drafts

/// Records are named by their URI, since two may have the same name; dates by their seconds.
QString ProjectForm::keptOf(const MVProject &project, int row)
{
    const auto seconds = [](OptionalDate date) {
        return date ? QString::number(date->referenceSeconds(), 'g', QLocale::FloatingPointShortest)
                    : QString();
    };
    switch (row) {
    case Title:
        return project.title;
    case Category:
        return DBWorker::getIdFromObject(project.category);
    case StatusRow:
        return QString::number(static_cast<int>(project.status.value_or(TaskStatus::Open)));
    case PriorityRow:
        return QString::number(static_cast<int>(project.priority.value_or(Priority::None)));
    case StartDate:
        return seconds(project.startDate);
    case DueDate:
        return seconds(project.dueDate);
    case Details:
        return project.details;
    default:
        break;
    }
    QStringList uris;
    for (const ContactPtr &contact : project.sortedContacts())
        uris.append(DBWorker::getIdFromObject(contact));
    return uris.join(u' ');
}

template <typename Entity>
static std::shared_ptr<Entity> recordOf(const QString &uri)
{
    return std::dynamic_pointer_cast<Entity>(DBWorker::getObjectFromId(uri));
}

static std::vector<ContactPtr> contactsOf(const QString &uris)
{
    std::vector<ContactPtr> contacts;
    for (const QString &uri : uris.split(u' ', Qt::SkipEmptyParts)) {
        if (auto contact = recordOf<EntityContacts>(uri))
            contacts.push_back(std::move(contact));
    }
    return contacts;
}

void ProjectForm::resumeRowSince(int row, const QString &value, const QString &formerValue)
{
    const bool isMerged = row == Contacts && base.project() && !isGone();
    resumeRow(row, isMerged ? mergedUris(value, formerValue, keptOf(base, row)) : value);
}

void ProjectForm::resumeRow(int row, const QString &value)
{
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    const OptionalDate date = isNumber ? OptionalDate(Date::fromReferenceSeconds(number)) : std::nullopt;
    edit([&] {
        if (row == Title)
            values.title = value;
        else if (row == Details)
            values.details = value;
        else if (row == Category)
            values.category = recordOf<EntityCategory>(value);
        else if (row == StatusRow)
            values.changeStatus(Functional::statusStringFromType(TaskStatus(value.toInt())));
        else if (row == PriorityRow)
            values.priority = Functional::priorityTypeFromNumber(isNumber ? value.toInt() : -1);
        else if (row == StartDate)
            values.startDate = date;
        else if (row == DueDate)
            values.dueDate = date;
    });
    if (row == Contacts)
        edit([&] { values.delegateToUser = contactsOf(value); });
}

// The record

bool ProjectForm::differ(const MVProject &one, const MVProject &other) const
{
    return std::ranges::any_of(
        rows(), [&](const FormRow &row) { return keptOf(one, row.id) != keptOf(other, row.id); });
}

bool ProjectForm::isChanged()
{
    // Its row has the values of a save that could not be committed, and still waits for it.
    if (isUncommitted && mainContext().hasChanges())
        return true;
    followRow();
    if (isGone())
        return false;
    return differ(values, base);
}

bool ProjectForm::save()
{
    if (!canSave())
        return false;
    if (values.title != base.title)
        values.title = values.title.trimmed();
    // Tasks come and go beside the form.
    if (values.project())
        values.task = values.project()->task();
    for (const ObjectPtr &one : values.project() ? std::vector<ObjectPtr>() : belongingsLeft("task"))
        values.task.push_back(std::static_pointer_cast<EntityTask>(one));
    const bool isSaved = ProjectManager::saveProjectTemp(values);
    isNewRow = !isSaved && values.project() && (isNewRow || !base.project());
    isUncommitted = !isSaved && values.project() && !differ(values, MVProject(values.project()));
    if (isSaved)
        rollback();
    return isSaved;
}

void ProjectForm::giveUp()
{
    if (!isNewRow || isGone())
        return;
    mainContext().deleteObject(values.project());
    DBWorker::saveOrTell(DBWorker::Occasion::Program);
}

void ProjectForm::rollback()
{
    values = base = MVProject(values.project());
    if (changed)
        changed();
}

void ProjectForm::followRow()
{
    if (isGone())
        return;
    const MVProject present(values.project());
    bool hasFollowed = false;
    const auto follow = [&](auto MVProject::*field) {
        const bool isEdited = values.*field != base.*field;
        if (isEdited || values.*field == present.*field)
            return;
        values.*field = present.*field;
        hasFollowed = true;
    };
    follow(&MVProject::title);
    follow(&MVProject::details);
    follow(&MVProject::category);
    follow(&MVProject::priority);
    follow(&MVProject::startDate);
    follow(&MVProject::dueDate);
    // Who joined meanwhile is a member beside those who were put in here.
    const QString members = keptOf(values, Contacts);
    const QString merged = mergedUris(members, keptOf(base, Contacts), keptOf(present, Contacts));
    if (merged != members) {
        values.delegateToUser = contactsOf(merged);
        hasFollowed = true;
    }
    // When it was done goes with the status.
    if (values.status == base.status)
        follow(&MVProject::expirationDate);
    follow(&MVProject::status);
    base = present;
    if (hasFollowed && changed)
        changed();
}

#include "records/people/ContactForm.h"

#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/ProjectManager.h"
#include "records/TaskFormChoices.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"

#include <QLocale>

using namespace Qt::Literals::StringLiterals;

ContactForm::ContactForm()
    : newOffers(std::make_unique<ContactOffers>([this] {
        if (changed)
            changed();
    }))
{
    settle();
}

ContactForm::ContactForm(const ContactPtr &contact)
    : row(contact)
{
    values.birthday = contact->birthday();
    values.firstName = contact->firstName();
    values.lastName = contact->lastName();
    values.keyPhoto = contact->keyPhoto();
    values.company = contact->company();
    values.contactCategory = contact->contactCategory();
    values.project = contact->project();
    values.contactGroup = contact->contactGroup();
    detailItems = DetailItems(*contact);
    photo = PhotoEdit(contact->photoName());
    settle();
}

void ContactForm::takeValues(const PeopleForm &other)
{
    values = static_cast<const ContactForm &>(other).values;
    newCompany.clear();
}

// Rows

std::vector<FormRow> ContactForm::rows() const
{
    using Editor = FormRow::Editor;
    std::vector<FormRow> all = {
        pictureRow(),
        {.id = FirstName,
         .editor = Editor::Name,
         .name = u"FirstName"_s,
         .controlName = u"textFieldName"_s,
         .placeholder = localized(u"First Name"_s)},
        {.id = LastName,
         .editor = Editor::Name,
         .name = u"LastName"_s,
         .controlName = u"textFieldLastName"_s,
         .placeholder = localized(u"Last Name"_s)},
        {.id = JobTitle,
         .editor = Editor::Choice,
         .name = u"JobTitle"_s,
         .controlName = u"popUpButtonJobTitle"_s,
         .isClearable = true},
        {.id = Company,
         .editor = Editor::Choice,
         .name = u"Company"_s,
         .controlName = u"popUpButtonCompany"_s},
        itemsRow(Phones),
        itemsRow(Addresses),
        itemsRow(Emails),
        itemsRow(Urls),
        {.id = Birthday,
         .editor = Editor::Date,
         .name = u"Birthday"_s,
         .controlName = u"datePickerBirthday"_s},
        {.id = Projects,
         .editor = Editor::Links,
         .name = u"Project"_s,
         .controlName = u"popUpButtonProjects"_s,
         .placeholder = localized(u"Add Project"_s)},
    };
    if (newOffers)
        all.insert(std::ranges::find(all, int(JobTitle), &FormRow::id),
                   {.id = Offers, .editor = Editor::Own, .name = u"Offers"_s, .isTall = true});
    return all;
}

QString ContactForm::label(int number) const
{
    switch (number) {
    case JobTitle:
        return localized(u"Job Title"_s);
    case Company:
        return localized(u"Company"_s);
    case Birthday:
        return localized(u"Birthday"_s);
    case Projects:
        return localized(u"Projects"_s);
    case Offers:
        return localized(u"Address Books"_s);
    default:
        return PeopleForm::label(number);
    }
}

QString ContactForm::text(int number) const
{
    using Style = DateFormatter::Style;
    switch (number) {
    case FirstName:
        return values.firstName;
    case LastName:
        return values.lastName;
    case JobTitle:
        return values.contactCategory ? localized(values.contactCategory->title()) : QString();
    case Company:
        return values.company ? values.company->title() : newCompany;
    case Birthday:
        return values.birthday ? DateFormatter::string(MVDate::getNearestDay(*values.birthday), Style::Medium,
                                                       Style::None)
                               : QString();
    case Projects:
        break;
    default:
        return PeopleForm::text(number);
    }
    QStringList titles;
    for (const FormLink &link : links(Projects))
        titles.append(link.text);
    return titles.join(u", "_s);
}

bool ContactForm::isShown(int number) const
{
    return number == Offers ? !newOffers->offers().empty() : PeopleForm::isShown(number);
}

/// What a contact category is known by.
static FormMark markOf(const EntityContactCategory &category)
{
    return EKColor{category.colorR().value_or(0), category.colorG().value_or(0),
                   category.colorB().value_or(0)};
}

FormMark ContactForm::mark(int number) const
{
    return number == JobTitle && values.contactCategory ? markOf(*values.contactCategory) : FormMark();
}

void ContactForm::setText(int number, const QString &newText)
{
    if (newText == text(number))
        return;
    edit([&] { (number == FirstName ? values.firstName : values.lastName) = newText; });
    followName();
}

void ContactForm::followName()
{
    if (newOffers)
        newOffers->setName(values.firstName, values.lastName);
}

bool ContactForm::isNamed() const
{
    return !values.firstName.trimmed().isEmpty() || !values.lastName.trimmed().isEmpty();
}

// Choices

std::vector<FormChoice> ContactForm::choices(int number)
{
    std::vector<FormChoice> choices;
    std::vector<ObjectPtr> &records = offered[number];
    records.clear();
    if (number != Projects) {
        records.push_back(nullptr);
        choices.push_back({localized(u"None"_s)});
    }
    if (number == JobTitle) {
        for (const auto &category : TaskFormChoices::contactCategories()) {
            records.push_back(category);
            choices.push_back({TaskFormChoices::shownTitle(*category), markOf(*category)});
        }
    } else if (number == Company) {
        for (const CompanyPtr &company : TaskFormChoices::companies()) {
            records.push_back(company);
            choices.push_back({company->title()});
        }
        if (!newCompany.isEmpty())
            offeredCompany = newCompany;
        if (!offeredCompany.isEmpty())
            choices.push_back({offeredCompany});
    } else {
        for (const ProjectPtr project : DBWorker::allProjects()) {
            if (std::ranges::find(values.project, project) != values.project.end())
                continue;
            records.push_back(project);
            choices.push_back({ProjectManager::shownTitle(*project)});
        }
    }
    return choices;
}

int ContactForm::chosen(int number) const
{
    const auto records = offered.find(number);
    if (number == Projects || records == offered.end())
        return -1;
    if (number == Company && !newCompany.isEmpty())
        return newCompany == offeredCompany ? static_cast<int>(records->second.size()) : -1;
    const ObjectPtr value = number == JobTitle ? ObjectPtr(values.contactCategory) : values.company;
    const auto found = std::ranges::find(records->second, value);
    return found == records->second.end() ? -1 : static_cast<int>(found - records->second.begin());
}

void ContactForm::choose(int number, int place)
{
    const std::vector<ObjectPtr> &records = offered.at(number);
    const auto index = static_cast<std::size_t>(place);
    if (number == Company && index == records.size())
        return edit([&] { nameCompany(offeredCompany); });
    const ObjectPtr record = records.at(index);
    edit([&] {
        if (number == JobTitle) {
            values.contactCategory = std::static_pointer_cast<EntityContactCategory>(record);
        } else if (number == Company) {
            values.company = std::static_pointer_cast<EntityCompany>(record);
            newCompany.clear();
        } else {

            values.project.push_back(std::static_pointer_cast<EntityProject>(record));
        }
    });
}

std::string_view ContactForm::entityOfChoices(int number) const
{
    switch (number) {
    case JobTitle:
        return EntityContactCategory::entityName;
    case Company:
        return EntityCompany::entityName;
    case Projects:
        return EntityProject::entityName;
    default:
        return {};
    }
}

std::vector<FormLink> ContactForm::links(int) const
{
    std::vector<std::pair<QString, ProjectPtr>> titled;
    for (const ProjectPtr &project : values.project)
        titled.emplace_back(ProjectManager::shownTitle(*project), project);
    std::ranges::sort(titled);
    std::vector<FormLink> linked;
    for (const auto &[title, project] : titled)
        linked.push_back({project, title});
    return linked;
}

void ContactForm::unlink(int, const ObjectPtr &record)
{
    edit([&] { std::erase(values.project, record); });
}

void ContactForm::clear(int number)
{
    edit([&] {
        if (number == JobTitle)
            values.contactCategory = nullptr;
        else
            values.birthday.reset();
    });
}

// The birthday

FormDate ContactForm::date(int) const
{
    return {.date = values.birthday ? OptionalDate(MVDate::getNearestDay(*values.birthday)) : std::nullopt};
}

DatePickerState ContactForm::openPicker(int)
{
    DatePickerState state(DatePickerState::Type::StartDate);
    state.titlePopover = localized(u"Edit Birthday"_s);
    state.showPopover = true;
    state.showClock = false;
    state.showYears = true;
    state.maxDate = MVDate::getEndOfDay(MVDate::date());
    state.dateValue =
        values.birthday ? MVDate::getNearestDay(*values.birthday) : MVDate::getStartOfDay(MVDate::date());
    return state;
}

void ContactForm::acceptDate(int, DatePickerState &picker, Date date)
{
    picker.showPopover = false;
    edit([&] { values.birthday = MVDate::getStartOfDay(date); });
}

// Drafts

/// What no URI begins with.
static const QString markOfNewCompany = u"new "_s;

QString ContactForm::kept(int number) const
{
    switch (number) {
    case FirstName:
        return values.firstName;
    case LastName:
        return values.lastName;
    case JobTitle:
        return uriOf(values.contactCategory);
    case Company:
        return newCompany.isEmpty() ? uriOf(values.company) : markOfNewCompany + newCompany;
    case Birthday:
        return values.birthday
                   ? QString::number(values.birthday->referenceSeconds(), 'g', QLocale::FloatingPointShortest)
                   : QString();
    case Projects:
        return urisOf(values.project);
    default:
        return PeopleForm::kept(number);
    }
}

void ContactForm::resumeRow(int number, const QString &value)
{
    const auto take = [&](auto &field, const auto &newValue) { edit([&] { field = newValue; }); };
    bool isNumber = false;
    const double seconds = value.toDouble(&isNumber);
    switch (number) {
    case FirstName:
    case LastName:
        take(number == FirstName ? values.firstName : values.lastName, value);
        return followName();
    case JobTitle:
        if (const auto category = recordOf<EntityContactCategory>(value); category || value.isEmpty())
            take(values.contactCategory, category);
        return;
    case Company:
        if (value.startsWith(markOfNewCompany))
            return edit([&] { nameCompany(value.mid(markOfNewCompany.size())); });
        newCompany.clear();
        if (const auto company = recordOf<EntityCompany>(value); company || value.isEmpty())
            take(values.company, company);
        return;
    case Birthday:
        return take(values.birthday,
                    isNumber ? OptionalDate(Date::fromReferenceSeconds(seconds)) : std::nullopt);
    case Projects:
        return take(values.project, recordsOf<EntityProject>(value));
    default:
        return PeopleForm::resumeRow(number, value);
    }
}

static const QString groupsInDraft = u"ContactGroup"_s;

/// Groups are not edited here: a new contact has those that it was made in, and one that is deleted while it
/// is edited comes back to those that it had.
void ContactForm::addToDraft(RecordDraft &draft) const
{
    if (!values.contactGroup.empty())
        draft.values.insert(groupsInDraft, urisOf(values.contactGroup));
}

void ContactForm::takeFromDraft(const RecordDraft &draft)
{
    if (!row && draft.values.contains(groupsInDraft))
        values.contactGroup = recordsOf<EntityContactGroup>(draft.values.value(groupsInDraft));
}

// The record

void ContactForm::followRow()
{
    if (!isGone())
        values.contactGroup = row->contactGroup();
    PeopleForm::followRow();
}

QString ContactForm::stepName(bool isNew) const
{
    return isNew ? u"New Contact"_s : u"Change Contact"_s;
}

void ContactForm::insertRow()
{
    row = mainContext().insert<EntityContacts>();
    auto groups = values.contactGroup;
    std::erase_if(groups, [](const auto &group) { return group->isDeleted() || !group->context(); });
    row->setContactGroup(groups);
}

void ContactForm::writeValues()
{
    values.firstName = values.firstName.trimmed();
    values.lastName = values.lastName.trimmed();
    values.photoName = photo.photoName();
    makeCompany();
    row->setFirstName(values.firstName);
    row->setLastName(values.lastName);
    row->setBirthday(values.birthday);
    row->setKeyPhoto(values.keyPhoto);
    row->setPhotoName(values.photoName);
    row->setCompany(values.company);
    row->setContactCategory(values.contactCategory);
    row->setProject(values.project);
}

#include "records/people/CompanyForm.h"

#include "foundation/Localization.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"
#include "store/queries/ContactRows.h"

#include <set>

using namespace Qt::Literals::StringLiterals;

CompanyForm::CompanyForm()
{
    settle();
}

CompanyForm::CompanyForm(const CompanyPtr &company)
    : row(company)
    , isOfPane(true)
{
    values.details = company->details();
    values.keyPhoto = company->keyPhoto();
    values.title = company->title();
    values.contact = company->contact();
    detailItems = DetailItems(*company);
    photo = PhotoEdit(company->photoName());
    settle();
}

void CompanyForm::takeValues(const PeopleForm &other)
{
    values = static_cast<const CompanyForm &>(other).values;
}

// Rows

std::vector<FormRow> CompanyForm::rows() const
{
    using Editor = FormRow::Editor;
    std::vector<FormRow> all = {
        pictureRow(),
        {.id = Title,
         .editor = Editor::Name,
         .name = u"CompanyTitle"_s,
         .controlName = u"textFieldTitle"_s,
         .placeholder = localized(u"Company Name"_s)},
        {.id = Details,
         .editor = Editor::Text,
         .name = u"Details"_s,
         .controlName = u"textFieldDetails"_s,
         .height = 64,
         .isClearable = true,
         .placeholder = localized(u"Notes, links, whatever helps"_s)},
        {.id = FirstSeparator, .editor = Editor::Separator, .name = u"Seperator1"_s, .height = 16},
        itemsRow(Phones),
        itemsRow(Addresses),
        itemsRow(Emails),
        itemsRow(Urls),
        {.id = SecondSeparator, .editor = Editor::Separator, .name = u"Seperator2"_s, .height = 16},
        {.id = Contacts,
         .editor = Editor::Links,
         .name = u"Contact"_s,
         .controlName = u"popUpButtonContacts"_s,
         .placeholder = localized(u"Add Contact"_s)},
    };
    if (!isOfPane)
        std::erase_if(all, [](const FormRow &one) { return one.editor == Editor::Separator; });
    return all;
}

QString CompanyForm::label(int number) const
{
    if (number == Details)
        return localized(u"Details"_s);
    return number == Contacts ? localized(u"Contacts"_s) : PeopleForm::label(number);
}

QString CompanyForm::text(int number) const
{
    switch (number) {
    case Title:
        return values.title;
    case Details:
        return values.details;
    case Contacts:
        break;
    default:
        return PeopleForm::text(number);
    }
    QStringList names;
    for (const FormLink &link : links(Contacts))
        names.append(link.text);
    return names.join(u", "_s);
}

void CompanyForm::setText(int number, const QString &newText)
{
    if (newText != text(number))
        edit([&] { (number == Title ? values.title : values.details) = newText; });
}

void CompanyForm::clear(int)
{
    edit([this] { values.details.clear(); });
}

// The contacts

/// There may be very many, of whom one is loaded at most.
std::vector<FormChoice> CompanyForm::choices(int)
{
    offered.clear();
    std::set<RowId> linked;
    for (const ContactPtr &contact : values.contact)
        linked.insert(contact->rowId());
    std::vector<FormChoice> choices;
    for (ContactRows::Named &contact : ContactRows::named(EntityContacts::fetchRequest())) {
        if (linked.contains(contact.row))
            continue;
        choices.push_back({std::move(contact.fullName)});
        offered.push_back(contact.row);
    }
    return choices;
}

void CompanyForm::choose(int, int place)
{
    const ObjectList<EntityContacts> chosen(mainContext(),
                                            organiserModel().requireEntity(EntityContacts::entityName),
                                            {offered.at(static_cast<std::size_t>(place))});
    // They may have gone since they were offered.
    if (const ContactPtr contact = chosen.first())
        edit([&] { values.contact.push_back(contact); });
}

std::string_view CompanyForm::entityOfChoices(int number) const
{
    return number == Contacts ? EntityContacts::entityName : std::string_view();
}

std::vector<FormLink> CompanyForm::links(int) const
{
    std::vector<FormLink> linked;
    for (const ContactPtr &contact : DBWorker::sortContacta(values.contact))
        linked.push_back({contact, contact->fullName(), Portrait::of(*contact)});
    return linked;
}

void CompanyForm::unlink(int, const ObjectPtr &record)
{
    edit([&] { std::erase(values.contact, record); });
}

// Drafts

QString CompanyForm::kept(int number) const
{
    switch (number) {
    case Title:
        return values.title;
    case Details:
        return values.details;
    case Contacts:
        return urisOf(values.contact);
    default:
        return PeopleForm::kept(number);
    }
}

void CompanyForm::resumeRow(int number, const QString &value)
{
    if (number == Title || number == Details)
        return setText(number, value);
    if (number == Contacts)
        return edit([&] { values.contact = recordsOf<EntityContacts>(value); });
    PeopleForm::resumeRow(number, value);
}

// The record

QString CompanyForm::stepName(bool isNew) const
{
    return isNew ? u"New Company"_s : u"Change Company"_s;
}

void CompanyForm::insertRow()
{
    row = mainContext().insert<EntityCompany>();
}

void CompanyForm::writeValues()
{
    values.title = values.title.trimmed();
    values.photoName = photo.photoName();
    row->setTitle(values.title);
    row->setKeyPhoto(values.keyPhoto);
    row->setPhotoName(values.photoName);
    row->setContact(values.contact);
    row->setDetails(values.details);
}

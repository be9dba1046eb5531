#include "records/people/NoteForm.h"

#include "calendarsync/RecordsTransaction.h"
#include "foundation/Localization.h"
#include "records/TaskFormChoices.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

using namespace Qt::Literals::StringLiterals;

MVNote NoteForm::valuesOf(const EntityNote &note)
{
    MVNote values;
    values.title = note.title();
    values.detail = note.detail();
    values.creationDate = note.creationDate();
    values.contact = note.contact();
    values.company = note.company();
    return values;
}

NoteForm::NoteForm(const NotePtr &note)
    : values(valuesOf(*note))
    , row(note)
    , base(values)
{}

MissingField NoteForm::clickButtonSave()
{
    if (values.title != base.title)
        values.title = values.title.trimmed();
    if (values.title.isEmpty() && !isStored())
        return MissingField::Title;
    RecordsTransaction transaction(isStored() ? u"Change Note"_s : u"New Note"_s);
    if (!row || !row->context()) {
        values.creationDate = MVDate::date();
        row = mainContext().insert<EntityNote>();
        row->setCreationDate(values.creationDate);
        isNewRow = true;
    }
    if (!values.title.isEmpty())
        row->setTitle(values.title);
    row->setDetail(values.detail);
    row->setContact(values.contact);
    row->setCompany(values.company);
    isUncommitted = !DBWorker::tellOfFailure(transaction.commit());
    if (isUncommitted)
        return MissingField::Store;
    isNewRow = false;
    rollback();
    return MissingField::None;
}

// Rows

std::vector<FormRow> NoteForm::rows() const
{
    return {{.id = Title,
             .editor = FormRow::Editor::Title,
             .name = u"Title"_s,
             .controlName = u"textFieldTitle"_s,
             .height = 50,
             .placeholder = localized(u"Title"_s)},
            {.id = Details,
             .editor = FormRow::Editor::Text,
             .name = u"Details"_s,
             .controlName = u"textFieldDetails"_s,
             .height = 160,
             .placeholder = localized(u"Details"_s)},
            {.id = Contact,
             .editor = FormRow::Editor::Choice,
             .name = u"Contact"_s,
             .controlName = u"popUpButtonContact"_s,
             .isClearable = true},
            {.id = Company,
             .editor = FormRow::Editor::Choice,
             .name = u"Company"_s,
             .controlName = u"popUpButtonCompany"_s,
             .isClearable = true}};
}

QString NoteForm::label(int number) const
{
    switch (number) {
    case Details:
        return localized(u"Details"_s);
    case Contact:
        return localized(u"Contact"_s);
    case Company:
        return localized(u"Company"_s);
    default:
        return {};
    }
}

QString NoteForm::textOf(const MVNote &note, int number)
{
    switch (number) {
    case Title:
        return note.title;
    case Details:
        return note.detail;
    case Company:
        return note.company ? note.company->title() : QString();
    default:
        return note.contact ? note.contact->fullName() : QString();
    }
}

QString NoteForm::text(int number) const
{
    return textOf(values, number);
}

void NoteForm::edit(const std::function<void()> &change)
{
    change();
    touched = true;
    if (changed)
        changed();
}

void NoteForm::setText(int number, const QString &text)
{
    QString &field = number == Title ? values.title : values.detail;
    if (field != text)
        edit([&] { field = text; });
}

std::vector<FormChoice> NoteForm::choices(int number)
{
    std::vector<FormChoice> choices = {{localized(u"None"_s)}};
    if (number == Company) {
        offeredCompanies = TaskFormChoices::companies();
        for (const CompanyPtr &company : offeredCompanies)
            choices.push_back({company->title()});
        return choices;
    }
    offeredContacts.clear();
    for (ContactRows::Named &contact : TaskFormChoices::contactNames()) {
        offeredContacts.push_back(contact.row);
        choices.push_back({std::move(contact.fullName)});
    }
    return choices;
}

/// Its place below "None", or -1.
template <typename Value>
static int placeIn(const std::vector<Value> &offered, const Value &value)
{
    const auto found = std::ranges::find(offered, value);
    return found == offered.end() ? -1 : static_cast<int>(found - offered.begin()) + 1;
}

int NoteForm::chosen(int number) const
{
    if (!chosenRecord(number))
        return 0;
    return number == Company ? placeIn(offeredCompanies, values.company)
                             : placeIn(offeredContacts, values.contact->rowId());
}

void NoteForm::choose(int number, int place)
{
    if (place == 0)
        return clear(number);
    const auto index = static_cast<std::size_t>(place - 1);
    if (number == Company)
        edit([&] { values.company = offeredCompanies.at(index); });
    else
        edit([&] { values.contact = TaskFormChoices::contactOfRow(offeredContacts.at(index)); });
}

ObjectPtr NoteForm::chosenRecord(int number) const
{
    if (number == Company)
        return values.company;
    return number == Contact ? values.contact : nullptr;
}

std::string_view NoteForm::entityOfChoices(int number) const
{
    return number == Company ? EntityCompany::entityName : EntityContacts::entityName;
}

void NoteForm::clear(int number)
{
    if (number == Company)
        edit([this] { values.company = nullptr; });
    else
        edit([this] { values.contact = nullptr; });
}

// Drafts

/// Two contacts, or companies, may have the same name.
QString NoteForm::keptOf(const MVNote &note, int number)
{
    if (number == Company)
        return DBWorker::getIdFromObject(note.company);
    return number == Contact ? DBWorker::getIdFromObject(note.contact) : textOf(note, number);
}

void NoteForm::resumeRow(int number, const QString &value)
{
    if (number != Contact && number != Company)
        return setText(number, value);
    const ObjectPtr record = DBWorker::getObjectFromId(value);
    if (!record && !value.isEmpty())
        return;
    edit([&] {
        if (number == Company)
            values.company = std::dynamic_pointer_cast<EntityCompany>(record);
        else
            values.contact = std::dynamic_pointer_cast<EntityContacts>(record);
    });
}

// The record

bool NoteForm::isChanged()
{
    // Its row has the values of a save that could not be committed, and still waits for it.
    if (isUncommitted && mainContext().hasChanges())
        return true;
    followRow();
    return !isGone() &&
           ((!values.title.trimmed().isEmpty() && values.title != base.title) ||
            values.detail != base.detail || values.contact != base.contact || values.company != base.company);
}

void NoteForm::giveUp()
{
    if (!isNewRow || isGone())
        return;
    mainContext().deleteObject(row);
    DBWorker::saveOrTell(DBWorker::Occasion::Program);
}

void NoteForm::rollback()
{
    values = base = valuesOf(*row);
    if (changed)
        changed();
}

void NoteForm::followRow()
{
    if (isGone())
        return;
    const MVNote present = valuesOf(*row);
    bool hasFollowed = false;
    const auto follow = [&](auto MVNote::*field) {
        if (values.*field != base.*field || values.*field == present.*field)
            return;
        values.*field = present.*field;
        hasFollowed = true;
    };
    follow(&MVNote::title);
    follow(&MVNote::detail);
    follow(&MVNote::contact);
    follow(&MVNote::company);
    base = present;
    if (hasFollowed && changed)
        changed();
}

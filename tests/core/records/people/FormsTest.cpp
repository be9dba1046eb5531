#include "CoreTest.h"

#include "foundation/Region.h"
#include "records/people/Birthdays.h"
#include "records/people/CompanyForm.h"
#include "records/people/ContactExport.h"
#include "records/people/ContactForm.h"
#include "records/people/KnownContact.h"
#include "records/people/NoteForm.h"
#include "store/state/NotificationNames.h"
#include "support/FullDisk.h"

namespace {

class Forms : public CoreTest
{
protected:
    /// Counts the commits that made, or changed, objects of an entity.
    struct Counter
    {
        enum Kind { Made, Changed };
        Counter(Kind kind, std::string_view entity)
            : observation(NotificationCenter::defaultCenter().addObserver(
                  notifications::contextDidSave, [this, kind, entity](const StoreChanges &changes) {
                      StoreChanges asked;
                      if (kind == Made)
                          asked.inserted = changes.inserted;
                      else
                          asked.updated = changes.updated;
                      count += asked.concerns(entity);
                  }))
        {}
        int count = 0;
        Observation observation;
    };
    template <typename T>
    int rows()
    {
        return context().count(T::fetchRequest());
    }

    Counter newContacts{Counter::Made, EntityContacts::entityName};
    Counter newCompanies{Counter::Made, EntityCompany::entityName};
    Counter changedContacts{Counter::Changed, EntityContacts::entityName};
    Counter newNotes{Counter::Made, EntityNote::entityName};
};

TEST_F(Forms, StopAtAMissingNameWithoutAWord)
{
    const ScriptedAlerts none;
    ContactForm contact;
    contact.detailItems.phones[0].setPhoneNumber(u"1"_qs);
    contact.detailItems.controlTextDidChange();
    EXPECT_EQ(contact.clickButtonSave(), MissingField::FirstName);
    EXPECT_EQ(contact.detailItems.phones.size(), 2u) << "Nothing was dropped";
    EXPECT_EQ(CompanyForm().clickButtonSave(), MissingField::Title);
    EXPECT_EQ(NoteForm().clickButtonSave(), MissingField::Title);
    EXPECT_FALSE(context().hasChanges());
    EXPECT_EQ(newContacts.count + newCompanies.count + newNotes.count, 0);
}

TEST_F(Forms, KeepTheDayOfABirthdayInOtherTimeZones)
{
    const auto ann = context().insert<EntityContacts>();
    ann->setFirstName(u"Ann"_qs);
    Region::setZone("Europe/Berlin");
    ann->setBirthday(localDate(1990, 2, 3));
    EXPECT_FALSE(DBWorker::saveContext());
    for (const char *zone : {"America/Los_Angeles", "Europe/Berlin", "Asia/Tokyo", "Pacific/Auckland"}) {
        Region::setZone(zone);
        ContactForm form(ann);
        EXPECT_EQ(form.text(ContactForm::Row::Birthday), u"Feb 3, 1990"_qs) << zone;
        EXPECT_EQ(form.date(ContactForm::Row::Birthday).date, localDate(1990, 2, 3)) << zone;
        EXPECT_EQ(form.openPicker(ContactForm::Row::Birthday).dateValue, localDate(1990, 2, 3)) << zone;
        EXPECT_EQ(ContactExport().contactOf(*ann).birthday, (CNBirthday{1990, 2, 3})) << zone;
        EXPECT_EQ(knowncontacts::ofContacts({ann->rowId()}).front()->birthday, (CNBirthday{1990, 2, 3}))
            << zone;
        const auto told = Birthdays::between(localDate(2026, 2, 3), localDate(2026, 2, 3));
        EXPECT_EQ(told.size(), 1u) << zone;
    }
    Region::setZone("Europe/Berlin");
    EXPECT_EQ(ann->birthday(), localDate(1990, 2, 3)) << "what is stored stays";
    for (const char *writer : {"America/Los_Angeles", "UTC", "Asia/Tokyo", "Pacific/Auckland"}) {
        Region::setZone(writer);
        ann->setBirthday(localDate(1980, 2, 29));
        for (const char *reader : {writer, "Europe/Berlin", "Asia/Tokyo"}) {
            if (QByteArray(writer) == "Pacific/Auckland" && reader != writer)
                continue;
            Region::setZone(reader);
            EXPECT_EQ(ContactExport().contactOf(*ann).birthday, (CNBirthday{1980, 2, 29}))
                << writer << reader;
        }
    }
}

TEST_F(Forms, StoreAContactWithWhatWasTyped)
{
    const auto company = context().insert<EntityCompany>();
    const auto project = context().insert<EntityProject>();
    ContactForm form;
    form.values.firstName = u"  Ann\n"_qs;
    form.values.birthday = localDate(1990, 2, 3);
    form.values.keyPhoto = 4;
    form.values.company = company;
    form.values.contactCategory = DBWorker::allContactCategories().first();
    form.values.project = {project};
    form.detailItems.phones[0].setPhoneNumber(u"123"_qs);
    form.detailItems.controlTextDidChange();
    form.detailItems.controlTextDidChange();
    ASSERT_EQ(form.detailItems.phones.size(), 2u) << "One free row, not more";
    form.detailItems.phones[1].setPhoneNumber(QString());
    form.detailItems.controlTextDidChange();
    form.detailItems.emails[0].setEmailString(u"a@b.org"_qs);
    form.detailItems.addresses[0].values().zip = u"89073"_qs;
    form.detailItems.urls[0].setURLString(u"not yet left"_qs);
    form.detailItems.emails.push_back({});
    form.detailItems.emails.push_back({});
    form.detailItems.addresses.push_back({});

    EXPECT_EQ(form.clickButtonSave(), MissingField::None);
    EXPECT_FALSE(context().hasChanges());
    const ContactPtr contact = form.contact();
    EXPECT_EQ(contact->firstName(), u"Ann"_qs);
    EXPECT_EQ(contact->birthday(), localDate(1990, 2, 3));
    EXPECT_EQ(contact->keyPhoto(), 4);
    EXPECT_EQ(contact->company(), company);
    EXPECT_EQ(company->contact(), std::vector<ContactPtr>({contact}));
    EXPECT_EQ(contact->contactCategory(), DBWorker::allContactCategories().first());
    EXPECT_EQ(contact->project(), std::vector<ProjectPtr>({project}));
    ASSERT_EQ(contact->phone().size(), 1u);
    EXPECT_EQ(contact->phone()[0]->number(), u"123"_qs);
    EXPECT_EQ(contact->phone()[0]->type()->title(), u"home"_qs);
    EXPECT_EQ(contact->email().size(), 1u) << "Rows left empty are not stored";
    EXPECT_EQ(contact->address()[0]->zip(), u"89073"_qs);
    EXPECT_TRUE(contact->url().empty()) << "The last row of a list is never stored";
    EXPECT_EQ(newContacts.count, 1);
    EXPECT_EQ(changedContacts.count, 0);
}

TEST_F(Forms, ChangeAContactAndItsRows)
{
    ContactForm form;
    form.values.lastName = u"Lee"_qs;
    for (const QString &number : {u"1"_qs, u"2"_qs, u"3"_qs}) {
        form.detailItems.phones.back().setPhoneNumber(number);
        form.detailItems.controlTextDidChange();
    }
    form.clickButtonSave();
    ContactForm edit(form.contact());
    EXPECT_EQ(edit.values.lastName, u"Lee"_qs);
    ASSERT_EQ(edit.detailItems.phones.size(), 4u);
    EXPECT_EQ(std::static_pointer_cast<EntityPhoneType>(edit.detailItems.phones[3].type())->title(),
              u"mobile"_qs)
        << "The free row takes the first type that is left";
    const ObjectPtr changed = edit.detailItems.phones[0].entity();
    edit.detailItems.phones[0].setPhoneNumber(u"10"_qs);
    edit.detailItems.phones[1].setPhoneNumber(QString());
    edit.detailItems.phones.erase(edit.detailItems.phones.begin() + 2);
    edit.values.lastName = u"Kay"_qs;
    EXPECT_EQ(edit.clickButtonSave(), MissingField::None);
    EXPECT_EQ(form.contact()->lastName(), u"Kay"_qs);
    ASSERT_EQ(form.contact()->phone().size(), 1u);
    EXPECT_EQ(form.contact()->phone()[0], changed);
    EXPECT_EQ(form.contact()->phone()[0]->number(), u"10"_qs);
    EXPECT_EQ(rows<EntityPhone>(), 1);
    EXPECT_EQ(changedContacts.count, 1);
    EXPECT_EQ(newContacts.count, 1);
    EXPECT_EQ(edit.detailItems.phones.size(), 2u) << "It can be edited on";

    context().deleteObject(edit.contact());
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(edit.clickButtonSave(), MissingField::None);
    EXPECT_EQ(rows<EntityContacts>(), 1) << "What was deleted meanwhile is stored anew";
    EXPECT_EQ(edit.contact()->phone().size(), 1u);
}

TEST_F(Forms, StoreCompaniesAndNotes)
{
    const auto ann = context().insert<EntityContacts>();
    CompanyForm company;
    company.values.title = u" Works "_qs;
    company.values.details = u"tools"_qs;
    company.values.contact = {ann};
    company.detailItems.urls[0].setURLString(u"works.org"_qs);
    company.detailItems.controlTextDidChange();
    EXPECT_EQ(company.clickButtonSave(), MissingField::None);
    EXPECT_EQ(company.company()->title(), u"Works"_qs);
    EXPECT_EQ(company.company()->url()[0]->url(), u"works.org"_qs);
    EXPECT_EQ(ann->company(), company.company());
    EXPECT_EQ(newCompanies.count, 1);
    CompanyForm edit(company.company());
    EXPECT_EQ(edit.values.contact, std::vector<ContactPtr>({ann}));
    edit.values.contact.clear();
    edit.clickButtonSave();
    EXPECT_EQ(ann->company(), nullptr);
    EXPECT_EQ(company.company()->details(), u"tools"_qs);
    EXPECT_EQ(newCompanies.count, 1);

    NoteForm note;
    note.values.title = u"Remember"_qs;
    note.values.detail = u"the milk"_qs;
    note.values.contact = ann;
    EXPECT_EQ(note.clickButtonSave(), MissingField::None);
    EXPECT_EQ(note.note()->creationDate(), Clock::now());
    EXPECT_EQ(ann->note(), std::vector<std::shared_ptr<EntityNote>>({note.note()}));
    EXPECT_EQ(newNotes.count, 1);

    // A note can be about a company, too.
    note.choices(NoteForm::Company);
    note.choose(NoteForm::Company, 1);
    EXPECT_EQ(note.chosen(NoteForm::Company), 1);
    NoteForm again(note.note());
    RecordDraft draft = *RecordDraft::decoded(note.encodedDraft());
    again.resume(draft);
    EXPECT_EQ(again.values.company, company.company());
    EXPECT_EQ(again.clickButtonSave(), MissingField::None);
    EXPECT_EQ(company.company()->note(), std::vector<std::shared_ptr<EntityNote>>({note.note()}));
    note.followRow();
    note.clear(NoteForm::Company);
    EXPECT_TRUE(note.isChanged());
    EXPECT_EQ(note.clickButtonSave(), MissingField::None);
    EXPECT_TRUE(company.company()->note().empty());
    EXPECT_EQ(note.values.contact, ann);
}

TEST_F(Forms, TakeATitleOfBlanksForNone)
{
    NoteForm note;
    note.setText(NoteForm::Title, u" \n"_qs);
    EXPECT_FALSE(note.canSave());
    EXPECT_EQ(note.clickButtonSave(), MissingField::Title);
    note.setText(NoteForm::Title, u" Tea\n"_qs);
    EXPECT_EQ(note.clickButtonSave(), MissingField::None);
    EXPECT_EQ(note.note()->title(), u"Tea"_qs);
    note.setText(NoteForm::Title, u"  "_qs);
    EXPECT_FALSE(note.isChanged()) << "the former one stays";
    note.setText(NoteForm::Details, u"green"_qs);
    EXPECT_EQ(note.clickButtonSave(), MissingField::None);
    EXPECT_EQ(note.note()->title(), u"Tea"_qs);
    EXPECT_EQ(note.note()->detail(), u"green"_qs);
}

TEST_F(Forms, SayThatTheStoreTookNothingAndStoreItOnceWhenItDoes)
{
    ContactForm contact;
    contact.values.firstName = u"Ann"_qs;
    contact.detailItems.phones[0].setPhoneNumber(u"1"_qs);
    contact.detailItems.controlTextDidChange();
    CompanyForm company;
    company.values.title = u"Shop"_qs;
    NoteForm note;
    note.values.title = u"typed"_qs;
    const LogCapture log;
    const ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton, Alert::firstButton});
    {
        const FullDisk disk;
        EXPECT_EQ(contact.clickButtonSave(), MissingField::Store);
        EXPECT_EQ(company.clickButtonSave(), MissingField::Store);
        EXPECT_EQ(note.clickButtonSave(), MissingField::Store);
    }
    EXPECT_EQ(log.lines().filter(u"Unresolved error"_qs).size(), 3);
    note.values.title = u"corrected"_qs;
    EXPECT_EQ(contact.clickButtonSave(), MissingField::None);
    EXPECT_EQ(company.clickButtonSave(), MissingField::None);
    EXPECT_EQ(note.clickButtonSave(), MissingField::None);
    EXPECT_EQ(rows<EntityContacts>(), 1);
    EXPECT_EQ(rows<EntityPhone>(), 1);
    EXPECT_EQ(rows<EntityCompany>(), 1);
    EXPECT_EQ(rows<EntityNote>(), 1);
    EXPECT_EQ(note.note()->title(), u"corrected"_qs);
}

} // namespace

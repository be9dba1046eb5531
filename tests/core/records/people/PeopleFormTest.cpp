// The rows of contacts and companies: what they say and take, what outlives them, and how they follow.

#include "CoreTest.h"

#include "records/FormItems.h"
#include "records/ProjectForm.h"
#include "records/people/CompanyForm.h"
#include "records/people/ContactForm.h"
#include "support/FullDisk.h"

#include <QSet>

namespace {

using Row = PeopleForm::Row;

class PeopleForms : public CoreTest
{
protected:
    ContactPtr contact(const QString &firstName, const QStringList &numbers = {})
    {
        const auto made = context().insert<EntityContacts>();
        made->setFirstName(firstName);
        for (const QString &number : numbers)
            addPhone(made, number);
        EXPECT_FALSE(DBWorker::saveContext());
        return made;
    }
    std::shared_ptr<EntityPhone> addPhone(const ContactPtr &owner, const QString &number)
    {
        const auto phone = context().insert<EntityPhone>();
        phone->setNumber(number);
        phone->setContact(owner);
        phone->setType(DBWorker::allPhoneType().first());
        return phone;
    }
    static QStringList numbersOf(const EntityContacts &owner)
    {
        QStringList numbers;
        for (const auto &phone : owner.phone())
            numbers.append(phone->number());
        numbers.sort();
        return numbers;
    }
    /// What a form shows, such as "12 (home)"; the free entry last.
    static QStringList shown(FormModel &form, int row)
    {
        FormItems &items = *form.items(row);
        const QStringList types = items.types();
        QStringList all;
        for (int item = 0; item < items.count(); ++item)
            all.append(items.words(item) + u" ("_qs + types.value(items.type(item)) + u")"_qs);
        return all;
    }
};

TEST_F(PeopleForms, HaveTheRowsOfTheirKindInTheirOrder)
{
    const auto named = [](const FormModel &form) {
        QStringList names;
        for (const FormRow &row : form.rows())
            names.append(row.name);
        return names.join(u' ');
    };
    EXPECT_EQ(
        named(ContactForm()),
        u"Title FirstName LastName Offers JobTitle Company Phones Address Emails URLs Birthday Project"_qs);
    EXPECT_EQ(named(CompanyForm()), u"Title CompanyTitle Details Phones Address Emails URLs Contact"_qs);
    const auto works = context().insert<EntityCompany>();
    EXPECT_EQ(named(CompanyForm(works)), u"Title CompanyTitle Details Seperator1 Phones Address Emails URLs "
                                         u"Seperator2 Contact"_qs);
    CompanyForm form(works);
    for (const int row :
         {Row::Details, Row::FirstSeparator, Row::Phones, Row::SecondSeparator, Row::Contacts})
        EXPECT_FALSE(form.isShownInPreview(row)) << row;
    EXPECT_TRUE(form.isShownInPreview(Row::Picture));
    form.items(Row::Urls)->setText(0, 0, u"works.org"_qs);
    EXPECT_TRUE(form.isShownInPreview(Row::FirstSeparator));
    EXPECT_FALSE(form.isShownInPreview(Row::SecondSeparator));
}

TEST_F(PeopleForms, AlwaysHaveAFreeEntryOfAnotherType)
{
    ContactForm form;
    int told = 0;
    form.changed = [&] { ++told; };
    FormItems &phones = *form.items(Row::Phones);
    EXPECT_EQ(phones.placeholders(), QStringList{u"Number"_qs});
    EXPECT_EQ(shown(form, Row::Phones), QStringList{u" (home)"_qs});
    phones.setText(0, 0, u"1"_qs);
    phones.setText(0, 0, u"12"_qs);
    EXPECT_EQ(shown(form, Row::Phones), (QStringList{u"12 (home)"_qs, u" (work)"_qs}));
    phones.setType(1, 3);
    phones.setText(1, 0, u"34"_qs);
    EXPECT_EQ(told, 4);
    phones.remove(0);
    EXPECT_EQ(shown(form, Row::Phones).first(), u"34 (mobile)"_qs);
    phones.remove(1);
    EXPECT_EQ(phones.count(), 2) << "the free one stays";
    EXPECT_EQ(phones.link(0), u"tel:34"_qs);

    FormItems &addresses = *form.items(Row::Addresses);
    EXPECT_EQ(addresses.placeholders(),
              (QStringList{u"Street"_qs, u"City"_qs, u"State"_qs, u"ZIP"_qs, u"Country"_qs}));
    addresses.setText(0, 1, u"Bad Böll"_qs);
    addresses.setText(0, 3, u"73087"_qs);
    EXPECT_EQ(addresses.words(0), u"Bad Böll, 73087"_qs);
    EXPECT_TRUE(addresses.link(0).endsWith(u"query=Bad%20B%C3%B6ll%2C%2073087"_qs));
    EXPECT_EQ(addresses.link(1), QString());
    form.setText(Row::FirstName, u"Ann"_qs);
    ASSERT_TRUE(form.save());
    ASSERT_EQ(form.contact()->address().size(), 1u);
    EXPECT_EQ(form.contact()->address()[0]->zip(), u"73087"_qs);
    EXPECT_EQ(numbersOf(*form.contact()), QStringList{u"34"_qs});
}

TEST_F(PeopleForms, TheOrderOfEntriesOutlivesAnUndo)
{
    QStringList numbers;
    ContactForm form;
    form.setText(Row::FirstName, u"Ann"_qs);
    for (int number = 0; number < 8; ++number) {
        numbers.append(QString::number(number));
        form.items(Row::Phones)->setText(number, 0, numbers.last());
    }
    ASSERT_TRUE(form.save());
    const ContactPtr ann = form.contact();
    EXPECT_EQ(numbersOf(*ann), numbers);
    context().deleteObject(ann);
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_FALSE(context().undo());
    const auto back = context().fetchFirst<EntityContacts>(EntityContacts::fetchRequest());
    ASSERT_TRUE(back);
    EXPECT_EQ(numbersOf(*back), numbers);
    ContactForm again(back);
    again.items(Row::Phones)->remove(2);
    again.items(Row::Phones)->setText(7, 0, u"8"_qs);
    numbers.removeAt(2);
    numbers.append(u"8"_qs);
    ASSERT_TRUE(again.save());
    EXPECT_EQ(numbersOf(*back), numbers);
}

TEST_F(PeopleForms, ChooseClearAndLink)
{
    for (const QString &title : {u"Works"_qs, u"Atelier"_qs})
        context().insert<EntityCompany>()->setTitle(title);
    for (const QString &title : {u"House"_qs, u"Boat"_qs})
        context().insert<EntityProject>()->setTitle(title);
    ASSERT_FALSE(DBWorker::saveContext());
    ContactForm form(contact(u"Ann"_qs));
    const auto texts = [&](int row) {
        QStringList all;
        for (const FormChoice &choice : form.choices(row))
            all.append(choice.text);
        return all;
    };
    EXPECT_EQ(texts(Row::Company), (QStringList{u"None"_qs, u"Atelier"_qs, u"Works"_qs}));
    EXPECT_EQ(form.chosen(Row::Company), 0);
    form.choose(Row::Company, 2);
    EXPECT_EQ(form.text(Row::Company), u"Works"_qs);
    EXPECT_EQ(texts(Row::JobTitle).size(), DBWorker::allContactCategories().size() + 1);
    form.choose(Row::JobTitle, 1);
    EXPECT_TRUE(std::holds_alternative<EKColor>(form.mark(Row::JobTitle)));
    form.clear(Row::JobTitle);
    EXPECT_FALSE(form.hasValue(Row::JobTitle));
    EXPECT_EQ(texts(Row::Projects), (QStringList{u"Boat"_qs, u"House"_qs}));
    form.choose(Row::Projects, 1);
    EXPECT_EQ(texts(Row::Projects), QStringList{u"Boat"_qs}) << "the other projects";

    DatePickerState picker = form.openPicker(Row::Birthday);
    EXPECT_EQ(picker.titlePopover, u"Edit Birthday"_qs);
    EXPECT_FALSE(picker.showClock);
    form.acceptDate(Row::Birthday, picker, localDate(1961, 4, 5, 13));
    EXPECT_EQ(form.text(Row::Birthday), u"Apr 5, 1961"_qs);
    ASSERT_EQ(form.finishEdit(), FormModel::EditEnd::Saved);
    EXPECT_EQ(form.contact()->birthday(), localDate(1961, 4, 5));
    EXPECT_EQ(form.contact()->company()->title(), u"Works"_qs);
    form.clear(Row::Birthday);
    form.choose(Row::Company, 0);
    form.unlink(Row::Projects, form.links(Row::Projects).front().record);
    ASSERT_EQ(form.finishEdit(), FormModel::EditEnd::Saved);
    EXPECT_FALSE(form.contact()->birthday() || form.contact()->company());
    EXPECT_TRUE(form.contact()->project().empty());
    EXPECT_EQ(form.finishEdit(), FormModel::EditEnd::Unchanged);
}

TEST_F(PeopleForms, SaveInOneStepAndLeaveAloneWhatIsUnchanged)
{
    const ContactPtr ann = contact(u"Ann"_qs, {u"1"_qs, u"2"_qs});
    QSet<QString> touched;
    const Observation observation = NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [&](const StoreChanges &changes) {
            for (const auto &update : changes.updated)
                touched.insert(update.object->uri());
            for (const auto &object : changes.inserted)
                touched.insert(object->uri());
        });
    ContactForm form(ann);
    FormItems &phones = *form.items(Row::Phones);
    const int second = phones.text(0, 0) == u"2"_qs ? 0 : 1;
    phones.setText(second, 0, u"20"_qs);
    form.setText(Row::LastName, u"Lee"_qs);
    ASSERT_EQ(form.finishEdit(), FormModel::EditEnd::Saved);
    EXPECT_EQ(touched.size(), 2) << "the contact and one number";
    EXPECT_EQ(numbersOf(*ann), (QStringList{u"1"_qs, u"20"_qs}));
    ASSERT_FALSE(context().undo());
    EXPECT_EQ(numbersOf(*ann), (QStringList{u"1"_qs, u"2"_qs}));
    EXPECT_EQ(ann->lastName(), QString());
}

TEST_F(PeopleForms, FollowTheStoreAndLoseNothingTyped)
{
    const auto house = context().insert<EntityProject>();
    house->setTitle(u"House"_qs);
    const auto boat = context().insert<EntityProject>();
    boat->setTitle(u"Boat"_qs);
    const ContactPtr ann = contact(u"Ann"_qs, {u"1"_qs, u"2"_qs, u"3"_qs});
    ContactForm form(ann);
    FormItems &phones = *form.items(Row::Phones);
    const auto placeOf = [&](const QString &number) {
        for (int item = 0; item < phones.count(); ++item)
            if (phones.text(item, 0) == number)
                return item;
        return -1;
    };
    phones.setText(placeOf(u"1"_qs), 0, u"typed"_qs);
    phones.setText(phones.count() - 1, 0, u"new"_qs);
    form.setText(Row::FirstName, u"Anna"_qs);
    form.choices(Row::Projects);
    form.choose(Row::Projects, 0);

    // Another program changes, deletes and adds.
    for (const auto &phone : ann->phone()) {
        if (phone->number() == u"2"_qs)
            phone->setNumber(u"22"_qs);
        else if (phone->number() == u"3"_qs)
            context().deleteObject(phone);
    }
    addPhone(ann, u"4"_qs);
    ann->setFirstName(u"Anne"_qs);
    ann->setLastName(u"Lee"_qs);
    ann->setProject({house});
    ASSERT_FALSE(DBWorker::saveContext());
    form.followRow();
    EXPECT_EQ(form.title(), u"Anna Lee"_qs);
    EXPECT_EQ(form.text(Row::Projects), u"Boat, House"_qs);
    ASSERT_EQ(form.finishEdit(), FormModel::EditEnd::Saved);
    EXPECT_EQ(numbersOf(*ann), (QStringList{u"22"_qs, u"4"_qs, u"new"_qs, u"typed"_qs}));
    EXPECT_EQ(ann->project().size(), 2u);

    // What was typed for an entry that is gone is stored anew.
    phones.setText(placeOf(u"22"_qs), 0, u"23"_qs);
    for (const auto &phone : ann->phone()) {
        if (phone->number() == u"22"_qs)
            context().deleteObject(phone);
    }
    ASSERT_FALSE(DBWorker::saveContext());
    ASSERT_EQ(form.finishEdit(), FormModel::EditEnd::Saved);
    EXPECT_EQ(numbersOf(*ann), (QStringList{u"23"_qs, u"4"_qs, u"new"_qs, u"typed"_qs}));

    form.setText(Row::LastName, u"gone"_qs);
    context().deleteObject(ann);
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(form.finishEdit(), FormModel::EditEnd::Gone);
    EXPECT_EQ(form.text(Row::LastName), u"gone"_qs);
}

TEST_F(PeopleForms, AreKeptWholeInADraft)
{
    const auto works = context().insert<EntityCompany>();
    works->setTitle(u"Works"_qs);
    const ContactPtr ann = contact(u"Ann"_qs, {u"1"_qs});
    ContactForm typed(ann);
    EXPECT_TRUE(typed.encodedDraft().isEmpty());
    typed.setText(Row::LastName, u"Lee"_qs);
    typed.choices(Row::Company);
    typed.choose(Row::Company, 1);
    typed.items(Row::Phones)->setText(0, 0, u"10"_qs);
    typed.items(Row::Addresses)->setText(0, 4, u"Peru"_qs);
    typed.items(Row::Addresses)->setType(0, 2);
    const QByteArray png("\x89PNG\r\n\x1a\nface");
    ASSERT_TRUE(typed.setPicture(png));
    const auto draft = RecordDraft::decoded(typed.encodedDraft());
    ASSERT_TRUE(draft);
    const FrozenClock later(localDate(2026, 11, 22));
    ContactForm resumed(ann);
    resumed.resume(*draft);
    EXPECT_EQ(resumed.title(), u"Ann Lee"_qs);
    EXPECT_EQ(resumed.data(), png);
    EXPECT_EQ(resumed.portrait().photoName, typed.portrait().photoName);
    EXPECT_EQ(shown(resumed, Row::Addresses), (QStringList{u"Peru (other)"_qs, u" (home)"_qs}));
    const auto phone = ann->phone().front();
    ASSERT_TRUE(resumed.save());
    EXPECT_EQ(ann->phone(), std::vector{phone});
    EXPECT_EQ(phone->number(), u"10"_qs);
    EXPECT_EQ(ann->company(), works);
    EXPECT_EQ(PhotoEdit(ann->photoName()).pictureData(), png);

    // A damaged one does no harm.
    ContactForm other(ann);
    for (const QString &damage : {u"[1]"_qs, u"{}"_qs, u"[{\"texts\":7,\"row\":[]}]"_qs, u"["_qs})
        other.resumeRow(Row::Phones, damage);
    EXPECT_EQ(shown(other, Row::Phones), QStringList{u" (home)"_qs});
}

TEST_F(PeopleForms, KeepTheGroupOfANewContactInItsDraft)
{
    const auto group = context().insert<EntityContactGroup>();
    group->setTitle(u"Rowers"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    ContactForm typed;
    typed.values.contactGroup = {group};
    EXPECT_TRUE(typed.encodedDraft().isEmpty()) << "nothing was typed yet";
    typed.setText(ContactForm::FirstName, u"Ann"_qs);
    const auto draft = RecordDraft::decoded(typed.encodedDraft());
    ASSERT_TRUE(draft);
    ContactForm resumed;
    resumed.resume(*draft);
    EXPECT_EQ(resumed.clickButtonSave(), MissingField::None);
    EXPECT_EQ(group->contacts(), std::vector<ContactPtr>({resumed.contact()}));
}

TEST_F(PeopleForms, KeepTheGroupsOfAContactWhoIsDeletedElsewhere)
{
    const auto rowers = context().insert<EntityContactGroup>();
    const auto choir = context().insert<EntityContactGroup>();
    for (const bool isDraft : {false, true}) {
        const ContactPtr ann = contact(u"Ann"_qs, {});
        rowers->setContacts({ann});
        choir->setContacts({});
        ASSERT_FALSE(DBWorker::saveContext());
        ContactForm edited(ann);
        edited.setText(ContactForm::FirstName, u"Anna"_qs);
        rowers->setContacts({});
        choir->setContacts({ann});
        ASSERT_FALSE(DBWorker::saveContext());
        edited.followRow();
        context().deleteObject(ann);
        ASSERT_FALSE(DBWorker::saveContext());
        ContactForm resumed;
        const auto draft = RecordDraft::decoded(edited.encodedDraft());
        ASSERT_TRUE(draft);
        resumed.resume(*draft);
        ContactForm &saved = isDraft ? resumed : edited;
        ASSERT_EQ(saved.clickButtonSave(), MissingField::None);
        EXPECT_EQ(choir->contacts(), std::vector<ContactPtr>({saved.contact()}));
        EXPECT_TRUE(rowers->contacts().empty()) << "she had left it";
    }
}

TEST_F(PeopleForms, OneStoredAnewHasTheTasksAndNotesThatNobodyElseTook)
{
    const auto task = [this](const QString &title) {
        const auto made = context().insert<EntityTask>();
        made->setTitle(title);
        return made;
    };
    const TaskPtr kept = task(u"kept"_qs);
    const TaskPtr given = task(u"given to another"_qs);
    const TaskPtr later = task(u"came during the edit"_qs);
    const ContactPtr ann = contact(u"Ann"_qs, {});
    const ContactPtr bob = contact(u"Bob"_qs, {});
    const auto note = context().insert<EntityNote>();
    note->setContact(ann);
    kept->setDelegateToUser(ann);
    given->setDelegateToUser(ann);
    ASSERT_FALSE(DBWorker::saveContext());
    ContactForm edited(ann);
    edited.noteBelongings();
    edited.setText(ContactForm::FirstName, u"Anna"_qs);
    later->setDelegateToUser(ann);
    ASSERT_FALSE(DBWorker::saveContext());
    edited.followRow();
    edited.noteBelongings();
    context().deleteObject(ann);
    ASSERT_FALSE(DBWorker::saveContext());
    edited.noteBelongings();
    given->setDelegateToUser(bob);
    ASSERT_FALSE(DBWorker::saveContext());
    const auto draft = RecordDraft::decoded(edited.encodedDraft());
    ASSERT_TRUE(draft);
    ContactForm resumed;
    resumed.resume(*draft);
    // A crash comes between.
    const auto again = RecordDraft::decoded(resumed.encodedDraft());
    ASSERT_TRUE(again);
    ContactForm second;
    second.resume(*again);
    ASSERT_EQ(second.clickButtonSave(), MissingField::None);
    const ContactPtr anna = second.contact();
    EXPECT_EQ(kept->delegateToUser(), anna);
    EXPECT_EQ(later->delegateToUser(), anna);
    EXPECT_EQ(given->delegateToUser(), bob);
    EXPECT_EQ(note->contact(), anna);
    EXPECT_FALSE(context().undo());
    EXPECT_EQ(kept->delegateToUser(), nullptr) << "one step";

    const auto house = context().insert<EntityProject>();
    house->setTitle(u"House"_qs);
    kept->setProject(house);
    ASSERT_FALSE(DBWorker::saveContext());
    ProjectForm project(house);
    project.noteBelongings();
    project.setText(project.rows().front().id, u"Home"_qs);
    context().deleteObject(house);
    ASSERT_FALSE(DBWorker::saveContext());
    const auto left = RecordDraft::decoded(project.encodedDraft());
    ASSERT_TRUE(left);
    ProjectForm anew;
    anew.resume(*left);
    ASSERT_TRUE(anew.save());
    ASSERT_TRUE(kept->project());
    EXPECT_EQ(kept->project()->title(), u"Home"_qs);
}

TEST_F(PeopleForms, ResumeADraftWithWhatCameMeanwhile)
{
    const auto boat = context().insert<EntityProject>();
    const auto house = context().insert<EntityProject>();
    const auto barn = context().insert<EntityProject>();
    const ContactPtr ann = contact(u"Ann"_qs, {u"1"_qs, u"2"_qs, u"3"_qs});
    ann->setProject({boat, house});
    ASSERT_FALSE(DBWorker::saveContext());
    const auto phone = [&](const QString &number) {
        const auto all = ann->phone();
        return *std::ranges::find(all, number, &EntityPhone::number);
    };
    const auto placeOf = [](FormItems &items, const QString &number) {
        int place = 0;
        while (items.words(place) != number)
            ++place;
        return place;
    };
    ContactForm typed(ann);
    FormItems &phones = *typed.items(Row::Phones);
    phones.setText(placeOf(phones, u"1"_qs), 0, u"10"_qs);
    phones.setText(phones.count() - 1, 0, u"40"_qs);
    typed.unlink(Row::Projects, boat);
    const auto draft = RecordDraft::decoded(typed.encodedDraft());
    ASSERT_TRUE(draft);
    // The computer goes off, and another device changes the same lists.
    phone(u"2"_qs)->setNumber(u"20"_qs);
    context().deleteObject(phone(u"3"_qs));
    addPhone(ann, u"50"_qs);
    ann->setProject({boat, house, barn});
    ASSERT_FALSE(DBWorker::saveContext());
    ContactForm resumed(ann);
    resumed.resume(*draft);
    ASSERT_TRUE(resumed.save());
    EXPECT_EQ(numbersOf(*ann), (QStringList{u"10"_qs, u"20"_qs, u"40"_qs, u"50"_qs}));
    const auto projects = ann->project();
    EXPECT_EQ(std::set<ProjectPtr>(projects.begin(), projects.end()), (std::set<ProjectPtr>{house, barn}));

    // Of one that is gone, the draft has everything.
    context().deleteObject(ann);
    ASSERT_FALSE(DBWorker::saveContext());
    ContactForm anew;
    anew.resume(*draft);
    EXPECT_EQ(anew.items(Row::Phones)->count(), 5) << "three numbers, the new one, the free one";
    EXPECT_EQ(anew.title(), u"Ann"_qs) << "also what was not edited";
    EXPECT_EQ(anew.values.project, std::vector<ProjectPtr>{house});
}

TEST_F(PeopleForms, AreSavedOnlyWithANameAndAWholePicture)
{
    ContactForm fresh;
    fresh.setText(Row::FirstName, u"  "_qs);
    EXPECT_FALSE(fresh.canSave() || fresh.save());
    fresh.setText(Row::LastName, u"Lee"_qs);
    EXPECT_TRUE(fresh.canSave());
    fresh.setPictureAwaited(true);
    EXPECT_FALSE(fresh.canSave());
    EXPECT_EQ(fresh.reasonNotToSave(), u"The picture is still being read"_qs);
    fresh.setPictureAwaited(false);
    EXPECT_FALSE(fresh.setPicture("no picture"));
    ASSERT_TRUE(fresh.save());

    ContactForm named(fresh.contact());
    named.setText(Row::LastName, QString());
    EXPECT_FALSE(named.canSave());
    EXPECT_EQ(named.clickButtonSave(), MissingField::FirstName);
    ContactForm nameless(contact(QString()));
    nameless.items(Row::Phones)->setText(0, 0, u"1"_qs);
    EXPECT_TRUE(nameless.canSave()) << "one that never had a name needs none";
    EXPECT_EQ(nameless.finishEdit(), FormModel::EditEnd::Saved);
}

TEST_F(PeopleForms, CompaniesHaveTheirContacts)
{
    const ContactPtr ann = contact(u"Ann"_qs);
    ann->setPhotoName(u"a.png"_qs);
    const ContactPtr bob = contact(u"Bob"_qs);
    CompanyForm form;
    form.setText(Row::Title, u"Works"_qs);
    ASSERT_EQ(form.choices(Row::Contacts).size(), 2u);
    form.choose(Row::Contacts, 0);
    ASSERT_EQ(form.links(Row::Contacts).size(), 1u);
    EXPECT_EQ(form.links(Row::Contacts).front().portrait, (Portrait{u"a.png"_qs, u"A"_qs}));
    ASSERT_TRUE(form.save());
    EXPECT_EQ(ann->company(), form.company());
    CompanyForm edit(form.company());
    edit.unlink(Row::Contacts, ann);
    bob->setCompany(form.company());
    ASSERT_FALSE(DBWorker::saveContext());
    ASSERT_EQ(edit.finishEdit(), FormModel::EditEnd::Saved);
    EXPECT_FALSE(ann->company());
    EXPECT_EQ(bob->company(), form.company()) << "who came meanwhile stays";
}

TEST_F(PeopleForms, AreShownByTheirInitials)
{
    EXPECT_EQ(Portrait::initialsOf(u"ann"_qs, u"(lee)"_qs), u"AL"_qs);
    EXPECT_EQ(Portrait::initialsOf(u"𝒜nn"_qs, QString()), u"𝒜"_qs);
    EXPECT_EQ(Portrait::initialsOf(u" "_qs), QString());
    EXPECT_EQ(Portrait::initialsOf(u"…"_qs), u"…"_qs);
    UserDefaults::standard().setObject(settings::contactDisplayOrder, 1);
    EXPECT_EQ(Portrait::initialsOf(u"Ann"_qs, u"Lee"_qs), u"LA"_qs);
    UserDefaults::standard().removeObject(settings::contactDisplayOrder);
}

} // namespace

// Records as tables for spreadsheets, and people as tables that the import reads.

#include "ExchangeTest.h"
#include "foundation/Csv.h"
#include "foundation/Localization.h"
#include "records/people/ContactExport.h"
#include "records/people/ImportableContacts.h"
#include "store/entities/EntityContactGroup.h"
#include "store/entities/EntityProject.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

class TableFileTest : public ExchangeTest
{
protected:
    /// Each record with the titles of its fields that hold something.
    static std::vector<QMap<QString, QString>> table(const QByteArray &text)
    {
        EXPECT_TRUE(text.startsWith(Csv::byteOrderMark));
        QBuffer file;
        file.setData(text);
        file.open(QIODevice::ReadOnly);
        CsvReader reader(file);
        const QStringList titles = reader.next()->fields;
        std::vector<QMap<QString, QString>> records;
        while (const auto record = reader.next()) {
            EXPECT_EQ(record->fields.size(), titles.size());
            QMap<QString, QString> fields;
            for (int place = 0; place < titles.size(); ++place)
                if (!record->fields[place].isEmpty())
                    fields.insert(titles[place], record->fields[place]);
            records.push_back(fields);
        }
        return records;
    }
    ContactPtr makeAnn()
    {
        const auto ann = context().insert<EntityContacts>();
        ann->setFirstName(u"Ann"_qs);
        ann->setLastName(u"O'Lee, \"Bee\""_qs);
        ann->setBirthday(localDate(1990, 2, 3));
        ann->setCompany(make<EntityCompany>(u"=Works"_qs));
        ann->setContactCategory(*DBWorker::allContactCategories().begin());
        for (const auto &[number, type] : {std::pair(u"+49 30 123-4"_qs, 3), std::pair(u"@ann"_qs, 1)}) {
            const auto phone = context().insert<EntityPhone>();
            phone->setNumber(number);
            phone->setType(DBWorker::allPhoneType().at(type));
            phone->setContact(ann);
        }
        const auto address = context().insert<EntityAddress>();
        address->setStreet1(u"Main St 1"_qs);
        address->setStreet2(u"Back yard"_qs);
        address->setCity(u"Ulm"_qs);
        address->setZip(u"089073"_qs);
        address->setAddressType(DBWorker::allAddressType().at(1));
        address->setContact(ann);
        const auto email = context().insert<EntityEmail>();
        email->setMail(u"ann@example.org"_qs);
        email->setType(DBWorker::allEmailType().at(3));
        email->setContact(ann);
        return ann;
    }
    ContactImportAccount import(const QByteArray &text, const QString &name = u"people.csv"_qs) const
    {
        QFile file(root.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        ImportableContacts list;
        list.add(ContactCards::ofFile(file.fileName()));
        while (list.readSome(1'000)) {
        }
        problems = list.problems();
        list.list().markShown(true);
        return list.import([](const QByteArray &) { return QByteArray(); });
    }
    /// The values of a contact, in an order of their own.
    static CNContact valuesOf(const EntityContacts &contact)
    {
        CNContact values = ContactExport().contactOf(contact);
        values.identifier.clear();
        std::ranges::sort(values.phoneNumbers, {}, [](const auto &one) { return one.value; });
        return values;
    }
    static void forgetPeople()
    {
        for (const ContactPtr &contact : EntityContacts::contacts())
            mainContext().deleteObject(contact);
        for (const CompanyPtr &company : DBWorker::allCompany())
            mainContext().deleteObject(company);
        ASSERT_FALSE(DBWorker::saveContext());
    }
    static ContactPtr onlyContact()
    {
        const auto all = EntityContacts::contacts();
        EXPECT_EQ(all.size(), 1);
        return all.at(0);
    }

    mutable QStringList problems;
};

TEST_F(TableFileTest, HasEveryFieldOfATask)
{
    const TaskPtr call = add(u"=SUM(A1)"_qs, TaskType::EmailCall, {}, localDate(2026, 7, 25, 14, 30));
    call->setDetails(u"Two\nlines"_qs);
    call->setPriority(Priority::High);
    call->setAlert(localDate(2026, 11, 25, 14));
    call->setTags({make<EntityTags>(u"b"_qs), make<EntityTags>(u"a"_qs)});
    const auto house = make<EntityProject>(u"House"_qs);
    call->setProject(house);
    const TaskPtr toDo =
        add(u"Paint"_qs, TaskType::ToDo, localDate(2026, 11, 24), localDate(2026, 11, 25, 23, 59, 59));
    ASSERT_FALSE(DBWorker::saveContext());
    const auto records = table(exported(ExportFormat::Csv, std::vector{call, toDo}));
    ASSERT_EQ(records.size(), 2u);
    QMap<QString, QString> fields = records[0];
    EXPECT_EQ(fields[u"Title"_qs], u"=SUM(A1)"_qs);
    EXPECT_EQ(fields[u"Type"_qs], u"Email/Call"_qs);
    EXPECT_EQ(fields[u"Priority"_qs], u"High"_qs);
    EXPECT_EQ(fields[u"Due"_qs], u"2026-07-25T14:30:00+02:00"_qs);
    EXPECT_EQ(fields[u"Alert"_qs], u"2026-11-25T14:00:00+01:00"_qs);
    EXPECT_EQ(fields[u"Tags"_qs], u"a\nb"_qs);
    EXPECT_EQ(fields[u"Project"_qs], u"House"_qs);
    EXPECT_EQ(fields[u"Notes"_qs], u"Two\nlines"_qs);
    EXPECT_EQ(fields[u"Identifier"_qs], call->identifier());
    EXPECT_EQ(records[1].value(u"Start"_qs), u"2026-11-24"_qs);
    EXPECT_EQ(records[1].value(u"Due"_qs), u"2026-11-25"_qs);
    const auto projects = table(exported(ExportFormat::Csv, std::vector{house}));
    EXPECT_EQ(projects.front().value(u"Tasks"_qs), u"=SUM(A1)"_qs);
    const auto note = make<EntityNote>(u"Colours"_qs);
    note->setDetail(u"White"_qs);
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(table(exported(ExportFormat::Csv, std::vector{note})).front().value(u"Notes"_qs), u"White"_qs);
}

TEST_F(TableFileTest, PeopleComeBackAsTheyWere)
{
    const ContactPtr ann = makeAnn();
    const auto choir = make<EntityContactGroup>(u"Choir"_qs);
    choir->setUseGeneralFilter(false);
    choir->setContacts({ann});
    const auto house = make<EntityProject>(u"House"_qs);
    house->setDelegateToUser({ann});
    ASSERT_FALSE(DBWorker::saveContext());
    const CNContact former = valuesOf(*ann);
    const QByteArray text = exported(ExportFormat::Csv, std::vector{ann});
    EXPECT_EQ(table(text).front().value(u"Birthday"_qs), u"1990-02-03"_qs);
    forgetPeople();
    context().deleteObject(choir);
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(import(text).sentences(),
              (QStringList{u"1 contact was imported."_qs, u"1 company was imported."_qs}));
    CNContact present = valuesOf(*onlyContact());
    EXPECT_EQ(present, former);
    EXPECT_THAT(house->delegateToUser(), ElementsAre(onlyContact()));
    ASSERT_EQ(onlyContact()->contactGroup().size(), 1u);
    EXPECT_EQ(onlyContact()->contactGroup().front()->title(), u"Choir"_qs);
    EXPECT_EQ(onlyContact()->contactGroup().front()->useGeneralFilter(), false);
    // Once more, it is there already and lacks nothing.
    const ContactImportAccount again = import(text);
    EXPECT_EQ(again.added, 0);
    EXPECT_TRUE(again.poorer.isEmpty());
}

TEST_F(TableFileTest, PeopleComeBackFromATableInTheUsersLanguage)
{
    const QTemporaryDir words;
    QFile table(words.filePath(u"en.json"_qs));
    ASSERT_TRUE(table.open(QIODevice::WriteOnly));
    table.write(R"({"First Name": "Vorname", "Last Name": "Nachname", "Company": "Firma", "Phone": "Telefon",
        "Type": "Typ", "Address": "Adresse", "Street": "Straße", "Street 2": "Straße 2", "City": "Ort",
        "ZIP": "PLZ", "Email": "E-Mail", "Birthday": "Geburtstag", "mobile": "mobil", "work": "Arbeit"})");
    table.close();
    LocalizationTable::loadDirectory(words.path());
    const ContactPtr ann = makeAnn();
    ASSERT_FALSE(DBWorker::saveContext());
    const CNContact former = valuesOf(*ann);
    const QByteArray text = exported(ExportFormat::Csv, std::vector{ann});
    EXPECT_TRUE(text.contains("Vorname,Nachname,Firma")) << text.constData();
    EXPECT_TRUE(text.contains(",mobil,")) << text.constData();
    forgetPeople();
    EXPECT_EQ(import(text).added, 1);
    EXPECT_EQ(valuesOf(*onlyContact()), former);
    LocalizationTable::unloadDirectory(words.path());
}

TEST_F(TableFileTest, ReadsTablesOfOtherPrograms)
{
    EXPECT_EQ(
        import("Given Name;Family Name;E-mail 1 - Value;E-mail 1 - Label;Mobile Phone;Birthday;Shoe Size\n"
               "Bob;Kay;bob@example.org;Work;0170 1;3.2.1990;44\n"
               ";;;;;;\n"
               "Cem;;;;;31.2.1990;\n")
            .added,
        2);
    EXPECT_THAT(problems, ElementsAre(u"The card in line 3 of \"people.csv\" has no name."_qs));
    const ContactPtr bob = EntityContacts::firstName(u"Bob"_qs, u"Kay"_qs);
    ASSERT_TRUE(bob);
    const CNContact values = valuesOf(*bob);
    EXPECT_EQ(values.emailAddresses.front().value, u"bob@example.org"_qs);
    EXPECT_EQ(values.emailAddresses.front().label, CNLabel::work);
    EXPECT_EQ(values.phoneNumbers.front().label, CNLabel::mobile);
    EXPECT_EQ(bob->birthday(), localDate(1990, 2, 3));
    EXPECT_FALSE(EntityContacts::firstName(u"Cem"_qs, u""_qs)->birthday()) << "there is no such day";
    EXPECT_EQ(import("Name\nAda Maria Lovelace\n", u"names.CSV"_qs).added, 1);
    EXPECT_TRUE(EntityContacts::firstName(u"Ada Maria"_qs, u"Lovelace"_qs));
    EXPECT_EQ(import("colour,size\nred,1\n").added, 0);
    EXPECT_THAT(problems, ElementsAre(u"There is no contact in \"people.csv\"."_qs));
}

} // namespace

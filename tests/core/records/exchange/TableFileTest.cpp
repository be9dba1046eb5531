// Records as tables for spreadsheets, and people as tables that the import reads.

#include "ExchangeTest.h"
#include "foundation/Csv.h"
#include "foundation/Localization.h"
#include "foundation/Region.h"
#include "records/people/ContactExport.h"
#include "records/people/ImportableContacts.h"
#include "store/entities/EntityContactGroup.h"
#include "store/entities/EntityProject.h"

#include <gmock/gmock.h>

#include <random>

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
    EXPECT_THAT(import(text).sentences(), ElementsAre(u"1 contact was imported."_qs,
                                                      u"1 company was imported."_qs, u"1 group is new."_qs));
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
    EXPECT_EQ(import("sep=;\nName;Mail\nKing, Ada;k@b.org\n").added, 1);
    EXPECT_TRUE(EntityContacts::firstName(u"Ada"_qs, u"King"_qs));
    EXPECT_EQ(import("colour,size\nred,1\n").added, 0);
    EXPECT_THAT(problems,
                ElementsAre(u"No title of names is understood in the first line of \"people.csv\", so "
                            "that nothing can be read from it."_qs));
}

/// What there is of somebody, a line each.
QString saidOf(const EntityContacts &contact)
{
    const CNContact values = ContactExport().contactOf(contact);
    QStringList lines = {values.givenName + u'|' + values.familyName + u'|' + values.organizationName,
                         values.jobTitle};
    lines.removeAll(QString());
    if (values.birthday)
        lines << u"%1-%2-%3"_qs.arg(values.birthday->year.value_or(0))
                     .arg(values.birthday->month)
                     .arg(values.birthday->day);
    QStringList details;
    for (const auto *list : {&values.phoneNumbers, &values.emailAddresses, &values.urlAddresses})
        for (const auto &[label, value] : *list)
            details << label + u':' + value;
    for (const auto &[label, place] : values.postalAddresses)
        details << (QStringList{label, place.street, place.extended, place.city, place.state,
                                place.postalCode, place.country})
                       .join(u'/');
    for (const QString &group : values.groups)
        details << u'+' + group;
    details.sort();
    lines += details;
    if (!values.note.isEmpty())
        lines << u"# "_qs + values.note;
    return lines.join(u'\n');
}

TEST_F(TableFileTest, ReadsHeadingsOfMailProgramsAndAddressBooks)
{
    struct Sample
    {
        QByteArray table;
        QString said;
    };
    const std::vector<Sample> samples = {
        {"First Name,Last Name,Company,E-mail Address,E-mail 2 Address,E-mail Type,Mobile Phone,Business "
         "Phone,"
         "Business Phone 2,Home Fax,Birthday,Home Street,Home Street 2,Home City,Home Postal Code,"
         "Home Country/Region,Business Street,Business City,Business State,Notes,Web "
         "Page,Categories,Nickname,"
         "Gender,Anniversary,Spouse\n"
         "Ann,Lee,Works,a@b.org,c@d.org,SMTP,1,2,3,4,12/24/1969,Am Weg 1,Hof,Ulm,80331,Germany,Main St "
         "5,Bonn,"
         "NW,hallo,www.b.org,Club;Choir,Annie,Unspecified,0/0/00,Bob\n",
         u"Ann|Lee|Works\n1969-12-24\n+Choir\n+Club\nhome fax:4\nhome/Am Weg 1/Hof/Ulm//80331/Germany\n"
         "mobile:1\nother:a@b.org\nother:c@d.org\nother:www.b.org\nwork/Main St "
         "5//Bonn/NW//\nwork:2\nwork:3\n"
         "# Nickname: Annie\nSpouse: Bob\nhallo"_qs},
        {"Name,Given Name,Family Name,Birthday,Group Membership,E-mail 1 - Type,E-mail 1 - Value,Phone 1 - "
         "Type,"
         "Phone 1 - Value,Address 1 - Type,Address 1 - Formatted,Address 1 - Street,Address 1 - City,"
         "Address 1 - Region,Address 1 - Postal Code,Address 2 - Formatted,Organization 1 - Name,"
         "Organization 2 - Name\n"
         "Dr. Ann Lee,Ann,Lee,,* friends ::: Tea,* Work,a@b.org ::: c@d.org,Mobile,1,Home,\"1 Main St\nUlm, "
         "BW "
         "89\",1 Main St,Ulm,BW,89,Elsewhere 7,Works,Mill\n",
         u"Ann|Lee|Works\n+Tea\n+friends\nhome/1 Main St//Ulm/BW/89/\nmobile:1\nother/Elsewhere 7/////\n"
         "work:a@b.org\nwork:c@d.org\n# Organization 2 - Name: Mill\nFull Name: Dr. Ann Lee"_qs},
        {"Vorname;Name;Firma;E-Mail-Adresse;Telefon (geschäftlich);Telefon privat;Mobiltelefon;Fax privat;"
         "Geburtstag;Straße;PLZ;Ort;Land;Straße geschäftlich;Ort geschäftlich;Notizen;Anrede\n"
         "Ann;Lee;Works;a@b.org;1;2;3;4;3.2.70;Am Weg 1;80331;Ulm;DE;Hof 2;Bonn;hallo;Frau\n",
         u"Ann|Lee|Works\n1970-2-3\nhome fax:4\nhome:2\nmobile:3\nother/Am Weg "
         u"1//Ulm//80331/DE\nother:a@b.org\n"
         "work/Hof 2//Bonn///\nwork:1\n# Anrede: Frau\nhallo"_qs},
        {"First Name,Last Name,Primary Email,Secondary Email,Home Address,Home City,Home ZipCode,Work Phone,"
         "Birth Year,Birth Month,Birth Day,Custom 1\n"
         "Ann,Lee,a@b.org,c@d.org,Am Weg 1,Ulm,89073,1,1970,2,3,x\n",
         u"Ann|Lee|\n1970-2-3\nhome/Am Weg 1//Ulm//89073/\nother:a@b.org\nother:c@d.org\nwork:1\n# Custom 1: x"_qs},
    };
    for (const Sample &sample : samples) {
        const ContactImportAccount account = import(sample.table);
        EXPECT_EQ(account.added, 1);
        EXPECT_EQ(saidOf(*onlyContact()), sample.said);
        EXPECT_THAT(account.withOtherWords, ElementsAre(u"Ann Lee"_qs));
        for (const auto &note : onlyContact()->note())
            context().deleteObject(note);
        forgetPeople();
    }
}

TEST_F(TableFileTest, LosesNoGeneratedColumnWhateverItIsCalled)
{
    // The titles are of letters that no word has; every field must be found again in what was stored.
    std::mt19937 random(testSeed());
    for (int round = 0; round < 30; ++round) {
        const auto words = [&](int count) {
            QStringList all;
            for (int place = 0; place < count; ++place)
                all << u"Qx%1z%2"_qs.arg(random()).arg(place);
            return all;
        };
        const int count = 1 + round % 7;
        const QStringList titles = words(count);
        // Some have more fields than titles.
        const QStringList fields = words(count + round % 3);
        const QByteArray table = Csv::line(QStringList{u"First Name"_qs, u""_qs} + titles) +
                                 Csv::line(QStringList{u"Ann"_qs, u"untitled"_qs} + fields);
        const ContactImportAccount account = import(table);
        EXPECT_EQ(account.withOtherWords.size(), 1) << table.constData();
        const QString note = ContactExport().contactOf(*onlyContact()).note;
        EXPECT_TRUE(note.contains(u"#2: untitled"_qs)) << qPrintable(note);
        for (int place = 0; place < fields.size(); ++place) {
            const QString title = place < count ? titles[place] : u"#%1"_qs.arg(place + 3);
            EXPECT_TRUE(note.contains(title + u": "_qs + fields[place])) << table.constData();
        }
        for (const auto &one : onlyContact()->note())
            context().deleteObject(one);
        forgetPeople();
    }
}

TEST_F(TableFileTest, PeopleComeBackFromEveryLanguageInAnyOther)
{
    const QString locale = Region::localeIdentifier();
    const ContactPtr ann = makeAnn();
    const auto choir = make<EntityContactGroup>(u"Choir"_qs);
    choir->setUseGeneralFilter(false);
    choir->setContacts({ann});
    const auto note = make<EntityNote>(u"Tea"_qs);
    note->setDetail(u"Green"_qs);
    note->setContact(ann);
    ASSERT_FALSE(DBWorker::saveContext());
    const QString former = saidOf(*ann);
    const QStringList languages = {u"en_US"_qs, u"de_DE"_qs, u"ar_EG"_qs, u"es_ES"_qs, u"fr_FR"_qs,
                                   u"he_IL"_qs, u"it_IT"_qs, u"ja_JP"_qs, u"ko_KR"_qs, u"ms_MY"_qs,
                                   u"nb_NO"_qs, u"nl_NL"_qs, u"pt_PT"_qs, u"ru_RU"_qs, u"sv_SE"_qs,
                                   u"uk_UA"_qs, u"zh_CN"_qs, u"zh_TW"_qs};
    for (int place = 0; place < languages.size(); ++place) {
        const QString other = languages[(place * 5 + 1) % languages.size()];
        SCOPED_TRACE(qPrintable(languages[place] + u" read in "_qs + other));
        Region::setLocale(languages[place]);
        const QByteArray text = exported(ExportFormat::Csv, std::vector{onlyContact()});
        for (const auto &one : onlyContact()->note())
            context().deleteObject(one);
        forgetPeople();
        Region::setLocale(other);
        const ContactImportAccount account = import(text);
        EXPECT_EQ(account.added, 1) << text.constData();
        EXPECT_TRUE(account.withOtherWords.isEmpty()) << text.constData();
        Region::setLocale(u"en_US"_qs);
        EXPECT_EQ(saidOf(*onlyContact()), former);
    }
    Region::setLocale(locale);
}

TEST_F(TableFileTest, ReadsBirthdaysInTheOrderOfTheUserUnlessThereIsOnlyOne)
{
    const QString locale = Region::localeIdentifier();
    struct Sample
    {
        QByteArray text;
        QString american;
        QString british;
    };
    const std::vector<Sample> samples = {{"12/24/1969", u"1969-12-24"_qs, u"1969-12-24"_qs},
                                         {"31/12/80", u"1980-12-31"_qs, u"1980-12-31"_qs},
                                         {"3/4/1970", u"1970-3-4"_qs, u"1970-4-3"_qs},
                                         {"3-4-05", u"2005-3-4"_qs, u"2005-4-3"_qs},
                                         {"03.04.1970", u"1970-4-3"_qs, u"1970-4-3"_qs},
                                         {"1970/4/3", u"1970-4-3"_qs, u"1970-4-3"_qs},
                                         {"19700403", u"1970-4-3"_qs, u"1970-4-3"_qs},
                                         {"4/3/1970 0:00", u"1970-4-3"_qs, u"1970-3-4"_qs},
                                         {"13/13/1970", {}, {}},
                                         {"2/30/1970", {}, {}},
                                         {"in May", {}, {}},
                                         {"1999", {}, {}}};
    for (const bool isAmerican : {true, false}) {
        Region::setLocale(isAmerican ? u"en_US"_qs : u"en_GB"_qs);
        for (const Sample &sample : samples) {
            SCOPED_TRACE(sample.text.constData());
            const ContactImportAccount account = import("First Name,Birthday\nAnn," + sample.text + '\n');
            const QString &wanted = isAmerican ? sample.american : sample.british;
            EXPECT_EQ(account.unreadBirthdays.size(), wanted.isEmpty() ? 1 : 0);
            EXPECT_EQ(saidOf(*onlyContact()),
                      u"Ann||\n"_qs +
                          (wanted.isEmpty() ? u"# Birthday: "_qs + QString::fromUtf8(sample.text) : wanted));
            for (const auto &one : onlyContact()->note())
                context().deleteObject(one);
            forgetPeople();
        }
    }
    Region::setLocale(locale);
}

} // namespace

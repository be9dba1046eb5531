#include "CoreTest.h"

#include "cloud/IcloudManager.h"
#include "contacts/VCardContact.h"
#include "contacts/VCardReader.h"
#include "eventkit/UtcDateTime.h"
#include "records/exchange/RecordExport.h"
#include "records/people/ContactExport.h"
#include "records/people/ImportableContacts.h"
#include "store/entities/EntityContactGroup.h"
#include "store/entities/EntityProject.h"
#include "support/FullDisk.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <random>

namespace {

const QByteArray face = "\x89PNG\r\n\x1a\nface";

class ImportingContacts : public CoreTest
{
protected:
    ~ImportingContacts() override { UserDefaults::standard().removeObject(settings::contactDisplayOrder); }

    template <typename T>
    int count()
    {
        return context().count(T::fetchRequest());
    }
    /// The texts by which records are found, each as often as it stands in the index.
    QStringList indexTexts()
    {
        QStringList texts;
        context().visit(EntitySearchIndex::fetchRequest(), {"string"},
                        [&](const RowReader &row) { texts.append(row.text(0)); });
        texts.sort();
        return texts;
    }
    static QByteArray card(const QByteArray &lines)
    {
        return "BEGIN:VCARD\r\nVERSION:3.0\r\n" + lines + "\r\nEND:VCARD\r\n";
    }
    /// Takes for a picture what has its signature, and tells by its first letter that it made the PNG.
    static QByteArray png(const QByteArray &image)
    {
        return image.startsWith("\x89PNG") ? image : image.startsWith("JPEG") ? face + image : QByteArray();
    }
    static std::unique_ptr<ImportableContacts> listOf(const QByteArray &text)
    {
        auto list = std::make_unique<ImportableContacts>();
        list->add(ContactCards::ofText(u"Friends"_qs, text));
        while (list->readSome(1'000)) {
        }
        return list;
    }
    /// The rows as they are shown: "x" is a mark, "=" one that stays.
    static QString shown(const MarkedRows &list)
    {
        QStringList texts;
        for (int row = 0; row < int(list.rows().size()); ++row) {
            const QString &text = list.rows()[std::size_t(row)].text;
            texts.append(list.isFixed(row) ? u'=' + text : list.isMarked(row) ? u'x' + text : text);
        }
        return texts.join(u' ');
    }
    static ContactImportAccount importAll(const QByteArray &text, const StepBlock &step = {})
    {
        const auto list = listOf(text);
        list->list().markShown(true);
        return list->import(png, step);
    }
    /// Names are never absent in what was imported.
    static ContactPtr contact(const QString &first, const QString &last)
    {
        return EntityContacts::firstName(u""_qs + first, u""_qs + last);
    }
};

TEST_F(ImportingContacts, OffersThemUnderTheirLetters)
{
    const auto ann = context().insert<EntityContacts>();
    ann->setFirstName(u"Ann"_qs);
    ann->setLastName(u"Lee"_qs);
    const QByteArray text = card("N:Lee;Ann;;;") + card("N:Kay;Bob;;;\r\nORG:Works") + card("N:;7even;;;") +
                            card("N:;Ágnes;;;") + card("ORG:Works\r\nFN:Works") + card("TEL:1") +
                            "BEGIN:VCARD\r\nN:Cut;;;;\r\nTEL:1";
    const auto list = listOf(text);
    EXPECT_EQ(shown(list->list()), u"# 7even A Ágnes =Ann Lee B Bob Kay C Cut W Works"_qs);
    EXPECT_EQ(
        list->problems(),
        (QStringList{u"The card in line 23 of \"Friends\" has no name."_qs,
                     u"The card in line 27 of \"Friends\" is cut off; what there is of it is shown."_qs}));
    list->list().markShown(true);
    EXPECT_EQ(list->list().marked().size(), 5u) << "not what is there already";
    UserDefaults::standard().setObject(settings::contactDisplayOrder, 1);
    EXPECT_EQ(shown(listOf(text)->list()), u"# 7even A Ágnes C Cut K Kay Bob L =Lee Ann W Works"_qs);
}

TEST_F(ImportingContacts, WritesEveryFieldOfOne)
{
    const ContactImportAccount account = importAll(card(
        "N:Lee;Ann;;;\r\nORG:Works\r\nBDAY:1990-02-03\r\nTEL;TYPE=CELL:1\r\nTEL;TYPE=HOME,FAX:2\r\nTEL:3\r\n"
        "EMAIL;TYPE=WORK:a@b.org\r\nADR;TYPE=HOME:;Apt 3;1 Main "
        "St\\nNorth;Ulm;BW;89073;Germany\r\nADR:;;;;;;\r\n"
        "X-SOCIALPROFILE;type=linkedin:l.org/ann\r\nPHOTO;ENCODING=b:" +
        QByteArray("JPEG").toBase64()));
    EXPECT_EQ(account.sentences(),
              (QStringList{u"1 contact was imported."_qs, u"1 company was imported."_qs}));
    EXPECT_EQ(account.companies, 1);
    EXPECT_FALSE(context().hasChanges());
    const QStringList texts = indexTexts();
    EXPECT_EQ(texts.count(u"Ann Lee"_qs), 2) << "by herself and by her company, once each";
    EXPECT_EQ(texts.count(u"a@b.org"_qs), 1);
    EXPECT_FALSE(context().undo());
    EXPECT_EQ(indexTexts().count(u"a@b.org"_qs), 0);
    EXPECT_FALSE(context().redo());
    EXPECT_EQ(indexTexts(), texts);
    const ContactPtr ann = contact(u"Ann"_qs, u"Lee"_qs);
    ASSERT_TRUE(ann);
    EXPECT_EQ(ann->birthday(), localDate(1990, 2, 3));
    EXPECT_EQ(ann->company()->title(), u"Works"_qs);
    QStringList values;
    for (const auto &phone : ann->phone())
        values.append(phone->type()->title() + u' ' + phone->number());
    for (const auto &email : ann->email())
        values.append(email->type()->title() + u' ' + email->mail());
    for (const auto &url : ann->url())
        values.append(url->type()->title() + u' ' + url->url());
    values.sort();
    EXPECT_EQ(values, (QStringList{u"LinkedIn l.org/ann"_qs, u"home fax 2"_qs, u"mobile 1"_qs, u"other 3"_qs,
                                   u"work a@b.org"_qs}));
    ASSERT_EQ(ann->address().size(), 1u) << "an empty one is left out";
    const auto address = ann->address().front();
    EXPECT_EQ((QStringList{address->street1(), address->street2(), address->city(), address->state(),
                           address->zip(), address->country(), address->addressType()->title()}),
              (QStringList{u"1 Main St, North"_qs, u"Apt 3"_qs, u"Ulm"_qs, u"BW"_qs, u"89073"_qs,
                           u"Germany"_qs, u"home"_qs}));
    EXPECT_EQ(ann->photoName(), u"21-11-2026 09:15:00:000.png"_qs);
    EXPECT_EQ(IcloudManager::imageData(ann->photoName()), face + "JPEG");
}

TEST_F(ImportingContacts, AddsNoneTwiceAndLeavesNothingBehind)
{
    const QByteArray text = card("N:Lee;Ann;;;\r\nTEL:1\r\nORG:Works") + card("N:Kay;Bob;;;\r\nORG:Works");
    EXPECT_EQ(importAll(text).added, 2);
    EXPECT_EQ(count<EntityCompany>(), 1) << "one company for both";
    EXPECT_EQ(contact(u"Bob"_qs, u"Kay"_qs)->company(), contact(u"Ann"_qs, u"Lee"_qs)->company());

    // The window lists names in one order, the test is by both names: only the names together count.
    ContactImport import(png);
    const auto other = [](const QString &first, const QString &last, const QString &number,
                          const QString &company) {
        CNContact made;
        made.givenName = first;
        made.familyName = last;
        made.phoneNumbers = {{CNLabel::home, number}};
        made.organizationName = company;
        return made;
    };
    EXPECT_FALSE(import.importContactToDataBase(other(u"Ann"_qs, u"Lee"_qs, u"(1)"_qs, u"Elsewhere"_qs)));
    EXPECT_FALSE(import.importContactToDataBase(other(u"Bob"_qs, u"Kay"_qs, u"2"_qs, u"Works"_qs)));
    EXPECT_TRUE(import.importContactToDataBase(other(u"Lee"_qs, u"Ann"_qs, u"3"_qs, u"Works"_qs)));
    EXPECT_FALSE(import.importContactToDataBase(other(u"Lee"_qs, u"Ann"_qs, u"4"_qs, u"Works"_qs)));
    EXPECT_FALSE(import.importContactToDataBase(other({}, {}, u"5"_qs, u"Nowhere"_qs)));
    const ContactImportAccount account = import.finish();
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(account.added, 1);
    EXPECT_EQ(account.existing, (QStringList{u"Ann Lee"_qs, u"Bob Kay"_qs, u"Lee Ann"_qs}));
    EXPECT_EQ(account.poorer, (QStringList{u"Ann Lee"_qs, u"Bob Kay"_qs}))
        << "one works elsewhere, the other has no phone yet; both stay as they are";
    EXPECT_EQ(account.namesakes, QStringList(u"Lee Ann"_qs));
    EXPECT_EQ(account.refused, QStringList(u"\"Nowhere\" is no person."_qs));
    EXPECT_EQ(count<EntityContacts>(), 3);
    EXPECT_EQ(count<EntityPhone>(), 2);
    EXPECT_EQ(count<EntityCompany>(), 1) << "the company of one that is there is not made either";
}

TEST_F(ImportingContacts, FillsNobodyOfWhomThereIsANamesake)
{
    const auto known = [&](const QString &number) {
        const auto made = context().insert<EntityContacts>();
        made->setFirstName(u"Ann"_qs);
        made->setLastName(u"Lee"_qs);
        if (!number.isEmpty()) {
            const auto phone = context().insert<EntityPhone>();
            phone->setNumber(number);
            phone->setContact(made);
        }
        EXPECT_FALSE(DBWorker::saveContext());
        return made;
    };
    known(u"1"_qs);
    const ContactPtr bare = known({});
    const auto list = listOf(card("N:Lee;Ann;;;\r\nTEL:1\r\nEMAIL:a@b.org"));
    EXPECT_EQ(shown(list->list()), u"A =Ann Lee"_qs) << "whose card it is nobody can know";
    ContactImport import(png);
    CNContact card;
    card.givenName = u"Ann"_qs;
    card.familyName = u"Lee"_qs;
    card.phoneNumbers = {{CNLabel::home, u"1"_qs}};
    EXPECT_FALSE(import.importContactToDataBase(card));
    EXPECT_TRUE(bare->phone().empty());
}

TEST_F(ImportingContacts, TellsOfASecondCardOfOneNameThatSaysMore)
{
    const QByteArray ann = card("N:Lee;Ann;;;\r\nTEL:1\r\nEMAIL:a@b.org\r\nNOTE:Sings");
    const QByteArray works = card("ORG:Works\r\nTEL:2");
    const ContactImportAccount account =
        importAll(ann + ann + card("N:Lee;Ann;;;\r\nTEL:1\r\nTEL:7") + card("N:Kay;Bob;;;\r\nTEL:3") +
                  card("N:Kay;Bob;;;\r\nTEL:4") + card("N:Ray;Cid;;;") + card("N:Ray;Cid;;;\r\nNOTE:Tall") +
                  works + card("ORG:Works\r\nADR:;;Main St 1;Ulm;;;") + works);
    EXPECT_EQ(account.added, 3);
    EXPECT_EQ(account.addedCompanies, 1);
    EXPECT_EQ(account.existing, (QStringList{u"Ann Lee"_qs, u"Ann Lee"_qs, u"Bob Kay"_qs, u"Cid Ray"_qs,
                                             u"Works"_qs, u"Works"_qs}));
    EXPECT_EQ(account.poorer, (QStringList{u"Ann Lee"_qs, u"Cid Ray"_qs, u"Works"_qs}));
    EXPECT_EQ(account.namesakes, QStringList(u"Bob Kay"_qs));
    EXPECT_TRUE(account.sentences().join(u'\n').contains(u"which may be those of other people"_qs))
        << qPrintable(account.sentences().join(u'\n'));
    // Those that have been here for long are compared the same, each card by itself.
    const QByteArray newcomer = card("N:New;Eva;;;");
    const ContactImportAccount again = importAll(
        ann + card("N:Lee;Ann;;;\r\nTEL:1\r\nADR:;;Elsewhere 1;Ulm;;;") +
        card("N:Lee;Ann;;;\r\nTEL:8\r\nEMAIL:other@b.org") + card("N:Kay;Bob;;;\r\nTEL:4") + newcomer);
    EXPECT_EQ(again.added, 1);
    EXPECT_EQ(again.poorer, QStringList(u"Ann Lee"_qs));
    EXPECT_EQ(again.namesakes, (QStringList{u"Ann Lee"_qs, u"Bob Kay"_qs}));
}

TEST_F(ImportingContacts, ComparesTheJobTitlesOfThoseWhoAreThere)
{
    struct Case
    {
        const char *there;
        const char *card;
        bool saysMore;
    };
    const auto cases = std::to_array<Case>({{"", "TITLE:Friend", true},
                                            {"TITLE:Friend", "TITLE:Coworker", true},
                                            {"TITLE:Friend", "TITLE:friend", false},
                                            {"TITLE:Friend", "TITLE:Freund", false},
                                            {"TITLE:Friend", "", false},
                                            {"TITLE:Beekeeper", "TITLE:Beekeeper", false},
                                            {"TITLE:Beekeeper", "TITLE:Smith", true}});
    int number = 0;
    for (const Case &one : cases) {
        const QByteArray name = "N:Lee;Ann" + QByteArray::number(++number) + ";;;\r\nTEL:1\r\n";
        importAll(card(name + one.there));
        const ContactImportAccount account =
            importAll(card("N:;Eve" + name.mid(5, 5)) + card(name + one.card));
        EXPECT_EQ(account.poorer.size(), one.saysMore ? 1 : 0) << one.there << " and " << one.card;
        // Nobody of one import is compared with the store.
        const QByteArray other = "N:Kay;Bob" + QByteArray::number(number) + ";;;\r\nTEL:1\r\n";
        EXPECT_EQ(importAll(card(other + one.there) + card(other + one.card)).poorer.size(),
                  one.saysMore ? 1 : 0)
            << one.there << " and then " << one.card;
    }
}

TEST_F(ImportingContacts, CompletesWhomOnlyTheNameIsKnownOfAndBringsGroups)
{
    const auto ann = context().insert<EntityContacts>();
    ann->setFirstName(u"Ann"_qs);
    ann->setLastName(u"Lee"_qs);
    const auto note = context().insert<EntityNote>();
    note->setTitle(u"Ann Lee"_qs);
    note->setDetail(u"Sings\nRings"_qs);
    note->setContact(ann);
    const auto choir = context().insert<EntityContactGroup>();
    choir->setTitle(u"Choir"_qs);
    choir->setUseGeneralFilter(false);
    ASSERT_FALSE(DBWorker::saveContext());
    const QByteArray text =
        card("N:Lee;Ann;;;\r\nTEL:1\r\nNOTE:Sings\\nRings\r\nCATEGORIES:Choir,Tea\\, black") +
        card("N:Kay;Bob;;;\r\nCATEGORIES:Choir");
    const ContactImportAccount account = importAll(text);
    EXPECT_EQ(account.sentences(),
              (QStringList{u"1 contact was imported."_qs, u"1 group is new."_qs,
                           u"One was known by name only and now has what its card says: Ann Lee."_qs}));
    EXPECT_EQ(ContactExport().contactOf(*ann).groups, (QStringList{u"Choir"_qs, u"Tea, black"_qs}));
    EXPECT_EQ(ann->phone().size(), 1u);
    EXPECT_EQ(count<EntityNote>(), 1) << "what the card says of her stands there already";
    EXPECT_EQ(count<EntityContactGroup>(), 2);
    EXPECT_EQ(importAll(text + card("N:;Cid;;;")).poorer, QStringList());
    // Later she lacks a group, which she is not given again.
    choir->setContacts({});
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(importAll(text + card("N:;Dan;;;")).poorer, QStringList(u"Ann Lee"_qs));
}

TEST_F(ImportingContacts, FindsTypesByTheirPlace)
{
    const auto types = DBWorker::allPhoneType();
    types.at(3)->setTitle(u"Handy"_qs);
    const auto boat = context().insert<EntityPhoneType>();
    boat->setTitle(u"Boat"_qs);
    boat->setIndex(types.at(8)->index().value_or(0) + 1);
    ContactImport import(png);
    const QStringList labels = {u"home"_qs,     u"work"_qs,     u"iPhone"_qs, u"mobile"_qs, u"main"_qs,
                                u"home fax"_qs, u"work fax"_qs, u"pager"_qs,  u"other"_qs};
    for (int place = 0; place < labels.size(); ++place)
        EXPECT_EQ(import.phoneTypeWith(labels[place]), types.at(place)) << qPrintable(labels[place]);
    EXPECT_EQ(import.phoneTypeWith(u"HOME"_qs), types.at(0));
    EXPECT_EQ(import.phoneTypeWith(u"boat"_qs), boat) << "one of the user's own";
    EXPECT_EQ(import.phoneTypeWith(u"fax"_qs), boat) << "any other label gets the last type";
    EXPECT_EQ(import.phoneTypeWith({}), boat);
    EXPECT_EQ(import.emailTypeWith(u"iCloud"_qs)->title(), u"iCloud"_qs);
    EXPECT_EQ(import.emailTypeWith(u"mobile"_qs)->title(), u"other"_qs);
    EXPECT_EQ(import.addressTypeWith(u"work"_qs)->title(), u"work"_qs);
    EXPECT_EQ(import.addressTypeWith(u"iCloud"_qs)->title(), u"other"_qs);
    EXPECT_EQ(import.urlsTypeWith(u"twitter"_qs)->title(), u"Twitter"_qs);
    EXPECT_EQ(import.urlsTypeWith(u"homepage"_qs)->title(), u"other"_qs);
    for (const auto &type : DBWorker::allEmailType())
        context().deleteObject(type);
    EXPECT_FALSE(ContactImport(png).emailTypeWith(u"home"_qs));
}

TEST_F(ImportingContacts, IsOneStepThatCanBeTakenBackAndEndsWhereTheUserWants)
{
    QByteArray text;
    for (int number = 0; number < 10; ++number)
        text += card("N:;Ann" + QByteArray::number(number) + ";;;\r\nTEL:1\r\nORG:Works");
    int steps = 0;
    const ContactImportAccount account = importAll(text, [&] { return ++steps < 4; });
    EXPECT_TRUE(account.wasStopped);
    EXPECT_EQ(account.added, 4);
    EXPECT_EQ(count<EntityContacts>(), 4) << "what was done stays";
    EXPECT_EQ(importAll(text).existing.size(), 4) << "not among the chosen, and told of all the same";
    EXPECT_EQ(count<EntityContacts>(), 10);
    EXPECT_EQ(context().undoName(), u"Import Contacts"_qs);
    EXPECT_FALSE(context().undo());
    EXPECT_EQ(count<EntityContacts>(), 4);
    EXPECT_FALSE(context().undo());
    EXPECT_EQ(count<EntityContacts>() + count<EntityPhone>() + count<EntityCompany>(), 0);
    EXPECT_FALSE(context().redo());
    EXPECT_EQ(count<EntityPhone>(), 4);
}

TEST_F(ImportingContacts, StopsBetweenFilesAndTrustsNoneThatHasChanged)
{
    const QTemporaryDir folder;
    const auto write = [&folder](const QString &name, const QByteArray &text) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return file.fileName();
    };
    ImportableContacts list;
    for (const char *name : {"Ann", "Bob", "Cid"})
        list.add(
            ContactCards::ofFile(write(QString::fromUtf8(name), card(QByteArray("N:;") + name + ";;;"))));
    while (list.readSome(1000)) {
    }
    list.list().markShown(true);
    const ContactImportAccount stopped = list.import(png, [] { return false; });
    EXPECT_TRUE(stopped.wasStopped);
    EXPECT_EQ(count<EntityContacts>(), 1);

    ImportableContacts changed;
    const QString path = write(u"both"_qs, card("N:;Dan;;;") + card("N:;Eve;;;"));
    changed.add(ContactCards::ofFile(path));
    while (changed.readSome(1000)) {
    }
    changed.list().toggle(1);
    write(u"both"_qs, card("N:;Eve;;;") + card("N:;Dan;;;"));
    const ContactImportAccount account = changed.import(png);
    EXPECT_EQ(account.added, 0) << "Nobody else comes in";
    EXPECT_EQ(account.refused.size(), 1);
}

TEST_F(ImportingContacts, KeepsInANoteWhatNoFieldHolds)
{
    const ContactImportAccount account = importAll(
        card("N:Lee;Ann;;;\r\nBDAY:circa 1800\r\nTITLE:Beekeeper\r\nNOTE:Likes tea\\nand rain") +
        card("N:Kay;Bob;;;\r\nBDAY:--0517") + card("N:Day;Cid;;;\r\nTITLE:coworker\r\nBDAY:1970-05-17") +
        card("KIND:org\r\nORG:Works\r\nNOTE:Rings twice"));
    const auto noteOf = [&](const QString &first, const QString &last) {
        const auto notes = contact(first, last)->note();
        return notes.empty() ? QString() : notes.front()->detail();
    };
    EXPECT_EQ(noteOf(u"Ann"_qs, u"Lee"_qs),
              u"Birthday: circa 1800\nJob Title: Beekeeper\nLikes tea\nand rain"_qs);
    EXPECT_EQ(noteOf(u"Bob"_qs, u"Kay"_qs), u"Birthday: May 17"_qs);
    EXPECT_EQ(count<EntityNote>(), 2) << "a category and a birthday have their fields";
    EXPECT_EQ(DBWorker::allCompany().first()->details(), u"Rings twice"_qs);
    const QString said = account.sentences().join(u'\n');
    for (const QString &sentence :
         {u"One birthday without a year stands in a note: Bob Kay."_qs,
          u"One birthday cannot be read and stands in a note: Ann Lee."_qs,
          u"One job title is none of those that there are and stands in a note: Ann Lee."_qs})
        EXPECT_TRUE(said.contains(sentence)) << qPrintable(said);
    ASSERT_FALSE(context().undo());
    EXPECT_EQ(count<EntityNote>() + count<EntityContacts>(), 0);
}

TEST_F(ImportingContacts, NamesEachPictureAndSaysWhichAreNone)
{
    QByteArray text;
    for (int number = 0; number < 5; ++number)
        text += card("N:;Ann" + QByteArray::number(number) +
                     ";;;\r\nPHOTO;ENCODING=b:" + (face + char('0' + number)).toBase64());
    text += card("N:;Bob;;;\r\nPHOTO;ENCODING=b:" + QByteArray("<svg/>").toBase64());
    text += card("N:;Cid;;;\r\nPHOTO;VALUE=uri:https://b.org/c.png") + card("N:;Dan;;;\r\nBDAY:--0517");
    const ContactImportAccount account = importAll(text);
    EXPECT_EQ(account.withoutPicture, QStringList(u"Bob"_qs));
    EXPECT_EQ(account.withPictureOnWeb, QStringList(u"Cid"_qs));
    ASSERT_EQ(contact(u"Cid"_qs, u""_qs)->note().size(), 1u);
    EXPECT_EQ(contact(u"Cid"_qs, u""_qs)->note().front()->detail(), u"Picture: https://b.org/c.png"_qs);
    EXPECT_EQ(account.withoutYear, QStringList(u"Dan"_qs));
    EXPECT_EQ(contact(u"Dan"_qs, u""_qs)->birthday(), std::nullopt);
    EXPECT_EQ(account.sentences().size(), 4) << qPrintable(account.sentences().join(u'\n'));
    QSet<QString> names;
    for (int number = 0; number < 5; ++number) {
        const ContactPtr ann = contact(u"Ann%1"_qs.arg(number), u""_qs);
        ASSERT_TRUE(ann);
        names.insert(ann->photoName());
        EXPECT_EQ(IcloudManager::imageData(ann->photoName()), face + char('0' + number));
    }
    EXPECT_EQ(names.size(), 5) << "also within one millisecond";
    const ContactImportAccount second = importAll(card("N:;Eve;;;\r\nPHOTO;ENCODING=b:" + face.toBase64()));
    EXPECT_FALSE(names.contains(contact(u"Eve"_qs, u""_qs)->photoName()))
        << "nor a name of an earlier import";
}

TEST_F(ImportingContacts, WaitsForTheNextSaveIfTheDiskIsFull)
{
    QCoreApplication::processEvents();
    const LogCapture log;
    const ScriptedAlerts alerts({Alert::firstButton});
    const auto list = listOf(card("N:;Ann;;;\r\nPHOTO;ENCODING=b:" + face.toBase64()));
    list->list().markShown(true);
    {
        const FullDisk disk;
        const ContactImportAccount account = list->import(png);
        EXPECT_FALSE(account.isSaved);
        EXPECT_EQ(account.withoutPicture, QStringList(u"Ann"_qs));
    }
    EXPECT_EQ(alerts.asked().size(), 1u);
    const ContactImportAccount again = list->import(png);
    EXPECT_TRUE(again.isSaved);
    EXPECT_EQ(again.filledContacts, QStringList(u"Ann"_qs)) << "with the picture, too";
    EXPECT_FALSE(contact(u"Ann"_qs, u""_qs)->photoName().isEmpty());
    EXPECT_FALSE(context().hasChanges());
    EXPECT_EQ(count<EntityContacts>(), 1);
    EXPECT_EQ(indexTexts().count(u"Ann"_qs), 1);
}

TEST_F(ImportingContacts, SaysWhichFilesItCannotReadAndReadsTheRest)
{
    const QString folder = FileManager::appFolderURL();
    const auto write = [&](const QString &name, const QByteArray &bytes) {
        QFile file(folder + u'/' + name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return file.fileName();
    };
    ImportableContacts list;
    list.add(ContactCards::ofFile(folder + u"/none.vcf"_qs));
    list.add(ContactCards::ofFile(folder));
    list.add(ContactCards::ofFile(write(u"empty.vcf"_qs, "")));
    const QString changing = write(u"two.vcf"_qs, card("N:;Ann;;;") + card("N:;Bob;;;"));
    list.add(ContactCards::ofFile(changing));
    EXPECT_TRUE(list.isReading());
    while (list.readSome(0))
        EXPECT_LE(list.percentRead(), 100);
    EXPECT_EQ(list.problems(), (QStringList{u"\"none.vcf\" cannot be read: No such file or directory."_qs,
                                            u"\"Morvane\" cannot be read: it is no file."_qs,
                                            u"There is no contact in \"empty.vcf\"."_qs}));
    EXPECT_EQ(shown(list.list()), u"A Ann B Bob"_qs);
    list.list().markShown(true);
    write(u"two.vcf"_qs, card("N:;Ann;;;"));
    const ContactImportAccount account = list.import(png);
    EXPECT_EQ(account.added, 1);
    EXPECT_EQ(account.refused, QStringList(u"\"two.vcf\" has fewer contacts than before."_qs));
}

TEST_F(ImportingContacts, TakesWhatWasExported)
{
    IcloudManager::saveImageWithData(face, u"face.png"_qs);
    const auto works = context().insert<EntityCompany>();
    works->setTitle(u"Works; \"Tools\", Ltd"_qs);
    const auto phones = DBWorker::allPhoneType();
    std::mt19937 random(1);
    std::vector<ContactPtr> contacts;
    std::vector<CNContact> wanted;
    for (int number = 0; number < 40; ++number) {
        const auto contact = context().insert<EntityContacts>();
        contact->setFirstName(u"Ann %1"_qs.arg(number));
        contact->setLastName(number % 3 ? u"Grün, \\n %1"_qs.arg(number) : QString());
        if (number % 2)
            contact->setCompany(works);
        if (number % 5 == 0)
            contact->setBirthday(localDate(1900 + number, 2, 28));
        if (number % 7 == 0)
            contact->setPhotoName(u"face.png"_qs);
        for (int place = 0; place < number % 4; ++place) {
            const auto phone = context().insert<EntityPhone>();
            phone->setNumber(u"+49 (0) %1"_qs.arg(random()));
            phone->setType(phones.at(int(random() % 9)));
            phone->setContact(contact);
            const auto address = context().insert<EntityAddress>();
            address->setStreet1(u"Große Gasse %1; hinten"_qs.arg(place));
            address->setStreet2(place % 2 ? u"2. Stock"_qs : QString());
            address->setCountry(u"Österreich"_qs);
            address->setAddressType(DBWorker::allAddressType().at(place % 3));
            address->setContact(contact);
            const auto url = context().insert<EntityURL>();
            url->setUrl(u"https://b.org/?a=b;c&d=%1,e"_qs.arg(place));
            url->setType(DBWorker::allURLType().at(int(random() % 6)));
            url->setContact(contact);
            const auto email = context().insert<EntityEmail>();
            email->setMail(u"ann%1@grün.example"_qs.arg(place));
            email->setType(DBWorker::allEmailType().at(int(random() % 4)));
            email->setContact(contact);
        }
        contacts.push_back(contact);
    }
    ASSERT_FALSE(DBWorker::saveContext());
    const auto valuesOf = [](const EntityContacts &contact) {
        CNContact values = ContactExport().contactOf(contact);
        values.identifier.clear();
        const auto byValue = [](auto &all) {
            std::ranges::sort(all, {}, [](const auto &one) { return one.label + one.value; });
        };
        byValue(values.phoneNumbers);
        byValue(values.emailAddresses);
        byValue(values.urlAddresses);
        std::ranges::sort(values.postalAddresses, {}, [](const auto &one) { return one.value.street; });
        return values;
    };
    for (const ContactPtr &contact : contacts)
        wanted.push_back(valuesOf(*contact));
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    std::vector<RowId> rows;
    for (const ContactPtr &one : contacts)
        rows.push_back(one->rowId());
    ASSERT_FALSE(RecordExport::write(file, ExportFormat::VCard, EntityContacts::entityName, rows));
    ASSERT_FALSE(RecordExport::write(file, ExportFormat::VCard, EntityCompany::entityName, {works->rowId()}));
    for (const ContactPtr &contact : contacts)
        context().deleteObject(contact);
    context().deleteObject(works);
    ASSERT_FALSE(DBWorker::saveContext());
    const auto list = listOf(file.data());
    list->list().markShown(true);
    const ContactImportAccount account = list->import(png);
    EXPECT_EQ(account.added, 40);
    EXPECT_EQ(account.addedCompanies, 1);
    for (const CNContact &one : wanted) {
        const ContactPtr again = contact(one.givenName, one.familyName);
        ASSERT_TRUE(again) << qPrintable(one.givenName);
        EXPECT_EQ(valuesOf(*again), one) << qPrintable(one.givenName);
    }
}

TEST_F(ImportingContacts, BringsBackProjectsAndEachNote)
{
    const auto notesOf = [](const EntityContacts &contact) {
        QStringList told;
        for (const auto &note : contact.note())
            told.append(note->title() + u'|' + note->detail() + u'|' +
                        (note->creationDate() ? UtcDateTime::string(*note->creationDate()) : u"-"_qs) +
                        (note->company() ? u'|' + note->company()->title() : QString()));
        told.sort();
        return told;
    };
    const auto projectsOf = [](const EntityContacts &contact) {
        QStringList titles;
        for (const auto &project : contact.project())
            titles.append(project->title());
        titles.sort();
        return titles;
    };
    const auto forget = [this] {
        const auto remove = [this](const auto &records) {
            for (const auto &record : records)
                context().deleteObject(record);
        };
        remove(context().fetch<EntityContacts>(EntityContacts::fetchRequest()));
        remove(context().fetch<EntityNote>(EntityNote::fetchRequest()));
        remove(context().fetch<EntityProject>(EntityProject::fetchRequest()));
        ASSERT_FALSE(DBWorker::saveContext());
    };
    for (const bool hasPhone : {true, false}) {
        const auto ann = context().insert<EntityContacts>();
        ann->setFirstName(u"Ann"_qs);
        ann->setLastName(u"Lee"_qs);
        if (hasPhone) {
            const auto phone = context().insert<EntityPhone>();
            phone->setNumber(u"1"_qs);
            phone->setContact(ann);
        }
        int day = 0;
        const auto addNote = [&](const QString &title, const QString &detail) {
            const auto note = context().insert<EntityNote>();
            note->setTitle(title);
            note->setDetail(detail);
            note->setContact(ann);
            if (++day < 5)
                note->setCreationDate(utcDate(2026, 9, day, 8));
        };
        addNote(u"Ann Lee"_qs, u"Sings\nloud; and\\nclear"_qs);
        addNote(u"Lee Ann"_qs, u"Lee Ann\nsaid so"_qs);
        addNote(u"Tea, black"_qs, {});
        addNote(u"Tea, black"_qs, u"Green\n\nX-MORVANE-NOTE:no"_qs);
        addNote(u"Some day"_qs, u"Rows"_qs);
        const auto works = context().insert<EntityCompany>();
        works->setTitle(u"Works; \"old\""_qs);
        addNote(u"With the works"_qs, u"Offer"_qs);
        ann->note().back()->setCompany(works);
        // A list by rules says nothing of its companies.
        const auto list = context().insert<EntityContactGroup>();
        list->setTitle(u"Bakers"_qs);
        list->addRelated("companies", works);
        for (const QString &title : {u"Boat"_qs, u"House; \"old\", front"_qs}) {
            const auto project = context().insert<EntityProject>();
            project->setTitle(title);
            ann->addRelated("project", project);
        }
        ASSERT_FALSE(DBWorker::saveContext());
        const QStringList notes = notesOf(*ann);
        const QStringList projects = projectsOf(*ann);
        QBuffer file;
        file.open(QIODevice::ReadWrite);
        ASSERT_FALSE(
            RecordExport::write(file, ExportFormat::VCard, EntityContacts::entityName, {ann->rowId()}));
        EXPECT_TRUE(ContactExport().contactOf(*works).groups.isEmpty());
        const auto leftOut = [&](ExportFormat format) {
            return RecordExport::wordsOnWhatIsLeftOut(format, EntityContacts::entityName, {ann->rowId()});
        };
        EXPECT_EQ(leftOut(ExportFormat::VCard), QString());
        EXPECT_EQ(leftOut(ExportFormat::Csv),
                  u"1 person has several notes, which a table joins to one. A file "
                  u"of vCards keeps them apart."_qs);
        const QString asOne = ContactExport().contactOf(*ann).note;
        file.seek(0);
        EXPECT_EQ(contactFrom(*VCardReader(file).next()).note, asOne) << "what others read";
        const QByteArray text = file.data();
        forget();
        EXPECT_TRUE(importAll(text).sentences().contains(u"2 projects are new."_qs));
        for (int time = 0; time < 2; ++time) {
            const ContactPtr again = contact(u"Ann"_qs, u"Lee"_qs);
            ASSERT_TRUE(again);
            EXPECT_EQ(notesOf(*again), notes);
            EXPECT_EQ(projectsOf(*again), projects);
            const ContactImportAccount account =
                importAll(text + card("N:;Eve" + QByteArray::number(time) + ";;;"));
            EXPECT_EQ(account.existing, QStringList(u"Ann Lee"_qs));
            EXPECT_TRUE(account.poorer.isEmpty() && account.withOtherWords.isEmpty());
        }
        // Where somebody has written the note anew, or has spoiled our lines, what everybody reads counts.
        for (const auto &[from, to] : {std::pair<QByteArray, QByteArray>("NOTE:Some day", "NOTE:Swims"),
                                       {"X-MORVANE-NOTE:2026", "X-MORVANE-NOTE:;;;;2026"},
                                       {"X-MORVANE-NOTE:20260901T080000Z;", "X-MORVANE-NOTE:"}}) {
            forget();
            QByteArray edited = text;
            const qsizetype place = edited.indexOf("\r\n" + from);
            ASSERT_GT(place, 0) << from.constData();
            importAll(edited.replace(place + 2, from.size(), to));
            const ContactPtr other = contact(u"Ann"_qs, u"Lee"_qs);
            ASSERT_EQ(other->note().size(), 1u) << to.constData();
            EXPECT_EQ(other->note()[0]->detail(), to == "NOTE:Swims" ? u"Swims"_qs + asOne.mid(8) : asOne);
        }
        forget();
    }
}

TEST_F(ImportingContacts, MakesCompaniesOfOrganizations)
{
    const QByteArray text =
        card("ORG:Works\r\nFN:Works\r\nTEL;TYPE=WORK:1\r\nADR;TYPE=WORK:;;1 Main St;Ulm;;;\r\n"
             "PHOTO;ENCODING=b:" +
             QByteArray("JPEG").toBase64()) +
        card("N:Lee;Ann;;;\r\nORG:Works") + card("ORG:Works\r\nFN:Works\r\nTEL:2") +
        card("ORG:Mill\r\nFN:Mill");
    EXPECT_EQ(
        importAll(text).sentences(),
        (QStringList{u"1 contact was imported."_qs, u"2 companies were imported."_qs,
                     u"One was there already: Works."_qs,
                     u"One of those lacks something that its card has, and stays as it is: Works."_qs}));
    EXPECT_EQ(count<EntityCompany>(), 2);
    const CompanyPtr works = EntityCompany::name(u"Works"_qs);
    ASSERT_TRUE(works);
    EXPECT_EQ(contact(u"Ann"_qs, u"Lee"_qs)->company(), works);
    ASSERT_EQ(works->phone().size(), 1u) << "of the first card alone";
    EXPECT_EQ(works->phone()[0]->number(), u"1"_qs);
    EXPECT_EQ(works->address()[0]->city(), u"Ulm"_qs);
    EXPECT_FALSE(works->photoName().isEmpty());
    // Once more, both are there and stay as they are.
    const auto list = listOf(text);
    EXPECT_EQ(shown(list->list()), u"A =Ann Lee M =Mill W =Works =Works"_qs);
    EXPECT_EQ(list->import(png).addedCompanies, 0);
    EXPECT_EQ(count<EntityPhone>(), 1);
    // The step is taken back as a whole.
    ASSERT_FALSE(context().undo());
    EXPECT_EQ(count<EntityCompany>(), 0);
}

TEST_F(ImportingContacts, FillsACompanyThatPeopleBroughtAlongAndSaysWhatOthersLack)
{
    importAll(card("N:Lee;Ann;;;\r\nORG:Works"));
    const QByteArray works = card("ORG:Works\r\nFN:Works\r\nTEL;TYPE=WORK:1\r\nNOTE:Since 1901");
    const auto list = listOf(works);
    EXPECT_EQ(shown(list->list()), u"W Works"_qs) << "can be marked";
    list->list().markShown(true);
    EXPECT_EQ(list->import(png).sentences(),
              QStringList(u"One was known by name only and now has what its card says: Works."_qs));
    ASSERT_EQ(count<EntityCompany>(), 1);
    const CompanyPtr company = EntityCompany::name(u"Works"_qs);
    EXPECT_EQ(company->details(), u"Since 1901"_qs);
    EXPECT_EQ(company->phone().size(), 1u);
    EXPECT_EQ(contact(u"Ann"_qs, u"Lee"_qs)->company(), company);
    // What it has now stays, and the user is told what it lacks.
    const auto more = listOf(card("ORG:Works\r\nFN:Works\r\nTEL:2") + card("N:Kay;Bob;;;"));
    EXPECT_EQ(shown(more->list()), u"B Bob Kay W =Works"_qs);
    more->list().markShown(true);
    EXPECT_EQ(more->import(png).poorer, QStringList(u"Works"_qs));
    EXPECT_EQ(company->phone().size(), 1u);

    // Its details come back from both files.
    for (const ExportFormat format : {ExportFormat::VCard, ExportFormat::Csv}) {
        QBuffer file;
        file.open(QIODevice::WriteOnly);
        const CompanyPtr there = EntityCompany::name(u"Works"_qs);
        ASSERT_FALSE(RecordExport::write(file, format, EntityCompany::entityName, {there->rowId()}));
        EXPECT_TRUE(file.data().contains("Since 1901")) << file.data().constData();
    }
}

TEST_F(ImportingContacts, KeepsWordsWithoutAFieldInTheNote)
{
    const ContactImportAccount account =
        importAll(card("N:Lee;Ann;Maria;Dr.;Jr.\r\nFN:Dr. Ann Maria Lee Jr.\r\nORG:Works;Sales;North\r\n"
                       "NICKNAME:Annie\r\nTITLE:Friend\r\nTITLE:Rower\r\nIMPP:xmpp:ann@b.org\r\n"
                       "NOTE:Rings twice"));
    EXPECT_EQ(account.withOtherWords, QStringList(u"Ann Lee"_qs));
    const ContactPtr ann = contact(u"Ann"_qs, u"Lee"_qs);
    ASSERT_TRUE(ann);
    EXPECT_EQ(ann->company()->title(), u"Works"_qs);
    ASSERT_EQ(ann->note().size(), 1u);
    EXPECT_EQ(ann->note()[0]->detail(),
              u"Department: Sales, North\nNickname: Annie\nJob Title: Rower\nMessaging: xmpp:ann@b.org\n"
              "Full Name: Dr. Ann Maria Lee Jr.\nRings twice"_qs);
    // Notes go with the card.
    EXPECT_EQ(ContactExport().contactOf(*ann).note, ann->note()[0]->detail());
}

TEST_F(ImportingContacts, ExportsACompanyAsAnOrganization)
{
    const auto works = context().insert<EntityCompany>();
    works->setTitle(u"Works"_qs);
    const auto phone = context().insert<EntityPhone>();
    phone->setNumber(u"1"_qs);
    phone->setType(DBWorker::allPhoneType().at(6));
    phone->setCompany(works);
    QBuffer file;
    file.open(QIODevice::ReadWrite);
    int steps = 0;
    const std::vector<RowId> rows = {works->rowId(), works->rowId()};
    const auto write = [&](QIODevice &device, const StepBlock &step) {
        return RecordExport::write(device, ExportFormat::VCard, EntityCompany::entityName, rows, step);
    };
    ASSERT_FALSE(write(file, [&] { return ++steps < 1; }));
    EXPECT_EQ(file.data().count("BEGIN:VCARD"), 1) << "it ends where the user wants";
    file.seek(0);
    const auto card = VCardReader(file).next();
    ASSERT_TRUE(card);
    EXPECT_EQ(contactFrom(*card), ContactExport().contactOf(*works));
    EXPECT_EQ(ContactExport().contactOf(*works).phoneNumbers.front().label, CNLabel::workFax);
    QBuffer closed;
    const QtMessageHandler former =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    EXPECT_TRUE(write(closed, {}));
    qInstallMessageHandler(former);
}

} // namespace

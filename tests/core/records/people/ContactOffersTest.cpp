// Who of a typed name is in the address books, and what a form takes from their cards.

#include "CoreTest.h"

#include "contacts/CNContactStore.h"
#include "records/FormItems.h"
#include "records/RecordDraft.h"
#include "records/people/ContactForm.h"
#include "workspace/PlatformConfiguration.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <atomic>

namespace {

using Row = PeopleForm::Row;

class OfferedContacts : public CoreTest
{
protected:
    /// A book that fails, one that does not answer until it is let go, and one that does.
    class Shelf : public ContactBackend
    {
    public:
        ~Shelf() override { isLetGo = true; }
        Result<std::vector<CNContainer>> containers() override
        {
            return std::vector<CNContainer>{
                {u"bad"_qs, u"Office"_qs}, {u"far"_qs, u"Far"_qs}, {u"good"_qs, u"Friends"_qs}};
        }
        Result<std::vector<QByteArray>> cards(const CNContainer &book) override
        {
            ++questions;
            if (book.identifier == u"bad"_qs)
                return Error{u"contacts"_qs, 0, u"It burns"_qs};
            while (book.identifier == u"far"_qs && !isLetGo)
                QThread::msleep(1);
            std::vector<QByteArray> all;
            for (const QByteArray &lines : people)
                all.push_back("BEGIN:VCARD\r\nVERSION:3.0\r\n" + lines + "\r\nEND:VCARD");
            return all;
        }
        std::vector<QByteArray> people;
        std::atomic<bool> isLetGo = false;
        std::atomic<int> questions = 0;
    };

    OfferedContacts()
    {
        CNContactStore::setBackendSource([this] { return shelf; });
        CNContactStore::setAccessQuestion([this](const auto &) { isAsked = true; });
        allow(CNAuthorizationStatus::Authorized);
    }
    ~OfferedContacts() override
    {
        EXPECT_FALSE(isAsked) << "nobody is asked for access while they type";
        shelf->isLetGo = true;
        CNContactStore::setBackendSource({});
        CNContactStore::setAccessQuestion({});
        allow(CNAuthorizationStatus::NotDetermined);
    }
    static void allow(CNAuthorizationStatus status)
    {
        PlatformConfiguration::setAuthorization(u"contacts"_qs, static_cast<int>(status));
    }
    static bool comesTrue(const std::function<bool()> &isTrue, int within = 10'000)
    {
        QElapsedTimer timer;
        for (timer.start(); !isTrue() && timer.elapsed() < within;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
        return isTrue();
    }
    /// Long enough for an answer that does not come.
    static void wait()
    {
        comesTrue([] { return false; }, static_cast<int>(ContactOffers::pauseAfterKey.count()) + 200);
    }
    /// "Ann Lee: ann@example.org", or "Ann Lee!" of somebody who is here.
    static QStringList offered(const ContactForm &form)
    {
        QStringList lines;
        for (const auto &one : form.offers()->offers())
            lines.append(one.name + (one.present            ? u"!"_qs
                                     : one.detail.isEmpty() ? QString()
                                                            : u": "_qs + one.detail));
        return lines;
    }
    static bool areOffered(const ContactForm &form, const QStringList &lines)
    {
        return comesTrue([&] { return offered(form) == lines; });
    }
    ContactPtr contact(const QString &first, const QString &last)
    {
        const auto made = context().insert<EntityContacts>();
        made->setFirstName(first);
        made->setLastName(last);
        EXPECT_FALSE(DBWorker::saveContext());
        return made;
    }
    /// The rows of a form that say something, such as "FirstName=Ann".
    static QStringList filled(const ContactForm &form)
    {
        QStringList all;
        for (const FormRow &row : form.rows())
            if (const QString text = form.text(row.id); !text.isEmpty())
                all.append(row.name + u'=' + text);
        return all;
    }
    static QByteArray png(const QByteArray &image) { return image; }

    const QByteArray face = "\x89PNG\r\n\x1a\nface";
    std::shared_ptr<Shelf> shelf = std::make_shared<Shelf>();
    bool isAsked = false;
};

TEST_F(OfferedContacts, AreThoseOfWhoseNamesTheTypedWordsAreBeginnings)
{
    shelf->people = {"N:Lee;Ann;;;\r\nEMAIL:ann@example.org\r\nTEL:1", "N:Gr\xC3\xBCn;Anna;;;\r\nTEL:2",
                     "N:Hanning;Leo;;;", "FN:Annex\r\nORG:Annex"};
    const std::vector<std::tuple<QString, QString, QStringList>> cases = {
        {u"A"_qs, {}, {}},
        {u"ann"_qs, {}, {u"Ann Lee: ann@example.org"_qs, u"Anna Grün: 2"_qs}},
        {{}, u"grun"_qs, {u"Anna Grün: 2"_qs}},
        {u" Lee  ann"_qs, {}, {u"Ann Lee: ann@example.org"_qs}},
        {u"Ann"_qs, u"Lem"_qs, {}},
        {u"Leo"_qs, {}, {u"Leo Hanning"_qs}},
    };
    for (const auto &[first, last, lines] : cases) {
        ContactForm form;
        form.setText(Row::FirstName, first);
        form.setText(Row::LastName, last);
        EXPECT_FALSE(form.isShown(Row::Offers));
        if (lines.isEmpty())
            wait();
        EXPECT_TRUE(areOffered(form, lines))
            << qPrintable(first) << ": " << qPrintable(offered(form).join(u'|'));
        EXPECT_EQ(form.isShown(Row::Offers), !lines.isEmpty());
    }
}

TEST_F(OfferedContacts, FollowTheKeysAndAreFiveAtMost)
{
    for (int number = 0; number < 8; ++number)
        shelf->people.push_back("N:Lee;Ann" + QByteArray::number(number) + ";;;");
    ContactForm form;
    for (const QString &typed : {u"An"_qs, u"Ann"_qs})
        form.setText(Row::FirstName, typed);
    EXPECT_TRUE(comesTrue([&] { return offered(form).size() == 5 && shelf->questions >= 3; }));
    wait();
    EXPECT_EQ(shelf->questions, 3) << "each book is asked once after the last key";
    form.setText(Row::FirstName, u"Ann3"_qs);
    EXPECT_EQ(offered(form), QStringList(u"Ann3 Lee"_qs)) << "who has no such name goes at once";
    form.setText(Row::FirstName, u"Ann7"_qs);
    EXPECT_TRUE(areOffered(form, {u"Ann7 Lee"_qs}));
    form.setText(Row::FirstName, {});
    EXPECT_TRUE(offered(form).isEmpty());
    EXPECT_LE(shelf->questions, 9);
}

TEST_F(OfferedContacts, AreNobodyWithoutAccessAndOfBooksThatFailOrHang)
{
    shelf->people = {"N:Lee;Ann;;;"};
    using enum CNAuthorizationStatus;
    for (const auto status : {NotDetermined, Denied}) {
        allow(status);
        ContactForm form;
        form.setText(Row::FirstName, u"Ann"_qs);
        wait();
        EXPECT_TRUE(offered(form).isEmpty());
        EXPECT_EQ(shelf->questions, 0);
    }
    allow(Authorized);
    ContactForm form;
    form.setText(Row::FirstName, u"Ann"_qs);
    EXPECT_TRUE(areOffered(form, {u"Ann Lee"_qs})) << "the book that answers is read";
    EXPECT_TRUE(comesTrue([&] { return shelf->questions == 3; })) << "and the others are asked, too";
    const int before = shelf->questions;
    form.setText(Row::LastName, u"Lee"_qs);
    EXPECT_TRUE(comesTrue([&] { return shelf->questions == before + 2; }));
    wait();
    EXPECT_EQ(shelf->questions, before + 2) << "one that hangs is not asked over and over";
    shelf->isLetGo = true;
    wait();
    EXPECT_EQ(offered(form), QStringList(u"Ann Lee"_qs)) << "a person of two books stands in one line";
}

TEST_F(OfferedContacts, FillWhatIsEmptyAndLeaveWhatIsTyped)
{
    const auto ulm = context().insert<EntityCompany>();
    ulm->setTitle(u"Ulm Works"_qs);
    ASSERT_FALSE(DBWorker::saveContext());
    const QString title = DBWorker::allContactCategories().first()->title();
    shelf->people = {
        "N:Lovelace;Ada;;;\r\nORG:Ulm Works\r\nTITLE:" + title.toUtf8() +
        "\r\nBDAY:1915-12-10\r\nTEL;TYPE=CELL:1\r\nTEL;TYPE=WORK:2\r\nEMAIL;TYPE=HOME:a@b.org\r\n"
        "URL:https://b.org\r\nADR;TYPE=WORK:;;1 Main St;Ulm;;;\r\nPHOTO;ENCODING=b;TYPE=PNG:" +
        face.toBase64()};
    ContactForm form;
    form.setText(Row::FirstName, u"ad"_qs);
    form.items(Row::Emails)->setText(0, 0, u"mine@b.org"_qs);
    ASSERT_TRUE(areOffered(form, {u"Ada Lovelace: a@b.org"_qs}));
    form.takeOffer(0, png);
    EXPECT_EQ(filled(form),
              (QStringList{u"FirstName=Ada"_qs, u"LastName=Lovelace"_qs,
                           u"JobTitle="_qs + form.text(Row::JobTitle), u"Company=Ulm Works"_qs,
                           u"Phones=1\n2"_qs, u"Address=1 Main St, Ulm"_qs, u"Emails=mine@b.org"_qs,
                           u"URLs=https://b.org"_qs, u"Birthday="_qs + form.text(Row::Birthday)}));
    EXPECT_EQ(form.values.contactCategory->title(), title);
    EXPECT_EQ(form.values.company, ulm);
    EXPECT_EQ(form.values.birthday, localDate(1915, 12, 10));
    EXPECT_EQ(form.unsaved(), face);
    const FormItems &phones = *form.items(Row::Phones);
    EXPECT_EQ(phones.count(), 3) << "a free one follows";
    EXPECT_EQ(phones.types().value(phones.type(0)).toLower(), u"mobile"_qs);
    EXPECT_EQ(phones.types().value(phones.type(1)).toLower(), u"work"_qs);
    EXPECT_TRUE(offered(form).isEmpty());
    wait();
    EXPECT_TRUE(offered(form).isEmpty()) << "who was taken is not offered again";
    EXPECT_TRUE(form.save());
    EXPECT_EQ(form.contact()->phone().size(), 2u);
}

TEST_F(OfferedContacts, CompleteOnlyANameOfWhichTheBeginningIsTyped)
{
    shelf->people = {"N:Lee;Ann;;;\r\nTEL:1"};
    const std::vector<std::tuple<QString, QString, QString, QString>> cases = {
        {u"an"_qs, {}, u"Ann"_qs, u"Lee"_qs},
        {u"A"_qs, u"L"_qs, u"Ann"_qs, u"Lee"_qs},
        {{}, u"lee"_qs, u"Ann"_qs, u"Lee"_qs},
        {u"Ann Lee"_qs, {}, u"Ann Lee"_qs, {}},
        {u"Lee"_qs, u"Ann"_qs, u"Lee"_qs, u"Ann"_qs}};
    for (const auto &[first, last, wantedFirst, wantedLast] : cases) {
        ContactForm form;
        form.setText(Row::FirstName, first);
        form.setText(Row::LastName, last);
        ASSERT_TRUE(areOffered(form, {u"Ann Lee: 1"_qs})) << qPrintable(first);
        form.takeOffer(0, png);
        EXPECT_EQ(form.text(Row::FirstName), wantedFirst);
        EXPECT_EQ(form.text(Row::LastName), wantedLast);
        EXPECT_EQ(form.text(Row::Phones), u"1"_qs);
    }
}

TEST_F(OfferedContacts, BringACompanyWhichIsMadeWithThem)
{
    shelf->people = {"N:Lee;Ann;;;\r\nORG:New Works"};
    ContactForm form;
    form.setText(Row::FirstName, u"Ann"_qs);
    ASSERT_TRUE(areOffered(form, {u"Ann Lee"_qs}));
    form.takeOffer(0, png);
    EXPECT_EQ(DBWorker::allCompany().size(), 0u) << "nothing is stored before it is saved";
    EXPECT_EQ(form.text(Row::Company), u"New Works"_qs);
    const int place = static_cast<int>(form.choices(Row::Company).size()) - 1;
    EXPECT_EQ(form.chosen(Row::Company), place);
    form.choose(Row::Company, 0);
    EXPECT_EQ(form.text(Row::Company), QString()) << "it can be declined";
    form.choose(Row::Company, place);

    ContactForm resumed;
    resumed.resume(*RecordDraft::decoded(form.encodedDraft()));
    EXPECT_EQ(resumed.text(Row::Company), u"New Works"_qs) << "over a crash";
    ASSERT_TRUE(resumed.save());
    EXPECT_EQ(resumed.contact()->company()->title(), u"New Works"_qs);
    ASSERT_TRUE(form.save());
    EXPECT_EQ(DBWorker::allCompany().size(), 1u) << "one that has come meanwhile is not made again";
}

TEST_F(OfferedContacts, AreToldApartFromThoseWhoAreHere)
{
    shelf->people = {"N:Lee;Ann;;;\r\nTEL:1", "N:Lee;Ann;;;\r\nTEL:2", "N:;Cleo;;;\r\nTEL:3"};
    const ContactPtr ann = contact(u"ann"_qs, u"Lee"_qs);
    const ContactPtr cleo = contact(u"Cleo"_qs, {});
    contact(u"Ann"_qs, {});
    ContactForm form;
    form.setText(Row::FirstName, u"Ann"_qs);
    ASSERT_TRUE(areOffered(form, {u"Ann Lee!"_qs}));
    EXPECT_EQ(form.offers()->offers().front().present, ann);
    form.setText(Row::FirstName, u"Cleo"_qs);
    ASSERT_TRUE(areOffered(form, {u"Cleo!"_qs}));
    EXPECT_EQ(form.offers()->offers().front().present, cleo);
}

} // namespace

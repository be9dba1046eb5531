#include "contacts/eds/EdsContacts.h"
#include "DesktopDaemon.h"
#include "contacts/CNContactStore.h"
#include "contacts/VCardContact.h"
#include "contacts/VCardReader.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QUrl>

#include <gtest/gtest.h>
#include <libebook/libebook.h>

#include <csignal>
#include <memory>

namespace {

struct Unref
{
    void operator()(void *object) const { g_object_unref(object); }
};
template <typename T>
using Held = std::unique_ptr<T, Unref>;

/// An address book of the daemon which another program has filled. It is removed afterwards.
class EdsContactsTest : public testing::Test
{
protected:
    EdsContactsTest()
    {
        DesktopDaemon::createSource(book.identifier,
                                    u"[Data Source]\nDisplayName=Friends\nEnabled=true\nParent=local-stub\n"
                                    "[Address Book]\nBackendName=local\n"_qs);
    }
    ~EdsContactsTest() override { DesktopDaemon::removeSource(book.identifier); }

    void add(const std::vector<QByteArray> &cards) const
    {
        const Held<ESourceRegistry> registry(e_source_registry_new_sync(nullptr, nullptr));
        const Held<ESource> source(
            e_source_registry_ref_source(registry.get(), book.identifier.toUtf8().constData()));
        ASSERT_TRUE(source);
        GError *error = nullptr;
        const Held<EClient> client(e_book_client_connect_sync(source.get(), guint32(-1), nullptr, &error));
        ASSERT_TRUE(client) << error->message;
        GSList *contacts = nullptr;
        for (const QByteArray &card : cards)
            contacts = g_slist_prepend(contacts, e_contact_new_from_vcard(card.constData()));
        GSList *identifiers = nullptr;
        EXPECT_TRUE(e_book_client_add_contacts_sync(reinterpret_cast<EBookClient *>(client.get()), contacts,
                                                    E_BOOK_OPERATION_FLAG_NONE, &identifiers, nullptr,
                                                    &error))
            << (error ? error->message : "");
        g_slist_free_full(contacts, g_object_unref);
        g_slist_free_full(identifiers, g_free);
    }
    std::map<QString, CNContact> contacts() const
    {
        std::map<QString, CNContact> found;
        auto cards = EdsContacts().cards(book);
        EXPECT_TRUE(cards) << (cards ? "" : qPrintable(cards.error().message));
        for (QByteArray &text : cards ? cards.value() : std::vector<QByteArray>()) {
            QBuffer device(&text);
            device.open(QIODevice::ReadOnly);
            const auto card = VCardReader(device).next();
            const CNContact contact = card ? contactFrom(*card) : CNContact();
            found[contact.givenName] = contact;
        }
        return found;
    }

    /// The daemon remembers the contacts of a book that was removed for a while.
    static inline int number = 0;
    const CNContainer book{u"test-book-%1"_qs.arg(++number), u"Friends"_qs};
};

TEST_F(EdsContactsTest, AreReadWithAllThatAnotherProgramHasWritten)
{
    const QByteArray picture = "\x89PNG\r\n\x1a\nnot much of one";
    add({"BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nFN:Ann "
         "Gr\xC3\xBCn\r\nN:Gr\xC3\xBCn;Ann;;;\r\nORG:Works;Tools\r\nBDAY:--05-17\r\n"
         "TEL;TYPE=CELL:1\r\nTEL;TYPE=WORK,FAX:2\r\nitem1.TEL:3\r\nitem1.X-ABLabel:Boat\r\nEMAIL;TYPE=HOME:a@"
         "b.org\r\n"
         "ADR;TYPE=WORK:;;1 Main St;Ulm;BW;89073;Germany\r\nURL:https://b.org\r\nPHOTO;ENCODING=b;TYPE=PNG:" +
             picture.toBase64() + "\r\nEND:VCARD\r\n",
         "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:b\r\nFN:Bob\r\nN:;Bob;;;\r\nBDAY:1970-05-17\r\nEND:VCARD\r\n"});
    const auto all = contacts();
    ASSERT_EQ(all.size(), 2u);
    const CNContact &ann = all.at(u"Ann"_qs);
    EXPECT_EQ(ann.familyName, u"Grün"_qs);
    EXPECT_EQ(ann.organizationName, u"Works"_qs);
    EXPECT_EQ(ann.birthday, (CNBirthday{std::nullopt, 5, 17}));
    using Values = std::vector<CNLabeledValue<QString>>;
    EXPECT_EQ(ann.phoneNumbers,
              (Values{{u"mobile"_qs, u"1"_qs}, {u"work fax"_qs, u"2"_qs}, {u"Boat"_qs, u"3"_qs}}));
    EXPECT_EQ(ann.emailAddresses, (Values{{u"home"_qs, u"a@b.org"_qs}}));
    EXPECT_EQ(ann.urlAddresses, (Values{{{}, u"https://b.org"_qs}}));
    ASSERT_EQ(ann.postalAddresses.size(), 1u);
    EXPECT_EQ(ann.postalAddresses[0].value.city, u"Ulm"_qs);
    EXPECT_EQ(ann.imageData, picture) << "the daemon keeps it in a file of its own";
    EXPECT_EQ(all.at(u"Bob"_qs).birthday, (CNBirthday{1970, 5, 17}));
}

TEST_F(EdsContactsTest, ArePickedOutByAMailAddress)
{
    ASSERT_NO_FATAL_FAILURE(
        add({"BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;Ann;;;\r\nEMAIL:other@example.org\r\nEMAIL:Ann@Example."
             "org\r\nEND:VCARD",
             "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Kay;Bob;;;\r\nEMAIL:bob@example.org\r\nEND:VCARD"}));
    const auto found = EdsContacts().cardsWithMail(book, u"ann@example.org"_qs);
    ASSERT_TRUE(found);
    ASSERT_EQ(found.value().size(), 1u);
    EXPECT_TRUE(found.value().front().contains("Lee;Ann"));
    const auto none = EdsContacts().cardsWithMail(book, u"a\") (contains \"full_name\" \"\") (\""_qs);
    EXPECT_TRUE(none && none.value().empty()) << "an address is no query";
}

TEST_F(EdsContactsTest, ArePickedOutByTheirNames)
{
    const auto named = [](const QByteArray &names) {
        return "BEGIN:VCARD\r\nVERSION:3.0\r\n" + names + "\r\nEND:VCARD";
    };
    ASSERT_NO_FATAL_FAILURE(add({named("FN:Ann Lee\r\nN:Lee;Ann;;;"),
                                 named("FN:Anna Maria Gr\xC3\xBCn\r\nN:Gr\xC3\xBCn;Anna;Maria;;"),
                                 named("FN:Leo Hanning\r\nN:Hanning;Leo;;;"), named("N:Kay;Bob;;;")}));
    const auto found = [&](const QString &words) {
        QStringList names;
        const auto cards = EdsContacts().cardsWithName(book, words);
        EXPECT_TRUE(cards) << qPrintable(words);
        for (QByteArray text : cards ? cards.value() : std::vector<QByteArray>()) {
            QBuffer device(&text);
            device.open(QIODevice::ReadOnly);
            names.append(contactFrom(*VCardReader(device).next()).givenName);
        }
        names.sort();
        return names.join(u' ');
    };
    const std::vector<std::pair<QString, QString>> cases = {
        {u"ann"_qs, u"Ann Anna"_qs},
        {u" Le  an"_qs, u"Ann"_qs},
        {u"an gr\u00fc"_qs, u"Anna"_qs},
        {u"maria"_qs, u"Anna"_qs},
        {u"le"_qs, u"Ann Leo"_qs},
        {u"bob k"_qs, u"Bob"_qs},
        {u"bob lee"_qs, {}},
        {u" "_qs, {}},
        {u"a\") (contains \"full_name\" \"\") (\""_qs, {}},
    };
    for (const auto &[words, names] : cases)
        EXPECT_EQ(found(words), names) << qPrintable(words);
}

TEST_F(EdsContactsTest, AreFoundByTheNamesOfTheirAddressBooks)
{
    const auto containers = EdsContacts().containers();
    ASSERT_TRUE(containers) << qPrintable(containers.error().message);
    EXPECT_TRUE(std::ranges::count(containers.value(), book)) << "the new one";
    EXPECT_TRUE(contacts().empty());
    const auto gone = EdsContacts().cards({u"no-such-book"_qs, u"Old"_qs});
    ASSERT_FALSE(gone);
    EXPECT_EQ(gone.error().message, u"The address book \"Old\" has gone."_qs);
}

TEST_F(EdsContactsTest, AreReadAgainAfterTheDaemonHasDied)
{
    add({"BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nFN:Ann\r\nN:;Ann;;;\r\nEND:VCARD\r\n"});
    EXPECT_EQ(contacts().size(), 1u);
    DesktopDaemon::killAll();
    EXPECT_EQ(contacts().size(), 1u);
}

/// A daemon that hangs is given up after some seconds, with a sentence, and is used again when it goes on.
TEST_F(EdsContactsTest, AreGivenUpWhileTheDaemonHangs)
{
    using Part = DesktopDaemon::Part;
    DesktopDaemon::signal(Part::Sources, SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    const auto containers = EdsContacts().containers();
    const auto cards = EdsContacts().cards(book);
    const qint64 passed = timer.elapsed();
    DesktopDaemon::signal(Part::Sources, SIGCONT);
    ASSERT_FALSE(containers || cards);
    EXPECT_EQ(containers.error().message, u"The address books do not answer."_qs);
    EXPECT_LT(passed, 20'000);
    EXPECT_TRUE(EdsContacts().cards(book));
}

} // namespace

#include "contacts/CNContactStore.h"
#include "contacts/DesktopContacts.h"
#include "foundation/ApplicationPaths.h"
#include "support/TestSupport.h"
#include "workspace/PlatformConfiguration.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>

using namespace std::chrono_literals;

namespace {

const CNContainer good{u"good"_qs, u"Friends"_qs};
const CNContainer bad{u"bad"_qs, u"Office"_qs};
const CNContainer hanging{u"hanging"_qs, u"Far Away"_qs};

/// Three address books, of which one fails and one does not answer until it is let go.
class Books : public ContactBackend
{
public:
    Result<std::vector<CNContainer>> containers() override { return std::vector{bad, hanging, good}; }
    Result<std::vector<QByteArray>> cards(const CNContainer &container) override
    {
        if (container == bad)
            return Error{u"contacts"_qs, 0, u"Cannot read the address book \"Office\": it burns"_qs};
        while (container == hanging && !isLetGo)
            QThread::msleep(1);
        ++answers;
        return std::vector<QByteArray>{"BEGIN:VCARD\r\nFN:Ann\r\nEND:VCARD",
                                       "BEGIN:VCARD\r\nFN:Bob\r\nEND:VCARD\r\n"};
    }
    std::atomic<bool> isLetGo = false;
    std::atomic<int> answers = 0;
};

class ContactStoreTest : public testing::Test
{
protected:
    ContactStoreTest()
    {
        CNContactStore::setBackendSource([this] { return books; });
        PlatformConfiguration::setAuthorization(u"contacts"_qs, 3);
    }
    ~ContactStoreTest() override
    {
        books->isLetGo = true;
        CNContactStore::setBackendSource({});
        CNContactStore::setAccessQuestion({});
        PlatformConfiguration::setAuthorization(u"contacts"_qs, 0);
    }
    static bool waitUntil(const std::function<bool()> &isTrue)
    {
        QElapsedTimer timer;
        for (timer.start(); !isTrue() && timer.elapsed() < 10'000;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
        return isTrue();
    }

    std::shared_ptr<Books> books = std::make_shared<Books>();
};

TEST_F(ContactStoreTest, OneThatFailsOrHangsHidesNoOther)
{
    CNContactStore store(200ms);
    std::optional<CNContactStore::Containers> containers;
    store.containers([&](const Result<CNContactStore::Containers> &found) { containers = found.value(); });
    ASSERT_TRUE(waitUntil([&] { return containers.has_value(); }));
    EXPECT_EQ(*containers, (std::vector{bad, hanging, good}));
    QStringList answers;
    for (const CNContainer &container : *containers) {
        store.cards(container, [&](const Result<QByteArray> &cards) {
            answers.append(cards ? QString::number(cards.value().count("BEGIN:VCARD"))
                                 : cards.error().message);
        });
    }
    ASSERT_TRUE(waitUntil([&] { return answers.size() == 3; }));
    EXPECT_EQ(answers.last(), u"The address book \"Far Away\" does not answer."_qs);
    answers.sort();
    EXPECT_EQ(answers[0], u"2"_qs);
    EXPECT_EQ(answers[1], u"Cannot read the address book \"Office\": it burns"_qs);
    books->isLetGo = true;
    ASSERT_TRUE(waitUntil([&] { return books->answers == 2; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(answers.size(), 3) << "what comes too late is not told again";
}

TEST_F(ContactStoreTest, TellsNobodyWhoHasGone)
{
    bool isTold = false;
    {
        CNContactStore store(100ms);
        store.cards(hanging, [&](const Result<QByteArray> &) { isTold = true; });
    }
    books->isLetGo = true;
    ASSERT_TRUE(waitUntil([&] { return books->answers == 1; }));
    QThread::msleep(10);
    QCoreApplication::processEvents();
    EXPECT_FALSE(isTold);
}

TEST_F(ContactStoreTest, AsksOnceAndShowsNothingWithoutAccess)
{
    using enum CNAuthorizationStatus;
    const auto status = [] {
        return CNContactStore::authorizationStatusForEntityType(CNEntityType::Contacts);
    };
    for (const bool isAllowed : {true, false}) {
        PlatformConfiguration::setAuthorization(u"contacts"_qs, 0);
        EXPECT_EQ(status(), NotDetermined);
        int asked = 0;
        CNContactStore::setAccessQuestion([&](const std::function<void(bool)> &answer) {
            ++asked;
            answer(isAllowed);
        });
        CNContactStore store;
        QStringList answers;
        for (int time = 0; time < 2; ++time) {
            store.requestAccess(CNEntityType::Contacts,
                                [&](bool isGranted) { answers.append(isGranted ? u"yes"_qs : u"no"_qs); });
            ASSERT_TRUE(waitUntil([&] { return answers.size() == time + 1; }));
        }
        EXPECT_EQ(answers, QStringList(2, isAllowed ? u"yes"_qs : u"no"_qs));
        EXPECT_EQ(asked, 1);
        EXPECT_EQ(status(), isAllowed ? Authorized : Denied);
        std::optional<std::size_t> count;
        store.containers(
            [&](const Result<CNContactStore::Containers> &found) { count = found.value().size(); });
        ASSERT_TRUE(waitUntil([&] { return count.has_value(); }));
        EXPECT_EQ(*count, isAllowed ? 3u : 0u);
    }
}

TEST_F(ContactStoreTest, DoesWithoutTheLibrary)
{
    const LogCapture log;
    CNContactStore::setBackendSource(
        [] { return DesktopContacts::backend(ApplicationPaths::dataFolder() + u"/no-such-library"_qs); });
    CNContactStore store;
    std::optional<std::size_t> count;
    store.containers([&](const Result<CNContactStore::Containers> &found) { count = found.value().size(); });
    ASSERT_TRUE(waitUntil([&] { return count.has_value(); }));
    EXPECT_EQ(*count, 0u);
    EXPECT_EQ(log.lines().filter(u"address books cannot be used"_qs).size(), 1);
}

} // namespace

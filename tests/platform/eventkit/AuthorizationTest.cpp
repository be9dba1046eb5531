#include "eventkit/DesktopCalendars.h"
#include "eventkit/EKEventStore.h"
#include "eventkit/EmptyBackend.h"
#include "eventkit/SharedEventStore.h"
#include "foundation/ApplicationPaths.h"
#include "support/TestSupport.h"
#include "workspace/PlatformConfiguration.h"

#include <QCoreApplication>
#include <QFile>

#include <gtest/gtest.h>

/// How the user is asked for access, and what becomes of the answer.
class AuthorizationTest : public testing::Test
{
protected:
    AuthorizationTest() { QFile::remove(path); }
    ~AuthorizationTest() override
    {
        EKEventStore::setAccessQuestion({});
        QFile::remove(path);
    }

    void request(EKEntityType type = EKEntityType::Event)
    {
        store.requestAccessToEntityType(type, [this](bool isGranted) { answers.push_back(isGranted); });
    }
    static EKAuthorizationStatus status(EKEntityType type = EKEntityType::Event)
    {
        return EKEventStore::authorizationStatusForEntityType(type);
    }
    static void runLoop()
    {
        for (int turn = 0; turn < 20; ++turn)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }

    const QString path = ApplicationPaths::configFolder() + u"/Morvane/platform.json"_qs;
    EKEventStore store;
    std::vector<bool> answers;
};

TEST_F(AuthorizationTest, TheUserIsAskedOnceAndTheAnswerKept)
{
    PlatformConfiguration::setAuthorization(u"contacts"_qs, 3);
    int questions = 0;
    std::function<void(bool)> answer;
    EKEventStore::setAccessQuestion([&](EKEntityType, std::function<void(bool)> taken) {
        ++questions;
        answer = std::move(taken);
    });
    EXPECT_EQ(status(), EKAuthorizationStatus::NotDetermined);
    request();
    EXPECT_EQ(questions, 0) << "never inside the call";
    request();
    runLoop();
    EXPECT_EQ(questions, 1);
    EXPECT_TRUE(answers.empty());
    answer(true);
    EXPECT_EQ(answers, (std::vector{true, true}));
    EXPECT_EQ(status(), EKAuthorizationStatus::Authorized);
    EXPECT_EQ(status(EKEntityType::Reminder), EKAuthorizationStatus::NotDetermined);
    EXPECT_EQ(PlatformConfiguration().authorization(u"contacts"_qs), 3);

    request();
    EXPECT_EQ(answers.size(), 2U);
    runLoop();
    EXPECT_EQ(answers, (std::vector{true, true, true}));
    EXPECT_EQ(questions, 1);
}

TEST_F(AuthorizationTest, ARefusalIsKeptToo)
{
    EKEventStore::setAccessQuestion(
        [](EKEntityType, const std::function<void(bool)> &taken) { taken(false); });
    request(EKEntityType::Reminder);
    runLoop();
    EXPECT_EQ(answers, (std::vector{false}));
    EXPECT_EQ(status(EKEntityType::Reminder), EKAuthorizationStatus::Denied);
    EXPECT_EQ(status(), EKAuthorizationStatus::NotDetermined);
}

TEST_F(AuthorizationTest, WithoutAnyoneToAskNothingIsGrantedOrKept)
{
    request();
    runLoop();
    EXPECT_EQ(answers, (std::vector{false}));
    EXPECT_EQ(status(), EKAuthorizationStatus::NotDetermined);
}

TEST_F(AuthorizationTest, AStoreWithoutABackendHasNothing)
{
    EXPECT_TRUE(store.calendarsForEntityType(EKEntityType::Event).value().empty());
    EXPECT_TRUE(store.sources().value().empty());
    EXPECT_FALSE(store.defaultCalendarForNewEvents());
    EKCalendar calendar;
    calendar.title = u"Mine"_qs;
    EXPECT_TRUE(store.saveCalendar(calendar, true));
}

TEST_F(AuthorizationTest, WhatIsWrittenLeavesTheRestOfTheConfigurationAlone)
{
    PlatformConfiguration::setText(u"calendarStore"_qs, u"folder"_qs);
    PlatformConfiguration::setAuthorization(u"events"_qs, 3);
    PlatformConfiguration::setText(u"tiles"_qs, u"none"_qs);
    EXPECT_EQ(PlatformConfiguration().text(u"calendarStore"_qs), u"folder"_qs);
    EXPECT_EQ(PlatformConfiguration().authorization(u"events"_qs), 3);

    const QByteArray broken = "{\"cloudFolder\": \"/somewhere\",";
    const auto write = [](const QString &name, const QByteArray &text) {
        QFile file(name);
        return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
    };
    ASSERT_TRUE(write(path, broken));
    const LogCapture log;
    PlatformConfiguration::setText(u"calendarStore"_qs, u"eds"_qs);
    EXPECT_EQ(PlatformConfiguration().text(u"calendarStore"_qs), u"eds"_qs);
    QFile kept(path + u".broken"_qs);
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly)) << "what the user had written is put aside";
    EXPECT_EQ(kept.readAll(), broken);
    EXPECT_TRUE(kept.remove());
}

TEST_F(AuthorizationTest, ASharedBackendIsMadeWhenAStoreNeedsIt)
{
    int made = 0;
    EKEventStore::setSharedBackendSource([&made] {
        ++made;
        return std::make_shared<EmptyBackend>();
    });
    EXPECT_EQ(made, 0);
    const EKEventStore first;
    const EKEventStore second;
    EXPECT_EQ(made, 1);
    EKEventStore::setSharedBackend(nullptr);
    EXPECT_FALSE(sharedCalendarBackend());
}

TEST_F(AuthorizationTest, TheDesktopsCalendarsAreNotThereWithoutTheirLibrary)
{
    const LogCapture log;
    DesktopCalendars desktop(ApplicationPaths::dataFolder() + u"/no-such-library"_qs);
    EXPECT_FALSE(desktop.isAvailable());
    EXPECT_EQ(desktop.backend(), nullptr);
    EXPECT_EQ(log.lines().size(), 1);
}

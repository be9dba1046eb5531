#include "NotificationServer.h"

#include "support/Becomes.h"
#include "support/TestSupport.h"
#include "usernotifications/DesktopNotifications.h"
#include "usernotifications/UserNotificationCenter.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

namespace {

/// Messages from the list to a desktop that shows them.
class UserNotifications : public testing::Test
{
protected:
    ~UserNotifications() override { center.close(); }

    static UserNotification message(const QString &text, Date date)
    {
        return {u"Program"_qs, text, date, "Europe/Berlin", true, {{u"ID"_qs, text}}};
    }
    static UserNotification digest(const std::vector<UserNotification> &missed)
    {
        UserNotification one = missed.front();
        one.subtitle = u"%1 missed"_qs.arg(missed.size());
        return one;
    }
    void connectToDesktop()
    {
        center.setActivationHandler([this](const UserNotification &one) { clicked.append(one.subtitle); });
        center.setPresenter(std::make_unique<DesktopNotifications>(QDBusConnection::sessionBus(),
                                                                   u"org.example.program"_qs, u"Show"_qs));
    }
    QStringList bodies() const
    {
        QStringList texts;
        for (const auto &one : server.shown)
            texts.append(one.body);
        return texts;
    }

    const Date now = localDate(2026, 11, 21, 9);
    QTemporaryDir folder;
    const QString file = folder.filePath(u"list.json"_qs);
    NotificationServer server;
    UserNotificationCenter center;
    QStringList clicked;
};

TEST_F(UserNotifications, AppearOnTimeAndTellOfTheirClick)
{
    const FrozenClock clock(now);
    connectToDesktop();
    center.setScheduledNotifications(
        {message(u"soon <b>"_qs, now), message(u"later"_qs, now + Seconds(600))});
    ASSERT_TRUE(becomes([this] { return server.shown.size() == 1; }));
    const auto &shown = server.shown.first();
    EXPECT_EQ(shown.application, u"Program"_qs);
    EXPECT_EQ(shown.summary, u"Program"_qs);
    EXPECT_EQ(shown.body, u"soon &lt;b&gt;"_qs);
    EXPECT_EQ(shown.actions, QStringList({u"default"_qs, u"Show"_qs, u"open"_qs, u"Show"_qs}));
    EXPECT_EQ(shown.hints.value(u"desktop-entry"_qs), u"org.example.program"_qs);
    EXPECT_EQ(shown.hints.value(u"urgency"_qs).typeId(), QMetaType::UChar);
    EXPECT_EQ(center.scheduledNotifications().size(), 1u);

    server.click(0, u"elsewhere"_qs);
    server.click(7, u"default"_qs);
    server.click(0, u"default"_qs);
    ASSERT_TRUE(becomes([this] { return !clicked.isEmpty(); }));
    EXPECT_EQ(clicked, QStringList(u"soon <b>"_qs));
    const FrozenClock tenMinutesLater(now + Seconds(601));
    center.deliverDue();
    EXPECT_TRUE(becomes([this] { return bodies().contains(u"later"_qs); }));
}

/// Needs the right to set the clock, and somebody who wants that; it is set to what it is.
TEST_F(UserNotifications, AppearAtOnceWhenTheClockJumps)
{
    if (!qEnvironmentVariableIsSet("MORVANE_MAY_SET_CLOCK"))
        GTEST_SKIP() << "MORVANE_MAY_SET_CLOCK is not set";
    const FrozenClock clock(now);
    connectToDesktop();
    center.setScheduledNotifications({message(u"later"_qs, now + Seconds(3600))});
    const FrozenClock anHourLater(now + Seconds(3601));
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    EXPECT_TRUE(server.shown.isEmpty());
    for (int jump = 1; jump <= 2; ++jump) {
        timespec present = {};
        clock_gettime(CLOCK_REALTIME, &present);
        ASSERT_EQ(clock_settime(CLOCK_REALTIME, &present), 0);
        ASSERT_TRUE(becomes([this, jump] { return server.shown.size() == jump; })) << "jump " << jump;
        center.addScheduledNotifications({message(u"again"_qs, now + Seconds(7200))});
        Clock::setSource([this] { return now + Seconds(7201); });
    }
}

TEST_F(UserNotifications, AreKeptInTheirFileAndMissedOnesAppearAsOne)
{
    const FrozenClock clock(now);
    center.open(file);
    const std::vector<UserNotification> list = {message(u"one"_qs, now + Seconds(10.5)),
                                                message(u"two"_qs, now + Seconds(20)),
                                                message(u"three"_qs, now + Seconds(3000))};
    center.setScheduledNotifications(list);
    center.close();
    center.open(file);
    EXPECT_EQ(center.scheduledNotifications(), list);
    const FrozenClock later(now + Seconds(100));
    connectToDesktop();
    center.deliverMissed(digest);
    ASSERT_TRUE(becomes([this] { return server.shown.size() == 1; }));
    EXPECT_EQ(bodies(), QStringList(u"2 missed"_qs));
    center.removeScheduledNotification(list.back());
    center.close();
    center.open(file);
    EXPECT_TRUE(center.scheduledNotifications().empty());
}

TEST_F(UserNotifications, BearABrokenFileAndADesktopThatShowsNone)
{
    QFile broken(file);
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("[{\"title\": \"no date\"}, 7, nothing");
    broken.close();
    const LogCapture log;
    center.open(file);
    EXPECT_TRUE(center.scheduledNotifications().empty());
    EXPECT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(QFile::exists(file + u".unreadable"_qs)) << "what was there is not lost";

    const QDBusConnection nowhere(u"nowhere"_qs);
    center.setPresenter(
        std::make_unique<DesktopNotifications>(nowhere, u"org.example.program"_qs, u"Show"_qs));
    center.setScheduledNotifications({message(u"unseen"_qs, now)});
    ASSERT_TRUE(becomes([&log] { return log.lines().size() == 2; }));
    EXPECT_TRUE(log.lines().last().contains(u"unseen"_qs));
    center.deliverDue();
    EXPECT_EQ(log.lines().size(), 2) << "told once";
    center.close();
    center.open(file);
    EXPECT_EQ(center.scheduledNotifications().size(), 1u);
    connectToDesktop();
    center.deliverMissed(digest);
    EXPECT_TRUE(becomes([this] { return !server.shown.isEmpty(); }));
    EXPECT_EQ(bodies(), QStringList(u"unseen"_qs));
    EXPECT_TRUE(center.scheduledNotifications().empty());
}

TEST_F(UserNotifications, ThatCameDueUnnoticedOutliveANewList)
{
    center.open(file);
    {
        const FrozenClock clock(now);
        center.setScheduledNotifications(
            {message(u"asleep"_qs, now + Seconds(60)), message(u"ahead"_qs, now + Seconds(7200))});
    }
    const FrozenClock awake(now + Seconds(3600));
    center.setScheduledNotifications({message(u"new"_qs, now + Seconds(9000))});
    EXPECT_EQ(center.scheduledNotifications().size(), 2u) << "nobody shows them yet";
    connectToDesktop();
    center.setScheduledNotifications({});
    ASSERT_TRUE(becomes([this] { return !server.shown.isEmpty(); }));
    center.close();
    center.open(file);
    connectToDesktop();
    center.deliverMissed(digest);
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    EXPECT_EQ(bodies(), QStringList(u"asleep"_qs));
}

} // namespace

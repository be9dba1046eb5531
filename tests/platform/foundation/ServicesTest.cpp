#include "foundation/Alert.h"
#include "foundation/ApplicationPaths.h"
#include "foundation/Clock.h"
#include "foundation/Log.h"
#include "foundation/MainLoop.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <cmath>
#include <ctime>

static bool waitUntil(const std::function<bool()> &condition)
{
    QElapsedTimer waited;
    waited.start();
    while (!condition()) {
        if (waited.elapsed() >= 5000)
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    return true;
}

TEST(AlertTest, ThePresenterIsAskedAndItsAnswerPassedOn)
{
    const AlertQuestion question{u"Title"_qs, u"Message"_qs, u"More"_qs, {u"Save"_qs, u"Cancel"_qs}};
    const ScriptedAlerts alerts({Alert::secondButton});
    EXPECT_EQ(Alert::run(question), 1001);
    EXPECT_EQ(alerts.asked(), std::vector{question});
}

TEST(AlertTest, WithNobodyToAskTheLastButtonAnswersAndTheLogTells)
{
    const LogCapture log;
    EXPECT_EQ(Alert::run({{}, u"Delete?"_qs, {}, {u"Delete"_qs, u"Keep"_qs, u"Cancel"_qs}}),
              Alert::thirdButton);
    EXPECT_EQ(Alert::run({u"Note"_qs, {}, {}, {}}), Alert::firstButton);
    ASSERT_EQ(log.lines().size(), 2);
    EXPECT_TRUE(log.lines().front().contains(u"Delete?"));
}

TEST(ClockTest, TellsTheSystemsTimeUnlessASourceIsSet)
{
    EXPECT_NEAR(Clock::now().unixSeconds(), static_cast<double>(std::time(nullptr)), 2);
    const FrozenClock clock(utcDate(2026, 11, 21));
    EXPECT_EQ(Clock::now(), utcDate(2026, 11, 21));
}

TEST(MainLoopTest, DelayedBlocksRunOnceAndNeverAtOnce)
{
    int runs = 0;
    MainLoop::performDelayed(Seconds(0), [&] { ++runs; });
    MainLoop::performDelayed(Seconds(-1), [&] { ++runs; });
    EXPECT_EQ(runs, 0);
    bool isLate = false;
    MainLoop::performDelayed(Seconds(0.03), [&] { isLate = runs == 2; });
    EXPECT_TRUE(waitUntil([&] { return isLate; }));
}

TEST(MainLoopTest, ATimerRepeatsUntilItsEnd)
{
    int ticks = 0;
    {
        const RepeatingTimer timer(Seconds(0.002), [&] { ++ticks; });
        EXPECT_TRUE(waitUntil([&] { return ticks >= 3; }));
    }
    const int atEnd = ticks;
    bool isLater = false;
    MainLoop::performDelayed(Seconds(0.02), [&] { isLater = true; });
    EXPECT_TRUE(waitUntil([&] { return isLater; }));
    EXPECT_EQ(ticks, atEnd);
}

TEST(ApplicationPathsTest, RelativeAndEmptyVariablesMeanTheDefaults)
{
    const QByteArray before = qgetenv("XDG_DATA_HOME");
    EXPECT_EQ(ApplicationPaths::dataFolder(), QString::fromUtf8(before));
    for (const char *value : {"", "relative/path"}) {
        qputenv("XDG_DATA_HOME", value);
        EXPECT_EQ(ApplicationPaths::dataFolder(), QDir::homePath() + u"/.local/share"_qs);
    }
    qputenv("XDG_DATA_HOME", before);
}

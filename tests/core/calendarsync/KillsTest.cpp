// The program is killed at any moment of a command: at the next start both sides say the same, and nothing is
// lost or there twice.

#include "CalendarTest.h"

#include "calendarsync/CalendarOutbox.h"
#include "records/TaskBatch.h"

#include <gmock/gmock.h>

#include <random>

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

namespace {

class Kills : public CalendarTest
{
protected:
    static constexpr int count = 40;

    void makeTasks()
    {
        for (int number = 0; number < count; ++number)
            makeAppointment(u"Task %1"_qs.arg(number), localDate(2026, 11, 23 + number % 5, 8 + number % 9));
        delegate->applicationDidBecomeActive();
    }
    /// Lets a copy of the program work until it is killed: between two of the tasks that it works on, or
    /// before or after one of its writes to the calendars. Then it starts again.
    struct Moment
    {
        int tasks = -1;
        int writes = -1;
    };
    void killDuring(const std::function<void(const StepBlock &)> &work, Moment moment)
    {
        quit();
        CalendarEvent::resetEventStore();
        const pid_t child = fork();
        if (child == 0) {
            connectMoodyStore()->onWrite = [&moment] {
                if (moment.writes-- == 0)
                    raise(SIGKILL);
            };
            launch();
            work([&moment] {
                if (moment.tasks-- == 0)
                    raise(SIGKILL);
                return true;
            });
            // What was not carried out at once is carried out now.
            quit();
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status)) << "it came to its end";
        connectStore();
        launch();
        delegate->applicationDidBecomeActive();
        // Many are carried out in portions while the program goes on.
        CalendarOutbox::carryOutFor(context(), Seconds(20));
    }
    static QStringList openTitles()
    {
        QStringList titles;
        for (const TaskPtr &row : rows()) {
            if (row->status() != TaskStatus::Done)
                titles.append(row->title());
        }
        titles.sort();
        return titles;
    }
    QStringList eventTitles() const
    {
        QStringList titles;
        for (const QString &text : files(u"Home"_qs)) {
            const qsizetype begin = text.indexOf(u"SUMMARY:"_qs) + 8;
            titles.append(text.mid(begin, text.indexOf(u'\r', begin) - begin));
        }
        titles.sort();
        return titles;
    }
    /// All open or all done, and the events with them.
    void expectWhole(const char *what)
    {
        const auto all = rows();
        ASSERT_EQ(all.size(), size_t(count)) << what;
        QSet<QString> different;
        for (const TaskPtr &row : all)
            different.insert(row->title());
        ASSERT_EQ(different.size(), count) << what;
        ASSERT_EQ(openTitles(), eventTitles()) << what;
        ASSERT_TRUE(openTitles().isEmpty() || openTitles().size() == count) << what;
        ASSERT_TRUE(context().pendingOutbox().empty()) << what;
    }
};

TEST_F(Kills, GeneratedOnesOfManyTasksTickedOffAndOpenedAgainAreNeverLostOrDoubled)
{
    makeTasks();
    expectWhole("at first");
    std::mt19937 random(testSeed());
    const auto toggle = [](const StepBlock &step) { TaskBatch::toggleDone(rows(), step); };
    for (int round = 0; round < 16 && !HasFailure(); ++round) {
        const bool wasOpen = !openTitles().isEmpty();
        killDuring(toggle, {.tasks = int(random() % count)});
        expectWhole("killed while it works");
        EXPECT_EQ(!openTitles().isEmpty(), wasOpen) << "nothing was committed";
        killDuring(toggle, {.writes = int(random() % (2 * count))});
        expectWhole("killed while it writes");
        EXPECT_NE(!openTitles().isEmpty(), wasOpen) << "what was committed is finished";
    }
    expectSettled();
}

TEST_F(Kills, GeneratedOnesOfAnUndoAreFinishedAtTheNextStart)
{
    makeTasks();
    std::mt19937 random(testSeed());
    for (int round = 0; round < 8 && !HasFailure(); ++round) {
        TaskBatch::toggleDone(rows());
        CalendarOutbox::carryOutFor(context(), Seconds(20));
        expectWhole("ticked off");
        ASSERT_TRUE(openTitles().isEmpty());
        killDuring([this](const StepBlock &) { EXPECT_FALSE(context().undo()); },
                   {.writes = int(random() % (2 * count))});
        expectWhole("killed while it is taken back");
        ASSERT_FALSE(openTitles().isEmpty()) << "the undo was committed, and is finished";
    }
    expectSettled();
}

} // namespace

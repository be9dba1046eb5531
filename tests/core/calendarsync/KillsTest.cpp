// The program is killed at any moment of a command: at the next start both sides say the same, and nothing is
// lost or there twice.

#include "CalendarTest.h"

#include "records/TaskBatch.h"

#include <gmock/gmock.h>

#include <random>

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class Kills : public CalendarTest
{
protected:
    static constexpr int count = 40;

    void makeTasks()
    {
        for (int number = 0; number < count; ++number) {
            MVTask task;
            task.title = u"Task %1"_qs.arg(number);
            task.type = TaskType::Appointment;
            task.status = TaskStatus::Open;
            task.startDate = localDate(2026, 11, 23 + number % 5, 8 + number % 9);
            task.dueDate = *task.startDate + Seconds(3600);
            task.typeCalendarID = u"Home"_qs;
            ASSERT_TRUE(TaskManager::saveTaskTemp(task, true));
        }
        delegate->applicationDidBecomeActive();
    }
    /// Lets a copy of the program work, and kills it after a while.
    template <typename Work>
    void killDuring(Work work, int microseconds)
    {
        quit();
        CalendarEvent::resetEventStore();
        const pid_t child = fork();
        if (child == 0) {
            launch();
            work();
            pause();
            _exit(0);
        }
        const timespec wait{0, long(microseconds) * 1000};
        pollfd nothing{-1, 0, 0};
        ppoll(&nothing, 1, &wait, nullptr);
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));
        launch();
        delegate->applicationDidBecomeActive();
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
    int finished = 0;
    int untouched = 0;
    for (int round = 0; round < 30 && !HasFailure(); ++round) {
        const bool wasOpen = !openTitles().isEmpty();
        killDuring([] { TaskBatch::toggleDone(rows()); }, 4000 + int(random() % 90000));
        expectWhole(wasOpen ? "ticked off" : "opened again");
        (wasOpen == !openTitles().isEmpty() ? untouched : finished) += 1;
    }
    EXPECT_GT(finished, 0) << "the kills came too early to mean anything";
    EXPECT_GT(untouched, 0) << "the kills came too late to mean anything";
    expectSettled();
}

TEST_F(Kills, GeneratedOnesOfAnUndoAreFinishedAtTheNextStart)
{
    makeTasks();
    std::mt19937 random(testSeed());
    for (int round = 0; round < 16 && !HasFailure(); ++round) {
        killDuring(
            [this] {
                TaskBatch::toggleDone(rows());
                if (context().undo())
                    _exit(1);
            },
            8000 + int(random() % 90000));
        expectWhole("ticked off and taken back");
    }
    expectSettled();
}

} // namespace

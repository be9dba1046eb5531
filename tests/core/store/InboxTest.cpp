#include "CoreTest.h"

namespace {

class Inbox : public CoreTest
{
protected:
    static std::vector<TaskPtr> shown(const QStringList &wanted)
    {
        std::vector<TaskPtr> tasks;
        for (const TaskPtr &task : DBWorker::allInboxTasks()) {
            if (wanted.contains(task->title()))
                tasks.push_back(task);
        }
        return tasks;
    }
    static std::vector<int> positions()
    {
        std::vector<int> result;
        for (const TaskPtr &task : DBWorker::allInboxTasks())
            result.push_back(task->position().value_or(0));
        return result;
    }
};

TEST_F(Inbox, KeepsNewTasksInTheOrderTheyWereWrittenDown)
{
    EXPECT_EQ(DBWorker::maxPositionTaskInbox(), 0);
    add(u"first"_qs);
    add(u"second"_qs);
    EXPECT_FALSE(add(u"started"_qs, TaskType::ToDo, localDate(2026, 11, 22), localDate(2026, 11, 22, 23, 59))
                     ->position());
    EXPECT_FALSE(add(u"call"_qs, TaskType::EmailCall, {}, localDate(2026, 11, 22, 10))->position());
    // A ToDo that is only due stays in the Inbox.
    add(u"due"_qs, TaskType::ToDo, {}, localDate(2026, 11, 22, 23, 59));
    EXPECT_EQ(titles(DBWorker::allInboxTasks()), QStringList({u"first"_qs, u"second"_qs, u"due"_qs}));
    EXPECT_EQ(positions(), std::vector<int>({1, 2, 3}));
}

TEST_F(Inbox, IsPutInOrderByHand)
{
    for (const QString &title : {u"a"_qs, u"b"_qs, u"c"_qs})
        add(title);
    DBWorker::newPositionInboxTask({0}, 2, shown({u"a"_qs, u"b"_qs, u"c"_qs}));
    EXPECT_EQ(titles(DBWorker::allInboxTasks()), QStringList({u"b"_qs, u"a"_qs, u"c"_qs}));
    EXPECT_EQ(positions(), std::vector<int>({1, 2, 3}));
    // Behind the end means before the last one.
    DBWorker::newPositionInboxTask({0}, 3, shown({u"a"_qs, u"b"_qs, u"c"_qs}));
    EXPECT_EQ(titles(DBWorker::allInboxTasks()), QStringList({u"a"_qs, u"b"_qs, u"c"_qs}));
    // Several at once keep their order among themselves.
    DBWorker::newPositionInboxTask({1, 2}, 0, shown({u"a"_qs, u"b"_qs, u"c"_qs}));
    EXPECT_EQ(titles(DBWorker::allInboxTasks()), QStringList({u"b"_qs, u"c"_qs, u"a"_qs}));
    quit();
    launch();
    EXPECT_EQ(titles(DBWorker::allInboxTasks()), QStringList({u"b"_qs, u"c"_qs, u"a"_qs}));
}

TEST_F(Inbox, MovesTasksOfAFilteredListThroughTheWholeInbox)
{
    for (const QString &title : {u"a"_qs, u"x"_qs, u"b"_qs, u"y"_qs, u"z"_qs})
        add(title);
    DBWorker::newPositionInboxTask({1}, 0, shown({u"a"_qs, u"b"_qs}));
    EXPECT_EQ(titles(DBWorker::allInboxTasks()), QStringList({u"b"_qs, u"a"_qs, u"x"_qs, u"y"_qs, u"z"_qs}));
    EXPECT_EQ(positions(), std::vector<int>({1, 2, 3, 4, 5}));
}

TEST_F(Inbox, TakesReorderingBackStepByStepAlsoAfterARestart)
{
    for (const QString &title : {u"a"_qs, u"b"_qs})
        add(title);
    DBWorker::newPositionInboxTask({1}, 0, shown({u"a"_qs, u"b"_qs}));
    quit();
    launch();
    ASSERT_TRUE(context().canUndo());
    EXPECT_FALSE(context().undo());
    EXPECT_EQ(titles(DBWorker::allInboxTasks()), QStringList({u"a"_qs, u"b"_qs}));
    EXPECT_FALSE(context().undo());
    EXPECT_EQ(titles(DBWorker::allInboxTasks()), QStringList({u"a"_qs}));
    EXPECT_FALSE(context().redo());
    EXPECT_FALSE(context().redo());
    EXPECT_EQ(titles(DBWorker::allInboxTasks()), QStringList({u"b"_qs, u"a"_qs}));
    EXPECT_FALSE(context().canRedo());
}

} // namespace

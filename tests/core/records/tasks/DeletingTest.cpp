#include "CoreTest.h"

#include "records/TaskManager.h"

namespace {

class Deleting : public CoreTest
{
protected:
    TaskPtr repeating(const QString &title, int day)
    {
        const TaskPtr task =
            add(title, TaskType::Appointment, localDate(2026, 11, day, 9), localDate(2026, 11, day, 10));
        task->setRepeat(u"RRULE FREQ=DAILY"_qs);
        task->setCalendarID(u"series"_qs);
        return task;
    }
    static QStringList left() { return titles(DBWorker::allTasks()); }
};

TEST_F(Deleting, AsksOnceAndGoesByTheAnswer)
{
    const TaskPtr one = add(u"one"_qs);
    const TaskPtr two = add(u"two"_qs);
    const auto project = context().insert<EntityProject>();
    two->setProject(project);
    int finished = 0;
    const auto done = [&finished] { ++finished; };
    const ScriptedAlerts alerts({1001, 1000, 1000});
    TaskManager::deleteTasks({one}, done);
    EXPECT_EQ(finished, 0);
    TaskManager::deleteTasks({one}, done);
    EXPECT_EQ(left(), QStringList(u"two"_qs));
    TaskManager::deleteTasks({two, project}, done);
    EXPECT_EQ(finished, 2);
    EXPECT_TRUE(left().isEmpty());
    EXPECT_EQ(alerts.asked()[0].message, u"Are you sure you want to delete the selected item?"_qs);
    EXPECT_EQ(alerts.asked()[2].message, u"Are you sure you want to delete the selected items?"_qs);
    EXPECT_FALSE(context().undo());
    EXPECT_EQ(DBWorker::getFirstTaskByTitle(u"two"_qs)->project()->identifier(), project->identifier());
}

TEST_F(Deleting, AsksForASeriesHowFarItReaches)
{
    repeating(u"monday"_qs, 23);
    const TaskPtr tuesday = repeating(u"tuesday"_qs, 24);
    repeating(u"wednesday"_qs, 25);
    const TaskPtr plain = add(u"plain"_qs);
    const ScriptedAlerts alerts({1002, 1001});
    TaskManager::deleteTasks({tuesday, plain}, {});
    EXPECT_EQ(left().size(), 4);
    TaskManager::deleteTasks({tuesday, plain}, {});
    EXPECT_EQ(left(), QStringList(u"monday"_qs));
    EXPECT_EQ(alerts.asked()[0].message, u"This is a repeating task."_qs);
    EXPECT_EQ(alerts.asked()[0].buttons,
              QStringList({u"Delete This Task Only"_qs, u"Delete All Future Tasks"_qs, u"Cancel"_qs}));
}

TEST_F(Deleting, LeavesSeriesAloneWhileTheyMayNotBeEdited)
{
    const TaskPtr member = repeating(u"member"_qs, 24);
    const TaskPtr plain = add(u"plain"_qs);
    delegate->applicationDidBecomeActive();
    int finished = 0;
    TaskManager::deleteTasks({member, plain}, [&finished] { ++finished; });
    EXPECT_EQ(left(), QStringList(u"member"_qs));
    EXPECT_EQ(finished, 1);
}

} // namespace

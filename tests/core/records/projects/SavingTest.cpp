#include "CoreTest.h"

#include "foundation/Localization.h"
#include "records/MVProject.h"
#include "records/ProjectManager.h"
#include "records/dates/MVDate.h"
#include "store/state/NotificationNames.h"
#include "support/FullDisk.h"

#include <QFile>
#include <QTemporaryDir>

namespace {

class SavingProjects : public CoreTest
{
protected:
    TaskPtr task(OptionalDate start, OptionalDate due, TaskStatus status = TaskStatus::Open)
    {
        const TaskPtr one = context().insert<EntityTask>();
        one->setStatus(status);
        one->setStartDate(start);
        one->setDueDate(due);
        return one;
    }
    static Date june(int day, int hour = 0) { return localDate(2026, 6, day, hour); }
    using Bounds = std::array<OptionalDate, 2>;

    /// Saves a project of these dates and gives the title and the text of the message that stopped it.
    QStringList saveWith(MVProject &project, OptionalDate start, OptionalDate due)
    {
        project.startDate = start;
        project.dueDate = due;
        const ScriptedAlerts alerts({1000});
        const bool isSaved = ProjectManager::saveProjectTemp(project);
        EXPECT_EQ(isSaved, alerts.asked().empty());
        if (isSaved)
            return {};
        return {alerts.asked().front().title, alerts.asked().front().informativeText};
    }

    int added = 0;
    int changed = 0;
    /// Commits that made, and that changed, projects.
    Observation commits = NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) {
            StoreChanges made;
            made.inserted = changes.inserted;
            StoreChanges updated;
            // One that lost a task is told as well, without a changed column.
            std::ranges::copy_if(changes.updated, std::back_inserter(updated.updated),
                                 [](const StoreChanges::Update &one) { return one.columns.any(); });
            added += made.concerns(EntityProject::entityName);
            changed += updated.concerns(EntityProject::entityName);
        });
};

TEST_F(SavingProjects, OnlyTheTitleForWantOfABetterIsTranslated)
{
    const QTemporaryDir words;
    QFile table(words.filePath(u"en.json"_qs));
    ASSERT_TRUE(table.open(QIODevice::WriteOnly));
    table.write(R"({"NewProject": "Something new", "Work": "Labour"})");
    table.close();
    LocalizationTable::loadDirectory(words.path());
    MVProject project;
    ASSERT_TRUE(ProjectManager::saveProjectTemp(project));
    EXPECT_EQ(project.project()->title(), u"NewProject"_qs);
    EXPECT_EQ(ProjectManager::shownTitle(*project.project()), u"Something new"_qs);
    project.project()->setTitle(u"Work"_qs);
    EXPECT_EQ(ProjectManager::shownTitle(*project.project()), u"Work"_qs);
    LocalizationTable::unloadDirectory(words.path());
}

TEST_F(SavingProjects, FindsTheBoundsOfOpenTasks)
{
    const Bounds none{};
    EXPECT_EQ(ProjectManager::findMaxAndMinDates({}), none);
    EXPECT_EQ(ProjectManager::findMaxAndMinDates({task({}, {}), task(june(1), june(9), TaskStatus::Done)}),
              none);
    EXPECT_EQ(ProjectManager::findMaxAndMinDates(
                  {task(june(1), june(9), TaskStatus::Done), task(june(4), june(5)), task(june(3), june(8))}),
              Bounds({june(3), june(8)}));
    EXPECT_EQ(ProjectManager::findMaxAndMinDates({task({}, june(5)), task({}, june(3)), task({}, june(4))}),
              Bounds({june(3), june(5)}))
        << "Without any start the first due date begins";
    EXPECT_EQ(ProjectManager::findMaxAndMinDates({task(june(5), {}), task(june(3), {})}),
              Bounds({june(3), std::nullopt}));
    EXPECT_EQ(ProjectManager::findMaxAndMinDates({task(june(5), june(6)), task({}, june(2))}),
              Bounds({june(2), june(6)}));
    EXPECT_EQ(ProjectManager::findMaxAndMinDates({task(june(5), june(6)), task(june(9), {})}),
              Bounds({june(5), june(9)}));
    EXPECT_EQ(ProjectManager::findMaxAndMinDates({task({}, june(2)), task(june(5), june(6))}),
              Bounds({june(5), june(6)}))
        << "A lone due date before any start is passed over";
}

TEST_F(SavingProjects, RefusesDatesThatLeaveOutOpenTasks)
{
    MVProject project;
    project.title = u"House"_qs;
    project.task = {task(june(2), june(2, 12)), task(june(3), june(5, 18))};
    EXPECT_EQ(saveWith(project, june(3), {}),
              QStringList({u"Invalid Start Date"_qs,
                           u"Start Date can't be more than minimum Start Date of Tasks!"_qs}));
    EXPECT_EQ(saveWith(project, {}, june(1)),
              QStringList(
                  {u"Invalid Due Date"_qs, u"Due Date can't be less than minimum Start Date of Tasks!"_qs}));
    EXPECT_EQ(
        saveWith(project, {}, june(4)),
        QStringList({u"Invalid Due Date"_qs, u"Due Date can't be less than maximum Due Date of Tasks!"_qs}));
    EXPECT_EQ(saveWith(project, june(5), june(4)),
              QStringList({u"Invalid Due Date"_qs, u"Due Date can't be less than Start Date!"_qs}));
    EXPECT_FALSE(project.project()) << "Nothing was stored";
    project.task[0]->setStatus(TaskStatus::Done);
    EXPECT_EQ(saveWith(project, june(3), june(5)), QStringList())
        << "A due date counts to the end of its day";
}

TEST_F(SavingProjects, SpeaksOfTheLatestDateWhenAProjectStartsAfterIt)
{
    // A task that is due before it starts is the only way to this message.
    MVProject project(context().insert<EntityProject>());
    project.task = {task(june(9), june(4))};
    EXPECT_EQ(saveWith(project, june(8), {}),
              QStringList({u"Invalid Start Date"_qs,
                           u"Start Date can't be more than maximum Due Date of Tasks!"_qs}));
}

TEST_F(SavingProjects, TellsNewProjectsFromChangedOnes)
{
    MVProject project = MVProject::startEntityProjectValue();
    EXPECT_EQ(saveWith(project, {}, {}), QStringList());
    EXPECT_EQ(project.project()->title(), u"NewProject"_qs);
    EXPECT_EQ(project.creationDate, Clock::now());
    EXPECT_EQ(added, 1);
    EXPECT_EQ(changed, 0);
    EXPECT_FALSE(context().hasChanges());

    // Right after it was made nobody looks at its tasks; later they count.
    project.task = {task(june(2), june(5))};
    EXPECT_EQ(saveWith(project, june(3), {}), QStringList());
    EXPECT_EQ(added, 1);
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(saveWith(project, june(4), {}).size(), 2);
    EXPECT_EQ(project.project()->startDate(), june(3));
}

TEST_F(SavingProjects, ReloadsTheCopyWhenTheCommitFails)
{
    MVProject project = MVProject::startEntityProjectValue();
    project.title = u"House"_qs;
    const LogCapture log;
    {
        const FullDisk disk;
        const ScriptedAlerts alerts({Alert::firstButton});
        EXPECT_FALSE(ProjectManager::saveProjectTemp(project));
        EXPECT_EQ(alerts.asked().size(), 1u) << "the user hears of it";
    }
    EXPECT_EQ(project.title, u"House"_qs);
    EXPECT_EQ(log.lines().filter(u"Can't Save Project! "_qs).size(), 1);
    EXPECT_EQ(project.creationDate, Clock::now()) << "It was read from the row";
    EXPECT_EQ(added + changed, 0);
    EXPECT_TRUE(ProjectManager::saveProjectTemp(project));
    EXPECT_EQ(DBWorker::allProjects().size(), 1);
}

TEST_F(SavingProjects, KeepsWhatWasTypedIntoADeletedProject)
{
    MVProject project = MVProject::startEntityProjectValue();
    project.task = {task(june(2), june(5)), task(june(1), june(9))};
    EXPECT_TRUE(ProjectManager::saveProjectTemp(project));
    context().deleteObject(project.task.back());
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(saveWith(project, june(2), june(6)), QStringList()) << "a task that is gone bounds nothing";
    context().deleteObject(project.project());
    project.title = u"typed"_qs;
    const LogCapture log;
    EXPECT_FALSE(ProjectManager::saveProjectTemp(project));
    EXPECT_EQ(log.lines(), QStringList(u"Can't Save Project! It was deleted."_qs));
    EXPECT_EQ(project.title, u"typed"_qs);
    EXPECT_EQ(changed, 1);
}

} // namespace

#include "objectstore/ManagedObjectContext.h"
#include "records/TaskManager.h"
#include "records/copies/MVTask.h"
#include "store/AppDelegate.h"
#include "store/entities/Model.h"
#include "store/queries/DBWorker.h"
#include "store/state/CoreContext.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

/// Rules and queries on a store of their own, without the root of the program.
class RulesAlone : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(AppDelegate::shared(), nullptr);
        auto opened = ManagedObjectContext::open(folder.filePath(u"Alone.sqlite"_qs), organiserModel());
        ASSERT_TRUE(opened) << qPrintable(opened.error().message);
        store = std::move(*opened);
        core.store = [this] { return store.get(); };
    }

    static MVTask appointment(Date start, Date due)
    {
        MVTask copy;
        copy.title = u"dentist"_qs;
        copy.type = TaskType::Appointment;
        copy.status = TaskStatus::Open;
        copy.priority = Priority::None;
        copy.startDate = start;
        copy.dueDate = due;
        copy.dueSomeDay = false;
        return copy;
    }

    FrozenClock clock{localDate(2026, 11, 21, 9, 15)};
    QTemporaryDir folder;
    std::unique_ptr<ManagedObjectContext> store;
    CoreContext core;
};

TEST_F(RulesAlone, ATaskIsSavedOrRefusedByTheRules)
{
    const Date noon = localDate(2026, 11, 21, 12);
    ScriptedAlerts alerts({1});
    MVTask refused = appointment(noon, noon);
    EXPECT_FALSE(TaskManager::saveTaskTemp(refused, true));
    EXPECT_EQ(alerts.asked().size(), 1u);
    EXPECT_TRUE(DBWorker::allTodayTasks().isEmpty());

    MVTask kept = appointment(noon, noon + Seconds(3600));
    EXPECT_TRUE(TaskManager::saveTaskTemp(kept, true));
    EXPECT_FALSE(store->hasChanges());
    ASSERT_EQ(DBWorker::allTodayTasks().size(), 1);
    EXPECT_EQ(DBWorker::getObjectFromId(DBWorker::getIdFromObject(kept.task())), kept.task());
    EXPECT_EQ(kept.task()->wasCreatedOffCalendar(), true);
}

TEST_F(RulesAlone, AListShowsTheCalendarsThatTheContextSees)
{
    MVTask copy = appointment(localDate(2026, 11, 21, 12), localDate(2026, 11, 21, 13));
    copy.typeCalendarID = u"work"_qs;
    copy.save();
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_TRUE(DBWorker::allTodayTasks().isEmpty());
    core.visibleCalendars = [] { return QStringList(u"work"_qs); };
    EXPECT_EQ(DBWorker::allTodayTasks().size(), 1);
    core.visibleCalendars = [] { return QStringList(u"play"_qs); };
    EXPECT_TRUE(DBWorker::hideNotAccessTasksFromArray({copy.task()}).empty());
    core.isSample = true;
    EXPECT_EQ(DBWorker::allTodayTasks().size(), 1);
    EXPECT_EQ(DBWorker::hideNotAccessTasksFromArray({copy.task()}).size(), 1u);
}

TEST(WithoutAContext, ThereIsNoStoreToSaveOrToSearch)
{
    EXPECT_FALSE(DBWorker::isSample());
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_TRUE(DBWorker::saveOrTell());
    EXPECT_EQ(DBWorker::getObjectFromId(u"x"_qs), nullptr);
    {
        const CoreContext core;
        EXPECT_EQ(&CoreContext::current(), &core);
    }
    EXPECT_EQ(CoreContext::current().store(), nullptr);
}

} // namespace

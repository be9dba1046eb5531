#pragma once

#include "cloud/FileManager.h"
#include "foundation/UserDefaults.h"
#include "records/copies/MVTask.h"
#include "store/AppDelegate.h"
#include "store/queries/DBWorker.h"
#include "store/state/SettingsKeys.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

/// The number that a column holds for an enumerator; absent for none.
template <typename Enum>
std::optional<int> numberOf(std::optional<Enum> value)
{
    return value ? std::optional(static_cast<int>(*value)) : std::nullopt;
}

/// A program without a screen on an empty data folder, at a quarter past nine on Saturday 2026-11-21.
class CoreTest : public testing::Test
{
protected:
    CoreTest() { startAnew(); }
    ~CoreTest() override { quit(); }

    /// An empty home and a launched program.
    void startAnew()
    {
        quit();
        QDir(FileManager::appFolderURL()).removeRecursively();
        for (const QString &key :
             {settings::valueSwitchDatabase, settings::firstRun, settings::taskFilters, settings::sumStatuses,
              settings::isAccessToCalendar, settings::contactDisplayOrder, settings::syncPeriodType,
              settings::frequencyCalendarPeriod})
            UserDefaults::standard().removeObject(key);
        launch();
    }
    void launch()
    {
        delegate = std::make_unique<AppDelegate>();
        delegate->applicationWillFinishLaunching();
        delegate->applicationDidFinishLaunching();
    }
    /// The road of the menu's Quit.
    void quit()
    {
        if (!delegate)
            return;
        EXPECT_EQ(delegate->applicationShouldTerminate(), AppDelegate::TerminateReply::Now);
        delegate->applicationWillTerminate();
        delegate.reset();
    }

    ManagedObjectContext &context() { return delegate->managedObjectContext(); }
    static QString storePath() { return FileManager::appFolderURL() + QStringLiteral("/Model0.sqlite"); }

    /// A saved task of the given fields.
    TaskPtr add(const QString &title, TaskType type = TaskType::ToDo, OptionalDate start = {},
                OptionalDate due = {})
    {
        MVTask task;
        task.title = title;
        task.type = type;
        task.status = TaskStatus::Open;
        task.priority = Priority::None;
        task.startDate = start;
        task.dueDate = due;
        if (start || due)
            task.dueSomeDay = false;
        task.save();
        EXPECT_FALSE(DBWorker::saveContext());
        return task.task();
    }
    static QStringList titles(const TaskList &list)
    {
        QStringList result;
        for (const TaskPtr &task : list)
            result.append(task->title());
        return result;
    }

    FrozenClock clock{localDate(2026, 11, 21, 9, 15)};
    std::unique_ptr<AppDelegate> delegate;
};

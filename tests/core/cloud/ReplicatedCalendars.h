#pragma once

#include "TwoDevices.h"

#include "calendarsync/CalendarEvent.h"
#include "eventkit/EKEventStore.h"
#include "eventkit/FolderBackend.h"
#include "foundation/UserDefaults.h"
#include "records/TaskManager.h"
#include "records/copies/MVTask.h"
#include "store/state/SettingsKeys.h"
#include "support/TestSupport.h"
#include "workspace/PlatformConfiguration.h"

#include <map>

/// The user goes from one computer to the other and back.
class ReplicationTest : public testing::Test
{
protected:
    TaskPtr add(const QString &title)
    {
        MVTask task;
        task.title = title;
        task.type = TaskType::ToDo;
        task.status = TaskStatus::Open;
        task.priority = Priority::None;
        task.save();
        EXPECT_FALSE(DBWorker::saveContext());
        return task.task();
    }
    TaskPtr find(const QString &title)
    {
        return devices.context().fetchFirst<EntityTask>(
            EntityTask::fetchRequest().where(Predicate::format("title = %@", title)));
    }
    void save() { EXPECT_FALSE(DBWorker::saveContext()); }
    CategoryPtr category(const QString &title)
    {
        return devices.context().fetchFirst<EntityCategory>(
            EntityCategory::fetchRequest().where(Predicate::format("title = %@", title)));
    }
    int count(const char *entity) { return devices.context().count(FetchRequest(entity)); }
    QStringList inbox()
    {
        QStringList titles;
        for (const TaskPtr &task : DBWorker::allInboxTasks())
            titles.append(task->title());
        return titles;
    }
    QString firstCategory()
    {
        const auto all = devices.context().fetch<EntityCategory>(EntityCategory::fetchRequest());
        return all.isEmpty() ? QString() : all.first()->title();
    }

    FrozenClock clock{localDate(2026, 11, 21, 9, 15)};
    TwoDevices devices;
};

/// Both computers follow calendars, each in a folder of its own that stands for the copy that it has of them.
class ReplicatedCalendars : public ReplicationTest
{
protected:
    ReplicatedCalendars()
    {
        for (const QTemporaryDir &root : calendars)
            QDir().mkpath(root.path() + u"/Local/Home"_qs);
        UserDefaults::standard().setObject(settings::savedChooseCalendars, u"Home"_qs);
    }
    ~ReplicatedCalendars() override
    {
        devices.end();
        CalendarEvent::resetEventStore();
        EKEventStore::setSharedBackend(nullptr);
        PlatformConfiguration::setAuthorization(u"events"_qs, 0);
        forgetCalendars();
    }
    static QStringList keys()
    {
        return {settings::savedChooseCalendars,    settings::defaultCalendar,
                settings::dictionaryCalendarsData, settings::eventsAtLastPass,
                settings::calendarsWithKeptRows,   settings::knownCalendars,
                settings::calendarReferences,      settings::calendarSuccessors,
                settings::lostNamesAreFound};
    }
    static void forgetCalendars()
    {
        for (const QString &key : keys())
            UserDefaults::standard().removeObject(key);
    }

    void turnTo(int home, bool hasAccess = true)
    {
        devices.end();
        CalendarEvent::resetEventStore();
        EKEventStore::setSharedBackend(std::make_shared<FolderBackend>(calendars[home].path()));
        PlatformConfiguration::setAuthorization(u"events"_qs, hasAccess ? 3 : 0);
        devices.turnTo(home);
        devices.program().applicationDidBecomeActive();
        devices.settle();
    }
    QStringList events(int home) const
    {
        return QDir(calendars[home].path() + u"/Local/Home"_qs).entryList({u"*.ics"_qs});
    }
    /// The server of the account brings one computer what the other one has.
    void carryEvents(int from, int to)
    {
        const QString target = calendars[to].path() + u"/Local/Home/"_qs;
        for (const QString &name : events(to)) {
            if (!events(from).contains(name))
                QFile::remove(target + name);
        }
        for (const QString &name : events(from)) {
            QFile::remove(target + name);
            EXPECT_TRUE(QFile::copy(calendars[from].path() + u"/Local/Home/"_qs + name, target + name));
        }
    }
    /// Until `joinAgain`, what is shared from now on does not meet what was shared before.
    void cutOff()
    {
        devices.end();
        parts.append(away() + u'-' + QString::number(parts.size()));
        EXPECT_TRUE(QDir().rename(away(), parts.last()));
    }
    void joinAgain()
    {
        cutOff();
        const QString content = u"/Orrelin CoreData/"_qs;
        for (const QString &part : parts.mid(1)) {
            for (const QString &device : QDir(part + content).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
                QDir(parts.first() + content + device).removeRecursively();
                EXPECT_TRUE(QDir().rename(part + content + device, parts.first() + content + device));
            }
            EXPECT_TRUE(QDir(part).removeRecursively());
        }
        EXPECT_TRUE(QDir().rename(parts.first(), away()));
        parts.clear();
    }
    QString away() const { return devices.sharedFolder() + u"/Orrelin"_qs; }
    void addOnCalendar(const QString &title)
    {
        const TaskPtr task = add(title);
        MVTask copy(task);
        copy.type = TaskType::Appointment;
        copy.startDate = localDate(2026, 11, 23, 10, 0);
        copy.dueDate = localDate(2026, 11, 23, 11, 0);
        copy.dueSomeDay = false;
        EXPECT_TRUE(TaskManager::saveTaskTemp(copy, false));
        save();
        devices.settle();
    }
    int rows(const QString &title)
    {
        return devices.context().count(
            EntityTask::fetchRequest().where(Predicate::format("title = %@", title)));
    }

    QTemporaryDir calendars[2];
    QStringList parts;
};

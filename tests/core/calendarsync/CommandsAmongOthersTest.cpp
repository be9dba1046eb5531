// Commands of the user, while other programs change the calendars and the program follows them.

#include "CalendarTest.h"

#include "records/TaskBatch.h"
#include "support/MeanwhileAlerts.h"

#include <gmock/gmock.h>

#include <QCoreApplication>

namespace {

using testing::ElementsAre;

class CommandsAmongOthers : public CalendarTest
{
protected:
    CommandsAmongOthers() { UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2); }

    void writeEvent(const QString &uid, const QString &title, const QString &start,
                    const QString &rule = {}) const
    {
        write(u"Home"_qs, uid,
              u"SUMMARY:%1\nDTSTART:%2\nDURATION:PT1H\n%3"_qs.arg(title, start,
                                                                  rule.isEmpty() ? rule : rule + u'\n'));
    }
    void activate()
    {
        delegate->applicationDidBecomeActive();
        QCoreApplication::processEvents();
    }
    static TaskPtr row(const QString &title, int place = 0)
    {
        for (const TaskPtr &one : rows()) {
            if (one->title() == title && place-- == 0)
                return one;
        }
        return nullptr;
    }
    static QStringList titles()
    {
        QStringList all;
        for (const TaskPtr &one : rows())
            all.append(one->title());
        all.sort();
        return all;
    }
    static void rename(const TaskPtr &task, const QString &title)
    {
        MVTask copy(task);
        copy.title = title;
        EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
    }
    using CalendarTest::rename;
};

TEST_F(CommandsAmongOthers, WhatAnActivationFollowsIsNoStepOfTheUser)
{
    makeCalendar(u"Trips"_qs);
    choose({u"Home"_qs, u"Work"_qs, u"Trips"_qs});
    connectStore();
    writeEvent(u"a"_qs, u"meeting"_qs, u"20261124T090000Z"_qs);
    activate();
    const TaskPtr task = add(u"mine"_qs);
    const TaskPtr trip = add(u"trip"_qs);
    trip->setTypeCalendarID(u"Trips"_qs);
    trip->setCalendarID(u"nowhere"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    rename(task, u"renamed"_qs);
    ASSERT_FALSE(context().undo());
    const QString step = context().undoName();

    rename(u"Home"_qs, u"House"_qs);
    QDir(folderOf(u"Trips"_qs)).removeRecursively();
    connectStore();
    activate();
    EXPECT_EQ(row(u"meeting"_qs)->typeCalendarID(), u"House"_qs);
    EXPECT_EQ(row(u"trip"_qs), nullptr) << "it went with its calendar";
    EXPECT_TRUE(context().canRedo());
    EXPECT_EQ(context().undoName(), step);
    ASSERT_FALSE(context().redo());
    EXPECT_EQ(task->title(), u"renamed"_qs);
    ASSERT_FALSE(context().undo());
    ASSERT_FALSE(context().undo());
    EXPECT_EQ(row(u"meeting"_qs)->typeCalendarID(), u"House"_qs);
    EXPECT_EQ(row(u"trip"_qs), nullptr);
}

TEST_F(CommandsAmongOthers, AnUndoLeavesWhatThePassOfTheCommandFoundOfOthers)
{
    writeEvent(u"series"_qs, u"weekly"_qs, u"20261123T090000Z"_qs, u"RRULE:FREQ=WEEKLY;COUNT=4"_qs);
    writeEvent(u"a"_qs, u"meeting"_qs, u"20261124T090000Z"_qs);
    writeEvent(u"b"_qs, u"cancelled"_qs, u"20261126T090000Z"_qs);
    activate();
    ASSERT_EQ(titles().size(), 6);

    writeEvent(u"a"_qs, u"renamed elsewhere"_qs, u"20261124T100000Z"_qs);
    writeEvent(u"c"_qs, u"made elsewhere"_qs, u"20261125T090000Z"_qs);
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({row(u"weekly"_qs, 1)}, {});
    }
    const QStringList others = {u"made elsewhere"_qs, u"renamed elsewhere"_qs};
    const QStringList three = {u"weekly"_qs, u"weekly"_qs, u"weekly"_qs};
    EXPECT_EQ(titles(), QStringList(u"cancelled"_qs) + others + three);
    ASSERT_FALSE(context().undo());
    EXPECT_EQ(titles(), QStringList(u"cancelled"_qs) + others + three + QStringList(u"weekly"_qs));
    EXPECT_EQ(row(u"renamed elsewhere"_qs)->startDate(), utcDate(2026, 11, 24, 10));
    activate();
    EXPECT_EQ(titles(), QStringList(u"cancelled"_qs) + others + three + QStringList(u"weekly"_qs));
    ASSERT_FALSE(context().redo());
    activate();
    EXPECT_EQ(titles(), QStringList(u"cancelled"_qs) + others + three);
}

TEST_F(CommandsAmongOthers, ACancelledTickChangesNothing)
{
    writeEvent(u"series"_qs, u"weekly"_qs, u"20261123T090000Z"_qs, u"RRULE:FREQ=WEEKLY;COUNT=4"_qs);
    activate();
    const TaskPtr other = add(u"mine"_qs);
    rename(other, u"renamed"_qs);
    ASSERT_FALSE(context().undo());
    const QString step = context().undoName();
    const TaskPtr task = row(u"weekly"_qs);
    const ScriptedAlerts alerts({Alert::thirdButton, Alert::thirdButton});
    MVTask(task).changeStatusType(TaskStatus::Done, true);
    TaskBatch::toggleDone({task}, {});
    EXPECT_EQ(task->status(), TaskStatus::Open);
    EXPECT_EQ(task->expirationDate(), std::nullopt);
    EXPECT_EQ(context().undoName(), step);
    EXPECT_TRUE(context().canRedo());
}

TEST_F(CommandsAmongOthers, AnActivationWaitsForTheAnswerOfTheCommandThatAsks)
{
    writeEvent(u"series"_qs, u"weekly"_qs, u"20261123T090000Z"_qs, u"RRULE:FREQ=WEEKLY;COUNT=4"_qs);
    writeEvent(u"a"_qs, u"meeting"_qs, u"20261124T090000Z"_qs);
    activate();
    const TaskPtr task = row(u"weekly"_qs, 1);
    for (const int answer : {Alert::thirdButton, Alert::firstButton}) {
        const QString made = u"made %1"_qs.arg(answer);
        const MeanwhileAlerts alerts(answer, [&] {
            writeEvent(made, made, u"20261127T090000Z"_qs);
            delegate->applicationDidBecomeActive();
            delegate->applicationDidBecomeActive();
            CalendarEvent::syncCalendarToAppWithTask(nullptr);
            MeanwhileAlerts::spin();
            EXPECT_EQ(row(made), nullptr) << "the command is under way";
        });
        MVTask copy(task);
        copy.title = u"by hand"_qs;
        EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
        EXPECT_EQ(alerts.asked(), 1);
        QCoreApplication::processEvents();
        EXPECT_NE(row(made), nullptr) << "then it follows";
    }
    EXPECT_EQ(task->title(), u"by hand"_qs);
}

TEST_F(CommandsAmongOthers, CalendarsThatComeAndGoAreTold)
{
    const TaskPtr task =
        add(u"hidden"_qs, TaskType::Appointment, localDate(2026, 11, 21, 10), localDate(2026, 11, 21, 11));
    task->setTypeCalendarID(u"Work"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    ASSERT_EQ(DBWorker::allTodayTasks(nullptr).size(), 1);
    const QString folder = folderOf(u"Work"_qs);
    ASSERT_TRUE(QDir().rename(folder, root.filePath(u"away"_qs)));
    connectStore();
    EXPECT_EQ(DBWorker::allTodayTasks(nullptr).size(), 1) << "until it is known to have gone";
    QCoreApplication::processEvents();
    int told = 0;
    const Observation hearer =
        NotificationCenter::defaultCenter().addObserver(notifications::iCloudChange, [&told] { ++told; });
    for (int activation = 0; activation < 2; ++activation) {
        activate();
        EXPECT_EQ(told, 1);
    }
    ASSERT_TRUE(QDir().rename(root.filePath(u"away"_qs), folder));
    connectStore();
    choose({u"Home"_qs, u"Work"_qs});
    for (int activation = 0; activation < 2; ++activation) {
        activate();
        EXPECT_EQ(told, 2);
    }
}

} // namespace

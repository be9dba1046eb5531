#include "CalendarTest.h"
#include "usernotifications/UserNotificationCenter.h"

#include <gmock/gmock.h>

namespace {

using testing::SizeIs;

/// Without access to the calendars the rows of a series are kept alike, and alerts are the program's own.
class OfflineTasks : public CalendarTest
{
protected:
    OfflineTasks() { PlatformConfiguration::setAuthorization(u"events"_qs, 2); }
    ~OfflineTasks() override
    {
        UserNotificationCenter::defaultUserNotificationCenter().setScheduledNotifications({});
    }

    static QStringList scheduled()
    {
        QStringList found;
        for (const auto &one :
             UserNotificationCenter::defaultUserNotificationCenter().scheduledNotifications())
            found.append(wallClock(one.deliveryDate).mid(11, 5) + u' ' + one.subtitle);
        found.sort();
        return found;
    }
    static TaskPtr appointment(const QString &title, OptionalDate alert, OptionalDate secondAlert = {})
    {
        MVTask task;
        task.title = title;
        task.type = TaskType::Appointment;
        task.status = TaskStatus::Open;
        task.startDate = localDate(2026, 11, 24, 9);
        task.dueDate = localDate(2026, 11, 24, 10);
        task.alert = alert;
        task.secondAlert = secondAlert;
        EXPECT_TRUE(TaskManager::saveTaskTemp(task, true));
        return task.task();
    }
    /// Rows of one series on the days given, an hour from nine o'clock on.
    static void addSeries(TaskType type, const std::vector<Date> &days)
    {
        for (const Date &day : days) {
            const auto row = mainContext().insert<EntityTask>();
            row->setTitle(u"Series"_qs);
            row->setType(type);
            row->setStatus(TaskStatus::Open);
            row->setCalendarID(u"series"_qs);
            row->setTypeCalendarID(u"Home"_qs);
            row->setRepeat(u"RRULE:FREQ=DAILY;INTERVAL=1"_qs);
            if (type != TaskType::EmailCall)
                row->setStartDate(type == TaskType::ToDo ? day : day + Seconds(9 * 3600));
            row->setDueDate(day + Seconds(type == TaskType::ToDo ? 24 * 3600 - 1 : 10 * 3600));
        }
    }
};

TEST_F(OfflineTasks, TheAlertsOfEveryTaskAreScheduled)
{
    appointment(u"First"_qs, localDate(2026, 11, 24, 8, 30));
    const TaskPtr second =
        appointment(u"Second"_qs, localDate(2026, 11, 24, 8, 45), localDate(2026, 11, 24, 8, 55));
    appointment(u"Past"_qs, localDate(2026, 11, 20, 8, 30));
    EXPECT_EQ(scheduled(), QStringList({u"08:30 First"_qs, u"08:45 Second"_qs, u"08:55 Second"_qs}));
    MVTask copy(second);
    copy.alert = localDate(2026, 11, 24, 8, 40);
    copy.secondAlert = std::nullopt;
    ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    EXPECT_EQ(scheduled(), QStringList({u"08:30 First"_qs, u"08:40 Second"_qs}));
    const ScriptedAlerts alerts({Alert::firstButton});
    TaskManager::deleteTasks({second}, {});
    EXPECT_EQ(scheduled(), QStringList(u"08:30 First"_qs));
    // An alarm in a folder of files rings nowhere else.
    PlatformConfiguration::setAuthorization(u"events"_qs, 3);
    appointment(u"Online"_qs, localDate(2026, 11, 24, 8, 45));
    EXPECT_EQ(scheduled(), QStringList({u"08:30 First"_qs, u"08:45 Online"_qs}));
    ASSERT_FALSE(context().undo());
    EXPECT_EQ(scheduled(), QStringList(u"08:30 First"_qs));
}

TEST_F(OfflineTasks, AnEditReachesEveryRowOfItsSeriesOnItsOwnDay)
{
    // Over the end of summer time.
    const std::vector<Date> days = {localDate(2026, 10, 24), localDate(2026, 10, 25),
                                    localDate(2026, 10, 26)};
    addSeries(TaskType::Appointment, days);
    editSeries(rows().at(1), Span::FutureTasks, [](MVTask &task) {
        task.title = u"Later"_qs;
        task.startDate = localDate(2026, 10, 25, 11);
        task.dueDate = localDate(2026, 10, 25, 12, 30);
        task.alert = localDate(2026, 10, 25, 10, 45);
    });
    EXPECT_EQ(table(),
              QStringList({u"10-24 12:30 Later"_qs, u"10-25 12:30 Later"_qs, u"10-26 12:30 Later"_qs}));
    for (size_t place = 0; place < days.size(); ++place) {
        const TaskPtr row = rows().at(place);
        EXPECT_EQ(wallClock(*row->startDate()).mid(8, 8), wallClock(days[place]).mid(8, 2) + u" 11:00"_qs);
        EXPECT_EQ(row->alert(), *row->startDate() + Seconds(-900));
        EXPECT_EQ(row->calendarID(), u"series"_qs);
    }
    editSeries(rows().at(0), Span::FutureTasks,
               [](MVTask &task) { task.changeStatusType(TaskStatus::Done, false); });
    for (const TaskPtr &row : rows()) {
        EXPECT_EQ(row->status(), TaskStatus::Done);
        EXPECT_TRUE(row->expirationDate().has_value());
    }
}

TEST_F(OfflineTasks, WholeDaysAndMomentsKeepTheirDaysToo)
{
    addSeries(TaskType::ToDo, {localDate(2026, 10, 24), localDate(2026, 11, 24)});
    editSeries(rows().at(1), Span::FutureTasks, [](MVTask &task) {
        task.dueDate = localDate(2026, 11, 26, 23, 59);
        task.alert = localDate(2026, 11, 24, 7, 30);
    });
    // Two times 86400 seconds from the start, in the night of the clock change one hour less than two days.
    EXPECT_EQ(rows().at(0)->dueDate(), localDate(2026, 10, 24) + Seconds(2 * 86400));
    EXPECT_EQ(rows().at(0)->alert(), localDate(2026, 10, 24, 7, 30));
    startAnew();
    PlatformConfiguration::setAuthorization(u"events"_qs, 2);
    addSeries(TaskType::EmailCall, {localDate(2026, 11, 24), localDate(2026, 11, 25)});
    editSeries(rows().at(0), Span::FutureTasks, [](MVTask &task) {
        task.dueDate = localDate(2026, 11, 24, 17, 5);
        task.alert = localDate(2026, 11, 24, 17);
    });
    EXPECT_EQ(rows().at(1)->dueDate(), localDate(2026, 11, 25, 17, 5));
    EXPECT_EQ(rows().at(1)->alert(), localDate(2026, 11, 25, 17));
}

TEST_F(OfflineTasks, DeletingTheRestLeavesWhatIsEarlier)
{
    addSeries(TaskType::Appointment,
              {localDate(2026, 11, 23), localDate(2026, 11, 24), localDate(2026, 11, 25)});
    const ScriptedAlerts alerts({Alert::secondButton});
    TaskManager::deleteTasks({rows().at(1)}, {});
    EXPECT_EQ(table(), QStringList(u"11-23 10:00 Series"_qs));
}

/// Calendars that could be reached before, and can be again.
class BetweenTwoReaches : public CalendarTest
{
protected:
    void goOffline() { PlatformConfiguration::setAuthorization(u"events"_qs, 2); }
    void comeBack()
    {
        PlatformConfiguration::setAuthorization(u"events"_qs, 3);
        delegate->applicationDidBecomeActive();
    }
    static TaskPtr make(const QString &title, const QString &calendar)
    {
        MVTask task;
        task.title = title;
        task.type = TaskType::Appointment;
        task.status = TaskStatus::Open;
        task.startDate = localDate(2026, 11, 24, 9);
        task.dueDate = localDate(2026, 11, 24, 10);
        task.typeCalendarID = calendar;
        EXPECT_TRUE(TaskManager::saveTaskTemp(task, true));
        return task.task();
    }
    QStringList summaries() const
    {
        QStringList found;
        for (const QString &text : files(u"Home"_qs).values() + files(u"Work"_qs).values())
            found.append(text.mid(text.indexOf(u"SUMMARY:"_qs) + 8).section(u'\r', 0, 0));
        found.sort();
        return found;
    }
};

TEST_F(BetweenTwoReaches, WhatWasTypedMeanwhileReachesTheCalendars)
{
    const TaskPtr edited = make(u"Edited"_qs, u"Home"_qs);
    const TaskPtr finished = make(u"Finished"_qs, u"Home"_qs);
    const TaskPtr deleted = make(u"Deleted"_qs, u"Home"_qs);
    const TaskPtr kept = make(u"Deleted and taken back"_qs, u"Work"_qs);
    pass();
    goOffline();
    MVTask edit(edited);
    edit.title = u"Edited offline"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(edit, true));
    MVTask(finished).changeStatusType(TaskStatus::Done, true);
    for (const TaskPtr &task : {deleted, kept}) {
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({task}, {});
    }
    ASSERT_FALSE(context().undo());
    make(u"Made offline"_qs, u"Work"_qs);
    make(u"Made without a calendar"_qs, {});
    quit();
    // Another program moves what was edited.
    const QString name = edited->calendarID();
    CalendarEvent::resetEventStore();
    for (const QString &file : files(u"Home"_qs).keys()) {
        QString text = files(u"Home"_qs).value(file);
        if (!text.contains(u"SUMMARY:Edited"_qs))
            continue;
        QFile moved(folderOf(u"Home"_qs) + u'/' + file);
        ASSERT_TRUE(moved.open(QIODevice::WriteOnly));
        moved.write(text.replace(u"T090000"_qs, u"T080000"_qs).toUtf8());
    }
    launch();
    comeBack();
    EXPECT_EQ(summaries(), QStringList({u"Deleted and taken back"_qs, u"Edited offline"_qs,
                                        u"Made offline"_qs, u"Made without a calendar"_qs}));
    EXPECT_EQ(rows().size(), 5u);
    const TaskPtr row = DBWorker::getFirstTaskByTitle(u"Edited offline"_qs);
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->startDate(), localDate(2026, 11, 24, 8)) << "what the user did not touch is the other's";
    EXPECT_TRUE(context().pendingOutbox().empty());
    expectSettled();
}

} // namespace

#include "CalendarTest.h"

#include "calendarsync/Reminder.h"
#include "support/Becomes.h"

#include <gmock/gmock.h>

namespace {

using testing::SizeIs;

class Reminders : public CalendarTest
{
protected:
    Reminders() { PlatformConfiguration::setAuthorization(u"reminders"_qs, 3); }
    ~Reminders() override { PlatformConfiguration::setAuthorization(u"reminders"_qs, 0); }

    TaskPtr taskWithAlerts()
    {
        const TaskPtr task = add(u"Water the plants"_qs);
        task->setAlert(localDate(2026, 11, 22, 9));
        task->setSecondAlert(localDate(2026, 11, 23, 9));
        task->setPriority(Priority::Medium);
        task->setDetails(u"all of them"_qs);
        return task;
    }
    static std::optional<EKReminder> reminderOf(const TaskPtr &task)
    {
        auto found = EKEventStore().calendarItemWithIdentifier(task->remindID());
        return found ? *found : std::nullopt;
    }
};

TEST_F(Reminders, GoOutWithTheirTask)
{
    const TaskPtr task = taskWithAlerts();
    Reminder::initReminderFromTask(task);
    const auto reminder = reminderOf(task);
    ASSERT_TRUE(reminder);
    EXPECT_EQ(reminder->title, u"Water the plants from Morvane"_qs);
    EXPECT_EQ(reminder->notes, u"all of them"_qs);
    EXPECT_EQ(reminder->priority, 5);
    ASSERT_THAT(reminder->alarms, SizeIs(2));
    EXPECT_EQ(reminder->alarms[1].absoluteDate(), localDate(2026, 11, 23, 9));
    const QString former = task->remindID();
    Reminder::initReminderFromTask(task);
    EXPECT_NE(task->remindID(), former) << "a change makes a new one";
    task->setStatus(TaskStatus::Done);
    Reminder::changeReminderStatusFromTask(task);
    EXPECT_EQ(task->remindID(), QString());
    task->setStatus(TaskStatus::Open);
    task->setAlert(std::nullopt);
    task->setSecondAlert(std::nullopt);
    Reminder::changeReminderStatusFromTask(task);
    EXPECT_EQ(task->remindID(), QString()) << "without an alert there is nothing to be reminded of";
}

TEST_F(Reminders, ComeBackIntoTheirTask)
{
    const TaskPtr task = taskWithAlerts();
    Reminder::initReminderFromTask(task);
    EKReminder reminder = reminderOf(task).value();
    reminder.isCompleted = true;
    reminder.completionDate = localDate(2026, 11, 21, 8);
    reminder.notes = u"done elsewhere"_qs;
    reminder.priority = 0;
    reminder.alarms = {EKAlarm::alarmWithAbsoluteDate(localDate(2026, 11, 30, 7))};
    ASSERT_FALSE(EKEventStore().saveReminder(reminder, true));
    Reminder manager;
    ASSERT_TRUE(becomes([&task] { return task->status() == TaskStatus::Done; }));
    EXPECT_EQ(task->expirationDate(), localDate(2026, 11, 21, 8));
    EXPECT_EQ(task->details(), u"done elsewhere"_qs);
    EXPECT_EQ(task->priority(), Priority::None);
    EXPECT_EQ(task->alert(), localDate(2026, 11, 30, 7));
    EXPECT_EQ(task->secondAlert(), localDate(2026, 11, 23, 9));
}

TEST_F(Reminders, TranslatePrioritiesEachWayByItsOwnTable)
{
    const std::vector<std::pair<std::optional<Priority>, int>> out = {
        {Priority::None, 0},           {Priority::Low, 7}, {Priority::Medium, 5}, {Priority::High, 2},
        {static_cast<Priority>(9), 2}, {std::nullopt, 2}};
    for (const auto &[task, reminder] : out)
        EXPECT_EQ(Reminder::reminderPriorityOf(task), reminder);
    using enum Priority;
    const std::vector<Priority> in = {None, High, High, High, High, Medium, Low, Low, Low, Low, None};
    for (int reminder = 0; reminder < int(in.size()); ++reminder)
        EXPECT_EQ(Reminder::taskPriorityOf(reminder), in[size_t(reminder)]);
}

} // namespace

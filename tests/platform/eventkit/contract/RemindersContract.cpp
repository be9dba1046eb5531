#include "EventStoreContract.h"

TEST_P(EventStoreContract, AReminderIsKeptTickedOffAndRemoved)
{
    EKReminder reminder = EKReminder::reminderWithEventStore(store);
    reminder.calendar = store.defaultCalendarForNewReminders();
    ASSERT_TRUE(reminder.calendar);
    reminder.title = u"Buy milk"_qs;
    reminder.notes = u"2 litres"_qs;
    reminder.priority = 5;
    reminder.dueDate = localDate(2024, 3, 4, 18);
    reminder.alarms = {EKAlarm::alarmWithAbsoluteDate(localDate(2024, 3, 4, 17)),
                       EKAlarm::alarmWithAbsoluteDate(localDate(2024, 3, 4, 8))};
    expectNoError(store.saveReminder(reminder, true));
    ASSERT_FALSE(reminder.calendarItemIdentifier.isEmpty());

    const auto find = [&] {
        return EKEventStore(place->open())
            .calendarItemWithIdentifier(reminder.calendarItemIdentifier)
            .value();
    };
    auto read = find();
    ASSERT_TRUE(read);
    EXPECT_EQ(read->title, u"Buy milk"_qs);
    EXPECT_EQ(read->notes, u"2 litres"_qs);
    EXPECT_EQ(read->priority, 5);
    EXPECT_EQ(read->dueDate, localDate(2024, 3, 4, 18));
    EXPECT_EQ(read->alarms, (std::vector{EKAlarm::alarmWithAbsoluteDate(localDate(2024, 3, 4, 17)),
                                         EKAlarm::alarmWithAbsoluteDate(localDate(2024, 3, 4, 8))}));
    EXPECT_FALSE(read->isCompleted || read->completionDate);

    read->isCompleted = true;
    expectNoError(store.saveReminder(*read, true));
    EXPECT_TRUE(find()->isCompleted);
    EXPECT_EQ(find()->completionDate, localDate(2024, 3, 1, 12));
    read->isCompleted = false;
    read->dueDate.reset();
    read->alarms.clear();
    expectNoError(store.saveReminder(*read, true));
    EXPECT_FALSE(find()->isCompleted || find()->completionDate || find()->dueDate);
    EXPECT_TRUE(find()->alarms.empty());
    EXPECT_TRUE(list(3).isEmpty());

    expectNoError(store.removeReminder(*read, true));
    EXPECT_FALSE(find());
}

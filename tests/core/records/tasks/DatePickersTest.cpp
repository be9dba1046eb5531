#include "CoreTest.h"

#include "records/DatePickerState.h"

namespace {

using Type = DatePickerState::Type;

class DatePickers : public CoreTest
{
protected:
    static MVTask copyOf(TaskType type, OptionalDate start, OptionalDate due)
    {
        MVTask copy;
        copy.type = type;
        copy.startDate = start;
        copy.dueDate = due;
        return copy;
    }
    static DatePickerState shown(MVTask copy, Type type)
    {
        DatePickerState picker(type);
        copy.datePickerWillShowPopover(picker);
        return picker;
    }
    const Date nine = localDate(2026, 11, 25, 9);
    const Date ten = localDate(2026, 11, 25, 10);
};

TEST_F(DatePickers, OpenOnlyWithTheDateTheyHangOn)
{
    const auto opens = [](MVTask copy, Type type) {
        DatePickerState picker(type);
        copy.datePickerMouseDown(picker, true);
        return picker.showPopover;
    };
    EXPECT_TRUE(opens(copyOf(TaskType::ToDo, {}, {}), Type::StartDate));
    EXPECT_TRUE(opens(copyOf(TaskType::EmailCall, {}, ten), Type::Alert));
    const ScriptedAlerts alerts({1000, 1000, 1000, 1000});
    EXPECT_FALSE(opens(copyOf(TaskType::ToDo, {}, ten), Type::Alert));
    EXPECT_FALSE(opens(copyOf(TaskType::EmailCall, nine, {}), Type::SecondAlert));
    // The end of a repetition only warns, once for each thing that is amiss.
    EXPECT_TRUE(opens(copyOf(TaskType::Appointment, nine, {}), Type::EndRepeat));
    ASSERT_EQ(alerts.asked().size(), 4u);
    EXPECT_EQ(alerts.asked()[0].informativeText, u"You should fill in Start Date to open this alert!"_qs);
    EXPECT_EQ(alerts.asked()[1].informativeText, u"You should fill in Due Date to open this alert!"_qs);
    EXPECT_EQ(alerts.asked()[2].title, u"Permission denied!"_qs);
    EXPECT_EQ(alerts.asked()[3].title, u"Can't open Alert"_qs);
}

TEST_F(DatePickers, ShowADateAndItsLimits)
{
    const DatePickerState start = shown(copyOf(TaskType::Appointment, {}, ten), Type::StartDate);
    EXPECT_EQ(start.titlePopover, u"Edit Start Date"_qs);
    EXPECT_EQ(start.dateValue, nine);
    EXPECT_EQ(start.minDate, localDate(2026, 11, 25));
    EXPECT_EQ(start.maxDate, ten - Seconds(60));
    EXPECT_TRUE(start.showClock);
    const DatePickerState due = shown(copyOf(TaskType::Appointment, nine, {}), Type::DueDate);
    EXPECT_EQ(due.dateValue, ten);
    EXPECT_EQ(due.minDate, nine + Seconds(60));
    EXPECT_EQ(due.maxDate, localDate(2026, 11, 25, 23, 59, 59));
    EXPECT_FALSE(due.showCheckBox);
    const DatePickerState toDo = shown(copyOf(TaskType::ToDo, {}, {}), Type::DueDate);
    EXPECT_TRUE(toDo.showCheckBox);
    EXPECT_FALSE(toDo.showClock);
    EXPECT_EQ(toDo.dateValue, Clock::now() + Seconds(3600));
    EXPECT_EQ(shown(copyOf(TaskType::EmailCall, {}, ten), Type::DueDate).titlePopover, u"Edit Start Date"_qs);
    MVTask call = copyOf(TaskType::EmailCall, {}, ten);
    call.alert = ten;
    const DatePickerState alert = shown(call, Type::Alert);
    EXPECT_TRUE(alert.isChecked);
    EXPECT_EQ(alert.maxDate, ten);
    const DatePickerState end = shown(copyOf(TaskType::ToDo, nine, ten), Type::EndRepeat);
    EXPECT_EQ(end.minDate, nine);
    EXPECT_FALSE(end.showClock);
}

TEST_F(DatePickers, GiveTheirDateToTheCopy)
{
    const auto pick = [](MVTask &copy, Type type, Date date) {
        DatePickerState picker(type);
        picker.showPopover = true;
        copy.datePickerClickButtonDone(picker, date);
        EXPECT_FALSE(picker.showPopover);
        return picker;
    };
    MVTask toDo = copyOf(TaskType::ToDo, {}, {});
    pick(toDo, Type::StartDate, localDate(2026, 11, 25, 9, 30, 15));
    EXPECT_EQ(toDo.startDate, localDate(2026, 11, 25));
    EXPECT_EQ(toDo.dueDate, localDate(2026, 11, 25, 23, 59, 59));
    pick(toDo, Type::DueDate, localDate(2026, 11, 27, 9));
    EXPECT_EQ(toDo.dueDate, localDate(2026, 11, 27, 23, 59));
    pick(toDo, Type::EndRepeat, ten);
    EXPECT_EQ(toDo.endRepeat, localDate(2026, 11, 25, 23, 59, 59));
    EXPECT_EQ(pick(toDo, Type::Alert, ten + Seconds(30)).dateValue, ten);
    EXPECT_EQ(toDo.alert, ten);

    MVTask untyped;
    pick(untyped, Type::StartDate, nine);
    EXPECT_EQ(untyped.startDate, localDate(2026, 11, 25)) << "what has no type is a ToDo";
    EXPECT_FALSE(shown(untyped, Type::StartDate).showClock);

    DatePickerState due(Type::DueDate);
    due.isChecked = true;
    toDo.datePickerChangeStateCheck(due);
    EXPECT_FALSE(toDo.dueDate);
    EXPECT_EQ(toDo.dueSomeDay, true);
    due.isChecked = false;
    toDo.datePickerChangeStateCheck(due);
    EXPECT_EQ(due.dateValue, localDate(2026, 11, 25, 23, 59, 59));
}

TEST_F(DatePickers, MoveAlertsThatWouldLieBehindTheirDate)
{
    MVTask meeting = copyOf(TaskType::Appointment, nine, ten);
    meeting.alert = nine;
    meeting.secondAlert = nine - Seconds(3600);
    DatePickerState start(Type::StartDate);
    meeting.datePickerClickButtonDone(start, nine - Seconds(1800));
    EXPECT_EQ(meeting.alert, nine - Seconds(3600));
    EXPECT_FALSE(meeting.secondAlert);
    // Without a second alert the first one stays, late as it is.
    meeting.datePickerClickButtonDone(start, nine - Seconds(7200));
    EXPECT_EQ(meeting.alert, nine - Seconds(3600));

    MVTask same = copyOf(TaskType::Appointment, nine, {});
    const ScriptedAlerts alerts({1000});
    DatePickerState due(Type::DueDate);
    same.datePickerClickButtonDone(due, nine + Seconds(20));
    EXPECT_FALSE(same.dueDate);
    EXPECT_EQ(alerts.asked().at(0).informativeText, u"Due Date can't be the same as Start Date!"_qs);
}

} // namespace

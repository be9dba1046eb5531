#include "CoreTest.h"

#include "calendarsync/CalendarEvent.h"
#include "records/TaskManager.h"

namespace {

/// A series that no calendar can be asked about: an edit of one row is copied to the others.
class SeriesWithoutCalendar : public CoreTest
{
protected:
    TaskPtr member(TaskType type, int day)
    {
        OptionalDate start;
        OptionalDate due;
        if (type != TaskType::EmailCall)
            start = localDate(2026, 11, day, type == TaskType::ToDo ? 0 : 9);
        due = type == TaskType::ToDo ? localDate(2026, 11, day, 23, 59) : localDate(2026, 11, day, 10);
        const TaskPtr task = add(u"day %1"_qs.arg(day), type, start, due);
        task->setRepeat(u"RRULE:FREQ=DAILY"_qs);
        task->setCalendarID(u"series"_qs);
        return task;
    }
    static bool saveAnsweredWith(MVTask &copy, int answer)
    {
        const ScriptedAlerts alerts({answer});
        return TaskManager::saveTaskTemp(copy, true);
    }
    static constexpr int thisOnly = 1000;
    static constexpr int allFuture = 1001;
};

TEST_F(SeriesWithoutCalendar, AppointmentsTakeTimesAndOffsetsOnTheirOwnDays)
{
    const TaskPtr first = member(TaskType::Appointment, 23);
    const TaskPtr edited = member(TaskType::Appointment, 24);
    const TaskPtr last = member(TaskType::Appointment, 25);
    const TaskPtr other =
        add(u"other"_qs, TaskType::Appointment, localDate(2026, 11, 25, 9), localDate(2026, 11, 25, 10));
    const auto company = context().insert<EntityCompany>();
    MVTask copy(edited);
    copy.title = u"renamed"_qs;
    copy.startDate = localDate(2026, 11, 24, 14, 30);
    copy.dueDate = localDate(2026, 11, 24, 16);
    copy.alert = localDate(2026, 11, 24, 14, 15);
    copy.secondAlert = localDate(2026, 11, 23, 14, 30);
    copy.company = company;
    copy.colorCalendarR = 0.5;
    EXPECT_TRUE(saveAnsweredWith(copy, allFuture));
    for (const auto &[row, day] : {std::pair(first, 23), std::pair(last, 25)}) {
        EXPECT_EQ(row->title(), u"renamed"_qs);
        EXPECT_EQ(row->startDate(), localDate(2026, 11, day, 14, 30));
        EXPECT_EQ(row->dueDate(), localDate(2026, 11, day, 16));
        EXPECT_EQ(row->alert(), localDate(2026, 11, day, 14, 15));
        EXPECT_EQ(row->secondAlert(), localDate(2026, 11, day - 1, 14, 30));
        EXPECT_EQ(row->company(), company);
        EXPECT_EQ(row->colorCalendarR(), 0.5);
        EXPECT_EQ(row->repeat(), u"RRULE:FREQ=DAILY"_qs);
    }
    EXPECT_EQ(other->title(), u"other"_qs);
    EXPECT_FALSE(context().hasChanges());

    copy.setTaskValues();
    copy.status = TaskStatus::Done;
    EXPECT_TRUE(saveAnsweredWith(copy, allFuture));
    EXPECT_EQ(last->status(), TaskStatus::Done);
    EXPECT_EQ(last->expirationDate(), Clock::now());
}

TEST_F(SeriesWithoutCalendar, MomentsAndDaysKeepTheirDay)
{
    const TaskPtr otherCall = member(TaskType::EmailCall, 23);
    const TaskPtr call = member(TaskType::EmailCall, 24);
    MVTask copy(call);
    copy.dueDate = localDate(2026, 11, 24, 18, 45);
    copy.alert = localDate(2026, 11, 24, 18, 30);
    EXPECT_TRUE(saveAnsweredWith(copy, allFuture));
    EXPECT_EQ(otherCall->dueDate(), localDate(2026, 11, 23, 18, 45));
    EXPECT_EQ(otherCall->alert(), localDate(2026, 11, 23, 18, 30));

    const TaskPtr day = member(TaskType::ToDo, 26);
    const TaskPtr edited = member(TaskType::ToDo, 27);
    MVTask toDo(edited);
    toDo.dueDate = localDate(2026, 11, 29, 23, 59);
    toDo.alert = localDate(2026, 11, 27, 8);
    EXPECT_TRUE(saveAnsweredWith(toDo, allFuture));
    EXPECT_EQ(day->startDate(), localDate(2026, 11, 26));
    EXPECT_EQ(day->dueDate(), localDate(2026, 11, 28)) << "whole days after its start";
    EXPECT_EQ(day->alert(), localDate(2026, 11, 26, 8));
}

TEST_F(SeriesWithoutCalendar, OneOccurrenceLeavesItAlone)
{
    const TaskPtr other = member(TaskType::Appointment, 23);
    const TaskPtr edited = member(TaskType::Appointment, 24);
    MVTask copy(edited);
    copy.title = u"alone"_qs;
    EXPECT_TRUE(saveAnsweredWith(copy, thisOnly));
    EXPECT_EQ(edited->repeat(), QString());
    EXPECT_EQ(edited->calendarID(), u"series"_qs);
    EXPECT_EQ(other->title(), u"day 23"_qs);
    EXPECT_EQ(other->repeat(), u"RRULE:FREQ=DAILY"_qs);
    // No longer repeating, it is saved without a question and without the others.
    copy.title = u"still alone"_qs;
    EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
    EXPECT_EQ(other->title(), u"day 23"_qs);
}

TEST_F(SeriesWithoutCalendar, WhatOneOccurrenceSaysByItselfStays)
{
    for (int day = 23; day <= 27; ++day)
        member(TaskType::Appointment, day)->setTitle(u"Standup"_qs);
    std::vector<TaskPtr> rows;
    for (const TaskPtr &row : DBWorker::getAllTasks())
        rows.push_back(row);
    ASSERT_EQ(rows.size(), 5U);
    std::ranges::sort(rows, {}, [](const TaskPtr &row) { return row->startDate(); });
    MVTask alone(rows[0]);
    alone.title = u"Alone"_qs;
    EXPECT_TRUE(saveAnsweredWith(alone, thisOnly));
    rows[1]->setDetails(u"what was said"_qs);
    rows[3]->setTitle(u"Talk"_qs);
    MVTask copy(rows[2]);
    copy.title = u"Meeting"_qs;
    copy.details = u"Room 2"_qs;
    EXPECT_TRUE(saveAnsweredWith(copy, allFuture));
    QStringList shown;
    for (const TaskPtr &row : rows)
        shown.append(row->title() + u": "_qs + row->details());
    EXPECT_EQ(shown, (QStringList{u"Alone: "_qs, u"Meeting: what was said"_qs, u"Meeting: Room 2"_qs,
                                  u"Talk: Room 2"_qs, u"Meeting: Room 2"_qs}));
}

TEST_F(SeriesWithoutCalendar, RowsThatNameNoCalendarItemAreNoSeries)
{
    const TaskPtr plain = add(u"plain"_qs);
    const TaskPtr repeating =
        add(u"repeating"_qs, TaskType::Appointment, localDate(2026, 11, 25, 9), localDate(2026, 11, 25, 10));
    repeating->setRepeat(u"RRULE:FREQ=DAILY"_qs);
    MVTask copy(repeating);
    copy.title = u"renamed"_qs;
    EXPECT_TRUE(saveAnsweredWith(copy, allFuture));
    EXPECT_EQ(plain->title(), u"plain"_qs);
    CalendarEvent::removeEventCalendarFromTask(repeating, Span::FutureTasks, true);
    EXPECT_EQ(titles(DBWorker::getAllTasks()), QStringList(u"plain"_qs));
}

TEST_F(SeriesWithoutCalendar, AStatusAloneReachesTheOthersByTheSameRoad)
{
    const TaskPtr other = member(TaskType::Appointment, 23);
    const TaskPtr changed = member(TaskType::Appointment, 24);
    changed->setStatus(TaskStatus::Pending);
    CalendarEvent::changeEventCalendarStatusFromTask(changed, Span::FutureTasks, changed->startDate());
    EXPECT_EQ(other->status(), TaskStatus::Pending);
    changed->setStatus(TaskStatus::Done);
    CalendarEvent::changeEventCalendarStatusFromTask(changed, Span::FutureTasks, changed->startDate());
    EXPECT_EQ(other->status(), TaskStatus::Done);
    changed->setDueDate(std::nullopt);
    changed->setStatus(TaskStatus::Open);
    CalendarEvent::changeEventCalendarStatusFromTask(changed, Span::FutureTasks, changed->startDate());
    EXPECT_EQ(other->status(), TaskStatus::Done) << "without a due date there is nothing to do";
}

} // namespace

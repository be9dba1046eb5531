#include "SeriesStories.h"

namespace {

using testing::IsEmpty;
using testing::SizeIs;

TEST_F(SeriesStories, OneOccurrenceIsDone)
{
    pass();
    ASSERT_THAT(rows(), SizeIs(6));
    finish(rows().at(2), Span::ThisTask);
    EXPECT_EQ(statuses(), QList({0, 0, 3, 0, 0, 0}));
    EXPECT_THAT(calendar(), SizeIs(5));
    EXPECT_TRUE(rows().at(2)->calendarID().isEmpty());
    EXPECT_TRUE(rows().at(2)->repeat().isEmpty());
    EXPECT_TRUE(rows().at(2)->expirationDate().has_value());
    pass();
    EXPECT_EQ(statuses(), QList({0, 0, 3, 0, 0, 0}));
    expectSettled();
    // Opened again it gets an event of its own.
    MVTask again(rows().at(2));
    again.changeStatusType(TaskStatus::Open, true);
    pass();
    EXPECT_EQ(statuses(), QList({0, 0, 0, 0, 0, 0}));
    EXPECT_THAT(calendar(), SizeIs(6));
    EXPECT_THAT(files(u"Home"_qs), SizeIs(2));
    expectSettled();
}

TEST_F(SeriesStories, TheRestIsDone)
{
    pass();
    const TaskPtr done = rows().at(2);
    finish(done, Span::FutureTasks);
    EXPECT_EQ(statuses(), QList({0, 0, 3, 3, 3, 3}));
    EXPECT_EQ(calendar(), QStringList({u"11-20 09:00 Standup"_qs, u"11-21 09:00 Standup"_qs}));
    for (const TaskPtr &row : rows()) {
        const bool isDone = row->status() == TaskStatus::Done;
        EXPECT_EQ(row->expirationDate().has_value(), isDone);
        EXPECT_EQ(row->endRepeat(), OptionalDate(localDate(2026, 11, isDone ? 25 : 22, 23, 59, 59)));
        EXPECT_EQ(row->calendarID(), u"standup"_qs);
    }
    pass();
    EXPECT_EQ(statuses(), QList({0, 0, 3, 3, 3, 3}));
    expectSettled();
    // Opened again, the rest ends where the six of it ended.
    editSeries(rows().at(2), Span::FutureTasks,
               [](MVTask &task) { task.changeStatusType(TaskStatus::Open, false); });
    pass();
    EXPECT_EQ(calendar(),
              QStringList({u"11-20 09:00 Standup"_qs, u"11-21 09:00 Standup"_qs, u"11-22 09:00 Standup"_qs,
                           u"11-23 09:00 Standup"_qs, u"11-24 09:00 Standup"_qs, u"11-25 09:00 Standup"_qs}));
}

TEST_F(SeriesStories, WhatWasDoneOutlivesAnEditOfTheRest)
{
    pass();
    finish(rows().at(1), Span::ThisTask);
    finish(rows().at(3), Span::FutureTasks);
    editSeries(rows().at(0), Span::FutureTasks, [](MVTask &task) { task.priority = Priority::High; });
    pass();
    EXPECT_EQ(statuses(), QList({0, 3, 0, 3, 3, 3}));
    EXPECT_EQ(rows().at(2)->priority(), Priority::High);
    EXPECT_EQ(rows().at(4)->priority(), Priority::None);
}

TEST_F(SeriesStories, AnEditOfTheRestSparesWhatComesBefore)
{
    pass();
    editSeries(rows().at(1), Span::ThisTask, [](MVTask &task) { task.priority = Priority::Low; });
    editSeries(rows().at(3), Span::FutureTasks, [](MVTask &task) { task.priority = Priority::High; });
    pass();
    QList<int> priorities;
    for (const TaskPtr &row : rows())
        priorities.append(numberOf(row->priority()).value_or(-1));
    const int none = numberOf(rows().at(0)->priority()).value_or(-1);
    const int high = numberOf(rows().at(3)->priority()).value_or(-1);
    EXPECT_NE(none, high);
    EXPECT_EQ(priorities.mid(2), QList({none, high, high, high}));
    EXPECT_NE(priorities.at(1), high);
}

TEST_F(SeriesStories, AnOccurrenceThatIsPutOffLeavesTheCalendar)
{
    for (const Span span : {Span::ThisTask, Span::FutureTasks}) {
        writeStandup(u"COUNT=6"_qs, {});
        pass();
        const auto putOff = [](MVTask &task) {
            task.type = TaskType::ToDo;
            task.dueSomeDay = true;
            task.repeat.clear();
            task.startDate.reset();
            task.dueDate.reset();
            task.endRepeat.reset();
        };
        // What was put off before comes first, without a date.
        const int isRest = span == Span::FutureTasks ? 1 : 0;
        editSeries(rows().at(2 + isRest), span, putOff);
        pass();
        EXPECT_THAT(calendar(), SizeIs(isRest ? 2 : 5));
        EXPECT_FALSE(calendar().contains(u"11-22 09:00 Standup"_qs));
        int someday = 0;
        for (const auto &row : context().fetch<EntityTask>(EntityTask::fetchRequest()))
            someday += row->startDate() ? 0 : 1;
        EXPECT_EQ(someday, 1 + isRest) << "one of each round";
    }
}

TEST_F(SeriesStories, AnOccurrenceThatIsDoneOnAnotherDayTakesItsOwnFromTheSeries)
{
    pass();
    editSeries(rows().at(2), Span::ThisTask, [](MVTask &task) {
        task.startDate = *task.startDate - Seconds(86400);
        task.dueDate = *task.dueDate - Seconds(86400);
        task.status = TaskStatus::Done;
    });
    pass();
    EXPECT_THAT(calendar(), SizeIs(5));
    EXPECT_TRUE(calendar().contains(u"11-21 09:00 Standup"_qs)) << "of that day";
    EXPECT_FALSE(calendar().contains(u"11-22 09:00 Standup"_qs)) << "which was done";
    EXPECT_THAT(rows(), SizeIs(6));
}

TEST_F(SeriesStories, OccurrencesMovedElsewhereAreFollowed)
{
    pass();
    rows().at(2)->setPriority(Priority::High);
    writeStandup(u"COUNT=6"_qs,
                 override(u"20261122"_qs, u"SUMMARY:Standup\nDTSTART;TZID=Europe/Berlin:20261122T110000\n"
                                          u"DTEND;TZID=Europe/Berlin:20261122T111500\n"_qs) +
                     override(u"20261123"_qs, u"SUMMARY:Retro\nDTSTART;TZID=Europe/Berlin:20261123T090000\n"
                                              u"DTEND;TZID=Europe/Berlin:20261123T091500\n"_qs));
    pass();
    EXPECT_EQ(table(),
              QStringList({u"11-20 09:15 Standup"_qs, u"11-21 09:15 Standup"_qs, u"11-22 11:15 Standup"_qs,
                           u"11-23 09:15 Retro"_qs, u"11-24 09:15 Standup"_qs, u"11-25 09:15 Standup"_qs}));
    EXPECT_EQ(rows().at(2)->priority(), Priority::None) << "a moved occurrence is a new row";
    expectSettled();
    writeStandup(u"COUNT=6"_qs, u"EXDATE;TZID=Europe/Berlin:20261122T090000,20261124T090000\n"_qs);
    pass();
    EXPECT_THAT(rows(), SizeIs(4));
    expectSettled();
}

TEST_F(SeriesStories, OccurrencesMovedHereStayInTheirSeries)
{
    pass();
    const MVTask moved = editSeries(rows().at(2), Span::ThisTask, [](MVTask &task) {
        task.startDate = *task.startDate + Seconds(7200);
        task.dueDate = *task.dueDate + Seconds(7200);
    });
    EXPECT_TRUE(moved.task()->repeat().isEmpty()) << "edited alone it leaves its series";
    EXPECT_TRUE(calendar().contains(u"11-22 11:00 Standup"_qs));
    EXPECT_THAT(calendar(), SizeIs(6));
    EXPECT_THAT(files(u"Home"_qs), SizeIs(1));
    pass();
    EXPECT_THAT(rows(), SizeIs(6));
    expectSettled();
    const MVTask back =
        editSeries(rows().at(2), Span::FutureTasks, [](MVTask &task) { task.title = u"Later"_qs; });
    pass();
    EXPECT_EQ(table().filter(u"Later"_qs).size(), 4);
    EXPECT_THAT(rows(), SizeIs(6)) << "six times in all, as before";
    expectSettled();
}

TEST_F(SeriesStories, OccurrencesThatWereEditedAloneAreEditedAndDeletedAlone)
{
    pass();
    const TaskPtr row = rows().at(2);
    editSeries(row, Span::ThisTask, [](MVTask &task) { task.title = u"Alone"_qs; });
    MVTask again(row);
    again.title = u"Still alone"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(again, true));
    EXPECT_EQ(calendar().filter(u"Standup"_qs).size(), 5);
    EXPECT_TRUE(calendar().contains(u"11-22 09:00 Still alone"_qs));
    const ScriptedAlerts alerts({Alert::firstButton});
    TaskManager::deleteTasks({row}, {});
    EXPECT_EQ(calendar().size(), 5);
    pass();
    EXPECT_THAT(rows(), SizeIs(5));
    expectSettled();
}

TEST_F(SeriesStories, AnEndAfterSomeTimesOutlivesEditsOfTheRest)
{
    pass();
    editSeries(rows().at(3), Span::FutureTasks, [](MVTask &task) {
        task.title = u"Later"_qs;
        task.startDate = *task.startDate + Seconds(3600);
        task.dueDate = *task.dueDate + Seconds(3600);
    });
    EXPECT_EQ(calendar(),
              QStringList({u"11-20 09:00 Standup"_qs, u"11-21 09:00 Standup"_qs, u"11-22 09:00 Standup"_qs,
                           u"11-23 10:00 Later"_qs, u"11-24 10:00 Later"_qs, u"11-25 10:00 Later"_qs}));
    EXPECT_TRUE(files(u"Home"_qs).values().join(u' ').contains(u"COUNT=3"_qs));
    pass();
    EXPECT_THAT(rows(), SizeIs(6));
    expectSettled();
    // A rule that the user has chosen counts as it is.
    editSeries(rows().at(4), Span::FutureTasks, [](MVTask &task) {
        task.repeat = u"RRULE:FREQ=DAILY;INTERVAL=1"_qs;
        task.endRepeat = localDate(2026, 11, 27);
    });
    EXPECT_THAT(calendar(), SizeIs(8));
    pass();
    expectSettled();
}

TEST_F(SeriesStories, DeletingTheOneInSightSparesThoseOutOfSight)
{
    QFile::remove(folderOf(u"Home"_qs) + u"/standup.ics"_qs);
    write(u"Home"_qs, u"birthday"_qs,
          u"SUMMARY:Birthday\nDTSTART;VALUE=DATE:20251201\nRRULE:FREQ=MONTHLY;INTERVAL=2\n"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(2));
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({rows().at(0)}, {});
    }
    EXPECT_TRUE(files(u"Home"_qs).first().contains(u"RRULE:FREQ=MONTHLY;INTERVAL=2"_qs));
    pass();
    EXPECT_THAT(rows(), SizeIs(1));
    // A series of one is none.
    writeStandup(u"COUNT=2"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(3));
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({rows().at(1)}, {});
    }
    EXPECT_FALSE(files(u"Home"_qs).value(u"standup.ics"_qs).contains(u"RRULE"_qs));
    pass();
    ASSERT_THAT(rows(), SizeIs(2));
    EXPECT_TRUE(rows().at(0)->repeat().isEmpty());
    expectSettled();
}

TEST_F(SeriesStories, DeletingTheRestOrAllOfIt)
{
    pass();
    {
        const ScriptedAlerts alerts({Alert::secondButton});
        TaskManager::deleteTasks({rows().at(1)}, {});
    }
    ASSERT_THAT(rows(), SizeIs(1));
    pass();
    EXPECT_EQ(calendar(), QStringList(u"11-20 09:00 Standup"_qs));
    expectSettled();
    const ScriptedAlerts alerts({Alert::firstButton});
    TaskManager::deleteTasks({rows().at(0)}, {});
    EXPECT_THAT(files(u"Home"_qs), IsEmpty());
    EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(SeriesStories, DeletingTheRestFromTwoOfItEndsItBeforeTheEarlier)
{
    pass();
    const TaskPtr first = rows().at(0);
    {
        const ScriptedAlerts alerts({Alert::secondButton});
        TaskManager::deleteTasks({rows().at(1), rows().at(3)}, {});
    }
    ASSERT_THAT(rows(), SizeIs(1));
    EXPECT_LT(first->endRepeat(), localDate(2026, 11, 22));
    EXPECT_EQ(calendar(), QStringList(u"11-20 09:00 Standup"_qs));
    expectSettled();
}

TEST_F(SeriesStories, OneOccurrenceGoesToAnotherCalendarAlone)
{
    pass();
    editSeries(rows().at(2), Span::ThisTask, [](MVTask &task) { task.typeCalendarID = u"Work"_qs; });
    EXPECT_TRUE(
        files(u"Home"_qs).value(u"standup.ics"_qs).contains(u"EXDATE;TZID=Europe/Berlin:20261122T0900"_qs));
    ASSERT_THAT(files(u"Work"_qs), SizeIs(1));
    EXPECT_FALSE(files(u"Work"_qs).first().contains(u"RRULE:FREQ=DAILY"_qs));
    EXPECT_THAT(calendar(), SizeIs(6));
    pass();
    EXPECT_THAT(rows(), SizeIs(6));
    EXPECT_EQ(rows().at(2)->typeCalendarID(), u"Work"_qs);
    EXPECT_EQ(rows().at(3)->typeCalendarID(), u"Home"_qs);
    expectSettled();
    // With all later ones it takes them along.
    editSeries(rows().at(3), Span::FutureTasks, [](MVTask &task) { task.typeCalendarID = u"Work"_qs; });
    pass();
    EXPECT_THAT(calendar(), SizeIs(6));
    expectSettled();
}

TEST_F(SeriesStories, CopiesInTwoCalendarsAreEditedEachOnItsOwn)
{
    write(u"Work"_qs, u"standup"_qs,
          u"SUMMARY:Standup\nDTSTART;TZID=Europe/Berlin:20261120T090000\nDTEND;TZID=Europe/"
          u"Berlin:20261120T091500\nRRULE:FREQ=DAILY;COUNT=2\n"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(8));
    const auto home = files(u"Home"_qs);
    for (const TaskPtr &row : rows()) {
        if (row->typeCalendarID() != u"Work"_qs)
            continue;
        editSeries(row, Span::ThisTask, [](MVTask &task) { task.details = u"Mine"_qs; });
        break;
    }
    EXPECT_EQ(files(u"Home"_qs), home);
    EXPECT_TRUE(files(u"Work"_qs).first().contains(u"DESCRIPTION:Mine"_qs));
    pass();
    expectSettled();
}

TEST_F(SeriesStories, ASeriesThatBeginsBeyondTheWindowComesWithIt)
{
    QFile::remove(folderOf(u"Home"_qs) + u"/standup.ics"_qs);
    MVTask copy;
    copy.title = u"Far"_qs;
    copy.type = TaskType::Appointment;
    copy.status = TaskStatus::Open;
    copy.startDate = localDate(2027, 9, 1, 9);
    copy.dueDate = localDate(2027, 9, 1, 10);
    copy.repeat = u"RRULE:FREQ=DAILY;INTERVAL=1"_qs;
    copy.endRepeat = localDate(2027, 9, 3);
    copy.typeCalendarID = u"Home"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    EXPECT_THAT(rows(), IsEmpty()) << "the calendar has it";
    EXPECT_THAT(files(u"Home"_qs), SizeIs(1));
    const FrozenClock later(localDate(2027, 8, 1, 12));
    pass();
    EXPECT_THAT(rows(), SizeIs(3));
}

TEST_F(SeriesStories, TheRestFromTheSecondOfADaySparesTheFirst)
{
    for (const bool isDeletion : {false, true}) {
        write(u"Home"_qs, u"standup"_qs,
              u"SUMMARY:Standup\nDTSTART;TZID=Europe/Berlin:20261122T080000\nDURATION:PT15M\n"
              u"RRULE:FREQ=DAILY;BYHOUR=8,20;COUNT=6\n"_qs);
        pass();
        ASSERT_THAT(rows(), SizeIs(6));
        const TaskPtr first = rows().at(2);
        ASSERT_EQ(wallClock(*first->startDate()).mid(5, 11), u"11-23 08:00"_qs);
        if (isDeletion) {
            const ScriptedAlerts alerts({Alert::secondButton});
            TaskManager::deleteTasks({rows().at(3)}, {});
        } else {
            editSeries(rows().at(3), Span::FutureTasks, [](MVTask &task) { task.title = u"Later"_qs; });
        }
        EXPECT_EQ(
            calendar().filter(u"Standup"_qs),
            QStringList({u"11-22 08:00 Standup"_qs, u"11-22 20:00 Standup"_qs, u"11-23 08:00 Standup"_qs}));
        EXPECT_EQ(calendar().filter(u"Later"_qs).size(), isDeletion ? 0 : 3);
        EXPECT_THAT(rows(), SizeIs(isDeletion ? 3 : 6));
        EXPECT_TRUE(first->context()) << "its row is the same";
        pass();
        expectSettled();
        ASSERT_FALSE(context().undo());
    }
}

} // namespace

#include "CalendarTest.h"
#include "records/RecordHistory.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::SizeIs;

class WritingTasksToEvents : public CalendarTest
{
protected:
    static MVTask draft(TaskType type, OptionalDate start, OptionalDate due)
    {
        MVTask copy;
        copy.title = u"Task"_qs;
        copy.type = type;
        copy.status = TaskStatus::Open;
        copy.priority = Priority::Low;
        copy.startDate = start;
        copy.dueDate = due;
        copy.typeCalendarID = u"Home"_qs;
        return copy;
    }
    QString onlyFile(const QString &calendar = u"Home"_qs) const
    {
        const auto all = files(calendar);
        EXPECT_EQ(all.size(), 1);
        return all.isEmpty() ? QString() : all.first();
    }
};

TEST_F(WritingTasksToEvents, ByTheirType)
{
    MVTask call = draft(TaskType::EmailCall, {}, localDate(2026, 11, 24, 9));
    call.alert = localDate(2026, 11, 24, 8, 45);
    ASSERT_TRUE(TaskManager::saveTaskTemp(call, true));
    const QString text = onlyFile();
    EXPECT_TRUE(text.contains(u"SUMMARY:Task"_qs)) << text.toStdString();
    EXPECT_TRUE(text.contains(u"TRIGGER:-PT15M"_qs)) << text.toStdString();
    EXPECT_TRUE(text.contains(call.task()->calendarID()));
    const auto event = CalendarEvent::eventsWithExternalIdentifier(call.task()->calendarID()).at(0);
    EXPECT_EQ(event.startDate, event.endDate);
    EXPECT_FALSE(event.allDay);

    MVTask day = draft(TaskType::ToDo, localDate(2026, 11, 23), localDate(2026, 11, 25, 23, 59));
    day.typeCalendarID = u"Work"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(day, true));
    EXPECT_TRUE(onlyFile(u"Work"_qs).contains(u"DTEND;VALUE=DATE:20261126"_qs))
        << onlyFile(u"Work"_qs).toStdString();
    // What was written comes back as it was.
    pass();
    EXPECT_THAT(rows(), SizeIs(2));
    EXPECT_EQ(call.task()->dueDate(), localDate(2026, 11, 24, 9));
    EXPECT_EQ(day.task()->startDate(), localDate(2026, 11, 23));
}

TEST_F(WritingTasksToEvents, AlarmsThatAStoreAddsAreTakenOffAgain)
{
    connectMoodyStore()->addsAlarms = true;
    MVTask silent = draft(TaskType::Appointment, localDate(2026, 11, 24, 9), localDate(2026, 11, 24, 10));
    ASSERT_TRUE(TaskManager::saveTaskTemp(silent, true));
    EXPECT_FALSE(onlyFile().contains(u"VALARM"_qs)) << onlyFile().toStdString();
    pass();
    EXPECT_EQ(silent.task()->alert(), std::nullopt);
    MVTask loud = draft(TaskType::Appointment, localDate(2026, 11, 24, 9), localDate(2026, 11, 24, 10));
    loud.alert = localDate(2026, 11, 24, 8);
    loud.typeCalendarID = u"Work"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(loud, true));
    EXPECT_EQ(onlyFile(u"Work"_qs).count(u"BEGIN:VALARM"_qs), 1);
}

TEST_F(WritingTasksToEvents, APlaceOfUnknownPositionIsWrittenByItsNameAlone)
{
    MVTask copy = draft(TaskType::Appointment, localDate(2026, 11, 24, 9), localDate(2026, 11, 24, 10));
    copy.location = DBWorker::saveLocation(u"Grandma"_qs, {}, {});
    ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    EXPECT_TRUE(onlyFile().contains(u"LOCATION:Grandma"_qs)) << onlyFile().toStdString();
    EXPECT_FALSE(onlyFile().contains(u"GEO"_qs)) << onlyFile().toStdString();
    const auto before = DBWorker::allLocations().size();
    pass();
    expectSettled();
    EXPECT_EQ(DBWorker::allLocations().size(), before);
    EXPECT_EQ(copy.task()->location(), copy.location);
    EXPECT_FALSE(copy.location->latitude());
}

TEST_F(WritingTasksToEvents, DoneTasksLeaveTheCalendarAndComeBackWithANewEvent)
{
    MVTask copy = draft(TaskType::Appointment, localDate(2026, 11, 24, 9), localDate(2026, 11, 24, 10));
    ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    const TaskPtr row = copy.task();
    const QString formerEvent = row->calendarID();
    row->setCreationDate(localDate(2026, 11, 2));
    row->setDelegatedSince(localDate(2026, 11, 3));
    row->setLastAsked(localDate(2026, 11, 4));
    ASSERT_FALSE(DBWorker::saveContext());
    const size_t formerSaves = RecordHistory(row).entries().size();
    copy.changeStatusType(TaskStatus::Done, true);
    EXPECT_THAT(files(u"Home"_qs), SizeIs(0));
    ASSERT_THAT(rows(), ElementsAre(row)) << "what is known of a task hangs on its row";
    EXPECT_EQ(row->calendarID(), QString());
    EXPECT_EQ(copy.status, TaskStatus::Done);
    EXPECT_EQ(row->creationDate(), localDate(2026, 11, 2));
    EXPECT_EQ(row->delegatedSince(), localDate(2026, 11, 3));
    EXPECT_EQ(row->lastAsked(), localDate(2026, 11, 4));
    EXPECT_EQ(RecordHistory(row).entries().size(), formerSaves + 1);
    pass();
    copy.changeStatusType(TaskStatus::Open, true);
    EXPECT_THAT(files(u"Home"_qs), SizeIs(1));
    EXPECT_NE(row->calendarID(), formerEvent);
    EXPECT_THAT(rows(), ElementsAre(row));
}

TEST_F(WritingTasksToEvents, AnEditKeepsWhatOtherProgramsWrote)
{
    write(
        u"Home"_qs, u"rich"_qs,
        u"SUMMARY:Rich\nDTSTART:20261124T080000Z\nDTEND:20261124T090000Z\nX-OTHER;P=1:kept\nCATEGORIES:A,B\n"_qs);
    pass();
    MVTask copy(rows().at(0));
    copy.title = u"Richer"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    const QString text = onlyFile();
    EXPECT_TRUE(text.contains(u"SUMMARY:Richer"_qs));
    EXPECT_TRUE(text.contains(u"X-OTHER;P=1:kept"_qs));
    EXPECT_TRUE(text.contains(u"CATEGORIES:A,B"_qs));
    EXPECT_TRUE(text.contains(u"DTSTART:20261124T080000Z"_qs));
}

TEST_F(WritingTasksToEvents, ASeriesIsEditedFromADayOnOrOnThatDayAlone)
{
    UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
    MVTask copy = draft(TaskType::Appointment, localDate(2026, 11, 21, 9), localDate(2026, 11, 21, 10));
    copy.repeat = u"RRULE:FREQ=DAILY;INTERVAL=1"_qs;
    copy.endRepeat = localDate(2026, 11, 25);
    ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    ASSERT_THAT(rows(), SizeIs(5));
    EXPECT_EQ(copy.task()->endRepeat(), rows().back()->endRepeat());

    MVTask third(rows().at(2));
    third.title = u"Alone"_qs;
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        ASSERT_TRUE(TaskManager::saveTaskTemp(third, true));
    }
    pass();
    ASSERT_THAT(rows(), SizeIs(5));
    EXPECT_EQ(rows().at(2)->title(), u"Alone"_qs);
    EXPECT_EQ(rows().at(3)->title(), u"Task"_qs);

    MVTask fourth(rows().at(3));
    fourth.title = u"Later"_qs;
    {
        const ScriptedAlerts alerts({Alert::secondButton});
        ASSERT_TRUE(TaskManager::saveTaskTemp(fourth, true));
    }
    pass();
    QStringList titles;
    for (const TaskPtr &row : rows())
        titles.append(row->title());
    EXPECT_EQ(titles, QStringList({u"Task"_qs, u"Task"_qs, u"Alone"_qs, u"Later"_qs, u"Later"_qs}));
}

TEST_F(WritingTasksToEvents, DeletingReachesTheCalendar)
{
    UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
    write(u"Home"_qs, u"daily"_qs,
          u"SUMMARY:Daily\nDTSTART;TZID=Europe/Berlin:20261121T090000\nDTEND;TZID=Europe/"
          u"Berlin:20261121T093000\n"
          u"RRULE:FREQ=DAILY;COUNT=5\n"_qs);
    pass();
    ASSERT_THAT(rows(), SizeIs(5));
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({rows().at(1)}, {});
    }
    pass();
    EXPECT_THAT(rows(), SizeIs(4));
    {
        const ScriptedAlerts alerts({Alert::secondButton});
        TaskManager::deleteTasks({rows().at(2)}, {});
    }
    pass();
    EXPECT_THAT(rows(), SizeIs(2));
    EXPECT_EQ(rows().back()->dueDate(), localDate(2026, 11, 23, 9, 30));
    MVTask single = draft(TaskType::Appointment, localDate(2026, 12, 1, 9), localDate(2026, 12, 1, 10));
    ASSERT_TRUE(TaskManager::saveTaskTemp(single, true));
    const ScriptedAlerts alerts({Alert::firstButton});
    TaskManager::deleteTasks({single.task()}, {});
    EXPECT_THAT(files(u"Home"_qs), SizeIs(1));
}

/// Such a task stands on no day of a calendar; there is nothing to write, and nothing to complain of.
TEST_F(WritingTasksToEvents, AToDoThatIsOnlyDueHasAnEventOnceItStarts)
{
    const LogCapture log;
    MVTask taxes = draft(TaskType::ToDo, {}, localDate(2026, 11, 30, 23, 59));
    ASSERT_TRUE(TaskManager::saveTaskTemp(taxes, true));
    taxes.title = u"Taxes"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(taxes, true));
    EXPECT_TRUE(files(u"Home"_qs).isEmpty());
    taxes.startDate = localDate(2026, 11, 28);
    ASSERT_TRUE(TaskManager::saveTaskTemp(taxes, true));
    EXPECT_TRUE(onlyFile().contains(u"SUMMARY:Taxes"_qs));
    taxes.startDate.reset();
    ASSERT_TRUE(TaskManager::saveTaskTemp(taxes, true));
    EXPECT_TRUE(files(u"Home"_qs).isEmpty());
    EXPECT_EQ(log.lines(), QStringList());
    pass();
    EXPECT_THAT(rows(), SizeIs(1));
}

TEST_F(WritingTasksToEvents, ATaskWithoutACalendarTakesTheUsualOneWhenItIsNextSaved)
{
    choose({});
    MVTask early = draft(TaskType::Appointment, localDate(2026, 11, 24, 9), localDate(2026, 11, 24, 10));
    early.typeCalendarID.clear();
    ASSERT_TRUE(TaskManager::saveTaskTemp(early, true));
    MVTask idea = draft(TaskType::ToDo, {}, {});
    idea.typeCalendarID.clear();
    ASSERT_TRUE(TaskManager::saveTaskTemp(idea, true));
    EXPECT_TRUE(idea.task()->typeCalendarID().isEmpty());
    choose({u"Home"_qs, u"Work"_qs});
    for (MVTask *task : {&early, &idea}) {
        task->title += u"!"_qs;
        ASSERT_TRUE(TaskManager::saveTaskTemp(*task, true));
        EXPECT_EQ(task->task()->typeCalendarID(), u"Home"_qs);
        EXPECT_EQ(task->task()->calendarTitle(), u"Home"_qs);
    }
    EXPECT_TRUE(onlyFile().contains(u"SUMMARY:Task!"_qs));
    // One that has a calendar keeps it.
    MVTask other(early.task());
    other.typeCalendarID = u"Work"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(other, true));
    other.title = u"Moved"_qs;
    ASSERT_TRUE(TaskManager::saveTaskTemp(other, true));
    EXPECT_TRUE(onlyFile(u"Work"_qs).contains(u"SUMMARY:Moved"_qs));
}
} // namespace

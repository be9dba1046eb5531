#include "CoreTest.h"

#include "support/FullDisk.h"

#include "foundation/Region.h"
#include "records/DatePickerState.h"
#include "records/TaskManager.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"

#include <QCoreApplication>

#include <limits>

#include <sqlite3.h>

namespace {

using Picker = DatePickerState::Type;

/// What no screen would ask for, through the operations that every screen uses.
class HostileInput : public CoreTest
{
protected:
    ~HostileInput() override
    {
        Region::reload();
        MTDates::reset();
    }

    static MVTask copyOf(const QString &title, TaskType type = TaskType::ToDo, OptionalDate start = {},
                         OptionalDate due = {})
    {
        MVTask copy;
        copy.title = title;
        copy.type = type;
        copy.status = TaskStatus::Open;
        copy.startDate = start;
        copy.dueDate = due;
        return copy;
    }
    static void pick(MVTask &copy, Picker type, Date date)
    {
        DatePickerState picker(type);
        copy.datePickerWillShowPopover(picker);
        copy.datePickerClickButtonDone(picker, date);
    }
    TaskPtr member(const QString &title, OptionalDate start, OptionalDate due, TaskType type)
    {
        const TaskPtr task = add(title, type, start, due);
        task->setRepeat(u"RRULE:FREQ=DAILY"_qs);
        task->setCalendarID(u"series"_qs);
        EXPECT_FALSE(DBWorker::saveContext());
        return task;
    }
    /// As another program would.
    static void execute(const char *sql)
    {
        sqlite3 *other = nullptr;
        sqlite3_open(storePath().toUtf8().constData(), &other);
        EXPECT_EQ(sqlite3_exec(other, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(other);
        sqlite3_close(other);
    }
    static QStringList storedTitles()
    {
        QStringList all = titles(DBWorker::getAllTasks());
        all.sort();
        return all;
    }
};

TEST_F(HostileInput, TextsOfEveryKindAreStoredAsTheCopyThenShowsThem)
{
    const QString half = u"a"_qs + QChar(0xD83D) + u"b"_qs;
    const QString withNull = u"a"_qs + QChar(0) + u"b"_qs;
    for (const auto &[given, stored] : std::vector<std::pair<QString, QString>>{
             {QString(1 << 20, u'x'), QString(1 << 20, u'x')},
             {u" \t\r\n\u00A0\u2003\u2028 "_qs, u""_qs},
             {half, u"a\uFFFDb"_qs},
             {withNull, withNull},
             {u"\u202Eright\u200F\u0301"_qs, u"\u202Eright\u200F\u0301"_qs},
             {u"'; DROP TABLE EntityTask; -- %@ %1 %n"_qs, u"'; DROP TABLE EntityTask; -- %@ %1 %n"_qs}}) {
        startAnew();
        MVTask copy = copyOf(given);
        copy.details = given;
        EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
        EXPECT_EQ(copy.title, stored);
        EXPECT_FALSE(copy.isChangedTask());
        copy.htmlBody();
        quit();
        launch();
        const TaskPtr row = DBWorker::getAllTasks().first();
        EXPECT_EQ(row->title(), stored);
        EXPECT_EQ(row->details(), copy.details);
    }
}

TEST_F(HostileInput, DatesFarAwayAreKept)
{
    for (const int year : {1, 1900, 9999}) {
        for (const TaskType type : {TaskType::ToDo, TaskType::Appointment, TaskType::EmailCall}) {
            MVTask copy = copyOf(u"far"_qs, type, localDate(year, 3, 1, 9), localDate(year, 3, 1, 10));
            EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
            EXPECT_TRUE(MVDate::orTheSameDay(*copy.startDate, localDate(year, 3, 1)));
            EXPECT_EQ(*copy.dueDate - *copy.startDate, Seconds(3600));
            pick(copy, Picker::DueDate, localDate(year, 12, 30, 10));
            pick(copy, Picker::EndRepeat, localDate(year, 12, 30, 10));
            EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
            EXPECT_TRUE(MVDate::orTheSameDay(*copy.dueDate, localDate(year, 12, 30)));
            EXPECT_EQ(copy.endRepeat, localDate(year, 12, 30, 23, 59, 59));
        }
    }
    execute("UPDATE EntityTask SET startDate = 1e300, dueDate = -1e300 WHERE type = 0");
    context().refreshAllObjects();
    DBWorker::taskBadges();
    DBWorker::countStaleTasks();
    EXPECT_EQ(DBWorker::allNotDoneTasks().size(), 9);
    EXPECT_EQ(DBWorker::allScheduledTasksGrouped(Grouping::Priority).size(),
              DBWorker::allScheduledTasksGrouped(Grouping::Project).size());
}

TEST_F(HostileInput, ADayWithoutMidnightStartsAtOne)
{
    Region::setZone("America/Sao_Paulo");
    MTDates::reset();
    const Date one = localDate(2017, 10, 15, 1);
    MVTask copy = copyOf(u"picked"_qs);
    pick(copy, Picker::StartDate, localDate(2017, 10, 15, 9));
    EXPECT_EQ(copy.startDate, one);
    EXPECT_EQ(copy.dueDate, localDate(2017, 10, 15, 23, 59, 59));
    copy.project = context().insert<EntityProject>();
    copy.project->setStartDate(MVDate::getStartOfDay(one));
    copy.project->setDueDate(one);
    EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true)) << "it fills the only day of its project";

    const TaskPtr edited =
        member(u"edited"_qs, localDate(2017, 10, 13), localDate(2017, 10, 13, 23, 59), TaskType::ToDo);
    const TaskPtr other = member(u"other"_qs, one, localDate(2017, 10, 15, 23, 59), TaskType::ToDo);
    MVTask series(edited);
    series.dueDate = localDate(2017, 10, 15, 23, 59);
    series.alert = localDate(2017, 10, 13, 0, 15);
    const ScriptedAlerts alerts({Alert::secondButton});
    EXPECT_TRUE(TaskManager::saveTaskTemp(series, true));
    EXPECT_EQ(other->dueDate(), localDate(2017, 10, 17, 1));
    EXPECT_EQ(other->alert(), localDate(2017, 10, 15, 1, 15))
        << "a quarter past a midnight that is not there";
}

TEST_F(HostileInput, NumbersThatNameNothingAreKeptAndHaveNoWord)
{
    for (const int number : {-1, 4, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        MVTask copy = copyOf(u"odd"_qs);
        const auto status = static_cast<TaskStatus>(number);
        copy.type = static_cast<TaskType>(number);
        copy.status = status;
        copy.priority = static_cast<Priority>(number);
        EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
        copy.changeStatusType(status, true);
        EXPECT_EQ(copy.status, status);
        EXPECT_EQ(copy.statusString() + copy.priorityString(), QString());
        EXPECT_FALSE(TaskManager::priorityColor(*copy.priority));
    }
    DBWorker::taskBadges();
    EXPECT_EQ(DBWorker::allNotDoneTasks().size(), 4);
    EXPECT_EQ(DBWorker::allInboxTasks().size(), 0);
}

TEST_F(HostileInput, TheInboxGoesOnAfterAnyPosition)
{
    const TaskPtr last = add(u"last"_qs);
    for (const char *sql :
         {"UPDATE EntityTask SET position = 1e15", "UPDATE EntityTask SET position = 2147483647"}) {
        execute(sql);
        EXPECT_EQ(add(u"next"_qs)->position(), std::numeric_limits<int>::max());
    }
    execute("UPDATE EntityTask SET position = -1e15");
    EXPECT_EQ(add(u"next"_qs)->position(), std::numeric_limits<int>::min() + 1);
}

TEST_F(HostileInput, LinksToWhatIsGoneAreLeftOut)
{
    const auto project = context().insert<EntityProject>();
    const auto contact = context().insert<EntityContacts>();
    const auto tag = context().insert<EntityTags>();
    EXPECT_FALSE(DBWorker::saveContext());
    MVTask linked = copyOf(u"linked"_qs);
    linked.project = project;
    linked.delegateToUser = contact;
    linked.tags = {tag};
    const std::vector<std::function<void()>> ways = {
        [] { execute("DELETE FROM EntityProject; DELETE FROM EntityContacts; DELETE FROM EntityTags"); },
        [&] {
            for (const ObjectPtr &object : std::vector<ObjectPtr>{project, contact, tag})
                context().deleteObject(object);
        },
        [] { EXPECT_FALSE(DBWorker::saveContext()); }};
    for (const auto &deleteThem : ways) {
        MVTask copy = linked;
        deleteThem();
        EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
        EXPECT_FALSE(copy.project || copy.delegateToUser || !copy.tags.empty());
        EXPECT_EQ(copy.task()->title(), u"linked"_qs);
    }
}

TEST_F(HostileInput, WhatWasTypedOutlivesItsRow)
{
    const std::vector<std::function<void(const TaskPtr &)>> ways = {
        [this](const TaskPtr &row) { context().deleteObject(row); },
        [this](const TaskPtr &row) {
            context().deleteObject(row);
            EXPECT_FALSE(DBWorker::saveContext());
        },
        [this](const TaskPtr &) {
            execute("DELETE FROM EntityTask");
            context().refreshAllObjects();
        }};
    for (const auto &deleteIt : ways) {
        const TaskPtr row = add(u"row"_qs);
        MVTask copy(row);
        copy.title = u"typed"_qs;
        deleteIt(row);
        const LogCapture log;
        EXPECT_FALSE(TaskManager::saveTaskTemp(copy, true));
        EXPECT_EQ(log.lines(), QStringList(u"Can't Save Task! It was deleted."_qs));
        EXPECT_EQ(copy.title, u"typed"_qs);
        const ScriptedAlerts alerts({Alert::firstButton});
        TaskManager::deleteTasks({row, row, nullptr}, {});
        EXPECT_EQ(alerts.asked().at(0).message, u"Are you sure you want to delete the selected item?"_qs);
        EXPECT_EQ(DBWorker::getAllTasks().size(), 0);
    }
}

TEST_F(HostileInput, AFullDiskStopsEveryFlowAndLosesNothing)
{
    const TaskPtr edited = add(u"edited"_qs);
    const TaskPtr deleted = add(u"deleted"_qs);
    const TaskPtr finished = add(u"finished"_qs);
    const TaskPtr first =
        member(u"first"_qs, localDate(2026, 11, 25, 9), localDate(2026, 11, 25, 10), TaskType::Appointment);
    const TaskPtr second =
        member(u"second"_qs, localDate(2026, 11, 26, 9), localDate(2026, 11, 26, 10), TaskType::Appointment);
    QCoreApplication::processEvents();
    MVTask fresh = copyOf(u"fresh"_qs);
    MVTask edit(edited);
    edit.details = u"more"_qs;
    MVTask status(finished);
    MVTask series(first);
    series.title = u"series"_qs;
    {
        const FullDisk full;
        const LogCapture log;
        const ScriptedAlerts alerts({Alert::firstButton, Alert::secondButton, Alert::firstButton});
        EXPECT_FALSE(TaskManager::saveTaskTemp(fresh, true));
        EXPECT_FALSE(TaskManager::saveTaskTemp(edit, true));
        status.changeStatusType(TaskStatus::Done, true);
        EXPECT_FALSE(TaskManager::saveTaskTemp(series, true));
        TaskManager::deleteTasks({deleted}, {});
        EXPECT_EQ(log.lines().filter(u"Can't Save Task! Cannot "_qs).size(), 4);
        EXPECT_EQ(alerts.asked().front().title, u"Your changes could not be saved"_qs);
        EXPECT_EQ(alerts.asked().size(), 3u)
            << "the user is told once, and asked about the series and the deletion";
        EXPECT_EQ(fresh.title + edit.details + series.title, u"freshmoreseries"_qs);
        EXPECT_FALSE(storedTitles().contains(u"deleted"_qs)) << "gone from the lists at once";
    }
    EXPECT_FALSE(DBWorker::saveContext());
    quit();
    launch();
    EXPECT_EQ(storedTitles(),
              QStringList({u"edited"_qs, u"finished"_qs, u"fresh"_qs, u"series"_qs, u"series"_qs}));
    EXPECT_EQ(DBWorker::getFirstTaskByTitle(u"edited"_qs)->details(), u"more"_qs);
    EXPECT_EQ(DBWorker::allDoneTasksNoGroup().size(), 1);
}

} // namespace

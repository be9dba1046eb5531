#include "foundation/DateFormatter.h"
#include "foundation/Region.h"
#include "foundation/TextFolding.h"
#include "objectstore/ManagedObjectContext.h"
#include "records/calendars/CalendarManager.h"
#include "records/copies/MVTask.h"
#include "records/dates/MVDate.h"
#include "store/entities/Model.h"
#include "store/queries/DBWorker.h"
#include "store/state/CoreContext.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

namespace {

using Tasks = std::vector<TaskPtr>;

/// A store without the program around it, of whose calendars only "shown" can be seen.
class CalendarFeeds : public testing::Test
{
protected:
    void SetUp() override
    {
        auto opened = ManagedObjectContext::open(folder.filePath(u"Feeds.sqlite"_qs), organiserModel());
        ASSERT_TRUE(opened) << qPrintable(opened.error().message);
        store = std::move(*opened);
        core.store = [this] { return store.get(); };
        core.visibleCalendars = [] { return QStringList(u"shown"_qs); };
    }

    TaskPtr add(const QString &title, std::optional<TaskType> type, OptionalDate start, OptionalDate due,
                TaskStatus status = TaskStatus::Open, std::optional<bool> someday = false,
                const QString &calendar = {})
    {
        const auto task = store->insert<EntityTask>();
        task->setTitle(title);
        task->setType(type);
        task->setStatus(status);
        task->setDueSomeDay(someday);
        task->setStartDate(start);
        task->setDueDate(due);
        task->setTypeCalendarID(calendar);
        return task;
    }
    static QString titles(const Tasks &tasks)
    {
        QStringList result;
        for (const TaskPtr &task : tasks)
            result.append(task->title());
        return result.join(u' ');
    }
    static QString titles(const TaskList &list) { return titles(Tasks(list.begin(), list.end())); }
    /// Column, length and lane of each item.
    static QString placed(const CalendarForDaysItems &items)
    {
        QStringList result;
        for (const CalendarForDaysItem &item : items)
            result.append(QStringLiteral("%1:%2+%3/%4")
                              .arg(item.title)
                              .arg(item.column)
                              .arg(item.duration)
                              .arg(item.row));
        return result.join(u' ');
    }

    FrozenClock clock{localDate(2026, 11, 21, 9, 15)};
    QTemporaryDir folder;
    std::unique_ptr<ManagedObjectContext> store;
    CoreContext core;
};

TEST_F(CalendarFeeds, ADayShowsItsToDosAndWhatIsDueOnIt)
{
    const Date day = localDate(2026, 11, 18, 15);
    add(u"bath"_qs, TaskType::ToDo, localDate(2026, 11, 17), localDate(2026, 11, 18));
    add(u"Attic"_qs, TaskType::ToDo, localDate(2026, 11, 18, 23), localDate(2026, 11, 30), TaskStatus::Done);
    add(u"Éclair"_qs, TaskType::ToDo, localDate(2026, 11, 18), localDate(2026, 11, 18), TaskStatus::Open,
        true);
    add(u"hidden"_qs, TaskType::ToDo, localDate(2026, 11, 18), localDate(2026, 11, 18), TaskStatus::Open,
        false, u"closed"_qs);
    add(u"undue"_qs, TaskType::ToDo, localDate(2026, 11, 18), std::nullopt);
    add(u"unstarted"_qs, TaskType::ToDo, std::nullopt, localDate(2026, 11, 18));
    add(u"meeting"_qs, TaskType::Appointment, localDate(2026, 11, 16), localDate(2026, 11, 18, 23, 59, 59),
        TaskStatus::Done, false, u"shown"_qs);
    add(u"call"_qs, TaskType::EmailCall, std::nullopt, localDate(2026, 11, 18));
    add(u"later"_qs, TaskType::EmailCall, localDate(2026, 11, 18), localDate(2026, 11, 19));
    EXPECT_EQ(titles(DBWorker::calendarDayAllDayTasks(day)), u"Éclair bath Attic"_qs);
    EXPECT_EQ(titles(DBWorker::calendarDayOtherTasks(day)), u"meeting call"_qs);
    EXPECT_EQ(titles(DBWorker::getTimeItemsForDate(day)), u"meeting call"_qs);
    core.isSample = true;
    EXPECT_EQ(titles(DBWorker::calendarDayAllDayTasks(day)), u"hidden Éclair bath Attic"_qs);
}

TEST_F(CalendarFeeds, AWeekPutsItsToDosIntoLanes)
{
    Region::setLocale(u"de_DE"_qs);
    add(u"long"_qs, TaskType::ToDo, localDate(2026, 11, 1), localDate(2026, 11, 17, 23, 59, 59));
    add(u"short"_qs, TaskType::ToDo, localDate(2026, 11, 17), localDate(2026, 11, 17, 23, 59, 59));
    add(u"apart"_qs, TaskType::ToDo, localDate(2026, 11, 20), localDate(2026, 11, 24, 23, 59, 59));
    add(u"next"_qs, TaskType::ToDo, localDate(2026, 11, 23), localDate(2026, 11, 24));
    const Date start = MVDate::startOfWeek(Clock::now());
    const CalendarForDaysItems items =
        CalendarManager::dataBaseGetItemsWithStartWeek(start, MVDate::endOfWeek(start));
    EXPECT_EQ(placed(items), u"long:0+2/1 apart:4+3/1 short:1+1/2"_qs);
    EXPECT_EQ(items.at(0).startDate, start);
    EXPECT_EQ(items.at(0).durationEvent, 17);
}

TEST_F(CalendarFeeds, AMonthRowShowsOpenToDosWholeAppointmentsAndAllCalls)
{
    const std::vector<CalendarMonthRow> rows = CalendarMonthRow::rowsOfMonth(localDate(2026, 11, 1));
    const CalendarMonthRow &row = rows.at(2);
    EXPECT_EQ(wallClock(row.startDate).left(10), u"2026-11-15"_qs);
    add(u"todo"_qs, TaskType::ToDo, localDate(2026, 11, 10), localDate(2026, 11, 16, 12));
    add(u"done"_qs, TaskType::ToDo, localDate(2026, 11, 16), localDate(2026, 11, 16), TaskStatus::Done);
    add(u"someday"_qs, TaskType::Appointment, localDate(2026, 11, 16), localDate(2026, 11, 16, 1),
        TaskStatus::Open, true);
    add(u"unknown"_qs, TaskType::Appointment, localDate(2026, 11, 16), localDate(2026, 11, 17, 1),
        TaskStatus::Open, std::nullopt);
    add(u"across"_qs, TaskType::Appointment, localDate(2026, 11, 21, 23), localDate(2026, 11, 22, 1));
    add(u"called"_qs, TaskType::EmailCall, std::nullopt, localDate(2026, 11, 20, 12), TaskStatus::Done, true);
    const CalendarForDaysItems items =
        CalendarManager::dataBaseGetItemsWithStartMonth(row.startDate, row.endDate, row);
    EXPECT_EQ(placed(items), u"todo:0+2/1 called:5+1/1 unknown:1+2/2"_qs);
    EXPECT_EQ(items.at(1).startDate, localDate(2026, 11, 20, 12));
    const std::vector<CalendarForDaysItems> all = CalendarManager::dataBaseGetItems(rows);
    ASSERT_EQ(all.size(), rows.size());
    EXPECT_EQ(placed(all.at(2)), placed(items));
    EXPECT_EQ(placed(all.at(1)), u"todo:2+5/1"_qs);
    EXPECT_EQ(titles(DBWorker::calendarMonthTasks(row.startDate, row.endDate)), u"todo unknown called"_qs);
}

/// A day around which clocks or calendars do something odd.
struct OddDay
{
    const char *zone;
    Date date;

    friend void PrintTo(const OddDay &odd, std::ostream *stream) { *stream << odd.zone; }
};

/// The feeds by the plain rule, which looks at each task by itself, against the queries.
class PlainFeeds : public CalendarFeeds, public testing::WithParamInterface<OddDay>
{
protected:
    /// Midnight of a date, over its text.
    static Date day(Date date)
    {
        const QString pattern = u"dd-MM-yyyy"_qs;
        return *DateFormatter::date(DateFormatter::string(date, pattern), pattern);
    }
    Tasks plain(const std::function<bool(const EntityTask &)> &isShown) const
    {
        Tasks shown;
        for (const TaskPtr &task : all)
            if ((core.isSample || task->typeCalendarID() != u"closed"_qs) && isShown(*task))
                shown.push_back(task);
        return shown;
    }
    Tasks plainAllDay(Date date) const
    {
        const Date wanted = day(date);
        Tasks tasks = plain([this, wanted](const EntityTask &task) {
            return task.type() == TaskType::ToDo && task.startDate() && task.dueDate() &&
                   days.at(*task.startDate()) <= wanted && wanted <= days.at(*task.dueDate());
        });
        std::stable_sort(tasks.begin(), tasks.end(), [](const TaskPtr &one, const TaskPtr &other) {
            return localizedCaseInsensitiveCompare(one->title(), other->title()) > 0;
        });
        return tasks;
    }
    Tasks plainTimed(Date date) const
    {
        const Date start = day(date);
        return plain([start](const EntityTask &task) {
            return (task.type() == TaskType::Appointment || task.type() == TaskType::EmailCall) &&
                   task.dueDate() && start <= *task.dueDate() &&
                   *task.dueDate() <= MVDate::getEndOfDay(start);
        });
    }
    Tasks plainMonth(Date first, Date last) const
    {
        const Date from = MVDate::getStartOfDay(first);
        const Date to = MVDate::getEndOfDay(last);
        const Predicate rule = Predicate::format(
            "(type = %d and  %@ >= startDate and %@ <= dueDate and status != %d and dueSomeDay != true) or "
            "(status != %d and dueSomeDay != true and (type == %d and startDate >= %@ and dueDate <= %@) or "
            "(type == %d and dueDate >= %@ and dueDate <= %@))",
            0, to, from, 3, 3, 1, from, to, 2, from, to);
        return plain([&rule](const EntityTask &task) { return rule.evaluate(task); });
    }
    static std::multiset<QString> asSet(const Tasks &tasks)
    {
        std::multiset<QString> result;
        for (const TaskPtr &task : tasks)
            result.insert(task->title());
        return result;
    }
    static Tasks tasksOf(const CalendarForDaysItems &items)
    {
        Tasks tasks;
        for (const CalendarForDaysItem &item : items)
            tasks.push_back(item.obj()->task());
        return tasks;
    }

    int pick(int below) { return std::uniform_int_distribution<>(0, below - 1)(random); }
    /// Near the day in question, at an edge of a day more often than not, or at the end of the calendar.
    OptionalDate anyDate()
    {
        if (pick(12) == 0)
            return std::nullopt;
        if (pick(15) == 0)
            return pick(2) ? localDate(1, 1, 2, pick(24)) : localDate(9999, 12, 30, pick(24));
        // Now and then a month away, so that some tasks last as long.
        const int away = pick(29) - 14 + (pick(8) == 0 ? (pick(5) - 2) * 31 : 0);
        const Date start = MVDate::getStartOfDay(MVDate::addDay(away, GetParam().date));
        const std::vector<Date> moments{start,
                                        start + Seconds(1800),
                                        start + Seconds(86399),
                                        start + Seconds(86400),
                                        MVDate::getEndOfDay(start),
                                        MVDate::getEndOfDay(start) + Seconds(0.5),
                                        MVDate::getEndOfDay(start) - Seconds(1800),
                                        start + Seconds(60 * pick(1440))};
        return moments[static_cast<size_t>(pick(static_cast<int>(moments.size())))];
    }
    void addSome(int count)
    {
        for (int number = 0; number < count; ++number) {
            const OptionalDate start = anyDate();
            const OptionalDate due =
                pick(4) || !start ? anyDate() : OptionalDate(*start + Seconds(pick(3) * 1800 - 1800));
            const QString title =
                QString(QStringLiteral("aAbBéä").at(pick(6))) + QString::number(number % 40);
            // Exactly as long as what counts as long, and a little less.
            const bool isEdge = start && pick(10) == 0;
            const OptionalDate end = isEdge ? OptionalDate(*start + Seconds(31 * 86'400 - pick(2))) : due;
            for (const OptionalDate &date : {start, end})
                if (date)
                    days.emplace(*date, day(*date));
            all.push_back(add(title, pick(20) ? std::optional(static_cast<TaskType>(pick(3))) : std::nullopt,
                              start, end, static_cast<TaskStatus>(pick(4)),
                              pick(4) ? std::optional(pick(4) == 0) : std::nullopt,
                              pick(3)   ? QString()
                              : pick(2) ? u"shown"_qs
                                        : u"closed"_qs));
        }
    }

    std::mt19937 random{testSeed()};
    Tasks all;
    /// The days of all their dates.
    std::map<Date, Date> days;
};

TEST_P(PlainFeeds, GeneratedTasksAreShownAsEachOneBySeparateLook)
{
    Region::setZone(GetParam().zone);
    const Date middle = GetParam().date;
    addSome(300);
    for (int round = 0; round < 2; ++round) {
        core.isSample = round == 1;
        for (int away = -9; away <= 9; ++away) {
            const Date date = MVDate::addDay(away, middle);
            EXPECT_EQ(titles(DBWorker::calendarDayAllDayTasks(date)), titles(plainAllDay(date)));
            EXPECT_EQ(titles(DBWorker::calendarDayOtherTasks(date)), titles(plainTimed(date)));
        }
        for (int away = -9; away <= 9; away += 3) {
            const Date start = MVDate::startOfWeek(MVDate::addDay(away, middle));
            const std::vector<TaskList> timed = DBWorker::calendarOtherTasks(start, 7);
            std::set<TaskPtr> allDay;
            for (int column = 0; column < 7; ++column) {
                const Date date = CalendarManager::dateWithColumn(column, start);
                EXPECT_EQ(titles(timed.at(static_cast<size_t>(column))), titles(plainTimed(date)));
                for (const TaskPtr &task : plainAllDay(date))
                    allDay.insert(task);
            }
            EXPECT_EQ(asSet(tasksOf(
                          CalendarManager::dataBaseGetItemsWithStartWeek(start, MVDate::endOfWeek(start)))),
                      asSet(Tasks(allDay.begin(), allDay.end())));
        }
        const std::vector<CalendarMonthRow> rows = CalendarMonthRow::rowsOfMonth(middle);
        const std::vector<CalendarForDaysItems> month = CalendarManager::dataBaseGetItems(rows);
        for (const CalendarMonthRow &row : rows) {
            const auto wanted = asSet(plainMonth(row.startDate, row.endDate));
            EXPECT_EQ(asSet(tasksOf(
                          CalendarManager::dataBaseGetItemsWithStartMonth(row.startDate, row.endDate, row))),
                      wanted);
            EXPECT_EQ(asSet(tasksOf(month.at(static_cast<size_t>(row.row)))), wanted);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(OverOddDays, PlainFeeds,
                         testing::Values(OddDay{"Europe/Berlin", localDate(2026, 3, 29, 12)},
                                         OddDay{"Europe/Berlin", localDate(2026, 10, 25, 12)},
                                         OddDay{"Europe/Berlin", localDate(2026, 12, 31, 12)},
                                         // Days without a midnight, and one without an hour before it.
                                         OddDay{"America/Sao_Paulo", localDate(2018, 11, 4, 12)},
                                         OddDay{"Asia/Beirut", localDate(2026, 10, 24, 12)},
                                         OddDay{"Pacific/Apia", localDate(2011, 12, 31, 12)}));

} // namespace

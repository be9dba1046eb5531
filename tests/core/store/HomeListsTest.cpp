#include "foundation/DateFormatter.h"
#include "foundation/Region.h"
#include "foundation/TextFolding.h"
#include "objectstore/ManagedObjectContext.h"
#include "store/entities/Model.h"
#include "store/queries/DBWorker.h"
#include "store/queries/HomeRows.h"
#include "store/state/CoreContext.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <map>
#include <random>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The two lists of Home over a store without the program around it, of whose calendars only "shown" can be
/// seen.
class HomeLists : public testing::Test
{
protected:
    void SetUp() override
    {
        auto opened = ManagedObjectContext::open(folder.filePath(u"Home.sqlite"_s), organiserModel());
        ASSERT_TRUE(opened) << qPrintable(opened.error().message);
        store = std::move(*opened);
        core.store = [this] { return store.get(); };
        core.visibleCalendars = [] { return QStringList(u"shown"_s); };
    }

    TaskPtr add(const QString &title, std::optional<TaskType> type, OptionalDate start, OptionalDate due,
                std::optional<TaskStatus> status = TaskStatus::Open, const QString &calendar = {})
    {
        const auto task = store->insert<EntityTask>();
        task->setTitle(title);
        task->setType(type);
        task->setStatus(status);
        task->setStartDate(start);
        task->setDueDate(due);
        task->setTypeCalendarID(calendar);
        return task;
    }
    ProjectPtr addProject(const QString &title, OptionalDate start, OptionalDate due,
                          std::optional<TaskStatus> status = TaskStatus::Open)
    {
        const auto project = store->insert<EntityProject>();
        project->setTitle(title);
        project->setStatus(status);
        project->setStartDate(start);
        project->setDueDate(due);
        return project;
    }

    static QString titleOf(const ObjectPtr &record)
    {
        if (const auto project = std::dynamic_pointer_cast<EntityProject>(record))
            return project->title();
        return std::static_pointer_cast<EntityTask>(record)->title();
    }
    /// "[21] a b [22] c": days by their number, then what stands under them.
    static QString words(const HomeRows &rows)
    {
        QStringList result;
        for (int row = 0; row < rows.size(); ++row) {
            const HomeRow one = rows.at(row);
            if (const auto *day = std::get_if<DayHeader>(&one))
                result << u'[' + DateFormatter::string(day->day, u"d"_s) + u']';
            else if (std::holds_alternative<EntityNotValue>(one))
                result << u"-"_s;
            else
                result << titleOf(rows.recordAt(row));
        }
        return result.join(u' ');
    }
    static QString week() { return words(DBWorker::getWeekBlockData()); }
    static QString overdue() { return words(DBWorker::getOverdueBlockData()); }

    FrozenClock clock{localDate(2026, 11, 21, 9, 15)};
    QTemporaryDir folder;
    std::unique_ptr<ManagedObjectContext> store;
    CoreContext core;
};

using enum TaskType;

TEST_F(HomeLists, SaySoWhereThereIsNothing)
{
    EXPECT_EQ(week(), u"-"_s);
    EXPECT_EQ(overdue(), u"-"_s);
    add(u"undated"_s, ToDo, {}, {});
    add(u"unstarted"_s, ToDo, {}, localDate(2026, 11, 21));
    add(u"late and unstarted"_s, ToDo, {}, localDate(2026, 11, 20));
    add(u"of no type"_s, {}, localDate(2026, 11, 20), localDate(2026, 11, 20));
    add(u"endless"_s, Appointment, localDate(2026, 11, 21), {});
    EXPECT_EQ(week(), u"-"_s);
    EXPECT_EQ(overdue(), u"-"_s);
}

TEST_F(HomeLists, AToDoShowsOnEachOfItsDaysAndIsOverdueOnTheNext)
{
    add(u"span"_s, ToDo, localDate(2026, 11, 20), localDate(2026, 11, 22));
    add(u"late"_s, ToDo, localDate(2026, 11, 19), localDate(2026, 11, 20, 23, 59, 59));
    add(u"over"_s, ToDo, localDate(2026, 11, 19), localDate(2026, 11, 20), TaskStatus::Done);
    add(u"finished"_s, ToDo, localDate(2026, 11, 27), localDate(2026, 11, 28), TaskStatus::Done);
    add(u"hidden"_s, ToDo, localDate(2026, 11, 20), localDate(2026, 11, 20), TaskStatus::Open, u"closed"_s);
    add(u"reversed"_s, ToDo, localDate(2026, 11, 24), localDate(2026, 11, 19));
    EXPECT_EQ(week(), u"[21] span [22] span [27] finished"_s);
    EXPECT_EQ(overdue(), u"late"_s);
}

TEST_F(HomeLists, AnAppointmentOverMidnightShowsTodayOnly)
{
    add(u"tonight"_s, Appointment, localDate(2026, 11, 21, 22), localDate(2026, 11, 22, 2));
    add(u"tomorrow"_s, Appointment, localDate(2026, 11, 22, 22), localDate(2026, 11, 23, 2));
    add(u"inside"_s, Appointment, localDate(2026, 11, 23, 22), localDate(2026, 11, 23, 23, 59, 59));
    add(u"this morning"_s, Appointment, localDate(2026, 11, 21, 7), localDate(2026, 11, 21, 8));
    add(u"last night"_s, Appointment, localDate(2026, 11, 20, 22), localDate(2026, 11, 20, 23));
    add(u"long"_s, Appointment, localDate(2026, 11, 1), localDate(2027, 1, 1));
    EXPECT_EQ(week(), u"[21] long this morning tonight [23] inside"_s);
    EXPECT_EQ(overdue(), u"last night"_s) << "what was due this morning is for today";
}

TEST_F(HomeLists, AnAppointmentThatIsDueBeforeItStartsShowsOnTheDaysBetween)
{
    add(u"odd"_s, Appointment, localDate(2026, 11, 24, 12), localDate(2026, 11, 20, 12));
    add(u"odder"_s, Appointment, localDate(2027, 5, 1), localDate(2026, 11, 26, 12));
    EXPECT_EQ(week(), u"[22] odd [23] odd [24] odd [26] odder [27] odder"_s);
}

TEST_F(HomeLists, ACallShowsWhenItIsDueAndTodayOnceItHasStarted)
{
    add(u"soon"_s, EmailCall, {}, localDate(2026, 11, 23, 10));
    add(u"begun"_s, EmailCall, localDate(2026, 11, 1), localDate(2026, 12, 24));
    add(u"missed"_s, EmailCall, {}, localDate(2026, 11, 20, 10));
    add(u"to come"_s, EmailCall, localDate(2026, 11, 22), localDate(2026, 11, 20, 9));
    EXPECT_EQ(week(), u"[21] begun [23] soon"_s);
    EXPECT_EQ(overdue(), u"missed"_s);
}

TEST_F(HomeLists, ProjectsStandAboveTheTasksOfTheDaysTheyBeginAndEnd)
{
    add(u"task"_s, ToDo, localDate(2026, 11, 24), localDate(2026, 11, 24));
    addProject(u"Zoo"_s, localDate(2026, 11, 21, 15), localDate(2026, 11, 24));
    addProject(u"attic"_s, localDate(2026, 10, 1), localDate(2026, 11, 24, 12));
    addProject(u"done today"_s, {}, localDate(2026, 11, 21), TaskStatus::Done);
    addProject(u"done later"_s, localDate(2026, 11, 24), {}, TaskStatus::Done);
    addProject(u"only begun"_s, localDate(2026, 11, 21), {});
    addProject(u"undated"_s, {}, {});
    addProject(u"reversed"_s, localDate(2026, 11, 21), localDate(2026, 11, 20));
    EXPECT_EQ(week(), u"[21] done today only begun Zoo [24] attic Zoo task"_s);
}

TEST_F(HomeLists, TasksOfADayStandByTimeAndToDosFirstByTitle)
{
    const Date day = localDate(2026, 11, 21);
    add(u"late call"_s, EmailCall, {}, localDate(2026, 11, 21, 20));
    add(u"b"_s, ToDo, day, day);
    add(u"B"_s, ToDo, localDate(2026, 11, 21, 8), day);
    add(u"noon"_s, Appointment, localDate(2026, 11, 21, 12), localDate(2026, 11, 21, 13));
    // It is over, and stands where it ended: at nine.
    add(u"breakfast"_s, Appointment, localDate(2026, 11, 21, 6), localDate(2026, 11, 21, 9));
    add(u"early call"_s, EmailCall, {}, localDate(2026, 11, 21, 8));
    add(u"older"_s, ToDo, localDate(2026, 11, 20), day);
    EXPECT_EQ(week(), u"[21] older B b early call breakfast noon late call"_s);
}

TEST_F(HomeLists, ATaskOfAProjectWithATitleIsMarked)
{
    const auto task = add(u"a"_s, ToDo, localDate(2026, 11, 20), localDate(2026, 11, 20));
    task->setProject(addProject(u"House"_s, {}, {}));
    EXPECT_TRUE(DBWorker::getOverdueBlockData().placeAt(0).hasProject);
    task->project()->setTitle({});
    EXPECT_FALSE(DBWorker::getOverdueBlockData().placeAt(0).hasProject);
}

/// The steps between two lists, on a list of its own.
class StepsOfRows : public HomeLists, public RowsWatcher
{
protected:
    void willInsert(int first, int last) override
    {
        EXPECT_LE(first, size);
        touched += last - first + 1;
        size += last - first + 1;
    }
    void willRemove(int first, int last) override
    {
        EXPECT_LT(last, size);
        touched += last - first + 1;
        size -= last - first + 1;
    }
    void didInsert() override { EXPECT_EQ(size, shown.size()); }
    void didRemove() override { EXPECT_EQ(size, shown.size()); }
    void willMove(int, int) override {}
    void didMove() override {}
    void willReset() override {}
    void didReset() override {}
    void rowChanged(int) override {}

    void follow()
    {
        touched = 0;
        const HomeRows wanted = DBWorker::getWeekBlockData();
        shown.follow(wanted, *this);
        EXPECT_EQ(words(shown), words(wanted));
    }

    HomeRows shown;
    int size = 0;
    int touched = 0;
};

TEST_F(StepsOfRows, LeaveTheRowsAloneThatStayInTheirOrder)
{
    follow();
    EXPECT_EQ(touched, 1) << "the row that says there is nothing";
    add(u"a"_s, ToDo, localDate(2026, 11, 21), localDate(2026, 11, 23));
    const auto b = add(u"b"_s, ToDo, localDate(2026, 11, 22), localDate(2026, 11, 22));
    add(u"c"_s, ToDo, localDate(2026, 11, 22), localDate(2026, 11, 23));
    follow();
    EXPECT_EQ(words(shown), u"[21] a [22] a b c [23] a c"_s);
    b->setStartDate(localDate(2026, 11, 23));
    b->setDueDate(localDate(2026, 11, 23));
    follow();
    EXPECT_EQ(touched, 2) << "it leaves one day and comes to the other";
    add(u"d"_s, ToDo, localDate(2026, 11, 23), localDate(2026, 11, 23));
    follow();
    b->setTitle(u"z"_s);
    follow();
    EXPECT_EQ(words(shown), u"[21] a [22] a c [23] a c d z"_s);
    EXPECT_EQ(touched, 2) << "it goes to another place of its day";
    follow();
    EXPECT_EQ(touched, 0);
}

TEST_F(StepsOfRows, ReachEveryGeneratedListFromEveryOther)
{
    std::mt19937 random{testSeed()};
    const auto pick = [&random](int below) { return std::uniform_int_distribution<>(0, below - 1)(random); };
    std::vector<TaskPtr> tasks;
    for (int number = 0; number < 12; ++number)
        tasks.push_back(add(QString::number(number), ToDo, {}, {}));
    for (int round = 0; round < 200; ++round) {
        for (int changes = pick(4); changes >= 0; --changes) {
            const TaskPtr &task = tasks[static_cast<std::size_t>(pick(12))];
            task->setStartDate(localDate(2026, 11, 18 + pick(12)));
            task->setDueDate(*task->startDate() + Seconds(86400 * pick(5)));
            task->setTitle(QString::number(pick(40)));
        }
        follow();
    }
}

/// A moment around which clocks or calendars do something odd.
struct OddMoment
{
    const char *zone;
    Date date;

    friend void PrintTo(const OddMoment &odd, std::ostream *stream) { *stream << odd.zone; }
};

/// The lists by the plain rule, which looks at each task on each day by itself, against the queries.
class PlainHome : public HomeLists, public testing::WithParamInterface<OddMoment>
{
protected:
    /// Midnight of a date, over its text.
    Date day(Date date)
    {
        const auto known = days.find(date);
        if (known != days.end())
            return known->second;
        const QString pattern = u"dd-MM-yyyy"_s;
        return days.emplace(date, *DateFormatter::date(DateFormatter::string(date, pattern), pattern))
            .first->second;
    }
    OptionalDate firstDayOf(const EntityTask &task)
    {
        const OptionalDate date = task.startDate() ? task.startDate() : task.dueDate();
        return date ? OptionalDate(day(*date)) : std::nullopt;
    }
    bool isSeen(const EntityTask &task) const { return task.typeCalendarID() != u"closed"_s; }
    bool isTaken(const EntityTask &task, Date start, bool isFirst)
    {
        const Date end = start + Seconds(86399);
        const OptionalDate from = task.startDate();
        const OptionalDate due = task.dueDate();
        if (!due || !task.type() || !isSeen(task))
            return false;
        const bool hasBegun = *firstDayOf(task) <= end;
        switch (*task.type()) {
        case ToDo:
            return from && hasBegun && start <= day(*due);
        case Appointment:
            return from && (isFirst ? hasBegun && *due >= start : *from >= start && *due <= end);
        case EmailCall:
            return isFirst ? hasBegun && *due >= start : *due >= start && *due <= end;
        }
        return false;
    }
    bool isTaken(const EntityProject &project, Date start, bool isFirst)
    {
        const auto dayOf = [this](OptionalDate date) {
            return date ? OptionalDate(day(*date)) : std::nullopt;
        };
        const OptionalDate from = dayOf(project.startDate());
        const OptionalDate due = dayOf(project.dueDate());
        const bool isEdge = from == start || due == start;
        if (!isFirst)
            return isEdge && project.status() != TaskStatus::Done;
        return isEdge && (!from || *from <= start + Seconds(86399)) && (!due || *due >= start);
    }
    bool isOverdue(const EntityTask &task)
    {
        const Date today = day(Clock::now());
        const OptionalDate due = task.dueDate();
        if (!due || !task.type() || !isSeen(task) || task.status() == TaskStatus::Done ||
            *firstDayOf(task) > today + Seconds(86399))
            return false;
        return task.type() == ToDo ? task.startDate() && day(*due) < today : *due < today;
    }
    Date keyOf(const EntityTask &task, bool byDue)
    {
        if (task.type() == ToDo)
            return day(byDue ? *task.dueDate() : *task.startDate());
        const bool isOver = *task.dueDate() < Clock::now();
        return byDue || isOver || task.type() == EmailCall ? *task.dueDate() : *task.startDate();
    }
    /// What may not come in this order: a later one before an earlier one, ToDos of a day against their
    /// titles, anything else that is equal against the order in which it was read.
    bool isMisplaced(const EntityTask &one, const EntityTask &next, bool byDue)
    {
        if (keyOf(one, byDue) != keyOf(next, byDue))
            return keyOf(one, byDue) > keyOf(next, byDue);
        if (one.type() == ToDo && next.type() == ToDo)
            return one.title() > next.title();
        if (one.type() == ToDo || next.type() == ToDo)
            return false;
        const int titles = byDue ? 0 : localizedCaseInsensitiveCompare(one.title(), next.title());
        return titles > 0 || (titles == 0 && one.rowId() > next.rowId());
    }
    void expectInOrder(const std::vector<TaskPtr> &shown, bool byDue)
    {
        for (std::size_t one = 0; one < shown.size(); ++one)
            for (std::size_t next = one + 1; next < shown.size(); ++next)
                EXPECT_FALSE(isMisplaced(*shown[one], *shown[next], byDue));
    }
    void expectWeek()
    {
        const HomeRows rows = DBWorker::getWeekBlockData();
        int row = 0;
        Date moment = Clock::now();
        for (int index = 0; index < 7; ++index, moment = moment + Seconds(86400)) {
            const Date start = day(moment);
            std::set<ObjectPtr> wanted;
            for (const TaskPtr &task : tasks)
                if (isTaken(*task, start, index == 0))
                    wanted.insert(task);
            for (const ProjectPtr &project : projects)
                if (isTaken(*project, start, index == 0))
                    wanted.insert(project);
            if (wanted.empty())
                continue;
            ASSERT_LT(row, rows.size());
            ASSERT_EQ(rows.at(row), HomeRow(DayHeader{start}));
            std::vector<TaskPtr> shown;
            for (++row; row < rows.size() && rows.placeAt(row).kind != HomeRows::Kind::Day; ++row) {
                const ObjectPtr record = rows.recordAt(row);
                EXPECT_EQ(wanted.erase(record), 1U) << qPrintable(titleOf(record));
                if (const auto task = std::dynamic_pointer_cast<EntityTask>(record))
                    shown.push_back(task);
                else
                    EXPECT_TRUE(shown.empty()) << "projects come first";
            }
            EXPECT_TRUE(wanted.empty()) << qPrintable(titleOf(*wanted.begin()));
            expectInOrder(shown, false);
        }
        EXPECT_EQ(row, rows.size());
    }
    void expectOverdue()
    {
        const HomeRows rows = DBWorker::getOverdueBlockData();
        std::vector<TaskPtr> shown;
        for (int row = 0; row < rows.size() && rows.placeAt(row).kind == HomeRows::Kind::Task; ++row)
            shown.push_back(std::get<TaskPtr>(rows.at(row)));
        EXPECT_EQ(std::set(shown.begin(), shown.end()).size(), shown.size());
        for (const TaskPtr &task : tasks)
            EXPECT_EQ(std::ranges::count(shown, task), isOverdue(*task) ? 1 : 0) << qPrintable(task->title());
        expectInOrder(shown, true);
    }

    int pick(int below) { return std::uniform_int_distribution<>(0, below - 1)(random); }
    /// Near the day in question, at an edge of a day more often than not.
    OptionalDate anyDate()
    {
        if (pick(12) == 0)
            return std::nullopt;
        const Date start = day(GetParam().date + Seconds(86400 * (pick(21) - 8)));
        const std::vector<Date> moments{start,
                                        start + Seconds(1800),
                                        start + Seconds(82800),
                                        start + Seconds(86399),
                                        start + Seconds(86399.5),
                                        start + Seconds(86400),
                                        start + Seconds(90000),
                                        start + Seconds(60 * pick(1440))};
        return moments[static_cast<std::size_t>(pick(static_cast<int>(moments.size())))];
    }
    void addSome(int count)
    {
        for (int number = 0; number < count; ++number) {
            const OptionalDate start = anyDate();
            const OptionalDate due =
                pick(4) || !start ? anyDate() : OptionalDate(*start + Seconds(pick(3) * 1800 - 1800));
            const QString title = QString(u"aAbBéä"_s.at(pick(6))) + QString::number(number % 40);
            const auto status = pick(9) ? std::optional(static_cast<TaskStatus>(pick(4))) : std::nullopt;
            if (pick(8) == 0) {
                projects.push_back(addProject(title, start, due, status));
                continue;
            }
            const QString calendar = pick(3) ? QString() : pick(2) ? u"shown"_s : u"closed"_s;
            tasks.push_back(add(title,
                                pick(20) ? std::optional(static_cast<TaskType>(pick(3))) : std::nullopt,
                                start, due, status, calendar));
        }
    }

    std::mt19937 random{testSeed()};
    std::vector<TaskPtr> tasks;
    std::vector<ProjectPtr> projects;
    std::map<Date, Date> days;
};

TEST_P(PlainHome, GeneratedTasksAreShownAsEachOneBySeparateLook)
{
    Region::setZone(GetParam().zone);
    addSome(200);
    const Date midnight = day(GetParam().date);
    for (int away = -8; away <= 4; ++away) {
        for (const int hour : {0, 12, 23}) {
            const FrozenClock moment(midnight + Seconds(86400 * away + 3600 * hour + 1800));
            expectWeek();
            expectOverdue();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(OverOddDays, PlainHome,
                         testing::Values(OddMoment{"Europe/Berlin", localDate(2026, 3, 29, 12)},
                                         OddMoment{"Europe/Berlin", localDate(2026, 10, 25, 12)},
                                         OddMoment{"Europe/Berlin", localDate(2026, 12, 31, 12)},
                                         // A day without a midnight, and one that was left out.
                                         OddMoment{"America/Sao_Paulo", localDate(2018, 11, 4, 12)},
                                         OddMoment{"Pacific/Apia", localDate(2011, 12, 31, 12)}));

} // namespace

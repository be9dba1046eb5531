#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/TextFolding.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/HomeRows.h"
#include "store/queries/ListDefinitions.h"

#include <algorithm>
#include <functional>
#include <set>
#include <tuple>

// The two lists of Home. Each task is read along a range of an index, and the days are told apart in memory.

namespace {

/// One of the days that the lists are about.
struct HomeDay
{
    /// Its first moment, and the last one of the 24 hours that follow.
    Date start;
    Date end;
    /// The first moment of the next day, and of the day after the one that `end` lies in. The two differ on a
    /// day of less than 24 hours.
    Date nextStart;
    Date startAfterEnd;

    /// Whether the day of a moment is this one.
    bool isDayOf(OptionalDate date) const { return date && *date >= start && *date < nextStart; }
};

/// The days of today and of each of the next moments that follow by 24 hours.
std::vector<HomeDay> homeDays(int count)
{
    constexpr Seconds step{86400};
    constexpr Seconds upToTheLastSecond{86399};
    const Calendar calendar = Calendar::current();
    std::vector<HomeDay> days;
    Date moment = Clock::now();
    for (int index = 0; index < count; ++index, moment = moment + step) {
        const Date start = calendar.startOfDay(moment);
        const Date end = start + upToTheLastSecond;
        days.push_back({start, end, calendar.startOfNextDay(start), calendar.startOfNextDay(end)});
    }
    return days;
}

/// Gives starts of days. Remembers the last one, since rows come day by day.
class HomeDayStarts
{
public:
    Date of(Date date)
    {
        if (!day || date < day->start || date >= day->end)
            day = calendar.dayOf(date);
        return day->start;
    }

private:
    Calendar calendar = Calendar::current();
    std::optional<DateInterval> day;
};

/// What the place of a task depends on.
struct HomeTask
{
    RowId row = 0;
    TaskType type = TaskType::ToDo;
    OptionalDate start, due;
    QString title;
    QByteArray titleKey = {};
    bool hasProject = false;
    /// By what it is put in order; the key of the title only in the week.
    Date key = {};
};

/// The identifiers of the projects whose title is not empty.
std::set<std::string, std::less<>> projectsWithTitle()
{
    std::set<std::string, std::less<>> identifiers;
    mainContext().visit(EntityProject::fetchRequest(), {"id", "title"}, [&](const RowReader &row) {
        if (!row.utf8(1).empty())
            identifiers.emplace(row.utf8(0));
    });
    return identifiers;
}

/// Marks the tasks of projects with a title. Few are looked up one by one; many along the index of projects,
/// which is read without a look at any task.
void markThoseOfProjects(std::vector<HomeTask> &tasks)
{
    constexpr std::size_t few = 1000;
    FetchRequest ofProjects = EntityTask::fetchRequest().where(Predicate::format("project != nil"));
    if (tasks.size() <= few) {
        std::vector<RowId> rows;
        std::ranges::transform(tasks, std::back_inserter(rows), &HomeTask::row);
        ofProjects.among(std::move(rows));
    }
    const auto titled = projectsWithTitle();
    std::vector<RowId> marked;
    mainContext().visit(ofProjects, {"project"}, [&](const RowReader &row) {
        if (titled.contains(row.utf8(0)))
            marked.push_back(row.rowId());
    });
    std::ranges::sort(marked);
    for (HomeTask &task : tasks)
        task.hasProject = std::ranges::binary_search(marked, task.row);
}

/// Whether a task that was read belongs to a list; gives it what it is put in order by.
using IsListed = std::function<bool(HomeTask &task)>;

/// The visible tasks with a type that pass one of several conditions and belong to a list, each once.
std::vector<HomeTask> homeTasks(const std::vector<Predicate> &conditions, const IsListed &isListed)
{
    const Predicate visible = tasklists::visibleTasks();
    std::vector<HomeTask> tasks;
    for (const Predicate &condition : conditions) {
        mainContext().visit(EntityTask::fetchRequest().where(condition && visible),
                            {"type", "startDate", "dueDate", "title"}, [&](const RowReader &row) {
                                HomeTask task{.row = row.rowId(),
                                              .type = static_cast<TaskType>(row.integer(0)),
                                              .start = row.date(1),
                                              .due = row.date(2),
                                              .title = row.text(3)};
                                if (!row.isNull(0) && isListed(task))
                                    tasks.push_back(std::move(task));
                            });
    }
    if (conditions.size() > 1) {
        std::ranges::sort(tasks, {}, &HomeTask::row);
        const auto isSameRow = [](const HomeTask &one, const HomeTask &other) {
            return one.row == other.row;
        };
        tasks.erase(std::unique(tasks.begin(), tasks.end(), isSameRow), tasks.end());
    }
    markThoseOfProjects(tasks);
    return tasks;
}

/// The earliest first, what is equal in the order in which it was inserted. ToDos of one day stand by title
/// among themselves, in the places that they have beside what else has this moment.
void sortHomeTasks(std::vector<HomeTask> &tasks)
{
    std::ranges::sort(tasks, [](const HomeTask &one, const HomeTask &other) {
        return std::tie(one.key, one.titleKey, one.row) < std::tie(other.key, other.titleKey, other.row);
    });
    for (auto first = tasks.begin(); first != tasks.end();) {
        const auto end =
            std::find_if(first, tasks.end(), [&](const HomeTask &task) { return task.key != first->key; });
        std::vector<HomeTask> toDos;
        const auto isToDo = [](const HomeTask &task) { return task.type == TaskType::ToDo; };
        std::copy_if(first, end, std::back_inserter(toDos), isToDo);
        std::ranges::stable_sort(toDos, {}, &HomeTask::title);
        auto next = toDos.begin();
        for (; first != end; ++first) {
            if (isToDo(*first))
                *first = std::move(*next++);
        }
    }
}

HomeRows::Place placeOf(const HomeTask &task)
{
    return {.kind = HomeRows::Kind::Task, .row = task.row, .hasProject = task.hasProject};
}

// The week

/// What the seven days can show of tasks, and perhaps some more.
std::vector<Predicate> conditionsOfWeek(const std::vector<HomeDay> &days)
{
    const Date first = days.front().start;
    const Date afterFirst = days.front().startAfterEnd;
    const Date last = days.back().end;
    return {Predicate::format("type = %d and dueDate >= %@ and startDate < %@", TaskType::ToDo, first,
                              days.back().startAfterEnd),
            Predicate::format("type = %d and dueDate >= %@ and startDate <= %@", TaskType::Appointment, first,
                              std::max(last, afterFirst)),
            // What is due before it starts lies on each day between.
            Predicate::format("type = %d and dueDate < startDate and startDate >= %@ and dueDate <= %@",
                              TaskType::Appointment, days[1].start, last),
            Predicate::format("type = %d and dueDate >= %@ and dueDate <= %@", TaskType::EmailCall, first,
                              std::max(last, afterFirst)),
            // One that is due later shows today once it has started.
            Predicate::format("type = %d and dueDate > %@ and startDate < %@", TaskType::EmailCall, first,
                              afterFirst)};
}

/// Today shows whatever runs into it. On the other days a ToDo shows on all of its span, but an Appointment
/// only where it lies within a single day, and a mail or call when it is due.
bool isOnDay(const HomeTask &task, const HomeDay &day, bool isToday)
{
    if (!task.due)
        return false;
    const OptionalDate start = task.type == TaskType::EmailCall && !task.start ? task.due : task.start;
    if (!start)
        return false;
    if (isToday || task.type == TaskType::ToDo)
        return *start < day.startAfterEnd && *task.due >= day.start;
    if (task.type == TaskType::Appointment)
        return *start >= day.start && *task.due <= day.end;
    return *task.due >= day.start && *task.due <= day.end;
}

Date keyInWeek(const HomeTask &task, Date now, HomeDayStarts &starts)
{
    switch (task.type) {
    case TaskType::ToDo:
        return starts.of(*task.start);
    case TaskType::Appointment:
        // What is over stands where it ended.
        return *task.due < now ? *task.due : *task.start;
    case TaskType::EmailCall:
        break;
    }
    return *task.due;
}

struct HomeProject
{
    RowId row = 0;
    OptionalDate start, due;
    bool isDone = false;
    QByteArray titleKey;
};

/// The projects that have a date, by title.
std::vector<HomeProject> homeProjects()
{
    std::vector<HomeProject> projects;
    mainContext().visit(
        EntityProject::fetchRequest().where(Predicate::format("startDate != nil or dueDate != nil")),
        {"startDate", "dueDate", "status", "title"}, [&](const RowReader &row) {
            projects.push_back(
                {.row = row.rowId(),
                 .start = row.date(0),
                 .due = row.date(1),
                 .isDone = !row.isNull(2) && row.integer(2) == static_cast<int>(TaskStatus::Done),
                 .titleKey = collationSortKey(row.text(3))});
        });
    std::ranges::sort(projects, {}, &HomeProject::row);
    std::ranges::stable_sort(projects, {}, &HomeProject::titleKey);
    return projects;
}

/// A project shows on the days of its two dates. One that is done shows today only.
bool isOnDay(const HomeProject &project, const HomeDay &day, bool isToday)
{
    if (!day.isDayOf(project.start) && !day.isDayOf(project.due))
        return false;
    if (!isToday)
        return !project.isDone;
    return (!project.start || *project.start < day.startAfterEnd) &&
           (!project.due || *project.due >= day.start);
}

} // namespace

HomeRows DBWorker::getWeekBlockData()
{
    constexpr int daysOfWeek = 7;
    const std::vector<HomeDay> days = homeDays(daysOfWeek);
    const Date now = Clock::now();
    HomeDayStarts starts;
    const std::vector<HomeTask> tasks = homeTasks(conditionsOfWeek(days), [&](HomeTask &task) {
        if (!task.due || (!task.start && task.type != TaskType::EmailCall))
            return false;
        task.titleKey = collationSortKey(task.title);
        task.key = keyInWeek(task, now, starts);
        return true;
    });
    const std::vector<HomeProject> projects = homeProjects();

    std::vector<HomeRows::Place> places;
    for (int index = 0; index < daysOfWeek; ++index) {
        const HomeDay &day = days[static_cast<std::size_t>(index)];
        std::vector<HomeRows::Place> ofDay;
        for (const HomeProject &project : projects) {
            if (isOnDay(project, day, index == 0))
                ofDay.push_back({.kind = HomeRows::Kind::Project, .row = project.row});
        }
        std::vector<HomeTask> tasksOfDay;
        std::ranges::copy_if(tasks, std::back_inserter(tasksOfDay),
                             [&](const HomeTask &task) { return isOnDay(task, day, index == 0); });
        sortHomeTasks(tasksOfDay);
        std::ranges::transform(tasksOfDay, std::back_inserter(ofDay), placeOf);
        if (!ofDay.empty())
            ofDay.insert(ofDay.begin(), HomeRows::Place{.kind = HomeRows::Kind::Day});
        for (HomeRows::Place &place : ofDay) {
            place.day = day.start;
            place.dayIndex = index;
            places.push_back(place);
        }
    }
    return HomeRows(std::move(places));
}

HomeRows DBWorker::getOverdueBlockData()
{
    const HomeDay today = homeDays(1).front();
    HomeDayStarts starts;
    const Predicate isOverdue =
        Predicate::format("status != %d and dueDate < %@", TaskStatus::Done, today.start);
    std::vector<HomeTask> tasks = homeTasks({isOverdue}, [&](HomeTask &task) {
        const bool isToDo = task.type == TaskType::ToDo;
        task.key = isToDo ? starts.of(*task.due) : *task.due;
        return task.start ? *task.start < today.startAfterEnd : !isToDo;
    });
    sortHomeTasks(tasks);
    std::vector<HomeRows::Place> places;
    places.reserve(tasks.size());
    std::ranges::transform(tasks, std::back_inserter(places), placeOf);
    return HomeRows(std::move(places));
}

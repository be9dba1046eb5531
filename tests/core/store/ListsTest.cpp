#include "CoreTest.h"

#include <random>

namespace {

/// A task as a plain value, from which the lists are worked out a second time and in another way.
struct Plain
{
    QString title;
    std::optional<TaskType> type;
    std::optional<TaskStatus> status;
    std::optional<bool> someday;
    OptionalDate start, due, expiration;
    QString calendar;
    bool hasCategory = false, hasDelegate = false;

    bool isOpen() const { return status != TaskStatus::Done; }
    bool isVisible() const { return calendar.isEmpty(); }
    OptionalDate effectiveDue() const
    {
        return due && type != TaskType::Appointment && type != TaskType::EmailCall
                   ? OptionalDate(localDate(2026, 11, day(*due), 23, 59, 59))
                   : due;
    }
    OptionalDate effectiveStart() const
    {
        if (type == TaskType::EmailCall)
            return due;
        return start && type != TaskType::Appointment
                   ? OptionalDate(localDate(2026, 11, day(*start), 23, 59, 59))
                   : start;
    }
    static int day(Date date) { return wallClock(date).mid(8, 2).toInt(); }
};

class Lists : public CoreTest
{
protected:
    const Date end = localDate(2026, 11, 21, 23, 59, 59);

    static bool isOnInbox(const Plain &task)
    {
        return task.isOpen() && task.someday != true && !task.start && task.type == TaskType::ToDo;
    }
    bool isOnToday(const Plain &task) const
    {
        if (!task.isOpen() || task.someday != false)
            return false;
        if (task.type == TaskType::EmailCall)
            return task.due && *task.due <= end;
        return (task.type == TaskType::ToDo || task.type == TaskType::Appointment) && task.start &&
               *task.start <= end;
    }
    bool isOnScheduled(const Plain &task) const
    {
        if (!task.isOpen() || task.someday != false || !task.due)
            return false;
        return task.type == TaskType::EmailCall
                   ? *task.due > end
                   : (task.type == TaskType::ToDo || task.type == TaskType::Appointment) && task.start &&
                         *task.start > end;
    }
    static bool isOnSomeday(const Plain &task)
    {
        return task.isOpen() && task.someday == true &&
               (task.type == TaskType::ToDo || task.type == TaskType::EmailCall);
    }
    /// Late at a quarter past nine on the 21st.
    static bool isLate(const Plain &task)
    {
        if (!task.due || *task.due >= localDate(2026, 11, 21, 9, 15))
            return false;
        return task.type == TaskType::Appointment || task.type == TaskType::EmailCall ||
               Plain::day(*task.due) < 21;
    }

    std::vector<Plain> generate(int count)
    {
        std::mt19937 random(testSeed());
        const auto pick = [&random](int below) {
            return std::uniform_int_distribution<>(0, below - 1)(random);
        };
        const std::vector<OptionalDate> dates = {std::nullopt,
                                                 std::nullopt,
                                                 localDate(2026, 11, 3, 8),
                                                 localDate(2026, 11, 20, 23, 59),
                                                 localDate(2026, 11, 21),
                                                 localDate(2026, 11, 21, 9),
                                                 localDate(2026, 11, 21, 17),
                                                 end,
                                                 end + Seconds(1),
                                                 localDate(2026, 11, 22, 9),
                                                 localDate(2026, 11, 30, 12)};
        std::vector<Plain> tasks;
        for (int number = 0; number < count; ++number) {
            Plain task;
            task.title = QStringLiteral("%1").arg(pick(50), 2, 10, QLatin1Char('0'));
            task.type = pick(20) == 0 ? std::nullopt : std::optional(static_cast<TaskType>(pick(3)));
            task.status = pick(20) == 0 ? std::nullopt : std::optional(static_cast<TaskStatus>(pick(4)));
            task.someday = pick(4) == 0 ? std::nullopt : std::optional(pick(4) == 0);
            task.start = dates[size_t(pick(int(dates.size())))];
            task.due = dates[size_t(pick(int(dates.size())))];
            task.expiration =
                pick(3) ? OptionalDate(localDate(2026, 11, 1 + pick(20), pick(24))) : std::nullopt;
            task.calendar = pick(6) == 0 ? u"Nobody's calendar"_qs : pick(2) ? QString() : u""_qs;
            task.hasCategory = pick(2);
            task.hasDelegate = pick(3) == 0;
            tasks.push_back(task);
        }
        return tasks;
    }
    void store(const std::vector<Plain> &tasks)
    {
        const CategoryPtr category = EntityCategory::title(u"Work"_qs);
        const auto contact = context().insert<EntityContacts>();
        for (const Plain &plain : tasks) {
            const auto task = context().insert<EntityTask>();
            task->setTitle(plain.title);
            task->setType(plain.type);
            task->setStatus(plain.status);
            task->setDueSomeDay(plain.someday);
            task->setStartDate(plain.start);
            task->setDueDate(plain.due);
            task->setExpirationDate(plain.expiration);
            task->setTypeCalendarID(plain.calendar);
            task->setCategory(plain.hasCategory ? category : nullptr);
            task->setDelegateToUser(plain.hasDelegate ? contact : nullptr);
        }
        EXPECT_FALSE(DBWorker::saveContext());
    }

    /// One line for each task, which tells all that orders it.
    template <typename Task>
    static QString line(const Task &title, std::optional<TaskType> type, OptionalDate start, OptionalDate due)
    {
        const auto shown = [](OptionalDate date) { return date ? wallClock(*date) : u"-"_qs; };
        return QStringLiteral("%1 type %2 from %3 to %4")
            .arg(title)
            .arg(numberOf(type).value_or(-1))
            .arg(shown(start), shown(due));
    }
    static QStringList lines(const TaskList &list)
    {
        QStringList result;
        for (const TaskPtr &task : list)
            result.append(line(task->title(), task->type(), task->startDate(), task->dueDate()));
        return result;
    }
    template <typename IsOn, typename Less>
    static QStringList expected(const std::vector<Plain> &tasks, IsOn isOn, Less less)
    {
        std::vector<Plain> chosen;
        for (const Plain &task : tasks) {
            if (task.isVisible() && isOn(task))
                chosen.push_back(task);
        }
        std::stable_sort(chosen.begin(), chosen.end(), less);
        QStringList result;
        for (const Plain &task : chosen)
            result.append(line(task.title, task.type, task.start, task.due));
        return result;
    }
    template <typename IsOn>
    static int countOf(const std::vector<Plain> &tasks, IsOn isOn)
    {
        return int(std::count_if(tasks.begin(), tasks.end(),
                                 [&](const Plain &task) { return task.isVisible() && isOn(task); }));
    }

    /// Earlier first; undated ones last, of these the ones for some day first; then later due first, then by
    /// title.
    static bool byDue(const Plain &one, const Plain &other)
    {
        const auto key = [](const Plain &task) {
            const OptionalDate date = task.effectiveDue();
            return std::tuple(!date, date.value_or(Date()), !date && task.someday != true,
                              task.due ? -task.due->referenceSeconds() : 0.0, task.title);
        };
        return key(one) < key(other);
    }
    static bool byStart(const Plain &one, const Plain &other)
    {
        return std::tuple(*one.effectiveStart(), one.title) <
               std::tuple(*other.effectiveStart(), other.title);
    }
};

TEST_F(Lists, HoldOfGeneratedTasksWhatASecondReadingOfTheRulesGives)
{
    const std::vector<Plain> tasks = generate(600);
    store(tasks);
    const auto onToday = [this](const Plain &task) { return isOnToday(task); };
    const auto onScheduled = [this](const Plain &task) { return isOnScheduled(task); };
    const auto onNotDone = [](const Plain &task) { return task.isOpen(); };
    const auto sorted = [](QStringList list) {
        list.sort();
        return list;
    };
    const auto byTitle = [](const Plain &one, const Plain &other) { return one.title < other.title; };
    const auto titlesOf = [](const QStringList &list) {
        QStringList result;
        for (const QString &one : list)
            result.append(one.left(2));
        return result;
    };
    // Rows that tie in every key may come in any order, so that what is compared tells these keys and no
    // more.
    EXPECT_EQ(lines(DBWorker::allTodayTasks()).size(), expected(tasks, onToday, byDue).size());
    const auto keysOf = [](const QStringList &list) {
        QStringList keys;
        for (const QString &one : list)
            keys.append(one.left(2) + one.mid(one.indexOf(u" to ")));
        return keys;
    };
    EXPECT_EQ(keysOf(lines(DBWorker::allTodayTasks())), keysOf(expected(tasks, onToday, byDue)));
    EXPECT_EQ(keysOf(lines(DBWorker::allNotDoneTasks())), keysOf(expected(tasks, onNotDone, byDue)));
    EXPECT_EQ(titlesOf(lines(DBWorker::allScheduledTasks())),
              titlesOf(expected(tasks, onScheduled, byStart)));
    EXPECT_EQ(titlesOf(lines(DBWorker::allSomedayTasks())), titlesOf(expected(tasks, isOnSomeday, byTitle)));
    EXPECT_EQ(sorted(lines(DBWorker::allInboxTasks())), sorted(expected(tasks, isOnInbox, byTitle)));
}

TEST_F(Lists, OfGeneratedTasksAreAsLongAsTheirBadgesSay)
{
    const std::vector<Plain> tasks = generate(600);
    store(tasks);
    const auto onToday = [this](const Plain &task) { return isOnToday(task); };
    const TaskBadges badges = DBWorker::taskBadges();
    EXPECT_EQ(badges.inbox, (Badge{0, DBWorker::allInboxTasks().size()}));
    EXPECT_EQ(badges.today,
              (Badge{countOf(tasks, [&](const Plain &task) { return onToday(task) && isLate(task); }),
                     DBWorker::allTodayTasks().size()}));
    EXPECT_EQ(badges.scheduled, (Badge{0, DBWorker::allScheduledTasks().size()}));
    EXPECT_EQ(badges.someday, (Badge{0, DBWorker::allSomedayTasks().size()}));
    EXPECT_EQ(badges.categories,
              (Badge{0, countOf(tasks, [](const Plain &one) { return one.isOpen() && one.hasCategory; })}));
    EXPECT_EQ(badges.delegated,
              (Badge{0, countOf(tasks, [](const Plain &one) { return one.isOpen() && one.hasDelegate; })}));
    EXPECT_EQ(badges.notDone, (Badge{0, DBWorker::allNotDoneTasks().size()}));
    EXPECT_EQ(badges.done, (Badge{0, DBWorker::allDoneTasksNoGroup().size()}));
    EXPECT_EQ(DBWorker::countStaleTasks(),
              countOf(tasks, [](const Plain &one) { return one.isOpen() && isLate(one); }));
    EXPECT_EQ(DBWorker::allDelayTasks().size(), DBWorker::countStaleTasks());
}

TEST_F(Lists, CallAToDoLateFromTheNextDayOn)
{
    add(u"last year's end"_qs, TaskType::ToDo, {}, localDate(2025, 12, 31, 23, 59));
    add(u"long ago"_qs, TaskType::ToDo, {}, localDate(1899, 12, 29, 23, 59));
    add(u"this morning"_qs, TaskType::ToDo, {}, localDate(2026, 11, 21, 8));
    add(u"yesterday"_qs, TaskType::ToDo, {}, localDate(2026, 11, 20, 23, 59));
    EXPECT_EQ(titles(DBWorker::allDelayTasks()),
              QStringList({u"last year's end"_qs, u"long ago"_qs, u"yesterday"_qs}));
    EXPECT_EQ(DBWorker::countStaleTasks(), 3);
}

TEST_F(Lists, AreGroupedUnderHeadersWithOneGapBetween)
{
    EXPECT_TRUE(DBWorker::allNotDoneTasksGrouped(Grouping::Category).isEmpty());
    EXPECT_FALSE(DBWorker::allDoneTasks());
    const TaskPtr work = add(u"work"_qs);
    work->setCategory(EntityCategory::title(u"Work"_qs));
    work->setPriority(Priority::High);
    const TaskPtr home = add(u"home"_qs);
    home->setCategory(EntityCategory::title(u"HomeCategory"_qs));
    add(u"plain"_qs)->setPriority(static_cast<Priority>(5));
    EXPECT_FALSE(DBWorker::saveContext());

    const auto described = [](const TaskRows &rows) {
        QStringList result;
        for (int row = 0; row < rows.size(); ++row) {
            const TaskRow one = rows.at(row);
            if (const auto *task = std::get_if<TaskPtr>(&one)) {
                result.append((*task)->title());
            } else if (const auto *header = std::get_if<GroupHeader>(&one)) {
                if (const auto *category = std::get_if<CategoryPtr>(header))
                    result.append(u"# "_qs + (*category)->title());
                else if (const auto *priority = std::get_if<PriorityHeader>(header))
                    result.append(u"# priority %1"_qs.arg(static_cast<int>(priority->priority)));
                else
                    result.append(u"# none %1"_qs.arg(std::get<EntityNotValue>(*header).type));
            } else {
                result.append(u"--"_qs);
            }
        }
        return result;
    };
    // "HomeCategory" is shown as "Home", and sorts as that.
    EXPECT_EQ(described(DBWorker::allNotDoneTasksGrouped(Grouping::Category)),
              QStringList({u"# HomeCategory"_qs, u"home"_qs, u"--"_qs, u"# Work"_qs, u"work"_qs, u"--"_qs,
                           u"# none 0"_qs, u"plain"_qs, u"--"_qs}));
    EXPECT_EQ(described(DBWorker::allNotDoneTasksGrouped(Grouping::Project)),
              QStringList({u"# none 1"_qs, u"home"_qs, u"plain"_qs, u"work"_qs, u"--"_qs}));
    EXPECT_EQ(
        described(DBWorker::allNotDoneTasksGrouped(Grouping::Priority)),
        QStringList({u"# priority 0"_qs, u"work"_qs, u"--"_qs, u"# priority 3"_qs, u"home"_qs, u"--"_qs}));
    EXPECT_TRUE(DBWorker::allNotDoneTasksGrouped(Grouping::None).isEmpty());
    EXPECT_EQ(described(DBWorker::allTasksWithDelegates()),
              QStringList({u"# none 2"_qs, u"home"_qs, u"plain"_qs, u"work"_qs, u"--"_qs}));
}

TEST_F(Lists, ShowWhatIsDoneByTheDayOldestFirst)
{
    for (const auto &[title, day] : {std::pair(u"b"_qs, 20), std::pair(u"a"_qs, 3), std::pair(u"c"_qs, 20)}) {
        const TaskPtr task = add(title);
        task->setStatus(TaskStatus::Done);
        task->setExpirationDate(localDate(2026, 11, day, title == u"b"_qs ? 23 : 1));
    }
    EXPECT_FALSE(DBWorker::saveContext());
    const TaskRows rows = *DBWorker::allDoneTasks();
    ASSERT_EQ(rows.size(), 7);
    EXPECT_EQ(std::get<DayHeader>(std::get<GroupHeader>(rows.at(0))).day, localDate(2026, 11, 3));
    EXPECT_EQ(rows.taskAt(1)->title(), u"a"_qs);
    EXPECT_EQ(rows.kindOf(2), TaskRows::Kind::Separator);
    EXPECT_EQ(rows.taskAt(4)->title(), u"c"_qs);
    EXPECT_EQ(rows.taskAt(5)->title(), u"b"_qs);
    EXPECT_EQ(rows.kindOf(6), TaskRows::Kind::Separator);
    EXPECT_EQ(rows.rowOf(*rows.taskAt(5)), 5);
}

TEST_F(Lists, SortLoadedTasksByTheSameRules)
{
    const TaskPtr late = add(u"b 17:00"_qs, TaskType::ToDo, {}, localDate(2026, 11, 25, 17));
    const TaskPtr early = add(u"a 09:00"_qs, TaskType::ToDo, {}, localDate(2026, 11, 25, 9));
    const TaskPtr noon =
        add(u"noon"_qs, TaskType::Appointment, localDate(2026, 11, 25, 11), localDate(2026, 11, 25, 12));
    const TaskPtr undated = add(u"undated"_qs);
    EXPECT_EQ(DBWorker::sortToday({early, noon, late}), std::vector<TaskPtr>({noon, late, early}));
    // What has no date is equal to everything and stays where it stands.
    EXPECT_EQ(DBWorker::sortNotDone({undated, late, noon}), std::vector<TaskPtr>({undated, noon, late}));
    EXPECT_EQ(DBWorker::getFirstTaskByTitle(u"noon"_qs), noon);
    EXPECT_EQ(titles(DBWorker::getAllTaskWithType(TaskType::ToDo, localDate(2026, 11, 25, 3), false)).size(),
              2);
}

} // namespace

#include "CoreTest.h"

#include "filters/FilterEntries.h"
#include "foundation/Clock.h"
#include "foundation/Region.h"
#include "records/TaskPlacement.h"

#include <random>

namespace {

constexpr std::array fetchedLists = {ListType::Inbox,   ListType::Today,     ListType::Scheduled,
                                     ListType::Someday, ListType::Delegated, ListType::NotDone,
                                     ListType::Done};

class Placement : public CoreTest
{
protected:
    ~Placement() override { Region::reload(); }

    static std::vector<TaskPtr> fetched(ListType list, const FilterEntry *filter)
    {
        const auto loaded = [](const TaskList &tasks) {
            return std::vector<TaskPtr>(tasks.begin(), tasks.end());
        };
        switch (list) {
        case ListType::Inbox:
            return loaded(DBWorker::allInboxTasks(filter));
        case ListType::Today:
            return loaded(DBWorker::allTodayTasks(filter));
        case ListType::Scheduled:
            return loaded(DBWorker::allScheduledTasks(filter));
        case ListType::Someday:
            return loaded(DBWorker::allSomedayTasks(filter));
        case ListType::NotDone:
            return loaded(DBWorker::allNotDoneTasks(filter));
        case ListType::Delegated:
            return DBWorker::allTasksWithDelegates().tasks();
        default:
            return DBWorker::allDoneTasks().value_or(TaskRows()).tasks();
        }
    }
    static bool canBeFiltered(ListType list) { return list != ListType::Delegated && list != ListType::Done; }
    /// A filter that is on, with one criterion set.
    static FilterEntry filterBy(const QString &key, const QVariant &value)
    {
        FilterEntry entry = filters::pristineTaskEntry();
        QVariantList array = entry.value(u"Array"_qs).toList();
        QVariantMap criterion = array.at(DBWorker::indexObject(key, array)).toMap();
        criterion.insert({{u"Enabled"_qs, 1}, {u"Value"_qs, value}});
        array[DBWorker::indexObject(key, array)] = criterion;
        entry.insert({{u"Array"_qs, array}, {u"Enabled"_qs, 1}});
        return entry;
    }
    static void expectAgreement(const std::vector<TaskPtr> &all, ListType list, const FilterEntry *filter)
    {
        const std::vector<TaskPtr> shown = fetched(list, filter);
        for (const TaskPtr &task : all) {
            const TaskPlacement placement(task);
            const bool isShown = std::find(shown.begin(), shown.end(), task) != shown.end();
            ASSERT_EQ(placement.isOn(list, filter), isShown)
                << qPrintable(task->title()) << " on " << qPrintable(TaskPlacement::titleOf(list)) << ": "
                << qPrintable(placement.reasonOff(list, filter));
            const QString here =
                u"“%1” is on the list “%2”: "_qs.arg(task->title(), TaskPlacement::titleOf(list));
            const QString text = placement.explanation(list, filter);
            ASSERT_EQ(text.startsWith(here) && !text.startsWith(here + u'.'), isShown) << qPrintable(text);
        }
    }
    TaskPtr random(std::mt19937 &numbers)
    {
        const auto pick = [&numbers](int count) { return static_cast<int>(numbers() % unsigned(count)); };
        const auto someDate = [&]() -> OptionalDate {
            if (pick(3) == 0)
                return std::nullopt;
            const std::array<double, 7> seconds = {-900000, -40000, -1, 0, 53099, 53101, 900000};
            return Clock::now() + Seconds(seconds[size_t(pick(7))]);
        };
        const auto task = context().insert<EntityTask>();
        task->setTitle(u"%1 task"_qs.arg(QChar(u'a' + pick(26))));
        if (pick(8) != 0)
            task->setType(static_cast<TaskType>(pick(4)));
        if (pick(8) != 0)
            task->setStatus(static_cast<TaskStatus>(pick(4)));
        if (pick(4) != 0)
            task->setDueSomeDay(pick(4) == 0);
        task->setStartDate(someDate());
        task->setDueDate(someDate());
        task->setExpirationDate(someDate());
        if (pick(2) == 0)
            task->setPriority(static_cast<Priority>(pick(4)));
        if (pick(6) == 0)
            task->setTypeCalendarID(u"a calendar that is not shown"_qs);
        if (pick(3) == 0)
            task->setCategory(EntityCategory::title(u"Work"_qs));
        return task;
    }
};

TEST_F(Placement, AgreesWithEveryListAboutEveryGeneratedTask)
{
    std::mt19937 numbers(testSeed());
    std::vector<TaskPtr> all;
    for (int count = 0; count < 300; ++count)
        all.push_back(random(numbers));
    ASSERT_FALSE(DBWorker::saveContext());
    const std::vector<FilterEntry> filters = {
        filterBy(u"Title"_qs, u"a"_qs), filterBy(u"Type"_qs, 1), filterBy(u"Status"_qs, 0),
        filterBy(u"Category"_qs, EntityCategory::title(u"Work"_qs)->uri()), filterBy(u"Priority"_qs, 2)};
    for (const ListType list : fetchedLists) {
        expectAgreement(all, list, nullptr);
        for (const FilterEntry &filter : filters) {
            if (canBeFiltered(list))
                expectAgreement(all, list, &filter);
        }
    }
    // Where a search leads, or what is told of it, shows the task; what is on no list is told so.
    for (const TaskPtr &task : all) {
        const auto home = TaskPlacement(task).home();
        const bool isAnywhere = std::any_of(fetchedLists.begin(), fetchedLists.end(),
                                            [&](ListType list) { return TaskPlacement(task).isOn(list); });
        EXPECT_EQ(home.has_value(), isAnywhere);
        EXPECT_TRUE(!home || TaskPlacement(task).isOn(*home));
    }
}

TEST_F(Placement, SendsASearchToTheFirstListThatFits)
{
    const Date today = localDate(2026, 11, 21);
    const Date tomorrow = localDate(2026, 11, 22);
    const auto listOf = [](const TaskPtr &task) { return TaskPlacement::searchList(*task); };
    const auto changed = [this](TaskPtr task, auto change) {
        change(*task);
        return task;
    };
    const auto someday = [](EntityTask &task) { task.setDueSomeDay(true); };
    const auto done = [](EntityTask &task) {
        task.setStatus(TaskStatus::Done);
        task.setDueSomeDay(true);
    };
    EXPECT_EQ(listOf(changed(add(u"done"_qs), done)), ListType::Done);
    EXPECT_EQ(listOf(changed(add(u"someday"_qs), someday)), ListType::Someday);
    EXPECT_EQ(listOf(changed(add(u"meeting"_qs, TaskType::Appointment, today, today), someday)),
              ListType::Someday);
    EXPECT_EQ(listOf(add(u"inbox"_qs)), ListType::Inbox);
    EXPECT_EQ(listOf(add(u"due alone"_qs, TaskType::ToDo, {}, tomorrow)), ListType::Inbox);
    EXPECT_EQ(listOf(add(u"started"_qs, TaskType::ToDo, today, tomorrow)), ListType::Today);
    EXPECT_EQ(listOf(add(u"at night"_qs, TaskType::Appointment, localDate(2026, 11, 21, 23, 59), tomorrow)),
              ListType::Today);
    EXPECT_EQ(listOf(add(u"mail"_qs, TaskType::EmailCall, {}, today)), ListType::Today);
    EXPECT_EQ(listOf(add(u"later"_qs, TaskType::ToDo, tomorrow, tomorrow)), ListType::Scheduled);
    EXPECT_EQ(listOf(add(u"visit"_qs, TaskType::Appointment, tomorrow, tomorrow)), ListType::Scheduled);
    EXPECT_EQ(listOf(add(u"call"_qs, TaskType::EmailCall, {}, tomorrow)), ListType::Scheduled);
    EXPECT_EQ(listOf(changed(add(u"open end"_qs, TaskType::ToDo, tomorrow, tomorrow),
                             [](EntityTask &task) { task.setDueDate(std::nullopt); })),
              ListType::NotDone);
    EXPECT_EQ(listOf(changed(add(u"no start"_qs, TaskType::Appointment, tomorrow, tomorrow),
                             [](EntityTask &task) { task.setStartDate(std::nullopt); })),
              ListType::NotDone);
    EXPECT_EQ(listOf(changed(add(u"undated mail"_qs, TaskType::EmailCall, today, today),
                             [](EntityTask &task) { task.setDueDate(std::nullopt); })),
              ListType::NotDone);
}

TEST_F(Placement, SaysWhichListATaskIsOnAndWhyNotOnThisOne)
{
    const TaskPtr idea = add(u"idea"_qs);
    const TaskPtr trip =
        add(u"trip"_qs, TaskType::Appointment, localDate(2026, 11, 24, 9), localDate(2026, 11, 24, 10));
    const TaskPtr mail = add(u"mail"_qs, TaskType::EmailCall, {}, localDate(2026, 11, 19, 8));
    const auto explained = [](const TaskPtr &task, std::optional<ListType> list) {
        return TaskPlacement(task).explanation(list);
    };
    EXPECT_EQ(explained(idea, ListType::Inbox),
              u"“idea” is on the list “Inbox”: it is a ToDo without a start date and not done."_qs);
    EXPECT_EQ(explained(trip, ListType::Today),
              u"“trip” is on the list “Scheduled”: it starts on Nov 24, 2026, after today. "
              "It is not on the list “Today”: it starts on Nov 24, 2026, after today."_qs);
    EXPECT_EQ(explained(mail, ListType::Today),
              u"“mail” is on the list “Today”: it was due on Nov 19, 2026 and is not done."_qs);
    EXPECT_EQ(explained(mail, std::nullopt), explained(mail, ListType::Today));
    EXPECT_EQ(explained(mail, ListType::Inbox),
              u"“mail” is on the list “Today”: it was due on Nov 19, 2026 and is not done. "
              "It is not on the list “Inbox”: it is of the type “Email/Call”."_qs);
    EXPECT_EQ(explained(idea, ListType::Scheduled),
              u"“idea” is on the list “Inbox”: it is a ToDo without a start date and not done. "
              "It is not on the list “Scheduled”: it has no start date."_qs);
    const FilterEntry filter = filterBy(u"Title"_qs, u"plan"_qs);
    EXPECT_EQ(TaskPlacement(idea).explanation(ListType::Inbox, &filter),
              u"“idea” is not on the list “Inbox”: the filter of the list leaves it out by “Title”."_qs);
    idea->setTypeCalendarID(u"elsewhere"_qs);
    EXPECT_EQ(explained(idea, ListType::Inbox),
              u"“idea” is not on the list “Inbox”: its calendar is not shown."_qs);
    EXPECT_EQ(explained(idea, std::nullopt), u"“idea” is on no list: its calendar is not shown."_qs);

    Region::setLocale(u"de_DE"_qs);
    EXPECT_EQ(explained(trip, ListType::Today),
              u"„trip“ steht in der Liste „Geplant“: sie beginnt am 24. Nov. 2026, also nach heute. "
              "In der Liste „Heute“ steht sie nicht: sie beginnt am 24. Nov. 2026, also nach heute."_qs);
}

} // namespace

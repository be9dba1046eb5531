// Many tasks are changed or deleted at once.

#include "CoreTest.h"

#include "foundation/Clock.h"
#include "records/NewTaskRequest.h"
#include "records/TaskBatch.h"
#include "records/TaskManager.h"
#include "store/state/NotificationNames.h"

using namespace Qt::Literals::StringLiterals;

namespace {

class TaskBatchTest : public CoreTest
{
protected:
    TaskBatchTest()
    {
        for (const QString &title : {u"a"_s, u"b"_s, u"c"_s, u"d"_s})
            tasks.push_back(add(title));
        tasks[1]->setAllowsContentModifications(false);
        EXPECT_FALSE(DBWorker::saveContext());
    }
    template <typename Value>
    std::vector<int> each(Value (EntityTask::*value)() const)
    {
        std::vector<int> values;
        for (const TaskPtr &task : tasks)
            values.push_back(numberOf((*task.*value)()).value_or(-1));
        return values;
    }
    std::vector<int> priorities() { return each(&EntityTask::priority); }
    std::vector<int> statuses() { return each(&EntityTask::status); }

    std::vector<TaskPtr> tasks;
};

} // namespace

TEST_F(TaskBatchTest, ChangesWhatMayBeChangedInOneSaveThatOneUndoTakesBack)
{
    const std::vector<int> before = priorities();
    int saves = 0;
    const Observation saved = NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [&saves](const StoreChanges &) { ++saves; });
    TaskBatch::setPriority(tasks, Priority::High);
    EXPECT_EQ(priorities(), (std::vector{0, before[1], 0, 0}));
    EXPECT_EQ(saves, 1);
    TaskBatch::setCategory(tasks, EntityCategory::title(u"Work"_s));
    EXPECT_EQ(tasks[1]->category(), nullptr);
    EXPECT_EQ(tasks[3]->category(), EntityCategory::title(u"Work"_s));
    EXPECT_FALSE(context().undo());
    EXPECT_EQ(tasks[3]->category(), nullptr);
    EXPECT_EQ(tasks[3]->priority(), Priority::High);
    EXPECT_FALSE(context().undo());
    EXPECT_EQ(priorities(), before);
}

TEST_F(TaskBatchTest, TicksAllUnlessAllAreTicked)
{
    TaskBatch::setStatus({tasks[0]}, TaskStatus::Done);
    TaskBatch::toggleDone(tasks);
    EXPECT_EQ(statuses(), (std::vector{3, 0, 3, 3}));
    TaskBatch::toggleDone(tasks);
    EXPECT_EQ(statuses(), (std::vector{0, 0, 0, 0}));
}

TEST_F(TaskBatchTest, StopsWhenTheUserHasHadEnoughAndKeepsWhatIsDone)
{
    int steps = 0;
    const auto twice = [&steps] { return ++steps % 2 != 0; };
    TaskBatch::setStatus({tasks[0], tasks[2], tasks[3]}, TaskStatus::Pending, twice);
    EXPECT_EQ(statuses(), (std::vector{2, 0, 2, 0}));
    EXPECT_FALSE(context().hasChanges());
    int finished = 0;
    const ScriptedAlerts alerts({Alert::firstButton});
    TaskManager::deleteTasks(
        {tasks[0], tasks[2], tasks[3]}, [&finished] { ++finished; }, twice);
    EXPECT_EQ(titles(DBWorker::allTasks()), QStringList({u"b"_s, u"d"_s}));
    EXPECT_EQ(finished, 1);
    EXPECT_FALSE(context().hasChanges());
}

TEST_F(TaskBatchTest, SaysAndAsksOnceWhatConcernsSeveralTasks)
{
    const Date nine = localDate(2026, 11, 23, 9);
    std::vector<TaskPtr> some = {tasks[0]};
    for (const QString &title : {u"open end"_s, u"open end too"_s})
        some.push_back(add(title, TaskType::Appointment, nine));
    for (const QString &title : {u"daily"_s, u"weekly"_s}) {
        some.push_back(add(title, TaskType::Appointment, nine, nine + Seconds(3600)));
        some.back()->setRepeat(u"RRULE:FREQ=DAILY;INTERVAL=1"_s);
    }
    EXPECT_FALSE(DBWorker::saveContext());
    const auto important = [&some] {
        QStringList found;
        for (const TaskPtr &task : some) {
            if (task->priority() == Priority::High)
                found << task->title();
        }
        return found;
    };
    {
        const ScriptedAlerts alerts({Alert::firstButton, Alert::thirdButton});
        TaskBatch::setPriority(some, Priority::High);
        EXPECT_EQ(alerts.asked().size(), 2U) << "a message about two, and a question about two";
        EXPECT_EQ(important(), QStringList(u"a"_s));
    }
    const ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton});
    TaskBatch::setPriority(some, Priority::High);
    EXPECT_EQ(alerts.asked().size(), 2U) << "another change asks again";
    EXPECT_EQ(important(), QStringList({u"a"_s, u"daily"_s, u"weekly"_s}));
}

TEST_F(TaskBatchTest, PassesOverWhatGoesMeanwhile)
{
    const auto deleteLast = [this] {
        if (!tasks[3]->isDeleted())
            context().deleteObject(tasks[3]);
        return true;
    };
    TaskBatch::setPriority(tasks, Priority::High, deleteLast);
    EXPECT_EQ(tasks[2]->priority(), Priority::High);
    EXPECT_EQ(DBWorker::allTasks().size(), 3);
}

TEST_F(TaskBatchTest, ADayAPressAwayKeepsTimesAndLengthsAndOneUndoTakesItBack)
{
    const TaskPtr plain = add(u"plain"_s);
    const TaskPtr trip =
        add(u"trip"_s, TaskType::ToDo, localDate(2026, 11, 2), localDate(2026, 11, 4, 23, 59));
    const TaskPtr meeting =
        add(u"meeting"_s, TaskType::Appointment, localDate(2026, 11, 3, 15), localDate(2026, 11, 3, 16, 30));
    TaskBatch::plan({plain, trip, meeting}, QuickDay::NextWeek);
    EXPECT_EQ(plain->startDate(), localDate(2026, 11, 23));
    EXPECT_EQ(plain->dueDate(), localDate(2026, 11, 23, 23, 59));
    EXPECT_EQ(trip->startDate(), localDate(2026, 11, 23));
    EXPECT_EQ(trip->dueDate(), localDate(2026, 11, 25, 23, 59));
    EXPECT_EQ(meeting->startDate(), localDate(2026, 11, 23, 15));
    EXPECT_EQ(meeting->dueDate(), localDate(2026, 11, 23, 16, 30));

    TaskBatch::plan({meeting, trip}, QuickDay::Someday);
    for (const TaskPtr &task : {meeting, trip}) {
        EXPECT_EQ(task->dueSomeDay(), true);
        EXPECT_EQ(task->type(), TaskType::ToDo);
        EXPECT_FALSE(task->startDate() || task->dueDate());
    }
    ASSERT_FALSE(context().undo());
    EXPECT_EQ(meeting->startDate(), localDate(2026, 11, 23, 15));
    EXPECT_EQ(meeting->type(), TaskType::Appointment);
    TaskBatch::plan({trip}, QuickDay::Someday);
    TaskBatch::planOn({trip}, localDate(2026, 12, 24));
    EXPECT_EQ(trip->dueSomeDay(), false) << "a day takes it out of Someday";
    EXPECT_EQ(trip->startDate(), localDate(2026, 12, 24));
}

TEST_F(TaskBatchTest, ACopyHasTheFieldsAndNothingThatBelongsToOneTaskAlone)
{
    const TaskPtr task =
        add(u"original"_s, TaskType::Appointment, localDate(2026, 11, 3, 15), localDate(2026, 11, 3, 16));
    task->setDetails(u"with words"_s);
    task->setStatus(TaskStatus::Done);
    task->setCalendarID(u"event"_s);
    task->setPriority(Priority::High);
    ASSERT_FALSE(DBWorker::saveContext());
    const std::vector<TaskPtr> copies = TaskBatch::duplicate({task});
    ASSERT_EQ(copies.size(), 1U);
    const TaskPtr copy = copies.front();
    EXPECT_NE(copy->identifier(), task->identifier());
    EXPECT_EQ(copy->title(), u"original"_s);
    EXPECT_EQ(copy->details(), u"with words"_s);
    EXPECT_EQ(copy->priority(), Priority::High);
    EXPECT_EQ(copy->startDate(), task->startDate());
    EXPECT_EQ(copy->status(), TaskStatus::Open);
    EXPECT_NE(copy->calendarID(), u"event"_s);
    ASSERT_FALSE(context().undo());
    EXPECT_EQ(DBWorker::allTasks().size(), 5);
    EXPECT_EQ(task->status(), TaskStatus::Done);
}

TEST_F(TaskBatchTest, LinesBecomeTasksWithoutWhatListsBeginTheirLinesWith)
{
    const QStringList lines = {u"- Milk"_s,         u"* 2 eggs"_s, u"  • Bread"_s,    u"[x] Paid"_s,
                               u"- [ ] Open one"_s, u"☑ Ticked"_s, u"   "_s,          u"-5 degrees"_s,
                               u"2026 in review"_s, u"—"_s,        u"(a) tab\there"_s};
    const auto made = TaskBatch::addLines(lines, NewTaskRequest::ofList(ListType::Today, Clock::now()));
    QStringList titles;
    QStringList done;
    for (const TaskPtr &task : made) {
        titles << task->title();
        if (task->status() == TaskStatus::Done)
            done << task->title();
        EXPECT_EQ(task->expirationDate().has_value(), task->status() == TaskStatus::Done);
        EXPECT_EQ(task->startDate(), localDate(2026, 11, 21));
    }
    EXPECT_EQ(titles, (QStringList{u"Milk"_s, u"2 eggs"_s, u"Bread"_s, u"Paid"_s, u"Open one"_s, u"Ticked"_s,
                                   u"-5 degrees"_s, u"2026 in review"_s, u"—"_s, u"(a) tab here"_s}));
    EXPECT_EQ(done, (QStringList{u"Paid"_s, u"Ticked"_s}));
    ASSERT_FALSE(context().undo());
    EXPECT_EQ(DBWorker::allTasks().size(), 4);
}

TEST_F(TaskBatchTest, OnlyNumbersThatCountOnFromOneAreNoPartOfTheText)
{
    const auto titlesOf = [](const QStringList &lines) {
        QStringList titles;
        for (const TaskPtr &task :
             TaskBatch::addLines(lines, NewTaskRequest::ofList(ListType::Today, Clock::now())))
            titles << task->title();
        return titles;
    };
    EXPECT_EQ(titlesOf({u"  1. Milk"_s, u"- of oats"_s, u"2) [ ] Eggs"_s, u" "_s, u"3. 100 g flour"_s}),
              (QStringList{u"Milk"_s, u"of oats"_s, u"Eggs"_s, u"100 g flour"_s}));
    const std::vector<QStringList> texts = {
        {u"24. Dezember Baum kaufen"_s, u"100. Geburtstag planen"_s},
        {u"1. Mai frei nehmen"_s},
        {u"1. Advent"_s, u"24. Dezember"_s, u"2. Januar"_s},
        {u"2. Advent"_s, u"3. Advent"_s},
        {u"1. Advent"_s, u"1. Mai"_s},
    };
    for (const QStringList &lines : texts)
        EXPECT_EQ(titlesOf(lines), lines);
}

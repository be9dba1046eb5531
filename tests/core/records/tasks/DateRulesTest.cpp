#include "CoreTest.h"

#include "records/TaskManager.h"
#include "store/state/NotificationNames.h"

namespace {

class DateRules : public CoreTest
{
protected:
    /// The names that were posted while it lives.
    struct Posted
    {
        QStringList names;
        std::vector<Observation> observations;
        Posted()
        {
            NotificationCenter &center = NotificationCenter::defaultCenter();
            observations.push_back(center.addObserver(
                notifications::taskChange, [this](const TaskPtr &) { names.append(u"TaskChange"_qs); }));
            observations.push_back(center.addObserver(notifications::coreDataAddNewTask,
                                                      [this] { names.append(u"CoreDataAddNewTask"_qs); }));
        }
    };
    static MVTask copyOf(TaskType type, OptionalDate start, OptionalDate due,
                         std::optional<bool> someday = {})
    {
        MVTask copy;
        copy.title = u"  task \n"_qs;
        copy.type = type;
        copy.status = TaskStatus::Open;
        copy.startDate = start;
        copy.dueDate = due;
        copy.dueSomeDay = someday;
        return copy;
    }
    const Date nine = localDate(2026, 11, 25, 9);
    const Date ten = localDate(2026, 11, 25, 10);
};

TEST_F(DateRules, RefuseInTheirOrderWithTheirWords)
{
    struct Case
    {
        TaskType type;
        OptionalDate start, due;
        QString title, message, posted;
    };
    const std::vector<Case> cases = {
        {TaskType::ToDo, ten, nine, u"Invalid Due Date"_qs, u"Due Date can't be less than Start Date!"_qs,
         u"TaskChange"_qs},
        {TaskType::Appointment,
         {},
         ten,
         u"Invalid Start Date"_qs,
         u"Since task type is Appointment - Start Date can't be empty!"_qs,
         u"TaskChange"_qs},
        {TaskType::Appointment,
         nine,
         {},
         u"Invalid Due Date"_qs,
         u"Since task type is Appointment - Due Date can't be empty!"_qs,
         u"TaskChange"_qs},
        {TaskType::Appointment, nine + Seconds(30), nine + Seconds(50), u"Invalid Date"_qs,
         u"Due Date can't be the same as Start Date!"_qs, u"TaskChange"_qs},
        {TaskType::EmailCall,
         nine,
         {},
         u"Invalid Start Date"_qs,
         u"Since task type is Email/Call - Start Date can't be empty!"_qs,
         u"TaskChange"_qs},
        {TaskType::ToDo,
         nine,
         {},
         u"Invalid Due Date"_qs,
         u"Since task type is ToDo and Start Date is not empty - Due Date can't be empty too!"_qs,
         u"TaskChange"_qs}};
    for (const Case &one : cases) {
        const ScriptedAlerts alerts({1000});
        const Posted posted;
        MVTask copy = copyOf(one.type, one.start, one.due);
        EXPECT_FALSE(TaskManager::saveTaskTemp(copy, true));
        ASSERT_EQ(alerts.asked().size(), 1u);
        EXPECT_EQ(alerts.asked()[0].title, one.title);
        EXPECT_EQ(alerts.asked()[0].informativeText, one.message);
        EXPECT_EQ(posted.names, QStringList(one.posted));
    }
    EXPECT_TRUE(DBWorker::getAllTasks().isEmpty());
}

TEST_F(DateRules, PassWhatIsWhole)
{
    for (MVTask copy :
         {copyOf(TaskType::ToDo, {}, {}), copyOf(TaskType::ToDo, {}, ten),
          copyOf(TaskType::Appointment, nine, {}, true), copyOf(TaskType::EmailCall, {}, {}, true)}) {
        const Posted posted;
        EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
        EXPECT_EQ(copy.title, u"task"_qs);
        EXPECT_EQ(posted.names, QStringList({u"TaskChange"_qs, u"CoreDataAddNewTask"_qs, u"TaskChange"_qs}));
    }
    EXPECT_EQ(DBWorker::getAllTasks().size(), 4);
}

TEST_F(DateRules, KeepATaskInsideItsProject)
{
    const auto project = context().insert<EntityProject>();
    project->setStartDate(localDate(2026, 11, 20));
    project->setDueDate(localDate(2026, 11, 25, 9));
    const auto contact = context().insert<EntityContacts>();
    const auto saves = [&](OptionalDate start, OptionalDate due) {
        MVTask copy = copyOf(TaskType::ToDo, start, due);
        copy.project = project;
        copy.delegateToUser = contact;
        return TaskManager::saveTaskTemp(copy, true);
    };
    // The project reaches to the end of its last day.
    EXPECT_TRUE(saves(nine, localDate(2026, 11, 25, 23, 59)));
    EXPECT_EQ(project->delegateToUser(), std::vector<ContactPtr>({contact}));
    const ScriptedAlerts alerts({1000, 1000, 1000, 1000});
    EXPECT_FALSE(saves(localDate(2026, 11, 19), ten));
    EXPECT_FALSE(saves(localDate(2026, 11, 26), localDate(2026, 11, 27)));
    EXPECT_FALSE(saves(nine, localDate(2026, 11, 26)));
    EXPECT_FALSE(saves({}, localDate(2026, 11, 19)));
    QStringList messages;
    for (const AlertQuestion &one : alerts.asked())
        messages.append(one.informativeText);
    EXPECT_EQ(messages, QStringList({u"Start Date can't be less than project Start Date!"_qs,
                                     u"Start Date can't be more than project Due Date!"_qs,
                                     u"Due Date can't be more than project Due Date!"_qs,
                                     u"Due Date can't be less than project Start Date!"_qs}));
}

TEST_F(DateRules, AskHowFarAChangeOfASeriesReaches)
{
    const TaskPtr row = add(u"weekly"_qs, TaskType::Appointment, nine, ten);
    row->setRepeat(u"RRULE FREQ=WEEKLY"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    const ScriptedAlerts alerts({1002, 1000});
    MVTask copy(row);
    copy.title = u"renamed"_qs;
    EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
    EXPECT_EQ(copy.title, u"weekly"_qs) << "Given up, the copy shows what is stored";
    copy.title = u"renamed"_qs;
    EXPECT_TRUE(TaskManager::saveTaskTemp(copy, true));
    EXPECT_EQ(row->title(), u"renamed"_qs);
    EXPECT_EQ(row->repeat(), QString()) << "An occurrence that is edited alone leaves its series";
    EXPECT_EQ(alerts.asked().at(0).buttons,
              QStringList({u"Save This Task Only"_qs, u"Save All Future Tasks"_qs, u"Cancel"_qs}));
}

} // namespace

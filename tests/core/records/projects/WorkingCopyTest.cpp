#include "CoreTest.h"

#include "records/DatePickerState.h"
#include "records/MVProject.h"
#include "records/dates/MVDate.h"

namespace {

class ProjectCopy : public CoreTest
{
protected:
    ContactPtr contact(const QString &first, const QString &last)
    {
        const auto one = context().insert<EntityContacts>();
        one->setFirstName(first);
        one->setLastName(last);
        return one;
    }
};

TEST_F(ProjectCopy, WritesEveryFieldToOneRow)
{
    const TaskPtr task = add(u"task"_qs);
    MVProject copy = MVProject::startEntityProjectValue();
    EXPECT_EQ(copy.category, EntityCategory::getCustom());
    EXPECT_FALSE(copy.startDate || copy.dueDate || copy.project());
    copy.title = u"House"_qs;
    copy.details = u"roof"_qs;
    copy.priority = Priority::Medium;
    copy.rowIndex = 4;
    copy.startDate = localDate(2026, 11, 1);
    copy.dueDate = localDate(2026, 11, 30, 23, 59, 59);
    copy.expirationDate = localDate(2026, 11, 3);
    copy.category = EntityCategory::title(u"Work"_qs);
    copy.delegateToUser = {contact(u"Ann"_qs, u"Lee"_qs)};
    copy.task = {task};
    copy.save();
    EXPECT_TRUE(copy.isNewProject());
    const ProjectPtr row = copy.project();
    EXPECT_EQ(row->creationDate(), Clock::now());
    EXPECT_EQ(task->project(), row);
    EXPECT_EQ(row->status(), TaskStatus::Open);
    EXPECT_EQ(row->stage(), 0);
    copy.save();
    EXPECT_FALSE(copy.isNewProject());
    EXPECT_EQ(copy.project(), row);

    const MVProject read(row);
    EXPECT_EQ(read.title, u"House"_qs);
    EXPECT_EQ(read.details, u"roof"_qs);
    EXPECT_EQ(read.priority, Priority::Medium);
    EXPECT_EQ(read.rowIndex, 4);
    EXPECT_EQ(read.startDate, copy.startDate);
    EXPECT_EQ(read.dueDate, copy.dueDate);
    EXPECT_EQ(read.expirationDate, copy.expirationDate);
    EXPECT_EQ(read.creationDate, Clock::now());
    EXPECT_EQ(read.category, copy.category);
    EXPECT_EQ(read.delegateToUser, copy.delegateToUser);
    EXPECT_EQ(read.task, copy.task);
}

TEST_F(ProjectCopy, KeepsWhatItHoldsUntilItIsRolledBack)
{
    const auto row = context().insert<EntityProject>();
    row->setTitle(u"stored"_qs);
    row->setStatus(TaskStatus::InProgress);
    MVProject copy;
    copy.title = u"mine"_qs;
    copy.status = TaskStatus::Pending;
    copy.setProject(row);
    copy.details = u"dropped"_qs;
    EXPECT_EQ(copy.title, u"mine"_qs);
    EXPECT_EQ(copy.status, TaskStatus::Pending);
    copy.rollback();
    EXPECT_EQ(copy.title, u"stored"_qs);
    EXPECT_EQ(copy.status, TaskStatus::InProgress);
    EXPECT_EQ(copy.details, QString());
    MVProject blank;
    blank.title = u"kept"_qs;
    blank.rollback();
    EXPECT_EQ(blank.title, u"kept"_qs);
}

TEST_F(ProjectCopy, OrdersTasksAndMembers)
{
    MVProject copy;
    const auto done = [this](const QString &title, Date when) {
        const TaskPtr task = add(title);
        task->setStatus(TaskStatus::Done);
        task->setExpirationDate(when);
        return task;
    };
    const TaskPtr someday = add(u"someday"_qs);
    someday->setDueSomeDay(true);
    copy.task = {done(u"done later"_qs, localDate(2026, 11, 5)),
                 done(u"done first"_qs, localDate(2026, 11, 4)),
                 add(u"soon"_qs, TaskType::ToDo, {}, localDate(2026, 11, 23)),
                 someday,
                 add(u"late b"_qs, TaskType::ToDo, {}, localDate(2026, 12, 1)),
                 add(u"late a"_qs, TaskType::ToDo, {}, localDate(2026, 12, 1))};
    const std::vector<TaskPtr> open = {copy.task[5], copy.task[4], copy.task[2], someday};
    std::vector<TaskPtr> expected = DBWorker::dueDateWithSomedayArrayComparator(open);
    expected.push_back(copy.task[1]);
    expected.push_back(copy.task[0]);
    EXPECT_EQ(copy.sortedTasks(), expected);

    const ContactPtr bo = contact(u"Bo"_qs, u"Adam"_qs);
    const ContactPtr annZ = contact(u"Ann"_qs, u"Zorn"_qs);
    const ContactPtr annA = contact(u"Ann"_qs, u"Abel"_qs);
    const ContactPtr nameless = contact(QString(), u"Kay"_qs);
    copy.delegateToUser = {bo, annZ, annA, nameless};
    UserDefaults::standard().setObject(settings::contactDisplayOrder, 1);
    EXPECT_EQ(copy.sortedContacts(), std::vector<ContactPtr>({nameless, annA, annZ, bo}));
}

TEST_F(ProjectCopy, ExpiresWhileItIsDone)
{
    MVProject copy;
    copy.changeStatus(u"Done"_qs);
    EXPECT_EQ(copy.status, TaskStatus::Done);
    EXPECT_EQ(copy.expirationDate, Clock::now());
    copy.changeStatus(u"Pending"_qs);
    EXPECT_EQ(copy.status, TaskStatus::Pending);
    EXPECT_FALSE(copy.expirationDate);
    copy.changeStatus(u"nonsense"_qs);
    EXPECT_EQ(copy.status, TaskStatus::Pending);
    copy.changePriority(u"No Priority"_qs);
    EXPECT_EQ(copy.priority, Priority::None);
    copy.changePriority(u"nonsense"_qs);
    EXPECT_EQ(copy.priority, Priority::None);
}

TEST_F(ProjectCopy, PicksWholeDaysWithinEachOther)
{
    MVProject copy;
    DatePickerState start(DatePickerState::Type::StartDate);
    DatePickerState due(DatePickerState::Type::DueDate);
    DatePickerState alert(DatePickerState::Type::Alert);
    copy.datePickerMouseDown(start, true);
    EXPECT_TRUE(start.showPopover);
    copy.datePickerMouseDown(due, false);
    EXPECT_FALSE(due.showPopover);
    copy.datePickerMouseDown(alert, true);
    EXPECT_FALSE(alert.showPopover);

    copy.datePickerWillShowPopover(start);
    EXPECT_EQ(start.titlePopover, u"Edit Start Date"_qs);
    EXPECT_EQ(start.dateValue, localDate(2026, 11, 21));
    EXPECT_FALSE(start.showClock || start.showCheckBox || start.minDate || start.maxDate);
    copy.datePickerClickButtonDone(start, localDate(2026, 11, 23, 14));
    EXPECT_EQ(copy.startDate, localDate(2026, 11, 23));
    EXPECT_FALSE(start.showPopover);

    copy.datePickerWillShowPopover(due);
    EXPECT_EQ(due.titlePopover, u"Edit Due Date"_qs);
    EXPECT_EQ(due.minDate, localDate(2026, 11, 23));
    EXPECT_EQ(due.dateValue, localDate(2026, 11, 21));
    copy.datePickerClickButtonDone(due, localDate(2026, 11, 29, 2));
    EXPECT_EQ(copy.dueDate, MVDate::getEndOfDay(localDate(2026, 11, 29)));

    copy.datePickerWillShowPopover(start);
    EXPECT_EQ(start.maxDate, MVDate::getEndOfDay(localDate(2026, 11, 29)));
    EXPECT_EQ(start.dateValue, localDate(2026, 11, 23));
}

} // namespace

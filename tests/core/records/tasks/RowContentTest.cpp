#include "CoreTest.h"

#include "records/TaskRowContent.h"

namespace {

class RowContent : public CoreTest
{
protected:
    static QString label(const TaskPtr &task, ListType list = ListType::NotDone)
    {
        return TaskRowContent::of(*task, list).dateLabel;
    }
    static bool isOverdue(const TaskPtr &task, ListType list = ListType::NotDone)
    {
        return TaskRowContent::of(*task, list).isOverdue;
    }
};

TEST_F(RowContent, SaysWhenInTheWordsOfItsListAndType)
{
    const TaskPtr toDo =
        add(u"a"_qs, TaskType::ToDo, localDate(2026, 11, 22), localDate(2026, 11, 24, 23, 59));
    const TaskPtr meeting =
        add(u"b"_qs, TaskType::Appointment, localDate(2026, 11, 22, 9), localDate(2026, 11, 22, 10));
    const TaskPtr call = add(u"c"_qs, TaskType::EmailCall, {}, localDate(2026, 11, 21, 15));
    EXPECT_EQ(label(toDo), u"Due on Nov 24, 2026"_qs);
    EXPECT_EQ(label(toDo, ListType::Scheduled), u"Start Tomorrow"_qs);
    EXPECT_EQ(label(meeting), u"Due Tomorrow at 10:00\u202fAM"_qs);
    EXPECT_EQ(label(meeting, ListType::Scheduled), u"Start Tomorrow at 9:00\u202fAM"_qs);
    EXPECT_EQ(label(call), u"Start at 3:00\u202fPM"_qs);
    EXPECT_EQ(label(add(u"plain"_qs)), QString());
    toDo->setDueSomeDay(true);
    EXPECT_EQ(label(toDo), u"Due Someday"_qs);
}

TEST_F(RowContent, MarksWhatIsOverdue)
{
    const TaskPtr today = add(u"a"_qs, TaskType::ToDo, {}, localDate(2026, 11, 21));
    const TaskPtr yesterday = add(u"b"_qs, TaskType::ToDo, {}, localDate(2026, 11, 20, 23, 59));
    const TaskPtr ended =
        add(u"c"_qs, TaskType::Appointment, localDate(2026, 11, 21, 8), localDate(2026, 11, 21, 9));
    EXPECT_FALSE(isOverdue(today));
    EXPECT_TRUE(isOverdue(yesterday));
    EXPECT_TRUE(isOverdue(yesterday, ListType::Scheduled));
    EXPECT_TRUE(isOverdue(ended));
    EXPECT_FALSE(isOverdue(ended, ListType::Done));
    ended->setStatus(TaskStatus::Done);
    EXPECT_FALSE(isOverdue(ended, ListType::ProjectDetail)) << "what is done is late for nothing";
    EXPECT_FALSE(isOverdue(add(u"plain"_qs)));
}

TEST_F(RowContent, HidesWhatCannotBeChanged)
{
    const TaskPtr task = add(u"a"_qs);
    task->setPriority(Priority::High);
    EXPECT_EQ(TaskRowContent::of(*task, ListType::Inbox).priority, Priority::High);
    task->setAllowsContentModifications(false);
    const TaskRowContent content = TaskRowContent::of(*task, ListType::Inbox);
    EXPECT_FALSE(content.hasCheckBox);
    EXPECT_EQ(content.priority, Priority::None);
}

} // namespace

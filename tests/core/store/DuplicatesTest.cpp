#include "CoreTest.h"

namespace {

class Duplicates : public CoreTest
{
protected:
    template <typename T>
    int count(const QString &title)
    {
        return context().count(T::fetchRequest().where(Predicate::format("title = %@", title)));
    }
    CategoryPtr category(Date created, int index)
    {
        const auto made = context().insert<EntityCategory>();
        made->setTitle(u"Garden"_qs);
        made->setIndex(index);
        made->setCreationDate(created);
        return made;
    }
    TaskPtr copy(const QString &title, TaskType type, OptionalDate start, OptionalDate due, Date created)
    {
        const TaskPtr task = add(title, type, start, due);
        task->setCreationDate(created);
        return task;
    }
};

TEST_F(Duplicates, OfCategoriesJoinInTheNewestWithAllTheirTasks)
{
    const CategoryPtr older = category(localDate(2026, 1, 1), 7);
    const CategoryPtr newer = category(localDate(2026, 2, 1), 9);
    const TaskPtr one = add(u"one"_qs);
    one->setCategory(older);
    const TaskPtr other = add(u"other"_qs);
    other->setCategory(newer);
    delegate->deleteDuplicateCategoryWith(older);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(count<EntityCategory>(u"Garden"_qs), 1);
    EXPECT_EQ(one->category(), newer);
    EXPECT_EQ(other->category(), newer);
    EXPECT_EQ(newer->index(), 7);

    // On a tie the one that was asked for stays.
    const CategoryPtr tied = category(localDate(2026, 2, 1), 20);
    delegate->deleteDuplicateCategoryWith(tied);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(one->category(), tied);
    EXPECT_EQ(tied->index(), 7);
}

TEST_F(Duplicates, LeaveNoChildBehindWithARowThatLostAlready)
{
    // The row of February loses to that of March, and still beats that of January.
    const CategoryPtr row = category(localDate(2026, 2, 1), 7);
    const CategoryPtr newest = category(localDate(2026, 3, 1), 8);
    const CategoryPtr oldest = category(localDate(2026, 1, 1), 9);
    const TaskPtr one = add(u"one"_qs);
    one->setCategory(row);
    const TaskPtr other = add(u"other"_qs);
    other->setCategory(oldest);
    delegate->deleteDuplicateCategoryWith(row);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(count<EntityCategory>(u"Garden"_qs), 1);
    EXPECT_EQ(one->category(), newest);
    EXPECT_EQ(other->category(), newest);

    const Date nine = localDate(2026, 11, 25, 9);
    const TaskPtr task = copy(u"call"_qs, TaskType::EmailCall, {}, nine, localDate(2026, 2, 1));
    const TaskPtr older = copy(u"call"_qs, TaskType::EmailCall, {}, nine, localDate(2026, 1, 1));
    copy(u"call"_qs, TaskType::EmailCall, {}, nine, localDate(2026, 3, 1));
    older->setRepeat(u"RRULE FREQ=DAILY"_qs);
    delegate->deleteDuplicateTaskTypeWith(task);
    EXPECT_TRUE(older->repeat().isEmpty()) << "what is left is put on the calendar, as a task of its own";
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(DBWorker::getFirstTaskByTitle(u"call"_qs), older);
}

TEST_F(Duplicates, OfTypesAndContactCategoriesGoAlike)
{
    const auto type = context().insert<EntityPhoneType>();
    type->setTitle(u"home"_qs);
    type->setCreationDate(localDate(2027, 1, 1));
    const auto phone = context().insert<EntityPhone>();
    phone->setType(EntityPhoneType::allTypes().first());
    delegate->deleteDuplicatePhoneTypeWith(type);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(count<EntityPhoneType>(u"home"_qs), 1);
    EXPECT_EQ(phone->type(), type);
}

TEST_F(Duplicates, OfTasksAreFoundByTypeAndKeepTheOlderOne)
{
    const Date morning = localDate(2026, 11, 25, 9);
    const Date noon = localDate(2026, 11, 25, 12);
    const Date january = localDate(2026, 1, 1);
    const Date february = localDate(2026, 2, 1);
    // A ToDo at another time of the same day is one; an Appointment a minute later is none.
    const TaskPtr older = copy(u"call"_qs, TaskType::ToDo, morning, noon, january);
    const TaskPtr newer = copy(u"call"_qs, TaskType::ToDo, noon, localDate(2026, 11, 25, 23, 59), february);
    older->setDetails(u"about the keys"_qs);
    newer->setDetails(u"ask for Ann"_qs);
    copy(u"meet"_qs, TaskType::Appointment, morning, noon, january);
    const TaskPtr later = copy(u"meet"_qs, TaskType::Appointment, morning + Seconds(60), noon, february);
    delegate->deleteDuplicateTaskTypeWith(newer);
    delegate->deleteDuplicateTaskTypeWith(later);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(count<EntityTask>(u"call"_qs), 1);
    EXPECT_EQ(older->title(), u"call"_qs);
    EXPECT_EQ(older->details(), u"about the keys\nask for Ann"_qs) << "no words go with the double";
    EXPECT_EQ(count<EntityTask>(u"meet"_qs), 2);

    // ToDos without dates have none; a category decides before the age; a row without a date of creation
    // loses.
    copy(u"plain"_qs, TaskType::ToDo, {}, {}, january);
    delegate->deleteDuplicateTaskTypeWith(copy(u"plain"_qs, TaskType::ToDo, {}, {}, february));
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(count<EntityTask>(u"plain"_qs), 2);
    const TaskPtr filed = copy(u"call"_qs, TaskType::ToDo, noon, noon, february);
    filed->setCategory(EntityCategory::title(u"Work"_qs));
    filed->setCreationDate(std::nullopt);
    delegate->deleteDuplicateTaskTypeWith(older);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(context().fetchFirst<EntityTask>(
                  EntityTask::fetchRequest().where(Predicate::format("title = %@", u"call"_qs))),
              filed);
}

TEST_F(Duplicates, AreRemovedFromWhatIsImported)
{
    const TaskPtr mine =
        copy(u"call"_qs, TaskType::EmailCall, {}, localDate(2026, 11, 25, 9), localDate(2026, 1, 1));
    const TaskPtr theirs =
        copy(u"call"_qs, TaskType::EmailCall, {}, localDate(2026, 11, 25, 9), localDate(2026, 2, 1));
    StoreChanges imported;
    imported.inserted = {theirs};
    delegate->mergeChanges(imported);
    EXPECT_EQ(count<EntityTask>(u"call"_qs), 1);
    EXPECT_EQ(mine->context(), &context());
}

} // namespace

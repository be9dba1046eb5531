#include "CoreTest.h"

#include "foundation/UserDefaults.h"
#include "records/Categories.h"
#include "store/entities/MainContext.h"
#include "store/state/SettingsKeys.h"

#include <random>

namespace {

class CategoriesTest : public CoreTest
{
protected:
    CategoriesTest()
    {
        const std::vector<CategoryPtr> seeded = DBWorker::allCategories();
        EXPECT_FALSE(seeded.empty());
        builtIn = static_cast<int>(seeded.size());
    }
    static CategoryPtr addNext(const QString &title)
    {
        const auto color = Categories::next();
        EXPECT_TRUE(color);
        return color ? Categories::add(title, *color) : nullptr;
    }
    static QStringList shownTitles()
    {
        QStringList titles;
        for (const CategoryPtr &category : Categories::rows())
            titles.append(Categories::shownTitle(category));
        return titles;
    }
    TaskPtr addTask(const QString &title, const CategoryPtr &category)
    {
        const TaskPtr task = add(title);
        task->setCategory(category);
        EXPECT_FALSE(DBWorker::saveContext());
        return task;
    }

    int builtIn = 0;
};

TEST_F(CategoriesTest, ANewOneTakesTheLowestFreeColourUpToTwenty)
{
    const CategoryPtr first = addNext(u"Garden"_qs);
    const CategoryPtr second = addNext(u"Travel"_qs);
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->index(), 6);
    EXPECT_NEAR(*first->colorR(), 218 / 255.0, 1e-9);
    EXPECT_EQ(second->index(), 7);
    EXPECT_EQ(addNext(u"Travel"_qs), nullptr) << "a title that is taken";
    EXPECT_EQ(addNext(QString()), nullptr);
    EXPECT_TRUE(Categories::remove(first));
    EXPECT_EQ(addNext(u"Again"_qs)->index(), 6) << "the lowest that is free";
    EXPECT_FALSE(mainContext().hasChanges());

    for (int number = 0; Categories::canAdd(); ++number)
        ASSERT_NE(addNext(u"Filler %1"_qs.arg(number)), nullptr);
    EXPECT_EQ(DBWorker::allCategories().size(), std::size_t(Categories::most));
    EXPECT_FALSE(Categories::next());
}

TEST_F(CategoriesTest, BuiltInOnesStayAsTheyAre)
{
    const CategoryPtr general = EntityCategory::title(u"General"_qs);
    ASSERT_TRUE(general);
    EXPECT_TRUE(Categories::isBuiltIn(*general));
    EXPECT_FALSE(Categories::rename(general, u"Other"_qs));
    EXPECT_FALSE(Categories::remove(general));
    EXPECT_FALSE(Categories::remove(nullptr));
    EXPECT_EQ(static_cast<int>(DBWorker::allCategories().size()), builtIn);

    const CategoryPtr own = addNext(u"Garden"_qs);
    EXPECT_FALSE(Categories::rename(own, u"General"_qs));
    EXPECT_FALSE(Categories::rename(own, QString()));
    EXPECT_TRUE(Categories::rename(own, u"Allotment"_qs));
    EXPECT_EQ(own->title(), u"Allotment"_qs);
}

TEST_F(CategoriesTest, ARemovedOneLeavesItsTasksAndProjectsToGeneral)
{
    const CategoryPtr general = EntityCategory::title(u"General"_qs);
    const CategoryPtr own = addNext(u"Garden"_qs);
    const TaskPtr task = addTask(u"Dig"_qs, own);
    const auto project = mainContext().insert<EntityProject>();
    project->setTitle(u"Pond"_qs);
    project->setCategory(own);
    EXPECT_TRUE(Categories::remove(own));
    EXPECT_EQ(task->category(), general);
    EXPECT_EQ(project->category(), general);

    const CategoryPtr other = addNext(u"Travel"_qs);
    task->setCategory(other);
    mainContext().deleteObject(general);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_TRUE(Categories::remove(other));
    EXPECT_EQ(task->category(), nullptr);
}

TEST_F(CategoriesTest, RowsCountTheirOpenTasks)
{
    const CategoryPtr own = addNext(u"Garden"_qs);
    const TaskPtr dig = addTask(u"Dig"_qs, own);
    addTask(u"Water"_qs, own);
    addTask(u"Loose"_qs, nullptr);
    EXPECT_EQ(Categories::openTaskCount(own), 2);
    EXPECT_EQ(Categories::openTaskCount(nullptr), 1);
    dig->setStatus(TaskStatus::Done);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(Categories::openTaskCount(own), 1);
    ASSERT_EQ(Categories::tasks(own).size(), 1);
    EXPECT_EQ(Categories::tasks(own).first()->title(), u"Water"_qs);
    ASSERT_EQ(Categories::tasks(nullptr).size(), 1);

    EXPECT_EQ(Categories::shown(), Categories::Shown::All);
    EXPECT_EQ(shownTitles().last(), u"None"_qs);
    Categories::setShown(Categories::Shown::WithTasks);
    EXPECT_EQ(shownTitles(), QStringList({u"Garden"_qs, u"None"_qs}));
    Categories::setShown(Categories::Shown::WithoutTasks);
    EXPECT_FALSE(shownTitles().contains(u"Garden"_qs));
    EXPECT_EQ(UserDefaults::standard().integer(settings::selectSortCategoryIndex), 1);
}

TEST_F(CategoriesTest, TheirGeneratedTasksComeInTheOrderOfThePlainList)
{
    const CategoryPtr own = addNext(u"Garden"_qs);
    std::mt19937 random(testSeed());
    const auto day = [&random] { return localDate(2026, 11, 1 + static_cast<int>(random() % 28), 12); };
    for (int number = 0; number < 60; ++number) {
        const TaskPtr task = addTask(u"Task %1"_qs.arg(random() % 20), random() % 5 ? own : nullptr);
        task->setType(static_cast<TaskType>(random() % 3));
        task->setStatus(static_cast<TaskStatus>(random() % 4));
        if (random() % 4)
            task->setDueDate(day());
        if (random() % 3)
            task->setStartDate(day());
        task->setDueSomeDay(random() % 6 == 0);
        // No two are alike, so that no order is left open.
        task->setTitle(task->title() + u" (%1)"_qs.arg(number));
    }
    EXPECT_FALSE(DBWorker::saveContext());
    QStringList plain;
    for (const TaskPtr &task : own->tasksSorts())
        plain.append(task->title());
    QStringList shown;
    for (const TaskPtr &task : Categories::tasks(own))
        shown.append(task->title());
    EXPECT_GT(plain.size(), 20);
    EXPECT_EQ(shown, plain);
}

TEST_F(CategoriesTest, OneAtMostIsTheDefault)
{
    const CategoryPtr former = EntityCategory::getCustom();
    const CategoryPtr own = addNext(u"Garden"_qs);
    Categories::setDefault(own);
    EXPECT_EQ(EntityCategory::getCustom(), own);
    EXPECT_TRUE(!former || !former->defaultCategory().value_or(false));
    Categories::setDefault(nullptr);
    EXPECT_EQ(EntityCategory::getCustom(), nullptr);
    EXPECT_FALSE(own->defaultCategory().value_or(false));
}

} // namespace

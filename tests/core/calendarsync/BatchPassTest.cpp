// Work on many tasks of which each one would ask for a pass over the calendars.

#include "CalendarTest.h"

#include "records/TaskBatch.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

class BatchPass : public CalendarTest
{
protected:
    BatchPass()
    {
        UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
        for (const QString &title : {u"Run"_qs, u"Swim"_qs})
            write(
                u"Home"_qs, title,
                u"SUMMARY:%1\nDTSTART:20261123T090000Z\nDTEND:20261123T100000Z\nRRULE:FREQ=DAILY;COUNT=4\n"_qs
                    .arg(title));
        pass();
    }
    static std::vector<TaskPtr> rowsOf(const QString &title)
    {
        std::vector<TaskPtr> found = rows();
        std::erase_if(found, [&](const TaskPtr &row) { return row->title() != title; });
        return found;
    }
    static QList<int> prioritiesOf(const QString &title)
    {
        QList<int> found;
        for (const TaskPtr &row : rowsOf(title))
            found.append(numberOf(row->priority()).value_or(-1));
        return found;
    }
    /// Between two steps an event comes from elsewhere, which only a pass brings to the rows.
    StepBlock writingElsewhere()
    {
        return [this] {
            EXPECT_EQ(rowsOf(u"New"_qs).size(), 0) << "a pass for each task";
            write(u"Work"_qs, u"new"_qs,
                  u"SUMMARY:New\nDTSTART:20261124T120000Z\nDTEND:20261124T130000Z\n"_qs);
            return true;
        };
    }
};

TEST_F(BatchPass, DeletedOccurrencesShareOne)
{
    const std::vector<TaskPtr> run = rowsOf(u"Run"_qs);
    const std::vector<TaskPtr> swim = rowsOf(u"Swim"_qs);
    ASSERT_EQ(run.size(), 4);
    const ScriptedAlerts alerts({Alert::firstButton});
    TaskManager::deleteTasks({run[0], run[1], swim[0], run[2]}, {}, writingElsewhere());
    EXPECT_THAT(rowsOf(u"Run"_qs), ElementsAre(run[3]));
    EXPECT_TRUE(run[3]->repeat().isEmpty()) << "a series of one is none";
    EXPECT_THAT(rowsOf(u"Swim"_qs), ElementsAre(swim[1], swim[2], swim[3]));
    EXPECT_EQ(rowsOf(u"New"_qs).size(), 1) << "one pass at the end";
    EXPECT_FALSE(mainContext().hasChanges());
    expectSettled();
}

TEST_F(BatchPass, SeriesThatAreEditedOnwardsShareOne)
{
    const std::vector<TaskPtr> run = rowsOf(u"Run"_qs);
    const std::vector<TaskPtr> swim = rowsOf(u"Swim"_qs);
    const CategoryPtr category = EntityCategory::title(u"Work"_qs);
    for (const TaskPtr &row : swim)
        row->setCategory(category);
    const ScriptedAlerts alerts({Alert::secondButton});
    TaskBatch::setPriority({run[0], run[2], swim[3], swim[1]}, Priority::Medium, writingElsewhere());
    EXPECT_EQ(prioritiesOf(u"Run"_qs), QList({1, 1, 1, 1}));
    EXPECT_EQ(prioritiesOf(u"Swim"_qs).mid(1), QList({1, 1, 1}));
    for (const TaskPtr &row : rowsOf(u"Swim"_qs))
        EXPECT_EQ(row->category(), category);
    EXPECT_EQ(rowsOf(u"New"_qs).size(), 1);
    EXPECT_FALSE(mainContext().hasChanges());
    expectSettled();
}

} // namespace

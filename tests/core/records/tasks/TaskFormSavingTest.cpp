// A form of which the store takes nothing for a while.

#include "CoreTest.h"
#include "records/TaskFormState.h"
#include "store/state/NotificationNames.h"
#include "support/FullDisk.h"

#include <sqlite3.h>

using namespace Qt::Literals::StringLiterals;

namespace {

class TaskFormSavingTest : public CoreTest
{
protected:
    static int rows() { return static_cast<int>(DBWorker::getAllTasks().size()); }

    const LogCapture log;
};

} // namespace

TEST_F(TaskFormSavingTest, AnEditThatCouldNotBeStoredIsStoredByTheNextTry)
{
    const TaskPtr row = add(u"paint"_s);
    TaskFormState form(row);
    form.setTitle(u"varnish"_s);
    {
        const FullDisk full;
        EXPECT_EQ(form.finishEdit(), TaskFormState::EditEnd::Refused);
        EXPECT_EQ(form.finishEdit(), TaskFormState::EditEnd::Refused) << "nothing has been stored yet";
        EXPECT_EQ(form.currentTask().title, u"varnish"_s);
    }
    EXPECT_EQ(form.finishEdit(), TaskFormState::EditEnd::Saved);
    EXPECT_FALSE(context().hasChanges());
    EXPECT_EQ(form.finishEdit(), TaskFormState::EditEnd::Unchanged);
    quit();
    launch();
    EXPECT_TRUE(DBWorker::getFirstTaskByTitle(u"varnish"_s));
}

TEST_F(TaskFormSavingTest, ANewTaskThatCouldNotBeStoredIsNoneUntilTheNextTry)
{
    int added = 0;
    const Observation observation = NotificationCenter::defaultCenter().addObserver(
        notifications::coreDataAddNewTask, [&added] { ++added; });
    TaskFormState form(NewTaskRequest{.createWithStartDate = localDate(2026, 11, 23, 9),
                                      .createWithDueDate = localDate(2026, 11, 23, 10)});
    form.setTitle(u"fresh"_s);
    form.setRepeatPreset(RepeatPicker::EveryWeek);
    {
        const FullDisk full;
        EXPECT_FALSE(form.save());
    }
    EXPECT_EQ(rows(), 0);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(rows(), 0) << "the user may have given it up by then";
    EXPECT_EQ(added, 0);
    EXPECT_TRUE(form.save());
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(added, 1);
    EXPECT_EQ(form.currentTask().task()->title(), u"fresh"_s);
    EXPECT_FALSE(form.currentTask().task()->repeat().isEmpty());
}

TEST_F(TaskFormSavingTest, ARowThatAnotherProgramDeletedIsGoneForTheForm)
{
    TaskFormState form(add(u"paint"_s));
    EXPECT_FALSE(form.isGone());
    sqlite3 *other = nullptr;
    ASSERT_EQ(sqlite3_open(storePath().toUtf8().constData(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "DELETE FROM EntityTask", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(other);
    EXPECT_EQ(rows(), 0);
    EXPECT_TRUE(form.isGone());
}

TEST_F(TaskFormSavingTest, ADoneDateThatWasThereSurvivesARefusedTick)
{
    const TaskPtr row = add(u"paint"_s, TaskType::Appointment, localDate(2026, 11, 23, 9));
    row->setExpirationDate(localDate(2026, 11, 1));
    EXPECT_FALSE(DBWorker::saveContext());
    const ScriptedAlerts alerts({Alert::firstButton});
    MVTask copy(row);
    copy.changeStatusType(TaskStatus::Done, true);
    EXPECT_EQ(alerts.asked().size(), 1u) << "an appointment needs a due date";
    EXPECT_EQ(row->status(), TaskStatus::Open);
    EXPECT_EQ(row->expirationDate(), localDate(2026, 11, 1));
}

// A new task is written down.

#include "records/Categories.h"
#include "records/FormView.h"
#include "records/dates/MVDate.h"
#include "store/state/NotificationNames.h"
#include "ui/support/ShellTest.h"
#include "widgets/DatePicker.h"
#include "widgets/GrowingTextField.h"
#include "widgets/RowItemView.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QPushButton>

using namespace Qt::Literals::StringLiterals;

class NewTaskTest : public ShellTest
{
protected:
    static void type(const QString &text) { QTest::keyClicks(QApplication::focusWidget(), text); }
    static void chooseType(WindowNewTask &form, int index)
    {
        auto &popUp = find<QComboBox>(form, "popUpButtonType");
        popUp.setFocus();
        QTest::keyClick(&popUp, Qt::Key_Home);
        for (int step = 0; step < index; ++step)
            QTest::keyClick(&popUp, Qt::Key_Down);
    }
    static DatePicker &startOf(WindowNewTask &form) { return find<DatePicker>(form, "datePickerStartDate"); }
    static DatePicker &dueOf(WindowNewTask &form) { return find<DatePicker>(form, "datePickerDueDate"); }
};

TEST_F(NewTaskTest, TypingATitleAndReturnPutsItIntoTheInbox)
{
    showList(SidebarItem::Inbox);
    openNewTask();
    type(u"Buy bread"_s);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(inboxTitles(), QStringList{u"Buy bread"_s});
    EXPECT_TRUE(QTest::qWaitFor([&] { return !newTaskWindow() && shownTitles().size() == 1; }));
}

TEST_F(NewTaskTest, TheListItIsMadeFromDecidesWithWhatItBegins)
{
    struct Case
    {
        SidebarItem list;
        OptionalDate start;
        OptionalDate due;
        bool isSomeday;
    };
    const std::vector<Case> cases = {
        {SidebarItem::Inbox, {}, {}, false},
        {SidebarItem::Today, localDate(2026, 11, 21), localDate(2026, 11, 21, 23, 59, 59), false},
        {SidebarItem::Scheduled, localDate(2026, 11, 22), localDate(2026, 11, 22, 23, 59, 59), false},
        {SidebarItem::Someday, {}, {}, true},
        {SidebarItem::NotDone, {}, {}, false},
    };
    for (const Case &expected : cases) {
        showList(expected.list);
        WindowNewTask &form = openNewTask();
        const MVTask &task = form.taskForm()->currentTask();
        EXPECT_EQ(task.startDate, expected.start);
        EXPECT_EQ(task.dueDate, expected.due);
        EXPECT_EQ(task.dueSomeDay.value_or(false), expected.isSomeday);
        EXPECT_EQ(find<RowItemView>(form, "rowStartDate").isRowHidden(), expected.isSomeday);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !newTaskWindow(); }));
    }
}

TEST_F(NewTaskTest, SavingNeedsATitleAndClosingAsksOnlyWhenSomethingWasTyped)
{
    WindowNewTask &form = openNewTask();
    EXPECT_FALSE(find<QPushButton>(form, "buttonSave").isEnabled());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(form.isVisible());
    type(u"x"_s);
    EXPECT_TRUE(find<QPushButton>(form, "buttonSave").isEnabled());
    ScriptedAlerts alerts({Alert::secondButton, Alert::thirdButton});
    QTest::keyClick(&form, Qt::Key_Escape);
    EXPECT_TRUE(form.isVisible());
    QTest::mouseClick(&find<QPushButton>(form, "buttonClose"), Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !newTaskWindow(); }));
    ASSERT_EQ(alerts.asked().size(), 2U);
    EXPECT_EQ(alerts.asked().front().buttons, (QStringList{u"Save"_s, u"Cancel"_s, u"Don't Save"_s}));
    EXPECT_EQ(stored(u"x"_s), nullptr);
}

TEST_F(NewTaskTest, AnsweringTheQuestionWithSaveStoresTheTask)
{
    openNewTask();
    type(u"kept"_s);
    ScriptedAlerts alerts({Alert::firstButton});
    QTest::keyClick(newTaskWindow(), Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !newTaskWindow(); }));
    EXPECT_NE(stored(u"kept"_s), nullptr);
}

TEST_F(NewTaskTest, AnotherTypeClearsTheDatesAndShowsTheRowsOfThatType)
{
    showList(SidebarItem::Today);
    WindowNewTask &form = openNewTask();
    chooseType(form, 2);
    const MVTask &task = form.taskForm()->currentTask();
    EXPECT_TRUE(task.isEmailCall());
    EXPECT_FALSE(task.startDate);
    EXPECT_FALSE(task.dueDate);
    EXPECT_TRUE(find<RowItemView>(form, "rowStartDate").isRowHidden());
    EXPECT_EQ(dueOf(form).accessibleName(), u"Start Date"_s);
    chooseType(form, 1);
    EXPECT_FALSE(find<RowItemView>(form, "rowStartDate").isRowHidden());
    EXPECT_EQ(dueOf(form).accessibleName(), u"Due Date"_s);
    const ScriptedAlerts alerts({Alert::thirdButton});
    form.close();
}

TEST_F(NewTaskTest, ADateIsPickedByTheKeysAlone)
{
    showList(SidebarItem::Inbox);
    WindowNewTask &form = openNewTask();
    type(u"dated"_s);
    startOf(form).setFocus();
    QTest::keyClick(&startOf(form), Qt::Key_Space);
    QWidget *bubble = QApplication::activePopupWidget();
    ASSERT_NE(bubble, nullptr);
    QTest::keyClick(bubble->focusWidget(), Qt::Key_Down);
    QTest::keyClick(bubble->focusWidget(), Qt::Key_Right);
    QTest::keyClick(bubble->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(form.taskForm()->currentTask().startDate, localDate(2026, 11, 29));
    startOf(form).setFocus();
    QTest::keyClick(&startOf(form), Qt::Key_Delete);
    EXPECT_FALSE(form.taskForm()->currentTask().startDate);
    const ScriptedAlerts alerts({Alert::thirdButton});
    form.close();
}

TEST_F(NewTaskTest, DueSomedayHidesTheStartAndAnotherStartTakesItBack)
{
    WindowNewTask &form = openNewTask();
    dueOf(form).setFocus();
    QTest::keyClick(&dueOf(form), Qt::Key_Space);
    QWidget *bubble = QApplication::activePopupWidget();
    ASSERT_NE(bubble, nullptr);
    for (QAbstractButton *button : bubble->findChildren<QAbstractButton *>()) {
        if (button->isCheckable())
            QTest::keyClick(button, Qt::Key_Space);
    }
    EXPECT_TRUE(form.taskForm()->isSomeday());
    EXPECT_TRUE(find<RowItemView>(form, "rowStartDate").isRowHidden());
    EXPECT_EQ(dueOf(form).text(), u"Someday"_s);
    QTest::keyClick(&dueOf(form), Qt::Key_Delete);
    EXPECT_FALSE(form.taskForm()->isSomeday());
    EXPECT_FALSE(find<RowItemView>(form, "rowStartDate").isRowHidden());
    const ScriptedAlerts alerts({Alert::thirdButton});
    form.close();
}

TEST_F(NewTaskTest, TheStartOfAnAppointmentOpensTheBubbleOfItsEnd)
{
    WindowNewTask &form = openNewTask();
    chooseType(form, 1);
    startOf(form).setFocus();
    QTest::keyClick(&startOf(form), Qt::Key_Space);
    QTest::keyClick(QApplication::activePopupWidget()->focusWidget(), Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] {
        QWidget *bubble = QApplication::activePopupWidget();
        return bubble && bubble->parent() == &dueOf(form);
    }));
    QTest::keyClick(QApplication::activePopupWidget()->focusWidget(), Qt::Key_Return);
    const MVTask &task = form.taskForm()->currentTask();
    ASSERT_TRUE(task.startDate && task.dueDate);
    EXPECT_EQ(*task.dueDate - *task.startDate, Seconds(3600));
    const ScriptedAlerts alerts({Alert::thirdButton});
    form.close();
}

TEST_F(NewTaskTest, RowsThatAppearMakeTheWindowHigher)
{
    showList(SidebarItem::Inbox);
    WindowNewTask &form = openNewTask();
    const int before = form.height();
    EXPECT_GT(before, form.findChild<FormView *>()->sizeHint().height())
        << "all rows are in sight from the beginning";
    DatePickerState picker = form.taskForm()->openPicker(DatePickerState::Type::StartDate);
    form.taskForm()->acceptDate(picker, localDate(2026, 11, 23));
    ASSERT_LT(before + 40, form.screen()->availableGeometry().height());
    EXPECT_TRUE(QTest::qWaitFor([&] { return form.height() > before; }));
    const ScriptedAlerts alerts({Alert::thirdButton});
    form.close();
}

TEST_F(NewTaskTest, AProjectOutsideTheDatesIsRefusedAndThePopUpFallsBack)
{
    for (const auto &[title, day] : {std::pair(u"now"_s, 1), std::pair(u"later"_s, 30)}) {
        const auto project = context().insert<EntityProject>();
        project->setTitle(title);
        project->setStatus(TaskStatus::Open);
        project->setStartDate(localDate(2026, 11, day));
    }
    EXPECT_FALSE(DBWorker::saveContext());
    showList(SidebarItem::Today);
    WindowNewTask &form = openNewTask();
    auto &popUp = find<QComboBox>(form, "popUpButtonProject");
    const auto choose = [&](const QString &title) {
        popUp.setFocus();
        popUp.showPopup();
        QTest::keyClicks(popUp.view(), title);
        QTest::keyClick(popUp.view(), Qt::Key_Return);
    };
    choose(u"now"_s);
    EXPECT_EQ(popUp.currentText(), u"now"_s);
    const ScriptedAlerts alerts({Alert::firstButton, Alert::thirdButton});
    choose(u"later"_s);
    EXPECT_EQ(popUp.currentText(), u"now"_s);
    EXPECT_EQ(form.taskForm()->currentTask().project->title(), u"now"_s);
    QTest::keyClick(&popUp, Qt::Key_Delete);
    EXPECT_EQ(popUp.currentIndex(), 0);
    EXPECT_EQ(form.taskForm()->currentTask().project, nullptr);
    form.close();
}

TEST_F(NewTaskTest, ThePopUpsOfferWhatIsMadeAndRenamedMeanwhile)
{
    WindowNewTask &form = openNewTask();
    type(u"draft"_s);
    auto &popUp = find<QComboBox>(form, "popUpButtonProject");
    const auto project = context().insert<EntityProject>();
    project->setTitle(u"House"_s);
    project->setStatus(TaskStatus::Open);
    EXPECT_FALSE(DBWorker::saveContext());
    ASSERT_GE(popUp.findText(u"House"_s), 0);
    project->setTitle(u"Garden"_s);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_LT(popUp.findText(u"House"_s), 0);
    EXPECT_GE(popUp.findText(u"Garden"_s), 0);
    auto &categories = find<QComboBox>(form, "popUpButtonCategory");
    const int count = categories.count();
    categories.setCurrentIndex(count - 1);
    Q_EMIT categories.activated(count - 1);
    const QString chosen = categories.currentText();
    ASSERT_TRUE(Categories::add(u"AAA"_s, *Categories::next()));
    EXPECT_EQ(categories.count(), count + 1);
    EXPECT_EQ(categories.currentText(), chosen) << "what is chosen stays so";
    EXPECT_EQ(form.taskForm()->currentTask().title, u"draft"_s);
    const ScriptedAlerts alerts({Alert::thirdButton});
    form.close();
}

TEST_F(NewTaskTest, TheWindowIsNeverDoubled)
{
    WindowNewTask &form = openNewTask();
    type(u"draft"_s);
    controller().showNewTask({});
    EXPECT_EQ(newTaskWindow(), &form);
    EXPECT_EQ(form.taskForm()->currentTask().title, u"draft"_s);
    const ScriptedAlerts alerts({Alert::secondButton, Alert::thirdButton});
    window().close();
    EXPECT_TRUE(window().isVisible()) << "what was typed is not to stay behind alone";
    window().close();
    EXPECT_FALSE(window().isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !newTaskWindow(); }));
}

TEST_F(NewTaskTest, TheMenuTakesWhatTheListGivesAndElsewhereToday)
{
    controller().showList(SidebarItem::Projects);
    const MVTask *task = &openNewTask().taskForm()->currentTask();
    EXPECT_EQ(task->type, TaskType::ToDo);
    EXPECT_EQ(task->startDate, localDate(2026, 11, 21));
    EXPECT_EQ(task->dueDate, MVDate::getEndOfDay(localDate(2026, 11, 21)));
    delete newTaskWindow();
    showList(SidebarItem::Inbox);
    task = &openNewTask().taskForm()->currentTask();
    EXPECT_EQ(task->startDate, OptionalDate());
    EXPECT_EQ(task->dueDate, OptionalDate());
}

TEST_F(NewTaskTest, AMarkInACalendarOpensTheWindowWithItsDates)
{
    const MarkedSpan hour = {localDate(2026, 11, 23, 10), localDate(2026, 11, 23, 11)};
    const MarkedSpan days = {localDate(2026, 11, 24), localDate(2026, 11, 25, 23, 59, 59)};
    const auto post = [this](NotificationName<MarkedSpan> name, const MarkedSpan &span) {
        NotificationCenter::defaultCenter().post(name, span);
        return newTaskWindow() ? &newTaskWindow()->taskForm()->currentTask() : nullptr;
    };
    const MVTask *task = post(notifications::dayCalendarCreateTask, hour);
    ASSERT_NE(task, nullptr);
    EXPECT_EQ(task->type, TaskType::Appointment);
    EXPECT_EQ(task->startDate, hour.start);
    EXPECT_EQ(task->dueDate, hour.due);
    // One that is open is only brought to the front.
    EXPECT_EQ(post(notifications::allDayCalendarCreateTask, days)->startDate, hour.start);
    delete newTaskWindow();
    task = post(notifications::allDayCalendarCreateTask, days);
    ASSERT_NE(task, nullptr);
    EXPECT_EQ(task->type, TaskType::ToDo);
    EXPECT_EQ(task->dueDate, days.due);
    delete newTaskWindow();
    window().close();
    EXPECT_EQ(post(notifications::dayCalendarCreateTask, hour), nullptr);
}

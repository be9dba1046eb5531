// A task is looked at and edited in the pane that slides in over its list.

#include "calendarsync/CalendarEvent.h"
#include "records/DetailStack.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "ui/support/ShellTest.h"
#include "widgets/DatePicker.h"
#include "widgets/GrowingTextField.h"
#include "widgets/RowItemView.h"
#include "workspace/Workspace.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

class TaskDetailTest : public ShellTest
{
protected:
    DetailStack &stack() { return *controller().detailStack(); }
    TaskDetailViewController &pane() { return *static_cast<TaskDetailViewController *>(stack().top()); }
    QPushButton &buttonEdit() { return find<QPushButton>(pane(), "buttonEdit"); }
    GrowingTextField &title() { return find<GrowingTextField>(pane(), "textFieldTitle"); }
    bool isShown(const char *row) { return !find<RowItemView>(pane(), row).isRowHidden(); }
    /// Two presses, as a window gets them.
    void doubleClickRow(int row)
    {
        const QPoint place = list().viewport()->mapTo(&window(), middleOf(row));
        QTest::mouseDClick(window().windowHandle(), Qt::LeftButton, {}, place);
    }
    void openDetail(int row)
    {
        clickRow(row);
        key(Qt::Key_Return);
        ASSERT_FALSE(stack().isEmpty());
    }
    void edit(const QString &text)
    {
        QTest::mouseClick(&buttonEdit(), Qt::LeftButton);
        QTest::keyClick(&title(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(&title(), text);
    }
};

TEST_F(TaskDetailTest, ADoubleClickSlidesThePaneInAndTheListMakesRoom)
{
    addInbox({u"first"_s, u"second"_s});
    const QWidget &content = *window().rightContentView();
    doubleClickRow(1);
    ASSERT_FALSE(stack().isEmpty());
    EXPECT_EQ(pane().taskForm()->currentTask().title, u"second"_s);
    EXPECT_EQ(pane().width(), qRound(content.width() * 0.595));
    EXPECT_EQ(pane().y(), 40);
    EXPECT_EQ(pane().geometry().right(), content.rect().right());
    EXPECT_EQ(list().width(), content.width() - qRound(content.width() * 0.595));
    window().resize(window().width() + 200, window().height());
    EXPECT_EQ(pane().width(), qRound(content.width() * 0.595));
    EXPECT_EQ(pane().geometry().bottom(), content.rect().bottom());
    QTest::mouseClick(&find<QToolButton>(pane(), "buttonBack"), Qt::LeftButton);
    EXPECT_TRUE(stack().isEmpty());
    EXPECT_EQ(list().width(), content.width());
    EXPECT_TRUE(list().hasFocus());
}

TEST_F(TaskDetailTest, AnotherTaskStacksAboveAndTheSameOneComesUpAgain)
{
    addInbox({u"first"_s, u"second"_s});
    openDetail(0);
    TaskDetailViewController *const first = &pane();
    openDetail(0);
    EXPECT_EQ(&pane(), first);
    openDetail(1);
    EXPECT_NE(&pane(), first);
    EXPECT_EQ(pane().geometry(), first->geometry());
    EXPECT_FALSE(first->isActive());
    EXPECT_FALSE(first->isVisible());
    openDetail(0);
    EXPECT_EQ(&pane(), first);
    EXPECT_TRUE(first->isActive());
    QTest::keyClick(&pane(), Qt::Key_Escape);
    EXPECT_EQ(pane().taskForm()->currentTask().title, u"second"_s);
    EXPECT_EQ(selectedTitles(), QStringList{u"second"_s});
    EXPECT_TRUE(pane().isVisible());
    showList(SidebarItem::Today);
    EXPECT_TRUE(stack().isEmpty());
}

TEST_F(TaskDetailTest, TheDelegatedAndDoneListsLeaveLessRoomAboveThePane)
{
    add(u"over"_s, [](MVTask &task) { task.status = TaskStatus::Done; });
    showList(SidebarItem::Done);
    openDetail(list().tableModel()->nearestItem(0, 1));
    EXPECT_EQ(pane().y(), 10);
}

TEST_F(TaskDetailTest, AnEditIsSavedByDoneAndShownInTheList)
{
    addInbox({u"first"_s});
    openDetail(0);
    EXPECT_FALSE(isShown("rowCategory"));
    edit(u"renamed"_s);
    EXPECT_TRUE(isShown("rowCategory"));
    auto &popUp = find<QComboBox>(pane(), "popUpButtonPriority");
    popUp.setFocus();
    QTest::keyClick(&popUp, Qt::Key_Down);
    EXPECT_EQ(buttonEdit().text(), u"Done"_s);
    QTest::mouseClick(&buttonEdit(), Qt::LeftButton);
    EXPECT_FALSE(pane().isEditing());
    EXPECT_EQ(find<QLabel>(pane(), "labelPriorityPreview").text(), u"High"_s);
    ASSERT_NE(stored(u"renamed"_s), nullptr);
    EXPECT_EQ(stored(u"renamed"_s)->priority(), Priority::High);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shownTitles() == QStringList{u"renamed"_s}; }));
}

TEST_F(TaskDetailTest, TheSaveCommandEndsAnEditAsDoneDoes)
{
    addInbox({u"draft"_s});
    openDetail(0);
    const QAction &save = *controller().commands()->action(ActionId::Save);
    EXPECT_FALSE(save.isEnabled());
    edit(u"final"_s);
    EXPECT_TRUE(save.isEnabled());
    run(ActionId::Save);
    EXPECT_FALSE(pane().isEditing());
    EXPECT_NE(stored(u"final"_s), nullptr);
}

TEST_F(TaskDetailTest, EscapeGivesUpAnEditAfterAQuestionAndBackAsksOnlyAboutChanges)
{
    addInbox({u"first"_s});
    openDetail(0);
    edit(u"lost"_s);
    {
        const ScriptedAlerts alerts({Alert::secondButton, Alert::thirdButton});
        QTest::keyClick(&title(), Qt::Key_Escape);
        EXPECT_TRUE(pane().isEditing());
        QTest::keyClick(&title(), Qt::Key_Escape);
        EXPECT_FALSE(pane().isEditing());
        EXPECT_EQ(title().text(), u"first"_s);
    }
    edit(u"first"_s);
    const ScriptedAlerts none;
    QTest::mouseClick(&find<QToolButton>(pane(), "buttonBack"), Qt::LeftButton);
    EXPECT_TRUE(stack().isEmpty());
    EXPECT_EQ(inboxTitles(), QStringList{u"first"_s});
}

TEST_F(TaskDetailTest, TickingOffSavesAtOnceAndADoneTaskIsOnlyLookedAt)
{
    addInbox({u"first"_s});
    openDetail(0);
    auto &check = find<QAbstractButton>(pane(), "checkDone");
    QTest::mouseClick(&check, Qt::LeftButton);
    EXPECT_EQ(stored(u"first"_s)->status(), TaskStatus::Done);
    EXPECT_FALSE(buttonEdit().isEnabled());
    QTest::keyClick(&check, Qt::Key_Space);
    EXPECT_EQ(stored(u"first"_s)->status(), TaskStatus::Open);
    EXPECT_TRUE(buttonEdit().isEnabled());
}

TEST_F(TaskDetailTest, AReadOnlyTaskHasNoEditButtonAndSaysWhy)
{
    add(u"match"_s, [](MVTask &task) {
        task.allowsContentModifications = false;
        task.calendarTitle = u"Club"_s;
    });
    showList(SidebarItem::NotDone);
    openDetail(list().tableModel()->nearestItem(0, 1));
    EXPECT_FALSE(buttonEdit().isVisible());
    EXPECT_FALSE(find<QAbstractButton>(pane(), "checkDone").isVisible());
    ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton});
    auto &type = find<RowItemView>(pane(), "rowType");
    const QPoint place = type.mapTo(&window(), type.rect().center());
    QTest::mouseDClick(window().windowHandle(), Qt::LeftButton, {}, place);
    ASSERT_EQ(alerts.asked().size(), 1U);
    EXPECT_EQ(alerts.asked().front().message, u"You can't change events in the Club calendar"_s);
    QTest::keyClick(&pane(), Qt::Key_Return);
    EXPECT_EQ(alerts.asked().size(), 2U) << "the key asks for the same";
    EXPECT_FALSE(pane().isEditing());
}

TEST_F(TaskDetailTest, WhileRepeatsAreBarredTheirTasksStayAndSayWhy)
{
    const auto repeating = [](MVTask &task) { task.repeat = u"RRULE:FREQ=DAILY;INTERVAL=1"_s; };
    add(u"daily"_s, repeating);
    add(u"weekly"_s, repeating);
    add(u"once"_s);
    showList(SidebarItem::Inbox);
    // Nobody may use calendars here.
    CalendarEvent::tryCreateMessageForBanEditingRepeatTask();
    ScriptedAlerts alerts(std::deque<int>(3, Alert::firstButton));
    run(ActionId::SelectAll);
    key(Qt::Key_Space);
    EXPECT_EQ(stored(u"once"_s)->status(), TaskStatus::Done);
    EXPECT_EQ(stored(u"daily"_s)->status(), TaskStatus::Open);
    ASSERT_EQ(alerts.asked().size(), 1U) << "told once for both";
    EXPECT_TRUE(
        alerts.asked().front().informativeText.startsWith(u"Editing Repeated tasks is not allowed"_s));

    openDetail(0);
    ASSERT_TRUE(buttonEdit().isEnabled());
    QTest::mouseClick(&buttonEdit(), Qt::LeftButton);
    EXPECT_FALSE(pane().isEditing());
    auto &check = find<QAbstractButton>(pane(), "checkDone");
    QTest::mouseClick(&check, Qt::LeftButton);
    EXPECT_FALSE(check.isChecked());
    EXPECT_EQ(alerts.asked().size(), 3U);
    CalendarEvent::resetMessageForBanChangeRepeat();
    QTest::mouseClick(&buttonEdit(), Qt::LeftButton);
    EXPECT_TRUE(pane().isEditing()) << "as soon as it may be, without another look";
}

TEST_F(TaskDetailTest, ThePaneOfADeletedTaskGoesAndOneChangedElsewhereFollows)
{
    addInbox({u"first"_s, u"second"_s});
    openDetail(0);
    clickRow(0);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, checkBoxOf(0));
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return find<QLabel>(pane(), "labelStatusPreview").text() == u"Done"_s; }));
    openDetail(1);
    context().deleteObject(stored(u"second"_s));
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_TRUE(QTest::qWaitFor([&] { return pane().taskForm()->currentTask().title == u"first"_s; }));
    const ScriptedAlerts alerts({Alert::firstButton});
    clickRow(0);
    key(Qt::Key_Delete);
    EXPECT_TRUE(stack().isEmpty());
}

TEST_F(TaskDetailTest, WhatIsChangedElsewhereDuringAnEditShowsUpBesideWhatIsTyped)
{
    addInbox({u"first"_s});
    openDetail(0);
    QTest::mouseClick(&find<QPushButton>(pane(), "buttonEdit"), Qt::LeftButton);
    ASSERT_TRUE(pane().isEditing());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_End);
    QTest::keyClicks(QApplication::focusWidget(), u" of all"_s);
    stored(u"first"_s)->setDetails(u"from the phone"_s);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return pane().taskForm()->currentTask().details == u"from the phone"_s; }));
    EXPECT_TRUE(pane().isEditing());
    QTest::keyClicks(QApplication::focusWidget(), u"!"_s);
    QTest::mouseClick(&find<QPushButton>(pane(), "buttonEdit"), Qt::LeftButton);
    ASSERT_NE(stored(u"first of all!"_s), nullptr);
    EXPECT_EQ(stored(u"first of all!"_s)->details(), u"from the phone"_s);
}

TEST_F(TaskDetailTest, ATaskThatMayNotBeChangedAnyMoreIsOnlyLookedAt)
{
    addInbox({u"first"_s});
    openDetail(0);
    edit(u"typed"_s);
    stored(u"first"_s)->setAllowsContentModifications(false);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !pane().isEditing(); }));
    EXPECT_TRUE(title().isReadOnly());
    EXPECT_EQ(title().text(), u"first"_s);
    EXPECT_FALSE(buttonEdit().isVisible());
    EXPECT_NE(stored(u"first"_s), nullptr);
}

TEST_F(TaskDetailTest, WhoOnlyLooksInLeavesTheTextAsItIs)
{
    const QString details = u"5\u00A0km\r\nthen\u2028home\u2029at last"_s;
    add(u"a\u00A0walk"_s, [&](MVTask &task) { task.details = details; });
    showList(SidebarItem::Inbox);
    openDetail(0);
    QTest::mouseClick(&buttonEdit(), Qt::LeftButton);
    EXPECT_FALSE(pane().taskForm()->currentTask().isChangedTask());
    QTest::mouseClick(&buttonEdit(), Qt::LeftButton);
    ASSERT_NE(stored(u"a\u00A0walk"_s), nullptr);
    EXPECT_EQ(stored(u"a\u00A0walk"_s)->details(), details);

    QTest::mouseClick(&buttonEdit(), Qt::LeftButton);
    QTest::keyClick(&title(), Qt::Key_End);
    QTest::keyClicks(&title(), u"s"_s);
    EXPECT_EQ(pane().taskForm()->currentTask().title, u"a\u00A0walks"_s) << "a blank that nobody typed over";
    QTest::keyClick(&title(), Qt::Key_Backspace);
    EXPECT_FALSE(pane().taskForm()->currentTask().isChangedTask());
    auto &field = find<GrowingTextField>(pane(), "textFieldDetails");
    QTest::keyClick(&field, Qt::Key_End, Qt::ControlModifier);
    QTest::keyClick(&field, Qt::Key_Return);
    QTest::keyClicks(&field, u"tea"_s);
    EXPECT_EQ(pane().taskForm()->currentTask().details, u"5\u00A0km\nthen\nhome\nat last\ntea"_s);
}

TEST_F(TaskDetailTest, ClosingAndQuittingAskAboutAnEdit)
{
    addInbox({u"first"_s, u"second"_s});
    QSignalSpy quitting(&controller(), &MainWindowController::quitRequested);
    openDetail(1);
    openDetail(0);
    edit(u"typed"_s);
    {
        const ScriptedAlerts alerts({Alert::secondButton, Alert::secondButton});
        run(ActionId::Quit);
        EXPECT_EQ(quitting.size(), 1);
        ASSERT_EQ(alerts.asked().size(), 1U);
        EXPECT_EQ(alerts.asked().front().message, u"Do you want to save the changes you have made?"_s);
        EXPECT_EQ(title().text(), u"typed"_s);
        EXPECT_FALSE(controller().closeNewWindows()) << "which is what quitting goes by";
        EXPECT_TRUE(pane().isEditing());
    }
    {
        const ScriptedAlerts alerts({Alert::secondButton, Alert::firstButton});
        run(ActionId::CloseWindow);
        EXPECT_TRUE(window().isVisible());
        run(ActionId::CloseWindow);
        EXPECT_FALSE(window().isVisible());
    }
    EXPECT_NE(stored(u"typed"_s), nullptr);
    delegate->startMainWindow();
    edit(u"lost"_s);
    const ScriptedAlerts alerts({Alert::thirdButton});
    EXPECT_TRUE(controller().closeNewWindows());
    EXPECT_EQ(stored(u"lost"_s), nullptr);
    EXPECT_FALSE(pane().isEditing());
    edit({});
    QTest::keyClick(&title(), Qt::Key_Backspace);
    const ScriptedAlerts untitled({Alert::firstButton, Alert::firstButton});
    EXPECT_FALSE(controller().closeNewWindows()) << "nothing can be saved without a title";
    EXPECT_TRUE(pane().isEditing());
}

TEST_F(TaskDetailTest, TheMailButtonOpensADraft)
{
    QStringList opened;
    Workspace::setUrlOpener([&](const QString &url) {
        opened << url;
        return true;
    });
    addInbox({u"first"_s});
    openDetail(0);
    QTest::mouseClick(&find<QToolButton>(pane(), "buttonSendEmail"), Qt::LeftButton);
    Workspace::setUrlOpener({});
    EXPECT_EQ(opened, QStringList{pane().taskForm()->currentTask().htmlBody()});
}

/// Keys go through the window, where the menu would take them.
TEST_F(TaskDetailTest, TheDeleteKeyClearsAFieldAndNeverReachesTheList)
{
    const ScriptedAlerts none;
    const CategoryPtr category = DBWorker::allCategories().front();
    add(u"first"_s, [&](MVTask &task) { task.category = category; });
    showList(SidebarItem::Inbox);
    openDetail(0);
    QTest::keyClick(window().windowHandle(), Qt::Key_Delete);
    QTest::mouseClick(&buttonEdit(), Qt::LeftButton);
    find<QComboBox>(pane(), "popUpButtonCategory").setFocus();
    QTest::keyClick(window().windowHandle(), Qt::Key_Delete);
    EXPECT_EQ(pane().taskForm()->currentTask().category, nullptr);
    find<DatePicker>(pane(), "datePickerStartDate").setFocus();
    QTest::keyClick(window().windowHandle(), Qt::Key_Delete);
    EXPECT_NE(stored(u"first"_s), nullptr);
    EXPECT_TRUE(none.asked().empty());
}

TEST_F(TaskDetailTest, TheMouseOverARowOffersToClearItsValue)
{
    add(u"first"_s, [](MVTask &task) { task.details = u"two pages"_s; });
    showList(SidebarItem::Inbox);
    openDetail(0);
    QTest::mouseClick(&buttonEdit(), Qt::LeftButton);
    auto &row = find<RowItemView>(pane(), "rowDetails");
    auto &button = find<QToolButton>(pane(), "buttonDeleteDetails");
    EXPECT_FALSE(button.isVisible());
    QTest::mouseMove(window().windowHandle(), row.mapTo(&window(), QPoint(20, 20)));
    EXPECT_TRUE(QTest::qWaitFor([&] { return button.isVisible(); }));
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_FALSE(button.isVisible());
    EXPECT_EQ(pane().taskForm()->currentTask().details, QString());
}

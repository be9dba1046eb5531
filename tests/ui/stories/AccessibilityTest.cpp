// The program is read aloud: whatever takes the keyboard says what it is.

#include "filters/MVPopUp.h"
#include "records/DetailStack.h"
#include "records/Functional.h"
#include "shell/tasks/LocationBubble.h"
#include "shell/tasks/RepeatWindow.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "ui/support/Reader.h"
#include "ui/support/ShellTest.h"
#include "widgets/DatePicker.h"
#include "widgets/MessageBoxPresenter.h"

#include <QAccessible>
#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

namespace {

void expectNamed(QWidget &window)
{
    QAccessibleInterface *root = QAccessible::queryAccessibleInterface(&window);
    ASSERT_NE(root, nullptr);
    EXPECT_GT(root->childCount(), 0);
    EXPECT_EQ(Reader::faultsIn(*root).join(u'\n'), QString());
}

class AccessibilityTest : public ShellTest
{
protected:
    AccessibilityTest() { addInbox({u"first"_s, u"second"_s}); }
};

} // namespace

TEST_F(AccessibilityTest, AControlWithoutANameOrARoleWouldBeFound)
{
    QToolButton nameless;
    QWidget &content = *window().rightContentView();
    nameless.setParent(&content);
    nameless.setFocusPolicy(Qt::StrongFocus);
    nameless.show();
    QStringList found = Reader::faultsIn(Reader::of(window()));
    ASSERT_EQ(found.size(), 1);
    EXPECT_TRUE(found.first().endsWith(u"/QToolButton has no name"_s)) << qPrintable(found.first());

    nameless.setAccessibleName(u"Press"_s);
    QWidget painted(&content);
    painted.setFocusPolicy(Qt::StrongFocus);
    painted.setAccessibleName(u"Painted"_s);
    painted.show();
    found = Reader::faultsIn(Reader::of(window()));
    ASSERT_EQ(found.size(), 1);
    EXPECT_TRUE(found.first().endsWith(u"/QWidget has no role: Painted"_s)) << qPrintable(found.first());
}

TEST_F(AccessibilityTest, EveryScreenNamesItsControls)
{
    for (const ActionDescription &description : Actions::table()) {
        if (const auto item = description.list) {
            SCOPED_TRACE(qPrintable(SidebarModel::titleOf(*item)));
            controller().showList(*item);
            expectNamed(window());
        }
    }
}

TEST_F(AccessibilityTest, TheNewTaskWindowNamesItsControlsForEachType)
{
    WindowNewTask &form = openNewTask();
    for (const TaskType type : allTaskTypes) {
        form.taskForm()->setType(Functional::typeStringFromType(type));
        expectNamed(form);
    }
    const ScriptedAlerts alerts({Alert::thirdButton});
    form.close();
}

TEST_F(AccessibilityTest, TheDateBubbleAndTheQuestionNameTheirControls)
{
    WindowNewTask &form = openNewTask();
    form.taskForm()->setType(Functional::typeStringFromType(TaskType::Appointment));
    auto &start = find<DatePicker>(form, "datePickerStartDate");
    start.setFocus();
    QTest::keyClick(&start, Qt::Key_Space);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    expectNamed(*QApplication::activePopupWidget());
    QApplication::activePopupWidget()->close();

    QTimer::singleShot(50, [] {
        QWidget *box = QApplication::activeModalWidget();
        expectNamed(*box);
        box->close();
    });
    MessageBoxPresenter().present(
        {.title = {}, .message = u"Sure?"_s, .informativeText = {}, .buttons = {u"Yes"_s, u"No"_s}});
    const ScriptedAlerts alerts({Alert::thirdButton});
    form.close();
}

TEST_F(AccessibilityTest, TheDetailPaneNamesItsControlsInWordsAndAsAForm)
{
    clickRow(0);
    key(Qt::Key_Return);
    auto &pane = *static_cast<TaskDetailViewController *>(controller().detailStack()->top());
    expectNamed(window());
    pane.clickButtonEdit();
    expectNamed(window());
}

TEST_F(AccessibilityTest, TheWindowsOfTheCalendarsNameTheirControls)
{
    for (const auto &[command, name] : {std::pair(ActionId::Calendars, "CalendarsAppleWindow"),
                                        std::pair(ActionId::Preferences, "PreferencesWindow")}) {
        run(command);
        auto &opened = find<QWidget>(window(), name);
        expectNamed(opened);
        opened.close();
    }
}

TEST_F(AccessibilityTest, TheBubblesNameTheirControls)
{
    RepeatWindow repeat(CustomRepeat(std::nullopt, {}, {}, RecurrencePickerLanguage::english), &window());
    repeat.showBeside(window());
    for (const int frequency : {0, 1, 2, 3}) {
        repeat.frequencyChange(frequency);
        expectNamed(repeat);
    }
    repeat.close();
    DBWorker::saveLocation(u"Office"_s, 52.5, 13.4);
    LocationBubble location(nullptr, &window());
    location.showBeside(window());
    expectNamed(location);
    QTest::keyClick(location.focusWidget(), Qt::Key_Space);
    expectNamed(location);
    location.close();
    const std::unique_ptr<MVPopUp> bubble(
        MVPopUp::of(FilterRow::Editor::Contacts, {.selectedAll = true, .objects = {}}, &window()));
    MVPopUp &contacts = *bubble;
    contacts.showBeside(window());
    expectNamed(contacts);
    contacts.close();
}

TEST_F(AccessibilityTest, WhatOpensOverAListNamesItsControls)
{
    showList(SidebarItem::Today);
    run(ActionId::FilterTasks);
    auto &filter = find<QWidget>(window(), "filterPopover");
    expectNamed(filter);
    filter.close();
    showList(SidebarItem::Inbox);
    clickRow(0);
    run(ActionId::WhyIsItHere);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    expectNamed(*QApplication::activePopupWidget());
    QApplication::activePopupWidget()->close();
    run(ActionId::Search);
    QTest::keyClicks(QApplication::focusWidget(), u"first"_s);
    EXPECT_TRUE(find<QWidget>(window(), "searchPopover").isVisible());
    expectNamed(window());
    showList(SidebarItem::Categories);
    QTest::mouseClick(&find<QWidget>(window(), "buttonAdd"), Qt::LeftButton);
    expectNamed(window());
}

TEST_F(AccessibilityTest, ARowSaysWhatItsColoursAndMarksSay)
{
    add(u"report"_s, [](MVTask &task) {
        task.startDate = localDate(2026, 11, 19);
        task.dueDate = localDate(2026, 11, 19, 23, 59);
        task.priority = Priority::High;
    });
    showList(SidebarItem::Today);
    const QString row = list().tableModel()->index(0).data(Qt::AccessibleTextRole).toString();
    for (const QString &part : {u"report"_s, u"overdue"_s, u"High priority"_s})
        EXPECT_TRUE(row.contains(part)) << qPrintable(row);
}

TEST_F(AccessibilityTest, TabGoesAsTheEyeDoesOnEveryScreenThatIsReturnedTo)
{
    for (const SidebarItem item :
         {SidebarItem::Inbox, SidebarItem::Today, SidebarItem::Categories, SidebarItem::Today}) {
        showList(item);
        list().setFocus();
        QStringList way;
        do {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            way << QApplication::focusWidget()->objectName();
        } while (way.last() != list().objectName() && way.size() < 10);
        QStringList wanted = {u"buttonFilter"_s,    u"outlineViewListItem"_s, u"buttonAdd"_s,
                              u"buttonCalendars"_s, u"searchField"_s,         u"tableViewTasks"_s};
        if (item == SidebarItem::Categories)
            wanted.front() = u"popUpButtonSort"_s;
        if (item == SidebarItem::Categories)
            wanted.insert(1, u"tableViewCategory"_s);
        wanted.insert(item == SidebarItem::Categories ? 2 : 0, u"captureField"_s);
        if (item == SidebarItem::Today)
            wanted.prepend(u"tasksGroupedView"_s);
        // It is empty, and what helps stands in its middle.
        if (item == SidebarItem::Today)
            wanted.prepend(u"buttonAddFirst"_s);
        EXPECT_EQ(way, wanted) << qPrintable(way.join(u' '));
    }
}

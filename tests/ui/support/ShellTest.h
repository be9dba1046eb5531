#pragma once

#include "records/copies/MVTask.h"
#include "shell/Actions.h"
#include "shell/MainWindow.h"
#include "shell/MainWindowController.h"
#include "shell/OutlineViewExtended.h"
#include "shell/tasks/TabTaskViewController.h"
#include "shell/tasks/WindowNewTask.h"
#include "store/AppDelegate.h"
#include "store/queries/DBWorker.h"
#include "support/TestSupport.h"

#include <QTest>

#include <gtest/gtest.h>

class Shell;

/// The whole program with its main window on an empty data folder, at a quarter past nine on Saturday
/// 2026-11-21, and the hands of a user on it.
class ShellTest : public testing::Test
{
protected:
    ShellTest();
    ~ShellTest() override;

    // What is there.
    MainWindowController &controller();
    MainWindow &window() { return *controller().window(); }
    OutlineViewExtended &outline() { return *window().outlineViewListItem(); }
    const SidebarModel &sidebar() { return static_cast<const SidebarModel &>(*outline().model()); }
    TabTaskViewController &screen();
    TableViewExtended &list() { return *screen().tableViewTasks(); }
    QStringList shownTitles();
    QStringList selectedTitles();
    /// The open window for a new task, or null.
    WindowNewTask *newTaskWindow();
    template <typename Widget>
    static Widget &find(const QWidget &in, const char *name)
    {
        auto *widget = in.findChild<Widget *>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return *widget;
    }

    // What the user does.
    void showList(SidebarItem item);
    void pressSidebar(SidebarItem item);
    QPoint middleOf(int row);
    QPoint checkBoxOf(int row);
    void clickRow(int row, Qt::KeyboardModifiers modifiers = {});
    void drag(int row, QPoint to);
    void key(Qt::Key pressed, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&list(), pressed, modifiers);
    }
    void run(ActionId id);
    /// Lets come what waits until the program listens, and what follows from that.
    static void settle();
    WindowNewTask &openNewTask();

    // What the store holds.
    TaskPtr add(const QString &title, const std::function<void(MVTask &)> &fill = {});
    void addInbox(const QStringList &titles);
    /// A group of contacts, already in the tree.
    std::shared_ptr<EntityContactGroup> addGroup(const QString &title);
    static QStringList inboxTitles();
    /// The task of that title whatever its state, or null.
    TaskPtr stored(const QString &title);
    ManagedObjectContext &context() { return delegate->managedObjectContext(); }

    FrozenClock clock{localDate(2026, 11, 21, 9, 15)};
    Shell *shell = nullptr;
    std::unique_ptr<AppDelegate> delegate;
};

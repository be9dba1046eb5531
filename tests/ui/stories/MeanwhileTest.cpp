// While a question or a menu stands the world goes on; what waits for the answer stays until it is there.

#include "records/DetailStack.h"
#include "shell/categories/CategoriesViewController.h"
#include "shell/tasks/LocationBubble.h"
#include "shell/tasks/LocationPopup.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "store/state/NotificationNames.h"
#include "support/MeanwhileAlerts.h"
#include "support/OtherProgram.h"
#include "ui/support/ShellTest.h"
#include "widgets/Animations.h"
#include "widgets/CheckList.h"
#include "widgets/GrowingTextField.h"

#include <QApplication>
#include <QComboBox>
#include <QPointer>
#include <QPushButton>

using namespace Qt::Literals::StringLiterals;

class MeanwhileTest : public ShellTest
{
protected:
    DetailStack &stack() { return *controller().detailStack(); }
    SidebarItem shownItem() { return sidebar().itemAt(outline().currentIndex()); }
    /// Opens the first row of the Inbox and begins to edit it.
    TaskDetailViewController *edit()
    {
        clickRow(0);
        key(Qt::Key_Return);
        auto *pane = static_cast<TaskDetailViewController *>(stack().top());
        QTest::mouseClick(&find<QPushButton>(*pane, "buttonEdit"), Qt::LeftButton);
        return pane;
    }
    void remove(const QString &title)
    {
        context().deleteObject(stored(title));
        EXPECT_FALSE(DBWorker::saveContext());
    }
    /// As a press on the notification of a task does it.
    static void pressNotification(const TaskPtr &task)
    {
        NotificationCenter::defaultCenter().post(notifications::clickTableSearch, ObjectPtr(task));
    }
};

TEST_F(MeanwhileTest, ThePaneOfATaskThatGoesWhileItAsksStaysUntilTheAnswer)
{
    for (const int answer : {Alert::firstButton, Alert::secondButton, Alert::thirdButton}) {
        addInbox({u"task"_s});
        const QPointer<TaskDetailViewController> pane = edit();
        QTest::keyClicks(&find<GrowingTextField>(*pane, "textFieldTitle"), u"!"_s);
        bool wasThere = false;
        {
            const MeanwhileAlerts alerts(answer, [&] {
                remove(u"task"_s);
                MeanwhileAlerts::spin();
                wasThere = pane;
            });
            QTest::keyClick(pane, Qt::Key_Escape);
            EXPECT_EQ(alerts.asked(), 1);
        }
        EXPECT_TRUE(wasThere);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !pane; })) << answer;
        EXPECT_TRUE(stack().isEmpty());
        EXPECT_TRUE(inboxTitles().isEmpty());
    }
}

TEST_F(MeanwhileTest, APaneThatIsTakenAwayWhileItAsksLivesUntilTheAnswer)
{
    addInbox({u"task"_s});
    const QPointer<TaskDetailViewController> pane = edit();
    QTest::keyClicks(&find<GrowingTextField>(*pane, "textFieldTitle"), u"!"_s);
    bool wasThere = false;
    {
        const MeanwhileAlerts alerts(Alert::firstButton, [&] {
            stack().removeAllDetail();
            MeanwhileAlerts::spin();
            wasThere = pane;
        });
        QTest::keyClick(pane, Qt::Key_Escape);
    }
    EXPECT_TRUE(wasThere);
    EXPECT_NE(stored(u"!task"_s), nullptr) << "what the user answered is done";
    EXPECT_TRUE(QTest::qWaitFor([&] { return !pane; }));
}

TEST_F(MeanwhileTest, AnEditedPaneFollowsWhatAnotherProgramWritesToTheStoreAndKeepsWhatWasTyped)
{
    addInbox({u"task"_s});
    const QPointer<TaskDetailViewController> pane = edit();
    auto &title = find<GrowingTextField>(*pane, "textFieldTitle");
    auto &details = find<GrowingTextField>(*pane, "textFieldDetails");
    auto &projects = find<QComboBox>(*pane, "popUpButtonProject");
    QTest::keyClicks(&title, u"!"_s);
    writeElsewhere(context().path(), "UPDATE EntityTask SET title = 'other', details = 'from elsewhere';"
                                     "INSERT INTO EntityProject (id, title) VALUES ('p', 'Garden')");
    EXPECT_TRUE(QTest::qWaitFor([&] { return details.toPlainText() == u"from elsewhere"_s; }));
    EXPECT_EQ(title.toPlainText(), u"!task"_s);
    EXPECT_GE(projects.findText(u"Garden"_s), 0);
    writeElsewhere(context().path(), "DELETE FROM EntityTask");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !pane; })) << "its task is gone";
}

TEST_F(MeanwhileTest, TheBubbleOfAPaneStaysWhileItAsks)
{
    const auto place = context().insert<EntityLocation>();
    place->setTitle(u"Harbour"_s);
    add(u"meeting"_s, [&](MVTask &task) {
        task.type = TaskType::Appointment;
        task.startDate = localDate(2026, 11, 21, 10);
        task.dueDate = localDate(2026, 11, 21, 11);
        task.location = place;
    });
    controller().searchSelectItem(stored(u"meeting"_s));
    const QPointer<DetailViewController> pane = stack().top();
    ASSERT_TRUE(pane);
    QTest::mouseClick(&find<QPushButton>(*pane, "buttonEdit"), Qt::LeftButton);
    auto &field = find<LocationPopup>(*pane, "LocationPopup");
    QTest::mouseClick(&field, Qt::LeftButton, {}, QPoint(60, 15));
    const QPointer<LocationBubble> bubble = field.findChild<LocationBubble *>();
    ASSERT_TRUE(bubble);
    bool wasThere = false;
    {
        const MeanwhileAlerts alerts(Alert::firstButton, [&] {
            remove(u"meeting"_s);
            MeanwhileAlerts::spin();
            wasThere = bubble;
        });
        auto &table = *bubble->findChild<CheckList *>();
        QTest::keyClick(&table, Qt::Key_Delete);
        EXPECT_EQ(alerts.asked(), 1);
    }
    EXPECT_TRUE(wasThere);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !pane && !bubble; }));
}

TEST_F(MeanwhileTest, ANotificationLeadsAwayFromAListOnlyAfterTheAnswer)
{
    const TaskPtr idea = add(u"idea"_s, [](MVTask &task) { task.dueSomeDay = true; });
    addInbox({u"first"_s, u"second"_s});
    const QPointer<TabsViewController> former = controller().currentScreen();
    clickRow(0);
    bool wasThere = false;
    {
        const MeanwhileAlerts alerts(Alert::firstButton, [&] {
            pressNotification(idea);
            MeanwhileAlerts::spin();
            wasThere = former;
        });
        key(Qt::Key_Delete);
        EXPECT_EQ(alerts.asked(), 1);
    }
    EXPECT_TRUE(wasThere);
    EXPECT_EQ(inboxTitles().size(), 1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shownItem() == SidebarItem::Someday; }));
    EXPECT_EQ(selectedTitles(), QStringList{u"idea"_s});
    EXPECT_FALSE(former);
}

TEST_F(MeanwhileTest, ANotificationOfATaskThatTheAnswerDeletesLeadsNowhere)
{
    const TaskPtr idea = add(u"idea"_s, [](MVTask &task) { task.dueSomeDay = true; });
    addInbox({u"first"_s});
    clickRow(0);
    {
        const MeanwhileAlerts alerts(Alert::firstButton, [&] {
            pressNotification(idea);
            remove(u"idea"_s);
        });
        key(Qt::Key_Delete);
    }
    MeanwhileAlerts::spin();
    EXPECT_EQ(shownItem(), SidebarItem::Inbox);
}

TEST_F(MeanwhileTest, AListThatIsLeftWhileItAsksLivesUntilTheAnswer)
{
    addInbox({u"first"_s, u"second"_s});
    const QPointer<TabsViewController> former = controller().currentScreen();
    clickRow(0);
    bool wasThere = false;
    {
        const MeanwhileAlerts alerts(Alert::firstButton, [&] {
            controller().showList(SidebarItem::Someday);
            MeanwhileAlerts::spin();
            wasThere = former && !former->isVisible();
        });
        key(Qt::Key_Delete);
    }
    EXPECT_TRUE(wasThere);
    EXPECT_EQ(inboxTitles(), QStringList{u"second"_s}) << "what the user answered is done";
    EXPECT_TRUE(QTest::qWaitFor([&] { return !former; }));
    EXPECT_EQ(shownItem(), SidebarItem::Someday);
}

TEST_F(MeanwhileTest, ANotificationLeadsAwayFromTheCategoriesOnlyAfterTheirMenu)
{
    const TaskPtr idea = add(u"idea"_s, [](MVTask &task) { task.dueSomeDay = true; });
    showList(SidebarItem::Categories);
    const QPointer<TabsViewController> former = controller().currentScreen();
    Q_EMIT find<TableViewExtended>(*former, "tableViewCategory").menuRequested(QPoint(100, 100));
    const QPointer<QWidget> menu = QApplication::activePopupWidget();
    ASSERT_TRUE(menu);
    pressNotification(idea);
    MeanwhileAlerts::spin();
    ASSERT_TRUE(former && menu && menu->isVisible());
    EXPECT_EQ(shownItem(), SidebarItem::Categories);
    menu->close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return shownItem() == SidebarItem::Someday; }));
    EXPECT_EQ(selectedTitles(), QStringList{u"idea"_s});
}

TEST_F(MeanwhileTest, ThePaneThatHasGoneOnItsWayOutTakesNoKeys)
{
    addInbox({u"first"_s, u"second"_s});
    edit();
    clickRow(1);
    key(Qt::Key_Return);
    const TaskPtr top = std::static_pointer_cast<EntityTask>(stack().top()->record());
    Animations::setEnabled(true);
    stack().goBack(stack().top());
    // A pane lives on while a question stands.
    const MeanwhileAlerts alerts(Alert::firstButton, [&] {
        stack().removeAllDetailFrom({top});
        outline().setFocus();
        QTest::qWait(2 * Animations::duration(Animations::detailSlideOut));
    });
    Alert::run({.title = {}, .message = u"?"_s, .informativeText = {}, .buttons = {}});
    Animations::setEnabled(false);
    EXPECT_TRUE(outline().hasFocus());
}

TEST_F(MeanwhileTest, WhileAPaneSlidesAwayTheKeysAreWhereItWasOpened)
{
    addInbox({u"first"_s, u"second"_s});
    clickRow(0);
    key(Qt::Key_Return);
    Animations::setEnabled(true);
    QTest::keyClick(stack().top(), Qt::Key_Escape);
    EXPECT_TRUE(list().hasFocus());
    outline().setFocus();
    EXPECT_TRUE(QTest::qWaitFor([this] { return stack().isEmpty(); }));
    Animations::setEnabled(false);
    EXPECT_TRUE(outline().hasFocus()) << "the end of its way takes nothing";
}

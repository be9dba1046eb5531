// What the program does as a whole: asking, ending, starting twice.

#include "shell/QuitSignals.h"
#include "shell/SingleInstance.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "ui/support/ShellTest.h"
#include "widgets/MessageBoxPresenter.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QSemaphore>
#include <QSignalSpy>
#include <QThread>
#include <QTimer>

#include <csignal>

using namespace Qt::Literals::StringLiterals;

/// Asks with three buttons and lets `answer` act on the box.
static int ask(const std::function<void(QMessageBox &)> &answer)
{
    QTimer::singleShot(50, [&] { answer(*qobject_cast<QMessageBox *>(QApplication::activeModalWidget())); });
    return MessageBoxPresenter().present({.title = {},
                                          .message = u"Keep it?"_s,
                                          .informativeText = {},
                                          .buttons = {u"Save"_s, u"Cancel"_s, u"Don't Save"_s}});
}

TEST(AlertBoxTest, AnswersTheNumberOfTheButtonWhateverItsPlace)
{
    for (const auto &[text, number] :
         {std::pair(u"Save"_s, 1000), std::pair(u"Cancel"_s, 1001), std::pair(u"Don't Save"_s, 1002)}) {
        const int answer = ask([&](QMessageBox &box) {
            for (QAbstractButton *button : box.buttons()) {
                if (button->text() == text)
                    button->click();
            }
        });
        EXPECT_EQ(answer, number);
    }
}

TEST(AlertBoxTest, EscapeMeansCancelAndReturnTheFirstButton)
{
    EXPECT_EQ(ask([](QMessageBox &box) { QTest::keyClick(&box, Qt::Key_Escape); }), 1001);
    EXPECT_EQ(ask([](QMessageBox &box) { QTest::keyClick(&box, Qt::Key_Return); }), 1000);
}

TEST(QuitSignalsTest, ASignalArrivesOnTheMainLoop)
{
    const QuitSignals signals_;
    QSignalSpy spy(&signals_, &QuitSignals::received);
    std::raise(SIGTERM);
    std::raise(SIGINT);
    EXPECT_EQ(spy.count(), 0);
    EXPECT_TRUE(spy.wait());
}

TEST(SingleInstanceTest, ASecondStartShowsTheWindowOfTheFirst)
{
    SingleInstance first;
    ASSERT_TRUE(first.isFirst());
    QSignalSpy activated(&first, &SingleInstance::activated);
    SingleInstance second;
    EXPECT_FALSE(second.isFirst());
    QSignalSpy files(&first, &SingleInstance::filesWanted);
    EXPECT_TRUE(second.activateOther());
    EXPECT_TRUE(activated.wait());
    const QStringList paths = {u"/home/ann/a b.vcf"_s, u"/home/ann/größe\n2.ics"_s};
    EXPECT_TRUE(second.activateOther(paths));
    ASSERT_TRUE(files.wait());
    ASSERT_EQ(files.count(), 1) << "none come with a start that names none";
    EXPECT_EQ(files.front().front().toStringList(), paths);
}

TEST(SingleInstanceTest, AStartWhileTheFirstIsEndingTakesItsPlace)
{
    QSemaphore begun;
    const std::unique_ptr<QThread> ending(QThread::create([&begun] {
        // It takes connections, and nobody looks at them.
        const SingleInstance first;
        begun.release();
        QThread::msleep(300);
    }));
    ending->start();
    begun.acquire();
    SingleInstance second;
    EXPECT_FALSE(second.isFirst());
    EXPECT_FALSE(second.activateOther());
    EXPECT_TRUE(second.isFirst());
    ending->wait();
}

TEST(SingleInstanceTest, AfterTheFirstHasEndedTheNextIsFirstAgain)
{
    {
        const SingleInstance gone;
    }
    EXPECT_TRUE(SingleInstance().isFirst());
}

using WholeWindowTest = ShellTest;

TEST_F(WholeWindowTest, ClosingTheWindowKeepsTheProgramAndTheWindowComesBack)
{
    showList(SidebarItem::Inbox);
    run(ActionId::CloseWindow);
    EXPECT_FALSE(window().isVisible());
    delegate->startMainWindow();
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(screen().type(), ListType::Inbox);
}

TEST_F(WholeWindowTest, AnAlertThatIsClickedWhileTheWindowIsClosedOpensItsTask)
{
    const TaskPtr task = add(u"ring me"_s);
    EXPECT_FALSE(DBWorker::saveContext());
    showList(SidebarItem::Someday);
    run(ActionId::CloseWindow);
    ASSERT_FALSE(window().isVisible());
    delegate->startMainWindow();
    delegate->userNotificationCenterDidActivateNotification(task->uri());
    EXPECT_TRUE(window().isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&] {
        auto *pane = window().findChild<TaskDetailViewController *>();
        return pane && pane->taskForm()->currentTask().task() == task;
    }));
}

TEST_F(WholeWindowTest, CommandsAreGreyWhereTheyWouldDoNothing)
{
    const auto isPossible = [this](ActionId id) {
        controller().commands()->update();
        return controller().commands()->action(id)->isEnabled();
    };
    showList(SidebarItem::Inbox);
    EXPECT_FALSE(isPossible(ActionId::Delete));
    EXPECT_FALSE(isPossible(ActionId::SelectAll));
    addInbox({u"a"_s});
    EXPECT_TRUE(isPossible(ActionId::SelectAll));
    clickRow(0);
    EXPECT_TRUE(isPossible(ActionId::Delete));

    const auto group = addGroup(u"Choir"_s);
    outline().selectIndex(sidebar().indexOf(SidebarItem::People));
    outline().setFocus();
    EXPECT_FALSE(isPossible(ActionId::Delete));
    outline().selectIndex(sidebar().indexOfGroup(*group));
    EXPECT_TRUE(isPossible(ActionId::Delete));
    const ScriptedAlerts alerts({Alert::firstButton});
    run(ActionId::Delete);
    EXPECT_TRUE(DBWorker::allContactPrivateGroup().isEmpty());
}

TEST_F(WholeWindowTest, TheCommandForTheFullScreenFollowsTheWindow)
{
    const auto title = [this] { return controller().commands()->action(ActionId::FullScreen)->text(); };
    run(ActionId::FullScreen);
    EXPECT_TRUE(QTest::qWaitFor([&] { return title() == u"Exit Full Screen"_s; }));
    // As by the keys of the desktop.
    window().showNormal();
    EXPECT_TRUE(QTest::qWaitFor([&] { return title() == u"Enter Full Screen"_s; }));
}

TEST_F(WholeWindowTest, EveryCommandHasAnObjectNameAndAShortcutOfItsOwn)
{
    QSet<QString> shortcuts;
    QSet<QString> names;
    for (const ActionDescription &description : Actions::table()) {
        const QAction *action = controller().commands()->action(description.id);
        names.insert(action->objectName());
        const QString keys = action->shortcut().toString();
        EXPECT_TRUE(keys.isEmpty() || !shortcuts.contains(keys)) << qPrintable(keys);
        shortcuts.insert(keys);
    }
    EXPECT_EQ(names.size(), static_cast<qsizetype>(Actions::table().size()));
}

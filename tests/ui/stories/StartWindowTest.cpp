// The start window: the ways in, and the switch between the user's own records and the sample under living
// screens.

#include "shell/start/StartWindow.h"
#include "calendarviews/SelectedTaskController.h"
#include "filters/SavedFilter.h"
#include "foundation/UserDefaults.h"
#include "records/DetailStack.h"
#include "records/FormView.h"
#include "shell/RightToolBar.h"
#include "shell/Shell.h"
#include "shell/help/HelpWindow.h"
#include "shell/search/SearchField.h"
#include "shell/start/StartWindowItem.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "store/StartWindowController.h"
#include "store/state/SettingsKeys.h"
#include "ui/support/ShellTest.h"
#include "widgets/GrowingTextField.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QSignalSpy>

using namespace Qt::Literals::StringLiterals;

namespace {

class StartWindowTest : public ShellTest
{
protected:
    ~StartWindowTest() override { UserDefaults::standard().setObject(settings::valueSwitchDatabase, 0); }

    StartWindow &start() { return *shell->startWindow(); }
    void openWelcome()
    {
        controller().commands()->action(ActionId::Welcome)->trigger();
        ASSERT_NE(shell->startWindow(), nullptr);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&start()));
    }
    void press(StartWindowItem *item)
    {
        QTest::mouseClick(item, Qt::LeftButton);
        settle();
    }
    void goToSample()
    {
        openWelcome();
        press(start().itemSample());
    }
    void goBack()
    {
        openWelcome();
        press(start().itemGetStarted());
    }
    QString label(const char *name) { return find<QLabel>(start(), name).text(); }
};

TEST_F(StartWindowTest, ShowsWhatTheProgramIsAndTakesThePlaceOfTheMainWindow)
{
    openWelcome();
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(label("leftTitle"), u"Morvane"_s);
    EXPECT_EQ(label("leftVersion"), u"Version %1"_s.arg(AppDelegate::version()));
    EXPECT_EQ(label("rightTitle"), u"Welcome to Morvane"_s);
    EXPECT_EQ(label("rightDetail"),
              u"Keep your affairs in one place: tasks, projects, contacts, appointmens - "
              "all you need at your fingertips"_s);
    EXPECT_EQ(start().itemGetStarted()->text(), u"Get Started"_s);
    EXPECT_EQ(start().itemSample()->accessibleDescription(), u"Get prefilled app with test data"_s);
    EXPECT_FALSE(start().windowFlags() & (Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint));
    const QWidget &picture = find<QWidget>(start(), "imageViewScreen");
    EXPECT_GT(picture.height(), 200) << "there is a picture of the program";
    // Something else brings the main window back.
    delegate->startMainWindow();
    EXPECT_TRUE(window().isVisible());
    EXPECT_TRUE(start().isVisible());
    EXPECT_EQ(start().windowHandle()->transientParent(), window().windowHandle()) << "it stays in front";
    press(start().itemGetStarted());
    EXPECT_FALSE(start().isVisible());
    EXPECT_TRUE(window().isVisible());
}

TEST_F(StartWindowTest, AnItemIsChosenWhereTheMouseGoesUpInsideOfIt)
{
    openWelcome();
    StartWindowItem &item = *start().itemGetStarted();
    QTest::mousePress(&item, Qt::LeftButton);
    EXPECT_TRUE(item.isDown());
    const auto move = [&item](QPoint to) {
        QMouseEvent event(QEvent::MouseMove, to, item.mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(&item, &event);
    };
    move({-20, 5});
    EXPECT_FALSE(item.isDown());
    QTest::mouseRelease(&item, Qt::LeftButton, {}, {-20, 5});
    EXPECT_TRUE(start().isVisible()) << "it went up outside";
    QTest::mousePress(&item, Qt::LeftButton);
    move({-20, 5});
    move({5, 5});
    EXPECT_TRUE(item.isDown());
    QTest::mouseRelease(&item, Qt::LeftButton, {}, {5, 5});
    EXPECT_FALSE(start().isVisible());
}

TEST_F(StartWindowTest, TheKeysDoWhatTheMouseDoes)
{
    openWelcome();
    EXPECT_TRUE(start().itemGetStarted()->hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_TRUE(start().itemSample()->hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    ASSERT_NE(HelpWindow::shared(), nullptr) << "the user guide";
    EXPECT_TRUE(start().isVisible());
    delete HelpWindow::shared();
    QTest::keyClick(start().itemUserGuide(), Qt::Key_Up);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(DBWorker::isSample());
    EXPECT_TRUE(window().isVisible());
    openWelcome();
    QTest::keySequence(&start(), Actions::shortcutOf(ActionId::CloseWindow));
    EXPECT_FALSE(start().isVisible());
}

TEST_F(StartWindowTest, TheSampleAndTheOwnRecordsTakeTurnsUnderOpenPanes)
{
    addInbox({u"mine"_s, u"mine too"_s});
    screen().selectItem(stored(u"mine"_s));
    ASSERT_FALSE(controller().detailStack()->isEmpty());
    window().rightToolBarMain()->searchField()->setText(u"mine"_s);
    goToSample();
    EXPECT_TRUE(controller().detailStack()->isEmpty());
    EXPECT_EQ(window().rightToolBarMain()->searchField()->text(), QString());
    EXPECT_FALSE(shownTitles().contains(u"mine"_s));
    EXPECT_TRUE(shownTitles().contains(u"Who repairs the gate?"_s));
    EXPECT_FALSE(controller().commands()->action(ActionId::Undo)->isEnabled());
    EXPECT_FALSE(controller().commands()->action(ActionId::Calendars)->isEnabled());
    screen().selectItem(stored(u"New running shoes"_s));
    {
        const ScriptedAlerts deleted({Alert::firstButton});
        key(Qt::Key_Delete);
        EXPECT_EQ(stored(u"New running shoes"_s), nullptr);
    }
    EXPECT_TRUE(controller().commands()->action(ActionId::Undo)->isEnabled());
    goBack();
    EXPECT_EQ(shownTitles(), (QStringList{u"mine"_s, u"mine too"_s}));
    run(ActionId::Undo);
    EXPECT_EQ(shownTitles(), QStringList{u"mine"_s}) << "the own history goes on";
    // Every screen once, in both stores.
    for (const ActionDescription &description : Actions::table()) {
        if (!description.list)
            continue;
        controller().goToList(*description.list);
        goToSample();
        goBack();
    }
    EXPECT_EQ(DBWorker::allTasks().size(), 1);
}

TEST_F(StartWindowTest, ANewGroupOfTheSampleIsNotInTheOwnTree)
{
    const auto groups = [this] { return sidebar().rowCount(sidebar().indexOf(SidebarItem::Contacts)); };
    const int own = groups();
    goToSample();
    EXPECT_EQ(groups(), own + 3);
    goBack();
    EXPECT_EQ(groups(), own);
}

TEST_F(StartWindowTest, WhatIsBeingTypedIsAskedAboutOnce)
{
    addInbox({u"mine"_s});
    const auto type = [this](const QString &words) {
        screen().selectItem(stored(u"mine"_s));
        auto *pane = dynamic_cast<TaskDetailViewController *>(controller().detailStack()->top());
        ASSERT_NE(pane, nullptr);
        pane->setEditMode();
        pane->taskForm()->setText(int(TaskFormRow::Title), words);
    };
    type(u"mine, changed"_s);
    {
        const ScriptedAlerts stay({Alert::secondButton});
        controller().commands()->action(ActionId::Welcome)->trigger();
        EXPECT_EQ(stay.asked().size(), 1u);
        EXPECT_TRUE(window().isVisible());
    }
    // The start window is open already while the pane is edited.
    {
        const ScriptedAlerts dropped({Alert::thirdButton});
        openWelcome();
    }
    delegate->startMainWindow();
    type(u"mine, at last"_s);
    {
        const ScriptedAlerts stay({Alert::secondButton});
        press(start().itemSample());
        EXPECT_FALSE(DBWorker::isSample());
        EXPECT_TRUE(start().isVisible());
    }
    {
        const ScriptedAlerts save({Alert::firstButton});
        press(start().itemSample());
        EXPECT_TRUE(DBWorker::isSample());
    }
    goBack();
    EXPECT_NE(stored(u"mine, at last"_s), nullptr);
    openNewTask();
    QTest::keyClicks(QApplication::focusWidget(), u"half a thought"_s);
    {
        const ScriptedAlerts dropped({Alert::thirdButton});
        goToSample();
    }
    EXPECT_EQ(newTaskWindow(), nullptr);
}

TEST_F(StartWindowTest, TheSampleSaysThatItIsOneAndLeadsBack)
{
    addInbox({u"mine"_s});
    auto &notice = find<QAbstractButton>(window(), "sampleNotice");
    EXPECT_TRUE(notice.isHidden());
    goToSample();
    EXPECT_TRUE(notice.isVisible());
    notice.setFocus();
    QTest::keyClick(&notice, Qt::Key_Return);
    EXPECT_FALSE(DBWorker::isSample());
    EXPECT_TRUE(notice.isHidden());
    EXPECT_NE(stored(u"mine"_s), nullptr);
}

TEST_F(StartWindowTest, EachStoreHasFiltersOfItsOwn)
{
    FilterEntry entry = SavedFilter::ofTasks(0).entry();
    entry.insert(u"Enabled"_s, 1);
    SavedFilter::ofTasks(0).store(entry);
    goToSample();
    EXPECT_FALSE(SavedFilter::isEnabled(SavedFilter::ofTasks(0).entry()));
    goBack();
    EXPECT_TRUE(SavedFilter::isEnabled(SavedFilter::ofTasks(0).entry()));
    SavedFilter::ofTasks(0).storePristine();
}

TEST_F(StartWindowTest, TheSampleIsStillOnAfterARestartWithAllThatItLeavesAlone)
{
    addInbox({u"mine"_s});
    goToSample();
    add(u"added"_s);
    delegate->applicationWillTerminate();
    delegate.reset();
    auto made = std::make_unique<Shell>();
    shell = made.get();
    delegate = std::make_unique<AppDelegate>(std::move(made));
    delegate->applicationWillFinishLaunching();
    delegate->applicationDidFinishLaunching();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    EXPECT_NE(stored(u"added"_s), nullptr);
    showList(SidebarItem::Inbox);
    EXPECT_FALSE(find<QWidget>(window(), "buttonCalendars").isEnabled());
    controller().commands()->update();
    EXPECT_FALSE(controller().commands()->action(ActionId::Calendars)->isEnabled());
    delegate->applicationDidBecomeActive();
    EXPECT_EQ(stored(u"mine"_s), nullptr);
    goBack();
    EXPECT_TRUE(find<QWidget>(window(), "buttonCalendars").isEnabled());
    EXPECT_EQ(shownTitles(), QStringList{u"mine"_s});
}

TEST_F(StartWindowTest, TheSwitchIsQuick)
{
    addInbox({u"mine"_s});
    const auto measure = [this](bool (*open)()) {
        QElapsedTimer timer;
        timer.start();
        EXPECT_TRUE(open());
        window().repaint();
        return timer.elapsed();
    };
    std::printf("To the sample %lld ms, back %lld ms\n", measure(StartWindowController::openBrowseSample),
                measure(StartWindowController::openStarted));
}

} // namespace

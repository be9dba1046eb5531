// Nothing that was typed is lost: every way out asks, and what nobody could be asked about is there again at
// the next start.

#include "eventkit/UtcDateTime.h"
#include "records/DetailStack.h"
#include "records/DraftKeeper.h"
#include "shell/Shell.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "store/state/NotificationNames.h"
#include "support/OtherProgram.h"
#include "ui/support/CalendarAccess.h"
#include "ui/support/ShellTest.h"
#include "widgets/GrowingTextField.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QPushButton>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

class LeavingTest : public ShellTest
{
protected:
    /// A way out of the pane, and whether it ends where the pane is not.
    struct Way
    {
        const char *name;
        std::function<void()> go;
    };

    LeavingTest()
    {
        add(u"idea"_s, [](MVTask &task) { task.dueSomeDay = true; });
        addInbox({u"first"_s, u"second"_s});
    }

    DetailStack &stack() { return *controller().detailStack(); }
    TaskDetailViewController *pane() { return static_cast<TaskDetailViewController *>(stack().top()); }
    SidebarItem selectedItem()
    {
        return sidebar().itemAt(outline().selectionModel()->selectedIndexes().value(0));
    }
    GrowingTextField &field(QWidget &in, const char *name) { return find<GrowingTextField>(in, name); }

    /// Opens the task in its pane and types over its title.
    void edit(const QString &title, const QString &typed)
    {
        controller().searchSelectItem(stored(title));
        QTest::mouseClick(&find<QPushButton>(*pane(), "buttonEdit"), Qt::LeftButton);
        QTest::keyClick(&field(*pane(), "textFieldTitle"), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(&field(*pane(), "textFieldTitle"), typed);
    }
    std::vector<Way> waysOut()
    {
        return {
            {"Back",
             [this] { QTest::mouseClick(&find<QToolButton>(*pane(), "buttonBack"), Qt::LeftButton); }},
            {"a sidebar row",
             [this] {
                 pressSidebar(SidebarItem::Someday);
                 QCoreApplication::processEvents();
             }},
            {"the keys of the sidebar",
             [this] {
                 QTest::keyClick(&outline(), Qt::Key_Down);
                 QCoreApplication::processEvents();
             }},
            {"a command for a list", [this] { controller().goToList(SidebarItem::Someday); }},
            {"a search hit", [this] { controller().searchSelectItem(stored(u"idea"_s)); }},
            {"another row",
             [this] {
                 clickRow(1);
                 key(Qt::Key_Return);
             }},
            {"a notification",
             [this] {
                 NotificationCenter::defaultCenter().post(notifications::clickTableSearch,
                                                          ObjectPtr(stored(u"second"_s)));
             }},
            {"Escape", [this] { QTest::keyClick(&field(*pane(), "textFieldTitle"), Qt::Key_Escape); }},
            {"the window", [this] { run(ActionId::CloseWindow); }},
            {"quit", [this] { run(ActionId::Quit); }},
            {"deleting it",
             [this] {
                 clickRow(0);
                 key(Qt::Key_Delete);
             }},
        };
    }
    static QStringList draftFiles(const QString &filter = u"*"_s)
    {
        return QDir(Drafts::folder()).entryList({filter}, QDir::Files);
    }
    bool isDraftWritten()
    {
        return QTest::qWaitFor([] { return draftFiles().size() == 1; });
    }
    /// The program ends as it does for the system, and starts again.
    void restart()
    {
        quit();
        launch();
    }
    void quit()
    {
        EXPECT_EQ(delegate->applicationShouldTerminate(AppDelegate::QuitWish::OfSystem),
                  AppDelegate::TerminateReply::Now);
        delegate->applicationWillTerminate();
        storePath = context().path();
        delegate.reset();
    }
    void launch()
    {
        auto made = std::make_unique<Shell>();
        shell = made.get();
        delegate = std::make_unique<AppDelegate>(std::move(made));
        delegate->applicationWillFinishLaunching();
        delegate->applicationDidFinishLaunching();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window()));
        window().resize(1080, 700);
    }

    /// Of the program that has quit.
    QString storePath;
};

TEST_F(LeavingTest, CancelStaysWithTheEditAndTheSelectionDoesToo)
{
    edit(u"first"_s, u"typed"_s);
    for (const Way &way : waysOut()) {
        if (way.name == std::string("deleting it"))
            continue;
        const ScriptedAlerts alerts({Alert::secondButton});
        field(*pane(), "textFieldTitle").setFocus();
        way.go();
        EXPECT_EQ(alerts.asked().size(), 1U) << way.name;
        ASSERT_NE(pane(), nullptr) << way.name;
        EXPECT_TRUE(pane()->isEditing()) << way.name;
        EXPECT_EQ(pane()->taskForm()->currentTask().title, u"typed"_s) << way.name;
        EXPECT_EQ(selectedItem(), SidebarItem::Inbox) << way.name;
        EXPECT_EQ(sidebar().itemAt(outline().currentIndex()), SidebarItem::Inbox) << way.name;
        EXPECT_EQ(selectedTitles(), QStringList{u"first"_s}) << way.name;
        EXPECT_TRUE(window().isVisible()) << way.name;
        if (way.name == std::string("a sidebar row")) {
            EXPECT_EQ(window().focusWidget(), &field(*pane(), "textFieldTitle")) << "the keys go on there";
        }
    }
    EXPECT_EQ(stored(u"typed"_s), nullptr);
}

TEST_F(LeavingTest, SaveKeepsAndDontSaveDropsOnEachWayOut)
{
    const std::size_t count = waysOut().size();
    for (std::size_t number = 0; number < count; ++number) {
        for (const bool isSaved : {true, false}) {
            controller().showWindow();
            ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
            edit(u"first"_s, u"typed"_s);
            const Way way = waysOut()[number];
            const bool isDeletion = way.name == std::string("deleting it");
            const ScriptedAlerts alerts(
                {isSaved ? Alert::firstButton : Alert::thirdButton, Alert::firstButton});
            way.go();
            EXPECT_EQ(alerts.asked().size(), isDeletion ? 2U : 1U) << way.name;
            EXPECT_EQ(stored(isSaved ? u"typed"_s : u"first"_s) != nullptr, !isDeletion) << way.name;
            EXPECT_TRUE(!pane() || !pane()->isEditing()) << way.name;
            EXPECT_TRUE(draftFiles().isEmpty()) << way.name;
            if (isDeletion) {
                EXPECT_FALSE(context().undo());
                EXPECT_NE(stored(isSaved ? u"typed"_s : u"first"_s), nullptr) << "with what was saved";
            }
            stack().removeAllDetail();
            if (const TaskPtr renamed = stored(u"typed"_s)) {
                renamed->setTitle(u"first"_s);
                EXPECT_FALSE(DBWorker::saveContext());
            }
            showList(SidebarItem::Inbox);
            screen().reloadData();
        }
    }
}

/// "Save" at the gate leads to the question how far the change of a series reaches.
TEST_F(LeavingTest, ASaveOfASeriesThatIsGivenUpStaysWithTheEditOnEachWayOut)
{
    const CalendarAccess access;
    stored(u"first"_s)->setRepeat(u"RRULE:FREQ=WEEKLY"_s);
    EXPECT_FALSE(DBWorker::saveContext());
    screen().reloadData();
    edit(u"first"_s, u"typed"_s);
    ASSERT_TRUE(isDraftWritten());
    std::vector<Way> ways = waysOut();
    ways.push_back({"Done, without the gate", [this] {
                        QTest::mouseClick(&find<QPushButton>(*pane(), "buttonEdit"), Qt::LeftButton);
                    }});
    ways.push_back({"the tick, without the gate", [this] {
                        QTest::mouseClick(&find<QAbstractButton>(*pane(), "checkDone"), Qt::LeftButton);
                    }});
    for (const Way &way : ways) {
        const bool isAtGate = !QByteArray(way.name).endsWith("without the gate");
        const ScriptedAlerts alerts(isAtGate ? std::deque<int>{Alert::firstButton, Alert::thirdButton}
                                             : std::deque<int>{Alert::thirdButton});
        way.go();
        QCoreApplication::processEvents();
        ASSERT_EQ(alerts.asked().size(), isAtGate ? 2U : 1U) << way.name;
        EXPECT_EQ(alerts.asked().back().message, u"This is a repeating task."_s) << way.name;
        ASSERT_NE(pane(), nullptr) << way.name;
        EXPECT_TRUE(pane()->isEditing()) << way.name;
        EXPECT_EQ(field(*pane(), "textFieldTitle").toPlainText(), u"typed"_s) << way.name;
        EXPECT_EQ(pane()->taskForm()->currentTask().title, u"typed"_s) << way.name;
        EXPECT_FALSE(find<QAbstractButton>(*pane(), "checkDone").isChecked()) << way.name;
        EXPECT_EQ(draftFiles().size(), 1) << way.name;
        EXPECT_TRUE(window().isVisible()) << way.name;
    }
    ASSERT_NE(stored(u"first"_s), nullptr);
    EXPECT_EQ(stored(u"first"_s)->status(), TaskStatus::Open);
    const ScriptedAlerts alerts({Alert::firstButton});
    EXPECT_TRUE(pane()->saveEdit());
    EXPECT_NE(stored(u"typed"_s), nullptr);
    EXPECT_TRUE(draftFiles().isEmpty());
}

TEST_F(LeavingTest, QuitAsksForEverythingBeforeAnythingIsGivenUp)
{
    edit(u"first"_s, u"typed"_s);
    WindowNewTask &unsaved = openNewTask();
    QTest::keyClicks(&field(unsaved, "textFieldTitle"), u"new words"_s);
    {
        const ScriptedAlerts alerts({Alert::thirdButton, Alert::secondButton});
        EXPECT_FALSE(controller().closeNewWindows());
        EXPECT_EQ(alerts.asked().size(), 2U);
    }
    ASSERT_TRUE(newTaskWindow() && newTaskWindow()->isVisible());
    EXPECT_EQ(newTaskWindow()->taskForm()->currentTask().title, u"new words"_s);
    const ScriptedAlerts alerts({Alert::firstButton, Alert::thirdButton});
    EXPECT_TRUE(controller().closeNewWindows());
    EXPECT_NE(stored(u"new words"_s), nullptr);
    EXPECT_EQ(stored(u"typed"_s), nullptr);
    EXPECT_TRUE(draftFiles().isEmpty());
}

TEST_F(LeavingTest, ASaveWithoutATitleSaysWhatIsMissing)
{
    const QString message = u"A task needs a title"_s;
    edit(u"first"_s, u"typed"_s);
    field(*pane(), "textFieldTitle").clear();
    {
        const ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton});
        run(ActionId::Quit);
        ASSERT_EQ(alerts.asked().size(), 2U);
        EXPECT_EQ(alerts.asked().back().message, message);
    }
    EXPECT_TRUE(pane()->isEditing());
    EXPECT_TRUE(field(*pane(), "textFieldTitle").hasFocus());
    pane()->dropEdit();
    WindowNewTask &unsaved = openNewTask();
    QTest::keyClicks(&field(unsaved, "textFieldDetails"), u"new words"_s);
    {
        const ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton});
        QTest::mouseClick(&find<QPushButton>(unsaved, "buttonClose"), Qt::LeftButton);
        ASSERT_EQ(alerts.asked().size(), 2U);
        EXPECT_EQ(alerts.asked().back().message, message);
    }
    ASSERT_NE(newTaskWindow(), nullptr);
    const ScriptedAlerts alerts({Alert::thirdButton});
    newTaskWindow()->close();
}

TEST_F(LeavingTest, WhatIsTypedForATaskThatGoesIsOfferedAsANewOne)
{
    edit(u"first"_s, u"typed"_s);
    context().deleteObject(stored(u"first"_s));
    EXPECT_FALSE(DBWorker::saveContext());
    ASSERT_TRUE(QTest::qWaitFor([this] { return newTaskWindow() != nullptr; }));
    EXPECT_TRUE(stack().isEmpty());
    EXPECT_EQ(newTaskWindow()->taskForm()->currentTask().title, u"typed"_s);
    newTaskWindow()->clickButtonSave();
    EXPECT_EQ(inboxTitles(), (QStringList{u"second"_s, u"typed"_s}));
    EXPECT_TRUE(draftFiles().isEmpty());
}

TEST_F(LeavingTest, ADraftFollowsTheFormIsPrivateAndGoesWithTheChange)
{
    edit(u"first"_s, u"typed"_s);
    ASSERT_TRUE(isDraftWritten());
    const QString path = Drafts::folder() + u'/' + draftFiles().front();
    EXPECT_EQ(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    EXPECT_EQ(QFile::permissions(Drafts::folder()) & (QFile::ReadGroup | QFile::ReadOther),
              QFile::Permissions());
    const QDateTime written = QFileInfo(path).lastModified();
    QTest::keyClicks(&field(*pane(), "textFieldTitle"), u"x"_s);
    QTest::keyClick(&field(*pane(), "textFieldTitle"), Qt::Key_Backspace);
    QTest::qWait(500);
    EXPECT_EQ(QFileInfo(path).lastModified(), written) << "it says the same";
    QTest::keyClick(&field(*pane(), "textFieldTitle"), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(&field(*pane(), "textFieldTitle"), u"first"_s);
    EXPECT_TRUE(QTest::qWaitFor([] { return draftFiles().isEmpty(); })) << "nothing is changed any more";
}

TEST_F(LeavingTest, TheSystemEndsTheProgramWithoutAQuestionAndTheTextIsThereAgain)
{
    edit(u"first"_s, u"typed"_s);
    field(*pane(), "textFieldDetails").setFocus();
    QTest::keyClicks(&field(*pane(), "textFieldDetails"), u"half a sen"_s);
    QTest::keyClicks(&field(openNewTask(), "textFieldTitle"), u"new words"_s);
    const ScriptedAlerts alerts({Alert::firstButton});
    quit();
    EXPECT_TRUE(alerts.asked().empty());
    EXPECT_EQ(draftFiles().size(), 2);
    // Meanwhile another program has written something of its own.
    writeElsewhere(storePath, "UPDATE EntityTask SET title = 'theirs', priority = 0 WHERE title = 'first'");
    launch();
    ASSERT_TRUE(QTest::qWaitFor([&] { return alerts.asked().size() == 1; }));
    ASSERT_NE(pane(), nullptr);
    EXPECT_TRUE(pane()->isEditing());
    EXPECT_EQ(selectedTitles(), QStringList{u"theirs"_s});
    EXPECT_EQ(field(*pane(), "textFieldDetails").toPlainText(), u"half a sen"_s);
    ASSERT_NE(newTaskWindow(), nullptr);
    newTaskWindow()->clickButtonSave();
    EXPECT_TRUE(pane()->saveEdit());
    ASSERT_NE(stored(u"typed"_s), nullptr);
    EXPECT_EQ(stored(u"typed"_s)->details(), u"half a sen"_s);
    EXPECT_EQ(stored(u"typed"_s)->priority(), Priority::High) << "nobody has changed it here";
    EXPECT_NE(stored(u"new words"_s), nullptr);
    EXPECT_TRUE(draftFiles().isEmpty());
    restart();
    QTest::qWait(500);
    EXPECT_TRUE(stack().isEmpty()) << "nothing is found that was saved";
}

TEST_F(LeavingTest, WhatIsTypedForAnOccurrenceThatIsDeletedElsewhereOpensAsANewTask)
{
    const CalendarAccess access({u"Work"_s});
    const auto write = [&](const QString &more) {
        access.writeEvent(u"Work"_s, u"Daily"_s, u"20261121T160000Z"_s,
                          u"RRULE:FREQ=DAILY;COUNT=3\r\n"_s + more);
    };
    const auto deleteElsewhere = [&](const TaskPtr &row) {
        write(u"EXDATE:"_s + UtcDateTime::string(*row->startDate()) + u"\r\n"_s);
    };
    const auto countOf = [this](const QString &title) {
        return context()
            .fetch<EntityTask>(
                EntityTask::fetchRequest().where(Predicate::format("title == %@ and status != 3", title)))
            .size();
    };
    // The edit is ended by its button, and at the gate.
    for (const auto &[button, typed] : {std::pair("buttonEdit", u"one"_s), {"buttonBack", u"two"_s}}) {
        write({});
        delegate->applicationDidBecomeActive();
        edit(u"Daily"_s, typed);
        const auto row = std::static_pointer_cast<EntityTask>(pane()->record());
        deleteElsewhere(row);
        // Save, at the gate; then what is told of the new task.
        const ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton});
        QTest::mouseClick(&find<QAbstractButton>(*pane(), button), Qt::LeftButton);
        ASSERT_TRUE(QTest::qWaitFor([this] { return newTaskWindow() != nullptr; })) << button;
        EXPECT_EQ(newTaskWindow()->taskForm()->currentTask().title, typed);
        newTaskWindow()->clickButtonSave();
        EXPECT_TRUE(QTest::qWaitFor([this] { return stack().isEmpty() && !newTaskWindow(); })) << button;
        EXPECT_EQ(countOf(typed), 1) << "what was typed for one occurrence is no second series";
        EXPECT_FALSE(row->context());
        EXPECT_TRUE(draftFiles().isEmpty());
    }
}

/// Saved, it would be there twice.
TEST_F(LeavingTest, ADraftOfAStoredTaskIsNoNewTaskWhileTheTaskCanTakeIt)
{
    const auto leaveDraft = [this](const QString &title, const QString &typed) {
        edit(title, typed);
        stack().removeAllDetail();
    };
    leaveDraft(u"first"_s, u"typed"_s);
    leaveDraft(u"second"_s, u"other"_s);
    leaveDraft(u"idea"_s, u"third"_s);
    ASSERT_EQ(draftFiles().size(), 3);
    {
        const ScriptedAlerts alerts({Alert::firstButton, Alert::secondButton});
        restart();
        ASSERT_TRUE(QTest::qWaitFor([&] { return alerts.asked().size() == 2; }));
        QTest::qWait(0);
        EXPECT_EQ(alerts.asked().size(), 2U) << "asked once whether to leave the first";
    }
    ASSERT_NE(pane(), nullptr);
    EXPECT_TRUE(pane()->isEditing());
    EXPECT_EQ(newTaskWindow(), nullptr);
    EXPECT_EQ(draftFiles().size(), 3) << "the others wait";
    EXPECT_TRUE(pane()->saveEdit());

    // A pane of the task is open, and only looked at.
    for (const QString &file : draftFiles().sliced(1))
        QFile::remove(Drafts::folder() + u'/' + file);
    const auto left = Drafts::read(Drafts::folder() + u'/' + draftFiles().front());
    ASSERT_TRUE(left && left->draft.task());
    controller().searchSelectItem(left->draft.task());
    ASSERT_FALSE(pane()->isEditing());
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        controller().openDrafts();
        EXPECT_EQ(alerts.asked().size(), 1U);
    }
    EXPECT_TRUE(pane()->isEditing());
    EXPECT_EQ(pane()->taskForm()->currentTask().title, left->draft.edited.title);
    EXPECT_EQ(newTaskWindow(), nullptr);

    // It has been ticked off meanwhile.
    stack().removeAllDetail();
    left->draft.task()->setStatus(TaskStatus::Done);
    EXPECT_FALSE(DBWorker::saveContext());
    const ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton, Alert::thirdButton});
    controller().openDrafts();
    ASSERT_EQ(alerts.asked().size(), 2U);
    EXPECT_TRUE(alerts.asked().back().message.endsWith(u"is done or cannot be changed"_s));
    ASSERT_NE(newTaskWindow(), nullptr);
    EXPECT_EQ(newTaskWindow()->taskForm()->currentTask().title, left->draft.edited.title);
    newTaskWindow()->close();
}

// What another process does until it is killed.

class Typist : public ShellTest
{};

TEST_F(Typist, DISABLED_WritesANewTask)
{
    QTest::keyClicks(&find<GrowingTextField>(openNewTask(), "textFieldTitle"), u"half a ta"_s);
    QTest::qWait(60000);
}

TEST_F(Typist, DISABLED_EditsATask)
{
    controller().searchSelectItem(stored(u"half a ta"_s));
    auto &pane = static_cast<TaskDetailViewController &>(*controller().detailStack()->top());
    pane.setEditMode();
    QTest::keyClicks(&find<GrowingTextField>(pane, "textFieldTitle"), u"not "_s);
    QTest::qWait(60000);
}

TEST_F(LeavingTest, AProcessThatIsKilledLeavesItsHalfTypedTask)
{
    const auto killWhile = [this](const QString &typing) {
        quit();
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"MORVANE_TEST_HOME"_s, qEnvironmentVariable("HOME"));
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(),
                      {u"--gtest_also_run_disabled_tests"_s, u"--gtest_filter=Typist.DISABLED_"_s + typing});
        EXPECT_TRUE(QTest::qWaitFor([] { return !draftFiles().isEmpty(); }, 20000));
        process.kill();
        EXPECT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
        launch();
    };
    const ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton, Alert::firstButton});
    killWhile(u"WritesANewTask"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return alerts.asked().size() == 1; }));
    ASSERT_NE(newTaskWindow(), nullptr);
    EXPECT_EQ(newTaskWindow()->taskForm()->currentTask().title, u"half a ta"_s);
    newTaskWindow()->clickButtonSave();
    ASSERT_NE(stored(u"half a ta"_s), nullptr);

    killWhile(u"EditsATask"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return alerts.asked().size() == 2; }));
    ASSERT_NE(pane(), nullptr);
    const QString typed = pane()->taskForm()->currentTask().title;
    EXPECT_TRUE(pane()->isEditing());
    EXPECT_TRUE(typed.contains(u"not "_s) && typed.size() == 13) << qPrintable(typed);

    quit();
    writeElsewhere(storePath, "DELETE FROM EntityTask WHERE title = 'half a ta'");
    launch();
    ASSERT_TRUE(QTest::qWaitFor([&] { return alerts.asked().size() == 3; }));
    ASSERT_NE(newTaskWindow(), nullptr) << "its task is gone";
    newTaskWindow()->clickButtonSave();
    EXPECT_NE(stored(typed), nullptr);
    EXPECT_TRUE(draftFiles().isEmpty());
}

TEST_F(LeavingTest, ADraftThatCannotBeReadIsPutAsideAndTold)
{
    QDir().mkpath(Drafts::folder());
    const QByteArrayList contents = {"",
                                     "{",
                                     "[]",
                                     R"({"version":2,"task":"","values":{},"before":{}})",
                                     R"({"version":1,"task":"","values":{"title":7},"before":{}})",
                                     R"({"version":1,"task":"","values":{"dueDate":1e300},"before":{}})"};
    for (const QByteArray &one : contents) {
        QFile file(Drafts::folder() + u"/%1.draft"_s.arg(contents.indexOf(one)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(one);
    }
    const ScriptedAlerts alerts({Alert::firstButton});
    restart();
    ASSERT_TRUE(QTest::qWaitFor([&] { return alerts.asked().size() == 1; }));
    EXPECT_EQ(draftFiles(u"*.aside"_s).size(), contents.size());
    EXPECT_EQ(draftFiles(u"*.draft"_s).size(), 0);
    EXPECT_EQ(newTaskWindow(), nullptr);
    QFile last(Drafts::folder() + u"/3.draft.aside"_s);
    ASSERT_TRUE(last.open(QIODevice::ReadOnly));
    EXPECT_EQ(last.readAll(), contents[3]) << "not a byte is touched";
    restart();
    QTest::qWait(500);
    EXPECT_EQ(alerts.asked().size(), 1U) << "told once";
}

// Help: the guide and its search, the shortcuts as a page and over a window, About, feedback, updates, and
// the keys that every window knows. What is printed.

#include "foundation/ApplicationPaths.h"
#include "foundation/Region.h"
#include "records/DetailStack.h"
#include "records/PaperText.h"
#include "records/people/ContactForm.h"
#include "shell/ApplicationBusObject.h"
#include "shell/ApplicationLife.h"
#include "shell/MainMenu.h"
#include "shell/Shell.h"
#include "shell/Shortcuts.h"
#include "shell/SingleInstance.h"
#include "shell/WindowCommands.h"
#include "shell/calendars/MVSetiingsCalendarController.h"
#include "shell/help/AboutWindowController.h"
#include "shell/help/HelpPages.h"
#include "shell/help/HelpWindow.h"
#include "shell/help/UpdateCheck.h"
#include "ui/support/HttpServer.h"
#include "ui/support/ShellTest.h"
#include "workspace/Workspace.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QRegularExpression>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

namespace {

class HelpTest : public ShellTest
{
protected:
    HelpTest()
    {
        Workspace::setUrlOpener([this](const QString &url) {
            opened.append(url);
            return isAnythingOpened;
        });
    }
    ~HelpTest() override
    {
        Workspace::setUrlOpener({});
        configure({});
        speak({});
    }

    static void configure(const QByteArray &json)
    {
        QFile file(ApplicationPaths::configFolder() + u"/Morvane/platform.json"_s);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(json.isEmpty() ? "{}" : json);
    }
    static void speak(const char *language)
    {
        if (language)
            qputenv("LANGUAGE", language);
        else
            qunsetenv("LANGUAGE");
        Region::reload();
    }
    void trigger(ActionId id)
    {
        controller().commands()->action(id)->trigger();
        settle();
    }
    HelpWindow &help() { return *HelpWindow::shared(); }
    QString shown() { return help().browser()->toPlainText(); }
    static QStringList linksOf(const QString &html, const QString &attribute)
    {
        QStringList all;
        auto found = QRegularExpression(attribute + u"=\"([^\"#]+)\""_s).globalMatch(html);
        while (found.hasNext())
            all.append(found.next().captured(1));
        return all;
    }

    QStringList opened;
    bool isAnythingOpened = true;
};

TEST_F(HelpTest, TheMenusHaveTheirCommands)
{
    QStringList titles;
    for (const QAction *menu : window().menuBar()->actions())
        titles.append(menu->text().remove(u'&'));
    EXPECT_EQ(titles, (QStringList{u"Morvane"_s, u"File"_s, u"Edit"_s, u"View"_s, u"Help"_s}));
    const auto commandsOf = [this](qsizetype place) {
        QMenu &menu = *window().menuBar()->actions().at(place)->menu();
        Q_EMIT menu.aboutToShow();
        QStringList texts;
        for (const QAction *action : menu.actions())
            if (action->isVisible() && !action->isSeparator())
                texts.append(action->text());
        return texts;
    };
    EXPECT_EQ(commandsOf(4),
              (QStringList{u"User Guide"_s, u"Help on This Screen"_s, u"Keyboard Shortcuts"_s,
                           u"Shortcuts of This Window"_s, u"Feedback"_s, u"Welcome to Morvane"_s}));
    EXPECT_FALSE(commandsOf(0).contains(u"Check for Updates..."_s));
    configure(R"({"updateFeed": "https://x", "helpPages": {"videos": "https://x/v"}})");
    EXPECT_EQ(commandsOf(0).mid(0, 2), (QStringList{u"About Morvane"_s, u"Check for Updates..."_s}));
    EXPECT_TRUE(commandsOf(4).contains(u"How-To videos"_s));
    trigger(ActionId::HowTo);
    EXPECT_EQ(opened, QStringList{u"https://x/v"_s});
    // The first menu opens by a key.
    QTest::keyClick(&window(), Qt::Key_F10);
    EXPECT_EQ(window().menuBar()->activeAction(), window().menuBar()->actions().constFirst());
    window().menuBar()->setActiveAction(nullptr);
}

TEST_F(HelpTest, EveryPageIsThereInBothLanguagesWithAllThatItLinks)
{
    QStringList names;
    for (const char *language : {"en", "de"}) {
        speak(language);
        ASSERT_TRUE(HelpPages::folder().endsWith(QLatin1String(language))) << qPrintable(HelpPages::folder());
        const QStringList all = HelpPages::names();
        EXPECT_GT(all.size(), 10);
        EXPECT_TRUE(names.isEmpty() || names == all) << "the same pages in both";
        names = all;
        for (const QString &name : all) {
            const QString html = HelpPages::html(name);
            for (const QString &link : linksOf(html, u"href"_s))
                EXPECT_TRUE(all.contains(link)) << qPrintable(name + u": "_s + link);
            for (const QString &picture : linksOf(html, u"src"_s))
                EXPECT_FALSE(QImage(HelpPages::folder() + u'/' + picture).isNull())
                    << qPrintable(name + u": "_s + picture);
            EXPECT_FALSE(html.contains(u"#*"_s) || html.contains(u"{{"_s)) << qPrintable(name);
        }
        EXPECT_TRUE(HelpPages::html(HelpPages::contents).contains(AppDelegate::version()));
        EXPECT_TRUE(HelpPages::html(HelpPages::contents).contains(u", 2026<"_s)) << "the year of the clock";
    }
}

/// Keys of lists and forms, which are no commands of the menus.
TEST_F(HelpTest, TheGuideNamesNoKeysThatThereAreNot)
{
    const QStringList others = {u"Ctrl+Return"_s, u"Alt+Shift"_s};
    QStringList known = others;
    for (const ActionDescription &description : Actions::table())
        known.append(QString::fromUtf16(description.shortcut));
    static const QRegularExpression keys(u"(Ctrl|Alt)(\\+[A-Za-z0-9]+)+"_s);
    int count = 0;
    for (const QString &name : HelpPages::names()) {
        if (name == HelpPages::shortcuts)
            continue;
        auto found = keys.globalMatch(HelpPages::words(name));
        for (; found.hasNext(); ++count) {
            const QString told = found.next().captured();
            EXPECT_TRUE(known.contains(told)) << qPrintable(name + u": "_s + told);
        }
    }
    EXPECT_GT(count, 20);
    // And every command with keys is on the page of the shortcuts.
    const QString page = HelpPages::words(HelpPages::shortcuts);
    for (const ActionDescription &description : Actions::table()) {
        const QKeySequence sequence = Actions::shortcutOf(description.id);
        if (sequence.isEmpty())
            continue;
        EXPECT_TRUE(page.contains(Actions::textOf(description.id))) << qPrintable(sequence.toString());
        EXPECT_TRUE(page.contains(sequence.toString(QKeySequence::NativeText)));
    }
}

TEST_F(HelpTest, TheGuideIsReadSearchedAndGoneThrough)
{
    trigger(ActionId::ShowPeople);
    QTest::keyClick(&window(), Qt::Key_F1);
    ASSERT_NE(HelpWindow::shared(), nullptr);
    EXPECT_EQ(help().browser()->page(), u"people.html"_s) << "the page of the screen";
    window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    trigger(ActionId::ShowCalendar);
    trigger(ActionId::HelpHere);
    EXPECT_EQ(help().browser()->page(), u"calendar.html"_s);
    for (const QString &name : {u"DevicesWindow"_s, u"CallSheetWindow"_s, u"HistoryWindow"_s})
        EXPECT_GT(HelpPages::names().indexOf(HelpPages::ofWindow(name)), 0) << qPrintable(name);
    trigger(ActionId::UserGuide);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&help()));
    EXPECT_EQ(help().windowTitle(), u"User Guide"_s);
    auto &back = find<QToolButton>(help(), "buttonBack");
    EXPECT_TRUE(back.isEnabled()) << "to the page that was read before";
    help().browser()->setSource(QUrl(u"notes.html"_s));
    EXPECT_TRUE(shown().contains(u"A note has a title"_s));
    back.click();
    EXPECT_TRUE(shown().contains(u"Morvane User Guide"_s));
    auto &field = find<QLineEdit>(help(), "fieldSearch");
    QTest::keyClicks(&field, u"MODEL11"_s);
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(help().browser()->page(), u"undo.html"_s);
    EXPECT_EQ(help().browser()->textCursor().selectedText(), u"Model11"_s);
    field.clear();
    QTest::keyClicks(&field, u"xyzzy"_s);
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(find<QLabel>(help(), "labelNote").text(), u"Nothing found"_s);
    const int size = help().browser()->document()->defaultFont().pointSize();
    QTest::keySequence(&help(), QKeySequence(u"Ctrl++"_s));
    EXPECT_TRUE(QTest::qWaitFor(
        [this, size] { return help().browser()->document()->defaultFont().pointSize() > size; }));
    QTest::keySequence(&help(), QKeySequence(u"Alt+Home"_s));
    EXPECT_TRUE(QTest::qWaitFor([this] { return help().browser()->page() == HelpPages::contents; }));
    trigger(ActionId::KeyboardShortcuts);
    EXPECT_EQ(help().windowTitle(), u"Keyboard Shortcuts"_s);
    EXPECT_TRUE(shown().contains(u"Ctrl+Shift+8"_s));
    help().browser()->setSource(QUrl(u"https://example.org/"_s));
    EXPECT_EQ(opened, QStringList{u"https://example.org/"_s});
    EXPECT_EQ(help().browser()->page(), HelpPages::shortcuts);
    QTest::keyClick(&help(), Qt::Key_Escape);
    settle();
    EXPECT_EQ(HelpWindow::shared(), nullptr);
    // With pages on the web the guide is there.
    configure(R"({"helpPages": {"default": "https://x/guide"}})");
    trigger(ActionId::UserGuide);
    EXPECT_EQ(opened.last(), u"https://x/guide"_s);
    EXPECT_EQ(HelpWindow::shared(), nullptr);
}

TEST_F(HelpTest, TheShortcutsLieOverTheWindowUntilAKeyIsPressed)
{
    const auto overlay = [](const QWidget &over) { return over.findChild<ShortcutsOverlay *>(); };
    const QKeySequence keys = Actions::shortcutOf(ActionId::ShortcutsHere);
    addInbox({u"kept"_s});
    QWidget *const focused = QApplication::focusWidget();
    run(ActionId::ShortcutsHere);
    ASSERT_NE(overlay(window()), nullptr);
    EXPECT_TRUE(overlay(window())->text().contains(u"New Task: Ctrl+N"_s));
    EXPECT_EQ(overlay(window())->size(), window().size());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
    EXPECT_EQ(overlay(window()), nullptr);
    EXPECT_EQ(QApplication::focusWidget(), focused);
    EXPECT_EQ(inboxTitles(), QStringList{u"kept"_s}) << "the key did nothing else";
    WindowNewTask &task = openNewTask();
    QTest::keySequence(&task, keys);
    ASSERT_NE(overlay(task), nullptr);
    EXPECT_TRUE(overlay(task)->text().contains(u"Save: Ctrl+S"_s));
    EXPECT_FALSE(overlay(task)->text().contains(Actions::textOf(ActionId::Import)))
        << "what another window knows is not said";
    QTest::mouseClick(overlay(task), Qt::LeftButton);
    EXPECT_EQ(overlay(task), nullptr);
    task.close();
}

TEST_F(HelpTest, EveryWindowKnowsTheKeysOfTheProgram)
{
    const auto press = [](QWidget &in, ActionId id) {
        in.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&in));
        QTest::keySequence(&in, Actions::shortcutOf(id));
        settle();
    };
    openNewTask();
    QTest::keyClicks(QApplication::focusWidget(), u"written down"_s);
    press(*newTaskWindow(), ActionId::HelpHere);
    ASSERT_NE(HelpWindow::shared(), nullptr);
    EXPECT_EQ(help().browser()->page(), u"tasks.html"_s);
    press(help(), ActionId::CloseWindow);
    EXPECT_EQ(HelpWindow::shared(), nullptr);
    press(*newTaskWindow(), ActionId::Save);
    EXPECT_EQ(newTaskWindow(), nullptr);
    EXPECT_NE(stored(u"written down"_s), nullptr);
    controller().showSettings();
    auto *settings = window().findChild<MVSetiingsCalendarController *>();
    press(*settings, ActionId::KeyboardShortcuts);
    EXPECT_EQ(help().windowTitle(), u"Keyboard Shortcuts"_s);
    press(*settings, ActionId::CloseWindow);
    EXPECT_EQ(window().findChild<MVSetiingsCalendarController *>(), nullptr);
    // Quitting asks about what is being typed in the window that it is asked from.
    openNewTask();
    QTest::keyClicks(QApplication::focusWidget(), u"half"_s);
    const ScriptedAlerts stay({Alert::secondButton});
    press(*newTaskWindow(), ActionId::Quit);
    EXPECT_EQ(stay.asked().size(), 1u);
    const ScriptedAlerts drop({Alert::thirdButton});
    press(*newTaskWindow(), ActionId::CloseWindow);
    EXPECT_EQ(drop.asked().size(), 1u);
}

TEST_F(HelpTest, EveryWindowLeadsToANewTaskAndToTheSearch)
{
    controller().showSettings();
    auto *settings = window().findChild<MVSetiingsCalendarController *>();
    EXPECT_TRUE(QTest::qWaitForWindowActive(settings));
    QTest::keySequence(settings, Actions::shortcutOf(ActionId::NewTask));
    settle();
    ASSERT_NE(newTaskWindow(), nullptr);
    QTest::keySequence(newTaskWindow(), Actions::shortcutOf(ActionId::Search));
    settle();
    EXPECT_EQ(window().focusWidget()->objectName(), u"searchField"_s);
}

TEST_F(HelpTest, AboutSaysWhatIsConfigured)
{
    trigger(ActionId::About);
    QWidget *about = AboutWindowController::shared();
    ASSERT_NE(about, nullptr);
    EXPECT_EQ(find<QLabel>(*about, "labelTitle").text(), u"Morvane"_s);
    EXPECT_TRUE(QRegularExpression(u"^%1 \\(.+\\)$"_s.arg(AppDelegate::version()))
                    .match(find<QLabel>(*about, "labelVersion").text())
                    .hasMatch());
    EXPECT_TRUE(find<QLabel>(*about, "labelHolder").text().contains(u"2026"_s));
    EXPECT_EQ(about->findChild<QLabel *>(u"labelSupport"_s), nullptr);
    QTest::keyClick(about, Qt::Key_Escape);
    settle();
    configure(
        R"({"productPage": "https://x/<b>", "supportAddress": "help@example.org", "holder": "Somebody"})");
    trigger(ActionId::About);
    about = AboutWindowController::shared();
    EXPECT_EQ(find<QLabel>(*about, "labelHolder").text(), u"© 2026 Somebody"_s);
    EXPECT_TRUE(
        find<QLabel>(*about, "labelPage").text().startsWith(u"Web site: <a href=\"https://x/&lt;b"_s));
    EXPECT_EQ(find<QLabel>(*about, "labelPage").textFormat(), Qt::RichText);
    Q_EMIT find<QLabel>(*about, "labelSupport").linkActivated(u"mailto:help@example.org"_s);
    EXPECT_EQ(opened, QStringList{u"mailto:help@example.org"_s});
}

TEST_F(HelpTest, FeedbackIsAMailOrSaysThatNoProgramIsThere)
{
    trigger(ActionId::Feedback);
    EXPECT_TRUE(opened.value(0).startsWith(u"mailto:?subject="_s));
    isAnythingOpened = false;
    const ScriptedAlerts told({Alert::firstButton});
    trigger(ActionId::Feedback);
    EXPECT_EQ(told.asked().size(), 1u);
}

TEST_F(HelpTest, VersionsAreComparedAsNumbers)
{
    EXPECT_TRUE(UpdateCheck::isNewer(u"1.10"_s, u"1.9"_s));
    EXPECT_TRUE(UpdateCheck::isNewer(u"2"_s, u"1.9.9"_s));
    EXPECT_FALSE(UpdateCheck::isNewer(u"1.0"_s, u"1.0.0"_s));
    EXPECT_FALSE(UpdateCheck::isNewer(u"0.9.9"_s, u"1.0.0"_s));
}

TEST_F(HelpTest, ANewerVersionIsToldOfAndAFailureInAClearSentence)
{
    QByteArray answer;
    HttpServer server([&answer](const QUrl &) {
        return answer.isEmpty() ? std::optional<QByteArray>() : std::optional(answer);
    });
    configure("{\"updateFeed\": \"" + server.address().toUtf8() + "/feed\"}");
    const auto told = [this](int pressed) {
        const ScriptedAlerts alerts({pressed});
        trigger(ActionId::CheckUpdates);
        EXPECT_TRUE(QTest::qWaitFor([&alerts] { return !alerts.asked().empty(); }));
        return alerts.asked().empty() ? AlertQuestion() : alerts.asked().front();
    };
    EXPECT_EQ(told(Alert::firstButton).message,
              u"Whether there is a newer version could not be found out."_s);
    answer = "<html>";
    EXPECT_EQ(told(Alert::firstButton).informativeText, u"The answer of the server cannot be read."_s);
    answer = "{\"version\": \"" + AppDelegate::version().toUtf8() + "\"}";
    EXPECT_EQ(told(Alert::firstButton).message,
              u"Morvane %1 is the newest version."_s.arg(AppDelegate::version()));
    answer = R"({"version": "99.1", "page": "https://x/new"})";
    EXPECT_EQ(told(Alert::secondButton).message, u"Morvane 99.1 is available."_s);
    EXPECT_TRUE(opened.isEmpty());
    told(Alert::firstButton);
    EXPECT_EQ(opened, QStringList{u"https://x/new"_s});
    configure(R"({"updateFeed": "file:///etc/passwd"})");
    EXPECT_TRUE(told(Alert::firstButton).informativeText.contains(u"is no address of a web page"_s));
}

TEST_F(HelpTest, TheActionsOfTheDesktopFileAreThoseThatTheProgramKnows)
{
    ApplicationBusObject bus;
    SingleInstance instance;
    QObject::connect(&bus, &ApplicationBusObject::actionActivated, &instance,
                     &SingleInstance::actionActivated);
    const ApplicationLife life(*delegate, &instance);
    window().close();
    bus.ActivateAction(u"new-task"_s, {}, {});
    EXPECT_TRUE(window().isVisible());
    ASSERT_NE(newTaskWindow(), nullptr);
    newTaskWindow()->close();
    bus.ActivateAction(u"user-guide"_s, {}, {});
    EXPECT_NE(HelpWindow::shared(), nullptr);
    window().close();
    bus.ActivateAction(u"unknown"_s, {}, {});
    EXPECT_TRUE(window().isVisible());
}

TEST_F(HelpTest, ListsAndRecordsStandOnPaper)
{
    add(u"Oil <the> chairs"_s, [this](MVTask &task) {
        task.category = context().fetchFirst<EntityCategory>(EntityCategory::fetchRequest());
    });
    showList(SidebarItem::Inbox);
    screen().reloadData();
    EXPECT_TRUE(controller().commands()->action(ActionId::Print)->isEnabled());
    const auto &rows = static_cast<const RecordListModel &>(*list().tableModel());
    const QString paper = PaperText::ofList(u"Inbox"_s, rows, ListType::Inbox);
    EXPECT_TRUE(paper.contains(u"<h2>Inbox</h2>"_s));
    EXPECT_TRUE(paper.contains(u"☐</td><td width=\"42%\">Oil &lt;the&gt; chairs"_s)) << qPrintable(paper);
    const auto person = context().insert<EntityContacts>();
    person->setFirstName(u"Ann"_s);
    const auto phone = context().insert<EntityPhone>();
    phone->setNumber(u"+1 23"_s);
    phone->setContact(person);
    EXPECT_FALSE(DBWorker::saveContext());
    ContactForm form(person);
    const QString sheet = PaperText::ofRecord(form);
    EXPECT_TRUE(sheet.contains(u"<h2>Ann"_s)) << qPrintable(sheet);
    EXPECT_TRUE(sheet.contains(u"+1 23"_s)) << qPrintable(sheet);
    QTimer::singleShot(300, [] {
        auto *preview = qobject_cast<QPrintPreviewDialog *>(QApplication::activeModalWidget());
        ASSERT_NE(preview, nullptr);
        preview->close();
    });
    run(ActionId::Print);
}

} // namespace

#include "shell/Shell.h"

#include "calendarsync/PassProgress.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "foundation/Region.h"
#include "objectstore/Sqlite.h"
#include "records/DraftKeeper.h"
#include "records/HelpAddresses.h"
#include "records/RecordWindow.h"
#include "records/capture/CaptureDrafts.h"
#include "shell/ApplicationLife.h"
#include "shell/MainWindow.h"
#include "shell/MainWindowController.h"
#include "shell/Shortcuts.h"
#include "shell/WindowCommands.h"
#include "shell/help/AboutWindowController.h"
#include "shell/help/HelpPages.h"
#include "shell/help/HelpWindow.h"
#include "shell/start/StartWindow.h"
#include "shell/start/StartWindowItem.h"
#include "store/StartWindowController.h"
#include "store/state/NotificationNames.h"
#include "widgets/Accessibility.h"
#include "widgets/Icons.h"
#include "widgets/LongWork.h"
#include "widgets/LookOfProgram.h"
#include "widgets/MessageBoxPresenter.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"
#include "widgets/WaitSign.h"
#include "workspace/LauncherBadge.h"
#include "workspace/Workspace.h"

#include <QApplication>
#include <QDesktopServices>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;

Shell::Shell()
    : commands(std::make_unique<WindowCommands>())
{
    bindCommands();
    HelpPages::setShortcuts(Shortcuts::page);
}

Shell::~Shell()
{
    // These belong to no window.
    delete HelpWindow::shared();
    delete AboutWindowController::shared();
}

void Shell::bindCommands()
{
    commands->bind(ActionId::Quit, [this] { quit(); });
    commands->bind(ActionId::UserGuide, [this] { openHelp(); });
    commands->bind(ActionId::HelpHere, [this] { HelpWindow::showPage(helpPage()); });
    commands->bind(ActionId::KeyboardShortcuts, [] { HelpWindow::showPage(HelpPages::shortcuts); });
    commands->bind(ActionId::OpenMainWindow, [] { StartWindowController::openMainWindow(); });
    commands->bind(ActionId::NewTask, [this] {
        if (controller)
            controller->menuClickNewTask();
    });
    commands->bind(ActionId::Search, [this] {
        if (!controller)
            return;
        controller->showWindow();
        NotificationCenter::defaultCenter().post(notifications::searchMorvane);
    });
    commands->bind(ActionId::Preferences, [this] {
        if (controller)
            controller->showSettings();
    });
}

/// Only who asks for it by a command can be asked back: a session that ends does not wait.
void Shell::quit()
{
    if (controller && !controller->closeNewWindows())
        return;
    if (ApplicationLife *life = ApplicationLife::shared())
        life->quit();
}

/// The dialogs of the toolkit speak the language of the program, where there are words of it.
static void loadWordsOfToolkit()
{
    static QTranslator words;
    const QLocale language(languageOfWords());
    if (language.language() != QLocale::English &&
        words.load(language, u"qtbase"_s, u"_"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&words);
}

void Shell::prepareApplication()
{
    Accessibility::install();
    QApplication::setStyle(new MorvaneStyle);
    QApplication::setPalette(Theme::palette());
    QApplication::setFont(Theme::applicationFont());
    LookOfProgram::showRemembered();
    loadWordsOfToolkit();
    // Where the words are left to right, the desktop's own wish stands.
    if (QLocale(languageOfWords()).textDirection() == Qt::RightToLeft)
        QApplication::setLayoutDirection(Qt::RightToLeft);
    QApplication::setApplicationDisplayName(u"Morvane"_s);
    QApplication::setDesktopFileName(u"com.halvern.morvane"_s);
    QApplication::setQuitOnLastWindowClosed(false);
    Alert::setPresenter(std::make_shared<MessageBoxPresenter>());
    passprogress::setBegin([](std::size_t steps) -> StepBlock {
        // Fewer are done before anyone notices.
        constexpr std::size_t many = 500;
        if (steps < many)
            return {};
        auto work = std::make_shared<LongWork>(steps, localized(u"Reading your calendars"_s), false);
        return [work] { return work->step(); };
    });
    sqlite::setWaitListener(WaitSign::showForStore);
    Workspace::setUrlOpener([](const QString &url) { return QDesktopServices::openUrl(QUrl(url)); });
}

void Shell::showMainWindow()
{
    if (!controller) {
        controller = std::make_unique<MainWindowController>();
        QObject::connect(controller->window(), &MainWindow::firstPainted, controller->window(), [this] {
            QApplication::setWindowIcon(Icons::application());
            look = std::make_unique<LookOfProgram>();
            look->followDesktop();
            LauncherBadge::show(badgeLabel, QGuiApplication::desktopFileName());
            if (ApplicationLife *life = ApplicationLife::shared()) {
                QObject::connect(life, &ApplicationLife::calendarsAllowed, controller.get(),
                                 &MainWindowController::showCalendars);
                life->windowWasPainted();
            }
        });
        QObject::connect(controller.get(), &MainWindowController::quitRequested, controller.get(),
                         [this] { quit(); });
        QObject::connect(controller.get(), &MainWindowController::userGuideRequested, controller.get(),
                         [this] { openHelp(); });
    }
    controller->showWindow();
    if (start && start->isVisible())
        start->showWindow(controller->window());
}

void Shell::showStartWindow()
{
    if (!start) {
        start = std::make_unique<StartWindow>();
        const auto connectItem = [this](StartWindowItem *item, auto chosen) {
            QObject::connect(item, &StartWindowItem::clicked, start.get(), chosen);
        };
        connectItem(start->itemGetStarted(), [] { StartWindowController::openStarted(); });
        connectItem(start->itemSample(), [] { StartWindowController::openBrowseSample(); });
        connectItem(start->itemUserGuide(), [] { StartWindowController::openHelp(); });
    }
    const bool isBehind = controller && controller->window()->isVisible();
    if (isBehind)
        controller->window()->raise();
    start->showWindow(isBehind ? controller->window() : nullptr);
}

void Shell::closeStartWindow()
{
    if (start)
        start->close();
}

bool Shell::mayLeaveStore()
{
    return !controller || controller->closeNewWindows();
}

void Shell::leaveStore()
{
    if (controller)
        controller->leaveDataBase();
}

/// The page about the window that the user is in.
QString Shell::helpPage() const
{
    const QWidget *window = QApplication::activeWindow();
    if (controller && window == controller->window())
        return controller->helpPage();
    if (const auto *record = qobject_cast<const RecordWindow *>(window))
        return HelpPages::ofRecords(record->entity());
    return window ? HelpPages::ofWindow(window->objectName()) : HelpPages::contents;
}

void Shell::changeDataBase()
{
    if (controller)
        controller->changeDataBase();
}

void Shell::openHelp()
{
    const QString page = HelpAddresses::guide(Region::preferredLocalizations());
    if (page.isEmpty() || !Workspace::openUrl(page))
        HelpWindow::showPage(HelpPages::contents);
}

/// As if they had been dropped on the window.
bool Shell::openFiles(const QStringList &paths)
{
    if (!controller || !controller->window()->isVisible())
        return false;
    Q_EMIT controller->window()->filesDropped(paths);
    return true;
}

bool Shell::commitEditing()
{
    if (QWidget *focused = QApplication::focusWidget())
        focused->clearFocus();
    // What a field does when it loses the keys may still wait for its turn.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
    // Whoever cannot be asked any more finds the text at the next start.
    DraftKeeper::finishAll();
    CaptureDraftKeeper::finishAll();
    return true;
}

void Shell::setBadgeLabel(const QString &label)
{
    badgeLabel = label;
    // Before the first picture the message bus would only keep the window waiting.
    if (controller && ApplicationLife::shared() && ApplicationLife::shared()->isPainted())
        LauncherBadge::show(label, QGuiApplication::desktopFileName());
}

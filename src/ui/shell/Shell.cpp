#include "shell/Shell.h"

#include "calendarsync/PassProgress.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "objectstore/Sqlite.h"
#include "records/DraftKeeper.h"
#include "shell/ApplicationLife.h"
#include "shell/MainWindow.h"
#include "shell/MainWindowController.h"
#include "widgets/Accessibility.h"
#include "widgets/Icons.h"
#include "widgets/LongWork.h"
#include "widgets/MessageBoxPresenter.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"
#include "widgets/WaitSign.h"
#include "workspace/LauncherBadge.h"
#include "workspace/Workspace.h"

#include <QApplication>
#include <QDesktopServices>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;

Shell::Shell() = default;
Shell::~Shell() = default;

void Shell::prepareApplication()
{
    Accessibility::install();
    QApplication::setStyle(new MorvaneStyle);
    QApplication::setPalette(Theme::palette());
    QApplication::setFont(Theme::applicationFont());
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
            LauncherBadge::show(badgeLabel, QGuiApplication::desktopFileName());
            if (ApplicationLife *life = ApplicationLife::shared()) {
                QObject::connect(life, &ApplicationLife::calendarsAllowed, controller.get(),
                                 &MainWindowController::showCalendars);
                life->windowWasPainted();
            }
        });
        QObject::connect(controller.get(), &MainWindowController::quitRequested, controller.get(), [this] {
            // Only who asks for it by the menu can be asked back: a session that ends does not wait.
            if (!controller->closeNewWindows())
                return;
            if (ApplicationLife *life = ApplicationLife::shared())
                life->quit();
        });
    }
    controller->showWindow();
}

/// The main window is also where the program begins.
void Shell::showStartWindow()
{
    showMainWindow();
}

bool Shell::commitEditing()
{
    if (QWidget *focused = QApplication::focusWidget())
        focused->clearFocus();
    // What a field does when it loses the keys may still wait for its turn.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
    // Whoever cannot be asked any more finds the text at the next start.
    DraftKeeper::finishAll();
    return true;
}

void Shell::setBadgeLabel(const QString &label)
{
    badgeLabel = label;
    // Before the first picture the message bus would only keep the window waiting.
    if (controller && ApplicationLife::shared() && ApplicationLife::shared()->isPainted())
        LauncherBadge::show(label, QGuiApplication::desktopFileName());
}

#include "shell/ApplicationLife.h"

#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "records/NewTaskRequest.h"
#include "records/Waiting.h"
#include "shell/QuitSignals.h"
#include "shell/SingleInstance.h"
#include "store/state/NotificationNames.h"
#include "usernotifications/DesktopNotifications.h"
#include "workspace/LauncherBadge.h"

#include <QApplication>
#include <QTimer>

static ApplicationLife *theLife = nullptr;

/// The bus takes a few milliseconds, which the user's first look should not wait for.
constexpr int busDelay = 50;

ApplicationLife::ApplicationLife(AppDelegate &appDelegate, SingleInstance *singleInstance)
    : delegate(appDelegate)
    , instance(singleInstance)
{
    theLife = this;
    connect(new QuitSignals(this), &QuitSignals::received, this, &ApplicationLife::quitForSystem);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, &ApplicationLife::stateChanged);
    // Without a window the program works on in the background, whatever the desktop says of it.
    connect(qGuiApp, &QGuiApplication::lastWindowClosed, this,
            [this] { stateChanged(Qt::ApplicationInactive); });
    if (instance)
        connect(instance, &SingleInstance::activated, this, &ApplicationLife::reopen);
    if (instance)
        connect(instance, &SingleInstance::actionActivated, this, &ApplicationLife::act);
    if (instance)
        connect(instance, &SingleInstance::filesWanted, this, &ApplicationLife::openFiles);
    openingTimer.setInterval(Waiting::lookInterval);
    connect(&openingTimer, &QTimer::timeout, this, &ApplicationLife::openWaitingFiles);
}

ApplicationLife::~ApplicationLife()
{
    theLife = nullptr;
}

ApplicationLife *ApplicationLife::shared()
{
    return theLife;
}

bool ApplicationLife::isEnding()
{
    return !theLife || theLife->isQuitting;
}

void ApplicationLife::windowWasPainted()
{
    wasPainted = true;
    if (instance)
        QTimer::singleShot(busDelay, instance, &SingleInstance::registerOnBus);
    QTimer::singleShot(busDelay, this, &ApplicationLife::startUserNotifications);
    stateChanged(QGuiApplication::applicationState());
}

void ApplicationLife::startUserNotifications()
{
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return;
    delegate.startUserNotifications(std::make_unique<DesktopNotifications>(
        QDBusConnection::sessionBus(), QStringLiteral("com.halvern.morvane"),
        localized(QStringLiteral("Show"))));
}

void ApplicationLife::stateChanged(Qt::ApplicationState state)
{
    const bool becomesActive = state == Qt::ApplicationActive;
    if (!wasPainted || becomesActive == isActive || isQuitting)
        return;
    isActive = becomesActive;
    if (becomesActive)
        delegate.applicationDidBecomeActive();
    else
        delegate.applicationDidResignActive();
}

void ApplicationLife::calendarsWereAllowed()
{
    delegate.applicationDidBecomeActive();
    Q_EMIT calendarsAllowed();
}

void ApplicationLife::reopen()
{
    delegate.startMainWindow();
    stateChanged(QGuiApplication::applicationState());
}

/// The actions of the desktop file. A question that stands is answered first, by the user.
void ApplicationLife::act(const QString &name)
{
    reopen();
    if (Waiting::isForUser())
        return;
    if (name == QStringLiteral("new-task"))
        NotificationCenter::defaultCenter().post(notifications::allDayCalendarCreateTask,
                                                 NewTaskRequest::today(Clock::now()));
    else if (name == QStringLiteral("user-guide"))
        delegate.openHelp();
}

void ApplicationLife::openFiles(const QStringList &paths)
{
    filesToOpen += paths;
    openingTimer.start();
}

void ApplicationLife::openWaitingFiles()
{
    if (!wasPainted || Waiting::isForUser() || !delegate.openFiles(filesToOpen))
        return;
    openingTimer.stop();
    filesToOpen.clear();
}

void ApplicationLife::quit()
{
    quitBy(AppDelegate::QuitWish::OfUser);
}

void ApplicationLife::quitForSystem()
{
    quitBy(AppDelegate::QuitWish::OfSystem);
}

void ApplicationLife::quitBy(AppDelegate::QuitWish wish)
{
    if (std::exchange(isQuitting, true)) {
        // While the first wish still asks its question, that of the user changes nothing; that of the system
        // answers it.
        isForced = wish == AppDelegate::QuitWish::OfSystem;
        if (isForced)
            QCoreApplication::exit();
        return;
    }
    if (delegate.applicationShouldTerminate(wish) == AppDelegate::TerminateReply::Cancel && !isForced) {
        isQuitting = false;
        return;
    }
    delegate.applicationWillTerminate();
    if (wasPainted)
        LauncherBadge::show({}, QGuiApplication::desktopFileName());
    QCoreApplication::exit();
}

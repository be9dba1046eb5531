#pragma once

#include "store/AppDelegate.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

class SingleInstance;

/// Leads the program through its life: activation, resignation, and the one road on which it quits.
class ApplicationLife : public QObject
{
    Q_OBJECT
public:
    ApplicationLife(AppDelegate &appDelegate, SingleInstance *singleInstance);
    ~ApplicationLife() override;

    /// The one of the running program, or null.
    static ApplicationLife *shared();

    /// Whether the program is quitting; what is answered then is not the user's word.
    static bool isEnding();

    /// The first picture stands: what could wait until then begins.
    void windowWasPainted();
    bool isPainted() const { return wasPainted; }
    /// The user has let the program use the calendars: it begins to, as at an activation.
    void calendarsWereAllowed();
    /// Offers what is in files of records, as soon as a window is there and no question stands.
    void openFiles(const QStringList &paths);
    /// Saves and ends the program, unless something is to stay open.
    void quit();
    /// The same by the wish of the system, which does not wait for an answer of the user.
    void quitForSystem();

Q_SIGNALS:
    /// There are calendars to choose from now.
    void calendarsAllowed();

private:
    void quitBy(AppDelegate::QuitWish wish);
    void stateChanged(Qt::ApplicationState state);
    void startUserNotifications();
    void reopen();
    void act(const QString &name);
    void openWaitingFiles();

    AppDelegate &delegate;
    SingleInstance *instance;
    bool wasPainted = false;
    bool isActive = false;
    bool isQuitting = false;
    bool isForced = false;
    QStringList filesToOpen;
    QTimer openingTimer;
};

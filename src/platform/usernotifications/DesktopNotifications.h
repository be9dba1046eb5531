#pragma once

#include "usernotifications/NotificationPresenter.h"

#include <QDBusConnection>
#include <QObject>

#include <map>

/// Messages through the desktop's notification server (org.freedesktop.Notifications, version 1.2 of that
/// protocol). Never waits for the server.
class DesktopNotifications : public QObject, public NotificationPresenter
{
    Q_OBJECT

public:
    /// \param applicationId the name of the desktop file without its suffix.
    /// \param openLabel the word on the button of a message that has one.
    DesktopNotifications(QDBusConnection connection, QString applicationId, QString openLabel);

    void present(const UserNotification &notification, Outcome outcome) override;

private Q_SLOTS:
    void actionInvoked(uint id, const QString &action);
    void notificationClosed(uint id, uint reason);

private:
    QDBusConnection bus;
    QString application;
    QString label;
    /// What is on the screen, by the server's number.
    std::map<uint, Outcome> shown;
};

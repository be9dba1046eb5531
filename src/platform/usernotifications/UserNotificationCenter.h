#pragma once

#include "foundation/Date.h"

#include <QByteArray>
#include <QMap>
#include <QString>

#include <vector>

/// A message to the user that is to appear at a moment.
struct UserNotification
{
    QString title;
    QString subtitle;
    Date deliveryDate;
    QByteArray deliveryTimeZone;
    bool hasActionButton = false;
    QMap<QString, QString> userInfo;

    bool operator==(const UserNotification &) const = default;
};

/// The list of messages that are still to appear.
class UserNotificationCenter
{
public:
    static UserNotificationCenter &defaultUserNotificationCenter();

    const std::vector<UserNotification> &scheduledNotifications() const { return scheduled; }
    /// Replaces the whole list.
    void setScheduledNotifications(std::vector<UserNotification> notifications)
    {
        scheduled = std::move(notifications);
    }
    /// Takes out the equal one, if it is there.
    void removeScheduledNotification(const UserNotification &notification);

private:
    std::vector<UserNotification> scheduled;
};

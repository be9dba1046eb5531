#include "usernotifications/UserNotificationCenter.h"

#include <algorithm>

UserNotificationCenter &UserNotificationCenter::defaultUserNotificationCenter()
{
    static UserNotificationCenter center;
    return center;
}

void UserNotificationCenter::removeScheduledNotification(const UserNotification &notification)
{
    std::erase(scheduled, notification);
}

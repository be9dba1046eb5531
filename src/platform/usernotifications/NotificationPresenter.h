#pragma once

#include "usernotifications/UserNotification.h"

#include <functional>

/// Shows messages on the desktop.
class NotificationPresenter
{
public:
    virtual ~NotificationPresenter() = default;

    /// What became of a message, told at most once for each of the two.
    struct Outcome
    {
        /// The user clicked it.
        std::function<void()> activated;
        /// Nobody could show it.
        std::function<void()> failed;
    };
    virtual void present(const UserNotification &notification, Outcome outcome) = 0;
};

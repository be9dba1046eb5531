#pragma once

#include "foundation/ClockWatch.h"
#include "usernotifications/NotificationPresenter.h"
#include "usernotifications/UserNotification.h"

#include <QSet>

#include <functional>
#include <memory>
#include <vector>

/// The messages that are still to appear. They are kept in a file, appear on time while the program lives,
/// and those that were missed appear as one when it starts again. Main thread only.
class UserNotificationCenter
{
public:
    static UserNotificationCenter &defaultUserNotificationCenter();

    const std::vector<UserNotification> &scheduledNotifications() const { return scheduled; }
    /// Replaces the whole list, of which what is due by now appears, or stays until it can.
    void setScheduledNotifications(std::vector<UserNotification> notifications);
    /// Adds some; what is due among them appears with the next look.
    void addScheduledNotifications(const std::vector<UserNotification> &notifications);
    /// Takes out the equal one, if it is there.
    void removeScheduledNotification(const UserNotification &notification);
    /// Takes out all that the condition passes.
    void removeScheduledNotifications(const std::function<bool(const UserNotification &)> &condition);

    /// Takes the list from a file and keeps it there from now on. An unreadable file counts as empty and is
    /// put aside.
    void open(const QString &path);
    /// Forgets list, file, presenter and handler.
    void close();
    /// Who shows messages; without one, and when nobody could show them, they stay scheduled.
    void setPresenter(std::unique_ptr<NotificationPresenter> presenter);
    /// Called when the user clicks a message; with an empty one when it is the one for several missed ones.
    using ActivationHandler = std::function<void(const UserNotification &)>;
    /// Asked of each message when it is due: one that is not meant any more goes unseen.
    using Condition = std::function<bool(const UserNotification &)>;
    void setDeliveryCondition(Condition condition) { isMeant = std::move(condition); }
    /// Called after something that was due has been handed to the presenter.
    void setDeliveryHandler(std::function<void()> handler) { delivered = std::move(handler); }
    void setActivationHandler(ActivationHandler handler) { activated = std::move(handler); }

    /// Shows what is due by the clock. Calls itself in time, also when the clock is set and after a sleep.
    void deliverDue();
    /// Shows what should have appeared before now: one message as it is, several as one.
    /// \param digest makes the one message of several.
    void deliverMissed(const std::function<UserNotification(const std::vector<UserNotification> &)> &digest);

private:
    void changed();
    void arm();
    std::vector<UserNotification> takeDue();
    void presentEach(const std::vector<UserNotification> &due);
    void tellOfDelivery() const;
    void present(const UserNotification &notification, const UserNotification &clicked,
                 const std::vector<UserNotification> &meant);
    void keepForLater(const std::vector<UserNotification> &notifications);

    std::vector<UserNotification> scheduled;
    QString filePath;
    std::unique_ptr<NotificationPresenter> presenter;
    ActivationHandler activated;
    std::function<void()> delivered;
    Condition isMeant;
    /// Whether nobody could show what was due last.
    bool isUnseen = false;
    /// The texts that the log has told of as not shown.
    QSet<QString> reported;
    /// Lives for as long as the timer that was set last is the right one.
    std::shared_ptr<int> armed;
    /// While there is somebody who shows messages.
    std::unique_ptr<ClockWatch> clockWatch;
};

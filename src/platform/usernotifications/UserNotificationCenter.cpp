#include "usernotifications/UserNotificationCenter.h"

#include "foundation/Clock.h"
#include "foundation/Log.h"
#include "foundation/MainLoop.h"
#include "usernotifications/NotificationsFile.h"

#include <QFile>

#include <algorithm>

namespace {

/// For systems on which nobody tells that the clock was set.
constexpr Seconds longestWait{60.0};

} // namespace

UserNotificationCenter &UserNotificationCenter::defaultUserNotificationCenter()
{
    static UserNotificationCenter center;
    return center;
}

void UserNotificationCenter::setScheduledNotifications(std::vector<UserNotification> notifications)
{
    const std::vector<UserNotification> former = scheduled;
    // Such as what came while the machine slept.
    const std::vector<UserNotification> due = takeDue();
    // Who gives the list anew may have taken them from the present one.
    std::erase_if(notifications, [&due](const UserNotification &one) {
        return std::find(due.begin(), due.end(), one) != due.end();
    });
    scheduled = std::move(notifications);
    if (presenter)
        presentEach(due);
    else
        scheduled.insert(scheduled.begin(), due.begin(), due.end());
    if (scheduled != former)
        changed();
}

void UserNotificationCenter::addScheduledNotifications(const std::vector<UserNotification> &notifications)
{
    scheduled.insert(scheduled.end(), notifications.begin(), notifications.end());
    if (!notifications.empty())
        changed();
}

void UserNotificationCenter::removeScheduledNotification(const UserNotification &notification)
{
    removeScheduledNotifications([&](const UserNotification &one) { return one == notification; });
}

void UserNotificationCenter::removeScheduledNotifications(
    const std::function<bool(const UserNotification &)> &condition)
{
    if (std::erase_if(scheduled, condition) > 0)
        changed();
}

void UserNotificationCenter::open(const QString &path)
{
    filePath = path;
    auto kept = notificationsfile::read(path);
    if (!kept) {
        Log::line(kept.error().message);
        const QString aside = path + QStringLiteral(".unreadable");
        QFile::remove(aside);
        QFile::rename(path, aside);
    } else {
        scheduled = std::move(*kept);
    }
    arm();
}

void UserNotificationCenter::close()
{
    scheduled.clear();
    filePath.clear();
    presenter.reset();
    clockWatch.reset();
    activated = nullptr;
    delivered = nullptr;
    isMeant = nullptr;
    isUnseen = false;
    reported.clear();
    armed.reset();
}

void UserNotificationCenter::setPresenter(std::unique_ptr<NotificationPresenter> newPresenter)
{
    presenter = std::move(newPresenter);
    isUnseen = false;
    clockWatch = presenter ? std::make_unique<ClockWatch>([this] { deliverDue(); }) : nullptr;
    arm();
}

void UserNotificationCenter::changed()
{
    if (!filePath.isEmpty()) {
        if (const auto error = notificationsfile::write(filePath, scheduled))
            Log::line(
                QStringLiteral("Cannot keep the scheduled messages %1: %2").arg(filePath, error->message));
    }
    arm();
}

void UserNotificationCenter::arm()
{
    armed.reset();
    if (!presenter || scheduled.empty())
        return;
    const auto next =
        std::min_element(scheduled.begin(), scheduled.end(), [](const auto &one, const auto &other) {
            return one.deliveryDate < other.deliveryDate;
        });
    const Seconds shortestWait = isUnseen ? longestWait : Seconds(0);
    const Seconds wait = std::clamp(Seconds(next->deliveryDate - Clock::now()), shortestWait, longestWait);
    armed = std::make_shared<int>();
    MainLoop::performDelayed(wait, [this, timer = std::weak_ptr(armed)] {
        if (!timer.expired())
            deliverDue();
    });
}

std::vector<UserNotification> UserNotificationCenter::takeDue()
{
    const Date now = Clock::now();
    const auto firstDue = std::stable_partition(scheduled.begin(), scheduled.end(),
                                                [now](const auto &one) { return one.deliveryDate > now; });
    std::vector<UserNotification> due(firstDue, scheduled.end());
    scheduled.erase(firstDue, scheduled.end());
    if (isMeant)
        std::erase_if(due, std::not_fn(isMeant));
    std::stable_sort(due.begin(), due.end(), [](const auto &one, const auto &other) {
        return one.deliveryDate < other.deliveryDate;
    });
    return due;
}

void UserNotificationCenter::present(const UserNotification &notification, const UserNotification &clicked,
                                     const std::vector<UserNotification> &meant)
{
    presenter->present(notification, {.activated =
                                          [this, clicked] {
                                              if (activated)
                                                  activated(clicked);
                                          },
                                      .failed = [this, meant] { keepForLater(meant); }});
}

void UserNotificationCenter::presentEach(const std::vector<UserNotification> &due)
{
    isUnseen = false;
    for (const UserNotification &one : due)
        present(one, one, {one});
    if (!due.empty())
        tellOfDelivery();
}

void UserNotificationCenter::tellOfDelivery() const
{
    if (delivered)
        delivered();
}

/// They are tried again after a while, and else are missed ones at the next start.
void UserNotificationCenter::keepForLater(const std::vector<UserNotification> &notifications)
{
    for (const UserNotification &one : notifications)
        if (!reported.contains(one.subtitle)) {
            reported.insert(one.subtitle);
            Log::line(QStringLiteral("No desktop showed the message %1").arg(one.subtitle));
        }
    isUnseen = true;
    scheduled.insert(scheduled.end(), notifications.begin(), notifications.end());
    changed();
}

void UserNotificationCenter::deliverDue()
{
    if (!presenter)
        return;
    const std::vector<UserNotification> due = takeDue();
    presentEach(due);
    due.empty() ? arm() : changed();
}

void UserNotificationCenter::deliverMissed(
    const std::function<UserNotification(const std::vector<UserNotification> &)> &digest)
{
    if (!presenter)
        return;
    const std::vector<UserNotification> missed = takeDue();
    if (missed.size() <= 1)
        presentEach(missed);
    else
        present(digest(missed), {}, missed);
    if (missed.size() > 1)
        tellOfDelivery();
    if (!missed.empty())
        changed();
}

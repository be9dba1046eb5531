#include "usernotifications/DesktopNotifications.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QTimer>
#include <QVariantMap>

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");
/// What a click on the message itself is called.
const QString defaultAction = QStringLiteral("default");
const QString openAction = QStringLiteral("open");
constexpr uchar normalUrgency = 1;
constexpr int serversOwnTimeout = -1;
constexpr auto afterClosing = std::chrono::seconds(2);

} // namespace

DesktopNotifications::DesktopNotifications(QDBusConnection connection, QString applicationId,
                                           QString openLabel)
    : bus(std::move(connection))
    , application(std::move(applicationId))
    , label(std::move(openLabel))
{
    bus.connect(service, path, service, QStringLiteral("ActionInvoked"), this,
                SLOT(actionInvoked(uint, QString)));
    bus.connect(service, path, service, QStringLiteral("NotificationClosed"), this,
                SLOT(notificationClosed(uint, uint)));
}

void DesktopNotifications::present(const UserNotification &notification, Outcome outcome)
{
    // Without a bus a call would never be answered.
    if (!bus.isConnected()) {
        if (outcome.failed)
            outcome.failed();
        return;
    }
    QStringList actions = {defaultAction, label};
    if (notification.hasActionButton)
        actions += {openAction, label};
    const QVariantMap hints = {{QStringLiteral("desktop-entry"), application},
                               {QStringLiteral("urgency"), QVariant::fromValue(normalUrgency)}};
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, service, QStringLiteral("Notify"));
    // Servers may read the body as markup.
    constexpr uint replacesNone = 0;
    constexpr qsizetype mostShown = 1200;
    call << notification.title << replacesNone << application << notification.title
         << notification.subtitle.left(mostShown).toHtmlEscaped() << actions << hints << serversOwnTimeout;
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, outcome] {
        const QDBusPendingReply<uint> reply = *watcher;
        watcher->deleteLater();
        if (!reply.isError())
            shown[reply.value()] = outcome;
        else if (outcome.failed)
            outcome.failed();
    });
}

void DesktopNotifications::actionInvoked(uint id, const QString &action)
{
    // The server tells everybody of every message.
    const auto found = shown.find(id);
    if (found == shown.end() || (action != defaultAction && action != openAction))
        return;
    const Outcome outcome = found->second;
    shown.erase(found);
    if (outcome.activated)
        outcome.activated();
}

void DesktopNotifications::notificationClosed(uint id, uint)
{
    // Some servers tell of the click only after this.
    QTimer::singleShot(afterClosing, this, [this, id] { shown.erase(id); });
}

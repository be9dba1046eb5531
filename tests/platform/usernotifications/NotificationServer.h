#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

/// A desktop that shows messages: a notification server on a connection of its own.
class NotificationServer : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Message
    {
        QString application, icon, summary, body;
        QStringList actions;
        QVariantMap hints;
    };
    QList<Message> shown;

    NotificationServer()
        : bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("server")))
    {
        bus.registerObject(QStringLiteral("/org/freedesktop/Notifications"), this,
                           QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
        bus.registerService(QStringLiteral("org.freedesktop.Notifications"));
    }
    ~NotificationServer() override
    {
        bus.unregisterService(QStringLiteral("org.freedesktop.Notifications"));
        QDBusConnection::disconnectFromBus(QStringLiteral("server"));
    }
    Q_DISABLE_COPY_MOVE(NotificationServer)

    void click(int message, const QString &action) { Q_EMIT ActionInvoked(uint(message) + 1, action); }

public Q_SLOTS:
    uint Notify(const QString &application, uint, const QString &icon, const QString &summary,
                const QString &body, const QStringList &actions, const QVariantMap &hints, int)
    {
        shown.append({application, icon, summary, body, actions, hints});
        return uint(shown.size());
    }

Q_SIGNALS:
    void ActionInvoked(uint id, const QString &action);

private:
    QDBusConnection bus;
};

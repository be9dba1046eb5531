#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QMap>
#include <QObject>
#include <QVariantMap>

using SettingsBySpace = QMap<QString, QVariantMap>;
Q_DECLARE_METATYPE(SettingsBySpace)

/// A colour as the portal passes it on: three numbers in a structure.
struct PortalColour
{
    double red, green, blue;
};
Q_DECLARE_METATYPE(PortalColour)

inline QDBusArgument &operator<<(QDBusArgument &argument, const PortalColour &colour)
{
    argument.beginStructure();
    argument << colour.red << colour.green << colour.blue;
    argument.endStructure();
    return argument;
}

inline const QDBusArgument &operator>>(const QDBusArgument &argument, PortalColour &colour)
{
    argument.beginStructure();
    argument >> colour.red >> colour.green >> colour.blue;
    argument.endStructure();
    return argument;
}

/// A desktop's settings portal, on a connection of its own.
class SettingsPortal : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    SettingsBySpace settings;

    SettingsPortal()
        : bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("portal")))
    {
        qDBusRegisterMetaType<SettingsBySpace>();
        qDBusRegisterMetaType<PortalColour>();
        bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), this,
                           QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
    }
    ~SettingsPortal() override
    {
        bus.unregisterService(QStringLiteral("org.freedesktop.portal.Desktop"));
        QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
    }
    Q_DISABLE_COPY_MOVE(SettingsPortal)

    void appear() { bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")); }
    void change(const QString &space, const QString &key, const QVariant &value)
    {
        settings[space][key] = value;
        Q_EMIT SettingChanged(space, key, QDBusVariant(value));
    }

public Q_SLOTS:
    SettingsBySpace ReadAll(const QStringList &) { return settings; }

Q_SIGNALS:
    void SettingChanged(const QString &space, const QString &key, const QDBusVariant &value);

private:
    QDBusConnection bus;
};

#pragma once

#include <QString>
#include <QVariant>

/// Settings that travel with the user between devices. Without a cloud they are the settings of this machine.
class CloudUserDefaults
{
public:
    CloudUserDefaults() = delete;

    static QVariant objectForKey(const QString &key);
    static qint64 integerForKey(const QString &key);
    static void setObject(const QVariant &object, const QString &forKey);
    /// Begins to watch for changes from elsewhere; there are none without a cloud.
    static void registerForNotifications() {}
};

#pragma once

#include <QString>
#include <QVariant>

/// Settings that travel with the user between devices: those of this machine, mirrored in the settings that
/// the devices share. Without a cloud they are the settings of this machine alone.
class CloudUserDefaults
{
public:
    CloudUserDefaults() = delete;

    /// Writes to both; an invalid value removes the key.
    static void setObject(const QVariant &object, const QString &forKey);
    static void setString(const QString &string, const QString &forKey);
    static void setBool(bool boolean, const QString &forKey);
    static void setInteger(qint64 integer, const QString &forKey);
    static void setFloat(double number, const QString &forKey);
    static void removeObjectForKey(const QString &key);

    /// The shared value; else that of this machine, which is then shared. An invalid variant if neither is
    /// there.
    static QVariant objectForKey(const QString &key);
    // The same converted; empty, false or 0 if absent or of another type.
    static QString stringForKey(const QString &key);
    static bool boolForKey(const QString &key);
    static qint64 integerForKey(const QString &key);
    static double floatForKey(const QString &key);

    /// Writes what is not written yet and reads what other devices changed.
    static void synchronize();
    /// Begins to watch for changes from elsewhere; they are taken over into the settings of this machine,
    /// and `notifications::preferences` tells of them. A second call does nothing.
    static void registerForNotifications();
    static void removeNotifications();

    /// Keeps this machine's side in a set of its own from now on, filled with the shared values that it
    /// lacks; an empty name means the standard settings. A name with a path separator is refused.
    static void setSuiteName(const QString &name);
    /// Empty for the standard settings.
    static QString suiteName();
};

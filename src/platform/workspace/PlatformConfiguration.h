#pragma once

#include <QJsonObject>
#include <QString>

/// What is set for this machine rather than for the user's records: `platform.json` in the configuration
/// folder.
class PlatformConfiguration
{
public:
    /// Read from the file at each construction; a missing or broken file has no values.
    PlatformConfiguration();

    /// What the user answered when asked for access to something: "events", "reminders" or "contacts".
    /// 0 not asked yet, 2 denied, 3 granted.
    int authorization(const QString &what) const;
    /// Keeps such an answer in the file; everything else in it stays. A failure is logged.
    static void setAuthorization(const QString &what, int answer);
    /// A text value, or an empty text.
    QString text(const QString &key) const;
    /// A text value of an object that stands under a key, or an empty text.
    QString textIn(const QString &key, const QString &name) const;
    /// Keeps a text value in the file; everything else in it stays. A failure is logged.
    static void setText(const QString &key, const QString &value);

private:
    /// Writes the value; a file that could not be read is put aside first.
    static void write(const QString &key, const QJsonValue &value);

    QJsonObject values;
    bool isBroken = false;
};

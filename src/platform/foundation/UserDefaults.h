#pragma once

#include "foundation/Date.h"
#include "foundation/NotificationCenter.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QVariant>

#include <memory>

Q_DECLARE_METATYPE(Date)

class UserDefaults;

/// A value of a table of settings became another one, or went.
struct DefaultsChange
{
    const UserDefaults *defaults;
    QString key;
};

/// Posted at once, after the change.
inline constexpr NotificationName<DefaultsChange> userDefaultsDidChange{u"UserDefaultsDidChange"};

/// The settings of the user: a persistent table of key and value, kept in one JSON file. Main thread.
///
/// Values are booleans, numbers, texts, lists, maps, byte arrays and `Date`. In the file a date is an object
/// {"$date": "2026-11-21T09:00:00Z"} and bytes are {"$data": "<base64>"}; all else is plain JSON. The file is
/// written whole and atomically, soon after a change and at the latest when this object goes. What the file
/// holds under keys that nobody asks for is kept as it is.
///
/// A file that holds no JSON object is set aside under another name and a new one is begun. A file that
/// exists but cannot be opened is left alone: the settings then live in memory only.
class UserDefaults
{
public:
    /// The settings of the program, in "Morvane/defaults.json" of the configuration folder.
    static UserDefaults &standard();

    explicit UserDefaults(const QString &filePath);
    ~UserDefaults();
    UserDefaults(const UserDefaults &) = delete;
    UserDefaults &operator=(const UserDefaults &) = delete;

    /// The value in the type that it was stored with (whole numbers as qint64); an invalid variant if there
    /// is none.
    QVariant object(const QString &key) const;
    /// Stores a value; an invalid variant removes the key.
    void setObject(const QString &key, const QVariant &value);
    void removeObject(const QString &key);
    bool contains(const QString &key) const;

    /// Texts as they are, numbers as text; an empty text if absent or of another type.
    QString string(const QString &key) const;
    /// Numbers truncated, texts by their leading number, booleans as 1 and 0; 0 if absent.
    qint64 integer(const QString &key) const;
    /// As `integer`, with fractions.
    double number(const QString &key) const;
    /// True for a number other than 0 and for texts such as "YES", "true" and "1"; false if absent.
    bool boolean(const QString &key) const;
    OptionalDate date(const QString &key) const;

    /// Writes what is not written yet. False if that failed; the values then stay in memory and the next call
    /// tries again.
    bool synchronize();

private:
    void load();
    void setAside(const QString &reason);
    void changed(const QString &key);
    void scheduleWrite();
    bool write();
    void reportWriteFailure(const QString &reason);

    QString path;
    QJsonObject values;
    bool isWritten = true;
    bool isWriteScheduled = false;
    bool isMemoryOnly = false;
    bool isFailureReported = false;
    std::shared_ptr<bool> alive;
};

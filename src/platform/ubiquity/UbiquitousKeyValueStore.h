#pragma once

#include "foundation/NotificationCenter.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <optional>

class QFileSystemWatcher;

/// What the other devices of the user changed in the shared settings.
struct UbiquitousChange
{
    /// 0 a change of the server, 1 the first reading, 2 the quota is used up, 3 another account.
    std::optional<int> reason;
    QStringList keys;
};

inline constexpr NotificationName<UbiquitousChange> ubiquitousStoreDidChangeExternally{
    u"NSUbiquitousKeyValueStoreDidChangeExternallyNotification"};

/// A few settings that the user's devices share: a table of key and value in one file of the ubiquity
/// container, "KeyValueStore.json", with the values in the form of `DefaultsCoding`. Main thread.
///
/// The file is read again before each write, so that keys of other devices stay. Whoever carries it between
/// the devices may take it away for a moment or bring it in parts: while it is missing or holds no JSON
/// object, what was read last goes on to count. A copy that is left over since two devices wrote at once
/// gives the keys that the file lacks, and goes. A write that fails leaves the file as it was; the value is
/// then kept until the file is read again.
class UbiquitousKeyValueStore
{
public:
    /// The store of the container in use, or null if there is no container. One that is watched is watched on
    /// after its container has gone and come back.
    static UbiquitousKeyValueStore *defaultStore();

    explicit UbiquitousKeyValueStore(const QString &folder);
    ~UbiquitousKeyValueStore();
    UbiquitousKeyValueStore(const UbiquitousKeyValueStore &) = delete;
    UbiquitousKeyValueStore &operator=(const UbiquitousKeyValueStore &) = delete;

    /// The value as it was last read or written here; an invalid variant if there is none.
    QVariant object(const QString &key) const;
    QStringList keys() const { return values.keys(); }
    /// Stores a value; an invalid variant removes the key. False if the file could not be written.
    bool setObject(const QString &key, const QVariant &value);
    bool removeObject(const QString &key) { return setObject(key, {}); }

    /// Reads the file and tells by a notification what changed since it was last read.
    void synchronize();
    /// From now on the same happens whenever the file changes.
    void watch();

private:
    /// Absent if it cannot be read now.
    std::optional<QJsonObject> read() const;
    void takeFromCopies();
    void look();
    bool write(const QJsonObject &newValues) const;

    QString path;
    QJsonObject values;
    /// What the file held when it could be read last, with what of it was not told of yet.
    QJsonObject inFile;
    std::unique_ptr<QFileSystemWatcher> watcher;
};

#include "ubiquity/UbiquitousKeyValueStore.h"

#include "foundation/AtomicFile.h"
#include "foundation/DefaultsCoding.h"
#include "foundation/Log.h"
#include "ubiquity/UbiquityContainer.h"

#include <QFile>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QJsonDocument>

#include <utility>

UbiquitousKeyValueStore *UbiquitousKeyValueStore::defaultStore()
{
    static std::unique_ptr<UbiquitousKeyValueStore> store;
    static QString folderOfStore;
    const QString folder = UbiquityContainer::path();
    if (folder != folderOfStore || folder.isEmpty()) {
        store = folder.isEmpty() ? nullptr : std::make_unique<UbiquitousKeyValueStore>(folder);
        folderOfStore = folder;
    }
    return store.get();
}

UbiquitousKeyValueStore::UbiquitousKeyValueStore(const QString &folder)
    : path(folder + QStringLiteral("/KeyValueStore.json"))
    , values(read())
{}

UbiquitousKeyValueStore::~UbiquitousKeyValueStore() = default;

QJsonObject UbiquitousKeyValueStore::read() const
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}

bool UbiquitousKeyValueStore::write(const QJsonObject &newValues) const
{
    const OptionalError error = writeFileAtomically(path, QJsonDocument(newValues).toJson());
    if (error)
        Log::line(QStringLiteral("Cannot write the shared settings to %1: %2").arg(path, error->message));
    return !error;
}

QVariant UbiquitousKeyValueStore::object(const QString &key) const
{
    const QJsonValue value = values.value(key);
    return value.isUndefined() ? QVariant() : variantFromJson(value);
}

bool UbiquitousKeyValueStore::setObject(const QString &key, const QVariant &value)
{
    QJsonObject inFile = read();
    const QJsonObject before = inFile;
    if (value.isValid())
        inFile.insert(key, jsonFromVariant(value));
    else
        inFile.remove(key);
    // What came from elsewhere under other keys is noticed by the next look at the file.
    if (value.isValid())
        values.insert(key, inFile.value(key));
    else
        values.remove(key);
    return inFile == before || write(inFile);
}

void UbiquitousKeyValueStore::synchronize()
{
    const QJsonObject before = std::exchange(values, read());
    UbiquitousChange change{0, {}};
    for (const QString &key : before.keys() + values.keys()) {
        if (before.value(key) != values.value(key) && !change.keys.contains(key))
            change.keys.append(key);
    }
    if (!change.keys.isEmpty())
        NotificationCenter::defaultCenter().post(ubiquitousStoreDidChangeExternally, change);
}

void UbiquitousKeyValueStore::watch()
{
    if (watcher)
        return;
    watcher = std::make_unique<QFileSystemWatcher>();
    // A file that is replaced as a whole is another one: its folder is what tells of it.
    watcher->addPath(QFileInfo(path).path());
    if (QFile::exists(path))
        watcher->addPath(path);
    const auto look = [this] {
        if (!watcher->files().contains(path) && QFile::exists(path))
            watcher->addPath(path);
        synchronize();
    };
    QObject::connect(watcher.get(), &QFileSystemWatcher::directoryChanged, watcher.get(), look);
    QObject::connect(watcher.get(), &QFileSystemWatcher::fileChanged, watcher.get(), look);
}

#include "ubiquity/UbiquitousKeyValueStore.h"

#include "foundation/AtomicFile.h"
#include "foundation/DefaultsCoding.h"
#include "foundation/Log.h"
#include "ubiquity/UbiquityContainer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QJsonDocument>
#include <QTimer>

#include <utility>

UbiquitousKeyValueStore *UbiquitousKeyValueStore::defaultStore()
{
    static std::unique_ptr<UbiquitousKeyValueStore> store;
    static QString folderOfStore;
    static bool wasAway = false;
    const QString folder = UbiquityContainer::path();
    const bool isBack = std::exchange(wasAway, folder.isEmpty()) && !folder.isEmpty();
    if (folder.isEmpty())
        return nullptr;
    if (folder != folderOfStore) {
        const bool wasWatched = store && store->watcher;
        store = std::make_unique<UbiquitousKeyValueStore>(folder);
        folderOfStore = folder;
        if (wasWatched)
            store->watch();
    } else if (isBack && store->watcher) {
        store->watcher.reset();
        store->watch();
        // Whoever asks gets an answer first.
        QTimer::singleShot(0, store->watcher.get(), [] { store->synchronize(); });
    }
    return store.get();
}

UbiquitousKeyValueStore::UbiquitousKeyValueStore(const QString &folder)
    : path(folder + QStringLiteral("/KeyValueStore.json"))
    , values(read().value_or(QJsonObject()))
    , inFile(values)
{}

UbiquitousKeyValueStore::~UbiquitousKeyValueStore() = default;

static std::optional<QJsonObject> objectIn(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

std::optional<QJsonObject> UbiquitousKeyValueStore::read() const
{
    return objectIn(path);
}

/// As programs name them that carry folders between computers: "KeyValueStore.sync-conflict-….json",
/// "KeyValueStore (conflicted copy ….json".
void UbiquitousKeyValueStore::takeFromCopies()
{
    const QFileInfo own(path);
    QDir folder = own.dir();
    std::optional<QJsonObject> all = read();
    for (const QString &name :
         folder.entryList({own.completeBaseName() + QStringLiteral("*conflict*.json")}, QDir::Files)) {
        const std::optional<QJsonObject> copy = objectIn(folder.filePath(name));
        if (!all || !copy)
            continue;
        const QJsonObject before = *all;
        for (auto key = copy->begin(); key != copy->end(); ++key) {
            if (!all->contains(key.key()))
                all->insert(key.key(), key.value());
        }
        if (*all == before || write(*all))
            folder.remove(name);
    }
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
    const std::optional<QJsonObject> present = read();
    if (present)
        inFile = *present;
    if (value.isValid())
        inFile.insert(key, jsonFromVariant(value));
    else
        inFile.remove(key);
    // What came from elsewhere under other keys is noticed by the next look at the file.
    if (value.isValid())
        values.insert(key, inFile.value(key));
    else
        values.remove(key);
    return inFile == present || write(inFile);
}

void UbiquitousKeyValueStore::synchronize()
{
    takeFromCopies();
    const QJsonObject before = std::exchange(values, read().value_or(values));
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
    const auto changed = [this] { look(); };
    QObject::connect(watcher.get(), &QFileSystemWatcher::directoryChanged, watcher.get(), changed);
    QObject::connect(watcher.get(), &QFileSystemWatcher::fileChanged, watcher.get(), changed);
}

void UbiquitousKeyValueStore::look()
{
    if (!watcher->files().contains(path) && QFile::exists(path))
        watcher->addPath(path);
    synchronize();
}

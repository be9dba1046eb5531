#include "eventkit/FolderWatcher.h"

#include "eventkit/FileStamp.h"

#include <QFile>
#include <QSet>

static constexpr int quietMilliseconds = 200;

FolderWatcher::FolderWatcher(const FolderTree &tree, std::function<void()> changed)
    : folderTree(tree)
    , report(std::move(changed))
    , known(tree.stampsOf(tree.folders()))
{
    delay.setSingleShot(true);
    delay.setInterval(quietMilliseconds);
    connect(&watcher, &QFileSystemWatcher::directoryChanged, &delay, qOverload<>(&QTimer::start));
    connect(&delay, &QTimer::timeout, this, &FolderWatcher::check);
    watchFolders();
}

void FolderWatcher::watchFolders()
{
    const QStringList wanted = folderTree.folders();
    const QStringList watched = watcher.directories();
    const QSet<QString> present(watched.begin(), watched.end());
    QStringList added;
    for (const QString &folder : wanted)
        if (!present.contains(folder) && QFile::exists(folder))
            added.append(folder);
    if (!added.isEmpty())
        watcher.addPaths(added);
}

void FolderWatcher::check()
{
    watchFolders();
    QHash<QString, QByteArray> stamps = folderTree.stampsOf(folderTree.folders());
    if (stamps == known)
        return;
    known = std::move(stamps);
    report();
}

void FolderWatcher::forgive(const QString &path)
{
    for (QString folder = path; folder.size() > folderTree.rootPath().size();) {
        folder = folder.left(folder.lastIndexOf(u'/'));
        known.insert(folder, {});
    }
    const QString below = path + u'/';
    const bool isFolder = known.contains(path) && known.value(path).isEmpty();
    if (isFolder)
        known.removeIf([&](const auto &entry) { return entry.key().startsWith(below); });
    known.remove(path);
    const auto stamp = FileStamp::of(path);
    if (stamp && !stamp->isFolder)
        known.insert(path, stamp->text());
    if (stamp && stamp->isFolder)
        known.insert(folderTree.stampsOf({path}));
    if (stamp.has_value() ? stamp->isFolder : isFolder)
        watchFolders();
}

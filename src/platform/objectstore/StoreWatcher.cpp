#include "objectstore/StoreWatcher.h"

#include "objectstore/ManagedObjectContext.h"

/// A commit counts only when its pages have reached the disk, some time after they were written to the log.
static constexpr int usualDisk = 100;
static constexpr int slowDisk = 2000;

StoreWatcher::StoreWatcher(ManagedObjectContext &context)
    : watched(context)
    , log(context.path() + QStringLiteral("-wal"))
{
    soon.setSingleShot(true);
    soon.setInterval(usualDisk);
    later.setSingleShot(true);
    later.setInterval(slowDisk);
    connect(&watcher, &QFileSystemWatcher::fileChanged, this, &StoreWatcher::logWritten);
    connect(&soon, &QTimer::timeout, this, &StoreWatcher::look);
    connect(&later, &QTimer::timeout, this, &StoreWatcher::look);
    watcher.addPath(log);
}

void StoreWatcher::logWritten()
{
    // Who writes all the time is followed, too.
    if (!soon.isActive())
        soon.start();
    later.start();
}

void StoreWatcher::look()
{
    // A log that was made anew is another file.
    if (watcher.files().isEmpty())
        watcher.addPath(log);
    watched.lookForChangesFromElsewhere();
}

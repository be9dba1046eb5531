#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

class ManagedObjectContext;

/// Lets a context look for changes from elsewhere whenever something is written to the log of its store, so
/// that they are told of although nobody asks the store anything. Costs nothing while nothing is written.
class StoreWatcher : public QObject
{
public:
    /// \param context must outlive it.
    explicit StoreWatcher(ManagedObjectContext &context);

private:
    void logWritten();
    void look();

    ManagedObjectContext &watched;
    QString log;
    QFileSystemWatcher watcher;
    QTimer soon;
    QTimer later;
};

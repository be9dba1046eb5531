#pragma once

#include "eventkit/FolderTree.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

#include <functional>

/// Tells when somebody else changes a tree of calendars. Changes that come close together are told once. A
/// file that is written in place, rather than replaced, is noticed at the next `check` only.
class FolderWatcher : public QObject
{
public:
    FolderWatcher(const FolderTree &tree, std::function<void()> changed);

    /// Compares all files with what they were before, and tells if they differ.
    void check();
    /// What the program has done itself to files or folders, from this path down, is no news.
    void forgive(const QString &path);

private:
    void watchFolders();

    const FolderTree &folderTree;
    std::function<void()> report;
    QFileSystemWatcher watcher;
    QTimer delay;
    QHash<QString, QByteArray> known;
};

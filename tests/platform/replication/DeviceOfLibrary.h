#pragma once

#include "../objectstore/Library.h"

#include "replication/Replica.h"
#include "replication/Snapshot.h"

#include <gtest/gtest.h>

#include <QFile>

/// A library of which other devices hold the same.
class DeviceOfLibrary
{
public:
    using Replica = replication::Replica;
    using VersionVector = replication::VersionVector;

    explicit DeviceOfLibrary(int number)
        : place(QByteArray::number(number))
    {
        start();
    }

    Library &library() { return store; }
    Replica &replica() { return *opened; }
    /// As after a kill: what was not saved is gone.
    void restart()
    {
        opened.reset();
        store.reopen();
        start();
    }
    /// Hands out what was saved since the last time.
    std::vector<QByteArray> send()
    {
        std::vector<QByteArray> files;
        for (const Replica::Outgoing &one : opened->outgoing(std::numeric_limits<qsizetype>::max())) {
            files.push_back(one.bytes);
            EXPECT_FALSE(opened->markSent(one.number));
        }
        return files;
    }
    void receive(const QByteArray &bytes)
    {
        auto file = replication::ChangeFile::fromBytes(bytes);
        ASSERT_TRUE(file) << file.error().message.toStdString();
        waiting.push_back(std::move(*file));
    }
    void takeIn()
    {
        const auto changes = opened->takeIn(waiting, 1000);
        EXPECT_TRUE(changes) << changes.error().message.toStdString();
        settle();
    }
    void settle()
    {
        if (opened->hasUnsettled()) {
            const auto changes = opened->settle();
            EXPECT_TRUE(changes) << changes.error().message.toStdString();
        }
    }
    /// All of it as it was saved last, in a file of the folder of the test.
    struct Snapshot
    {
        QString path;
        VersionVector seen;
    };
    Snapshot snapshot(const QString &path) const
    {
        auto head = replication::snapshot::extract(store.path(), libraryModel(), path, false);
        EXPECT_TRUE(head) << head.error().message.toStdString();
        return {path, head->seen};
    }
    void adopt(const Snapshot &snapshot)
    {
        const QString copy = store.file("arriving.sqlite");
        QFile::remove(copy);
        ASSERT_TRUE(QFile::copy(snapshot.path, copy));
        const auto changes = opened->adopt(copy, snapshot.seen);
        ASSERT_TRUE(changes) << changes.error().message.toStdString();
        settle();
    }
    void saveForeignWrites() { EXPECT_FALSE(opened->saveForeignWrites()); }
    size_t waitingCount() const { return waiting.size(); }

private:
    void start()
    {
        auto result = Replica::open(store.context(), QString::fromUtf8(place), place);
        ASSERT_TRUE(result) << result.error().message.toStdString();
        opened = std::move(*result);
    }

    QByteArray place;
    Library store;
    std::unique_ptr<Replica> opened;
    std::deque<replication::ChangeFile> waiting;
};

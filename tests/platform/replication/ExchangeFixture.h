#pragma once

#include "../objectstore/Library.h"

#include "replication/ReplicaExchange.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QTemporaryFile>

// Two devices with a folder between them, in one process.

class Device
{
public:
    using Replica = replication::Replica;
    using ReplicaExchange = replication::ReplicaExchange;

    Device(const QString &shared, const QByteArray &name)
        : folder(shared)
        , machine(name)
    {
        start();
    }
    Library &library() { return store; }
    const ReplicaExchange &exchange() const { return *running; }
    QByteArray id() const { return replica->device(); }
    void stop()
    {
        running.reset();
        replica.reset();
        store.close();
    }
    /// Begins without the folder.
    void startAlone()
    {
        store.open();
        EXPECT_FALSE(Replica::keepForLater(store.context()));
    }
    void start()
    {
        if (!replica)
            store.open();
        auto opened = Replica::open(store.context(), QString::fromUtf8(machine), machine);
        ASSERT_TRUE(opened) << opened.error().message.toStdString();
        replica = std::move(*opened);
        running = std::make_unique<ReplicaExchange>(
            *replica, replication::ReplicaFolder(folder), [this](const StoreChanges &) { ++importCount; },
            sealing, terms);
    }
    /// Begins with another folder.
    void startIn(const QString &shared)
    {
        folder = shared;
        start();
    }
    void look() { running->lookSoon(); }
    /// Begins anew, with what the device knows of the seal of the folder.
    void restartWith(std::shared_ptr<const replication::Sealing> seal)
    {
        stop();
        sealing = std::move(seal);
        start();
    }
    void sealingChanged() { running->sealingChanged(); }
    OptionalError remove(const QByteArray &gone)
    {
        OptionalError error = replica->remove(gone);
        look();
        return error;
    }
    bool has(const char *title) { return store.find(title) != nullptr; }
    /// Saves books of these titles, one save for each.
    void save(const QStringList &titles)
    {
        for (const QString &title : titles) {
            library().book(title.toUtf8().constData());
            library().save();
        }
        look();
    }
    /// To be set before a start.
    replication::SnapshotTerms terms;
    int importCount = 0;

private:
    QString folder;
    QByteArray machine;
    Library store;
    std::shared_ptr<const replication::Sealing> sealing;
    std::unique_ptr<Replica> replica;
    std::unique_ptr<ReplicaExchange> running;
};

class ExchangeTest : public testing::Test
{
protected:
    static bool waitFor(const std::function<bool()> &condition, int milliseconds = 10'000)
    {
        const QDeadlineTimer deadline(milliseconds);
        while (!condition()) {
            if (deadline.hasExpired())
                return false;
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        }
        return true;
    }
    QStringList filesOf(const Device &device) const
    {
        return QDir(shared.filePath(QString::fromUtf8(device.id()))).entryList(QDir::Files);
    }
    QString path(const Device &device, const QString &name) const
    {
        return shared.filePath(QString::fromUtf8(device.id())) + u'/' + name;
    }
    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    static QByteArray contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// Leaves behind what a kill leaves of a file that is being written, where a file has a name from the
    /// beginning, as on most file systems of networks.
    static QString leaveBehind(const QString &path)
    {
        QTemporaryFile file(path + u".XXXXXX"_qs);
        file.setAutoRemove(false);
        EXPECT_TRUE(file.open() && file.write("half of it") > 0 && file.flush());
        const QString name = file.fileName();
        EXPECT_TRUE(QFile::exists(name));
        EXPECT_TRUE(
            file.setFileTime(QDateTime::currentDateTime().addDays(-2), QFileDevice::FileModificationTime));
        return name;
    }

    QTemporaryDir shared;
    Device one{shared.path(), "one"};
    Device other{shared.path(), "other"};
};

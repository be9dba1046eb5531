#pragma once

#include "cloud/Replication.h"
#include "foundation/ApplicationPaths.h"
#include "foundation/MainLoop.h"
#include "store/AppDelegate.h"
#include "store/queries/DBWorker.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

/// Two homes of the user with a folder between them. One program runs at a time, in one home or the other;
/// what it saves reaches the folder, and the other one finds it there.
class TwoDevices
{
public:
    TwoDevices()
        : formerHome(qgetenv("XDG_DATA_HOME"))
    {
        write(QJsonObject{{QStringLiteral("cloudFolder"), shared.path()}});
        MainLoop::setPace(10);
    }
    ~TwoDevices()
    {
        end();
        MainLoop::setPace(1);
        qputenv("XDG_DATA_HOME", formerHome);
        write({});
    }
    TwoDevices(const TwoDevices &) = delete;
    TwoDevices &operator=(const TwoDevices &) = delete;

    /// Ends the program that runs, and starts that of a home: 0 or 1.
    void turnTo(int home)
    {
        begin(home);
        settle();
    }
    /// Starts the program of a home, and leaves at once.
    void begin(int home)
    {
        end();
        qputenv("XDG_DATA_HOME", homes[home].path().toUtf8());
        running = std::make_unique<AppDelegate>();
        running->applicationWillFinishLaunching();
        running->applicationDidFinishLaunching();
    }
    /// Starts the program of a home while the folder is away.
    void turnToAlone(int home)
    {
        begin(home);
        EXPECT_EQ(running->replication(), nullptr);
    }
    /// Waits until nothing is under way between the home and the folder.
    void settle()
    {
        ASSERT_NE(running->replication(), nullptr);
        running->replication()->look();
        // Longer than any of the pauses that the program makes in between; the longest is that after a change
        // in a folder of calendars.
        constexpr int longEnough = 250;
        const QDeadlineTimer deadline(10'000);
        QDeadlineTimer quiet(longEnough);
        QByteArray before;
        while (!quiet.hasExpired() && !deadline.hasExpired()) {
            QThread::msleep(1);
            QCoreApplication::processEvents();
            const QByteArray now = seenOf(running->replication()->health());
            if (!running->replication()->isAtRest() || now != before)
                quiet.setRemainingTime(longEnough);
            before = now;
        }
    }
    AppDelegate &program() { return *running; }
    ManagedObjectContext &context() { return running->managedObjectContext(); }
    QString sharedFolder() const { return shared.path(); }
    QString storePath(int home) const
    {
        return homes[home].path() + QStringLiteral("/Morvane/Model0.sqlite");
    }

    void end()
    {
        if (!running)
            return;
        EXPECT_EQ(running->applicationShouldTerminate(), AppDelegate::TerminateReply::Now);
        running->applicationWillTerminate();
        running.reset();
    }
    /// As a kill does it: without a word.
    void kill() { running.reset(); }

private:
    static QByteArray seenOf(const replication::Health &health)
    {
        QByteArray text;
        for (const replication::Device &device : health.devices)
            text += device.id + QByteArray::number(device.number) + ' ';
        return text + QByteArray::number(health.waiting) + ' ' + QByteArray::number(health.unsent);
    }
    static void write(const QJsonObject &values)
    {
        const QString path = ApplicationPaths::configFolder() + QStringLiteral("/Morvane/platform.json");
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QJsonDocument(values).toJson());
    }

    QByteArray formerHome;
    QTemporaryDir homes[2];
    QTemporaryDir shared;
    std::unique_ptr<AppDelegate> running;
};

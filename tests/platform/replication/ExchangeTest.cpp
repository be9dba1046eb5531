#include "../objectstore/Library.h"

#include "objectstore/ChangeHistory.h"

#include "replication/ReplicaExchange.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>

// What can happen in the folder between two devices.

using replication::Replica;
using replication::ReplicaExchange;
using replication::ReplicaFolder;

namespace {

class Device
{
public:
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
    void start()
    {
        if (!replica)
            store.open();
        auto opened = Replica::open(store.context(), QString::fromUtf8(machine), machine);
        ASSERT_TRUE(opened) << opened.error().message.toStdString();
        replica = std::move(*opened);
        running = std::make_unique<ReplicaExchange>(*replica, ReplicaFolder(folder),
                                                    [this](const StoreChanges &) { ++importCount; });
    }
    void look() { running->lookSoon(); }
    bool has(const char *title) { return store.find(title) != nullptr; }
    int importCount = 0;

private:
    QString folder;
    QByteArray machine;
    Library store;
    std::unique_ptr<Replica> replica;
    std::unique_ptr<ReplicaExchange> running;
};

class ExchangeTest : public testing::Test
{
protected:
    static bool waitFor(const std::function<bool()> &condition)
    {
        const QDeadlineTimer deadline(10'000);
        while (!condition() && !deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return condition();
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

    QTemporaryDir shared;
    Device one{shared.path(), "one"};
    Device other{shared.path(), "other"};
};

} // namespace

TEST_F(ExchangeTest, WhatIsSavedArrivesInBothDirections)
{
    one.library().book("Momo");
    one.library().save();
    one.look();
    ASSERT_TRUE(waitFor([this] { return other.has("Momo"); }));
    other.library().find("Momo")->setTitle(QStringLiteral("Emma"));
    other.library().save();
    other.look();
    ASSERT_TRUE(waitFor([this] { return one.has("Emma"); }));
    // What came in is no step of the user's that can be undone.
    EXPECT_FALSE(one.library()->undo());
    EXPECT_FALSE(one.has("Emma") && one.has("Momo"));
    EXPECT_TRUE(waitFor([this] { return one.exchange().health().unsent == 0; }));
    EXPECT_EQ(one.exchange().health().devices.size(), 2u);
}

TEST_F(ExchangeTest, FilesThatAreBrokenOrOfOthersAreToldOfAndTriedAgain)
{
    const LogCapture log;
    one.library().book("Momo");
    one.library().save();
    other.stop();
    one.look();
    ASSERT_TRUE(waitFor([this] { return filesOf(one).size() == 1; }));
    const QString file = path(one, filesOf(one).front());
    const QByteArray whole = contents(file);
    for (const QByteArray &bad :
         {whole.left(whole.size() / 2), QByteArray(), QByteArray("MVCHANGE"),
          QByteArray(whole).replace(whole.size() - 3, 1, "x"), QByteArray(5000, 'z')}) {
        write(file, bad);
        other.start();
        EXPECT_TRUE(waitFor([this] { return other.exchange().health().problems.size() == 1; })) << bad.size();
        EXPECT_FALSE(other.has("Momo"));
        other.stop();
    }
    // Under another number it is not that save; what programs of the folder leave behind is not looked at.
    write(file, whole);
    write(path(one, QStringLiteral("changes-0000000007")), whole);
    write(path(one, QStringLiteral("changes-0000000001.sync-conflict-20261121-101500-ABCDEFG")), "x");
    write(path(one, QStringLiteral(".syncthing.changes-0000000002.tmp")), "x");
    write(shared.filePath(QStringLiteral("readme.txt")), "x");
    other.start();
    EXPECT_TRUE(waitFor([this] { return other.has("Momo"); }));
    EXPECT_TRUE(waitFor([this] { return other.exchange().health().problems.size() == 1; }));
    EXPECT_EQ(other.library().ask(QStringLiteral("SELECT COUNT(*) FROM Book")), QStringList(u"1"_qs));
}

TEST_F(ExchangeTest, FilesThatWentAreWrittenAgain)
{
    for (const char *title : {"Momo", "Emma", "Ulysses"}) {
        one.library().book(title);
        one.library().save();
    }
    other.stop();
    one.look();
    ASSERT_TRUE(waitFor([this] { return filesOf(one).size() == 3; }));
    ASSERT_TRUE(QFile::remove(path(one, filesOf(one).at(1))));
    other.start();
    ASSERT_TRUE(waitFor([this] { return other.has("Momo"); }));
    EXPECT_TRUE(waitFor([this] { return other.exchange().health().waiting == 1; }));
    EXPECT_FALSE(other.has("Ulysses")) << "It comes after what its device knew";
    one.stop();
    one.start();
    EXPECT_TRUE(waitFor([this] { return other.has("Ulysses") && other.has("Emma"); }));
}

TEST_F(ExchangeTest, AFullDiskLosesNothing)
{
    const LogCapture log;
    other.stop();
    {
        // The folder is a file: nothing can be written there.
        ASSERT_TRUE(QDir(shared.path()).removeRecursively());
        write(shared.path(), "x");
        one.library().book("Momo");
        one.library().save();
        one.look();
        EXPECT_TRUE(waitFor([this] { return !one.exchange().health().folderProblem.isEmpty(); }));
        EXPECT_EQ(one.exchange().health().unsent, 1);
        EXPECT_TRUE(one.has("Momo"));
    }
    ASSERT_TRUE(QFile::remove(shared.path()) && QDir().mkpath(shared.path()));
    one.look();
    other.start();
    EXPECT_TRUE(waitFor([this] { return other.has("Momo"); }));
    EXPECT_TRUE(one.exchange().health().folderProblem.isEmpty());
}

TEST_F(ExchangeTest, WhatLosesStaysInTheHistoryOfBoth)
{
    const auto book = one.library().book("Momo");
    one.library().save();
    one.look();
    ASSERT_TRUE(waitFor([this] { return other.has("Momo"); }));
    one.stop();
    other.library().find("Momo")->setTitle(QStringLiteral("Theirs"));
    other.library().save();
    other.stop();
    one.start();
    one.library().find("Momo")->setTitle(QStringLiteral("Mine"));
    one.library().save();
    other.start();
    one.look();
    const auto titleOf = [](Device &device) {
        return device.library().ask(QStringLiteral("SELECT title FROM Book"));
    };
    ASSERT_TRUE(waitFor(
        [&] { return titleOf(one) == titleOf(other) && one.exchange().health().devices.size() == 2; }));
    const QString loser = titleOf(one).front() == u"Mine" ? u"Theirs"_qs : u"Mine"_qs;
    for (Device *device : {&one, &other}) {
        EXPECT_TRUE(waitFor([&] {
            const auto present = device->library()->fetchFirst<Book>(FetchRequest("Book"));
            for (const RecordedSave &save : device->library()->historyOf(*present)) {
                for (const RowChange &row : save.rows) {
                    for (const RowChange::Field &field : row.fields) {
                        if (field.before == Value(loser))
                            return true;
                    }
                }
            }
            return false;
        })) << "It can be put back";
    }
}

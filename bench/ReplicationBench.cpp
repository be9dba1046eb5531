#include "StoreGenerator.h"
#include "foundation/Clock.h"
#include "replication/ReplicaExchange.h"
#include "store/entities/Entities.h"
#include "store/entities/Model.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

// What it costs that several devices hold the same store, with 100,000 tasks.

namespace {

using replication::ChangeFile;
using replication::Replica;

constexpr int taskCount = 100'000;
constexpr int saves = 1000;

double measured(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

double median(std::vector<double> times)
{
    std::ranges::sort(times);
    return times[times.size() / 2];
}

void expect(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

std::unique_ptr<ManagedObjectContext> opened(const QString &path)
{
    auto context = ManagedObjectContext::open(path, organiserModel());
    expect(context.hasValue());
    return std::move(*context);
}

std::unique_ptr<Replica> replicaOf(ManagedObjectContext &context, const char *machine)
{
    auto replica = Replica::open(context, QString::fromLatin1(machine), machine);
    expect(replica.hasValue());
    return std::move(*replica);
}

/// One change of one task, as a save.
double saveOne(ManagedObjectContext &context, const ObjectList<EntityTask> &tasks, int round)
{
    return measured([&] {
        tasks[round * 37 % tasks.size()]->setTitle(QStringLiteral("Changed for the %1th time").arg(round));
        expect(!context.save());
    });
}

int replaced(void *, int, sqlite3_changeset_iter *)
{
    return SQLITE_CHANGESET_OMIT;
}

double applyBare(const QString &path, const std::vector<ChangeFile> &files, bool isOneTransaction)
{
    sqlite3 *connection = nullptr;
    sqlite3_open(path.toUtf8().constData(), &connection);
    sqlite3_exec(connection,
                 "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL; PRAGMA foreign_keys = ON;", nullptr,
                 nullptr, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    const double time = measured([&] {
        if (isOneTransaction)
            sqlite3_exec(connection, "BEGIN", nullptr, nullptr, nullptr);
        for (const ChangeFile &file : files)
            expect(sqlite3changeset_apply(connection, int(file.changeset.size()),
                                          const_cast<char *>(file.changeset.constData()), nullptr, replaced,
                                          nullptr) == SQLITE_OK);
        if (isOneTransaction)
            sqlite3_exec(connection, "COMMIT", nullptr, nullptr, nullptr);
    });
    sqlite3_close(connection);
    return time;
}

/// As long as it takes until the copy is on the disk.
double copyFile(const QString &from, const QString &to)
{
    return measured([&] {
        expect(QFile::copy(from, to));
        QFile copy(to);
        expect(copy.open(QIODevice::ReadWrite) && fsync(copy.handle()) == 0);
    });
}

/// Makes a snapshot of a store, and a new device of it.
void measureSnapshot(const QTemporaryDir &folder, const QString &store)
{
    using namespace replication;
    const QString extracted = folder.filePath(QStringLiteral("extracted"));
    const QString packed = folder.filePath(QStringLiteral("packed"));
    const QString arrived = folder.filePath(QStringLiteral("arrived"));
    const double made = measured([&] {
        auto head = snapshot::extract(store, organiserModel(), extracted, false);
        expect(head.hasValue() && !snapshot::pack(*head, extracted, nullptr, QStringLiteral("n"), packed));
    });
    std::vector<double> copied;
    std::vector<double> unpacked;
    std::vector<double> adopted;
    std::vector<double> moved;
    for (int round = 0; round < 3; ++round) {
        const QString copy = folder.filePath(QStringLiteral("copy%1").arg(round));
        copied.push_back(copyFile(store, copy));
        QFile::remove(copy);
        auto newcomer = opened(folder.filePath(QStringLiteral("new%1.sqlite").arg(round)));
        const auto its = replicaOf(*newcomer, "new");
        VersionVector seen;
        unpacked.push_back(measured([&] {
            auto head = snapshot::unpack(packed, {}, QStringLiteral("n"), arrived);
            expect(head.hasValue());
            seen = head->seen;
        }));
        adopted.push_back(measured([&] { expect(its->adopt(arrived, seen).hasValue()); }));
        moved.push_back(measured([&] { expect(!Replica::moveFromLog(newcomer->path())); }));
        expect(newcomer->count(EntityTask::fetchRequest()) == taskCount);
    }
    std::printf("%-46s %9.1f ms  (file of %lld MB from a store of %lld MB)\n",
                "A snapshot made, off the main thread", made, QFileInfo(packed).size() / 1'000'000,
                QFileInfo(store).size() / 1'000'000);
    std::printf("%-46s %9.1f ms  copying the store %7.1f ms  ratio %4.2f  (%.1f ms of it on the main thread; "
                "%.1f ms more, beside it, until the log is in the file)\n",
                "A new device begins with it", median(unpacked) + median(adopted), median(copied),
                (median(unpacked) + median(adopted)) / median(copied), median(adopted), median(moved));
}

/// What the main thread does until a folder is being looked at.
double startOf(ManagedObjectContext &context, const QString &shared)
{
    return measured([&] {
        const auto replica = replicaOf(context, "start");
        const replication::ReplicaExchange exchange(*replica, replication::ReplicaFolder(shared),
                                                    [](const StoreChanges &) {});
    });
}

void measureStart(const QTemporaryDir &folder)
{
    const QString shared = folder.filePath(QStringLiteral("shared"));
    const QString empty = folder.filePath(QStringLiteral("empty"));
    QDir().mkpath(empty);
    QDir().mkpath(shared + QStringLiteral("/0123456789abcdef"));
    for (int number = 0; number < 10'000; ++number) {
        QFile file(shared +
                   QStringLiteral("/0123456789abcdef/changes-%1").arg(number + 2, 10, 10, QLatin1Char('0')));
        expect(file.open(QIODevice::WriteOnly));
    }
    auto context = opened(folder.filePath(QStringLiteral("start.sqlite")));
    startOf(*context, empty);
    std::vector<double> full;
    std::vector<double> without;
    for (int round = 0; round < 21; ++round) {
        full.push_back(startOf(*context, shared));
        without.push_back(startOf(*context, empty));
    }
    std::printf("%-46s %9.3f ms  empty folder %8.3f ms  ratio %4.2f\n", "Start with a folder of 10,000 files",
                median(full), median(without), median(full) / median(without));
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    const QString first = folder.filePath(QStringLiteral("first.sqlite"));
    generateStore(first, taskCount, 1);
    const auto copyOf = [&](const char *name) {
        const QString path = folder.filePath(QString::fromLatin1(name));
        expect(QFile::copy(first, path));
        return path;
    };
    const QString alone = copyOf("alone.sqlite");
    auto context = opened(first);
    std::unique_ptr<Replica> replica;
    std::printf("%-46s %9.1f ms\n", "A store of 100,000 tasks begins to take part",
                measured([&] { replica = replicaOf(*context, "first"); }));
    replica.reset();
    context.reset();
    const QString second = copyOf("second.sqlite");
    const QString bareOnce = copyOf("bareOnce.sqlite");
    const QString bareEach = copyOf("bareEach.sqlite");

    context = opened(first);
    replica = replicaOf(*context, "first");
    auto aloneContext = opened(alone);
    const auto tasks = context->fetch<EntityTask>(EntityTask::fetchRequest());
    const auto aloneTasks = aloneContext->fetch<EntityTask>(EntityTask::fetchRequest());
    std::vector<double> shared;
    std::vector<double> single;
    for (int round = 0; round < saves; ++round) {
        shared.push_back(saveOne(*context, tasks, round));
        single.push_back(saveOne(*aloneContext, aloneTasks, round));
    }
    std::printf("%-46s %9.3f ms  alone %8.3f ms  ratio %4.2f\n", "A save of one task", median(shared),
                median(single), median(shared) / median(single));

    std::vector<ChangeFile> files;
    for (const Replica::Outgoing &one : replica->outgoing(std::numeric_limits<qsizetype>::max())) {
        auto file = ChangeFile::fromBytes(one.bytes);
        expect(file.hasValue());
        if (file->dot.number > 1)
            files.push_back(std::move(*file));
    }
    auto secondContext = opened(second);
    const auto secondReplica = replicaOf(*secondContext, "second");
    std::deque<ChangeFile> waiting(files.begin(), files.end());
    const double taken = measured([&] {
        while (!waiting.empty())
            expect(secondReplica->takeIn(waiting, 400).hasValue());
    });
    const double once = applyBare(bareOnce, files, true);
    const double each = applyBare(bareEach, files, false);
    std::printf(
        "%-46s %9.1f ms  bare, one by one %7.1f ms  ratio %4.2f  bare, all at once %6.1f ms  ratio %4.2f\n",
        "1,000 saves of another device taken in", taken, each, taken / each, once, taken / once);

    replica.reset();
    context.reset();
    measureSnapshot(folder, first);
    measureStart(folder);
    return 0;
}

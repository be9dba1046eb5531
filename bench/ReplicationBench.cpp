#include "StoreGenerator.h"
#include "foundation/Clock.h"
#include "replication/Replica.h"
#include "store/entities/Entities.h"
#include "store/entities/Model.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <sqlite3.h>

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
    return 0;
}

#include "BenchHome.h"
#include "Ratio.h"
#include "foundation/TextFolding.h"
#include "records/SearchViewController.h"

#include <sqlite3.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QString>
#include <QThread>

#include <string>

namespace {

const QString rareWord = QStringLiteral("quvexizowafy");

/// Every text of the index folded and looked through, as without an index of trigrams.
int bareScan(const QString &part)
{
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(BenchHome::shared().bare(), "SELECT objectId, string FROM EntitySearchIndex", -1,
                       &statement, nullptr);
    std::vector<std::string> found;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(statement, 1));
        if (containsFolded(QString::fromUtf8(text, sqlite3_column_bytes(statement, 1)), part))
            found.emplace_back(reinterpret_cast<const char *>(sqlite3_column_text(statement, 0)));
    }
    sqlite3_finalize(statement);
    return static_cast<int>(found.size());
}

void search(benchmark::State &state)
{
    BenchHome::shared();
    const QString part = rareWord.left(state.range(0));
    SearchViewController results;
    compare(
        state, [&] { results.changeFileterString(part); }, [&] { benchmark::DoNotOptimize(bareScan(part)); });
    state.counters["hits"] = static_cast<double>(results.rows().size());
}
BENCHMARK(search)->ArgName("letters")->Arg(3)->Arg(6)->Arg(12)->Unit(benchmark::kMillisecond)->Iterations(8);

/// A search beside the main loop: how long the answer takes, and how long the loop was kept from a key.
void searchLater(benchmark::State &state)
{
    BenchHome::shared();
    SearchViewController results;
    qint64 longestWait = 0;
    for (auto _ : state) {
        QElapsedTimer wait;
        wait.start();
        results.changeFileterStringLater(QStringLiteral("karen").left(state.range(0)), [] {});
        while (results.isSearching()) {
            longestWait = std::max(longestWait, wait.nsecsElapsed());
            QThread::msleep(1);
            wait.start();
            QCoreApplication::processEvents();
        }
        longestWait = std::max(longestWait, wait.nsecsElapsed());
    }
    state.counters["hits"] = static_cast<double>(results.rows().size());
    state.counters["longestWaitMs"] = static_cast<double>(longestWait) / 1e6;
}
BENCHMARK(searchLater)
    ->ArgName("letters")
    ->Arg(1)
    ->Arg(2)
    ->Arg(3)
    ->Arg(5)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(4);

/// What finds thousands of records.
void searchOfMany(benchmark::State &state)
{
    BenchHome::shared();
    SearchViewController results;
    for (auto _ : state)
        results.changeFileterString(QStringLiteral("karen"));
    state.counters["hits"] = static_cast<double>(results.rows().size());
}
BENCHMARK(searchOfMany)->Unit(benchmark::kMillisecond);

} // namespace

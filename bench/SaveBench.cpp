#include "BenchHome.h"
#include "Ratio.h"
#include "foundation/Clock.h"
#include "records/copies/MVTask.h"
#include "store/queries/DBWorker.h"

#include <sqlite3.h>

#include <QUuid>

namespace {

const char *const title = "Write to the printer about the second proof";
const char *const details = "The colours of the cover are too dark";

void saveTask()
{
    MVTask task;
    task.title = QString::fromLatin1(title);
    task.details = QString::fromLatin1(details);
    task.type = TaskType::ToDo;
    task.status = TaskStatus::Open;
    task.priority = Priority::None;
    task.save();
    DBWorker::saveOrTell();
}

void run(sqlite3_stmt *statement)
{
    sqlite3_step(statement);
    sqlite3_finalize(statement);
}

sqlite3_stmt *prepared(const char *sql)
{
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(BenchHome::shared().bare(), sql, -1, &statement, nullptr);
    return statement;
}

void bindText(sqlite3_stmt *statement, int place, const QByteArray &text)
{
    sqlite3_bind_text(statement, place, text.constData(), int(text.size()), SQLITE_TRANSIENT);
}

void insertIndexRow(const QByteArray &object, const char *text)
{
    sqlite3_stmt *row = prepared("INSERT INTO EntitySearchIndex (id, objectId, string) VALUES (?, ?, ?)");
    bindText(row, 1, QUuid::createUuid().toByteArray(QUuid::WithoutBraces));
    bindText(row, 2, object);
    bindText(row, 3, text);
    run(row);
}

void insertRows()
{
    const QByteArray id = QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
    sqlite3_stmt *task = prepared(
        "INSERT INTO EntityTask (id, title, details, type, status, priority, creationDate, "
        "lastModificationDate, position) VALUES (?, ?, ?, 0, 0, 3, ?4, ?4, (SELECT MAX(position) + 1 "
        "FROM EntityTask WHERE startDate IS NULL AND type = 0))");
    bindText(task, 1, id);
    bindText(task, 2, title);
    bindText(task, 3, details);
    sqlite3_bind_double(task, 4, Clock::now().referenceSeconds());
    run(task);
    insertIndexRow("x-morvane://store/EntityTask/" + id, title);
    insertIndexRow("x-morvane://store/EntityTask/" + id, details);
}

/// The same rows in one transaction.
void bareTransaction()
{
    BenchHome::shared().runCaptured([](sqlite3 *) { insertRows(); });
}

void saveOneTask(benchmark::State &state)
{
    BenchHome::shared();
    compare(state, saveTask, bareTransaction);
}
BENCHMARK(saveOneTask)->Unit(benchmark::kMillisecond)->Iterations(200);

} // namespace

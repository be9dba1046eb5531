#include "BenchHome.h"

#include "StoreGenerator.h"
#include "cloud/FileManager.h"

#include <sqlite3.h>

#include <QDir>
#include <QFile>

namespace {

constexpr int taskCount = 100000;
constexpr unsigned seed = 1;

} // namespace

BenchHome &BenchHome::shared()
{
    static BenchHome home;
    return home;
}

BenchHome::BenchHome()
{
    qputenv("XDG_DATA_HOME", folder.path().toUtf8() + "/data");
    qputenv("XDG_CONFIG_HOME", folder.path().toUtf8() + "/config");
    QDir().mkpath(FileManager::appFolderURL());
    const QString store = FileManager::appFolderURL() + QStringLiteral("/Model0.sqlite");
    generateStore(store, taskCount, seed);
    // A file of its own: writes of one connection would empty the cache of the other.
    const QString copy = folder.filePath(QStringLiteral("bare.sqlite"));
    QFile::copy(store, copy);
    delegate = std::make_unique<AppDelegate>();
    delegate->applicationWillFinishLaunching();
    delegate->applicationDidFinishLaunching();
    sqlite3_open(copy.toUtf8().constData(), &connection);
    // Nor does it keep the list of what other programs wrote.
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_exec(connection,
                 "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL; PRAGMA cache_size = -8192;"
                 "PRAGMA temp_store = MEMORY; PRAGMA foreign_keys = ON",
                 nullptr, nullptr, nullptr);
}

BenchHome::~BenchHome()
{
    sqlite3_close(connection);
    delegate.reset();
}

void BenchHome::runCaptured(const std::function<void(sqlite3 *)> &statements)
{
    sqlite3_exec(connection, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    sqlite3_session *session = nullptr;
    sqlite3session_create(connection, "main", &session);
    sqlite3session_attach(session, nullptr);
    statements(connection);
    int size = 0;
    void *changeset = nullptr;
    sqlite3session_changeset(session, &size, &changeset);
    sqlite3_free(changeset);
    sqlite3session_delete(session);
    sqlite3_exec(connection, "COMMIT", nullptr, nullptr, nullptr);
}

#include "store/SampleStore.h"

#include "foundation/Log.h"
#include "foundation/PrivateFiles.h"
#include "objectstore/ManagedObjectContext.h"
#include "store/entities/Model.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

namespace {

QString &otherFolder()
{
    static QString path;
    return path;
}

void removeStore(const QString &path)
{
    for (const char *suffix : {"", "-wal", "-shm", "-journal"})
        QFile::remove(path + QLatin1String(suffix));
}

void logCopyFailure(const QString &reason)
{
    Log::line(QStringLiteral("Failed to create writable database file with message '%1'.").arg(reason));
}

/// Every page of the store is read, which takes a few milliseconds.
bool isSound(const QString &path)
{
    const auto opened = ManagedObjectContext::open(path, organiserModel());
    if (!opened) {
        logCopyFailure(opened.error().message);
        return false;
    }
    auto database = sqlite::Database::open(path, sqlite::Database::Mode::ReadWrite);
    const bool isWhole = database &&
                         (*database)->queryInteger("SELECT COUNT(*) FROM pragma_quick_check") == 1 &&
                         (*database)->queryInteger("SELECT quick_check = 'ok' FROM pragma_quick_check") == 1;
    if (!isWhole)
        logCopyFailure(QStringLiteral("the prepared file is damaged"));
    return isWhole;
}

/// The prepared file may be for reading only; its copy is not.
bool copyPrepared(const QString &path)
{
    QFile prepared(SampleStore::folder() + QStringLiteral("/Model11.sqlite"));
    if (!prepared.exists())
        return false;
    PrivateFiles::makeFile(path);
    QFile copy(path);
    const bool isCopied = prepared.open(QIODevice::ReadOnly) && copy.open(QIODevice::WriteOnly) &&
                          copy.write(prepared.readAll()) == prepared.size() && copy.flush();
    if (!isCopied)
        logCopyFailure(copy.error() != QFile::NoError ? copy.errorString() : prepared.errorString());
    return isCopied;
}

} // namespace

QString SampleStore::folder()
{
    return otherFolder().isEmpty() ? QDir::cleanPath(QCoreApplication::applicationDirPath() +
                                                     QStringLiteral("/" MORVANE_RESOURCES "/sample"))
                                   : otherFolder();
}

void SampleStore::setFolder(const QString &path)
{
    otherFolder() = path;
}

bool SampleStore::putInPlace(const QString &path)
{
    const QString fresh = path + QStringLiteral(".new");
    removeStore(fresh);
    const bool isReady = copyPrepared(fresh) && isSound(fresh);
    removeStore(path);
    if (isReady && QFile::rename(fresh, path))
        return true;
    if (isReady)
        logCopyFailure(path);
    removeStore(fresh);
    return false;
}

QStringList SampleStore::pictures()
{
    QStringList paths;
    const QDir prepared(folder());
    for (const QString &name : prepared.entryList({QStringLiteral("*.png")}, QDir::Files))
        paths.append(prepared.filePath(name));
    return paths;
}

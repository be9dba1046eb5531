#include "cloud/FileManager.h"

#include "foundation/ApplicationPaths.h"

#include <QDir>

namespace {

bool makeIfMissing(const QString &path)
{
    return !QDir(path).exists() && QDir().mkdir(path);
}

} // namespace

QString FileManager::appFolderURL()
{
    return ApplicationPaths::dataFolder() + QStringLiteral("/Morvane");
}

bool FileManager::createAppFolder()
{
    // A fresh home has no data folder at all yet.
    QDir().mkpath(ApplicationPaths::dataFolder());
    return makeIfMissing(appFolderURL());
}

bool FileManager::createFolder(const QString &name)
{
    return makeIfMissing(appFolderURL() + u'/' + name);
}

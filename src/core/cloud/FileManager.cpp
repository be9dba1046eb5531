#include "cloud/FileManager.h"

#include "cloud/IcloudManager.h"
#include "foundation/ApplicationPaths.h"
#include "foundation/PrivateFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

bool makeIfMissing(const QString &path)
{
    return !QDir(path).exists() && PrivateFiles::makeFolder(path);
}

/// Only a file of the same length is read, or one that may be sealed, which makes it a little longer.
bool holds(const QString &path, const QByteArray &data)
{
    constexpr qint64 longestSeal = 200;
    const QFileInfo info(path);
    const qint64 more = info.size() - data.size();
    return info.isFile() && more >= 0 && more <= longestSeal && IcloudManager::imageReader(path)() == data;
}

} // namespace

QString FileManager::appFolderURL()
{
    return ApplicationPaths::dataFolder() + QStringLiteral("/Morvane");
}

bool FileManager::createAppFolder()
{
    // A fresh home has no data folder at all yet.
    PrivateFiles::makeFolder(ApplicationPaths::dataFolder());
    return makeIfMissing(appFolderURL());
}

void FileManager::keepFromOthers()
{
    for (const QString &folder :
         {ApplicationPaths::dataFolder(), ApplicationPaths::configFolder(), ApplicationPaths::cacheFolder()})
        PrivateFiles::narrowTree(folder + QStringLiteral("/Morvane"));
}

bool FileManager::createFolder(const QString &name)
{
    return makeIfMissing(appFolderURL() + u'/' + name);
}

bool FileManager::fileExists(const QString &url)
{
    return QFileInfo::exists(url);
}

bool FileManager::isDictionary(const QString &url)
{
    return QFileInfo(url).isDir();
}

bool FileManager::deleteFileFromPath(const QString &path)
{
    return QFile::remove(path);
}

QString FileManager::imageFolderURL()
{
    return IcloudManager::imageUrl();
}

QStringList FileManager::listFileDevice()
{
    return IcloudManager::listImageURL();
}

std::optional<QString> FileManager::existPhotoData(const QByteArray &data)
{
    for (const QString &path : listFileDevice()) {
        if (holds(path, data))
            return QFileInfo(path).fileName();
    }
    return std::nullopt;
}

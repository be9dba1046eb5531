#include "cloud/Document.h"
#include "cloud/FileManager.h"
#include "cloud/IcloudManager.h"
#include "foundation/Log.h"
#include "foundation/PrivateFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

// The pictures of contacts and companies. Their names come from records, which may come from elsewhere.

QString IcloudManager::pathOfImage(const QString &name)
{
    const bool isPlain = !name.isEmpty() && name != QStringLiteral(".") && name != QStringLiteral("..") &&
                         !name.contains(u'/') && !name.contains(QChar(u'\0'));
    return isPlain ? imageUrl() + u'/' + name : QString();
}

QByteArray IcloudManager::imageData(const QString &name)
{
    const QString path = pathOfImage(name);
    QFile file(path);
    const bool isFile = !path.isEmpty() && QFileInfo(path).isFile();
    return isFile && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool IcloudManager::saveImageWithData(const QByteArray &data, const QString &name)
{
    const QString path = pathOfImage(name);
    if (path.isEmpty())
        return false;
    Document document(QFileInfo(path).suffix());
    document.setContentsData(data);
    PrivateFiles::makeFolder(imageUrl());
    const OptionalError error = document.writeToURL(path, document.type());
    if (error)
        Log::line(error->message);
    return !error;
}

bool IcloudManager::removeImage(const QString &name)
{
    const QString path = pathOfImage(name);
    return !path.isEmpty() && FileManager::deleteFileFromPath(path);
}

bool IcloudManager::existenceFile(const QString &url)
{
    return FileManager::fileExists(url);
}

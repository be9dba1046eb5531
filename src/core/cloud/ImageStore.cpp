#include "cloud/Document.h"
#include "cloud/FileManager.h"
#include "cloud/IcloudManager.h"
#include "cloud/Replication.h"
#include "foundation/Log.h"
#include "foundation/PrivateFiles.h"
#include "replication/SealedFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

// The pictures of contacts and companies. Their names come from records, which may come from elsewhere.

QString IcloudManager::pathOfImage(const QString &name)
{
    const bool isPlain = !name.isEmpty() && name != QStringLiteral(".") && name != QStringLiteral("..") &&
                         !name.contains(u'/') && !name.contains(QChar(u'\0'));
    if (!isPlain)
        return {};
    const QString waiting = waitingImagesUrl() + u'/' + name;
    const bool isWaiting = stateDB() == 0 && QFileInfo(waiting).isFile();
    return isWaiting ? waiting : imageUrl() + u'/' + name;
}

QByteArray IcloudManager::imageData(const QString &name)
{
    const QString path = pathOfImage(name);
    return QFileInfo(path).isFile() ? imageReader(path)() : QByteArray();
}

std::function<QByteArray()> IcloudManager::imageReader(const QString &path)
{
    return [path, sealing = Replication::sharedSealing()] {
        // An open one needs no key; whether it is one is seen when it is read.
        auto content = replication::sealedfiles::read(path, {});
        if (!content && sealing)
            content = replication::sealedfiles::read(path, sealing->look());
        return content ? *content : QByteArray();
    };
}

bool IcloudManager::saveImageWithData(const QByteArray &data, const QString &name)
{
    QString path = pathOfImage(name);
    if (path.isEmpty())
        return false;
    Document document(QFileInfo(path).suffix());
    document.setContentsData(data);
    const bool isShared = stateDB() == 0;
    const auto sealing = isShared ? Replication::sharedSealing() : nullptr;
    const replication::SealingStatus status = sealing ? sealing->look() : replication::SealingStatus();
    if (isShared)
        path = (status.canExchange() ? iCloudImagesUrl() : waitingImagesUrl()) + u'/' + name;
    PrivateFiles::makeFolder(QFileInfo(path).path());
    const OptionalError error = status.sealer && !data.isNull()
                                    ? replication::sealedfiles::write(path, data, status)
                                    : document.writeToURL(path, document.type());
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

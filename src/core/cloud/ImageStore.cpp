#include "cloud/Document.h"
#include "cloud/FileManager.h"
#include "cloud/IcloudManager.h"
#include "cloud/Replication.h"
#include "foundation/AtomicFile.h"
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
    const QString usual = imageUrl() + u'/' + name;
    if (stateDB() != 0)
        return usual;
    if (QFileInfo(waiting).isFile())
        return waiting;
    // It may be from the time before the folder was shared.
    const QString former = localImagesUrl() + u'/' + name;
    return !QFileInfo(usual).isFile() && QFileInfo(former).isFile() ? former : usual;
}

void IcloudManager::shareImages(const QStringList &names)
{
    if (stateDB() != 0)
        return;
    PrivateFiles::makeFolder(waitingImagesUrl());
    for (const QString &name : names) {
        const QString path = pathOfImage(name);
        if (path == localImagesUrl() + u'/' + name && QFileInfo(path).isFile())
            QFile::copy(path, waitingImagesUrl() + u'/' + name);
    }
}

void IcloudManager::keepImages()
{
    if (!connectIcloud())
        return;
    PrivateFiles::makeFolder(localImagesUrl());
    for (const QString &folder : {iCloudImagesUrl(), waitingImagesUrl()}) {
        for (const QString &name : QDir(folder).entryList(QDir::Files)) {
            const QString own = localImagesUrl() + u'/' + name;
            const QByteArray data = QFile::exists(own) ? QByteArray() : imageReader(folder + u'/' + name)();
            if (data.isEmpty())
                continue;
            if (const OptionalError error = writeFileAtomically(own, data))
                Log::line(error->message);
        }
    }
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
    OptionalError error = status.sealer && !data.isNull()
                              ? replication::sealedfiles::write(path, data, status)
                              : document.writeToURL(path, document.type());
    const QString waiting = waitingImagesUrl() + u'/' + name;
    if (error && isShared && path != waiting && !data.isNull()) {
        // The folder can be full, read-only, or of a kind that takes no such name.
        Log::line(error->message);
        PrivateFiles::makeFolder(waitingImagesUrl());
        error = document.writeToURL(waiting, document.type());
    }
    if (error)
        Log::line(error->message);
    return !error;
}

bool IcloudManager::removeImage(const QString &name)
{
    const QString path = pathOfImage(name);
    if (path.isEmpty() || !FileManager::deleteFileFromPath(path))
        return false;
    // Nor does the one stay that it was copied from.
    if (stateDB() == 0)
        QFile::remove(localImagesUrl() + u'/' + name);
    return true;
}

bool IcloudManager::existenceFile(const QString &url)
{
    return FileManager::fileExists(url);
}

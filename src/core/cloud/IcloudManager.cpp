#include "cloud/IcloudManager.h"

#include "cloud/FileManager.h"
#include "foundation/PrivateFiles.h"
#include "foundation/UserDefaults.h"
#include "store/state/CoreContext.h"
#include "store/state/SettingsKeys.h"
#include "ubiquity/UbiquityContainer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

// Where things lie, and the account. The pictures themselves are in ImageStore.cpp.

namespace {

enum StoreState { Sample = -1, WithCloud = 0, WithoutCloud = 1 };

const QString imageFolder = QStringLiteral("Orrelin Images");

QByteArray keptToken()
{
    return UserDefaults::standard().object(settings::ubiquityIdentityToken).toByteArray();
}

} // namespace

IcloudManager::IcloudManager()
{
    if (connectIcloud())
        PrivateFiles::makeFolder(iCloudImagesUrl());
}

bool IcloudManager::connectIcloud()
{
    return !UbiquityContainer::path().isEmpty();
}

int IcloudManager::stateDB()
{
    if (CoreContext::current().isSample)
        return Sample;
    return connectIcloud() ? WithCloud : WithoutCloud;
}

QString IcloudManager::sampleImagesUrl()
{
    return localImagesUrl();
}

QString IcloudManager::localImagesUrl()
{
    return FileManager::appFolderURL() + u'/' + imageFolder;
}

QString IcloudManager::waitingImagesUrl()
{
    return FileManager::appFolderURL() + u'/' + imageFolder + QStringLiteral(" Waiting");
}

QString IcloudManager::iCloudImagesUrl()
{
    return UbiquityContainer::path() + QStringLiteral("/Documents/") + imageFolder;
}

QString IcloudManager::imageUrl()
{
    switch (stateDB()) {
    case Sample:
        return sampleImagesUrl();
    case WithCloud:
        return iCloudImagesUrl();
    default:
        return localImagesUrl();
    }
}

QStringList IcloudManager::listImageName()
{
    if (stateDB() != WithCloud)
        return QDir(localImagesUrl()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    QStringList names;
    for (const QString &path : listImageURL()) {
        QFile file(path);
        if (QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly))
            names.append(QFileInfo(path).fileName());
    }
    return names;
}

QStringList IcloudManager::listImageURL()
{
    const QDir folder(imageUrl());
    QStringList paths;
    for (const QString &name : folder.entryList(QDir::AllEntries | QDir::NoDotAndDotDot))
        paths.append(folder.filePath(name));
    return paths;
}

QByteArray IcloudManager::currentiCloudToken()
{
    return UbiquityContainer::identityToken();
}

void IcloudManager::icloudToken()
{
    const QByteArray token = currentiCloudToken();
    UserDefaults::standard().setObject(settings::ubiquityIdentityToken,
                                       token.isEmpty() ? QVariant() : QVariant(token));
}

int IcloudManager::iCloudState()
{
    constexpr int anotherAccount = -1;
    const bool isKept = UserDefaults::standard().contains(settings::ubiquityIdentityToken);
    const bool isAnother = isKept && keptToken() != currentiCloudToken();
    icloudToken();
    return isAnother ? anotherAccount : int(canUseICloud());
}

bool IcloudManager::canUseICloud()
{
    return !currentiCloudToken().isEmpty() &&
           UserDefaults::standard().boolean(settings::ubiquityIdentityToken);
}

bool IcloudManager::iCloudOut()
{
    return UserDefaults::standard().contains(settings::ubiquityIdentityToken) &&
           keptToken() != currentiCloudToken();
}

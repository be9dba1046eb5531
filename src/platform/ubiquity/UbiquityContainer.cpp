#include "ubiquity/UbiquityContainer.h"

#include "workspace/PlatformConfiguration.h"

#include <QDir>
#include <QFileInfo>

QString UbiquityContainer::path()
{
    const QString folder = PlatformConfiguration().text(QStringLiteral("cloudFolder"));
    const bool isUsable = QDir::isAbsolutePath(folder) && QFileInfo(folder).isDir();
    return isUsable ? QDir::cleanPath(folder) : QString();
}

QByteArray UbiquityContainer::identityToken()
{
    return path().isEmpty() ? QByteArray() : QFileInfo(path()).canonicalFilePath().toUtf8();
}

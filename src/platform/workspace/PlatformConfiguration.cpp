#include "workspace/PlatformConfiguration.h"

#include "foundation/ApplicationPaths.h"
#include "foundation/Log.h"

#include <QFile>
#include <QJsonDocument>

PlatformConfiguration::PlatformConfiguration()
{
    QFile file(ApplicationPaths::configFolder() + QStringLiteral("/Morvane/platform.json"));
    if (!file.open(QIODevice::ReadOnly))
        return;
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (!document.isObject())
        Log::line(QStringLiteral("Cannot read %1: %2").arg(file.fileName(), error.errorString()));
    values = document.object();
}

int PlatformConfiguration::authorization(const QString &what) const
{
    return values.value(QStringLiteral("authorization")).toObject().value(what).toInt(0);
}

QString PlatformConfiguration::text(const QString &key) const
{
    return values.value(key).toString();
}

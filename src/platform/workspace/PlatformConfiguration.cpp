#include "workspace/PlatformConfiguration.h"

#include "foundation/ApplicationPaths.h"
#include "foundation/AtomicFile.h"
#include "foundation/Log.h"
#include "foundation/PrivateFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

static QString configurationPath()
{
    return ApplicationPaths::configFolder() + QStringLiteral("/Morvane/platform.json");
}

PlatformConfiguration::PlatformConfiguration()
{
    QFile file(configurationPath());
    if (!file.open(QIODevice::ReadOnly))
        return;
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    isBroken = !document.isObject();
    if (isBroken)
        Log::line(QStringLiteral("Cannot read %1: %2").arg(file.fileName(), error.errorString()));
    values = document.object();
}

int PlatformConfiguration::authorization(const QString &what) const
{
    return values.value(QStringLiteral("authorization")).toObject().value(what).toInt(0);
}

void PlatformConfiguration::setAuthorization(const QString &what, int answer)
{
    static const QString key = QStringLiteral("authorization");
    QJsonObject answers = PlatformConfiguration().values.value(key).toObject();
    answers.insert(what, answer);
    write(key, answers);
}

void PlatformConfiguration::write(const QString &key, const QJsonValue &value)
{
    PlatformConfiguration configuration;
    const QString path = configurationPath();
    if (configuration.isBroken)
        QFile::rename(path, path + QStringLiteral(".broken"));
    configuration.values.insert(key, value);
    PrivateFiles::makeFolder(QFileInfo(path).path());
    if (const auto error = writeFileAtomically(path, QJsonDocument(configuration.values).toJson()))
        Log::line(QStringLiteral("Cannot write %1: %2").arg(path, error->message));
}

void PlatformConfiguration::setText(const QString &key, const QString &value)
{
    write(key, value);
}

QString PlatformConfiguration::text(const QString &key) const
{
    return values.value(key).toString();
}

QString PlatformConfiguration::textIn(const QString &key, const QString &name) const
{
    return values.value(key).toObject().value(name).toString();
}

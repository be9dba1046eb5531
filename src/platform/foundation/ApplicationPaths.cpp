#include "foundation/ApplicationPaths.h"

#include <QDir>

static QString folder(const char *variable, const QString &defaultBelowHome)
{
    const QString set = qEnvironmentVariable(variable);
    return QDir::isAbsolutePath(set) ? QDir::cleanPath(set) : QDir::homePath() + defaultBelowHome;
}

QString ApplicationPaths::dataFolder()
{
    return folder("XDG_DATA_HOME", QStringLiteral("/.local/share"));
}

QString ApplicationPaths::configFolder()
{
    return folder("XDG_CONFIG_HOME", QStringLiteral("/.config"));
}

QString ApplicationPaths::cacheFolder()
{
    return folder("XDG_CACHE_HOME", QStringLiteral("/.cache"));
}

#include "records/Functional.h"
#include "store/entities/Entities.h"
#include "workspace/PlatformConfiguration.h"
#include "workspace/Workspace.h"

#include <QUrl>

QString Functional::mapPageOf(const QString &place)
{
    const QString set = PlatformConfiguration().text(QStringLiteral("mapPage"));
    QString page = set.isEmpty() ? QStringLiteral("https://www.openstreetmap.org/search?query={query}") : set;
    return page.replace(QStringLiteral("{query}"), QString::fromLatin1(QUrl::toPercentEncoding(place)));
}

void Functional::openLocationWithEntityLocation(const std::shared_ptr<EntityLocation> &location)
{
    if (location && !location->title().isEmpty())
        Workspace::openUrl(mapPageOf(location->title()));
}

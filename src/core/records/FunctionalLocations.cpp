#include "records/Functional.h"
#include "store/entities/Entities.h"
#include "workspace/PlatformConfiguration.h"
#include "workspace/Workspace.h"

#include <QUrl>

void Functional::openLocationWithEntityLocation(const std::shared_ptr<EntityLocation> &location)
{
    if (!location || location->title().isEmpty())
        return;
    const QString set = PlatformConfiguration().text(QStringLiteral("mapPage"));
    const QString page =
        set.isEmpty() ? QStringLiteral("https://www.openstreetmap.org/search?query={query}") : set;
    const QString query = QString::fromLatin1(QUrl::toPercentEncoding(location->title()));
    Workspace::openUrl(QString(page).replace(QStringLiteral("{query}"), query));
}

#include "records/Functional.h"
#include "store/entities/Entities.h"
#include "workspace/Workspace.h"

#include <QUrl>

void Functional::openLocationWithEntityLocation(const std::shared_ptr<EntityLocation> &location)
{
    if (!location || location->title().isEmpty())
        return;
    // What RFC 3986 lets stand in a fragment.
    static const QByteArray fragmentCharacters("!$&'()*+,;=:@/?");
    const QByteArray title = QUrl::toPercentEncoding(location->title(), fragmentCharacters);
    Workspace::openUrl(QStringLiteral("https://maps.apple.com/?q=") + QString::fromLatin1(title));
}

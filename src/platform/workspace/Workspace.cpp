#include "workspace/Workspace.h"

#include <QStringList>
#include <QUrl>

static Workspace::UrlOpener &urlOpener()
{
    static Workspace::UrlOpener opener;
    return opener;
}

bool Workspace::openUrl(const QString &url)
{
    static const QStringList schemes = {QStringLiteral("http"), QStringLiteral("https"),
                                        QStringLiteral("mailto"), QStringLiteral("tel"),
                                        QStringLiteral("geo")};
    return schemes.contains(QUrl(url).scheme()) && urlOpener() && urlOpener()(url);
}

void Workspace::setUrlOpener(UrlOpener opener)
{
    urlOpener() = std::move(opener);
}

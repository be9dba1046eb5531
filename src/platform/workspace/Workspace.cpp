#include "workspace/Workspace.h"

static Workspace::UrlOpener &urlOpener()
{
    static Workspace::UrlOpener opener;
    return opener;
}

bool Workspace::openUrl(const QString &url)
{
    return urlOpener() && urlOpener()(url);
}

void Workspace::setUrlOpener(UrlOpener opener)
{
    urlOpener() = std::move(opener);
}

#include "shell/ApplicationBusObject.h"

#include <QUrl>

using namespace Qt::Literals::StringLiterals;

QString ApplicationBusObject::service()
{
    return u"com.halvern.morvane"_s;
}

QString ApplicationBusObject::path()
{
    return u"/com/halvern/morvane"_s;
}

void ApplicationBusObject::Activate(const QVariantMap &)
{
    Q_EMIT activated();
}

void ApplicationBusObject::Open(const QStringList &uris, const QVariantMap &)
{
    Q_EMIT activated();
    QStringList paths;
    for (const QString &uri : uris) {
        if (const QUrl url(uri); url.isLocalFile())
            paths.append(url.toLocalFile());
    }
    if (!paths.isEmpty())
        Q_EMIT filesWanted(paths);
}

void ApplicationBusObject::ActivateAction(const QString &name, const QVariantList &, const QVariantMap &)
{
    Q_EMIT actionActivated(name);
}

#include "shell/ApplicationBusObject.h"

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

void ApplicationBusObject::Open(const QStringList &, const QVariantMap &)
{
    Q_EMIT activated();
}

void ApplicationBusObject::ActivateAction(const QString &name, const QVariantList &, const QVariantMap &)
{
    Q_EMIT actionActivated(name);
}

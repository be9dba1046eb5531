#include "workspace/LauncherBadge.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

using namespace Qt::Literals::StringLiterals;

void LauncherBadge::show(const QString &label, const QString &desktopFile)
{
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return;
    QDBusMessage update = QDBusMessage::createSignal(u"/com/canonical/unity/launcherentry/1"_s,
                                                     u"com.canonical.Unity.LauncherEntry"_s, u"Update"_s);
    const QVariantMap properties = {{u"count"_s, label.toLongLong()}, {u"count-visible"_s, !label.isEmpty()}};
    update << u"application://%1.desktop"_s.arg(desktopFile) << properties;
    QDBusConnection::sessionBus().send(update);
}

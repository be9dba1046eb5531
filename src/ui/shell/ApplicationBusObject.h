#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantMap>

/// The program as the desktop sees it on the message bus: the interface org.freedesktop.Application of D-Bus
/// activation.
class ApplicationBusObject : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    using QObject::QObject;

    static QString service();
    static QString path();

public Q_SLOTS:
    Q_SCRIPTABLE void Activate(const QVariantMap &platformData);
    Q_SCRIPTABLE void Open(const QStringList &uris, const QVariantMap &platformData);
    Q_SCRIPTABLE void ActivateAction(const QString &name, const QVariantList &parameters,
                                     const QVariantMap &platformData);

Q_SIGNALS:
    void activated();
    /// Files are to be opened, by their paths.
    void filesWanted(const QStringList &paths);
    /// One of the actions of the desktop file was chosen, by its name.
    void actionActivated(const QString &name);
};

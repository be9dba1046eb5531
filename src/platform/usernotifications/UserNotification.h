#pragma once

#include "foundation/Date.h"

#include <QByteArray>
#include <QMap>
#include <QString>

/// A message to the user that is to appear at a moment.
struct UserNotification
{
    QString title;
    QString subtitle;
    Date deliveryDate;
    QByteArray deliveryTimeZone;
    bool hasActionButton = false;
    QMap<QString, QString> userInfo;

    bool operator==(const UserNotification &) const = default;
};

#include "usernotifications/NotificationsFile.h"

#include "foundation/AtomicFile.h"
#include "foundation/DefaultsCoding.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace notificationsfile {

namespace {

QJsonObject jsonOf(const UserNotification &notification)
{
    QJsonObject userInfo;
    for (auto entry = notification.userInfo.begin(); entry != notification.userInfo.end(); ++entry)
        userInfo.insert(entry.key(), entry.value());
    return {{QStringLiteral("title"), notification.title},
            {QStringLiteral("subtitle"), notification.subtitle},
            {QStringLiteral("deliveryDate"), iso8601FromDate(notification.deliveryDate)},
            {QStringLiteral("deliveryTimeZone"), QString::fromUtf8(notification.deliveryTimeZone)},
            {QStringLiteral("hasActionButton"), notification.hasActionButton},
            {QStringLiteral("userInfo"), userInfo}};
}

std::optional<UserNotification> notificationOf(const QJsonObject &json)
{
    const OptionalDate date = dateFromIso8601(json.value(QStringLiteral("deliveryDate")).toString());
    if (!date)
        return std::nullopt;
    UserNotification notification;
    notification.title = json.value(QStringLiteral("title")).toString();
    notification.subtitle = json.value(QStringLiteral("subtitle")).toString();
    notification.deliveryDate = *date;
    notification.deliveryTimeZone = json.value(QStringLiteral("deliveryTimeZone")).toString().toUtf8();
    notification.hasActionButton = json.value(QStringLiteral("hasActionButton")).toBool();
    const QJsonObject userInfo = json.value(QStringLiteral("userInfo")).toObject();
    for (auto entry = userInfo.begin(); entry != userInfo.end(); ++entry)
        notification.userInfo.insert(entry.key(), entry.value().toString());
    return notification;
}

} // namespace

Result<std::vector<UserNotification>> read(const QString &path)
{
    std::vector<UserNotification> notifications;
    QFile file(path);
    if (!file.exists())
        return notifications;
    const auto failure = [&path](const QString &reason) {
        return Error{QStringLiteral("notifications"), 0,
                     QStringLiteral("Cannot read the scheduled messages %1: %2").arg(path, reason)};
    };
    if (!file.open(QIODevice::ReadOnly))
        return failure(file.errorString());
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    if (!document.isArray())
        return failure(QStringLiteral("it is not a list"));
    for (const QJsonValue &entry : document.array()) {
        if (auto notification = notificationOf(entry.toObject()))
            notifications.push_back(std::move(*notification));
    }
    return notifications;
}

OptionalError write(const QString &path, const std::vector<UserNotification> &notifications)
{
    QJsonArray list;
    for (const UserNotification &notification : notifications)
        list.append(jsonOf(notification));
    return writeFileAtomically(path, QJsonDocument(list).toJson(QJsonDocument::Indented));
}

} // namespace notificationsfile

#include "fuzz/Targets.h"

#include "foundation/UserDefaults.h"
#include "records/TaskDraft.h"
#include "usernotifications/NotificationsFile.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

namespace {

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("Cannot write %s", qPrintable(path));
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Whether some file of the folder still holds exactly these bytes.
bool isKept(const QDir &folder, const QByteArray &bytes)
{
    const QStringList names = folder.entryList(QDir::Files);
    return std::any_of(names.begin(), names.end(),
                       [&](const QString &name) { return contentOf(folder.filePath(name)) == bytes; });
}

void askInEveryWay(const UserDefaults &settings, const QString &key)
{
    static_cast<void>(settings.string(key));
    static_cast<void>(settings.integer(key));
    static_cast<void>(settings.number(key));
    static_cast<void>(settings.boolean(key));
    static_cast<void>(settings.date(key));
    static_cast<void>(settings.object(key));
}

} // namespace

QString contradictionInSettings(const QByteArray &bytes)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("defaults.json"));
    const QString changed = QStringLiteral("changed here");
    write(path, bytes);
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    QJsonObject values = document.object();
    UserDefaults settings(path);
    if (!document.isObject() && !isKept(QDir(folder.path()), bytes))
        return QStringLiteral("a file that is none is not put aside");
    for (const QString &key : values.keys()) {
        askInEveryWay(settings, key);
        const QVariant value = settings.object(key);
        settings.removeObject(key);
        settings.setObject(key, value);
        if (settings.object(key) != value)
            return QStringLiteral("a value is not the same again: ") + key;
        values.insert(key, value.isValid() ? values.value(key) : QJsonValue(QJsonValue::Undefined));
    }
    settings.setObject(changed, 3);
    if (!settings.synchronize())
        return QStringLiteral("the settings cannot be written");
    values.insert(changed, 3);
    const UserDefaults again(path);
    for (const QString &key : values.keys()) {
        if (again.object(key) != settings.object(key))
            return QStringLiteral("a value is lost: ") + key;
    }
    return {};
}

QString contradictionInNotifications(const QByteArray &bytes)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("notifications.json"));
    write(path, bytes);
    const auto read = notificationsfile::read(path);
    if (!read)
        return QJsonDocument::fromJson(bytes).isArray() ? QStringLiteral("a list is refused") : QString();
    if (notificationsfile::write(path, read.value()))
        return QStringLiteral("it cannot be written");
    const auto again = notificationsfile::read(path);
    return again && again.value() == read.value() ? QString()
                                                  : QStringLiteral("the messages are not the same again");
}

QString contradictionInDraft(const QByteArray &bytes)
{
    const auto decoded = TaskDraft::decoded(bytes);
    const auto *draft = std::get_if<TaskDraft>(&decoded);
    if (!draft)
        return {};
    const QByteArray written = draft->encoded();
    const auto again = TaskDraft::decoded(written);
    const auto *same = std::get_if<TaskDraft>(&again);
    if (!same)
        return QStringLiteral("what was written is not read");
    return same->encoded() == written ? QString() : QStringLiteral("a draft changes when it is written");
}

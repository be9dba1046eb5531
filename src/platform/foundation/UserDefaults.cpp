#include "foundation/UserDefaults.h"

#include "foundation/ApplicationPaths.h"
#include "foundation/AtomicFile.h"
#include "foundation/Clock.h"
#include "foundation/DefaultsCoding.h"
#include "foundation/Log.h"
#include "foundation/MainLoop.h"
#include "foundation/PrivateFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QRegularExpression>

static constexpr Seconds delayOfWrites{0.2};

UserDefaults &UserDefaults::standard()
{
    static UserDefaults defaults(ApplicationPaths::configFolder() + QStringLiteral("/Morvane/defaults.json"));
    return defaults;
}

UserDefaults::UserDefaults(const QString &filePath)
    : path(filePath)
    , alive(std::make_shared<bool>(true))
{
    load();
}

UserDefaults::~UserDefaults()
{
    synchronize();
}

void UserDefaults::load()
{
    QFile file(path);
    if (!file.exists())
        return;
    if (!file.open(QIODevice::ReadOnly)) {
        isMemoryOnly = true;
        Log::line(QStringLiteral("Cannot read the settings in %1: %2. They are kept in memory only.")
                      .arg(path, file.errorString()));
        return;
    }
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(file.readAll(), &error);
    if (document.isObject())
        values = document.object();
    else
        setAside(error.error ? error.errorString() : QStringLiteral("it holds no JSON object"));
}

static QString freeNameBeside(const QString &path)
{
    const QString stamp = iso8601FromDate(Clock::now()).left(19).remove(u'-').remove(u':');
    const QString name = path + QStringLiteral(".broken-") + stamp + QLatin1Char('Z');
    QString candidate = name;
    for (int number = 2; QFileInfo::exists(candidate); ++number)
        candidate = name + QLatin1Char('-') + QString::number(number);
    return candidate;
}

void UserDefaults::setAside(const QString &reason)
{
    const QString other = freeNameBeside(path);
    isMemoryOnly = !QFile::rename(path, other);
    Log::line(isMemoryOnly ? QStringLiteral("Cannot read the settings in %1 (%2), nor rename them to %3. New "
                                            "ones are kept in memory only.")
                                 .arg(path, reason, other)
                           : QStringLiteral("Cannot read the settings in %1 (%2). They are now in %3.")
                                 .arg(path, reason, other));
}

QVariant UserDefaults::object(const QString &key) const
{
    const QJsonValue value = values.value(key);
    return value.isUndefined() ? QVariant() : variantFromJson(value);
}

void UserDefaults::setObject(const QString &key, const QVariant &value)
{
    if (!value.isValid()) {
        removeObject(key);
        return;
    }
    const QJsonValue json = jsonFromVariant(value);
    if (values.contains(key) && values.value(key) == json)
        return;
    values.insert(key, json);
    changed(key);
}

void UserDefaults::removeObject(const QString &key)
{
    if (!values.contains(key))
        return;
    values.remove(key);
    changed(key);
}

bool UserDefaults::contains(const QString &key) const
{
    return values.contains(key);
}

QString UserDefaults::string(const QString &key) const
{
    const QJsonValue value = values.value(key);
    return value.isObject() || value.isArray() ? QString() : value.toVariant().toString();
}

/// The number that a text begins with, as far as it is one; 0 if it begins with none.
static double leadingNumber(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral(R"(^\s*([-+]?(?:\d+\.?\d*|\.\d+)))"));
    return pattern.match(text).captured(1).toDouble();
}

static qint64 truncated(double number)
{
    static constexpr double firstBeyond = 9223372036854775808.0;
    return std::abs(number) < firstBeyond ? static_cast<qint64>(number) : 0;
}

qint64 UserDefaults::integer(const QString &key) const
{
    const QJsonValue value = values.value(key);
    bool isWhole = false;
    const qint64 whole = value.toVariant().toString().toLongLong(&isWhole);
    return isWhole ? whole : truncated(number(key));
}

double UserDefaults::number(const QString &key) const
{
    const QJsonValue value = values.value(key);
    if (value.isString())
        return leadingNumber(value.toString());
    return value.isBool() ? static_cast<double>(value.toBool()) : value.toDouble();
}

bool UserDefaults::boolean(const QString &key) const
{
    static const QRegularExpression yes(QStringLiteral("^\\s*[-+]?0*[YyTt1-9]"));
    const QJsonValue value = values.value(key);
    return value.isString() ? yes.match(value.toString()).hasMatch() : number(key) != 0;
}

OptionalDate UserDefaults::date(const QString &key) const
{
    const QVariant value = object(key);
    return value.canConvert<Date>() ? OptionalDate(value.value<Date>()) : std::nullopt;
}

void UserDefaults::changed(const QString &key)
{
    isWritten = false;
    scheduleWrite();
    NotificationCenter::defaultCenter().post(userDefaultsDidChange, {this, key});
}

void UserDefaults::scheduleWrite()
{
    if (isWriteScheduled || !QCoreApplication::instance())
        return;
    isWriteScheduled = true;
    MainLoop::performDelayed(delayOfWrites, [this, stillAlive = std::weak_ptr(alive)] {
        if (stillAlive.expired())
            return;
        isWriteScheduled = false;
        synchronize();
    });
}

bool UserDefaults::synchronize()
{
    if (isWritten)
        return true;
    isWritten = !isMemoryOnly && write();
    return isWritten;
}

bool UserDefaults::write()
{
    const QByteArray text = QJsonDocument(values).toJson();
    PrivateFiles::makeFolder(QFileInfo(path).path());
    if (const OptionalError error = writeFileAtomically(path, text)) {
        reportWriteFailure(error->message);
        return false;
    }
    isFailureReported = false;
    return true;
}

void UserDefaults::reportWriteFailure(const QString &reason)
{
    if (!isFailureReported)
        Log::line(
            QStringLiteral("Cannot write the settings to %1: %2. They stay in memory.").arg(path, reason));
    isFailureReported = true;
}

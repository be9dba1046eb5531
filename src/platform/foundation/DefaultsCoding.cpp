#include "foundation/DefaultsCoding.h"

#include "foundation/IcuDate.h"
#include "foundation/UserDefaults.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QTimeZone>

#include <algorithm>

static const QLatin1String dateKey("$date");
static const QLatin1String dataKey("$data");

/// The fewest decimals from which the same double is read back, ".25" for 0.25; none for a whole second.
static QString decimals(double wholeSeconds, double fraction)
{
    static constexpr int mostDigits = 9;
    for (int digits = 1; fraction > 0 && digits <= mostDigits; ++digits) {
        const QString text = QString::number(fraction, 'f', digits);
        if (wholeSeconds + text.toDouble() == wholeSeconds + fraction && text.startsWith(u'0'))
            return text.mid(1);
    }
    return {};
}

/// Inside of what ISO 8601 can say with four digits for the year, which is what can be read again.
static Date sayable(Date date)
{
    static constexpr double first = -63'113'904'000;
    static constexpr double last = 252'423'993'599;
    return Date::fromReferenceSeconds(std::clamp(boundedReferenceSeconds(date), first, last));
}

QString iso8601FromDate(Date any)
{
    const Date date = sayable(any);
    const auto unixSeconds = static_cast<qint64>(boundedUnixSeconds(date));
    const auto whole =
        QDateTime::fromSecsSinceEpoch(unixSeconds, Qt::UTC).toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss"));
    const double fraction = fractionOfSecond(date);
    return whole + decimals(boundedReferenceSeconds(date) - fraction, fraction) + QLatin1Char('Z');
}

OptionalDate dateFromIso8601(const QString &text)
{
    static constexpr int lengthOfSeconds = 19;
    qsizetype end = lengthOfSeconds;
    if (end < text.size() && text[end] == u'.')
        for (++end; end < text.size() && text[end].isDigit();)
            ++end;
    const QString fraction = text.mid(lengthOfSeconds, end - lengthOfSeconds);
    const auto whole = QDateTime::fromString(text.left(lengthOfSeconds) + text.mid(end), Qt::ISODate);
    if (!whole.isValid())
        return std::nullopt;
    const auto unixSeconds = static_cast<double>(whole.toSecsSinceEpoch());
    return sayable(Date::fromUnixSeconds(unixSeconds) + Seconds((QLatin1Char('0') + fraction).toDouble()));
}

static QJsonValue jsonFromList(const QVariantList &list)
{
    QJsonArray array;
    for (const QVariant &element : list)
        array.append(jsonFromVariant(element));
    return array;
}

static QJsonValue jsonFromMap(const QVariantMap &map)
{
    QJsonObject object;
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        object.insert(entry.key(), jsonFromVariant(entry.value()));
    return object;
}

QJsonValue jsonFromVariant(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<Date>())
        return QJsonObject{{dateKey, iso8601FromDate(value.value<Date>())}};
    switch (value.typeId()) {
    case QMetaType::QByteArray:
        return QJsonObject{{dataKey, QString::fromLatin1(value.toByteArray().toBase64())}};
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return jsonFromList(value.toList());
    case QMetaType::QVariantMap:
    case QMetaType::QVariantHash:
        return jsonFromMap(value.toMap());
    default:
        return QJsonValue::fromVariant(value);
    }
}

static QVariant listFromJson(const QJsonArray &array)
{
    QVariantList list;
    for (const QJsonValue &element : array)
        list.append(variantFromJson(element));
    return list;
}

static QVariant mapFromJson(const QJsonObject &object)
{
    QVariantMap map;
    for (auto entry = object.begin(); entry != object.end(); ++entry)
        map.insert(entry.key(), variantFromJson(entry.value()));
    return map;
}

static QVariant dateFromJson(const QJsonObject &object)
{
    const auto date = object.size() == 1 ? dateFromIso8601(object.value(dateKey).toString()) : OptionalDate();
    return date ? QVariant::fromValue(*date) : mapFromJson(object);
}

static QVariant dataFromJson(const QJsonObject &object)
{
    const QJsonValue text = object.value(dataKey);
    const auto data =
        QByteArray::fromBase64Encoding(text.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    return object.size() == 1 && text.isString() && data ? QVariant(*data) : mapFromJson(object);
}

static QVariant variantFromObject(const QJsonObject &object)
{
    if (object.contains(dateKey))
        return dateFromJson(object);
    return object.contains(dataKey) ? dataFromJson(object) : mapFromJson(object);
}

QVariant variantFromJson(const QJsonValue &json)
{
    if (json.isObject())
        return variantFromObject(json.toObject());
    return json.isArray() ? listFromJson(json.toArray()) : json.toVariant();
}

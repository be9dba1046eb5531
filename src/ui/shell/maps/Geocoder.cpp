#include "shell/maps/Geocoder.h"

#include "shell/maps/MapRequest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkReply>
#include <QUrlQuery>

using namespace Qt::Literals::StringLiterals;

static const QString queryPlace = u"{query}"_s;
constexpr int digitsOfDegrees = 6;

Geocoder::Geocoder(const QString &serviceUrl, QObject *parent)
    : QObject(parent)
    , service(serviceUrl)
{}

static QString encoded(const QString &text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

static void addIfMissing(QUrlQuery &query, const QString &key, const QString &value)
{
    if (!query.hasQueryItem(key))
        query.addQueryItem(key, encoded(value));
}

QUrl Geocoder::searchUrl(const QString &text) const
{
    if (service.contains(queryPlace))
        return QUrl(QString(service).replace(queryPlace, encoded(text)));
    QUrl url(service);
    QUrlQuery query(url);
    query.removeQueryItem(u"q"_s);
    addIfMissing(query, u"q"_s, text);
    addIfMissing(query, u"format"_s, u"json"_s);
    addIfMissing(query, u"limit"_s, u"1"_s);
    url.setQuery(query);
    return url;
}

/// A service with "search" has "reverse" beside it; any other is asked for the coordinates as a text.
QUrl Geocoder::addressUrl(const MapPlace &place) const
{
    static const QString searchPath = u"/search"_s;
    const QString latitude = QString::number(place.latitude, 'f', digitsOfDegrees);
    const QString longitude = QString::number(place.longitude, 'f', digitsOfDegrees);
    QUrl url(QString(service).replace(queryPlace, QString()));
    if (!url.path().endsWith(searchPath))
        return searchUrl(latitude + u',' + longitude);
    url.setPath(url.path().chopped(searchPath.size()) + u"/reverse"_s);
    QUrlQuery query(url);
    query.removeQueryItem(u"q"_s);
    query.removeQueryItem(u"limit"_s);
    addIfMissing(query, u"lat"_s, latitude);
    addIfMissing(query, u"lon"_s, longitude);
    addIfMissing(query, u"format"_s, u"json"_s);
    url.setQuery(query);
    return url;
}

/// Services write degrees as texts or as numbers.
static std::optional<double> degrees(const QJsonValue &value)
{
    if (value.isDouble())
        return value.toDouble();
    bool isNumber = false;
    const double number = value.toString().toDouble(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

std::optional<Geocoder::Answer> Geocoder::read(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    const QJsonObject first = document.isArray() ? document.array().at(0).toObject() : document.object();
    const auto latitude = degrees(first.value(u"lat"_s));
    const auto longitude = degrees(first.value(u"lon"_s));
    const QString title = first.value(u"display_name"_s).toString();
    if (!latitude || !longitude || title.isEmpty())
        return std::nullopt;
    return Answer{title, {.latitude = *latitude, .longitude = *longitude}};
}

void Geocoder::search(const QString &text)
{
    if (isConfigured() && !text.trimmed().isEmpty())
        ask(searchUrl(text.trimmed()));
}

void Geocoder::address(const MapPlace &place)
{
    if (isConfigured())
        ask(addressUrl(place));
}

void Geocoder::cancel()
{
    if (QNetworkReply *former = pending) {
        pending = nullptr;
        former->abort();
    }
}

void Geocoder::ask(const QUrl &url)
{
    cancel();
    QNetworkReply *reply = network.get(mapRequest(url));
    pending = reply;
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        reply->deleteLater();
        if (reply == pending)
            answered(*reply);
    });
}

void Geocoder::answered(QNetworkReply &reply)
{
    pending = nullptr;
    if (reply.error() != QNetworkReply::NoError)
        return Q_EMIT failed();
    if (const auto answer = read(reply.readAll()))
        Q_EMIT found(answer->title, answer->place);
    else
        Q_EMIT nothingFound();
}

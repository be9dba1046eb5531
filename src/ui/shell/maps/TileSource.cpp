#include "shell/maps/TileSource.h"

#include "shell/maps/MapRequest.h"

#include <QNetworkReply>

using namespace Qt::Literals::StringLiterals;

/// A few screens full.
constexpr int mostTiles = 128;

size_t qHash(const MapTile &tile, size_t seed)
{
    return qHashMulti(seed, tile.zoom, tile.column, tile.row);
}

TileSource::TileSource(const QString &tileUrl, QObject *parent)
    : QObject(parent)
    , address(tileUrl)
    , pictures(mostTiles)
{}

QString TileSource::host() const
{
    return QUrl(address).host();
}

QPixmap TileSource::tile(const MapTile &wanted)
{
    if (const QPixmap *known = pictures.object(wanted))
        return *known;
    if (isConfigured() && !underWay.contains(wanted) && !missing.contains(wanted))
        fetch(wanted);
    return {};
}

void TileSource::fetch(const MapTile &wanted)
{
    QString url = address;
    url.replace(u"{z}"_s, QString::number(wanted.zoom));
    url.replace(u"{x}"_s, QString::number(wanted.column));
    url.replace(u"{y}"_s, QString::number(wanted.row));
    underWay.insert(wanted);
    QNetworkReply *reply = network.get(mapRequest(QUrl(url)));
    connect(reply, &QNetworkReply::finished, this, [this, reply, wanted] {
        reply->deleteLater();
        underWay.remove(wanted);
        QPixmap picture;
        if (reply->error() == QNetworkReply::NoError && picture.loadFromData(reply->readAll()))
            pictures.insert(wanted, new QPixmap(picture));
        else
            missing.insert(wanted);
        outOfReach = picture.isNull();
        Q_EMIT changed();
    });
}

#pragma once

#include <QCache>
#include <QNetworkAccessManager>
#include <QObject>
#include <QPixmap>
#include <QSet>

/// One square of a map.
struct MapTile
{
    int zoom = 0;
    int column = 0;
    int row = 0;
    bool operator==(const MapTile &) const = default;
};
size_t qHash(const MapTile &tile, size_t seed = 0);

/// The squares of a map, fetched by HTTP as they are looked at. What was fetched lately is kept in memory.
class TileSource : public QObject
{
    Q_OBJECT
public:
    /// An address such as "https://host/{z}/{x}/{y}.png"; empty: there is no map.
    explicit TileSource(const QString &tileUrl, QObject *parent = nullptr);

    bool isConfigured() const { return !address.isEmpty(); }
    /// Who the map is from, to be named on it.
    QString host() const;
    /// The picture of a tile. Null until it has been fetched; then `changed` is emitted.
    QPixmap tile(const MapTile &wanted);
    /// Whether a tile could not be fetched and none could since.
    bool isOutOfReach() const { return outOfReach; }

Q_SIGNALS:
    void changed();

private:
    void fetch(const MapTile &wanted);

    QString address;
    QCache<MapTile, QPixmap> pictures;
    QSet<MapTile> underWay;
    QSet<MapTile> missing;
    bool outOfReach = false;
    /// Last, so that nothing is answered while the rest goes.
    QNetworkAccessManager network;
};

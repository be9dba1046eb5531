#pragma once

#include <QPoint>
#include <QPointF>

/// A place on the earth in degrees.
struct MapPlace
{
    double latitude = 0;
    double longitude = 0;
};

/// The square world of web maps (spherical Mercator, EPSG 3857): 256 pixels wide at zoom 0, twice as wide at
/// each further one.
namespace MapProjection {

inline constexpr int tileSize = 256;
inline constexpr int leastZoom = 1;
inline constexpr int mostZoom = 18;
/// Beyond this latitude the square ends.
inline constexpr double mostLatitude = 85.0511287798;

/// Pixels from the world's upper left corner.
QPointF toPixels(const MapPlace &place, int zoom);
/// The place of a pixel; longitudes go round, latitudes end at the edge.
MapPlace toPlace(const QPointF &pixels, int zoom);
/// The tile that is meant by a column which may lie beyond the edge of the world.
int wrappedColumn(int column, int zoom);

} // namespace MapProjection

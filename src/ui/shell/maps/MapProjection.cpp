#include "shell/maps/MapProjection.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

static double worldWidth(int zoom)
{
    return std::ldexp(MapProjection::tileSize, zoom);
}

QPointF MapProjection::toPixels(const MapPlace &place, int zoom)
{
    const double sine = std::sin(qDegreesToRadians(std::clamp(place.latitude, -mostLatitude, mostLatitude)));
    const double y = 0.5 - std::log((1 + sine) / (1 - sine)) / (4 * M_PI);
    return QPointF((place.longitude + 180) / 360, y) * worldWidth(zoom);
}

MapPlace MapProjection::toPlace(const QPointF &pixels, int zoom)
{
    const QPointF part = pixels / worldWidth(zoom);
    const double x = part.x() - std::floor(part.x());
    const double y = std::clamp(part.y(), 0.0, 1.0);
    return {.latitude = qRadiansToDegrees(std::atan(std::sinh(M_PI * (1 - 2 * y)))),
            .longitude = x * 360 - 180};
}

int MapProjection::wrappedColumn(int column, int zoom)
{
    const int columns = 1 << zoom;
    return (column % columns + columns) % columns;
}

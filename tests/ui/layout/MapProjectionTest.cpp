// Where places stand on a web map.

#include "shell/maps/MapProjection.h"

#include <gtest/gtest.h>

using namespace MapProjection;

TEST(MapProjection, PlacesStandInTheTilesThatServersHaveThemIn)
{
    // Berlin, at 52.5163 north and 13.3777 east, lies in tile 8800, 5373 of zoom 14.
    const QPointF berlin = toPixels({.latitude = 52.5163, .longitude = 13.3777}, 14) / tileSize;
    EXPECT_EQ(static_cast<int>(berlin.x()), 8800);
    EXPECT_EQ(static_cast<int>(berlin.y()), 5373);
    EXPECT_EQ(toPixels({}, 0), QPointF(128, 128));
    EXPECT_NEAR(toPixels({.latitude = 90}, 3).y(), 0, 1e-6);
}

TEST(MapProjection, PixelsLeadBackToTheirPlaceAndLongitudesGoRound)
{
    for (const double latitude : {-80.0, -33.9, 0.0, 52.5, 84.9}) {
        for (const double longitude : {-179.5, -70.0, 0.0, 151.2}) {
            const MapPlace back = toPlace(toPixels({latitude, longitude}, 12), 12);
            EXPECT_NEAR(back.latitude, latitude, 1e-9);
            EXPECT_NEAR(back.longitude, longitude, 1e-9);
        }
    }
    const double world = toPixels({.longitude = 180}, 2).x();
    EXPECT_NEAR(toPlace({world + 10, 300}, 2).longitude, toPlace({10, 300}, 2).longitude, 1e-9);
    EXPECT_EQ(wrappedColumn(-1, 2), 3);
    EXPECT_EQ(wrappedColumn(5, 2), 1);
}

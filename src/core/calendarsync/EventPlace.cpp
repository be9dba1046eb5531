#include "calendarsync/EventPlace.h"

#include <cmath>

namespace eventplace {

namespace {

double cutToSixDecimals(double degrees)
{
    constexpr double oneInSixDecimals = 1000000;
    return std::trunc(degrees * oneInSixDecimals) / oneInSixDecimals;
}

} // namespace

GeoLocation positionOf(const EKStructuredLocation &place)
{
    const GeoLocation position = place.geoLocation.value_or(GeoLocation{});
    return {cutToSixDecimals(position.latitude), cutToSixDecimals(position.longitude)};
}

bool isShownBy(const EntityLocation &place, const EKEvent &event)
{
    return event.structuredLocation && event.structuredLocation->title == place.title() &&
           positionOf(*event.structuredLocation) ==
               GeoLocation{place.latitude().value_or(0), place.longitude().value_or(0)};
}

} // namespace eventplace

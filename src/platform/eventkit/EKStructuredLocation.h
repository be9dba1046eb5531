#pragma once

#include <QString>

#include <optional>

/// Degrees; north and east are positive.
struct GeoLocation
{
    double latitude = 0;
    double longitude = 0;

    bool operator==(const GeoLocation &) const = default;
};

/// A place with a name and, where it is known, its position.
struct EKStructuredLocation
{
    QString title;
    std::optional<GeoLocation> geoLocation;

    static EKStructuredLocation locationWithTitle(const QString &title) { return {title, std::nullopt}; }

    bool operator==(const EKStructuredLocation &) const = default;
};

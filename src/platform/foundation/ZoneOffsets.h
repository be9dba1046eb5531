#pragma once

#include <memory>
#include <vector>

#include <unicode/basictz.h>

/// A stretch of time in which the clocks of a zone keep the same distance from UTC; seconds since 1970, `to`
/// not included.
struct OffsetSpan
{
    double from = 0;
    double to = 0;
    int offset = 0;

    bool contains(double unixSeconds) const { return unixSeconds >= from && unixSeconds < to; }
};

/// Finds the offset of a zone at an instant in some nanoseconds, by remembering the spans between clock
/// changes that were asked for. For one thread at a time.
class ZoneOffsets
{
public:
    explicit ZoneOffsets(std::shared_ptr<const icu::BasicTimeZone> zoneRules);

    OffsetSpan at(double unixSeconds);

private:
    OffsetSpan spanAround(double unixSeconds) const;

    std::shared_ptr<const icu::BasicTimeZone> rules;
    std::vector<OffsetSpan> spans;
    OffsetSpan latest;
};

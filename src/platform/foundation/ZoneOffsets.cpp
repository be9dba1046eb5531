#include "foundation/ZoneOffsets.h"

#include <algorithm>
#include <limits>

#include <unicode/tztrans.h>

static constexpr double endless = std::numeric_limits<double>::infinity();

ZoneOffsets::ZoneOffsets(std::shared_ptr<const icu::BasicTimeZone> zoneRules)
    : rules(std::move(zoneRules))
{}

OffsetSpan ZoneOffsets::at(double unixSeconds)
{
    if (latest.contains(unixSeconds))
        return latest;
    const auto after =
        std::upper_bound(spans.begin(), spans.end(), unixSeconds,
                         [](double instant, const OffsetSpan &span) { return instant < span.from; });
    if (after != spans.begin() && std::prev(after)->contains(unixSeconds))
        return latest = *std::prev(after);
    latest = spanAround(unixSeconds);
    spans.insert(after, latest);
    return latest;
}

OffsetSpan ZoneOffsets::spanAround(double unixSeconds) const
{
    const UDate instant = unixSeconds * 1000;
    icu::TimeZoneTransition change;
    OffsetSpan span{-endless, endless};
    if (rules->getPreviousTransition(instant, true, change))
        span.from = change.getTime() / 1000;
    if (rules->getNextTransition(instant, false, change))
        span.to = change.getTime() / 1000;

    int standardOffset = 0;
    int daylightOffset = 0;
    UErrorCode status = U_ZERO_ERROR;
    rules->getOffset(instant, false, standardOffset, daylightOffset, status);
    span.offset = (standardOffset + daylightOffset) / 1000;
    return span;
}

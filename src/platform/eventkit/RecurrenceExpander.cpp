#include "eventkit/RecurrenceExpander.h"

#include "eventkit/RecurrencePeriods.h"

#include <algorithm>
#include <cmath>

namespace {

/// No wall clock is further than this from itself at a neighbouring offset.
constexpr std::int64_t slack = secondsOfADay;
const std::int64_t beginOfTime = WallClock{1, 1, 1, 0, 0, 0}.seconds();

/// More matches before the window no person has; a rule by seconds with a COUNT can have any number.
constexpr int mostCountedBefore = 300'000;

/// Dates beyond these cannot be told from them here.
constexpr double furthestUnixSeconds = 1e12;

std::int64_t wholeSeconds(Date date)
{
    const double seconds = std::floor(date.unixSeconds());
    return std::isnan(seconds)
               ? 0
               : static_cast<std::int64_t>(std::clamp(seconds, -furthestUnixSeconds, furthestUnixSeconds));
}

std::int64_t wallSecondsOf(Date date, const Calendar &calendar)
{
    return wholeSeconds(date) + calendar.secondsFromGMT(date);
}

Date dateOfUnixSeconds(std::int64_t seconds)
{
    return Date::fromUnixSeconds(static_cast<double>(seconds));
}

Date instantOfSeconds(std::int64_t wallSeconds, const Calendar &calendar)
{
    // Away from clock changes the offset is the same on both sides; this covers nearly all moments.
    const int before = calendar.secondsFromGMT(dateOfUnixSeconds(wallSeconds - secondsOfADay));
    const int after = calendar.secondsFromGMT(dateOfUnixSeconds(wallSeconds + secondsOfADay));
    if (before == after)
        return dateOfUnixSeconds(wallSeconds - before);
    const WallClock fields = WallClock::fromSeconds(wallSeconds);
    return calendar.dateFromComponents({.year = fields.year,
                                        .month = fields.month,
                                        .day = fields.day,
                                        .hour = fields.hour,
                                        .minute = fields.minute,
                                        .second = fields.second});
}

} // namespace

Date RecurrenceExpander::instantOf(const WallClock &wallClock, const Calendar &calendar)
{
    return instantOfSeconds(wallClock.seconds(), calendar);
}

WallClock RecurrenceExpander::wallClockOf(Date date, const Calendar &calendar)
{
    return WallClock::fromSeconds(wallSecondsOf(date, calendar));
}

RecurrenceExpander::RecurrenceExpander(const RecurrencePattern &rule, Date start,
                                       const Calendar &zoneCalendar)
    : pattern(rule.withoutInvalidValues())
    , calendar(zoneCalendar)
    , startDate(start)
    , startSeconds(wallSecondsOf(start, calendar))
    , fraction((start - dateOfUnixSeconds(wholeSeconds(start))).count())
    , until(untilInstant(pattern, calendar))
{}

RecurrenceExpander::RecurrenceExpander(const RecurrencePattern &rule, const WallClock &start,
                                       const Calendar &zoneCalendar)
    : RecurrenceExpander(rule, instantOf(start, zoneCalendar), zoneCalendar)
{
    // A start that the clocks leave out is moved on alone; the others keep its time.
    startSeconds = start.seconds();
}

OptionalDate RecurrenceExpander::untilInstant(const RecurrencePattern &pattern, const Calendar &calendar)
{
    if (!pattern.localUntil)
        return pattern.until;
    WallClock last = *pattern.localUntil;
    if (pattern.isUntilDate)
        last = {last.year, last.month, last.day, 23, 59, 59};
    return instantOf(last, calendar);
}

Date RecurrenceExpander::dateOf(std::int64_t wallSeconds) const
{
    if (wallSeconds == startSeconds)
        return startDate;
    return instantOfSeconds(wallSeconds, calendar) + Seconds(fraction);
}

/// Where the clock is set forward, moments of the gap can fall behind or onto those that follow it.
static void putInOrder(std::vector<RecurrenceInstance> &instances)
{
    std::stable_sort(instances.begin(), instances.end(),
                     [](const auto &one, const auto &other) { return one.date < other.date; });
    const auto coincide = [](const auto &one, const auto &other) { return one.date == other.date; };
    instances.erase(std::unique(instances.begin(), instances.end(), coincide), instances.end());
}

RecurrenceExpander::Bounds RecurrenceExpander::boundsOf(const Window &window) const
{
    Bounds bounds{std::max(startDate, window.from.value_or(startDate)), window.to, startSeconds, endOfTime};
    if (until && (!bounds.to || *until < *bounds.to))
        bounds.to = until;
    if (bounds.to)
        bounds.lastMoment = wallSecondsOf(*bounds.to, calendar) + slack;
    bounds.firstMoment = std::max(startSeconds, wallSecondsOf(bounds.from, calendar) - slack);
    return bounds;
}

bool RecurrenceExpander::take(const WallSeconds &moments, const Bounds &bounds, std::size_t most,
                              Progress &progress) const
{
    for (const std::int64_t moment : moments) {
        if (moment < startSeconds)
            continue;
        Expansion &expansion = progress.expansion;
        if (moment > bounds.lastMoment || (pattern.count > 0 && ++progress.matches > pattern.count))
            return false;
        if (moment < bounds.firstMoment) {
            expansion.isWhole = ++progress.countedBefore <= mostCountedBefore;
            if (!expansion.isWhole)
                return false;
            continue;
        }
        const Date date = dateOf(moment);
        const bool isInside = date >= bounds.from && (!bounds.to || date <= *bounds.to);
        if (!isInside)
            continue;
        expansion.isWhole = expansion.instances.size() < most;
        if (!expansion.isWhole)
            return false;
        expansion.instances.push_back({WallClock::fromSeconds(moment), date});
    }
    return !moments.empty();
}

RecurrenceExpander::Expansion RecurrenceExpander::expansion(const Window &window) const
{
    if (startSeconds < beginOfTime || startSeconds > endOfTime)
        return {};
    const Bounds bounds = boundsOf(window);
    const auto periods = RecurrencePeriods::create(pattern, startSeconds, bounds.lastMoment);
    if (pattern.count == 0)
        periods->skipTo(bounds.firstMoment);
    Progress progress;
    while (take(periods->next(), bounds, window.mostInstances, progress))
        continue;
    putInOrder(progress.expansion.instances);
    return std::move(progress.expansion);
}

#include "store/queries/Lateness.h"

#include "foundation/Clock.h"
#include "foundation/Region.h"
#include "records/dates/MVDate.h"

namespace {

/// So many days back the verdict on each day is worked out beforehand; whatever is older is asked one by one.
constexpr int recentDays = 1500;

/// Days on which a ToDo was due and is late now, from the start of the first to the start of the one behind
/// the last.
struct LateDays
{
    Date start;
    Date end;
};

bool isDayPast(OptionalDate today, Date day)
{
    const OptionalDate compared = MVDate::dayByPattern(day);
    return today && compared && *today > *compared;
}

std::vector<LateDays> spansOf(Date firstDay, Date startOfToday)
{
    const OptionalDate today = MVDate::dayByPattern(startOfToday);
    std::vector<LateDays> spans;
    for (Date day = firstDay; day <= startOfToday;) {
        const Date next = MVDate::getStartOfDay(MVDate::addDay(1, day));
        if (isDayPast(today, day)) {
            if (!spans.empty() && spans.back().end == day)
                spans.back().end = next;
            else
                spans.push_back({day, next});
        }
        day = next;
    }
    return spans;
}

/// The spans of the present day, worked out once a day.
const std::vector<LateDays> &recentSpans(Date firstDay, Date startOfToday)
{
    static std::vector<LateDays> spans;
    static OptionalDate knownFor;
    static quint64 generation = 0;
    if (knownFor != startOfToday || generation != Region::generation()) {
        spans = spansOf(firstDay, startOfToday);
        knownFor = startOfToday;
        generation = Region::generation();
    }
    return spans;
}

} // namespace

Lateness::Lateness()
    : now(Clock::now())
    , today(MVDate::dayByPattern(now))
    , recentStart(MVDate::getStartOfDay(MVDate::addDay(-recentDays, MVDate::getStartOfDay(now))))
{}

bool Lateness::isLate(std::optional<TaskType> type, OptionalDate dueDate) const
{
    if (!dueDate || now <= *dueDate)
        return false;
    return isMoment(type) || isDayPast(today, *dueDate);
}

std::vector<Predicate> Lateness::recentlyLate(std::optional<TaskType> type) const
{
    if (isMoment(type))
        return {Predicate::format("dueDate >= %@ and dueDate < %@", recentStart, now)};
    std::vector<Predicate> parts;
    for (const LateDays &span : recentSpans(recentStart, MVDate::getStartOfDay(now)))
        parts.push_back(
            Predicate::format("dueDate >= %@ and dueDate < %@", span.start, std::min(span.end, now)));
    return parts;
}

Predicate Lateness::longPast() const
{
    return Predicate::format("dueDate < %@", recentStart);
}

Predicate Lateness::notLongPast() const
{
    return Predicate::format("not (dueDate < %@)", recentStart);
}

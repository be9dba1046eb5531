#include "recurrence/RecurrenceRule.h"

#include "eventkit/RecurrenceExpander.h"

#include <algorithm>

namespace {

/// The units of RFC 5545 the other way round.
RecurrenceUnit unitOf(RecurrenceFrequency frequency)
{
    return static_cast<RecurrenceUnit>(static_cast<int>(RecurrenceUnit::Yearly) -
                                       static_cast<int>(frequency));
}

RecurrencePattern patternOf(const RecurrenceRule &rule)
{
    RecurrencePattern pattern{.frequency = unitOf(rule.frequency),
                              .interval = rule.interval,
                              .weekStart = rule.firstDayOfWeek,
                              .bySetPos = rule.bysetpos,
                              .byYearDay = rule.byyearday,
                              .byMonth = rule.bymonth,
                              .byWeekNo = rule.byweekno,
                              .byMonthDay = rule.bymonthday,
                              .byHour = rule.byhour,
                              .byMinute = rule.byminute,
                              .bySecond = rule.bysecond};
    for (const EKWeekday day : rule.byweekday)
        pattern.byDay.push_back({day});
    if (rule.recurrenceEnd) {
        pattern.until = rule.recurrenceEnd->endDate();
        pattern.count = rule.recurrenceEnd->occurrenceCount();
    }
    return pattern;
}

/// The dates of the rule itself, and those it adds; without those it takes out.
std::vector<Date> dates(const RecurrenceRule &rule, const RecurrenceExpander::Window &window)
{
    const RecurrenceExpander expander(patternOf(rule), rule.startDate, rule.calendar);
    std::vector<Date> found;
    for (const RecurrenceInstance &instance : expander.instances(window))
        found.push_back(instance.date);
    if (rule.rdate)
        for (const Date added : rule.rdate->dates)
            if ((!window.from || added >= *window.from) && (!window.to || added <= *window.to))
                found.push_back(added);
    if (rule.exdate)
        std::erase_if(found, [&](Date date) { return rule.exdate->excludes(date, rule.calendar); });
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

} // namespace

std::vector<Date> RecurrenceRule::allOccurrences() const
{
    return recurrenceEnd ? dates(*this, {}) : std::vector<Date>();
}

std::vector<Date> RecurrenceRule::occurrencesBetween(Date begin, Date end) const
{
    return dates(*this, {.from = begin, .to = end});
}

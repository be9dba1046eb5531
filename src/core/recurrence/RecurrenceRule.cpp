#include "recurrence/RecurrenceRule.h"

#include "eventkit/RecurrenceExpander.h"

#include <algorithm>

namespace {

/// The units of RFC 5545 are numbered the other way round.
RecurrenceUnit unitOf(RecurrenceFrequency frequency)
{
    return static_cast<RecurrenceUnit>(static_cast<int>(RecurrenceUnit::Yearly) -
                                       static_cast<int>(frequency));
}

RecurrenceFrequency frequencyOf(RecurrenceUnit unit)
{
    return static_cast<RecurrenceFrequency>(static_cast<int>(RecurrenceFrequency::secondly) -
                                            static_cast<int>(unit));
}

std::vector<int> ascending(std::vector<int> values)
{
    std::ranges::sort(values);
    return values;
}

/// The dates of the rule itself, and those it adds; without those it takes out.
std::vector<Date> dates(const RecurrenceRule &rule, const RecurrenceExpander::Window &window)
{
    const RecurrenceExpander expander(rule.pattern(), rule.startDate, rule.calendar);
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

RecurrenceRule RecurrenceRule::fromPattern(const RecurrencePattern &pattern)
{
    RecurrenceRule rule(frequencyOf(pattern.frequency));
    rule.interval = pattern.interval;
    rule.firstDayOfWeek = pattern.weekStart;
    if (pattern.until)
        rule.recurrenceEnd = EKRecurrenceEnd::recurrenceEndWithEndDate(*pattern.until);
    else if (pattern.count > 0)
        rule.recurrenceEnd = EKRecurrenceEnd::recurrenceEndWithOccurrenceCount(pattern.count);
    rule.bysetpos = ascending(pattern.bySetPos);
    rule.byyearday = ascending(pattern.byYearDay);
    rule.bymonth = ascending(pattern.byMonth);
    rule.byweekno = ascending(pattern.byWeekNo);
    rule.bymonthday = ascending(pattern.byMonthDay);
    for (const EKRecurrenceDayOfWeek &day : pattern.byDay)
        if (day.weekNumber == 0)
            rule.byweekday.push_back(day.dayOfTheWeek);
    std::ranges::sort(rule.byweekday);
    rule.byhour = ascending(pattern.byHour);
    rule.byminute = ascending(pattern.byMinute);
    rule.bysecond = ascending(pattern.bySecond);
    return rule;
}

RecurrencePattern RecurrenceRule::pattern() const
{
    RecurrencePattern pattern{.frequency = unitOf(frequency),
                              .interval = interval,
                              .weekStart = firstDayOfWeek,
                              .bySetPos = bysetpos,
                              .byYearDay = byyearday,
                              .byMonth = bymonth,
                              .byWeekNo = byweekno,
                              .byMonthDay = bymonthday,
                              .byHour = byhour,
                              .byMinute = byminute,
                              .bySecond = bysecond};
    for (const EKWeekday day : byweekday)
        pattern.byDay.push_back({day});
    if (recurrenceEnd) {
        pattern.until = recurrenceEnd->endDate();
        pattern.count = recurrenceEnd->occurrenceCount();
    }
    return pattern;
}

bool RecurrenceRule::isDayFromEnd(int monthDay, Date date, const Calendar &calendar)
{
    return monthDay < 0 && monthDay == calendar.day(date) - calendar.daysInMonth(date) - 1;
}

RecurrenceRule RecurrenceRule::fittedTo(Date date) const
{
    RecurrenceRule fitted = *this;
    if (frequency == RecurrenceFrequency::weekly && byweekday.size() == 1)
        fitted.byweekday = {static_cast<EKWeekday>(calendar.weekday(date))};
    else if (frequency == RecurrenceFrequency::monthly && bymonthday.size() == 1 &&
             !isDayFromEnd(bymonthday.front(), date, calendar))
        fitted.bymonthday = {calendar.day(date)};
    else if (frequency == RecurrenceFrequency::yearly && bymonth.size() == 1)
        fitted.bymonth = {calendar.month(date)};
    return fitted;
}

std::vector<Date> RecurrenceRule::allOccurrences() const
{
    return recurrenceEnd ? dates(*this, {}) : std::vector<Date>();
}

std::vector<Date> RecurrenceRule::occurrencesBetween(Date begin, Date end) const
{
    return dates(*this, {.from = begin, .to = end});
}

#include "calendarsync/EventWriter.h"
#include "eventkit/EKEvent.h"
#include "records/dates/MTDates.h"
#include "recurrence/RecurrenceRule.h"
#include "store/queries/EventDates.h"

namespace {

/// The last moment of the last day on which an occurrence may start, but not before that of the task itself.
/// An end that the event has already stays the moment that it is, so that it is the same day for who has
/// travelled.
OptionalDate endOfRule(const EntityTask &task, OptionalDate present)
{
    if (!task.endRepeat())
        return std::nullopt;
    const Date end = task.endRepeat() == present ? *present : MTDates::endOfCurrentDay(*task.endRepeat());
    const bool isEmailCall = task.type() == TaskType::EmailCall;
    const OptionalDate first = isEmailCall ? task.dueDate() : task.startDate();
    return first && end < *first ? MTDates::endOfCurrentDay(*first) : end;
}

std::optional<EKRecurrenceRule> ruleOf(const EntityTask &task)
{
    auto rule = EKRecurrenceRule::recurrenceRuleFromString(task.repeat());
    if (rule)
        rule->setRecurrenceEnd(
            task.endRepeat() ? std::optional(EKRecurrenceEnd::recurrenceEndWithEndDate(*task.endRepeat()))
                             : std::nullopt);
    return rule;
}

/// A rule may have been made for another date than the one it is used for.
EKRecurrenceRule fittedTo(Date base, const EKRecurrenceRule &rule)
{
    std::vector<EKRecurrenceDayOfWeek> daysOfTheWeek = rule.daysOfTheWeek();
    std::vector<int> daysOfTheMonth = rule.daysOfTheMonth();
    std::vector<int> monthsOfTheYear = rule.monthsOfTheYear();
    switch (rule.frequency()) {
    case EKRecurrenceFrequency::Daily:
        return rule;
    case EKRecurrenceFrequency::Weekly:
        // Without a day the rule takes the weekday of the event.
        if (daysOfTheWeek.size() == 1)
            daysOfTheWeek.clear();
        break;
    case EKRecurrenceFrequency::Monthly:
        if (daysOfTheMonth.size() == 1 &&
            !RecurrenceRule::isDayFromEnd(daysOfTheMonth.front(), base, Calendar::current()))
            daysOfTheMonth = {MTDates::dayOfMonth(base)};
        break;
    case EKRecurrenceFrequency::Yearly:
        if (rule.daysOfTheYear().size() == 1)
            monthsOfTheYear = {MTDates::monthOfYear(base)};
        break;
    }
    EKRecurrenceRule fitted = EKRecurrenceRule::initRecurrenceWithFrequency(
        rule.frequency(), rule.interval(), daysOfTheWeek, daysOfTheMonth, monthsOfTheYear,
        rule.weeksOfTheYear(), rule.daysOfTheYear(), rule.setPositions(), rule.recurrenceEnd());
    fitted.setFirstDayOfTheWeek(rule.firstDayOfTheWeek());
    return fitted;
}

/// Until when the event repeats now.
OptionalDate presentEnd(const EKEvent &event)
{
    const auto end =
        event.recurrenceRules.empty() ? std::nullopt : event.recurrenceRules.back().recurrenceEnd();
    return end ? end->endDate() : std::nullopt;
}

/// Whether an edit left the event's rule alone. It stays as it is then, or turns with the day to which the
/// event is moved, with what a row cannot say of it: an end after a number of times, or on what day its weeks
/// begin.
bool keepsRule(const EKEvent &event, const EntityTask &task)
{
    if (event.recurrenceRules.empty() || event.recurrenceRules.back().stringForICalendar() != task.repeat())
        return false;
    const auto end = event.recurrenceRules.back().recurrenceEnd();
    // How many occurrences are left is known only where the series is divided.
    if (end && end->occurrenceCount() > 0)
        return !task.endRepeat();
    return task.endRepeat() == (end ? end->endDate() : std::nullopt);
}

} // namespace

void EventWriter::setRecurrenceRuleFromEvent(EKEvent &event, EntityTask &task)
{
    if (keepsRule(event, task))
        return;
    if (const OptionalDate end = endOfRule(task, presentEnd(event)))
        task.setEndRepeat(end);
    auto rule = ruleOf(task);
    const OptionalDate base = task.startDate() ? task.startDate() : task.dueDate();
    if (rule && base)
        rule = fittedTo(*base, *rule);
    task.setRepeat(rule ? rule->stringForICalendar() : QString());
    event.recurrenceRules.clear();
    if (rule)
        event.recurrenceRules.push_back(*rule);
}

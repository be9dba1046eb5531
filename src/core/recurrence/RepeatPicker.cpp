#include "recurrence/RepeatPicker.h"

#include "recurrence/RecurrencePickerTexts.h"
#include "recurrence/RecurrenceSentence.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

static const std::vector<EKWeekday> mondayToFriday = {
    EKWeekday::Monday, EKWeekday::Tuesday, EKWeekday::Wednesday, EKWeekday::Thursday, EKWeekday::Friday};

RepeatPicker::RepeatPicker()
    : language(RecurrencePickerLanguages::current())
{}

// Between the pop-up, the rule and its text

void RepeatPicker::updateRecurrenceRuleWithIndex(int index, OptionalDate)
{
    rule.reset();
    switch (index) {
    case EveryDay:
        rule.emplace(RecurrenceFrequency::daily);
        break;
    case EveryWeek:
    case EveryTwoWeeks:
    case EveryWeekday:
        rule.emplace(RecurrenceFrequency::weekly);
        break;
    case EveryMonth:
        rule.emplace(RecurrenceFrequency::monthly);
        break;
    case EveryYear:
        rule.emplace(RecurrenceFrequency::yearly);
        break;
    default:
        break;
    }
    if (index == EveryTwoWeeks)
        rule->interval = 2;
    else if (index == EveryWeekday)
        rule->byweekday = mondayToFriday;
}

QString RepeatPicker::stringRule() const
{
    return rule ? RRule::stringFromRule(*rule) : u""_s;
}

void RepeatPicker::setRepeatStringWithStr(const QString &str)
{
    rule = str.isEmpty() ? std::nullopt : RRule::ruleFromString(str);
}

RepeatPicker::Preset RepeatPicker::presetOf(OptionalDate date) const
{
    if (!rule)
        return Never;
    if (isDailyRecurrence())
        return EveryDay;
    if (isWeeklyRecurrenceWithOccurrenceDate(date))
        return EveryWeek;
    if (isBiWeeklyRecurrenceWithOccurrenceDate(date))
        return EveryTwoWeeks;
    if (isMonthlyRecurrenceWithOccurrenceDate(date))
        return EveryMonth;
    if (isYearlyRecurrenceWithOccurrenceDate(date))
        return EveryYear;
    return isWeekdayRecurrence() ? EveryWeekday : Custom;
}

QStringList RepeatPicker::presetTitles() const
{
    const RecurrencePickerTexts texts(language);
    QStringList titles;
    for (const QString &key : {u"never"_s, u"everyDay"_s, u"everyWeek"_s, u"everyTwoWeeks"_s, u"everyMonth"_s,
                               u"everyYear"_s, u"everyWeekday"_s})
        titles << texts.text(u"basicRecurrence."_s + key);
    return titles;
}

QString RepeatPicker::customTitle() const
{
    return u"%1..."_s.arg(RecurrencePickerTexts(language).text(u"RecurrencePicker.textLabel.custom"_s));
}

QString RepeatPicker::recurrenceRuleToTextForUser() const
{
    if (!rule)
        return {};
    const QString sentence = RecurrenceSentence::of(*rule, language);
    // There are no words for what comes by the hour.
    return sentence.isEmpty() ? RecurrencePickerTexts(language).text(u"RecurrencePicker.textLabel.custom"_s)
                              : sentence;
}

// What the rule is

bool RepeatPicker::isEvery(RecurrenceFrequency frequency, int interval) const
{
    return rule && rule->frequency == frequency && std::max(1, rule->interval) == interval;
}

/// Whether a list says no more than the date itself.
template <typename Value>
static bool saysNoMore(const std::vector<Value> &list, OptionalDate date, int (Calendar::*field)(Date) const)
{
    if (list.empty())
        return true;
    return list.size() == 1 && date && static_cast<int>(list.front()) == (Calendar::current().*field)(*date);
}

bool RepeatPicker::isOnWeekdayOf(OptionalDate date) const
{
    return saysNoMore(rule->byweekday, date, &Calendar::weekday);
}

bool RepeatPicker::isDailyRecurrence() const
{
    return isEvery(RecurrenceFrequency::daily, 1);
}

bool RepeatPicker::isWeekdayRecurrence() const
{
    if (!isEvery(RecurrenceFrequency::weekly, 1))
        return false;
    std::vector<EKWeekday> days = rule->byweekday;
    std::ranges::sort(days);
    return days == mondayToFriday;
}

bool RepeatPicker::isWeeklyRecurrenceWithOccurrenceDate(OptionalDate date) const
{
    return isEvery(RecurrenceFrequency::weekly, 1) && isOnWeekdayOf(date);
}

bool RepeatPicker::isBiWeeklyRecurrenceWithOccurrenceDate(OptionalDate date) const
{
    return isEvery(RecurrenceFrequency::weekly, 2) && isOnWeekdayOf(date);
}

bool RepeatPicker::isMonthlyRecurrenceWithOccurrenceDate(OptionalDate date) const
{
    return isEvery(RecurrenceFrequency::monthly, 1) && saysNoMore(rule->bymonthday, date, &Calendar::day);
}

bool RepeatPicker::isYearlyRecurrenceWithOccurrenceDate(OptionalDate date) const
{
    return isEvery(RecurrenceFrequency::yearly, 1) && saysNoMore(rule->bymonth, date, &Calendar::month);
}

bool RepeatPicker::isCustomRecurrenceWithOccurrenceDate(OptionalDate date) const
{
    return rule && presetOf(date) == Custom;
}

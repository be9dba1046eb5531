#include "recurrence/RecurrenceSentence.h"

#include "foundation/CalendarSymbols.h"
#include "recurrence/RecurrencePickerTexts.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using CalendarSymbols::Form;

namespace {

const QString prefix = u"RecurrenceRuleText."_s;

/// The last part of the keys that depend on the frequency; empty for one that has none.
QString unitWord(RecurrenceFrequency frequency)
{
    switch (frequency) {
    case RecurrenceFrequency::daily:
        return u"day"_s;
    case RecurrenceFrequency::weekly:
        return u"week"_s;
    case RecurrenceFrequency::monthly:
        return u"month"_s;
    case RecurrenceFrequency::yearly:
        return u"year"_s;
    default:
        return {};
    }
}

QString unitPhrase(const RecurrenceRule &rule, const RecurrencePickerTexts &texts)
{
    const QString unit = unitWord(rule.frequency);
    return rule.interval <= 1 ? texts.text(u"unit."_s + unit)
                              : texts.text(u"pluralUnit."_s + unit, {rule.interval});
}

/// From the user's first day of the week on.
QStringList weekdays(const RecurrenceRule &rule, const RecurrencePickerTexts &texts)
{
    const int first = rule.calendar.firstWeekday();
    const QStringList names = CalendarSymbols::weekdays(texts.locale(), Form::InText);
    std::vector<int> days;
    for (const EKWeekday day : rule.byweekday)
        days.push_back(static_cast<int>(day));
    std::ranges::sort(days, {}, [first](int day) { return (day - first + 7) % 7; });
    QStringList words;
    for (const int day : days)
        words << texts.text(prefix + u"element.weekday"_s, {names.at(day - 1), QString::number(day)});
    return words;
}

QStringList monthDays(const RecurrenceRule &rule, const RecurrencePickerTexts &texts)
{
    std::vector<int> days = rule.pattern().withoutInvalidValues().byMonthDay;
    // Days that are counted from the end come last.
    std::ranges::sort(days, {}, [](int day) { return day < 0 ? day + 100 : day; });
    QStringList words;
    for (const int day : days) {
        words << (day == -1 ? texts.text(prefix + u"element.lastDay"_s)
                            : texts.text(prefix + u"element.day"_s, {day}));
    }
    return words;
}

QStringList months(const RecurrenceRule &rule, const RecurrencePickerTexts &texts)
{
    const QStringList names = CalendarSymbols::months(texts.locale(), Form::InText);
    std::vector<int> numbers = rule.pattern().withoutInvalidValues().byMonth;
    std::ranges::sort(numbers);
    QStringList words;
    for (const int month : numbers) {
        words << texts.text(prefix + u"element.month"_s, {names.at(month - 1), QString::number(month)});
    }
    return words;
}

/// Each of these weekdays in a month, not the second or the last of them.
bool isOnEveryWeekdayOfMonth(const RecurrenceRule &rule)
{
    return rule.frequency == RecurrenceFrequency::monthly && rule.bymonthday.empty() && rule.bysetpos.empty();
}

QStringList listWords(const RecurrenceRule &rule, const RecurrencePickerTexts &texts)
{
    if (isOnEveryWeekdayOfMonth(rule))
        return weekdays(rule, texts);
    switch (rule.frequency) {
    case RecurrenceFrequency::weekly:
        return weekdays(rule, texts);
    case RecurrenceFrequency::monthly:
        return monthDays(rule, texts);
    case RecurrenceFrequency::yearly:
        return months(rule, texts);
    default:
        return {};
    }
}

QString joined(QStringList words, const RecurrencePickerTexts &texts)
{
    if (words.size() < 2)
        return words.join(QString());
    const QString last = words.takeLast();
    return words.join(texts.text(prefix + u"element.comma"_s)) + texts.text(prefix + u"element.and"_s) + last;
}

bool isEveryWeekday(const RecurrenceRule &rule)
{
    std::vector<EKWeekday> days = rule.byweekday;
    std::ranges::sort(days);
    return rule.frequency == RecurrenceFrequency::weekly && rule.interval <= 1 &&
           days == std::vector{EKWeekday::Monday, EKWeekday::Tuesday, EKWeekday::Wednesday,
                               EKWeekday::Thursday, EKWeekday::Friday};
}

} // namespace

QString RecurrenceSentence::of(const RecurrenceRule &rule, RecurrencePickerLanguage language)
{
    const RecurrencePickerTexts texts(language);
    if (unitWord(rule.frequency).isEmpty())
        return {};
    if (isEveryWeekday(rule))
        return texts.text(prefix + u"everyWeekday"_s);
    const QString unit = unitPhrase(rule, texts);
    QString basic = texts.text(prefix + u"basicRecurrence"_s, {unit});
    const QStringList words = listWords(rule, texts);
    if (words.isEmpty())
        return basic;
    const RecurrenceFrequency listed =
        isOnEveryWeekdayOfMonth(rule) ? RecurrenceFrequency::weekly : rule.frequency;
    // Only weeks, months and years have lists.
    const QString lead = prefix + u"element.on."_s + unitWord(listed) + u"ly"_s;
    const QString list = texts.text(lead, {joined(words, texts), static_cast<int>(words.size())});
    return texts.text(prefix + u"byWeekdaysOrMonthdaysOrMonths"_s, {basic, list, unit});
}

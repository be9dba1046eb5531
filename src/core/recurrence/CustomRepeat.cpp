#include "recurrence/CustomRepeat.h"

#include "foundation/CalendarSymbols.h"
#include "recurrence/RecurrenceSentence.h"

#include <algorithm>
#include <array>
#include <numeric>

using namespace Qt::Literals::StringLiterals;
using CalendarSymbols::Form;

namespace {

/// The order of the pop-up, with the keys of its titles and of the unit.
struct FrequencyWords
{
    RecurrenceFrequency frequency;
    QString title;
    QString unit;
};

const std::array<FrequencyWords, 4> &frequencies()
{
    static const std::array<FrequencyWords, 4> table = {{
        {RecurrenceFrequency::daily, u"frequency.daily"_s, u"day (s)"_s},
        {RecurrenceFrequency::weekly, u"frequency.weekly"_s, u"week (s)"_s},
        {RecurrenceFrequency::monthly, u"frequency.monthly"_s, u"month (s)"_s},
        {RecurrenceFrequency::yearly, u"frequency.yearly"_s, u"year (s)"_s},
    }};
    return table;
}

constexpr int usualMostInterval = 999;
constexpr int longestMonth = 31;
constexpr int leapDay = 29;
constexpr int shortestMonth = 28;
constexpr int february = 2;

int lengthOfMonth(int month)
{
    constexpr std::array lengths = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return lengths.at(static_cast<std::size_t>(month - 1));
}

} // namespace

CustomRepeat::CustomRepeat(const std::optional<RecurrenceRule> &rule, OptionalDate occurrenceDate,
                           OptionalDate endRepeat, RecurrencePickerLanguage textLanguage)
    : edited(rule.value_or(RecurrenceRule(RecurrenceFrequency::weekly)))
    , most(std::max(usualMostInterval, edited.interval))
    , start(occurrenceDate.value_or(Clock::now()))
    , end(endRepeat)
    , language(textLanguage)
    , texts(textLanguage)
{
    fit();
    if (rule)
        initial = edited.pattern();
}

/// What the window shows is what is stored, and what the event gets.
void CustomRepeat::fit()
{
    const std::vector<int> chosen = selectedItems();
    edited = edited.fittedTo(start);
    hasMoved = selectedItems() != chosen;
}

// How often

QStringList CustomRepeat::frequencyTitles() const
{
    QStringList titles;
    for (const FrequencyWords &words : frequencies())
        titles << texts.text(words.title);
    return titles;
}

int CustomRepeat::frequencyIndex() const
{
    const auto found = std::ranges::find(frequencies(), edited.frequency, &FrequencyWords::frequency);
    return found == frequencies().end() ? 0 : static_cast<int>(found - frequencies().begin());
}

bool CustomRepeat::isFrequencyKnown() const
{
    return std::ranges::count(frequencies(), edited.frequency, &FrequencyWords::frequency) > 0;
}

void CustomRepeat::frequencyChange(int index)
{
    edited.frequency = frequencies().at(static_cast<std::size_t>(index)).frequency;
    edited.byweekday.clear();
    edited.bymonthday.clear();
    edited.bymonth.clear();
    edited.bysetpos.clear();
    edited.byyearday.clear();
    edited.byweekno.clear();
    fit();
}

void CustomRepeat::setInterval(int interval)
{
    edited.interval = std::clamp(interval, 1, most);
}

QString CustomRepeat::unitLabel() const
{
    return texts.text(frequencies().at(static_cast<std::size_t>(frequencyIndex())).unit);
}

// The grid

std::vector<int> CustomRepeat::items() const
{
    std::vector<int> values;
    if (edited.frequency == RecurrenceFrequency::weekly)
        values.resize(7);
    else if (edited.frequency == RecurrenceFrequency::monthly)
        values.resize(longestMonth);
    else if (edited.frequency == RecurrenceFrequency::yearly)
        values.resize(12);
    std::iota(values.begin(), values.end(), 1);
    if (edited.frequency == RecurrenceFrequency::weekly)
        std::rotate(values.begin(), values.begin() + edited.calendar.firstWeekday() - 1, values.end());
    return values;
}

QString CustomRepeat::titleOf(int item) const
{
    if (edited.frequency == RecurrenceFrequency::weekly)
        return CalendarSymbols::weekdays(texts.locale(), Form::AloneShort).at(item - 1);
    if (edited.frequency == RecurrenceFrequency::yearly)
        return CalendarSymbols::months(texts.locale(), Form::AloneShort).at(item - 1);
    return QString::number(item);
}

QString CustomRepeat::nameOf(int item) const
{
    if (edited.frequency == RecurrenceFrequency::weekly)
        return CalendarSymbols::weekdays(texts.locale(), Form::Alone).at(item - 1);
    if (edited.frequency == RecurrenceFrequency::yearly)
        return CalendarSymbols::months(texts.locale(), Form::Alone).at(item - 1);
    return QString::number(item);
}

std::vector<int> CustomRepeat::selectedItems() const
{
    switch (edited.frequency) {
    case RecurrenceFrequency::weekly: {
        std::vector<int> days;
        for (const EKWeekday day : edited.byweekday)
            days.push_back(static_cast<int>(day));
        return days;
    }
    case RecurrenceFrequency::monthly:
        return edited.bymonthday;
    case RecurrenceFrequency::yearly:
        return edited.bymonth;
    default:
        return {};
    }
}

bool CustomRepeat::isSelected(int item) const
{
    return std::ranges::count(selectedItems(), item) > 0;
}

template <typename Value>
static void toggle(std::vector<Value> &list, Value item, bool selected)
{
    std::erase(list, item);
    if (selected)
        list.insert(std::ranges::upper_bound(list, item), item);
}

void CustomRepeat::setSelected(int item, bool selected)
{
    if (edited.frequency == RecurrenceFrequency::weekly)
        toggle(edited.byweekday, static_cast<EKWeekday>(item), selected);
    else if (edited.frequency == RecurrenceFrequency::monthly)
        toggle(edited.bymonthday, item, selected);
    else if (edited.frequency == RecurrenceFrequency::yearly)
        toggle(edited.bymonth, item, selected);
    fit();
}

// What comes of it

QString CustomRepeat::sentence() const
{
    return RecurrenceSentence::of(edited, language);
}

std::vector<Date> CustomRepeat::nextMatches(std::size_t count) const
{
    const Calendar calendar = Calendar::current();
    RecurrenceRule series = edited;
    series.startDate = start;
    const Date from = std::max(start, calendar.startOfDay(Clock::now()));
    std::vector<Date> dates;
    // Far enough for a leap day every 999 years would be without end; a century is more than a life.
    for (const int years : {1, 10, 100}) {
        const Date farthest = calendar.dateByAdding(CalendarUnit::Year, years, from);
        dates = series.occurrencesBetween(from, end ? std::min(*end, farthest) : farthest);
        if (dates.size() >= count || (end && *end <= farthest))
            break;
    }
    dates.resize(std::min(count, dates.size()));
    return dates;
}

/// An event occurs at its start, whether its rule includes that or not.
bool CustomRepeat::isStartExtra() const
{
    if (start < Calendar::current().startOfDay(Clock::now()))
        return false;
    const std::vector<Date> matches = nextMatches(1);
    return matches.empty() || matches.front() != start;
}

std::vector<Date> CustomRepeat::nextDates(std::size_t count) const
{
    std::vector<Date> dates = nextMatches(count);
    if (isStartExtra())
        dates.insert(dates.begin(), start);
    dates.resize(std::min(count, dates.size()));
    return dates;
}

/// Whether some month of a yearly rule has no such day, even in a leap year.
bool CustomRepeat::lacksDay(int day) const
{
    const std::vector<int> months =
        edited.bymonth.empty() ? std::vector{edited.calendar.month(start)} : edited.bymonth;
    return std::ranges::any_of(months, [day](int month) { return day > lengthOfMonth(month); });
}

QString CustomRepeat::warning() const
{
    if (nextMatches(1).empty())
        return texts.text(u"RepeatPicker.noDates"_s);
    if (hasMoved)
        return texts.text(edited.frequency == RecurrenceFrequency::yearly ? u"RepeatPicker.monthFollowsDate"_s
                                                                          : u"RepeatPicker.followsDate"_s);
    QStringList lines;
    if (isStartExtra())
        lines << texts.text(u"RepeatPicker.startIsExtra"_s);
    if (const QString skipped = skippedDates(); !skipped.isEmpty())
        lines << skipped;
    return lines.join(u'\n');
}

QString CustomRepeat::skippedDates() const
{
    const int dayOfStart = edited.calendar.day(start);
    const auto shortMonths = [this](int day) { return texts.text(u"RepeatPicker.shortMonths"_s, {day}); };
    if (edited.frequency == RecurrenceFrequency::monthly) {
        const int latest = edited.bymonthday.empty() ? dayOfStart : std::ranges::max(edited.bymonthday);
        return latest > shortestMonth ? shortMonths(latest) : QString();
    }
    if (edited.frequency != RecurrenceFrequency::yearly || dayOfStart <= shortestMonth)
        return {};
    if (lacksDay(dayOfStart))
        return shortMonths(dayOfStart);
    const bool isFebruary = edited.bymonth.empty() ? edited.calendar.month(start) == february
                                                   : std::ranges::count(edited.bymonth, february) > 0;
    return isFebruary && dayOfStart == leapDay ? texts.text(u"RepeatPicker.leapYears"_s) : QString();
}

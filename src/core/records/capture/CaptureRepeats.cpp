#include "records/capture/CaptureReader.h"

#include <algorithm>

// Repetitions in a captured line, and what follows from them for its dates.

using namespace Qt::Literals::StringLiterals;
using Meaning = CaptureWords::Meaning;

namespace {

const std::vector<EKWeekday> workdays = {EKWeekday::Monday, EKWeekday::Tuesday, EKWeekday::Wednesday,
                                         EKWeekday::Thursday, EKWeekday::Friday};
const std::vector<EKWeekday> weekend = {EKWeekday::Saturday, EKWeekday::Sunday};

RecurrenceRule ruleOf(RecurrenceFrequency frequency, int interval = 1)
{
    RecurrenceRule rule(frequency);
    rule.interval = std::max(1, interval);
    return rule;
}

} // namespace

bool CaptureReader::takeRepeat(size_t &place)
{
    if (known.contains(CapturePiece::Kind::Repeat))
        return false;
    Repeat repeat = repeatAt(place);
    if (repeat.count == 0)
        return false;
    const size_t end = readEnd(place + size_t(repeat.count), repeat);
    result.repeat = repeat.rule;
    firstOfRepeat = repeat.first;
    note(CapturePiece::Kind::Repeat, place, end - place);
    place = end;
    return true;
}

CaptureReader::Repeat CaptureReader::repeatAt(size_t place) const
{
    const auto phrase = match(place, {Meaning::Daily, Meaning::Weekly, Meaning::Monthly, Meaning::Yearly,
                                      Meaning::OnWorkdays, Meaning::OnWeekends});
    const Repeat every = everyAt(place);
    if (!phrase || every.count > phrase->count)
        return every;
    const int interval = std::max(1, phrase->entry.number);
    Repeat repeat{phrase->count};
    switch (phrase->entry.meaning) {
    case Meaning::Daily:
        repeat.rule = ruleOf(RecurrenceFrequency::daily, interval);
        break;
    case Meaning::Weekly:
        repeat.rule = ruleOf(RecurrenceFrequency::weekly, interval);
        break;
    case Meaning::Monthly:
        repeat.rule = ruleOf(RecurrenceFrequency::monthly, interval);
        break;
    case Meaning::Yearly:
        repeat.rule = ruleOf(RecurrenceFrequency::yearly, interval);
        break;
    default:
        repeat.rule = ruleOf(RecurrenceFrequency::weekly);
        repeat.rule->byweekday = phrase->entry.meaning == Meaning::OnWorkdays ? workdays : weekend;
        break;
    }
    return repeat;
}

/// "every 2 weeks", "every Monday and Thursday", "alle 3 Tage", "jeden 15.", "every 31 Dec".
CaptureReader::Repeat CaptureReader::everyAt(size_t place) const
{
    auto lead = match(place, {Meaning::Every});
    if (!lead)
        return {};
    const auto unitAt = [this](size_t at) {
        return match(at, {Meaning::DayUnit, Meaning::WeekUnit, Meaning::MonthUnit, Meaning::YearUnit});
    };
    auto unit = unitAt(place + size_t(lead->count));
    if (lead->number && !unit) {
        // "every 31 Dec": the number belongs to what follows.
        lead = dictionary.match(from(place).first(1), {Meaning::Every});
        if (!lead)
            return {};
        unit = unitAt(place + 1);
    }
    size_t next = place + size_t(lead->count);
    const int interval = std::max(1, lead->number.value_or(lead->entry.number));
    Repeat repeat;
    if (unit) {
        next += size_t(unit->count);
        const Meaning meaning = unit->entry.meaning;
        repeat.rule = ruleOf(meaning == Meaning::DayUnit     ? RecurrenceFrequency::daily
                             : meaning == Meaning::WeekUnit  ? RecurrenceFrequency::weekly
                             : meaning == Meaning::MonthUnit ? RecurrenceFrequency::monthly
                                                             : RecurrenceFrequency::yearly,
                             interval);
    }
    // Weekdays: after "every" at once, or after "every 2 weeks on".
    size_t after = next;
    if (unit) {
        const auto on = match(after, {Meaning::BeforeDate});
        after += on ? size_t(on->count) : 0;
    }
    std::vector<EKWeekday> days;
    const bool canHaveDays = !unit || repeat.rule->frequency == RecurrenceFrequency::weekly;
    while (canHaveDays) {
        const auto day = match(after, {Meaning::Weekday});
        if (!day)
            break;
        days.push_back(EKWeekday(day->entry.number));
        after += size_t(day->count);
        next = after;
        const auto also = match(after, {Meaning::And});
        after += also ? size_t(also->count) : 0;
    }
    if (!days.empty()) {
        if (!unit)
            repeat.rule = ruleOf(RecurrenceFrequency::weekly, interval);
        std::ranges::sort(days);
        days.erase(std::unique(days.begin(), days.end()), days.end());
        repeat.rule->byweekday = days;
    } else if (!unit || repeat.rule->frequency == RecurrenceFrequency::monthly ||
               repeat.rule->frequency == RecurrenceFrequency::yearly) {
        const bool mayBeInYear = !unit || repeat.rule->frequency == RecurrenceFrequency::yearly;
        if (const Days date = dayAndMonth(after); mayBeInYear && date.count > 0) {
            if (!unit)
                repeat.rule = ruleOf(RecurrenceFrequency::yearly, interval);
            repeat.first = date.first;
            next = after + size_t(date.count);
        } else if (const Days day = isFree(after) ? numericDay(after, true) : Days{};
                   day.count > 0 && (!unit || repeat.rule->frequency == RecurrenceFrequency::monthly)) {
            static const QRegularExpression hasMonth(u"^\\d+[./-]\\d+"_s);
            const bool isInYear = hasMonth.match(words[after].folded).hasMatch();
            if (isInYear && unit)
                return {int(next - place), repeat.rule};
            if (!unit)
                repeat.rule =
                    ruleOf(isInYear ? RecurrenceFrequency::yearly : RecurrenceFrequency::monthly, interval);
            repeat.first = day.first;
            next = after + size_t(day.count);
        }
    }
    if (!repeat.rule)
        return {};
    repeat.count = int(next - place);
    return repeat;
}

/// "until 31.12.", "bis Ende Mai"; "5 times", "10 mal".
size_t CaptureReader::readEnd(size_t place, Repeat &repeat) const
{
    if (const auto times = match(place, {Meaning::Times}); times && times->number.value_or(0) > 0) {
        repeat.rule->recurrenceEnd = EKRecurrenceEnd::recurrenceEndWithOccurrenceCount(*times->number);
        return place + size_t(times->count);
    }
    const auto until = match(place, {Meaning::Until});
    if (!until)
        return place;
    const Days last = dayAt(place + size_t(until->count), true);
    if (last.count == 0 || last.isSomeday || last.minute)
        return place;
    repeat.rule->recurrenceEnd =
        EKRecurrenceEnd::recurrenceEndWithEndDate(calendar.startOfNextDay(last.first) + Seconds(-1));
    return place + size_t(until->count + last.count);
}

/// A repetition without a date begins with its first day from today on.
void CaptureReader::beginRepeat()
{
    if (!result.repeat)
        return;
    if (!result.day)
        result.day = firstOfRepeat;
    if (!result.day) {
        result.day = today;
        const std::vector<EKWeekday> &days = result.repeat->byweekday;
        if (!days.empty()) {
            result.day = nextWeekday(int(days.front()), true);
            for (const EKWeekday day : days)
                result.day = std::min(*result.day, nextWeekday(int(day), true));
        }
    }
    result.isSomeday = false;
}

void CaptureReader::giveBackTimes()
{
    std::erase_if(result.pieces, [this](const CapturePiece &piece) {
        if (piece.kind != CapturePiece::Kind::Time)
            return false;
        for (size_t place = 0; place < words.size(); ++place) {
            if (words[place].from >= piece.from && words[place].from < piece.from + piece.length)
                isTaken[place] = false;
        }
        return true;
    });
}

void CaptureReader::finish()
{
    beginRepeat();
    if (result.minute && lengthInMinutes && !result.lastMinute)
        result.lastMinute = std::min(*result.minute + *lengthInMinutes, minutesOfDay - 1);
    // A time alone is the next one of it.
    if (result.minute && !result.day && !result.isSomeday) {
        const int present = calendar.hour(now) * 60 + calendar.minute(now);
        result.day = ahead(CalendarUnit::Day, *result.minute > present ? 0 : 1);
    }
    if (result.isSomeday) {
        // Without a day there is no time: the words stay where they were.
        result.minute.reset();
        result.lastMinute.reset();
        giveBackTimes();
    } else if (lengthInMinutes && !result.minute) {
        // Nor is there a length without a time.
        giveBackTimes();
    }
    QStringList title;
    for (size_t place = 0; place < words.size(); ++place) {
        if (!isTaken[place])
            title.append(words[place].text);
    }
    result.title = title.join(u' ');
    std::ranges::sort(result.pieces, {}, &CapturePiece::from);
}

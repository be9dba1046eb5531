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

/// How often something that is repeated comes in one such unit; 0 if that differs from one to the next.
int timesIn(Meaning unit, const RecurrenceRule &rule)
{
    constexpr int daysOfWeek = 7;
    switch (rule.frequency) {
    case RecurrenceFrequency::daily:
        return unit == Meaning::DayUnit ? 1 : unit == Meaning::WeekUnit ? daysOfWeek : 0;
    case RecurrenceFrequency::weekly:
        return unit == Meaning::WeekUnit ? std::max(1, int(rule.byweekday.size())) : 0;
    case RecurrenceFrequency::monthly:
        return unit == Meaning::MonthUnit ? std::max(1, int(rule.bymonthday.size())) : 0;
    case RecurrenceFrequency::yearly:
        return unit == Meaning::YearUnit ? 1 : 0;
    default:
        return 0;
    }
}

} // namespace

bool CaptureReader::takeRepeat(size_t &place)
{
    if (known.contains(CapturePiece::Kind::Repeat))
        return false;
    Repeat repeat = repeatAt(place);
    if (repeat.count == 0 || isOnlyNamed(place, repeat))
        return false;
    const size_t end = readEnd(place + size_t(repeat.count), *repeat.rule);
    result.repeat = repeat.rule;
    firstOfRepeat = repeat.first;
    note(CapturePiece::Kind::Repeat, place, end - place);
    place = end;
    if (repeat.part && !takeTime(place)) {
        if (!result.minute)
            result.minute = repeat.part;
        setPart(*repeat.part);
    } else if (repeat.part && !hasDayPart) {
        setPart(*repeat.part);
    }
    return true;
}

/// "Quarterly report every 3 months": the first word belongs to the title.
bool CaptureReader::isOnlyNamed(size_t place, const Repeat &repeat) const
{
    if (place > 0 || repeat.count > 1)
        return false;
    for (size_t later = 1; later < words.size(); ++later) {
        if (isFree(later) && repeatAt(later).count > 0)
            return true;
    }
    return false;
}

/// "every Monday 9am until 31.12.": the end may stand behind the time.
bool CaptureReader::takeEndOfRepeat(size_t &place)
{
    if (!result.repeat || result.repeat->recurrenceEnd)
        return false;
    const size_t end = readEnd(place, *result.repeat);
    if (end == place)
        return false;
    note(CapturePiece::Kind::Repeat, place, end - place);
    place = end;
    return true;
}

CaptureReader::Repeat CaptureReader::repeatAt(size_t place) const
{
    if (Repeat repeat = onDayOfEachMonth(place); repeat.count > 0)
        return repeat;
    if (Repeat repeat = onEachWeekday(place); repeat.count > 0)
        return repeat;
    if (Repeat repeat = onSeveralWeekdays(place); repeat.count > 0)
        return repeat;
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
        // "monthly on the 1st and 15th"
        if (const auto on = match(place + size_t(repeat.count), {Meaning::BeforeDate})) {
            const DaysOfMonth days = daysOfMonthAt(place + size_t(repeat.count + on->count), false);
            repeatOn(days.days, repeat);
            repeat.count += days.count > 0 ? on->count + days.count : 0;
        }
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

/// "2.", "2nd", "second", "last": -1 for the last one.
CaptureReader::Counted CaptureReader::ordinalAt(size_t place) const
{
    static const QRegularExpression numeral(u"^(\\d{1,2})(?:\\.|st|nd|rd|th)$"_s);
    if (!isFree(place))
        return {};
    if (const auto parts = numeral.match(words[place].folded); parts.hasMatch())
        return {1, parts.captured(1).toInt()};
    const auto named = match(place, {Meaning::Ordinal});
    return named ? Counted{named->count, named->entry.number} : Counted{};
}

/// "1st and 15th", "1., 10. und 20.": the days of a month, with a lead also as plain numbers.
CaptureReader::DaysOfMonth CaptureReader::daysOfMonthAt(size_t place, bool hasLead) const
{
    DaysOfMonth found;
    for (size_t next = place; isFree(next);) {
        const bool isOrdinal = ordinalAt(next).count > 0;
        const int day = isOrdinal ? ordinalAt(next).number : hasLead ? numberOfDay(next) : 0;
        if (day < 1 || !nextDayOfMonth(day))
            break;
        found.days.push_back(day);
        const size_t behind = next + size_t(isOrdinal ? ordinalAt(next).count : 1);
        found.count = int(behind - place);
        const auto also = match(behind, {Meaning::And});
        const bool hasComma = words[behind - 1].text.endsWith(u',');
        if (!also && !hasComma)
            break;
        next = behind + size_t(also ? also->count : 0);
        hasLead = false;
    }
    std::ranges::sort(found.days);
    return found;
}

/// It begins on the first of them; several are all in the rule.
void CaptureReader::repeatOn(const std::vector<int> &daysOfMonth, Repeat &repeat) const
{
    for (const int day : daysOfMonth) {
        const OptionalDate date = nextDayOfMonth(day);
        if (!repeat.first || (date && *date < *repeat.first))
            repeat.first = date;
    }
    if (daysOfMonth.size() > 1)
        repeat.rule->bymonthday = daysOfMonth;
}

/// "first Monday of the month", "letzten Freitag im Monat"; without the month, too.
CaptureReader::OrdinalDay CaptureReader::ordinalDayAt(size_t place) const
{
    const Counted ordinal = ordinalAt(place);
    const auto day =
        ordinal.count > 0 ? match(place + size_t(ordinal.count), {Meaning::Weekday}) : std::nullopt;
    constexpr int mostInMonth = 5;
    if (!day || ordinal.number > mostInMonth || ordinal.number == 0)
        return {};
    OrdinalDay found{.count = ordinal.count + day->count,
                     .number = ordinal.number,
                     .weekday = day->entry.number,
                     .part = day->entry.part};
    if (const auto month = match(place + size_t(found.count), {Meaning::EachMonth})) {
        found.count += month->count;
        found.isOfMonth = true;
        found.isOfEach = month->entry.number > 0;
    }
    return found;
}

/// The first of these days from `start` on.
OptionalDate CaptureReader::nextOrdinalDay(const OrdinalDay &day, Date start) const
{
    constexpr int mostMonths = 24;
    for (int away = 0; away <= mostMonths; ++away) {
        const int month = calendar.month(start) - 1 + away;
        const OptionalDate first = dayOf(calendar.year(start) + month / 12, month % 12 + 1, 1);
        if (!first)
            return {};
        const int offset = (day.weekday - calendar.weekday(*first) + 7) % 7;
        const int days = calendar.daysInMonth(*first);
        const int number = 1 + offset + 7 * (day.number > 0 ? day.number - 1 : (days - 1 - offset) / 7);
        const OptionalDate date = dayOf(calendar.year(*first), calendar.month(*first), number);
        if (date && *date >= start)
            return date;
    }
    return {};
}

CaptureReader::Repeat CaptureReader::ofOrdinalDay(const OrdinalDay &day, int count) const
{
    RecurrenceRule rule = ruleOf(RecurrenceFrequency::monthly);
    rule.byweekday = {EKWeekday(day.weekday)};
    rule.bysetpos = {day.number};
    return {count, rule, nextOrdinalDay(day, today), day.part};
}

CaptureReader::Repeat CaptureReader::onLastDay(int count) const
{
    RecurrenceRule rule = ruleOf(RecurrenceFrequency::monthly);
    rule.bymonthday = {-1};
    return {count, rule, ahead(CalendarUnit::Day, calendar.daysInMonth(today) - calendar.day(today))};
}

/// "on the 1st of every month", "first Monday of every month", "am letzten Tag jedes Monats".
CaptureReader::Repeat CaptureReader::onDayOfEachMonth(size_t place) const
{
    const auto lead = match(place, {Meaning::BeforeDate});
    const size_t begin = place + size_t(lead ? lead->count : 0);
    const int leading = int(begin - place);
    if (const OrdinalDay day = ordinalDayAt(begin); day.count > 0 && day.isOfEach)
        return ofOrdinalDay(day, leading + day.count);
    const auto isEach = [this](size_t at) {
        const auto month = match(at, {Meaning::EachMonth});
        return month && month->entry.number > 0 ? month->count : 0;
    };
    if (const auto last = match(begin, {Meaning::LastDay})) {
        if (const int count = isEach(begin + size_t(last->count)); count > 0)
            return onLastDay(leading + last->count + count);
    }
    const DaysOfMonth days = daysOfMonthAt(begin, false);
    const int count = days.count > 0 ? isEach(begin + size_t(days.count)) : 0;
    if (count == 0)
        return {};
    Repeat repeat{leading + days.count + count, ruleOf(RecurrenceFrequency::monthly)};
    repeatOn(days.days, repeat);
    return repeat;
}

/// Weekdays with what joins them: "Mon, Wed and Fri", "Mo-Fr", "Mon/Wed".
CaptureReader::Weekdays CaptureReader::weekdaysAt(size_t place, Meaning meaning, bool canBeWeak) const
{
    Weekdays found;
    size_t next = place;
    const auto add = [&found](int day) {
        if (std::ranges::find(found.days, EKWeekday(day)) == found.days.end())
            found.days.push_back(EKWeekday(day));
    };
    bool isRange = false;
    while (isFree(next)) {
        int last = 0;
        size_t count = 0;
        static const QRegularExpression joiner(u"[-–/+&]"_s);
        const auto day = match(next, {meaning, Meaning::WeekdayEach});
        if (day && (canBeWeak || !day->entry.isWeak)) {
            last = day->entry.number;
            count = size_t(day->count);
            found.part = day->entry.part;
            if (isRange) {
                for (int each = int(found.days.back()) % 7 + 1; each != last; each = each % 7 + 1)
                    add(each);
            }
            add(last);
        } else if (const QStringList parts = words[next].folded.split(joiner); parts.size() > 1) {
            std::vector<int> numbers;
            for (const QString &part : parts) {
                const std::array one{part};
                const auto each = dictionary.match(one, {meaning, Meaning::WeekdayEach});
                if (!each)
                    return found;
                numbers.push_back(each->entry.number);
            }
            const bool isSpan = numbers.size() == 2 &&
                                (words[next].folded.contains(u'-') || words[next].folded.contains(u'–'));
            for (const int number : numbers) {
                if (isSpan && number == numbers.back()) {
                    for (int each = numbers.front() % 7 + 1; each != number; each = each % 7 + 1)
                        add(each);
                }
                add(number);
            }
            count = 1;
        } else {
            break;
        }
        next += count;
        found.count = int(next - place);
        const auto also = match(next, {Meaning::And, Meaning::To});
        isRange = also && also->entry.meaning == Meaning::To;
        next += size_t(also ? also->count : 0);
    }
    std::ranges::sort(found.days);
    return found;
}

/// "Mondays and Thursdays", "dienstags".
CaptureReader::Repeat CaptureReader::onEachWeekday(size_t place) const
{
    const auto lead = match(place, {Meaning::BeforeDate});
    const size_t begin = place + size_t(lead ? lead->count : 0);
    if (!match(begin, {Meaning::WeekdayEach}))
        return {};
    const Weekdays weekdays = weekdaysAt(begin, Meaning::WeekdayEach, false);
    if (weekdays.days.empty())
        return {};
    RecurrenceRule rule = ruleOf(RecurrenceFrequency::weekly);
    rule.byweekday = weekdays.days;
    return {int(begin - place) + weekdays.count, rule, {}, weekdays.part};
}

/// "Mon, Wed, Fri", "Di/Do": what is said of so many days comes each week. "Mon-Fri" is one span of days.
CaptureReader::Repeat CaptureReader::onSeveralWeekdays(size_t place) const
{
    constexpr std::size_t many = 3;
    if (known.contains(CapturePiece::Kind::Date))
        return {};
    const Weekdays weekdays = weekdaysAt(place, Meaning::Weekday, true);
    const bool isGlued = weekdays.count == 1;
    if (weekdays.days.size() < (isGlued ? many - 1 : many))
        return {};
    for (size_t next = place; next < place + size_t(weekdays.count); ++next) {
        const bool isSpan = words[next].text.contains(u'-') || words[next].text.contains(u'–');
        if (isSpan || match(next, {Meaning::To}))
            return {};
    }
    RecurrenceRule rule = ruleOf(RecurrenceFrequency::weekly);
    rule.byweekday = weekdays.days;
    return {weekdays.count, rule, {}, weekdays.part};
}

/// "every 2 weeks", "every Monday and Thursday", "alle 3 Tage", "jeden 15.", "every 31 Dec", "every 2nd
/// week".
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
    int interval = std::max(1, lead->number.value_or(lead->entry.number));
    if (const auto last = match(next, {Meaning::LastDay})) {
        const size_t behind = next + size_t(last->count);
        if (const auto month = match(behind, {Meaning::EachMonth}))
            return onLastDay(int(behind - place) + month->count);
    }
    if (const OrdinalDay day = ordinalDayAt(next); day.count > 0) {
        // "every first Monday" can only be one of a month, "every 2nd Tuesday" is every other week.
        if (day.isOfMonth || day.number == 1 || day.number == -1)
            return ofOrdinalDay(day, int(next - place) + day.count);
        interval = day.number;
        next += size_t(ordinalAt(next).count);
    } else if (const Counted ordinal = ordinalAt(next);
               ordinal.count > 0 && ordinal.number > 0 && unitAt(next + size_t(ordinal.count))) {
        interval = ordinal.number;
        next += size_t(ordinal.count);
        unit = unitAt(next);
    }
    Repeat repeat;
    if (unit) {
        next += size_t(unit->count);
        const Meaning meaning = unit->entry.meaning;
        repeat.rule = ruleOf(meaning == Meaning::DayUnit     ? RecurrenceFrequency::daily
                             : meaning == Meaning::WeekUnit  ? RecurrenceFrequency::weekly
                             : meaning == Meaning::MonthUnit ? RecurrenceFrequency::monthly
                                                             : RecurrenceFrequency::yearly,
                             interval);
    } else if (const auto part = match(next, {Meaning::DayPart}); part && interval == 1) {
        // "every morning"
        return {int(next - place) + part->count, ruleOf(RecurrenceFrequency::daily), {}, part->entry.number};
    }
    // Weekdays and days: after "every" at once, or after "every 2 weeks on" and "immer am".
    const auto on = match(next, {Meaning::BeforeDate});
    const size_t after = next + size_t(on ? on->count : 0);
    if (!unit || repeat.rule->frequency == RecurrenceFrequency::weekly) {
        const bool isSure = !unit || after != next;
        const Weekdays weekdays = weekdaysAt(after, Meaning::Weekday, isSure);
        if (!weekdays.days.empty()) {
            if (!unit)
                repeat.rule = ruleOf(RecurrenceFrequency::weekly, interval);
            repeat.rule->byweekday = weekdays.days;
            repeat.part = weekdays.part;
            repeat.count = int(after - place) + weekdays.count;
            return repeat;
        }
    }
    if (unit && repeat.rule->frequency == RecurrenceFrequency::monthly)
        next = onDayOfMonth(after, next, repeat);
    else if (!unit || repeat.rule->frequency == RecurrenceFrequency::yearly)
        next = onDayOfYear(after, next, interval, repeat);
    if (!repeat.rule)
        return {};
    repeat.count = int(next - place);
    return repeat;
}

/// "every month on the 15th", "… on the last day", "… on the first Monday".
size_t CaptureReader::onDayOfMonth(size_t place, size_t otherwise, Repeat &repeat) const
{
    const int interval = repeat.rule->interval;
    if (const auto last = match(place, {Meaning::LastDay})) {
        repeat = onLastDay(0);
        repeat.rule->interval = interval;
        return place + size_t(last->count);
    }
    if (const OrdinalDay day = ordinalDayAt(place); day.count > 0) {
        repeat = ofOrdinalDay(day, 0);
        repeat.rule->interval = interval;
        return place + size_t(day.count);
    }
    const DaysOfMonth days = daysOfMonthAt(place, place > otherwise);
    if (days.count == 0)
        return otherwise;
    repeatOn(days.days, repeat);
    return place + size_t(days.count);
}

/// "every 31 Dec", "every year on 24.12.", "every 15th".
size_t CaptureReader::onDayOfYear(size_t place, size_t otherwise, int interval, Repeat &repeat) const
{
    Days date = dayAndMonth(place);
    if (date.count == 0)
        date = numericDay(place, true);
    if (date.count > 0) {
        if (!repeat.rule)
            repeat.rule = ruleOf(RecurrenceFrequency::yearly, interval);
        repeat.first = date.first;
        return place + size_t(date.count);
    }
    const DaysOfMonth days = repeat.rule ? DaysOfMonth{} : daysOfMonthAt(place, false);
    if (days.count == 0)
        return otherwise;
    repeat.rule = ruleOf(RecurrenceFrequency::monthly, interval);
    repeatOn(days.days, repeat);
    return place + size_t(days.count);
}

/// "until 31.12.", "bis Ende Mai"; "5 times", "10 mal".
size_t CaptureReader::readEnd(size_t place, RecurrenceRule &rule) const
{
    if (const auto times = match(place, {Meaning::Times}); times && times->number.value_or(0) > 0) {
        rule.recurrenceEnd = EKRecurrenceEnd::recurrenceEndWithOccurrenceCount(*times->number);
        return place + size_t(times->count);
    }
    // "daily for 2 weeks"
    if (const auto lasting = match(place, {Meaning::For}); lasting && rule.interval == 1) {
        const size_t at = place + size_t(lasting->count);
        const auto number = isFree(at) ? dictionary.numberOf(words[at].folded) : std::nullopt;
        const auto unit =
            number
                ? match(at + 1, {Meaning::DayUnit, Meaning::WeekUnit, Meaning::MonthUnit, Meaning::YearUnit})
                : std::nullopt;
        const int each = unit ? timesIn(unit->entry.meaning, rule) : 0;
        if (each > 0 && *number > 0) {
            rule.recurrenceEnd = EKRecurrenceEnd::recurrenceEndWithOccurrenceCount(*number * each);
            return at + 1 + size_t(unit->count);
        }
    }
    const auto until = match(place, {Meaning::Until});
    if (!until)
        return place;
    const size_t next = place + size_t(until->count);
    Days last = dayAt(next, true);
    if (last.count == 0)
        last = loneDay(place, next);
    if (last.count == 0 || last.isSomeday || last.minute)
        return place;
    rule.recurrenceEnd =
        EKRecurrenceEnd::recurrenceEndWithEndDate(calendar.startOfNextDay(last.first) + Seconds(-1));
    return next + size_t(last.count);
}

/// A repetition begins with its first day from today, or from the date that was said, on.
void CaptureReader::beginRepeat()
{
    if (!result.repeat)
        return;
    const RecurrenceRule &rule = *result.repeat;
    const bool isSaid = result.day.has_value();
    if (!isSaid && !firstOfRepeat) {
        // What is over today begins tomorrow.
        const int present = calendar.hour(now) * 60 + calendar.minute(now);
        result.day = result.minute && *result.minute <= present ? ahead(CalendarUnit::Day, 1) : today;
    } else if (!isSaid) {
        result.day = firstOfRepeat;
    }
    if (rule.bysetpos.size() == 1 && rule.byweekday.size() == 1 && isSaid) {
        const OrdinalDay day{.number = rule.bysetpos.front(), .weekday = int(rule.byweekday.front())};
        result.day = nextOrdinalDay(day, *result.day).value_or(*result.day);
    } else if (rule.bysetpos.empty() && !rule.byweekday.empty()) {
        constexpr int daysOfWeek = 7;
        for (int away = 0; away < daysOfWeek; ++away) {
            const Date day = calendar.dateByAdding(CalendarUnit::Day, away, *result.day);
            if (std::ranges::find(rule.byweekday, EKWeekday(calendar.weekday(day))) != rule.byweekday.end()) {
                result.day = day;
                break;
            }
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
        result.lastMinute = *result.minute + *lengthInMinutes;
    // A time alone is the next one of it.
    if (result.minute && !result.day && !result.isSomeday) {
        const int present = calendar.hour(now) * 60 + calendar.minute(now);
        result.day = ahead(CalendarUnit::Day, *result.minute > present ? 0 : 1);
    }
    // Midnight ends the day that it is said with; what lasts longer ends on the next one.
    if (result.minute && result.day && *result.minute >= minutesOfDay) {
        result.day = calendar.startOfNextDay(*result.day);
        result.minute = *result.minute - minutesOfDay;
        if (result.lastMinute)
            result.lastMinute = *result.lastMinute - minutesOfDay;
    }
    if (result.lastMinute && result.day && *result.lastMinute > minutesOfDay) {
        result.lastMinute = *result.lastMinute - minutesOfDay;
        result.lastDay = calendar.startOfNextDay(result.lastDay.value_or(*result.day));
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
    // "Call Ada, tomorrow"
    if (!result.pieces.empty() && (result.title.endsWith(u',') || result.title.endsWith(u';')))
        result.title.chop(1);
    std::ranges::sort(result.pieces, {}, &CapturePiece::from);
}

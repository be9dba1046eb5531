#include "records/capture/CaptureReader.h"

#include <algorithm>

// Dates in a captured line: what leads to them, ranges, weekdays, weeks, and parts of months.

using namespace Qt::Literals::StringLiterals;
using Meaning = CaptureWords::Meaning;

bool CaptureReader::takeDate(size_t &place)
{
    if (known.contains(CapturePiece::Kind::Date))
        return false;
    const Days days = daysAt(place);
    if (days.count == 0 || (days.minute && known.contains(CapturePiece::Kind::Time)))
        return false;
    if (days.isSomeday) {
        result.isSomeday = true;
    } else {
        result.day = days.first;
        result.lastDay = days.last;
    }
    if (days.minute) {
        result.minute = days.minute;
        known.insert(CapturePiece::Kind::Time);
    }
    note(CapturePiece::Kind::Date, place, size_t(days.count));
    place += size_t(days.count);
    if (days.part && known.contains(CapturePiece::Kind::Time))
        setPart(*days.part);
    else if (days.part && !takeTime(place))
        result.minute = *days.part;
    if (days.part && !hasDayPart)
        setPart(*days.part);
    return true;
}

/// A date with what leads to it, and the end of a range.
CaptureReader::Days CaptureReader::daysAt(size_t place) const
{
    if (Days glued = gluedRange(place); glued.count > 0)
        return glued;
    size_t next = place;
    bool isRange = false;
    bool isStrong = mustBeDate;
    int shift = 0;
    if (const auto fromWord = match(next, {Meaning::From}); fromWord) {
        isRange = true;
        isStrong = true;
        next += size_t(fromWord->count);
    } else if (const auto lead = match(next, {Meaning::BeforeDate})) {
        // The whole may be a phrase of its own: "the day after tomorrow".
        if (const Days whole = dayAt(place, !lead->entry.isWeak); whole.count > lead->count)
            return whole;
        next += size_t(lead->count);
        isStrong = isStrong || !lead->entry.isWeak;
        shift = lead->entry.number * lead->number.value_or(1);
        if (Days glued = gluedRange(next); glued.count > 0) {
            glued.count += lead->count;
            return glued;
        }
    }
    const bool hasLead = next != place;
    Days days = rangeFromNumber(next);
    if (days.count == 0) {
        days = dayAt(next, isStrong);
        if (days.count == 0 && (hasLead || mustBeDate))
            days = loneDay(place, next);
        if (days.count == 0)
            return {};
        days = rangeFrom(days, next);
    }
    next += size_t(days.count);
    // "from Monday" alone is rather where something comes from.
    const bool canBeAlone =
        !isRange || match(place, {Meaning::BeforeTime}) || known.contains(CapturePiece::Kind::Repeat);
    if (!days.last && !canBeAlone)
        return {};
    days.count = int(next - place);
    if (shift != 0 && (days.last || days.minute || days.part || days.isSomeday))
        return {};
    // Before tomorrow is today, and there is no day before that.
    days.first =
        std::max(calendar.dateByAdding(CalendarUnit::Day, shift, days.first), std::min(days.first, today));
    return days;
}

/// "9 to 12 March": the number has the month and the year of the end.
CaptureReader::Days CaptureReader::rangeFromNumber(size_t place) const
{
    const int number = numberOfDay(place);
    const auto to = number > 0 ? match(place + 1, {Meaning::To}) : std::nullopt;
    if (!to)
        return {};
    const size_t end = place + 1 + size_t(to->count);
    Days last = dayAndMonth(end);
    if (last.count == 0 && isFree(end) && numberOfDay(end) == 0)
        last = numericDay(end, true);
    if (last.count == 0)
        return {};
    const OptionalDate first = dayOf(calendar.year(last.first), calendar.month(last.first), number);
    if (!first || *first >= last.first || *first < today)
        return {};
    return {.count = 1 + to->count + last.count, .first = *first, .last = last.first};
}

/// The range, if the date is the first of one; else the date. What ends it is counted from its beginning.
CaptureReader::Days CaptureReader::rangeFrom(Days days, size_t place) const
{
    const size_t next = place + size_t(days.count);
    const auto to = days.isSomeday || days.minute || days.part ? std::nullopt : match(next, {Meaning::To});
    if (!to)
        return days;
    const size_t end = next + size_t(to->count);
    CaptureReader fromFirst(dictionary, names, days.first, line, literal);
    fromFirst.isTaken = isTaken;
    Days last = fromFirst.dayAt(end, true);
    // "Dec 24 to 27"
    if (const int number = numberOfDay(end);
        last.count == 0 && number > 0 && days.isOfMonth && clockAt(end, false).count == 0) {
        if (const auto date = dayOf(calendar.year(days.first), calendar.month(days.first), number))
            last = {.count = 1, .first = *date};
    }
    if (last.count == 0 || last.isSomeday || last.minute || last.part || last.first <= days.first)
        return days;
    days.last = last.first;
    days.count += to->count + last.count;
    return days;
}

/// "24.-27.12.", "Dec 24-27", "Mon-Wed".
CaptureReader::Days CaptureReader::gluedRange(size_t place) const
{
    static const QRegularExpression joined(
        u"^((?:\\d{1,2}(?:\\.(?:\\d{1,2}\\.(?:\\d{4})?)?|st|nd|rd|th)?)|[^\\W\\d]{2,12}\\.?)[-–]"
        u"(\\d{1,2}(?:\\.(?:\\d{1,2}\\.(?:\\d{4})?)?|st|nd|rd|th)?|[^\\W\\d]{2,12}\\.?)$"_s,
        QRegularExpression::UseUnicodePropertiesOption);
    constexpr size_t mostBefore = 1;
    constexpr size_t mostBehind = 2;
    for (size_t before = 0; before <= mostBefore; ++before) {
        if (!isFree(place + before))
            return {};
        const auto parts = joined.match(words[place + before].folded);
        if (!parts.hasMatch())
            continue;
        const auto isWeekday = [&](int part) {
            const std::array word{parts.captured(part)};
            return dictionary.match(word, {Meaning::Weekday}).has_value();
        };
        const bool isOfLetters = parts.captured(1).front().isLetter();
        if (isOfLetters && (before > 0 || !isWeekday(1) || !isWeekday(2)))
            return {};
        QStringList apart;
        if (before > 0)
            apart.append(words[place].folded);
        apart << parts.captured(1) << u"-"_s << parts.captured(2);
        for (size_t behind = 1; behind <= mostBehind && isFree(place + before + behind); ++behind)
            apart.append(words[place + before + behind].text);
        static const std::set<int> nothing;
        const QString text = apart.join(u' ');
        const CaptureReader inside(dictionary, names, now, text, nothing);
        Days days = inside.rangeFromNumber(0);
        if (days.count == 0) {
            days = inside.dayAt(0, true);
            if (days.count > 0)
                days = inside.rangeFrom(days, 0);
        }
        if (days.last && days.count >= int(before) + 3) {
            days.count -= 2;
            return days;
        }
        return {};
    }
    return {};
}

/// Whether a weekday that has other meanings, too, is one: "so" and "sun" are only where nothing else can be
/// meant, at an end of the line or with a time behind them.
bool CaptureReader::isLikelyDay(size_t behind) const
{
    if (behind >= words.size())
        return behind > 1;
    const auto to = match(behind, {Meaning::To});
    return timesAt(behind).count > 0 || (to && match(behind + size_t(to->count), {Meaning::Weekday}));
}

/// "in 24 hours" is no time from now on in "check in 24 hours before the flight".
bool CaptureReader::isBeforeOrAfter(size_t place) const
{
    static const QStringList relations{u"before"_s, u"after"_s, u"prior"_s, u"vor"_s, u"nach"_s};
    return place < words.size() && relations.contains(words[place].folded);
}

CaptureReader::Days CaptureReader::dayAt(size_t place, bool isSure) const
{
    if (!isFree(place))
        return {};
    using enum CaptureWords::Meaning;
    if (Days days = dayAndMonth(place); days.count > 0)
        return withWeekday(days, place);
    if (Days days = numericDay(place, isSure); days.count > 0)
        return withWeekday(days, place);
    if (Days days = partOf(place); days.count > 0)
        return days;
    if (const auto late = match(place, {WeekdayAfterNext}); late && !late->entry.isWeak)
        return ofMatch(*late);
    if (Days days = weekdayOf(place, isSure); days.count > 0)
        return days;
    // "first Monday of the month"
    if (const OrdinalDay day = ordinalDayAt(place); day.count > 0 && day.isOfMonth && !day.isOfEach) {
        if (const OptionalDate date = nextOrdinalDay(day, today))
            return {.count = day.count, .first = *date};
    }
    if (const auto lead = match(place, {In})) {
        const Length length = lengthAt(place + size_t(lead->count));
        if (length.count > 0 && isBeforeOrAfter(place + size_t(lead->count + length.count)))
            return {};
        if (length.count > 0)
            return inMinutes(lead->count + length.count, length.minutes);
    }
    if (const auto weeks = match(place, {WeeksFrom})) {
        const size_t next = place + size_t(weeks->count);
        const auto start = match(next, {Weekday, WeekdayNextWeek, DaysAhead});
        if (start && !start->number) {
            Days days = ofMatch(*start);
            days.first = calendar.dateByAdding(CalendarUnit::Day,
                                               7 * weeks->number.value_or(weeks->entry.number), days.first);
            days.count += weeks->count;
            return days;
        }
    }
    const auto phrase = match(place, {DaysAhead, WeeksAhead, MonthsAhead, YearsAhead, HoursAhead,
                                      MinutesAhead, WeekdayNextWeek, WeekdayAfterNext, NextWeek, NextMonth,
                                      NextYear, Weekend, WeekNumber, EndOfMonth, EndOfYear, Someday});
    if (!phrase || (phrase->entry.isWeak && !isSure && !isLikelyDay(place + size_t(phrase->count))))
        return {};
    const bool isAhead = phrase->number && phrase->entry.meaning != WeekNumber;
    if (isAhead && isBeforeOrAfter(place + size_t(phrase->count)))
        return {};
    Days days = ofMatch(*phrase);
    const size_t next = place + size_t(days.count);
    if (phrase->entry.meaning == NextMonth) {
        // "next month on the 5th"
        const auto on = match(next, {BeforeDate});
        const size_t at = next + size_t(on ? on->count : 0);
        const Days lone = on ? loneDay(next, at) : Days{};
        const auto date = lone.count == 1
                              ? dayOf(calendar.year(days.first), calendar.month(days.first), numberOfDay(at))
                              : OptionalDate();
        if (date)
            return {.count = int(at - place) + 1, .first = *date};
    } else if (phrase->entry.meaning == WeeksAhead) {
        // "in 2 weeks on Monday"
        const auto on = match(next, {BeforeDate});
        const auto day = on ? match(next + size_t(on->count), {Weekday}) : std::nullopt;
        if (day) {
            days.first =
                calendar.dateByAdding(CalendarUnit::Day, 7 * phrase->number.value_or(phrase->entry.number),
                                      nextWeekday(day->entry.number, false));
            days.part = day->entry.part;
            days.count += on->count + day->count;
        }
    } else if (phrase->entry.meaning == NextWeek) {
        // "next week on Friday"
        const auto on = match(next, {BeforeDate});
        const size_t at = next + size_t(on ? on->count : 0);
        const auto day = match(at, {Weekday});
        if (day && (!day->entry.isWeak || on || isLikelyDay(at + size_t(day->count)))) {
            days.first = dayOfWeekAhead(day->entry.number, phrase->entry.number);
            days.part = day->entry.part;
            days.count = int(at - place) + day->count;
        }
    } else if (phrase->entry.meaning == DaysAhead && !phrase->number) {
        // "heute in 3 Wochen"
        const auto later = match(next, {DaysAhead, WeeksAhead, MonthsAhead});
        if (later && later->entry.number > 0 && later->count > 1) {
            const CaptureReader fromThere(dictionary, names, days.first, line, literal);
            days.first = fromThere.ofMatch(*later).first;
            days.count += later->count;
        }
    }
    return days;
}

/// A weekday, and the date or the week that says which one: "Friday 31 Dec", "Friday next week". The date is
/// more exact, and wins where the weekday is another.
CaptureReader::Days CaptureReader::weekdayOf(size_t place, bool isSure) const
{
    using enum CaptureWords::Meaning;
    constexpr int mostMonthsToMatch = 24;
    const auto day = match(place, {Weekday});
    static const QStringList past{u"last"_s,   u"letzte"_s,  u"letzten"_s,    u"letzter"_s,
                                  u"vorige"_s, u"vorigen"_s, u"vergangene"_s, u"vergangenen"_s,
                                  u"past"_s,   u"previous"_s};
    if (!day || (place > 0 && past.contains(words[place - 1].folded)))
        return {};
    const size_t behind = place + size_t(day->count);
    size_t next = behind;
    if (const auto article = match(next, {BeforeDate}); article && article->entry.isWeak)
        next += size_t(article->count);
    Days exact = dayAndMonth(next);
    if (exact.count == 0 && isFree(next) && (next >= words.size() || !isTimeOfDay(next)))
        exact = numericDay(next, true);
    if (exact.count == 0 && next > behind) {
        // "Friday the 13th" is the next one that is a Friday.
        const Days lone = loneDay(place, next);
        for (int away = 0; lone.count > 0 && away <= mostMonthsToMatch && exact.count == 0; ++away) {
            const int month = calendar.month(today) - 1 + away;
            const auto date =
                dayOf(calendar.year(today) + month / 12, month % 12 + 1, calendar.day(lone.first));
            if (date && *date >= today && calendar.weekday(*date) == day->entry.number)
                exact = {.count = lone.count, .first = *date};
        }
    }
    if (exact.count > 0) {
        exact.part = day->entry.part;
        exact.count += int(next - place);
        return exact;
    }
    const auto week = match(behind, {NextWeek, WeeksAhead});
    if (week) {
        const bool isWeek = week->entry.meaning == NextWeek;
        const int amount = week->number.value_or(week->entry.number);
        const Date first = isWeek ? dayOfWeekAhead(day->entry.number, amount)
                                  : calendar.dateByAdding(CalendarUnit::Day, 7 * amount,
                                                          nextWeekday(day->entry.number, false));
        return {.count = day->count + week->count, .first = first, .part = day->entry.part};
    }
    // "the sun"
    static const QStringList articles{u"the"_s, u"some"_s, u"no"_s, u"more"_s, u"my"_s};
    const bool isNoun = place > 0 && articles.contains(words[place - 1].folded);
    if (day->entry.isWeak && !isSure && (isNoun || !isLikelyDay(behind)))
        return {};
    Days days = ofMatch(*day);
    static const QStringList present{u"this"_s, u"diesen"_s, u"dieser"_s};
    if (present.contains(words[place].folded) || (place > 0 && present.contains(words[place - 1].folded)))
        days.first = nextWeekday(day->entry.number, true);
    return days;
}

/// "17.10 Uhr" behind a weekday is no date.
bool CaptureReader::isTimeOfDay(size_t place) const
{
    return isFree(place + 1) && match(place + 1, {Meaning::OClock}) && clockAt(place, true).count > 1;
}

/// The date, with a weekday behind it that is its own: "31 Dec (Thu)".
CaptureReader::Days CaptureReader::withWeekday(Days days, size_t place) const
{
    const size_t next = place + size_t(days.count);
    if (!isFree(next))
        return days;
    QString word = words[next].folded;
    const bool isInBrackets = word.startsWith(u'(') && word.endsWith(u')');
    if (isInBrackets)
        word = word.mid(1, word.size() - 2);
    const std::array one{word};
    const auto day = dictionary.match(one, {Meaning::Weekday});
    if (day && (isInBrackets || day->entry.number == calendar.weekday(days.first))) {
        ++days.count;
        days.part = day->entry.part;
    }
    return days;
}

/// The first, the middle or the last day of something: "mid March", "Ende nächsten Monats".
CaptureReader::Days CaptureReader::partOf(size_t place) const
{
    using enum CaptureWords::Meaning;
    static const QRegularExpression year(u"^20\\d\\d$"_s);
    auto part = match(place, {PartOf});
    size_t next = place + size_t(part ? part->count : 0);
    std::optional<CaptureWords::Match> period;
    if (part) {
        period = match(next, {Month, ThisWeek, ThisMonth, ThisYear, NextWeek, NextMonth, NextYear});
    } else if (const QString &word = words[place].folded; word.startsWith(u"mid-"_s)) {
        const std::array one{word.mid(4)};
        part = dictionary.match(std::array{u"mid"_s}, {PartOf});
        period = dictionary.match(one, {Month});
    }
    if (!part || !period || calendar.year(today) >= lastYear)
        return {};
    next += size_t(period->count);
    const int where = part->entry.number;
    const auto inMonth = [&](int ofYear, int month) {
        const Date first = *dayOf(ofYear, month, 1);
        constexpr int middle = 15;
        return *dayOf(ofYear, month, where == 0 ? 1 : where == 1 ? middle : calendar.daysInMonth(first));
    };
    const int thisYear = calendar.year(today);
    const int thisMonth = calendar.month(today);
    Days days{.count = int(next - place)};
    switch (period->entry.meaning) {
    case Month: {
        const int month = period->entry.number;
        if (isFree(next) && year.match(words[next].folded).hasMatch()) {
            days.first = inMonth(words[next].folded.toInt(), month);
            ++days.count;
        } else {
            days.first = inMonth(thisYear, month);
            if (days.first < today)
                days.first = inMonth(thisYear + 1, month);
        }
        break;
    }
    case ThisMonth:
        days.first = inMonth(thisYear, thisMonth);
        if (days.first >= today)
            break;
        [[fallthrough]];
    case NextMonth:
        days.first = inMonth(thisYear + thisMonth / 12, thisMonth % 12 + 1);
        break;
    case ThisYear:
    case NextYear: {
        constexpr int middleOfYear = 7;
        const int ofYear = thisYear + (period->entry.meaning == NextYear || where == 0 ? 1 : 0);
        days.first = where == 1 ? *dayOf(ofYear, middleOfYear, 1) : *dayOf(ofYear, where == 0 ? 1 : 12, 1);
        if (where == 2)
            days.first = *dayOf(ofYear, 12, 31);
        if (days.first < today)
            days.first = calendar.dateByAdding(CalendarUnit::Year, 1, days.first);
        break;
    }
    case ThisWeek:
    case NextWeek: {
        constexpr int weekdays[] = {2, 4, 6};
        const int weeks = period->entry.meaning == NextWeek ? period->entry.number : 0;
        days.first = dayOfWeekAhead(weekdays[where], weeks);
        if (days.first < today)
            days.first = dayOfWeekAhead(weekdays[where], weeks + 1);
        break;
    }
    default:
        return {};
    }
    return days;
}

CaptureReader::Days CaptureReader::inMinutes(int count, int minutes) const
{
    const Date at = calendar.dateByAdding(CalendarUnit::Minute, minutes, now);
    return {.count = count,
            .first = calendar.startOfDay(at),
            .minute = calendar.hour(at) * 60 + calendar.minute(at)};
}

/// That weekday of the week, which begins on Monday, so many weeks ahead.
Date CaptureReader::dayOfWeekAhead(int weekday, int weeks) const
{
    constexpr int monday = 2;
    const auto sinceMonday = [](int day) { return (day - monday + 7) % 7; };
    return ahead(CalendarUnit::Day, 7 * weeks - sinceMonday(calendar.weekday(today)) + sinceMonday(weekday));
}

/// The Monday of the next week of that number (ISO 8601).
OptionalDate CaptureReader::mondayOfWeek(int number) const
{
    constexpr int mostWeeks = 53;
    constexpr int monday = 2;
    if (number < 1 || number > mostWeeks || calendar.year(today) >= lastYear)
        return {};
    const Date thisMonday = dayOfWeekAhead(monday, 0);
    for (int away = 0; away <= mostWeeks + 1; ++away) {
        const Date day = calendar.dateByAdding(CalendarUnit::Day, 7 * away, thisMonday);
        const Date thursday = calendar.dateByAdding(CalendarUnit::Day, 3, day);
        const Date newYear = *dayOf(calendar.year(thursday), 1, 1);
        if (int((thursday - newYear) / Seconds(24 * 60 * 60) + 0.5) / 7 + 1 == number)
            return std::max(day, today);
    }
    return {};
}

CaptureReader::Days CaptureReader::ofMatch(const CaptureWords::Match &match) const
{
    const int amount = match.number.value_or(match.entry.number);
    const int number = match.entry.number;
    Days days{.count = match.count, .part = match.entry.part};
    switch (match.entry.meaning) {
    case Meaning::DaysAhead:
        days.first = ahead(CalendarUnit::Day, amount);
        break;
    case Meaning::WeeksAhead:
        days.first = ahead(CalendarUnit::Day, 7 * amount);
        break;
    case Meaning::MonthsAhead:
        days.first = ahead(CalendarUnit::Month, amount);
        break;
    case Meaning::YearsAhead:
        days.first = ahead(CalendarUnit::Year, amount);
        break;
    case Meaning::HoursAhead:
        return inMinutes(match.count, amount * 60);
    case Meaning::MinutesAhead:
        return inMinutes(match.count, amount);
    case Meaning::Weekday:
        days.first = nextWeekday(number, false);
        break;
    case Meaning::WeekdayNextWeek:
        days.first = dayOfWeekAhead(number, 1);
        break;
    case Meaning::WeekdayAfterNext:
        days.first = calendar.dateByAdding(CalendarUnit::Day, 7, nextWeekday(number, false));
        break;
    case Meaning::NextWeek:
        days.first = dayOfWeekAhead(2, number);
        break;
    case Meaning::NextMonth:
        days.first = calendar.dateByAdding(
            CalendarUnit::Month, 1, calendar.dateByAdding(CalendarUnit::Day, 1 - calendar.day(today), today));
        break;
    case Meaning::NextYear:
        if (const OptionalDate newYear = dayOf(calendar.year(today) + 1, 1, 1))
            days.first = *newYear;
        else
            days.count = 0;
        break;
    case Meaning::Weekend:
        // On a Sunday there is no more of it than that day.
        days.first = number > 0                     ? dayOfWeekAhead(7, number)
                     : calendar.weekday(today) == 1 ? today
                                                    : nextWeekday(7, true);
        break;
    case Meaning::WeekNumber:
        if (const OptionalDate monday = mondayOfWeek(amount))
            days.first = *monday;
        else
            days.count = 0;
        break;
    case Meaning::EndOfMonth:
        days.first = ahead(CalendarUnit::Day, calendar.daysInMonth(today) - calendar.day(today));
        break;
    case Meaning::EndOfYear:
        days.first = *dayOf(calendar.year(today), 12, 31);
        break;
    case Meaning::Someday:
        days.isSomeday = true;
        break;
    default:
        days.count = 0;
        break;
    }
    return days;
}

#include "records/capture/CaptureReader.h"

#include "foundation/Region.h"

#include <algorithm>

// Times of day and lengths in a captured line.

using namespace Qt::Literals::StringLiterals;
using Meaning = CaptureWords::Meaning;

namespace {

constexpr int noon = 12 * 60;

/// A time of the clock of twelve hours in that part of the day: "8" in the evening is 20:00.
int inPart(int minute, int part)
{
    constexpr int afternoon = 15 * 60;
    constexpr int night = 20 * 60;
    constexpr int firstOfDay = 6 * 60;
    if (minute > noon || part < noon)
        return minute;
    // "1 in the night" is past midnight, and "1 at noon" is not.
    if (part >= night && minute < firstOfDay)
        return minute;
    if (part < afternoon)
        return minute < firstOfDay ? minute + noon : minute;
    return minute + noon;
}

/// Nobody who counts to twelve means the small hours by "at 5".
int likely(int minute)
{
    constexpr int firstLikely = 7 * 60;
    return minute >= 60 && minute < firstLikely ? minute + noon : minute;
}

} // namespace

bool CaptureReader::takeTime(size_t &place)
{
    if (known.contains(CapturePiece::Kind::Time))
        return false;
    const Times times = timesAt(place);
    if (times.count == 0)
        return false;
    result.minute = times.minute;
    result.lastMinute = times.last;
    spoken = times.spoken;
    hasDayPart = times.hasPart;
    note(CapturePiece::Kind::Time, place, size_t(times.count));
    place += size_t(times.count);
    return true;
}

/// "evening" in "tomorrow evening", and "Abend" in "um 8 morgen Abend".
bool CaptureReader::takeDayPart(size_t &place)
{
    const bool isBehindDay =
        isBehind(place, CapturePiece::Kind::Date) || isBehind(place, CapturePiece::Kind::Repeat);
    const auto part = isBehindDay && !hasDayPart ? match(place, {Meaning::DayPart}) : std::nullopt;
    if (!part)
        return false;
    if (!known.contains(CapturePiece::Kind::Time))
        return takeTime(place);
    if (!spoken)
        return false;
    setPart(part->entry.number);
    note(CapturePiece::Kind::Time, place, size_t(part->count));
    place += size_t(part->count);
    return true;
}

/// The time that was said lies in that part of the day.
void CaptureReader::setPart(int part)
{
    hasDayPart = true;
    if (!result.minute || !spoken)
        return;
    const int length = result.lastMinute ? *result.lastMinute - *result.minute : 0;
    result.minute = inPart(*spoken, part);
    if (result.lastMinute)
        result.lastMinute = *result.minute + length;
}

/// "2h", "90 min", "an hour", "1.5 hours".
CaptureReader::Length CaptureReader::lengthAt(size_t place) const
{
    static const QRegularExpression fraction(u"^(\\d{1,2})[.,](\\d)$"_s);
    if (!isFree(place))
        return {};
    const auto ofUnit = [](const CaptureWords::Match &unit) {
        return unit.entry.meaning == Meaning::Hours ? 60 : 1;
    };
    if (const auto parts = fraction.match(words[place].folded); parts.hasMatch() && isFree(place + 1)) {
        const std::array one{u"1"_s, words[place + 1].folded};
        const auto unit = dictionary.match(one, {Meaning::Hours, Meaning::Minutes});
        const int tenths = parts.captured(1).toInt() * 10 + parts.captured(2).toInt();
        return unit && unit->count == 2 ? Length{2, tenths * ofUnit(*unit) / 10} : Length{};
    }
    const auto length = match(place, {Meaning::Hours, Meaning::Minutes});
    if (!length)
        return {};
    return {length->count, length->number.value_or(length->entry.number) * ofUnit(*length)};
}

/// "for 2 hours", "für 90 Minuten", and "2h" right behind a time: how long it takes, as a part of the time.
bool CaptureReader::takeLength(size_t &place)
{
    const auto lead = match(place, {Meaning::For});
    if (lengthInMinutes || (!lead && !isBehind(place, CapturePiece::Kind::Time)))
        return false;
    const size_t begin = place + size_t(lead ? lead->count : 0);
    const Length length = lengthAt(begin);
    if (length.count == 0 || length.minutes < 1 || length.minutes >= minutesOfDay)
        return false;
    lengthInMinutes = length.minutes;
    const size_t count = begin + size_t(length.count) - place;
    note(CapturePiece::Kind::Time, place, count);
    // The time itself can follow.
    if (!result.minute)
        known.erase(CapturePiece::Kind::Time);
    place += count;
    return true;
}

/// A number behind "at" is a time only where it does not count what follows: "at 5", "um 9 anrufen", but not
/// "at 3 offers" and "um 5 Euro".
bool CaptureReader::canEndTime(size_t lead, size_t last) const
{
    static const QRegularExpression number(u"^\\d+\\.?$"_s);
    if (lead > 0 && number.match(words[lead - 1].folded).hasMatch() && !isTaken[lead - 1])
        return false;
    if (last >= words.size() || words[last - 1].text.size() != words[last - 1].folded.size())
        return true;
    const Word &next = words[last];
    const QChar first = next.text.front();
    static const QStringList units{u"kg"_s, u"g"_s,  u"km"_s, u"m"_s,       u"cm"_s,     u"mm"_s,
                                   u"l"_s,  u"ml"_s, u"x"_s,  u"percent"_s, u"prozent"_s};
    // "Um 5 vor 12"
    const bool isCounted =
        (next.folded == u"vor"_s || next.folded == u"nach"_s || next.folded == u"past"_s) &&
        isFree(last + 1) && dictionary.numberOf(words[last + 1].folded);
    if (units.contains(next.folded) || u"%€$£°"_s.contains(first) || first.isDigit() || isCounted)
        return false;
    if (isBehind(lead, CapturePiece::Kind::Date) || isBehind(lead, CapturePiece::Kind::Repeat))
        return true;
    using enum CaptureWords::Meaning;
    if (!first.isLetter() ||
        match(last, {BeforeDate, BeforeTime, From, Until, For, And, In, Every, Daily, Weekly, Monthly, Yearly,
                     OnWorkdays, OnWeekends, WeekdayEach, DayPart}) ||
        dayAt(last, false).count > 0)
        return true;
    static const QStringList small{u"about"_s, u"with"_s, u"re"_s,  u"via"_s, u"near"_s, u"then"_s, u"or"_s,
                                   u"when"_s,  u"to"_s,   u"mit"_s, u"per"_s, u"bei"_s,  u"wegen"_s};
    if (small.contains(next.folded))
        return true;
    static const QStringList german{u"um"_s, u"gegen"_s, u"ab"_s, u"bis"_s, u"von"_s, u"zwischen"_s};
    if (german.contains(words[lead].folded))
        return first.isLower();
    return lead == 0;
}

/// "10-11:30" and "17:00–18:00" in one word.
CaptureReader::Times CaptureReader::joinedTimes(size_t place, bool hasLead) const
{
    static const QRegularExpression joined(u"^([0-9:.aphmuhr]+)[-–]([0-9:.aphmuhr]+)$"_s);
    const auto parts = isFree(place) ? joined.match(words[place].folded) : QRegularExpressionMatch();
    if (!parts.hasMatch())
        return {};
    const QString behind = isFree(place + 1) ? words[place + 1].text : QString();
    const QString apart = parts.captured(1) + u" - "_s + parts.captured(2) + u' ' + behind;
    static const std::set<int> nothing;
    const CaptureReader inside(dictionary, names, now, apart, nothing);
    const Times times = inside.rangeOfClocks(0, true);
    const bool isSure = hasLead || times.isSure || isBehind(place, CapturePiece::Kind::Date);
    if (!times.last || !isSure)
        return {};
    Times read = times;
    read.count -= 2;
    return read;
}

/// A time, and with "to" the end of it; that may lie behind midnight.
CaptureReader::Times CaptureReader::rangeOfClocks(size_t place, bool hasLead) const
{
    Clock clock = clockAt(place, hasLead);
    size_t next = place + size_t(clock.count);
    const bool isAlone = clock.count == 0;
    if (isAlone) {
        // "9 bis 17 Uhr": what follows makes a time of the number.
        clock = clockAt(place, true);
        next = place + size_t(clock.count);
        if (clock.count == 0 || !clock.isBare)
            return {};
    }
    Times times{
        .count = clock.count, .minute = clock.minute, .spoken = clock.spoken, .isSure = !clock.isBare};
    const auto to = match(next, {Meaning::To, Meaning::And});
    const Clock last = to ? clockAt(next + size_t(to->count), true) : Clock{};
    if (last.count == 0 || (to->entry.meaning == Meaning::And && !isBetween(place)))
        return isAlone ? Times{} : times;
    if (isAlone && last.isBare)
        return {};
    times.isSure = times.isSure || !last.isBare;
    // "5" in "5-6pm" takes its half of the day from what follows.
    if (clock.isBare && last.isHalf && clock.minute < noon && last.minute - clock.minute > noon)
        times.minute += noon;
    if (clock.isBare && last.isHalf && last.minute < noon && times.minute > noon)
        times.minute -= noon;
    constexpr int evening = 18 * 60;
    constexpr int early = 8 * 60;
    const bool isOvernight = times.isSure && times.minute >= evening && last.minute <= early;
    if (last.minute <= times.minute && !isOvernight)
        return isAlone ? Times{} : times;
    times.last = last.minute + (isOvernight ? minutesOfDay : 0);
    times.count = int(next - place) + to->count + last.count;
    return times;
}

bool CaptureReader::isBetween(size_t place) const
{
    return place > 0 && isFree(place - 1) && match(place - 1, {Meaning::Between});
}

CaptureReader::Times CaptureReader::timesAt(size_t place) const
{
    const bool isBehindDay =
        isBehind(place, CapturePiece::Kind::Date) || isBehind(place, CapturePiece::Kind::Repeat);
    const auto part = match(place, {Meaning::DayPart});
    if (part && part->entry.isWeak && !isBehindDay)
        return {};
    size_t next = place + size_t(part ? part->count : 0);
    const auto lead = match(next, {Meaning::From, Meaning::BeforeTime, Meaning::Between});
    // "5 vor 12"
    if (lead && lead->entry.isWeak && place > 0 && dictionary.numberOf(words[place - 1].folded))
        return {};
    next += size_t(lead ? lead->count : 0);
    const Times onlyPart =
        part ? Times{.count = part->count, .minute = part->entry.number, .hasPart = true} : Times{};
    if (const auto fixed = match(next, {Meaning::Minute}); fixed && !part) {
        // "Midnight snack"
        const size_t behind = next + size_t(fixed->count);
        if (next == 0 && behind < words.size() && !match(behind, {Meaning::BeforeDate}) &&
            dayAt(behind, true).count == 0)
            return {};
        return {.count = int(next - place) + fixed->count, .minute = fixed->entry.number};
    }
    Times times = joinedTimes(next, lead.has_value());
    if (times.count == 0)
        times = rangeOfClocks(next, lead.has_value());
    if (times.count == 0 && isBehindDay && !lead) {
        // "tomorrow 9 to 5" at the end of a line, where nothing is left that could be counted.
        const Times range = rangeOfClocks(next, true);
        if (range.last && next + size_t(range.count) == words.size())
            times = range;
    }
    if (lead && lead->entry.meaning == Meaning::Between && !times.last)
        return {};
    // "before 5 o'clock", but not "before 5 others".
    if (lead && lead->entry.isWeak && !times.isSure)
        return onlyPart;
    // "from 5" alone is rather where a count begins.
    if (lead && !times.isSure && !times.last && times.count > 0 && !match(next - 1, {Meaning::BeforeTime}))
        return onlyPart;
    const size_t end = next + size_t(times.count);
    if (times.count == 0) {
        // "8 abends": what follows makes a time of the number.
        const Clock clock = clockAt(next, true);
        const auto behind = match(next + size_t(clock.count), {Meaning::DayPart});
        if (clock.count == 0 || !behind || behind->entry.isWeak || part)
            return onlyPart;
        return {.count = int(next - place) + clock.count + behind->count,
                .minute = inPart(clock.spoken.value_or(clock.minute), behind->entry.number),
                .hasPart = true};
    }
    Counted said = part ? Counted{part->count, part->entry.number} : Counted{};
    if (const auto behind = match(end, {Meaning::DayPart}); behind && !part) {
        said = {behind->count, behind->entry.number};
        times.count += behind->count;
    }
    if (!times.isSure && said.count == 0 && !(lead ? canEndTime(next - 1, end) : isBehindDay))
        return onlyPart;
    times.count += int(next - place);
    times.hasPart = said.count > 0;
    if (times.spoken && times.hasPart) {
        const int shift = inPart(*times.spoken, said.number) - times.minute;
        times.minute += shift;
        if (times.last && *times.last < noon)
            times.last = *times.last + shift;
    }
    return times;
}

/// "5pm", "5:30 pm", "17:00", "17 Uhr", "17h", "half past five"; after "at" or "um" also "17".
CaptureReader::Clock CaptureReader::clockAt(size_t place, bool hasLead) const
{
    if (!isFree(place))
        return {};
    if (const auto around = match(place, {Meaning::ClockAround})) {
        const int hour = around->number.value_or(0);
        if (hour < 1 || hour > 12)
            return {};
        const int minute = hour % 12 * 60 + around->entry.number;
        const int count = around->count + (match(place + size_t(around->count), {Meaning::OClock}) ? 1 : 0);
        const int within = minute < 0 ? minute + noon : minute;
        // "halb eins" and "quarter past twelve" are at noon.
        const int at = within < 60 ? within + noon : likely(within);
        return {.count = count, .minute = at, .spoken = within};
    }
    // "at 0830"
    static const QRegularExpression fourDigits(u"^(0\\d)([0-5]\\d)$"_s);
    if (const auto digits = fourDigits.match(words[place].folded); hasLead && digits.hasMatch())
        return {.count = 1, .minute = digits.captured(1).toInt() * 60 + digits.captured(2).toInt()};
    static const QRegularExpression pattern(
        u"^(\\d{1,2})(?:([:.h])(\\d{2}))?(am|pm|a\\.m\\.|p\\.m\\.|a|p|h|uhr)?[.!?]?$"_s);
    QString word = words[place].folded;
    const auto isOClock = [&](size_t at) { return match(at, {Meaning::OClock}).has_value(); };
    const auto isNamed = [&] { return !word.front().isDigit(); };
    if (isNamed()) {
        // "at five", "fünf Uhr"; "ein" and "eine" are mostly no numbers.
        const auto number = dictionary.numberOf(word);
        if (!number || *number > 24 || (word.startsWith(u"ein") && word != u"eins" && !isOClock(place + 1)))
            return {};
        word = QString::number(*number);
    }
    const auto parts = pattern.match(word);
    if (!parts.hasMatch())
        return {};
    int hour = parts.captured(1).toInt();
    int minute = parts.captured(3).toInt();
    const QString apart = parts.captured(2);
    // "23.12." is a date.
    if (apart == u"."_s && word.endsWith(u'.') && parts.captured(4).isEmpty())
        return {};
    QString half = parts.captured(4);
    int count = 1;
    const bool isBehindDay = isBehind(place, CapturePiece::Kind::Date);
    const bool isGlued = !half.isEmpty();
    if (!isGlued && isFree(place + 1)) {
        const QString &next = words[place + 1].folded;
        if (next == u"am"_s || next == u"pm"_s || next == u"a.m."_s || next == u"p.m."_s) {
            // German: "10 am" is no time where a date follows.
            const bool isGermanLead =
                next == u"am"_s && isFree(place + 2) && dayAt(place + 2, true).count > 0 && !hasLead;
            const bool isPartOfDay = match(place + 1, {Meaning::DayPart}).has_value();
            if (!isGermanLead && !isPartOfDay) {
                half = next;
                ++count;
            }
        } else if (isOClock(place + 1)) {
            half = u"uhr"_s;
            ++count;
            // "7 Uhr 30"
            static const QRegularExpression minutes(u"^[0-5]\\d$"_s);
            if (apart.isEmpty() && isFree(place + 2) && minutes.match(words[place + 2].folded).hasMatch()) {
                minute = words[place + 2].folded.toInt();
                ++count;
            }
        } else if (next == u"h"_s) {
            half = u"h"_s;
            ++count;
        }
    }
    bool isSure = apart == u":"_s;
    if (half == u"a"_s || half == u"p"_s) {
        // "flat 5a"
        isSure = hasLead || isBehindDay;
    } else if (half == u"h"_s || apart == u"h"_s) {
        // "2h" is mostly a length.
        constexpr int firstLikely = 7;
        isSure = hasLead || (hour >= firstLikely && (isBehindDay || dictionary.hasHoursWithH()));
    } else if (!half.isEmpty()) {
        isSure = true;
    }
    const bool isHalf = half.startsWith(u'a') || half.startsWith(u'p');
    if (hour > 24 || minute > 59 || (hour == 24 && minute > 0) || (isHalf && (hour < 1 || hour > 12)))
        return {};
    // "Montag 10.30"
    isSure = isSure || (apart == u"."_s && isBehindDay && minute > 12);
    if (!isSure && !hasLead)
        return {};
    const int said = hour * 60 + minute;
    if (isHalf)
        hour = hour % 12 + (half.startsWith(u'p') ? 12 : 0);
    const bool isBare = !isHalf && apart.isEmpty() && half.isEmpty();
    const bool countsToTwelve =
        Region::localeIdentifier().startsWith(u"en_US"_s) || Region::localeIdentifier() == u"en"_s;
    int at = hour * 60 + minute;
    // Nor by "2:30", but by "02:30" and "6:30".
    constexpr int firstHour = 6;
    const bool isOfDay = apart == u":"_s && half.isEmpty() && !word.startsWith(u'0') && hour < firstHour;
    const bool isOClockHour = count > 1 && apart.isEmpty() && words[place + 1].folded.startsWith(u'o');
    if ((isBare || isOfDay || isOClockHour) && countsToTwelve)
        at = likely(at);
    const std::optional<int> spokenMinute = isHalf || hour > 12 ? std::nullopt : std::optional(said);
    return {.count = count, .minute = at, .spoken = spokenMinute, .isBare = isBare, .isHalf = isHalf};
}

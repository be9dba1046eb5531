#include "records/capture/CaptureReader.h"

#include "foundation/Region.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using Meaning = CaptureWords::Meaning;

CaptureReader::CaptureReader(const CaptureWords &wordsOfDates, const CaptureLine::Names &knownNames, Date at,
                             const QString &text, const std::set<int> &literalPlaces)
    : dictionary(wordsOfDates)
    , names(knownNames)
    , line(text)
    , literal(literalPlaces)
    , now(at)
    , today(calendar.startOfDay(at))
{
    split();
}

void CaptureReader::split()
{
    bool isQuoted = false;
    for (int place = 0; place < line.size();) {
        if (line.at(place).isSpace()) {
            ++place;
            continue;
        }
        int end = place;
        const bool begins = isQuoted;
        while (end < line.size() && !line.at(end).isSpace()) {
            if (line.at(end) == u'"')
                isQuoted = !isQuoted;
            ++end;
        }
        const QString text = line.mid(place, end - place);
        words.push_back({text, CaptureWords::foldedWord(text), place, begins || text.contains(u'"')});
        place = end;
    }
    for (const Word &word : words)
        folded.push_back(word.folded);
    isTaken.resize(words.size());
}

std::span<const QString> CaptureReader::from(size_t place) const
{
    size_t end = place;
    while (isFree(end))
        ++end;
    return std::span(folded).subspan(std::min(place, folded.size()), end - place);
}

std::optional<CaptureWords::Match> CaptureReader::match(size_t place,
                                                        std::initializer_list<Meaning> meanings) const
{
    return dictionary.match(from(place), meanings);
}

bool CaptureReader::isFree(size_t place) const
{
    return place < words.size() && !words[place].isQuoted && !isTaken[place] &&
           !literal.contains(words[place].from);
}

Capture CaptureReader::read()
{
    for (size_t place = 0; place < words.size();) {
        const bool isUnderstood =
            isFree(place) && (takeName(place) || takePriority(place) || takePlace(place) ||
                              takeRepeat(place) || takeDate(place) || takeTime(place) || takeLength(place));
        if (!isUnderstood)
            ++place;
    }
    finish();
    return result;
}

void CaptureReader::note(CapturePiece::Kind kind, size_t first, size_t count)
{
    known.insert(kind);
    const Word &last = words[first + count - 1];
    // A comma behind it is none of its words.
    const int kept = int(last.text.size()) - int(last.folded.size());
    const int end = last.end() - (last.text.toCaseFolded() == last.folded ? 0 : std::max(0, kept));
    result.pieces.push_back({kind, words[first].from, end - words[first].from});
    std::fill_n(isTaken.begin() + std::ptrdiff_t(first), count, true);
}

// Names and marks

bool CaptureReader::takeName(size_t &place)
{
    const Word &word = words[place];
    if (word.text.size() < 2)
        return false;
    const QStringView rest = QStringView(line).mid(word.from + 1);
    const auto take = [&](CapturePiece::Kind kind, const auto &finder, auto &field) {
        if (known.contains(kind) || !finder)
            return false;
        const auto [record, letters] = finder(rest);
        if (!record || letters <= 0)
            return false;
        const int end = word.from + 1 + letters;
        // All of a word belongs to the name, but for a comma or full stop behind it.
        size_t count = 0;
        for (size_t next = place; isFree(next) && words[next].from < end; ++next) {
            ++count;
            const QString behind = words[next].text.mid(std::max(0, end - words[next].from));
            if (words[next].end() > end && behind != u","_s && behind != u"."_s && behind != u";"_s)
                return false;
        }
        if (count == 0 || words[place + count - 1].end() < end)
            return false;
        field = record;
        note(kind, place, count);
        result.pieces.back().length = end - word.from;
        place += count;
        return true;
    };
    switch (word.text.front().unicode()) {
    case u'#':
        return take(CapturePiece::Kind::Category, names.category, result.category);
    case u'+':
        return take(CapturePiece::Kind::Project, names.project, result.project);
    case u'@':
        return take(CapturePiece::Kind::Person, names.person, result.person);
    default:
        return false;
    }
}

bool CaptureReader::takePriority(size_t &place)
{
    const QString &word = words[place].text;
    constexpr Priority priorities[] = {Priority::Low, Priority::Medium, Priority::High};
    if (known.contains(CapturePiece::Kind::Priority) || word.size() > 3 || word.count(u'!') != word.size())
        return false;
    result.priority = priorities[word.size() - 1];
    note(CapturePiece::Kind::Priority, place, 1);
    ++place;
    return true;
}

/// "place:Berlin" or, for several words, "place:"Town Hall"".
bool CaptureReader::takePlace(size_t &place)
{
    if (known.contains(CapturePiece::Kind::Place))
        return false;
    for (const QString &sign : {u"place:"_s, u"ort:"_s}) {
        const Word &word = words[place];
        if (!word.folded.startsWith(sign) || word.text.size() == sign.size())
            continue;
        result.place = word.text.mid(sign.size());
        note(CapturePiece::Kind::Place, place, 1);
        ++place;
        return true;
    }
    return false;
}

// Dates

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
    return true;
}

/// A date with what leads to it, and the end of a range.
CaptureReader::Days CaptureReader::daysAt(size_t place) const
{
    size_t next = place;
    bool isRange = false;
    if (const auto fromWord = match(next, {Meaning::From}); fromWord) {
        isRange = true;
        next += size_t(fromWord->count);
    } else if (const auto lead = match(next, {Meaning::BeforeDate})) {
        // The whole may be a phrase of its own: "the day after tomorrow".
        if (const Days whole = dayAt(place, true); whole.count > lead->count)
            return whole;
        next += size_t(lead->count);
    }
    const bool hasLead = next != place;
    Days days = dayAt(next, hasLead);
    if (days.count == 0)
        return {};
    next += size_t(days.count);
    if (!days.isSomeday && !days.minute) {
        if (const auto to = match(next, {Meaning::To})) {
            const Days last = dayAt(next + size_t(to->count), true);
            if (last.count > 0 && !last.isSomeday && !last.minute && last.first > days.first) {
                days.last = last.first;
                next += size_t(to->count + last.count);
            }
        }
    }
    if (isRange && !days.last && match(place, {Meaning::From}) && !match(place, {Meaning::BeforeTime}))
        return {};
    days.count = int(next - place);
    return days;
}

CaptureReader::Days CaptureReader::dayAt(size_t place, bool mustBeDate) const
{
    if (!isFree(place))
        return {};
    using enum CaptureWords::Meaning;
    if (Days days = dayAndMonth(place); days.count > 0)
        return days;
    if (Days days = numericDay(place, mustBeDate); days.count > 0)
        return days;
    const auto phrase =
        match(place, {DaysAhead, WeeksAhead, MonthsAhead, YearsAhead, HoursAhead, MinutesAhead, Weekday,
                      WeekdayNextWeek, NextWeek, NextMonth, NextYear, Weekend, EndOfMonth, Someday});
    if (!phrase)
        return {};
    if (phrase->entry.isWeak && !mustBeDate) {
        // "so" and "sun" are a day only where nothing else can be meant: at an end of the line, or with a
        // time behind it.
        const size_t next = place + size_t(phrase->count);
        const bool isAtEnd = next >= words.size() && place > 0;
        if (!isAtEnd && (next >= words.size() || timesAt(next).count == 0))
            return {};
    }
    return ofMatch(*phrase);
}

CaptureReader::Days CaptureReader::ofMatch(const CaptureWords::Match &match) const
{
    const int amount = match.number.value_or(match.entry.number);
    const int number = match.entry.number;
    Days days{.count = match.count};
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
    case Meaning::MinutesAhead: {
        const Date at = calendar.dateByAdding(
            match.entry.meaning == Meaning::HoursAhead ? CalendarUnit::Hour : CalendarUnit::Minute, amount,
            now);
        days.first = calendar.startOfDay(at);
        days.minute = calendar.hour(at) * 60 + calendar.minute(at);
        break;
    }
    case Meaning::Weekday:
        days.first = nextWeekday(number, false);
        break;
    case Meaning::WeekdayNextWeek: {
        const int away = (number - calendar.firstWeekday() + 7) % 7;
        const int sinceStart = (calendar.weekday(today) - calendar.firstWeekday() + 7) % 7;
        days.first = ahead(CalendarUnit::Day, 7 - sinceStart + away);
        break;
    }
    case Meaning::NextWeek:
        days.first = ahead(CalendarUnit::Day, 7 - (calendar.weekday(today) - 2 + 7) % 7);
        break;
    case Meaning::NextMonth:
        days.first = calendar.dateByAdding(
            CalendarUnit::Month, 1, calendar.dateByAdding(CalendarUnit::Day, 1 - calendar.day(today), today));
        break;
    case Meaning::NextYear:
        days.first = *dayOf(calendar.year(today) + 1, 1, 1);
        break;
    case Meaning::Weekend:
        // On a Sunday there is no more of it than that day.
        days.first = calendar.weekday(today) == 1 ? today : nextWeekday(7, true);
        break;
    case Meaning::EndOfMonth:
        days.first = ahead(CalendarUnit::Day, calendar.daysInMonth(today) - calendar.day(today));
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

OptionalDate CaptureReader::dayOf(int year, int month, int day) const
{
    constexpr int lastYear = 9999;
    if (year < 1 || year > lastYear || month < 1 || month > 12 || day < 1)
        return {};
    const Date first = calendar.dateFromComponents({.year = year, .month = month, .day = 1});
    if (day > calendar.daysInMonth(first))
        return {};
    return calendar.startOfDay(calendar.dateFromComponents({.year = year, .month = month, .day = day}));
}

/// The next such date from today on; a 29th of February can be some years away.
OptionalDate CaptureReader::nextDay(int month, int day) const
{
    constexpr int mostYears = 8;
    for (int away = 0; away <= mostYears; ++away) {
        const OptionalDate date = dayOf(calendar.year(today) + away, month, day);
        if (date && *date >= today)
            return date;
    }
    return {};
}

OptionalDate CaptureReader::nextDayOfMonth(int day) const
{
    for (int away = 0; away < 12; ++away) {
        const int month = calendar.month(today) - 1 + away;
        const OptionalDate date = dayOf(calendar.year(today) + month / 12, month % 12 + 1, day);
        if (date && *date >= today)
            return date;
    }
    return {};
}

Date CaptureReader::nextWeekday(int weekday, bool canBeToday) const
{
    const int away = (weekday - calendar.weekday(today) + 7) % 7;
    return ahead(CalendarUnit::Day, away == 0 && !canBeToday ? 7 : away);
}

static int yearOf(const QString &digits)
{
    constexpr int century = 2000;
    return digits.size() <= 2 ? century + digits.toInt() : digits.toInt();
}

/// "31.12.", "31.12.2026", "2026-12-31", "12/31" in the order of the user's dates, and, where a date is sure
/// to follow, "15." and "15th".
CaptureReader::Days CaptureReader::numericDay(size_t place, bool isAfterPreposition) const
{
    static const QRegularExpression dotted(u"^(\\d{1,2})\\.(\\d{1,2})\\.(\\d{4}|\\d{2})?$"_s);
    static const QRegularExpression iso(u"^(\\d{4})-(\\d{1,2})-(\\d{1,2})$"_s);
    static const QRegularExpression slashed(u"^(\\d{1,2})/(\\d{1,2})(?:/(\\d{4}|\\d{2}))?$"_s);
    static const QRegularExpression ordinal(u"^(\\d{1,2})(st|nd|rd|th)$"_s);
    static const QRegularExpression dot(u"^(\\d{1,2})\\.$"_s);
    const QString &word = words[place].folded;
    const auto found = [](OptionalDate date) { return date ? Days{.count = 1, .first = *date} : Days{}; };
    if (const auto parts = dotted.match(word); parts.hasMatch()) {
        const int day = parts.captured(1).toInt();
        const int month = parts.captured(2).toInt();
        const QString year = parts.captured(3);
        return found(year.isEmpty() ? nextDay(month, day) : dayOf(yearOf(year), month, day));
    }
    if (const auto parts = iso.match(word); parts.hasMatch())
        return found(dayOf(parts.captured(1).toInt(), parts.captured(2).toInt(), parts.captured(3).toInt()));
    if (const auto parts = slashed.match(word); parts.hasMatch()) {
        static const QStringList monthFirst{u"US"_s, u"PH"_s, u"CA"_s};
        const bool isMonthFirst = monthFirst.contains(Region::localeIdentifier().section(u'_', -1)) ||
                                  !Region::localeIdentifier().contains(u'_');
        int month = parts.captured(isMonthFirst ? 1 : 2).toInt();
        int day = parts.captured(isMonthFirst ? 2 : 1).toInt();
        if (month > 12)
            std::swap(month, day);
        const QString year = parts.captured(3);
        return found(year.isEmpty() ? nextDay(month, day) : dayOf(yearOf(year), month, day));
    }
    const auto lone = ordinal.match(word).hasMatch() ? ordinal.match(word) : dot.match(word);
    if (lone.hasMatch() && isAfterPreposition)
        return found(nextDayOfMonth(lone.captured(1).toInt()));
    return {};
}

/// "31 Dec", "31st of December 2027", "Dec 31", "31. Dezember".
CaptureReader::Days CaptureReader::dayAndMonth(size_t place) const
{
    static const QRegularExpression numeral(u"^(\\d{1,2})(?:\\.|st|nd|rd|th)?$"_s);
    static const QRegularExpression year(u"^(\\d{4})$"_s);
    const auto dayOfWord = [&](size_t at) {
        const auto parts = isFree(at) ? numeral.match(words[at].folded) : QRegularExpressionMatch();
        return parts.hasMatch() ? parts.captured(1).toInt() : 0;
    };
    size_t next = place;
    int day = dayOfWord(next);
    int month = 0;
    if (day > 0) {
        ++next;
        if (const auto of = match(next, {Meaning::OfMonth}))
            next += size_t(of->count);
        const auto named = match(next, {Meaning::Month});
        if (!named)
            return {};
        month = named->entry.number;
        next += size_t(named->count);
    } else if (const auto named = match(next, {Meaning::Month})) {
        month = named->entry.number;
        next += size_t(named->count);
        day = dayOfWord(next);
        if (day == 0)
            return {};
        ++next;
    } else {
        return {};
    }
    OptionalDate date = nextDay(month, day);
    if (isFree(next) && year.match(words[next].folded).hasMatch()) {
        date = dayOf(words[next].folded.toInt(), month, day);
        ++next;
    }
    return date ? Days{.count = int(next - place), .first = *date} : Days{};
}

// Times

bool CaptureReader::takeTime(size_t &place)
{
    if (known.contains(CapturePiece::Kind::Time))
        return false;
    const Times times = timesAt(place);
    if (times.count == 0)
        return false;
    result.minute = times.minute;
    result.lastMinute = times.last;
    note(CapturePiece::Kind::Time, place, size_t(times.count));
    place += size_t(times.count);
    return true;
}

/// "for 2 hours", "für 90 Minuten": how long it takes, as a part of the time.
bool CaptureReader::takeLength(size_t &place)
{
    const auto lead = match(place, {Meaning::For});
    if (!lead || lengthInMinutes)
        return false;
    const size_t at = place + size_t(lead->count);
    const auto number = isFree(at) ? dictionary.numberOf(words[at].folded) : std::nullopt;
    const auto hours = match(at + 1, {Meaning::Hours});
    const auto minutes = match(at + 1, {Meaning::Minutes});
    if (!number || *number < 1 || (!hours && !minutes))
        return false;
    const int length = *number * (hours ? 60 : 1);
    if (length >= minutesOfDay)
        return false;
    lengthInMinutes = length;
    const size_t count = size_t(lead->count) + 1 + size_t((hours ? hours : minutes)->count);
    note(CapturePiece::Kind::Time, place, count);
    place += count;
    return true;
}

CaptureReader::Times CaptureReader::timesAt(size_t place) const
{
    if (const auto part = match(place, {Meaning::Minute}))
        return {part->count, part->entry.number};
    size_t next = place;
    if (const auto lead = match(next, {Meaning::From, Meaning::BeforeTime}))
        next += size_t(lead->count);
    const bool hasLead = next != place;
    // "10-11:30" and "17:00–18:00" in one word.
    static const QRegularExpression joined(u"^([0-9:.apm]+)[-–]([0-9:.apm]+)$"_s);
    if (isFree(next)) {
        if (const auto parts = joined.match(words[next].folded); parts.hasMatch()) {
            const QString apart =
                parts.captured(1) + u" - "_s + parts.captured(2) + u' ' +
                (isFree(next + 1) && match(next + 1, {Meaning::OClock}) ? words[next + 1].text : QString());
            static const std::set<int> nothing;
            const CaptureReader inside(dictionary, names, now, apart, nothing);
            Clock first = inside.clockAt(0, true);
            const Clock last = inside.clockAt(2, true);
            const bool isTime = hasLead || !first.isBare || !last.isBare;
            if (first.count > 0 && last.count > 0 && isTime) {
                if (first.isBare && !last.isBare && last.minute - first.minute > 12 * 60)
                    first.minute += 12 * 60;
                if (last.minute > first.minute)
                    return {int(next - place) + 1 + (last.count > 1 ? 1 : 0), first.minute, last.minute};
            }
            return {};
        }
    }
    Clock clock = clockAt(next, hasLead);
    if (clock.count == 0)
        return {};
    next += size_t(clock.count);
    Times times{0, clock.minute};
    if (const auto to = match(next, {Meaning::To})) {
        const Clock last = clockAt(next + size_t(to->count), true);
        if (last.count > 0) {
            if (clock.isBare && !last.isBare && last.minute - clock.minute > 12 * 60 &&
                clock.minute < 12 * 60)
                times.minute += 12 * 60;
            if (last.minute > times.minute) {
                times.last = last.minute;
                next += size_t(to->count + last.count);
            }
        }
    }
    times.count = int(next - place);
    return times;
}

/// "5pm", "5:30 pm", "17:00", "17 Uhr", "17h"; after "at" or "um" also "17".
CaptureReader::Clock CaptureReader::clockAt(size_t place, bool isAfterPreposition) const
{
    static const QRegularExpression pattern(
        u"^(\\d{1,2})(?:([:.])(\\d{2}))?(am|pm|a\\.m\\.|p\\.m\\.|a|p|h|uhr)?$"_s);
    if (!isFree(place))
        return {};
    const auto parts = pattern.match(words[place].folded);
    if (!parts.hasMatch())
        return {};
    int hour = parts.captured(1).toInt();
    const int minute = parts.captured(3).toInt();
    QString half = parts.captured(4);
    int count = 1;
    bool isSure = parts.captured(2) == u":"_s || !half.isEmpty();
    if (half.isEmpty() && isFree(place + 1)) {
        const QString &next = words[place + 1].folded;
        if (next == u"am"_s || next == u"pm"_s || next == u"a.m."_s || next == u"p.m."_s) {
            // German: "10 am" is no time where a date follows.
            const bool isGermanLead = next == u"am"_s && isFree(place + 2) &&
                                      dayAt(place + 2, true).count > 0 && !isAfterPreposition;
            if (!isGermanLead) {
                half = next;
                ++count;
                isSure = true;
            }
        } else if (match(place + 1, {Meaning::OClock}) || next == u"h"_s) {
            half = u"h"_s;
            ++count;
            isSure = true;
        }
    }
    const bool isHalf = half.startsWith(u'a') || half.startsWith(u'p');
    if (hour > 24 || minute > 59 || (hour == 24 && minute > 0) || (isHalf && (hour < 1 || hour > 12)))
        return {};
    if (!isSure && !isAfterPreposition)
        return {};
    if (isHalf)
        hour = hour % 12 + (half.startsWith(u'p') ? 12 : 0);
    const bool isBare = !isHalf && parts.captured(2).isEmpty() && half.isEmpty();
    // Nobody who counts to twelve means the small hours by "at 5".
    constexpr int firstLikely = 7;
    const bool countsToTwelve =
        Region::localeIdentifier().startsWith(u"en_US"_s) || Region::localeIdentifier() == u"en"_s;
    if (isBare && countsToTwelve && hour > 0 && hour < firstLikely)
        hour += 12;
    return {count, hour * 60 + minute, isBare};
}

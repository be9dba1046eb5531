#include "records/capture/CaptureReader.h"

#include "foundation/Region.h"

#include <utility>

// What days are: of a month, of a year, the next ones, and dates that are written by numbers and months.

using namespace Qt::Literals::StringLiterals;
using Meaning = CaptureWords::Meaning;

OptionalDate CaptureReader::dayOf(int year, int month, int day) const
{
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

/// "15", "15." or "15th"; 0 for anything else.
int CaptureReader::numberOfDay(size_t place) const
{
    static const QRegularExpression numeral(u"^(\\d{1,2})(?:\\.|st|nd|rd|th)?$"_s);
    const auto parts = isFree(place) ? numeral.match(words[place].folded) : QRegularExpressionMatch();
    return parts.hasMatch() ? parts.captured(1).toInt() : 0;
}

/// A day of the month behind what leads to one, "on the 15th", where it does not count what follows: "on the
/// 2nd floor".
CaptureReader::Days CaptureReader::loneDay(size_t lead, size_t place) const
{
    static const QRegularExpression ordinal(u"^(\\d{1,2})(?:\\.|st|nd|rd|th)$"_s);
    const auto parts = isFree(place) ? ordinal.match(words[place].folded) : QRegularExpressionMatch();
    if (!parts.hasMatch())
        return {};
    const int day = parts.captured(1).toInt();
    Days days{.count = 1};
    size_t next = place + 1;
    // "of next month"
    const auto of = match(next, {Meaning::OfMonth});
    const size_t at = next + size_t(of ? of->count : 0);
    const auto month = match(at, {Meaning::NextMonth, Meaning::ThisMonth});
    OptionalDate date = nextDayOfMonth(day);
    if (month) {
        next = at + size_t(month->count);
        if (month->entry.meaning == Meaning::NextMonth)
            date =
                dayOf(calendar.year(today) + calendar.month(today) / 12, calendar.month(today) % 12 + 1, day);
    } else if (!canEndDay(lead, next)) {
        return {};
    }
    if (!date)
        return {};
    days.first = *date;
    days.count = int(next - place);
    return days;
}

bool CaptureReader::canEndDay(size_t lead, size_t last) const
{
    if (last >= words.size() || words[last - 1].text.size() != words[last - 1].folded.size())
        return true;
    const Word &next = words[last];
    static const QStringList counted{u"mal"_s,    u"band"_s,  u"stock"_s,  u"etage"_s, u"kapitel"_s,
                                     u"teil"_s,   u"tag"_s,   u"advent"_s, u"platz"_s, u"geburtstag"_s,
                                     u"klasse"_s, u"runde"_s, u"versuch"_s};
    if (lead == 0 || counted.contains(next.folded))
        return !counted.contains(next.folded);
    using enum CaptureWords::Meaning;
    if (!next.text.front().isLetter() || timesAt(last).count > 0 ||
        match(last, {BeforeDate, BeforeTime, From, Until, To, For, And, In, EachMonth, Every, DayPart}))
        return true;
    static const QStringList small{u"about"_s, u"with"_s, u"mit"_s, u"wegen"_s, u"bei"_s, u"or"_s};
    if (small.contains(next.folded))
        return true;
    static const QRegularExpression dot(u"\\.$"_s);
    // In German nouns have a capital: "am 15. überweisen", but "zum 5. Mal".
    return dot.match(words[last - 1].folded).hasMatch() && next.text.front().isLower();
}

static int yearOf(const QString &digits)
{
    constexpr int century = 2000;
    return digits.size() <= 2 ? century + digits.toInt() : digits.toInt();
}

/// "31.12.", "31.12.2026", "31. 12.", "2026-12-31", "12/31" in the order of the user's dates; where a date is
/// sure also "31.12".
CaptureReader::Days CaptureReader::numericDay(size_t place, bool isSure) const
{
    static const QRegularExpression dotted(u"^(\\d{1,2})\\.(\\d{1,2})(\\.)?(\\d{4}|\\d{2})?[!?:]?$"_s);
    static const QRegularExpression dot(u"^(\\d{1,2})\\.$"_s);
    static const QRegularExpression fullYear(u"^(20\\d\\d)$"_s);
    static const QRegularExpression iso(u"^(\\d{4})-(\\d{1,2})-(\\d{1,2})$"_s);
    static const QRegularExpression dashed(u"^(\\d{1,2})-(\\d{1,2})-(\\d{4})$"_s);
    static const QRegularExpression slashed(u"^(\\d{1,2})/(\\d{1,2})(?:/(\\d{4}|\\d{2}))?$"_s);
    if (!isFree(place))
        return {};
    const QString &word = words[place].folded;
    int count = 1;
    const auto found = [&](int month, int day, const QString &year) {
        const OptionalDate date = year.isEmpty() ? nextDay(month, day) : dayOf(yearOf(year), month, day);
        return date ? Days{.count = count, .first = *date, .isOfMonth = true} : Days{};
    };
    const auto yearBehind = [&](size_t at) {
        const bool isYear = isFree(at) && fullYear.match(words[at].folded).hasMatch();
        count += isYear ? 1 : 0;
        return isYear ? words[at].folded : QString();
    };
    if (const auto parts = dotted.match(word); parts.hasMatch()) {
        const bool isWhole = !parts.captured(3).isEmpty();
        if ((!isWhole && !isSure) || (!isWhole && !parts.captured(4).isEmpty()))
            return {};
        QString year = parts.captured(4);
        if (year.isEmpty() && isWhole)
            year = yearBehind(place + 1);
        return found(parts.captured(2).toInt(), parts.captured(1).toInt(), year);
    }
    if (const auto day = dot.match(word); day.hasMatch() && isFree(place + 1)) {
        if (const auto month = dot.match(words[place + 1].folded); month.hasMatch()) {
            count = 2;
            const QString year = yearBehind(place + 2);
            return found(month.captured(1).toInt(), day.captured(1).toInt(), year);
        }
    }
    if (const auto parts = iso.match(word); parts.hasMatch())
        return found(parts.captured(2).toInt(), parts.captured(3).toInt(), parts.captured(1));
    const bool isMonthFirst = [] {
        static const QStringList monthFirst{u"US"_s, u"PH"_s, u"CA"_s};
        return monthFirst.contains(Region::localeIdentifier().section(u'_', -1)) ||
               !Region::localeIdentifier().contains(u'_');
    }();
    for (const auto &pattern : {slashed, dashed}) {
        const auto parts = pattern.match(word);
        if (!parts.hasMatch())
            continue;
        int month = parts.captured(isMonthFirst ? 1 : 2).toInt();
        int day = parts.captured(isMonthFirst ? 2 : 1).toInt();
        const QString year = parts.captured(3);
        if (!isSure && year.isEmpty() && isFraction(place))
            return {};
        if (month > 12)
            std::swap(month, day);
        return found(month, day, year);
    }
    return {};
}

/// "3/4 inch", "24/7" and "chapter 12/13" are no dates.
bool CaptureReader::isFraction(size_t place) const
{
    static const QStringList numbered{u"chapter"_s,  u"chapters"_s, u"page"_s,    u"pages"_s,  u"part"_s,
                                      u"parts"_s,    u"unit"_s,     u"units"_s,   u"lesson"_s, u"lessons"_s,
                                      u"exercise"_s, u"no."_s,      u"kapitel"_s, u"seite"_s,  u"seiten"_s,
                                      u"teil"_s,     u"lektion"_s,  u"aufgabe"_s, u"nr."_s,    u"nummer"_s};
    if (place > 0 && numbered.contains(words[place - 1].folded))
        return true;
    static const QStringList fractions{u"1/2"_s, u"1/3"_s, u"2/3"_s, u"1/4"_s, u"3/4"_s};
    const QString &word = words[place].folded;
    if (word == u"24/7"_s)
        return true;
    const bool isCounting = isFree(place + 1) && words[place + 1].text.front().isLetter() &&
                            timesAt(place + 1).count == 0 && !match(place + 1, {Meaning::BeforeTime});
    return fractions.contains(word) && isCounting;
}

/// "31 Dec", "31st of December 2027", "Dec 31", "31. Dezember".
CaptureReader::Days CaptureReader::dayAndMonth(size_t place) const
{
    static const QRegularExpression year(u"^(\\d{4})$"_s);
    size_t next = place;
    int day = numberOfDay(next);
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
        if (const auto the = match(next, {Meaning::BeforeDate}); the && the->entry.isWeak)
            next += size_t(the->count);
        day = numberOfDay(next);
        if (day == 0)
            return {};
        // "Dec 24 Uhr" and "Mai 5 pm" are none.
        if (isTimeOfDay(next))
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
    return date ? Days{.count = int(next - place), .first = *date, .isOfMonth = true} : Days{};
}

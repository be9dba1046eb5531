#include "records/capture/CaptureWords.h"

#include "foundation/CalendarSymbols.h"
#include "foundation/Region.h"
#include "foundation/RelativeDates.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

CaptureWords::CaptureWords(const QStringList &languages)
{
    addEnglish();
    for (const QString &language : languages) {
        if (language == u"de"_s || language.startsWith(u"de-"_s))
            addGerman();
        addOfLocale(language);
    }
}

const CaptureWords &CaptureWords::ofUser()
{
    static quint64 generation = Region::generation();
    static auto words = std::make_unique<CaptureWords>(Region::preferredLocalizations());
    if (generation != Region::generation()) {
        generation = Region::generation();
        words = std::make_unique<CaptureWords>(Region::preferredLocalizations());
    }
    return *words;
}

QString CaptureWords::foldedWord(QStringView word)
{
    while (word.size() > 1 && (word.back() == u',' || word.back() == u';'))
        word.chop(1);
    return word.toString().toCaseFolded();
}

void CaptureWords::add(const QString &phrase, const Entry &entry)
{
    const QString key = phrase.toCaseFolded().simplified();
    if (key.isEmpty())
        return;
    entries.emplace(key, entry);
    longest = std::max(longest, int(key.count(u' ')) + 1);
}

void CaptureWords::add(std::initializer_list<QStringView> phrases, Meaning meaning, int number, bool isWeak)
{
    for (const QStringView phrase : phrases)
        add(phrase.toString(), Entry{meaning, number, isWeak});
}

void CaptureWords::addEnglish()
{
    using enum Meaning;
    constexpr int hour = 60;
    add({u"today", u"tod"}, DaysAhead, 0);
    add({u"tomorrow", u"tmrw", u"tmr"}, DaysAhead, 1);
    add({u"day after tomorrow", u"the day after tomorrow", u"overmorrow"}, DaysAhead, 2);
    add({u"in # days", u"in # day", u"# days from now", u"in a day"}, DaysAhead, 1);
    add({u"in # weeks", u"in # week", u"# weeks from now", u"in a week"}, WeeksAhead, 1);
    add({u"in # months", u"in # month", u"# months from now", u"in a month"}, MonthsAhead, 1);
    add({u"in # years", u"in # year", u"# years from now", u"in a year"}, YearsAhead, 1);
    add({u"in # hours", u"in # hour", u"in an hour", u"in # h"}, HoursAhead, 1);
    add({u"in # minutes", u"in # minute", u"in # min", u"in a minute"}, MinutesAhead, 1);
    add({u"in half an hour"}, MinutesAhead, 30);
    add({u"in a fortnight"}, WeeksAhead, 2);
    add({u"next week"}, NextWeek);
    add({u"next month"}, NextMonth);
    add({u"next year"}, NextYear);
    add({u"weekend", u"the weekend", u"this weekend", u"at the weekend", u"on the weekend"}, Weekend);
    add({u"end of month", u"end of the month", u"eom"}, EndOfMonth);
    add({u"someday", u"some day"}, Someday);
    const std::initializer_list<QStringView> shortDays[] = {
        {u"sun"}, {u"mon"}, {u"tue", u"tues"}, {u"wed", u"weds"}, {u"thu", u"thur", u"thurs"},
        {u"fri"}, {u"sat"}};
    int day = 0;
    for (const auto &names : shortDays) {
        ++day;
        add(names, Weekday, day, day == 1 || day == 7 || day == 4);
        for (const QStringView name : names)
            add(u"next "_s + name.toString(), Entry{WeekdayNextWeek, day});
    }
    add({u"jan"}, Month, 1);
    add({u"feb"}, Month, 2);
    add({u"sept"}, Month, 9);
    add({u"noon", u"midday", u"at noon"}, Minute, 12 * hour);
    add({u"in the morning", u"this morning"}, Minute, 9 * hour);
    add({u"in the afternoon", u"this afternoon"}, Minute, 15 * hour);
    add({u"in the evening", u"this evening"}, Minute, 18 * hour);
    add({u"tonight"}, Minute, 20 * hour);
    add({u"daily", u"every day", u"each day", u"everyday"}, Daily);
    add({u"weekly", u"every week", u"each week"}, Weekly);
    add({u"biweekly", u"fortnightly", u"every fortnight"}, Weekly, 2);
    add({u"monthly", u"every month", u"each month"}, Monthly);
    add({u"quarterly", u"every quarter"}, Monthly, 3);
    add({u"yearly", u"annually", u"every year", u"each year"}, Yearly);
    add({u"every weekday", u"weekdays", u"on weekdays", u"every workday", u"every working day"}, OnWorkdays);
    add({u"every weekend", u"on weekends"}, OnWeekends);
    add({u"every", u"each"}, Every);
    add({u"every other", u"every second"}, Every, 2);
    add({u"every #"}, Every, 0);
    add({u"# times", u"for # times"}, Times);
    add({u"on", u"by", u"due", u"due on", u"on the", u"by the", u"this", u"the", u"on this"}, BeforeDate);
    add({u"at", u"by", u"around"}, BeforeTime);
    add({u"from"}, From);
    add({u"to", u"till", u"until", u"-", u"–"}, To);
    add({u"until", u"till"}, Until);
    add({u"for"}, For);
    add({u"and", u"&"}, And);
    add({u"of"}, OfMonth);
    add({u"hours", u"hour", u"h", u"hrs", u"hr"}, Hours);
    add({u"minutes", u"minute", u"min", u"mins"}, Minutes);
    add({u"o'clock", u"o’clock"}, OClock);
    add({u"day", u"days"}, DayUnit);
    add({u"week", u"weeks"}, WeekUnit);
    add({u"month", u"months"}, MonthUnit);
    add({u"year", u"years"}, YearUnit);
    const QStringView names[] = {u"one",   u"two",   u"three", u"four", u"five",   u"six",
                                 u"seven", u"eight", u"nine",  u"ten",  u"eleven", u"twelve"};
    int number = 0;
    for (const QStringView name : names)
        numbers.emplace(name.toString(), ++number);
    addOfLocale(u"en"_s);
}

void CaptureWords::addGerman()
{
    using enum Meaning;
    constexpr int hour = 60;
    add({u"heute"}, DaysAhead, 0);
    add({u"morgen"}, DaysAhead, 1);
    add({u"übermorgen", u"uebermorgen"}, DaysAhead, 2);
    add({u"in # tagen", u"in # tag", u"in einem tag"}, DaysAhead, 1);
    add({u"in # wochen", u"in # woche", u"in einer woche"}, WeeksAhead, 1);
    add({u"in # monaten", u"in # monat", u"in einem monat"}, MonthsAhead, 1);
    add({u"in # jahren", u"in # jahr", u"in einem jahr"}, YearsAhead, 1);
    add({u"in # stunden", u"in # stunde", u"in einer stunde"}, HoursAhead, 1);
    add({u"in # minuten", u"in # minute", u"in # min"}, MinutesAhead, 1);
    add({u"in einer halben stunde"}, MinutesAhead, 30);
    for (const QStringView word :
         {u"nächste", u"nächster", u"nächsten", u"nächstes", u"kommende", u"kommenden"}) {
        add(word.toString() + u" woche"_s, Entry{NextWeek});
        add(word.toString() + u" monat"_s, Entry{NextMonth});
        add(word.toString() + u" jahr"_s, Entry{NextYear});
    }
    add({u"wochenende", u"am wochenende", u"dieses wochenende"}, Weekend);
    add({u"monatsende", u"ende des monats", u"zum monatsende"}, EndOfMonth);
    add({u"irgendwann", u"eines tages"}, Someday);
    const QStringView days[] = {u"sonntag",    u"montag",  u"dienstag", u"mittwoch",
                                u"donnerstag", u"freitag", u"samstag"};
    int day = 0;
    for (const QStringView name : days) {
        ++day;
        const QString full = name.toString();
        for (const QStringView word : {u"nächsten ", u"nächster ", u"nächste "})
            add(word.toString() + full, Entry{WeekdayNextWeek, day});
        add(u"kommenden "_s + full, Entry{Weekday, day});
        add(full + u"s"_s, Entry{Weekday, day, true});
        // With the full stop it is a weekday; without, "so" and "do" are mostly something else.
        add(full.left(2) + u"."_s, Entry{Weekday, day});
        add(full.left(2), Entry{Weekday, day, true});
    }
    add({u"sonnabend"}, Weekday, 7);
    add({u"jänner"}, Month, 1);
    add({u"mittags", u"mittag", u"am mittag"}, Minute, 12 * hour);
    add({u"früh", u"morgens", u"am morgen"}, Minute, 9 * hour);
    add({u"vormittags", u"vormittag", u"am vormittag"}, Minute, 10 * hour);
    add({u"nachmittags", u"nachmittag", u"am nachmittag"}, Minute, 15 * hour);
    add({u"abends", u"abend", u"am abend"}, Minute, 18 * hour);
    add({u"täglich", u"jeden tag"}, Daily);
    add({u"wöchentlich", u"jede woche"}, Weekly);
    add({u"vierzehntägig"}, Weekly, 2);
    add({u"monatlich", u"jeden monat"}, Monthly);
    add({u"vierteljährlich", u"jedes quartal"}, Monthly, 3);
    add({u"jährlich", u"jedes jahr"}, Yearly);
    add({u"werktags", u"jeden werktag", u"an werktagen", u"wochentags"}, OnWorkdays);
    add({u"jedes wochenende", u"an wochenenden"}, OnWeekends);
    add({u"jeden", u"jede", u"jedes", u"immer"}, Every);
    add({u"jeden zweiten", u"jede zweite", u"jedes zweite"}, Every, 2);
    add({u"alle #"}, Every, 0);
    add({u"# mal"}, Times);
    add({u"am", u"bis", u"bis zum", u"zum", u"diesen", u"dieser", u"den", u"fällig", u"fällig am"},
        BeforeDate);
    add({u"um", u"gegen", u"bis", u"ab"}, BeforeTime);
    add({u"von", u"vom", u"ab"}, From);
    add({u"bis", u"bis zum"}, To);
    add({u"bis", u"bis zum", u"bis ende"}, Until);
    add({u"für"}, For);
    add({u"und"}, And);
    add({u"stunden", u"stunde", u"std", u"std."}, Hours);
    add({u"minuten", u"minute", u"min."}, Minutes);
    add({u"uhr"}, OClock);
    add({u"tag", u"tage", u"tagen"}, DayUnit);
    add({u"woche", u"wochen"}, WeekUnit);
    add({u"monat", u"monate", u"monaten"}, MonthUnit);
    add({u"jahr", u"jahre", u"jahren"}, YearUnit);
    const QStringView names[] = {u"eins",   u"zwei", u"drei", u"vier", u"fünf", u"sechs",
                                 u"sieben", u"acht", u"neun", u"zehn", u"elf",  u"zwölf"};
    int number = 0;
    for (const QStringView name : names)
        numbers.emplace(name.toString(), ++number);
    for (const QStringView name : {u"ein", u"eine", u"einem", u"einer"})
        numbers.emplace(name.toString(), 1);
}

void CaptureWords::addOfLocale(const QString &language)
{
    using enum Meaning;
    const QString locale = QString(language).replace(u'-', u'_');
    for (const auto form :
         {CalendarSymbols::Form::InText, CalendarSymbols::Form::Alone, CalendarSymbols::Form::AloneShort}) {
        const bool isShort = form == CalendarSymbols::Form::AloneShort;
        const QStringList days = CalendarSymbols::weekdays(locale, form);
        for (int day = 0; day < days.size(); ++day) {
            // English and German have theirs.
            if (!isShort || (language != u"en"_s && !language.startsWith(u"de"_s)))
                add(days.at(day), Entry{Weekday, day + 1, isShort});
        }
        const QStringList months = CalendarSymbols::months(locale, form);
        for (int month = 0; month < months.size(); ++month) {
            add(months.at(month), Entry{Month, month + 1});
            if (isShort && !months.at(month).endsWith(u'.'))
                add(months.at(month) + u'.', Entry{Month, month + 1});
            else if (isShort)
                add(months.at(month).chopped(1), Entry{Month, month + 1});
        }
    }
    for (int days = 0; days <= 2; ++days)
        add(RelativeDates::day(locale, days), Entry{DaysAhead, days});
    for (int day = 1; day <= 7; ++day) {
        add(RelativeDates::weekday(locale, day, 0), Entry{Weekday, day});
        add(RelativeDates::weekday(locale, day, 1), Entry{WeekdayNextWeek, day});
    }
    using Unit = RelativeDates::Unit;
    add(RelativeDates::next(locale, Unit::Week), Entry{NextWeek});
    add(RelativeDates::next(locale, Unit::Month), Entry{NextMonth});
    add(RelativeDates::next(locale, Unit::Year), Entry{NextYear});
    const std::pair<Unit, Meaning> units[] = {{Unit::Day, DaysAhead},
                                              {Unit::Week, WeeksAhead},
                                              {Unit::Month, MonthsAhead},
                                              {Unit::Year, YearsAhead}};
    for (const auto &[unit, meaning] : units) {
        // Languages have up to five forms for different numbers; these show all of them.
        for (const int amount : {1, 2, 3, 5, 11, 21}) {
            QString phrase = RelativeDates::ahead(locale, unit, amount);
            const QString digits = QString::number(amount);
            if (phrase.count(digits) == 1)
                add(phrase.replace(digits, u"#"_s), Entry{meaning, 1});
        }
    }
}

std::optional<int> CaptureWords::numberOf(const QString &word) const
{
    if (const auto named = numbers.find(word); named != numbers.end())
        return named->second;
    constexpr int mostDigits = 4;
    const bool isDigits =
        !word.isEmpty() && word.size() <= mostDigits &&
        std::ranges::all_of(word, [](QChar letter) { return letter >= u'0' && letter <= u'9'; });
    return isDigits ? std::optional(word.toInt()) : std::nullopt;
}

namespace {

/// The words as a phrase, with '#' for the first number in it, which also may stand within a word.
std::pair<QString, std::optional<int>> patternOf(std::span<const QString> words,
                                                 const CaptureWords &dictionary)
{
    QStringList parts;
    std::optional<int> number;
    for (const QString &word : words) {
        if (const auto whole = number ? std::nullopt : dictionary.numberOf(word)) {
            number = whole;
            parts.append(u"#"_s);
            continue;
        }
        const auto isDigit = [](QChar letter) { return letter >= u'0' && letter <= u'9'; };
        const auto first = std::ranges::find_if(word, isDigit);
        const auto last = std::find_if_not(first, word.end(), isDigit);
        const auto digits = number ? std::nullopt : dictionary.numberOf(QString(first, int(last - first)));
        if (digits) {
            number = digits;
            parts.append(word.left(first - word.begin()) + u'#' + word.mid(last - word.begin()));
        } else {
            parts.append(word);
        }
    }
    return {parts.join(u' '), number};
}

} // namespace

std::optional<CaptureWords::Match> CaptureWords::match(std::span<const QString> words,
                                                       std::initializer_list<Meaning> meanings) const
{
    const auto entryOf = [&](const QString &phrase) -> std::optional<Entry> {
        const auto [first, last] = entries.equal_range(phrase);
        for (auto entry = first; entry != last; ++entry) {
            if (std::ranges::find(meanings, entry->second.meaning) != meanings.end())
                return entry->second;
        }
        return {};
    };
    for (int count = std::min(longest, int(words.size())); count > 0; --count) {
        const auto part = words.first(size_t(count));
        if (const auto entry = entryOf(QStringList(part.begin(), part.end()).join(u' ')))
            return Match{*entry, count};
        const auto [pattern, number] = patternOf(part, *this);
        if (!number)
            continue;
        if (const auto entry = entryOf(pattern))
            return Match{*entry, count, number};
    }
    return {};
}

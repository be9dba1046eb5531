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
        const QString code = language.section(u'-', 0, 0);
        if (code == u"de"_s)
            addGerman();
        static const QStringList withHours{u"ca"_s, u"es"_s, u"fr"_s, u"it"_s, u"pt"_s};
        writesHours = writesHours || withHours.contains(code);
        addOfLocale(language);
    }
    // To a German it is a death.
    if (!knowsGerman)
        add({u"tod"}, Meaning::DaysAhead, 0);
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
    add(RelativeDates::next(locale, Unit::Week), Entry{NextWeek, 1});
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
        QStringList phrase(part.begin(), part.end());
        if (const auto entry = entryOf(phrase.join(u' ')))
            return Match{*entry, count};
        // The end of a sentence: "tomorrow." and "Tomorrow: call Ada".
        constexpr int leastLetters = 3;
        if (phrase.back().size() > leastLetters && u".:!?"_s.contains(phrase.back().back())) {
            phrase.back().chop(1);
            if (const auto entry = entryOf(phrase.join(u' ')))
                return Match{*entry, count};
        }
        const auto [pattern, number] = patternOf(part, *this);
        if (!number)
            continue;
        if (const auto entry = entryOf(pattern))
            return Match{*entry, count, number};
    }
    return {};
}

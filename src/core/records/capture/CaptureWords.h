#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

/// The words of dates, times and repetitions as people type them, in some languages at once: English and
/// German with their short forms, every other language with what the Unicode locale data has of it.
class CaptureWords
{
public:
    enum class Meaning {
        // Dates.
        DaysAhead,   ///< from today
        WeeksAhead,  ///< from today
        MonthsAhead, ///< from today
        YearsAhead,  ///< from today
        HoursAhead,
        MinutesAhead,
        WeeksFrom,        ///< weeks from the day that follows
        Weekday,          ///< the next one of it; 1 is Sunday
        WeekdayNextWeek,  ///< in the week after the present one
        WeekdayAfterNext, ///< a week after the next one of it
        ThisWeek,
        ThisMonth,
        ThisYear,
        NextWeek, ///< that many weeks ahead
        NextMonth,
        NextYear,
        Weekend, ///< that many weeks ahead
        WeekNumber,
        EndOfMonth,
        EndOfYear,
        PartOf, ///< 0 is the first day of what follows, 1 its middle, 2 the last day
        Someday,
        Month, ///< 1 is January
        // Times.
        Minute,      ///< of the day
        DayPart,     ///< the minute that it mostly means; says which half of the day is meant by a time
        ClockAround, ///< minutes before or after an hour
        // Repetitions.
        Daily,
        Weekly,
        Monthly,
        Yearly,
        OnWorkdays,
        OnWeekends,
        Every,
        Ordinal,     ///< -1 is the last one
        WeekdayEach, ///< each one of it; 1 is Sunday
        EachMonth,   ///< "of every month" with 1; with 0 "of the month", which can also be a single one
        LastDay,
        Times, ///< "3 times"
        // What stands before and between.
        BeforeDate, ///< so many days from it are meant
        BeforeTime,
        From,
        Between,
        To,
        Until,
        For,
        In,
        And,
        OfMonth,
        Hours,   ///< a length; the number is what stands for '#'
        Minutes, ///< the same
        OClock,
        DayUnit,
        WeekUnit,
        MonthUnit,
        YearUnit,
        // What is none of these.
        Saying,      ///< a phrase with a word in it that would be a date elsewhere
        PersonTitle, ///< a name follows
    };

    struct Entry
    {
        Meaning meaning;
        int number = 0;
        /// Also a common word of another meaning: it counts only where a date must be meant.
        bool isWeak = false;
        /// The part of the day that is said with the day: "tonight".
        std::optional<int> part = {};
    };
    struct Match
    {
        Entry entry;
        /// How many of the words belong to it.
        int count = 0;
        /// What stood at the place of a number in the phrase; absent for a phrase without one.
        std::optional<int> number = {};
    };

    /// \param languages codes such as "de" and "pt-PT"; English is always among them.
    explicit CaptureWords(const QStringList &languages);
    /// Of the user's languages.
    static const CaptureWords &ofUser();

    /// The longest phrase of one of the meanings that the words begin with; absent if there is none.
    /// \param words folded by `foldedWord`.
    std::optional<Match> match(std::span<const QString> words, std::initializer_list<Meaning> meanings) const;
    /// A whole number up to 9999 as digits or as a word ("two", "zwei"); absent for anything else.
    std::optional<int> numberOf(const QString &word) const;
    /// Without case, and without the comma or semicolon behind it.
    static QString foldedWord(QStringView word);
    /// Whether "17h" is how one of the languages writes a time of day.
    bool hasHoursWithH() const { return writesHours; }

private:
    void add(const QString &phrase, const Entry &entry);
    void add(std::initializer_list<QStringView> phrases, Meaning meaning, int number = 0,
             bool isWeak = false);
    void addEnglish();
    void addGerman();
    void addOfLocale(const QString &language);

    /// By the phrase, its words apart by one space, with '#' for a number.
    std::unordered_multimap<QString, Entry> entries;
    std::unordered_map<QString, int> numbers;
    int longest = 1;
    bool knowsGerman = false;
    bool writesHours = false;
};

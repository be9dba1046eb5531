#pragma once

#include "records/capture/CaptureLine.h"
#include "records/capture/CaptureWords.h"

#include <QRegularExpression>

/// Reads one line, word by word. It lives as long as the reading.
class CaptureReader
{
public:
    static constexpr int minutesOfDay = 24 * 60;

    /// \param isDate the whole line can be nothing but a date: words that are mostly something else count.
    CaptureReader(const CaptureWords &dictionary, const CaptureLine::Names &knownNames, Date now,
                  const QString &text, const std::set<int> &literalPlaces, bool isDate = false);

    Capture read();

private:
    /// Behind it there are no dates.
    static constexpr int lastYear = 9999;
    struct Word
    {
        QString text;
        QString folded;
        int from = 0;
        bool isQuoted = false;
        int end() const { return from + int(text.size()); }
    };
    /// Some words that say something; `count` is 0 if they do not.
    struct Days
    {
        int count = 0;
        Date first = {};
        OptionalDate last = {};
        bool isSomeday = false;
        std::optional<int> minute = {};
        /// The part of the day that was said with it.
        std::optional<int> part = {};
        /// It names a day of a month: "24 Dec".
        bool isOfMonth = false;
    };
    struct Times
    {
        int count = 0;
        int minute = 0;
        /// Above the minutes of a day behind midnight.
        std::optional<int> last = {};
        /// What was said, where that can be in either half of the day.
        std::optional<int> spoken = {};
        bool hasPart = false;
        bool isSure = false;
    };
    struct Clock
    {
        int count = 0;
        int minute = 0;
        std::optional<int> spoken = {};
        /// A number and nothing else.
        bool isBare = false;
        /// With "am" or "pm".
        bool isHalf = false;
    };
    struct Length
    {
        int count = 0;
        int minutes = 0;
    };
    struct Counted
    {
        int count = 0;
        int number = 0;
    };
    struct DaysOfMonth
    {
        int count = 0;
        std::vector<int> days = {};
    };
    struct OrdinalDay
    {
        int count = 0;
        /// -1 for the last one.
        int number = 0;
        int weekday = 0;
        std::optional<int> part = {};
        bool isOfMonth = false;
        bool isOfEach = false;
    };
    struct Weekdays
    {
        int count = 0;
        std::vector<EKWeekday> days = {};
        std::optional<int> part = {};
    };
    struct Repeat
    {
        int count = 0;
        std::optional<RecurrenceRule> rule = {};
        /// The day of the month on which it begins, if that was said.
        OptionalDate first = {};
        std::optional<int> part = {};
    };

    void split();
    std::span<const QString> from(size_t place) const;
    std::optional<CaptureWords::Match> match(size_t place,
                                             std::initializer_list<CaptureWords::Meaning> meanings) const;
    /// Whether a word can be read: inside of the line, not quoted, not taken back.
    bool isFree(size_t place) const;
    /// Outside of the line, taken or taken back.
    bool isBarred(size_t place) const;
    /// Whether the piece that was understood last is of that kind, and ends right before the word.
    bool isBehind(size_t place, CapturePiece::Kind kind) const;
    void note(CapturePiece::Kind kind, size_t first, size_t count);
    /// What was read as a time has nothing to belong to, and goes back into the title.
    void giveBackTimes();
    void finish();

    void leaveSaying(size_t place);
    bool takeName(size_t &place);
    bool takePriority(size_t &place);
    bool takePlace(size_t &place);
    bool takeRepeat(size_t &place);
    bool takeEndOfRepeat(size_t &place);
    bool takeDate(size_t &place);
    bool takeDayPart(size_t &place);
    bool takeTime(size_t &place);
    bool takeLength(size_t &place);

    // Dates. `isSure`: nothing but a date can stand there.
    Days daysAt(size_t place) const;
    Days dayAt(size_t place, bool isSure) const;
    Days weekdayOf(size_t place, bool isSure) const;
    Days withWeekday(Days days, size_t place) const;
    Days partOf(size_t place) const;
    Days loneDay(size_t lead, size_t place) const;
    Days numericDay(size_t place, bool isSure) const;
    Days dayAndMonth(size_t place) const;
    Days ofMatch(const CaptureWords::Match &match) const;
    Days inMinutes(int count, int minutes) const;
    Days gluedRange(size_t place) const;
    Days rangeFromNumber(size_t place) const;
    Days rangeFrom(Days days, size_t place) const;
    int numberOfDay(size_t place) const;
    bool canEndDay(size_t lead, size_t last) const;
    bool isLikelyDay(size_t behind) const;
    bool isTimeOfDay(size_t place) const;
    bool isFraction(size_t place) const;
    bool isBeforeOrAfter(size_t place) const;
    OptionalDate dayOf(int year, int month, int day) const;
    OptionalDate nextDay(int month, int day) const;
    OptionalDate nextDayOfMonth(int day) const;
    OptionalDate mondayOfWeek(int number) const;
    Date dayOfWeekAhead(int weekday, int weeks) const;
    Date nextWeekday(int weekday, bool canBeToday) const;
    Date ahead(CalendarUnit unit, int amount) const { return calendar.dateByAdding(unit, amount, today); }

    // Times.
    Times timesAt(size_t place) const;
    Times joinedTimes(size_t place, bool hasLead) const;
    Times rangeOfClocks(size_t place, bool hasLead) const;
    Clock clockAt(size_t place, bool hasLead) const;
    Length lengthAt(size_t place) const;
    bool isBetween(size_t place) const;
    bool canEndTime(size_t lead, size_t last) const;
    void setPart(int part);

    // Repetitions.
    Repeat repeatAt(size_t place) const;
    Repeat everyAt(size_t place) const;
    bool isOnlyNamed(size_t place, const Repeat &repeat) const;
    Repeat onDayOfEachMonth(size_t place) const;
    Repeat onEachWeekday(size_t place) const;
    Repeat onSeveralWeekdays(size_t place) const;
    Repeat onLastDay(int count) const;
    Repeat ofOrdinalDay(const OrdinalDay &day, int count) const;
    size_t onDayOfMonth(size_t place, size_t otherwise, Repeat &repeat) const;
    size_t onDayOfYear(size_t place, size_t otherwise, int interval, Repeat &repeat) const;
    size_t readEnd(size_t place, RecurrenceRule &rule) const;
    Counted ordinalAt(size_t place) const;
    DaysOfMonth daysOfMonthAt(size_t place, bool hasLead) const;
    void repeatOn(const std::vector<int> &daysOfMonth, Repeat &repeat) const;
    OrdinalDay ordinalDayAt(size_t place) const;
    OptionalDate nextOrdinalDay(const OrdinalDay &day, Date start) const;
    Weekdays weekdaysAt(size_t place, CaptureWords::Meaning meaning, bool canBeWeak) const;
    void beginRepeat();

    const CaptureWords &dictionary;
    const CaptureLine::Names &names;
    const QString &line;
    const std::set<int> &literal;
    Calendar calendar = Calendar::current();
    Date now;
    Date today;
    std::vector<Word> words;
    std::vector<QString> folded;
    std::vector<bool> isTaken;
    std::optional<int> lengthInMinutes;
    /// The time as it was said, where a part of the day can still move it.
    std::optional<int> spoken;
    bool hasDayPart = false;
    bool mustBeDate;
    OptionalDate firstOfRepeat;
    Capture result;
    std::set<CapturePiece::Kind> known;
};

#pragma once

#include "records/capture/CaptureLine.h"
#include "records/capture/CaptureWords.h"

#include <QRegularExpression>

/// Reads one line, word by word. It lives as long as the reading.
class CaptureReader
{
public:
    static constexpr int minutesOfDay = 24 * 60;

    CaptureReader(const CaptureWords &dictionary, const CaptureLine::Names &knownNames, Date now,
                  const QString &text, const std::set<int> &literalPlaces);

    Capture read();

private:
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
    };
    struct Times
    {
        int count = 0;
        int minute = 0;
        std::optional<int> last = {};
    };
    struct Clock
    {
        int count = 0;
        int minute = 0;
        /// "5" in "5-6pm" takes its half of the day from what follows.
        bool isBare = false;
    };
    struct Repeat
    {
        int count = 0;
        std::optional<RecurrenceRule> rule = {};
        /// The day of the month on which it begins, if that was said.
        OptionalDate first = {};
    };

    void split();
    std::span<const QString> from(size_t place) const;
    std::optional<CaptureWords::Match> match(size_t place,
                                             std::initializer_list<CaptureWords::Meaning> meanings) const;
    /// Whether a word can be read: inside of the line, not quoted, not taken back.
    bool isFree(size_t place) const;
    bool takeName(size_t &place);
    bool takePriority(size_t &place);
    bool takePlace(size_t &place);
    bool takeRepeat(size_t &place);
    bool takeDate(size_t &place);
    bool takeTime(size_t &place);
    bool takeLength(size_t &place);
    void note(CapturePiece::Kind kind, size_t first, size_t count);

    Days daysAt(size_t place) const;
    Days dayAt(size_t place, bool mustBeDate) const;
    Days ofMatch(const CaptureWords::Match &match) const;
    Days numericDay(size_t place, bool isAfterPreposition) const;
    Days dayAndMonth(size_t place) const;
    Times timesAt(size_t place) const;
    Clock clockAt(size_t place, bool isAfterPreposition) const;
    Repeat repeatAt(size_t place) const;
    Repeat everyAt(size_t place) const;
    size_t readEnd(size_t place, Repeat &repeat) const;

    OptionalDate dayOf(int year, int month, int day) const;
    OptionalDate nextDay(int month, int day) const;
    OptionalDate nextDayOfMonth(int day) const;
    Date nextWeekday(int weekday, bool canBeToday) const;
    Date ahead(CalendarUnit unit, int amount) const { return calendar.dateByAdding(unit, amount, today); }
    /// What was read as a time has nothing to belong to, and goes back into the title.
    void giveBackTimes();
    void finish();
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
    OptionalDate firstOfRepeat;
    Capture result;
    std::set<CapturePiece::Kind> known;
};

#pragma once

#include "foundation/Date.h"
#include "recurrence/RecurrenceRule.h"
#include "store/entities/Entities.h"
#include "store/entities/TaskValues.h"

#include <functional>
#include <optional>
#include <set>
#include <vector>

class CaptureWords;

/// One part of a captured line that was understood, for the one who types it.
struct CapturePiece
{
    enum class Kind { Date, Time, Repeat, Priority, Category, Project, Person, Place };

    Kind kind;
    /// Its place in the line.
    int from = 0;
    int length = 0;

    bool operator==(const CapturePiece &) const = default;
};

/// What a line of words says about a task. Everything that was not understood is its title.
struct Capture
{
    QString title;
    /// The first and the last day, at their beginnings. Absent without a date.
    OptionalDate day = {};
    OptionalDate lastDay = {};
    /// Minutes after midnight.
    std::optional<int> minute = {};
    std::optional<int> lastMinute = {};
    bool isSomeday = false;
    /// Begins at the day and time of the task.
    std::optional<RecurrenceRule> repeat = {};
    std::optional<Priority> priority = {};
    CategoryPtr category = {};
    ProjectPtr project = {};
    ContactPtr person = {};
    /// Null for none.
    QString place = {};
    /// In the order of the line.
    std::vector<CapturePiece> pieces = {};
};

/// Reads lines such as "Call Ada tomorrow 5pm #Work !!" and "Miete jeden 1. um 9 +Wohnung".
///
/// '#' names a category, '+' a project, '@' a person; "!", "!!" and "!!!" are priorities, "place:" or "ort:"
/// says where. Each kind is taken once; what comes a second time, what is unknown and what stands in
/// quotation marks stays in the title as it was typed. Dates without a year are those that come next.
class CaptureLine
{
public:
    /// Finds a record by the beginning of a text: the one with the longest name that the text begins with,
    /// and how many letters of the text that is; null if there is none.
    template <typename Pointer>
    using Finder = std::function<std::pair<Pointer, int>(QStringView)>;

    struct Names
    {
        Finder<CategoryPtr> category;
        Finder<ProjectPtr> project;
        Finder<ContactPtr> person;
        /// The names in the store.
        static Names ofStore();
    };

    /// \param now what "today" and "in 2 hours" go by.
    CaptureLine(const CaptureWords &dictionary, Names knownNames, Date now);
    /// With the words of the user and the names in the store, at this moment.
    static CaptureLine ofUser();

    /// \param literal places in the line at which nothing is to be understood: pieces that were taken back.
    Capture read(const QString &line, const std::set<int> &literal = {}) const;
    /// Reads words that can be nothing but a date: "sat" and "15." count, which are mostly something else in
    /// a line of words.
    Capture readDate(const QString &text) const;

private:
    const CaptureWords &words;
    Names names;
    Date moment;
};

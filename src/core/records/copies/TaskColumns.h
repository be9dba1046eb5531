#pragma once

#include "objectstore/StoreChanges.h"
#include "records/copies/MVTask.h"

#include <algorithm>
#include <string_view>
#include <tuple>

/// What a task consists of, value by value: where each stands in a row and in its working copy, and which
/// part it takes in what is done with all of them.
namespace taskcolumns {

/// Between a row and its working copy.
enum class Copied {
    Never,
    /// Read into the copy. What writes it to the row is not a save of the copy.
    FromRow,
    BothWays,
};

/// Whether a copy with another value than its row is a changed task.
enum class Difference { Ignored, Counts };

/// With which other values it follows the row while the task is edited: all of them, or none if the edit has
/// changed one.
enum class Follows { Nothing, Alone, WithDates, WithStatus, WithDelegate, WithCalendar };

/// Among the rows of a series.
enum class InSeries {
    /// Each row has its own.
    Own,
    /// All have the same, and no calendar keeps it.
    Shared,
    /// All have the same, and new rows get it from the calendar.
    KeptByCalendar,
    /// What the rows of one series are known by. New rows take it; an edit has no other to carry.
    NamesSeries,
};

/// What is kept up to date with it beside the row.
enum class FollowedBy {
    Nothing,
    /// The texts by which the task is found.
    Search,
    /// The messages that appear for its alerts.
    Alerts,
    SearchAndAlerts,
};

/// One value of a task.
template <typename ValueType, typename Argument>
struct Column
{
    ValueType MVTask::*member;
    ValueType (EntityTask::*read)() const;
    void (EntityTask::*write)(Argument);
    /// In the store.
    std::string_view name;
    Copied copied;
    Difference difference;
    Follows follows;
    InSeries inSeries;
    FollowedBy followedBy;

    ValueType of(const EntityTask &row) const { return (row.*read)(); }
    void set(EntityTask &row, const ValueType &value) const { (row.*write)(value); }
};

template <typename ValueType, typename Argument>
Column(ValueType MVTask::*, ValueType (EntityTask::*)() const, void (EntityTask::*)(Argument),
       std::string_view, Copied, Difference, Follows, InSeries, FollowedBy) -> Column<ValueType, Argument>;

#define TASK_COLUMN(name, setter, copied, difference, follows, inSeries, followedBy)                         \
    Column                                                                                                   \
    {                                                                                                        \
        &MVTask::name, &EntityTask::name, &EntityTask::setter, #name, copied, difference, follows, inSeries, \
            FollowedBy::followedBy                                                                           \
    }

inline constexpr auto all = [] {
    using enum Copied;
    using enum Difference;
    using enum Follows;
    using enum InSeries;
    return std::tuple{
        TASK_COLUMN(title, setTitle, BothWays, Counts, Alone, KeptByCalendar, SearchAndAlerts),
        TASK_COLUMN(details, setDetails, BothWays, Counts, Alone, KeptByCalendar, Search),
        TASK_COLUMN(type, setType, BothWays, Counts, WithDates, Shared, Nothing),
        TASK_COLUMN(status, setStatus, BothWays, Counts, WithStatus, Shared, Alerts),
        TASK_COLUMN(priority, setPriority, BothWays, Counts, Alone, Shared, Nothing),
        TASK_COLUMN(startDate, setStartDate, BothWays, Counts, WithDates, Own, Nothing),
        TASK_COLUMN(dueDate, setDueDate, BothWays, Counts, WithDates, Own, Nothing),
        TASK_COLUMN(dueSomeDay, setDueSomeDay, BothWays, Counts, WithDates, Own, Nothing),
        TASK_COLUMN(creationDate, setCreationDate, FromRow, Ignored, Nothing, Own, Nothing),
        TASK_COLUMN(lastModificationDate, setLastModificationDate, BothWays, Counts, Alone, Shared, Nothing),
        TASK_COLUMN(expirationDate, setExpirationDate, FromRow, Ignored, WithStatus, Own, Nothing),
        TASK_COLUMN(position, setPosition, FromRow, Counts, Alone, Own, Nothing),
        TASK_COLUMN(rowIndex, setRowIndex, Never, Ignored, Nothing, Own, Nothing),
        TASK_COLUMN(alert, setAlert, BothWays, Counts, WithDates, Own, Alerts),
        TASK_COLUMN(secondAlert, setSecondAlert, BothWays, Counts, WithDates, Own, Alerts),
        TASK_COLUMN(repeat, setRepeat, BothWays, Counts, WithDates, Own, Nothing),
        TASK_COLUMN(endRepeat, setEndRepeat, BothWays, Counts, WithDates, Own, Nothing),
        TASK_COLUMN(repeatInfoUser, setRepeatInfoUser, BothWays, Counts, Alone, Own, Nothing),
        TASK_COLUMN(calendarID, setCalendarID, BothWays, Counts, Alone, NamesSeries, Alerts),
        TASK_COLUMN(typeCalendarID, setTypeCalendarID, BothWays, Counts, WithCalendar, Shared, Nothing),
        TASK_COLUMN(calendarTitle, setCalendarTitle, BothWays, Counts, WithCalendar, Shared, Nothing),
        TASK_COLUMN(colorCalendarR, setColorCalendarR, BothWays, Counts, WithCalendar, Shared, Nothing),
        TASK_COLUMN(colorCalendarG, setColorCalendarG, BothWays, Counts, WithCalendar, Shared, Nothing),
        TASK_COLUMN(colorCalendarB, setColorCalendarB, BothWays, Counts, WithCalendar, Shared, Nothing),
        TASK_COLUMN(colorCalendarA, setColorCalendarA, BothWays, Counts, WithCalendar, Shared, Nothing),
        TASK_COLUMN(allowsContentModifications, setAllowsContentModifications, BothWays, Counts, Alone,
                    Shared, Nothing),
        TASK_COLUMN(remindID, setRemindID, BothWays, Counts, Alone, Own, Nothing),
        TASK_COLUMN(wasCreatedOffCalendar, setWasCreatedOffCalendar, BothWays, Counts, Alone, Own, Nothing),
        TASK_COLUMN(delegatedSince, setDelegatedSince, Never, Ignored, Nothing, Own, Nothing),
        TASK_COLUMN(lastAsked, setLastAsked, Never, Ignored, Nothing, Own, Nothing),
        TASK_COLUMN(category, setCategory, BothWays, Counts, Alone, Shared, Search),
        TASK_COLUMN(company, setCompany, BothWays, Counts, WithDelegate, Shared, Search),
        TASK_COLUMN(delegateToUser, setDelegateToUser, BothWays, Counts, WithDelegate, Shared, Search),
        TASK_COLUMN(location, setLocation, BothWays, Counts, Alone, Shared, Search),
        TASK_COLUMN(project, setProject, BothWays, Counts, Alone, Shared, Search),
        TASK_COLUMN(tags, setTags, BothWays, Ignored, Alone, Own, Nothing),
    };
}();

#undef TASK_COLUMN

/// Calls `visit` with each column.
template <typename Visit>
constexpr void forEach(Visit visit)
{
    std::apply([&visit](const auto &...columns) { (visit(columns), ...); }, all);
}

/// Whether a value in one of the columns of an update is followed by it.
inline bool concern(const StoreChanges::Update &update, FollowedBy follower)
{
    bool isConcerned = false;
    forEach([&](const auto &column) {
        const bool isFollowed =
            column.followedBy == follower || column.followedBy == FollowedBy::SearchAndAlerts;
        const int place = isFollowed ? update.object->entity().columnOf(column.name) : -1;
        isConcerned = isConcerned || (place >= 0 && update.columns.test(static_cast<size_t>(place)));
    });
    return isConcerned;
}

/// Whether the table has an attribute or a relationship of a task exactly once.
constexpr bool holds(std::string_view name)
{
    int count = 0;
    forEach([&count, name](const auto &column) { count += column.name == name ? 1 : 0; });
    return count == 1;
}

static_assert(std::ranges::all_of(EntityTask::attributeTable, holds, &AttributeDescription::name),
              "an attribute of a task is missing from the table");
static_assert(std::ranges::all_of(EntityTask::relationshipTable, holds, &RelationshipDescription::name),
              "a relationship of a task is missing from the table");

/// Whether two values say the same.
template <typename Value>
bool isSame(const Value &one, const Value &other)
{
    return one == other;
}

/// A null text and an empty one do.
inline bool isSame(const QString &one, const QString &other)
{
    return one.isEmpty() ? other.isEmpty() : one == other;
}

} // namespace taskcolumns

#pragma once

#include "eventkit/EKEvent.h"
#include "records/copies/MVTask.h"

#include <vector>

/// The rows of one series: the occurrences of a repeating task that stand in the store.
namespace series {

/// How far the alerts of a task lie from its base date, in seconds, as they were before an edit.
struct AlertOffsets
{
    double alert = 0;
    double secondAlert = 0;

    static AlertOffsets of(const EntityTask &task);
};

/// All other rows that name the same calendar item; none for a task that names none.
std::vector<TaskPtr> otherRows(const EntityTask &task);

/// The events of a row's identifier: inside the window, and wherever they are on the days of the row and on
/// the day that it had before an edit. Where several calendars have it, those of the row's own calendar,
/// unless it has none there. An error, and not none, if they cannot be read.
Result<std::vector<EKEvent>> eventsOf(const EntityTask &task, OptionalDate formerDate = {});

/// Whether a row of the same series lies after another.
bool isLater(const EntityTask &row, const EntityTask &task);

/// What all rows of a series share and no calendar keeps, as one row has it.
class SharedFields
{
public:
    explicit SharedFields(const EntityTask &task);
    /// A row that thereby becomes done and does not say when was done now.
    void writeTo(EntityTask &row) const;

private:
    /// A copy that has no row.
    MVTask values;
};

/// Copies alerts to a row by their distance from its own base date; those of a ToDo by their time of day.
void copyAlerts(const EntityTask &from, EntityTask &row, const AlertOffsets &offsets);

/// Copies an edit of one occurrence to a row of its series, which keeps its own day.
void copyEdit(const EntityTask &from, EntityTask &row, const AlertOffsets &offsets);
/// Copies an edit of one occurrence to the other rows of its series, each of which keeps its own day. One
/// that was saved alone, or says something else than most, keeps its title and notes.
void copyEditToOthers(const EntityTask &from);

} // namespace series

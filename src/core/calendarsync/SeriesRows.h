#pragma once

#include "store/entities/Entities.h"

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

/// Whether a row of the same series lies after another.
bool isLater(const EntityTask &row, const EntityTask &task);

/// Copies an edit of one occurrence to a row of its series, which keeps its own day.
void copyEdit(const EntityTask &from, EntityTask &row, const AlertOffsets &offsets);

} // namespace series

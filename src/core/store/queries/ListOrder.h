#pragma once

#include "objectstore/Value.h"
#include "store/entities/Entities.h"

#include <optional>
#include <vector>

/// The orders of task lists, on keys rather than on tasks, so that a list can be put in order without loading
/// it.
namespace listorder {

/// What one task's place depends on.
struct Key
{
    RowId row = 0;
    /// The effective date, absent for an undated task.
    OptionalDate date;
    bool isSomeday = false;
};

/// Turns due dates into effective ones: the end of its day for a ToDo (also one without a type), else the
/// moment itself. Remembers the last day, since rows come day by day.
class EffectiveDates
{
public:
    OptionalDate due(std::optional<TaskType> type, OptionalDate dueDate);
    /// The effective start: the due date of an Email/Call, the start of an Appointment, else the end of the
    /// start day.
    OptionalDate start(std::optional<TaskType> type, OptionalDate startDate, OptionalDate dueDate);

private:
    Date endOfDay(Date date);

    OptionalDate dayStart;
    Date dayEnd;
};

/// Whether the first row comes after the second by due date. False also where the two are equal or cannot be
/// compared.
bool isAfterByDue(const Key &first, const Key &second);
/// The same by start, for which undated rows never come after another.
bool isAfterByStart(const Key &first, const Key &second);

/// A merge sort for comparisons that only tell "after" and "not after": what is not after keeps its place.
template <typename T, typename IsAfter>
void sortOneSided(std::vector<T> &items, IsAfter isAfter)
{
    std::vector<T> other(items.size());
    for (size_t width = 1; width < items.size(); width *= 2) {
        for (size_t start = 0; start < items.size(); start += 2 * width) {
            const size_t middle = std::min(start + width, items.size());
            const size_t end = std::min(start + 2 * width, items.size());
            size_t left = start;
            size_t right = middle;
            for (size_t place = start; place < end; ++place) {
                const bool takesRight = left == middle || (right < end && isAfter(items[left], items[right]));
                other[place] = std::move(takesRight ? items[right++] : items[left++]);
            }
        }
        items.swap(other);
    }
}

} // namespace listorder

#pragma once

#include "store/queries/DBWorker.h"
#include "store/queries/ListType.h"

#include <QString>

#include <optional>

/// On which lists a task stands at this moment, and by which rule, in words. The rules are those by which the
/// lists fetch. Main thread only.
class TaskPlacement
{
public:
    explicit TaskPlacement(TaskPtr placedTask);

    /// The list that a search goes to for a task.
    static ListType searchList(const EntityTask &task);
    /// The shown title of a list.
    static QString titleOf(ListType list);

    /// Whether a list shows the task. A filter that is absent or off leaves nothing out.
    bool isOn(ListType list, const FilterEntry *filter = nullptr) const;
    /// The condition that keeps the task off a list, as a clause ("it has no start date"); empty if it is on
    /// it. The list's own conditions come before those of a filter.
    QString reasonOff(ListType list, const FilterEntry *filter = nullptr) const;
    /// What puts the task on a list, as a clause; what it says is true only of a list that it is on.
    QString reasonOn(ListType list) const;
    /// The list to look for the task on: that of a search if the task is on it, else the first one that has
    /// it; absent for a task that no list shows.
    std::optional<ListType> home() const;

    /// Why the task is on the shown list, or else which list it is on and why it is not on this one.
    /// \param shown absent where no list is shown.
    QString explanation(std::optional<ListType> shown, const FilterEntry *filter = nullptr) const;

private:
    QString filterReasonOff(const FilterEntry &filter) const;
    QString whereItIs() const;

    TaskPtr task;
};

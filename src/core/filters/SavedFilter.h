#pragma once

#include "store/queries/DBWorker.h"

#include <QString>

/// Where the filter of one list stands in the defaults. What else stands there is left as it is. The sample
/// store has filters of its own.
class SavedFilter
{
public:
    /// Of the task list of that type (`type` of its controller).
    static SavedFilter ofTasks(int type);
    static SavedFilter ofProjects();
    static SavedFilter ofContacts();

    /// The entry; an empty one if there is none or what is there is none.
    FilterEntry entry() const;
    /// Whether an entry says that it is to be applied.
    static bool isEnabled(const FilterEntry &entry);
    /// Puts an entry in its place and writes the defaults.
    void store(const FilterEntry &entry) const;
    /// Puts the entry there that constrains nothing. Lists that have no filter get none.
    void storePristine() const;

private:
    SavedFilter(QString defaultsKey, QString listKey, FilterEntry (*pristineEntry)());

    /// Under which it stands for the store in use.
    QString keyInUse() const;
    bool canBeFiltered() const;

    QString key;
    /// The place among the filters of several lists; empty if the filter stands alone.
    QString list;
    FilterEntry (*pristine)();
};

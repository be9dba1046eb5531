#pragma once

#include "store/queries/RowsWatcher.h"
#include "store/queries/TaskRows.h"

/// One row of a list of Home: the header of a day, a task, a project, or what an empty list says instead. A
/// record that was deleted since the list was made is null.
using HomeRow = std::variant<DayHeader, TaskPtr, ProjectPtr, EntityNotValue>;

/// The rows of one of the two lists of Home. A task or project stands on each of the days that it has among
/// its own, and is loaded when its row is looked at.
class HomeRows
{
public:
    enum class Kind { Day, Task, Project, Notice };

    /// A row as the list places it.
    struct Place
    {
        Kind kind = Kind::Notice;
        /// What the store calls the record; 0 for a row that is none.
        RowId row = 0;
        /// The start of the day that it stands under; absent in a list without days.
        OptionalDate day = {};
        /// Which of the days of the list that is, from 0.
        int dayIndex = 0;
        /// Whether it is a task of a project with a title.
        bool hasProject = false;
        bool operator==(const Place &) const = default;
    };

    HomeRows() = default;
    /// Without a place, the list is the one row that says so.
    explicit HomeRows(std::vector<Place> all);

    int size() const { return static_cast<int>(places.size()); }
    const Place &placeAt(int row) const { return places[static_cast<std::size_t>(row)]; }
    HomeRow at(int row) const;
    /// The task or project at a row; null if the row is something else, or its record is gone.
    ObjectPtr recordAt(int row) const;
    /// The first row of a record, or -1.
    int rowOf(const ManagedObject &record) const;
    /// What the row is called as long as it exists; never 0.
    quint64 keyAt(int row) const;

    /// Becomes the wanted rows step by step: those that stay in their order are not touched.
    void follow(const HomeRows &wanted, RowsWatcher &watcher);

private:
    void load() const;
    void replace(int first, int removed, std::vector<Place> added);

    std::vector<Place> places;
    /// The records of all rows, once one was asked for; a list has no object where the other one has.
    mutable TaskList tasks;
    mutable ObjectList<EntityProject> projects;
    mutable bool isLoadedOld = true;
};

#pragma once

#include "store/entities/Entities.h"

#include <unordered_set>

class TableViewExtended;
class TaskListModel;

/// What was selected in a task list, so that it can be selected again after the list was fetched anew.
class SelectionMemory
{
public:
    static SelectionMemory of(const TableViewExtended &view, const TaskListModel &model);

    /// What is selected where all tasks have left the list.
    enum class Otherwise { Neighbour, Nothing };

    /// Selects the tasks that are still in the list; if none is, on request the task at the row where the
    /// first of them was.
    void restore(TableViewExtended &view, const TaskListModel &model, Otherwise otherwise) const;

    /// Selects the task at a row or below, or else the last one above it.
    static void selectNear(TableViewExtended &view, const TaskListModel &model, int row);

private:
    std::unordered_set<RowId> tasks;
    TaskPtr currentTask;
    int firstRow = -1;
    int scrollValue = 0;
};

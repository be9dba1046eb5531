#pragma once

#include "filters/ListFilter.h"

/// The filter of a task list. There is no row for "Tags": the popover cannot set them.
class TasksFilter : public ListFilter
{
public:
    explicit TasksFilter(int tasksType = 0);

    /// Whether the list of that `type` has a filter.
    static bool isFilterable(int type);

    /// The `type` of the list whose filter this is.
    void setTasksType(int type);
    int tasksType() const { return listType; }

private:
    int listType;
};

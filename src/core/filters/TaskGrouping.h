#pragma once

/// By what a task list was last grouped: the selected segment of its grouping control, kept in the defaults.
class TaskGrouping
{
public:
    /// `groupedType` of the list; -1 for one that cannot be grouped.
    explicit TaskGrouping(int groupedType)
        : listType(groupedType)
    {}

    /// 0 category, 1 project, 2 priority; -1 for none, also where the defaults hold something else.
    int selectedIndex() const;
    /// Keeps the choice; those of the other lists stay. Nothing for a list that cannot be grouped.
    void setSelectedIndex(int index) const;

private:
    int listType;
};

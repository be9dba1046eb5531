#pragma once

#include <QString>

#include <memory>
#include <optional>

class EntityTask;

/// The lists that a task row can stand in; the numbers are those of the saved filters.
enum class ListType {
    Inbox = 0,
    Today = 1,
    Scheduled = 2,
    Someday = 3,
    Categories = 4,
    Delegated = 5,
    NotDone = 6,
    Done = 7,
    Home = 8,
    ProjectDetail = 9,
};

/// What a row of a task list shows of a task.
struct TaskRowContent
{
    QString title;
    /// The project's title; shown in the table of a project only.
    QString project;
    /// When it is due or starts, in words.
    QString dateLabel;
    bool isOverdue = false;
    /// False on a calendar that cannot be written: no check box and no priority are shown.
    bool hasCheckBox = true;
    bool isChecked = false;
    /// 0 High, 1 Medium, 2 Low, 3 none.
    int priority = 3;

    /// What a task shows in a list of that kind at this moment.
    static TaskRowContent of(const EntityTask &task, ListType list);
};

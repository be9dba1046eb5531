#pragma once

#include "store/entities/TaskValues.h"
#include "store/queries/ListType.h"

#include <QString>

#include <memory>
#include <vector>

class EntityCategory;
class EntityTask;

/// Where a task belongs, or how long somebody has had it, of which its row tells below the title.
struct TaskRowDetail
{
    enum class Kind { Category, Project, Person, Company, Place, Waiting };

    Kind kind = Kind::Category;
    QString text;
    /// For its colour, if it is one.
    std::shared_ptr<EntityCategory> category;
};

/// What a row of a task list shows of a task.
struct TaskRowContent
{
    QString title;
    /// The project's title; shown in the table of a project only.
    QString project;
    /// When it is due or starts, in words.
    QString dateLabel;
    /// Never of what is done.
    bool isOverdue = false;
    /// False on a calendar that cannot be written: no check box and no priority are shown.
    bool hasCheckBox = true;
    bool isChecked = false;
    Priority priority = Priority::None;
    bool repeats = false;
    bool hasNote = false;
    /// In the order of their kinds. The project is not among them in the table of a project.
    std::vector<TaskRowDetail> details;

    /// What a task shows in a list of that kind at this moment.
    static TaskRowContent of(const EntityTask &task, ListType list);
    /// Where it belongs; without its project in the table of one.
    static std::vector<TaskRowDetail> detailsOf(const EntityTask &task, ListType list);
};

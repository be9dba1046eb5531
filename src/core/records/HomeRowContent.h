#pragma once

#include "foundation/Date.h"

#include "records/TaskRowContent.h"

#include <QString>

#include <vector>

class EntityProject;
class EntityTask;

/// What a row of the lists of Home shows of a task or project at this moment.
struct HomeRowContent
{
    QString title;
    /// The title of the project that a task belongs to; empty for none.
    QString project = {};
    /// When it is, in words.
    QString dateLabel = {};
    enum class DateLook { Plain, AllDay, Late } dateLook = DateLook::Plain;
    /// What stands before the words of the date.
    enum class DateIcon { None, ToDo, Project } dateIcon = DateIcon::None;
    /// Where a task belongs beside its project.
    std::vector<TaskRowDetail> details = {};
    bool repeats = false;
    bool hasNote = false;
    /// Whether the title is struck through.
    bool isDone = false;
    /// Whether it can be ticked in its row: a task on a calendar that can be written.
    bool hasCheckBox = false;

    /// A task in the list of those overdue: when it was due, "Yesterday" by its name.
    static HomeRowContent ofOverdue(const EntityTask &task);
    /// A task under one of its days: the hour at which it begins, or that it is for the whole day.
    static HomeRowContent ofWeek(const EntityTask &task);
    static HomeRowContent ofWeek(const EntityProject &project);

    /// The header of a day in capitals: "SAT, TODAY", "MON, NOV 23, 2026".
    static QString dayTitle(Date day);
    /// What a screen reader says of the row, but the tick, which it says itself.
    QString spoken() const;
};

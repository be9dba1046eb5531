#pragma once

#include "eventkit/EKStructuredLocation.h"
#include "foundation/Date.h"
#include "records/exchange/CalendarFile.h"
#include "store/entities/TaskValues.h"

#include <QStringList>

#include <optional>
#include <vector>

/// What an iCalendar component says of a task, in the terms of a task: the counterpart of `TaskComponents`.
struct ImportedTask
{
    QString title;
    QString details;
    TaskType type = TaskType::ToDo;
    OptionalDate start;
    OptionalDate due;
    bool isSomeday = false;
    TaskStatus status = TaskStatus::Open;
    Priority priority = Priority::None;
    /// When it was made, revised last, and done.
    OptionalDate created;
    OptionalDate revised;
    OptionalDate done;

    /// CATEGORIES of other programs do not tell a category from tags; those of this one name both.
    bool hasOwnCategory = false;
    QString category;
    QStringList tags;
    QString place;
    std::optional<GeoLocation> position;
    /// The first two alarms; the first can be absent where there is a second.
    std::vector<OptionalDate> alerts;
    /// The rule as a task keeps it; empty for none.
    QString rule;
    OptionalDate ruleEnd;
    /// The days that the rule gives and that are left out, and those that were edited alone.
    std::vector<Date> excluded;
    struct Edit;
    std::vector<Edit> edits;

    QString person;
    /// Since when that person has it, and when they were last asked about it.
    OptionalDate delegatedSince;
    OptionalDate lastAsked;
    /// Somebody of whom another program has written, in words of its own.
    QString contactWords;
    QString company;
    QString project;
    QString projectUid;
    /// The title of the calendar that it is to lie in, and its place in the Inbox; as tables say them.
    QString calendar;
    std::optional<int> placeInInbox;
    bool isCancelled = false;
    /// Something that a task cannot hold: further alarms, dates beside the rule, a rule by hours.
    bool isPartial = false;

    /// Absent for an event without a date that can be read.
    static std::optional<ImportedTask> of(const CalendarFile::Object &object);
    /// The same task at another of its dates.
    ImportedTask movedTo(Date date) const;
};

/// An occurrence that was edited alone.
struct ImportedTask::Edit
{
    /// When the series has it.
    Date original;
    ImportedTask task;
};

#pragma once

#include "records/TaskRowContent.h"
#include "store/entities/Entities.h"

#include <optional>

/// What was marked in a calendar for a new task.
struct MarkedSpan
{
    Date start;
    Date due;
};

/// In which part of a calendar it was marked; the numbers are those by which calendars ask.
enum class TimePeriod { Timed = 0, AllDay = 1 };

/// With what a new task begins.
struct NewTaskRequest
{
    /// The list it is made from.
    std::optional<ListType> typeTask = {};
    OptionalDate createWithStartDate = {};
    OptionalDate createWithDueDate = {};
    ProjectPtr createWithProject = {};
    ContactPtr createWithContact = {};
    CompanyPtr createWithCompany = {};
    /// Null for the category that new tasks have anyway.
    CategoryPtr createWithCategory = {};
    TaskType type = TaskType::ToDo;
    /// Whether it may be a ToDo.
    bool showTodo = true;

    /// What was marked among whole days begins as a ToDo; among hours it can be anything else.
    static NewTaskRequest ofCalendar(const MarkedSpan &span, TimePeriod period);
    /// What makes it belong to a list: from Today it is for today, from Scheduled for tomorrow.
    static NewTaskRequest ofList(ListType list, Date now);
    /// A ToDo for today, from wherever no list says otherwise.
    static MarkedSpan today(Date now);
};

#pragma once

#include "records/TaskRowContent.h"
#include "store/entities/Entities.h"

#include <optional>

/// With what a new task begins.
struct NewTaskRequest
{
    /// The list it is made from.
    std::optional<ListType> typeTask = {};
    OptionalDate createWithStartDate = {};
    OptionalDate createWithDueDate = {};
    ProjectPtr createWithProject = {};
    ContactPtr createWithContact = {};
    /// Counts only beside a contact.
    CompanyPtr createWithCompany = {};
    /// Null for the category that new tasks have anyway.
    CategoryPtr createWithCategory = {};
    TaskType type = TaskType::ToDo;
    /// Whether it may be a ToDo.
    bool showTodo = true;
};

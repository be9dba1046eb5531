#pragma once

/// What of a task can change in a form.
enum class TaskField {
    Title,
    Calendar,
    Type,
    Category,
    Status,
    Priority,
    StartDate,
    DueDate,
    DueSomeDay,
    Repeat,
    EndRepeat,
    Alert,
    SecondAlert,
    Location,
    Details,
    Delegate,
    Company,
    Project,
};

/// The rows of the form in their order; the numbers are their tags.
enum class TaskFormRow {
    Title = 1,
    Calendar,
    Type,
    Category,
    Status,
    Priority,
    StartDate,
    EndDate,
    Repeat,
    EndRepeat,
    Alert,
    SecondAlert,
    Location,
    Details,
    Contacts,
    Company,
    Project,
};

#pragma once

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

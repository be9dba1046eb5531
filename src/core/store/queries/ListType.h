#pragma once

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

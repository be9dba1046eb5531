#pragma once

#include <array>
#include <optional>

// The numbers that tasks and projects hold in their columns. Another program may have stored a number that
// has no name here: it stays what it is, and has no word.

/// The type of a task; its rules for dates hang on it.
enum class TaskType { ToDo = 0, Appointment = 1, EmailCall = 2 };
enum class TaskStatus { Open = 0, InProgress = 1, Pending = 2, Done = 3 };
enum class Priority { High = 0, Medium = 1, Low = 2, None = 3 };

/// What an edit of one occurrence of a series reaches. The numbers are those of the calendar store.
enum class Span { ThisTask = 0, FutureTasks = 1 };

// All that have a name, in the order of their numbers.
inline constexpr std::array allTaskTypes = {TaskType::ToDo, TaskType::Appointment, TaskType::EmailCall};
inline constexpr std::array allTaskStatuses = {TaskStatus::Open, TaskStatus::InProgress, TaskStatus::Pending,
                                               TaskStatus::Done};
inline constexpr std::array allPriorities = {Priority::High, Priority::Medium, Priority::Low, Priority::None};

/// Whether the dates of a task of that stored type are moments. Those of a ToDo are days, and what has no
/// type is a ToDo.
constexpr bool isMoment(std::optional<TaskType> type)
{
    return type == TaskType::Appointment || type == TaskType::EmailCall;
}

#pragma once

#include <optional>

// The numbers that a task holds in its columns.

/// The type of a task; its rules for dates hang on it.
enum class TaskType { ToDo = 0, Appointment = 1, EmailCall = 2 };
enum class TaskStatus { Open = 0, InProgress = 1, Pending = 2, Done = 3 };
enum class Priority { High = 0, Medium = 1, Low = 2, None = 3 };

/// Whether the dates of a task of that stored type are moments. Those of a ToDo are days, and what has no
/// type is a ToDo.
constexpr bool isMoment(std::optional<int> type)
{
    return type == static_cast<int>(TaskType::Appointment) || type == static_cast<int>(TaskType::EmailCall);
}

#pragma once

/// What a calendar holds, and what the user gives access to.
enum class EKEntityType { Event = 0, Reminder = 1 };

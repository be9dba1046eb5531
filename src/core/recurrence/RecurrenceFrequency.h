#pragma once

/// The base unit of a repetition; the numbers are those that the editor stores.
enum class RecurrenceFrequency {
    yearly = 0,
    monthly = 1,
    weekly = 2,
    daily = 3,
    hourly = 4,
    minutely = 5,
    secondly = 6
};

#pragma once

#include "store/entities/Entities.h"

#include <QString>

#include <vector>

/// The birthdays of people, year after year. Who was born on 29 February has the last day of the month in
/// other years. Stateless; main thread only.
class Birthdays
{
public:
    struct Birthday
    {
        RowId contact;
        QString name;
        /// The start of the day.
        Date day;
        /// How old they become; absent where the year is not one that a living person can be born in.
        std::optional<int> age;
    };

    Birthdays() = delete;

    /// Those from one day to another, both included, in their order; at most a year. No contact is loaded.
    static std::vector<Birthday> between(Date first, Date last);
    /// "Ada Lovelace, 36".
    static QString inWords(const Birthday &birthday);
};

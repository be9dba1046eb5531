#pragma once

#include "foundation/Date.h"

#include <QStringList>

#include <array>

/// One month on a page of six weeks, beginning with the user's first weekday.
struct MonthPage
{
    static constexpr int columns = 7;
    static constexpr int rows = 6;

    struct Day
    {
        Date start;
        int number = 0;
        bool isInMonth = false;
        bool isToday = false;
    };

    /// The page of the month that a date lies in.
    static MonthPage of(Date date);
    /// The place of the day of a date, or -1 if it is not on the page.
    int indexOf(Date date) const;

    /// The month and the year, in words.
    QString title;
    /// Short names of the weekdays, in the order of the columns.
    QStringList weekdays;
    std::array<Day, columns * rows> days;
};

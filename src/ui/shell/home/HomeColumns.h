#pragma once

#include <QRect>
#include <QSize>

/// Where the three parts of Home stand, written from left to right; a view mirrors them where texts run the
/// other way.
///
/// The calendar keeps what a pane over Home leaves free. The two lists share the rest: side by side, or,
/// where that is too narrow to read, one above the other.
struct HomeColumns
{
    /// The part of the width that a pane over Home covers.
    static constexpr double paneWidth = 0.6485;

    QRect calendar;
    QRect overdue;
    QRect week;
    bool areListsStacked = false;

    static HomeColumns of(const QSize &size);
};

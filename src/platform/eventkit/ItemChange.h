#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// A change of one object of a calendar: what it was and what it is to be, as iCalendar texts.
struct ItemChange
{
    /// By which the one who keeps it knows it; 0 while it is kept nowhere.
    qint64 sequence = 0;
    /// Changes with the same number belong together: if one cannot be written, those behind it are not
    /// either.
    int group = 0;
    QString calendarIdentifier;
    QString uid;
    /// Absent where there is no such object.
    std::optional<QByteArray> before;
    std::optional<QByteArray> after;
    /// What somebody else has changed since stays. Otherwise this change wins, field by field.
    bool yields = false;

    bool operator==(const ItemChange &) const = default;
};

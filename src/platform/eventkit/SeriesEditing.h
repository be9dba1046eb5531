#pragma once

#include "eventkit/EKEvent.h"
#include "eventkit/ItemExpansion.h"

/// Edits of events and series as a whole text for a whole text. Everything that an edit does not concern
/// stays byte by byte; an edit that changes nothing answers the text that was there. `before` is an
/// occurrence as the item has it, `after` the same with changed fields.
class SeriesEditing
{
public:
    struct Edited
    {
        QByteArray text;
        /// Of the occurrence, in the new text.
        qint64 key = 0;
    };

    /// Changes one occurrence of a series, which becomes, or stays, one of its own. The rules of `after` do
    /// not count.
    static Edited withOccurrence(const CalendarItem &item, const ItemOccurrence &occurrence,
                                 const EKEvent &before, const EKEvent &after);

    /// The series from an occurrence on, with the changes, under another UID or its own. Also how a whole
    /// series, by its first occurrence, or an event that does not repeat is changed. Exclusions, dates and
    /// edited occurrences before it are left out, those behind it move along on the wall clock; so does a
    /// rule that names the day which was changed. Edited occurrences that a changed rule no longer has are
    /// dropped.
    static Edited from(const CalendarItem &item, const ItemOccurrence &occurrence, const EKEvent &before,
                       const EKEvent &after, const QString &uid);

    /// An occurrence as an event of its own under another UID, with everything that its component says, and
    /// without its series.
    static Edited alone(const CalendarItem &item, const ItemOccurrence &occurrence, const QString &uid);

    /// The series up to, and without, an occurrence. Absent if nothing is left.
    static std::optional<QByteArray> upTo(const CalendarItem &item, qint64 key);

    /// The series without an occurrence, edited or not. Absent if nothing is left.
    static std::optional<QByteArray> without(const CalendarItem &item, qint64 key);
};

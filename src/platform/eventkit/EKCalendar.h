#pragma once

#include "eventkit/EKEntityType.h"
#include "eventkit/EKSource.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <set>

class EKEventStore;

/// A colour; each part from 0 to 1.
struct EKColor
{
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    bool operator==(const EKColor &) const = default;
};

enum class EKCalendarType { Local = 0, CalDAV = 1, Exchange = 2, Subscription = 3, Birthday = 4 };

/// A calendar of the desktop, as it was when it was asked for. Changes go to the store by `saveCalendar`.
struct EKCalendar
{
    QString title;
    /// Stays the same when the title changes. Empty until the calendar is saved.
    QString calendarIdentifier;
    /// Whether its events may be changed.
    bool allowsContentModifications = true;
    /// Whether the calendar itself may be neither renamed nor removed.
    bool isImmutable = false;
    EKSource source;
    /// Absent where nobody has chosen one.
    std::optional<EKColor> color;
    EKCalendarType type = EKCalendarType::Local;
    std::set<EKEntityType> allowedEntityTypes = {EKEntityType::Event, EKEntityType::Reminder};
    /// The mail addresses under which its owner is invited, without "mailto:". Empty where nobody knows.
    QStringList ownerAddresses;

    /// A calendar that is still to be given a title and a source and then to be saved.
    static EKCalendar calendarForEntityType(EKEntityType entityType, const EKEventStore &eventStore);

    bool operator==(const EKCalendar &) const = default;
};

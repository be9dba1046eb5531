#pragma once

#include "eventkit/EKEventStore.h"
#include "foundation/Date.h"
#include "foundation/NotificationCenter.h"
#include "objectstore/ManagedObject.h"
#include "store/entities/TaskValues.h"

#include <QString>
#include <QStringList>

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

/// What the bridge to the calendar store keeps while the program runs. For its own source files.
namespace calendarstore {

/// How a change that could not be written finds its event later.
struct Unwritten
{
    Span span = Span::ThisTask;
    /// The day on which the event stands.
    OptionalDate day;
};

/// What a row was before a save that is being taken in, of a device that has not got its calendar.
struct BeforeArrival
{
    /// What that device has written.
    ManagedObject::ColumnSet columns;
    QString item;
    QString calendar;
    OptionalDate day;
    bool isOfSeries = false;
    bool isOffCalendar = false;
    /// The row comes back after it had been deleted.
    bool isReturning = false;
};

struct State
{
    std::unique_ptr<EKEventStore> store;
    /// The calendars for events as they were last seen; absent when they must be asked for again.
    std::optional<std::vector<EKCalendar>> calendars;
    /// What `calendarreferences` has read of the settings.
    std::optional<std::map<QString, QStringList>> references;
    /// Whether the store could be asked for them the last time.
    bool isReachable = true;
    Observation storeChanged;
    /// Why repeating tasks may not be edited; empty while they may.
    QString banMessage;
    /// Events that this program wrote, by identifier, with the moment of the change.
    std::map<QString, Date> changedEvents;
    /// Rows whose events could not be read or written by what is not yet committed; by identifier.
    std::map<QString, Unwritten> unwritten;
    /// Rows that another device changes by what is not yet committed; by identifier.
    std::map<QString, BeforeArrival> arriving;
    /// Whether what is not yet committed was kept for later, and is to be tried again soon.
    bool isKeptForLater = false;
    /// Changes that calendars have refused, of which the user was not told yet.
    std::vector<std::vector<ItemChange>> refused;
    /// Whether the user is being asked if many rows may go.
    bool isAskingAboutRows = false;
};

State &state();

/// Of the calendar that the program makes for itself.
inline const QString ownTitle = QStringLiteral("Morvane Pro");

/// Between the references of the chosen calendars.
inline const QString separator = QStringLiteral("Ω");

/// Whether an account is the one that replicates the user's calendars between devices.
bool isCloud(const EKSource &source);

} // namespace calendarstore

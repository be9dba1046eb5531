#pragma once

#include "eventkit/EKCalendar.h"
#include "foundation/Error.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

/// An iCalendar object as it is stored: a VCALENDAR with everything of one UID, the edited occurrences of a
/// series among it, and the zones that it uses.
struct CalendarObject
{
    /// The name in its calendar, such as the name of the file. Empty for an object that was never stored.
    QString name;
    /// Differs after each change, by whomever. Empty for an object that was never stored.
    QByteArray etag;
    QByteArray text;
};

/// Where calendars are kept. It stores and finds whole objects and knows nothing of what they mean:
/// expansion, edits and splits of series are `EKEventStore`'s. Main thread.
///
/// Errors are those of `CalendarError`. A backend that cannot be reached answers Storage, never an empty
/// list.
class CalendarBackend
{
public:
    virtual ~CalendarBackend() = default;

    /// The accounts, those without calendars too.
    virtual Result<std::vector<EKSource>> sources() = 0;
    virtual Result<std::vector<EKCalendar>> calendars() = 0;
    /// The identifier of the calendar for what is made without one; absent if there is none to be written to.
    virtual std::optional<QString> defaultCalendar(EKEntityType entityType) = 0;

    /// All objects of a calendar as they are now. Asked again and again: a backend remembers texts and reads
    /// only what has changed since. One that is there and cannot be read comes without etag and text.
    /// NotFound for an unknown calendar.
    virtual Result<std::vector<CalendarObject>> objects(const QString &calendarIdentifier) = 0;

    /// One object of a calendar as it is now; absent if there is none of that name. Much quicker than all of
    /// them. NotFound for an unknown calendar.
    virtual Result<std::optional<CalendarObject>> object(const QString &calendarIdentifier,
                                                         const QString &name) = 0;
    /// Differs after objects were added to a calendar, by whomever: while it stays, there are no more names
    /// than `objects` gave. Empty where that cannot be told quickly.
    virtual QByteArray stampOfNames(const QString &calendarIdentifier) = 0;

    /// Stores an object and answers it with its name and etag of now, or with the text that the backend made
    /// of it. Without a name it is a new one, for which `uid` may give the name; else `object.etag` must be
    /// that of the stored one, or the answer is Conflict and nothing is written. ReadOnly, Storage, NotFound.
    virtual Result<CalendarObject> put(const QString &calendarIdentifier, const CalendarObject &object,
                                       const QString &uid) = 0;
    /// Removes an object that still has this etag; else Conflict. An object that has gone is no error.
    virtual OptionalError remove(const QString &calendarIdentifier, const QString &name,
                                 const QByteArray &etag) = 0;

    /// Makes a calendar with the title, source and colour given, and answers it with its identifier.
    virtual Result<EKCalendar> createCalendar(const EKCalendar &calendar) = 0;
    /// Writes title and colour.
    virtual OptionalError updateCalendar(const EKCalendar &calendar) = 0;
    /// Removes a calendar with all that is in it.
    virtual OptionalError removeCalendar(const QString &calendarIdentifier) = 0;

    /// Whether the service behind it rings the alarms of its events by itself.
    virtual bool ringsAlarms() const { return false; }
    /// Looks for changes now; those found are told as ever.
    virtual void refresh() = 0;
    /// What to call, on the main loop, after somebody else has changed calendars or objects. One at a time;
    /// an empty one stops the calls.
    virtual void setChangedCallback(std::function<void()> callback) = 0;
    /// What to call, again and again, while a call waits for the service behind it: with how long it has been
    /// waiting. It must not use the calendars. An empty one hears nothing. It hears the waits of all backends
    /// of its kind; one that reads files waits for nobody.
    virtual void setWaitListener(std::function<void(std::chrono::milliseconds)>) {}
};

#pragma once

#include "eventkit/CalendarBackend.h"
#include "eventkit/CalendarItem.h"

#include <QHash>
#include <QSet>

#include <memory>
#include <vector>

/// An object of a calendar that was understood.
struct StoredItem
{
    QString name;
    QByteArray etag;
    CalendarItemPointer item;
};

/// What calendars hold, parsed once for each version of an object, and the changes that are not yet written
/// to the backend, as if they were.
///
/// Objects that cannot be understood, and all but the first by name of those that share a UID in a calendar,
/// are left out, reported once and never written.
class CalendarContents
{
public:
    explicit CalendarContents(std::shared_ptr<CalendarBackend> storage);

    CalendarBackend &backend() { return *storage; }

    Result<std::vector<EKCalendar>> calendars();
    /// Empty for a calendar whose removal is pending.
    Result<std::vector<StoredItem>> items(const QString &calendarIdentifier);
    /// Absent if the calendar has none with that UID; Unreadable if an object that cannot be used names it.
    Result<std::optional<StoredItem>> item(const QString &calendarIdentifier, const QString &uid);
    /// Whether an item that no calendar gives may be in an object that cannot be used.
    bool mayBeUnusable(const QString &uid);

    /// Reads from the backend again at the next question.
    void forgetHeld();
    /// From now on calendars are read from the backend once, until `release` was called as often.
    void hold() { ++holds; }
    void release();

    /// Changes that belong together: if one of a group cannot be written, those behind it are not either.
    void beginGroup() { ++group; }
    /// Puts a text in place of an item; with an empty name it is a new one. The error says why the text makes
    /// no object.
    OptionalError stagePut(const QString &calendarIdentifier, const StoredItem &former,
                           const QByteArray &text);
    void stageRemoval(const QString &calendarIdentifier, const StoredItem &item);
    void stageCalendar(const EKCalendar &calendar);
    /// A calendar stays if anything before it could not be written.
    void stageCalendarRemoval(const QString &calendarIdentifier);

    /// Writes what is pending, in order. What cannot be written is given up; the first error is answered.
    OptionalError commit();
    /// Gives up what is pending.
    void reset();

private:
    enum class Change { Put, Remove, UpdateCalendar, RemoveCalendar };
    struct Pending
    {
        Change change = Change::Put;
        int group = 0;
        QString calendarIdentifier = {};
        StoredItem former = {};
        CalendarItemPointer item = {};
        EKCalendar calendar = {};
    };
    struct Parsed
    {
        QByteArray etag;
        /// Null for an object that cannot be used.
        CalendarItemPointer item;
    };
    /// An object that cannot be used.
    struct Unusable
    {
        /// Empty if it cannot even be read.
        QByteArray text;
        /// What an object of its name was before, if that was ever seen.
        QString formerUid;

        bool isUnknown() const { return text.isEmpty() && formerUid.isEmpty(); }
        bool mayHold(const QString &uid) const;
    };
    /// A calendar as it was last read.
    struct Known
    {
        QHash<QString, Parsed> byName;
        QHash<QString, QString> namesByUid;
        QByteArray stampOfNames;
        /// By name, as they were when all were read.
        QHash<QString, Unusable> unusable;
    };

    /// What was read while it is held.
    struct Held
    {
        std::vector<StoredItem> items;
        QHash<QString, std::size_t> byUid;
    };

    Result<std::vector<EKCalendar>> presentCalendars();
    Result<std::vector<StoredItem>> presentItems(const QString &calendarIdentifier);
    /// Of what the backend has, without reading more than this object where the calendar is known already.
    Result<std::optional<StoredItem>> storedItem(const QString &calendarIdentifier, const QString &uid);
    Result<std::optional<StoredItem>> presentItem(const QString &calendarIdentifier, const QString &uid);
    bool hasSameNames(const QString &calendarIdentifier);
    Result<const Held *> heldItems(const QString &calendarIdentifier);
    CalendarItemPointer parsed(const QString &calendarIdentifier, const CalendarObject &object);
    Unusable unusable(const QString &calendarIdentifier, const CalendarObject &object);
    Result<std::vector<StoredItem>> storedItems(const QString &calendarIdentifier);
    void reportOnce(const QString &calendarIdentifier, const CalendarObject &object, const QString &reason);
    std::vector<Pending>::iterator pendingFor(const QString &calendarIdentifier, const QString &uid);
    /// Adds a change in place of an earlier one of the same object.
    void stage(Pending change, const QString &uid);
    OptionalError write(const Pending &change);
    void noteWritten(const Pending &change, const CalendarObject &written);

    std::shared_ptr<CalendarBackend> storage;
    QHash<QString, Known> known;
    QSet<QString> reported;
    std::vector<Pending> pending;
    int group = 0;
    int holds = 0;
    QHash<QString, Held> held;
    std::optional<std::vector<EKCalendar>> heldCalendars;
};

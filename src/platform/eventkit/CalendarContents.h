#pragma once

#include "eventkit/CalendarBackend.h"
#include "eventkit/CalendarItem.h"
#include "eventkit/ItemChange.h"

#include <QHash>
#include <QSet>

#include <memory>
#include <span>
#include <vector>

/// An object of a calendar that was understood.
struct StoredItem
{
    QString name;
    QByteArray etag;
    CalendarItemPointer item;
};

/// What calendars hold, parsed once for each version of an object, and the changes that are not yet written
/// to the backend, as if they were: those that somebody has promised to carry out, and over them those that
/// are only staged.
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
    void beginGroup();
    /// From now on all belongs to one group, until `part` is called.
    void join()
    {
        beginGroup();
        isJoined = true;
    }
    void part() { isJoined = false; }
    /// Gives up what was staged since the group began.
    void dropGroup();
    /// Puts a text in place of an item; with an empty name it is a new one. The error says why the text makes
    /// no object.
    OptionalError stagePut(const QString &calendarIdentifier, const StoredItem &former,
                           const QByteArray &text);
    void stageRemoval(const QString &calendarIdentifier, const StoredItem &item);
    void stageCalendar(const EKCalendar &calendar);
    /// A calendar stays if anything before it could not be written.
    void stageCalendarRemoval(const QString &calendarIdentifier);

    /// Writes what is pending, in order. What cannot be written is given up; the first error is answered.
    /// While objects are deferred, only changes of calendars are written.
    OptionalError commit() { return commitBut(isDeferring ? std::optional(noGroup) : std::nullopt); }
    /// The same, and the objects of the present group are not deferred.
    OptionalError commitGroup() { return commitBut(isDeferring ? std::optional(group) : std::nullopt); }
    /// Gives up what is pending.
    void reset();

    /// From now on changes of objects stay staged until somebody takes them over.
    void deferObjects() { isDeferring = true; }
    /// The staged changes of objects in their order, each object once.
    std::vector<ItemChange> stagedChanges() const;
    bool hasStagedChanges() const;
    /// Somebody else has them now.
    void forgetStaged();
    /// The changes that were taken over and are still to be carried out, in their order: all of them.
    void setPromises(std::vector<ItemChange> changes);
    /// Writes changes that belong together to the backend, merged with what others have written meanwhile.
    /// What is there already is not written again.
    OptionalError carryOut(const std::vector<ItemChange> &together);

private:
    enum class Change { Put, Remove, UpdateCalendar, RemoveCalendar };
    struct Pending
    {
        Change change = Change::Put;
        int group = 0;
        QString calendarIdentifier = {};
        QString uid = {};
        /// What the change began with; without an item for an object that it makes.
        StoredItem former = {};
        CalendarItemPointer item = {};
        EKCalendar calendar = {};
        /// Another change has taken its place.
        bool isObsolete = false;

        bool isOfObject() const { return change == Change::Put || change == Change::Remove; }
        /// Made and removed again.
        bool isNothing() const { return isObsolete || (isOfObject() && !item && !former.item); }
    };
    /// A place and what stood there before the group began; absent if nothing did.
    struct Step
    {
        std::size_t place;
        std::optional<Pending> former;
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

        /// Nothing tells which item is in it, so that it may be any.
        bool isUnknown() const { return formerUid.isEmpty() && !text.contains("UID"); }
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
    static constexpr int noGroup = -1;
    /// Of objects only those of a group; absent for all.
    OptionalError commitBut(std::optional<int> onlyGroup);
    static QString keyOf(const QString &calendarIdentifier, const QString &uid);
    /// Adds a change in place of an earlier one of the same object.
    void stage(Pending change);
    void addPending(Pending change);
    /// An object as it will be when all promises are kept.
    std::optional<StoredItem> promised(const QString &calendarIdentifier, const QString &uid,
                                       std::optional<StoredItem> stored);
    /// Its text then, of some that it has now.
    std::optional<QByteArray> promisedText(const QString &calendarIdentifier, const QString &uid,
                                           std::optional<QByteArray> text);
    /// The same where changes of other objects belong to it; absent if these cannot be read.
    std::optional<std::optional<QByteArray>> textPromisedTogether(const QString &key,
                                                                  const std::optional<QByteArray> &text);
    void applyPromises(const QString &calendarIdentifier, std::vector<StoredItem> &items);
    std::span<const ItemChange> promisesOf(std::size_t promiseGroup) const;
    /// What the objects of some changes are at present.
    Result<std::vector<StoredItem>> objectsOf(const std::vector<ItemChange> &together);
    OptionalError put(const ItemChange &change, const StoredItem &stored, const QByteArray &text);
    OptionalError write(const Pending &change);
    void noteWritten(const Pending &change, const CalendarObject &written);

    std::shared_ptr<CalendarBackend> storage;
    QHash<QString, Known> known;
    QSet<QString> reported;
    std::vector<Pending> pending;
    /// The places of the changes of objects.
    QHash<QString, std::size_t> pendingByKey;
    std::vector<Step> groupSteps;
    std::vector<ItemChange> promises;
    /// Where promises that belong together begin, and where the last ones end.
    std::vector<std::size_t> promiseGroups;
    /// For an object the places in `promiseGroups` of its promises, in their order.
    QHash<QString, std::vector<std::size_t>> promisesByKey;
    /// Merged texts that were parsed, by their text.
    QHash<QByteArray, CalendarItemPointer> promisedItems;
    bool isDeferring = false;
    int group = 0;
    bool isJoined = false;
    int holds = 0;
    QHash<QString, Held> held;
    std::optional<std::vector<EKCalendar>> heldCalendars;
};

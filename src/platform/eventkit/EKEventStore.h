#pragma once

#include "eventkit/EKCalendar.h"
#include "eventkit/EKEvent.h"
#include "eventkit/EKReminder.h"
#include "eventkit/ItemChange.h"
#include "foundation/Error.h"
#include "foundation/NotificationCenter.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

class CalendarBackend;
class CalendarContents;
class CalendarItem;
struct DateWindow;
struct ItemOccurrence;
struct StoredItem;

/// Posted on the default center after somebody else, not a store of this process, has changed calendars or
/// what is in them.
inline constexpr NotificationName<> EKEventStoreChangedNotification{u"EKEventStoreChangedNotification"};

/// How far a change of one occurrence of a series goes.
enum class EKSpan { ThisEvent = 0, FutureEvents = 1 };
enum class EKAuthorizationStatus { NotDetermined = 0, Restricted = 1, Denied = 2, Authorized = 3 };

/// Which events are asked for. Made by the store.
struct EKEventPredicate
{
    Date startDate;
    Date endDate;
    std::vector<QString> calendarIdentifiers;
};

/// The calendars of the desktop with their events and reminders. Main thread.
///
/// Events and reminders are copies; a change is written by a save. A save writes what the caller has changed
/// since it got its copy into the object as it stands then, so that changes that others made meanwhile to
/// other fields, and everything that this program does not know, stay. What did not change is not written.
///
/// With `commit` false a change is seen by this store at once but kept in memory until the next `commit`, or
/// a later change with `commit` true. Errors are those of `CalendarError`.
class EKEventStore
{
public:
    using BackendSource = std::function<std::shared_ptr<CalendarBackend>()>;
    /// How the user is asked for access. The answer may come at once or later, on the main thread; without
    /// one the user is asked again when the program runs the next time.
    using AccessQuestion =
        std::function<void(EKEntityType entityType, std::function<void(bool isGranted)> answer)>;

    /// What stores made from now on work on; also starts the notifications of changes. Null for none.
    static void setSharedBackend(std::shared_ptr<CalendarBackend> backend);
    /// The same with a backend that is made when a store is first needed.
    static void setSharedBackendSource(BackendSource source);
    static void setAccessQuestion(AccessQuestion question);

    static EKAuthorizationStatus authorizationStatusForEntityType(EKEntityType entityType);
    /// Asks the user if that was not done yet, keeps the answer, and calls the completion later on the main
    /// loop. While the question stands, further requests wait for its answer.
    void requestAccessToEntityType(EKEntityType entityType, std::function<void(bool isGranted)> completion);

    /// A store on the shared backend; without one it has no calendars.
    EKEventStore();
    explicit EKEventStore(std::shared_ptr<CalendarBackend> backend);
    ~EKEventStore();
    EKEventStore(const EKEventStore &) = delete;
    EKEventStore &operator=(const EKEventStore &) = delete;

    Result<std::vector<EKSource>> sources() const;
    Result<std::vector<EKCalendar>> calendarsForEntityType(EKEntityType entityType) const;
    Result<std::optional<EKCalendar>> calendarWithIdentifier(const QString &identifier) const;
    /// Absent if there is none that can be written to.
    std::optional<EKCalendar> defaultCalendarForNewEvents() const;
    std::optional<EKCalendar> defaultCalendarForNewReminders() const;
    /// Writes title and colour. A new calendar needs a title and a source and gets its identifier; it is made
    /// at once, whatever `commit` says.
    OptionalError saveCalendar(EKCalendar &calendar, bool commit);
    OptionalError removeCalendar(const EKCalendar &calendar, bool commit);
    /// Moves everything to another calendar, or nothing: Invalid if an object cannot be read, or is there
    /// already. It is written at once, also where writes are deferred.
    OptionalError moveContents(const EKCalendar &from, const EKCalendar &to, bool commit);

    /// Without calendars: all. Calendars that do not exist are not looked at.
    EKEventPredicate
    predicateForEventsWithStartDate(Date startDate, Date endDate,
                                    const std::optional<std::vector<EKCalendar>> &calendars = {}) const;
    /// The events that overlap the window, series expanded, by calendar and start. Of a series that has
    /// thousands in the window only some hundreds from now on, or from the start of a window without the
    /// present moment; of all series together a hundred thousand. The log says once which calendar holds so
    /// many.
    Result<std::vector<EKEvent>> eventsMatchingPredicate(const EKEventPredicate &predicate) const;
    /// Events by their UID: of a series the first occurrence and those edited on their own. Without
    /// calendars: in all of them.
    Result<std::vector<EKEvent>> calendarItemsWithExternalIdentifier(
        const QString &externalIdentifier,
        const std::optional<std::vector<EKCalendar>> &amongCalendars = {}) const;
    /// The first of these; absent if there is none.
    Result<std::optional<EKEvent>> eventWithIdentifier(const QString &identifier) const;
    /// Whether an item that is not found may be in an object that cannot be read or used, or of which too
    /// many occurrences were found to give them all, and is not gone.
    bool mayBeUnusable(const QString &externalIdentifier) const;
    /// Whether a saved event has no other occurrence, however far away. Of the event as it was read.
    static bool isOnlyOccurrence(const EKEvent &event);
    /// The start of the last occurrence of a saved event's series; absent if it has no end. Of the event as
    /// it was read.
    static OptionalDate lastStartOf(const EKEvent &event);

    /// Saves a new or changed event, which then is as the store has it. A new one that names an external
    /// identifier is made under that; the caller knows that there is none. Of a series with the span
    /// ThisEvent only that occurrence, which is detached from the rule; recurrence rules are then not looked
    /// at. With FutureEvents this and all later ones: the series is divided, with a new UID for its later
    /// part, or changed as a whole if there are no earlier occurrences. Another calendar moves the whole
    /// series there.
    OptionalError saveEvent(EKEvent &event, EKSpan span, bool commit);
    OptionalError removeEvent(const EKEvent &event, EKSpan span, bool commit);
    /// Moves one occurrence of a series, as it is stored, to another calendar. There it is an event of its
    /// own, with a new UID and all that other programs have written into it; its series goes without it. The
    /// event then is as the store has it.
    OptionalError moveOccurrence(EKEvent &event, const EKCalendar &to, bool commit);

    /// While the answer lives, saves and removals without `commit` belong together, and so does the one that
    /// commits them: if one of them cannot be staged, none is. It may not outlive the store.
    [[nodiscard]] std::shared_ptr<void> together();

    Result<std::optional<EKReminder>> calendarItemWithIdentifier(const QString &identifier) const;
    Result<std::vector<EKReminder>> remindersInCalendar(const EKCalendar &calendar) const;
    OptionalError saveReminder(EKReminder &reminder, bool commit);
    OptionalError removeReminder(const EKReminder &reminder, bool commit);

    /// For many questions in a row, such as a pass over all events: while the answer lives, calendars are
    /// read once, and changes that others make meanwhile are not seen. It may not outlive the store.
    [[nodiscard]] std::shared_ptr<void> holdContents() const;

    // Changes of events and reminders can be kept by somebody else, who carries them out later. Until then
    // they are seen here as if they were written.
    /// From now on saves and removals of events and reminders are staged only, whatever `commit` says.
    void deferWrites();
    /// What is staged, each object once, in order.
    std::vector<ItemChange> stagedChanges() const;
    bool hasStagedChanges() const;
    /// Somebody else keeps what was staged.
    void forgetStaged();
    /// All changes that are kept and not yet carried out, in order.
    void setPromises(std::vector<ItemChange> changes);
    /// Writes some of them that belong together, merged field by field with what others have written
    /// meanwhile; what is there already is not written again. An error is a refusal
    /// (`CalendarError::isRefusal`), or it may pass: then all of them are tried again later.
    OptionalError carryOut(const std::vector<ItemChange> &together);

    /// Writes what is pending. What cannot be written is given up; the first error is answered.
    OptionalError commit();
    /// Gives up what is pending.
    void reset();
    /// Whether alarms of events ring without this program.
    bool ringsAlarms() const;
    /// Looks for changes now.
    void refreshSourcesIfNecessary();

private:
    using Edit = std::function<OptionalError()>;
    /// What a save has made of an event.
    struct SavedAs
    {
        QString uid;
        qint64 key = 0;
        /// For an object that the save makes: the same at each attempt.
        QString newUid;
        /// Whether an earlier attempt has put it into its new calendar.
        bool isPlaced = false;
    };

    /// The calendar if it can be written to.
    Result<EKCalendar> writableCalendar(const std::optional<EKCalendar> &calendar) const;
    Result<std::vector<EKCalendar>> allCalendars() const;
    std::optional<EKCalendar> defaultCalendar(EKEntityType entityType) const;
    Result<StoredItem> storedItem(const QString &calendarIdentifier, const QString &uid) const;
    /// Stages a change and writes it if asked to; once more from the start if somebody was faster.
    OptionalError perform(const Edit &edit, bool commit);
    /// The object to be changed, in the calendar in which it is to be.
    Result<StoredItem> stagePlacement(const EKEvent &event, SavedAs &saved);
    OptionalError stageChangedEvent(const EKEvent &event, EKSpan span, SavedAs &saved);
    OptionalError stageEdit(const EKEvent &event, EKSpan span, const StoredItem &source,
                            const ItemOccurrence &occurrence, SavedAs &saved);
    OptionalError stageRemoval(const EKEvent &event, EKSpan span);
    OptionalError stageReminder(const EKReminder &reminder, const QString &uid);
    /// Makes the event what the store has now.
    OptionalError takeBack(EKEvent &event, const QString &uid, qint64 key) const;

    /// The occurrences in a window, as many as are bearable.
    std::vector<ItemOccurrence> bearableOccurrences(const CalendarItem &item, const EKCalendar &calendar,
                                                    const DateWindow &window, std::size_t &budget) const;

    std::unique_ptr<CalendarContents> contents;
    /// Identifiers of series that were not given whole, by calendar, with the length of the longest window.
    mutable std::map<QString, std::map<QString, Seconds>> cutSeries;
    /// Calendars of which the log has said so.
    mutable std::set<QString> toldCalendars;
};

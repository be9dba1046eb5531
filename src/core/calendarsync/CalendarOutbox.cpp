#include "calendarsync/CalendarOutbox.h"

#include "calendarsync/CalendarStoreState.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/OfflineChanges.h"
#include "eventkit/CalendarError.h"
#include "foundation/Log.h"
#include "foundation/MainLoop.h"
#include "store/queries/DBWorker.h"
#include "store/state/CoreContext.h"

#include <QScopedValueRollback>

#include <chrono>
#include <set>

namespace CalendarOutbox {

namespace {

using calendarstore::state;
using SteadyClock = std::chrono::steady_clock;

/// How long the user may wait for the calendars after a command, and between two of the program's turns.
constexpr std::chrono::milliseconds atOnce{250};
constexpr std::chrono::milliseconds aPortion{25};

bool isDraining = false;
bool isPortionDue = false;

ItemChange changeOf(const OutboxEntry &entry)
{
    return {entry.sequence, entry.group, entry.place, entry.key, entry.before, entry.after, entry.yields};
}

std::vector<ItemChange> pendingChanges(ManagedObjectContext &context)
{
    std::vector<ItemChange> changes;
    for (const OutboxEntry &entry : context.pendingOutbox()) {
        if (!offlinechanges::isOne(entry))
            changes.push_back(changeOf(entry));
    }
    return changes;
}

/// What becomes of a change that could not be carried out.
enum class Fate {
    /// Its calendar has gone, and its rows go with it.
    Dropped,
    /// Tried again later.
    Kept
};

Fate fateOf(const ItemChange &change, const Error &error)
{
    // Said once for each reason and object.
    static std::set<QString> told;
    const QString line = QStringLiteral("Cannot bring a change of %1 to the calendar %2: %3")
                             .arg(change.uid, change.calendarIdentifier, error.message);
    if (told.insert(line).second)
        Log::line(line);
    return CalendarError::is(error, CalendarError::NotFound) ? Fate::Dropped : Fate::Kept;
}

/// One look at all changes. What has failed holds back what comes after it: of the same object, of its group,
/// and of a calendar that cannot be reached.
class Round
{
public:
    Round(ManagedObjectContext &changedContext, std::vector<ItemChange> pending,
          SteadyClock::time_point lastMoment)
        : context(changedContext)
        , changes(std::move(pending))
        , deadline(lastMoment)
    {}

    /// Whether changes are left that were not tried for lack of time.
    bool run()
    {
        std::vector<ItemChange> left;
        std::vector<qint64> done;
        bool isTimeOver = false;
        for (ItemChange &change : changes) {
            isTimeOver = isTimeOver || SteadyClock::now() > deadline;
            if (!isTimeOver && !isHeldBack(change) && tryOne(change))
                done.push_back(change.sequence);
            else
                left.push_back(std::move(change));
        }
        // If this fails, they are tried again, and found to be there.
        if (const auto error = context.finishOutbox(done))
            Log::line(error->message);
        EventStoreAccess::eventStore().setPromises(std::move(left));
        return isTimeOver;
    }

private:
    bool isHeldBack(const ItemChange &change)
    {
        if (failedGroup && *failedGroup != change.group)
            failedGroup.reset();
        return failedGroup || failedUids.contains(change.uid) ||
               silentCalendars.contains(change.calendarIdentifier);
    }
    bool tryOne(const ItemChange &change)
    {
        const auto error = EventStoreAccess::eventStore().carryOut(change);
        if (!error || fateOf(change, *error) == Fate::Dropped)
            return true;
        if (CalendarError::is(error, CalendarError::Storage))
            silentCalendars.insert(change.calendarIdentifier);
        failedGroup = change.group;
        failedUids.insert(change.uid);
        return false;
    }

    ManagedObjectContext &context;
    std::vector<ItemChange> changes;
    SteadyClock::time_point deadline;
    std::optional<int> failedGroup;
    std::set<QString> failedUids;
    std::set<QString> silentCalendars;
};

bool mayWrite()
{
    return !DBWorker::isSample() && EventStoreAccess::hasAccesToAppleCalendar();
}

/// Whether time was short.
bool drain(ManagedObjectContext &context, std::chrono::milliseconds longest)
{
    if (isDraining || !mayWrite())
        return false;
    std::vector<ItemChange> changes = pendingChanges(context);
    if (changes.empty()) {
        if (state().store)
            state().store->setPromises({});
        return false;
    }
    const QScopedValueRollback guard(isDraining, true);
    return Round(context, std::move(changes), SteadyClock::now() + longest).run();
}

void drainInPortions()
{
    if (std::exchange(isPortionDue, true))
        return;
    MainLoop::performDelayed(Seconds(0), [] {
        isPortionDue = false;
        ManagedObjectContext *context = CoreContext::current().openedStore();
        if (context && drain(*context, aPortion))
            drainInPortions();
    });
}

/// What is taken back may have been changed without the calendars, and can reach them now.
void writeTakenBackSoon()
{
    MainLoop::performDelayed(Seconds(0), [] {
        ManagedObjectContext *context = CoreContext::current().openedStore();
        // Else a question stands; the next activation does it.
        if (context && !context->transaction())
            writeChangesMadeOffline(*context);
    });
}

} // namespace

bool hasWork()
{
    return !DBWorker::isSample() && state().store && state().store->hasStagedChanges();
}

void post(ManagedObjectContext &context, const StoreChanges &changes)
{
    if (DBWorker::isSample())
        return;
    offlinechanges::post(context, changes);
    if (changes.author == ChangeAuthor::Undo)
        writeTakenBackSoon();
    if (!hasWork())
        return;
    for (const ItemChange &change : state().store->stagedChanges())
        context.post({0, change.group, change.calendarIdentifier, change.uid, change.before, change.after});
}

void committed(ManagedObjectContext &context)
{
    offlinechanges::committed();
    if (DBWorker::isSample())
        return;
    if (state().store) {
        state().store->forgetStaged();
        state().store->setPromises(pendingChanges(context));
    }
    carryOut(context);
}

void carryOut(ManagedObjectContext &context)
{
    if (drain(context, atOnce))
        drainInPortions();
}

void carryOutFor(ManagedObjectContext &context, Seconds longest)
{
    drain(context, std::chrono::duration_cast<std::chrono::milliseconds>(longest));
}

void writeChangesMadeOffline(ManagedObjectContext &context)
{
    if (mayWrite())
        offlinechanges::write(context);
}

void writeTasksMadeOffline()
{
    if (mayWrite())
        offlinechanges::writeNewTasks();
}

void prepare(EKEventStore &store)
{
    store.deferWrites();
    if (DBWorker::isSample())
        return;
    if (ManagedObjectContext *context = CoreContext::current().store())
        store.setPromises(pendingChanges(*context));
}

} // namespace CalendarOutbox

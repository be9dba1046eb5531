#include "calendarsync/CalendarOutbox.h"

#include "calendarsync/CalendarPass.h"
#include "calendarsync/CalendarStoreState.h"
#include "calendarsync/ChangesOfOthers.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/OfflineChanges.h"
#include "calendarsync/RefusedChanges.h"
#include "calendarsync/StoreReach.h"
#include "eventkit/CalendarError.h"
#include "eventkit/ItemMerge.h"
#include "foundation/Alert.h"
#include "foundation/Log.h"
#include "foundation/MainLoop.h"
#include "store/queries/DBWorker.h"
#include "store/state/CoreContext.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <chrono>
#include <set>
#include <span>

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

/// Said once for each reason and object.
void logOnce(const ItemChange &change, const Error &error)
{
    static std::set<QString> told;
    const QString line = QStringLiteral("Cannot bring a change of %1 to the calendar %2: %3")
                             .arg(change.uid, change.calendarIdentifier, error.message);
    if (told.insert(line).second)
        Log::line(line);
}

using Together = std::vector<ItemChange>;

/// The changes in groups of those that are carried out together.
std::vector<Together> groupsOf(const std::vector<ItemChange> &changes)
{
    std::vector<Together> groups;
    std::span<const ItemChange> left(changes);
    while (!left.empty()) {
        const auto group = left.first(itemmerge::countTogether(left));
        groups.emplace_back(group.begin(), group.end());
        left = left.subspan(group.size());
    }
    return groups;
}

/// One look at all changes. What has failed holds back what comes after it: of the same object, and of a
/// calendar that cannot be reached.
class Round
{
public:
    Round(ManagedObjectContext &changedContext, const std::vector<ItemChange> &pending,
          SteadyClock::time_point lastMoment)
        : context(changedContext)
        , groups(groupsOf(pending))
        , deadline(lastMoment)
    {}

    /// Whether changes are left that were not tried for lack of time.
    bool run()
    {
        std::vector<ItemChange> left;
        bool isTimeOver = false;
        for (const Together &group : groups) {
            isTimeOver = isTimeOver || SteadyClock::now() > deadline;
            if (!isTimeOver && !isHeldBack(group) && tryOne(group))
                finish(group);
            else
                left.insert(left.end(), group.begin(), group.end());
        }
        EventStoreAccess::eventStore().setPromises(std::move(left));
        refusedchanges::settle(std::move(refused));
        return isTimeOver;
    }

private:
    bool isHeldBack(const Together &group) const
    {
        return std::ranges::any_of(group, [this](const ItemChange &change) {
            return failedUids.contains(change.uid) || silentCalendars.contains(change.calendarIdentifier);
        });
    }
    /// Whether there is nothing left to be done of it.
    bool tryOne(const Together &group)
    {
        const auto error = EventStoreAccess::eventStore().carryOut(group);
        if (!error)
            return true;
        logOnce(group.front(), *error);
        if (CalendarError::isRefusal(error)) {
            refused.push_back(group);
            return true;
        }
        for (const ItemChange &change : group) {
            failedUids.insert(change.uid);
            // Which of several calendars it was is not told.
            if (group.size() == 1 && !CalendarError::is(error, CalendarError::Unreadable))
                silentCalendars.insert(change.calendarIdentifier);
        }
        return false;
    }
    /// At once: what is carried out a second time could take back what another program has done since. If
    /// this fails, it is.
    void finish(const Together &group)
    {
        std::vector<qint64> sequences;
        for (const ItemChange &change : group)
            sequences.push_back(change.sequence);
        if (const auto error = context.finishOutbox(sequences))
            Log::line(error->message);
    }

    ManagedObjectContext &context;
    std::vector<Together> groups;
    SteadyClock::time_point deadline;
    std::set<QString> failedUids;
    std::set<QString> silentCalendars;
    std::vector<Together> refused;
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
    const std::vector<ItemChange> changes = pendingChanges(context);
    if (changes.empty()) {
        if (state().store)
            state().store->setPromises({});
        return false;
    }
    const QScopedValueRollback guard(isDraining, true);
    return Round(context, changes, SteadyClock::now() + longest).run();
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

/// What is taken back may have been changed without the calendars, and can reach them now. Where events are
/// taken back, passes may have made rows of them since, which the step knows nothing of.
void followTakenBackSoon(bool hasEvents)
{
    MainLoop::performDelayed(Seconds(0), [hasEvents] {
        ManagedObjectContext *context = CoreContext::current().openedStore();
        // Else a question stands; the next activation does it.
        if (!context || context->transaction())
            return;
        writeChangesMadeOffline(*context);
        // What was refused is told of first, and followed by a pass.
        if (hasEvents && mayWrite() && state().refused.empty())
            CalendarPass::syncCalendarToAppWithTask(nullptr);
    });
}

/// A daemon that did not answer is left alone for three seconds.
constexpr Seconds firstWait{4};

/// Calendars that did not answer for a moment get what was kept from them without another activation. Each
/// try waits twice as long as the one before; the last ones leave it to the next activation.
void tryAgainSoon(Seconds delay)
{
    constexpr Seconds longest{300};
    if (delay > longest)
        return;
    MainLoop::performDelayed(delay, [delay] {
        ManagedObjectContext *context = CoreContext::current().openedStore();
        if (!context || DBWorker::isSample() || !mayWrite())
            return;
        // In the middle of a command, a question or a pass nothing is written.
        if (!context->transaction() && !Alert::isAsking() && !CalendarPass::isPassing()) {
            state().calendars.reset();
            writeChangesMadeOffline(*context);
            writeTasksMadeOffline();
            if (!calendarstore::isOffline())
                return;
        }
        tryAgainSoon(delay * 2);
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
    ChangesOfOthers::post(context, changes);
    if (changes.author == ChangeAuthor::Undo)
        followTakenBackSoon(!context.pendingOutbox().empty());
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
    if (std::exchange(state().isKeptForLater, false) && mayWrite())
        tryAgainSoon(firstWait);
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

void forgetCalendar(ManagedObjectContext &context, const QString &calendarIdentifier)
{
    std::vector<qint64> sequences;
    for (const Together &group : groupsOf(pendingChanges(context))) {
        const bool isConcerned = std::ranges::any_of(
            group, [&](const ItemChange &change) { return change.calendarIdentifier == calendarIdentifier; });
        for (const ItemChange &change : isConcerned ? group : Together())
            sequences.push_back(change.sequence);
    }
    if (const auto error = context.finishOutbox(sequences))
        Log::line(error->message);
    EventStoreAccess::eventStore().setPromises(pendingChanges(context));
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

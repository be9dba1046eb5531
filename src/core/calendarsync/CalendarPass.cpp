#include "calendarsync/CalendarPass.h"

#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/CalendarReferences.h"
#include "calendarsync/CalendarStoreState.h"
#include "calendarsync/EventReader.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/OfflineChanges.h"
#include "calendarsync/PassBrake.h"
#include "calendarsync/PassProgress.h"
#include "calendarsync/PassRows.h"
#include "calendarsync/RowFate.h"
#include "foundation/Log.h"
#include "records/copies/TaskColumns.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/state/CoreContext.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <unordered_set>

// A pass from the calendars to the rows: the calendars are right about what they hold.

namespace {

bool isOff(const EntityTask &row, const EKEvent &event)
{
    // A row that may not be changed and has another title is not trusted to be the event's.
    return !row.allowsContentModifications().value_or(true) && row.title() != event.title.trimmed();
}

/// One pass.
class Pass
{
public:
    /// \param left are items that are not looked at, nor are their rows.
    Pass(const std::vector<EKEvent> &events, const QSet<QString> &left)
        : rows(events)
    {
        rows.claimItems(left);
    }

    void take(const std::vector<EKEvent> &group)
    {
        if (group.size() == 1 && EventReader::standsAlone(group.front()))
            takeSingle(group.front());
        else
            takeSeries(group);
    }
    std::vector<TaskPtr> unclaimed() const { return rows.unclaimed(); }
    size_t linkedCount() const { return rows.linkedCount(); }

private:
    void claim(const TaskPtr &row, const EKEvent &event)
    {
        const QString title = row->title();
        const QString item = row->calendarID();
        row->setCalendarID(event.calendarItemExternalIdentifier);
        CalendarPass::syncEvent(event, *row);
        if (title != row->title() || item != row->calendarID())
            rows.note(row);
        rows.claim(row);
    }
    void takeSingle(const EKEvent &event)
    {
        TaskPtr row = rows.firstOf(event);
        if (!row || isOff(*row, event))
            row = rows.rowOf(event);
        if (row && isOff(*row, event))
            row = nullptr;
        if (!row)
            row = newRow(event, nullptr);
        claim(row, event);
        // Else an edit of the row would bring back a repetition that has ended.
        takeRule(event, *row);
    }
    void takeSeries(const std::vector<EKEvent> &group)
    {
        const Date last =
            MVDate::date() +
            Seconds(static_cast<double>(CoreContext::current().dataConteiner.rightIntervalAccessCalendar()));
        for (size_t place = 0; place < group.size(); ++place) {
            if (place > 0 && group[place - 1].startDate && *group[place - 1].startDate >= last)
                break;
            const EKEvent &event = group[place];
            TaskPtr row = rows.rowOf(event);
            if (!row && event.isDetached)
                row = rows.strayOf(event);
            if (!row)
                row = newRow(event, rows.firstOfTitle(event.title));
            claim(row, event);
            takeRule(event, *row);
        }
    }
    static void takeRule(const EKEvent &event, EntityTask &row)
    {
        QString repeat;
        // An end that was taken off the series must not come back with the next edit of the row.
        OptionalDate end;
        for (const EKRecurrenceRule &rule : event.recurrenceRules) {
            repeat = rule.stringForICalendar();
            if (rule.recurrenceEnd() && rule.recurrenceEnd()->endDate())
                end = rule.recurrenceEnd()->endDate();
        }
        row.setRepeat(repeat);
        row.setEndRepeat(end);
    }
    /// What only the organiser knows comes from a row of the same title, if there is one.
    static TaskPtr newRow(const EKEvent &event, const TaskPtr &model)
    {
        const TaskPtr row = mainContext().insert<EntityTask>();
        if (model) {
            taskcolumns::forEach([&row, &model](const auto &column) {
                if (column.inSeries == taskcolumns::InSeries::Shared)
                    column.set(*row, column.of(*model));
            });
        } else {
            if (event.calendar && event.calendar->allowsContentModifications)
                row->setCategory(EntityCategory::getCustom());
            row->setType(TaskType::ToDo);
            row->setStatus(TaskStatus::Open);
            row->setPriority(Priority::None);
        }
        row->setCreationDate(MVDate::date());
        row->setLastModificationDate(MVDate::date());
        return row;
    }

    PassRows rows;
};

/// What the calendars hold outside of the window of what a row shows.
struct OutOfSight
{
    bool isThere = false;
    /// What another program has moved there.
    std::optional<EKEvent> moved = {};
};

OutOfSight outOfSight(const EntityTask &row, const DateInterval &window)
{
    const auto items = EventStoreAccess::eventStore().calendarItemsWithExternalIdentifier(row.calendarID());
    // While the calendar does not answer, its event counts as there.
    if (!items)
        return {true};
    const auto isOutside = [&window](const EKEvent &item) {
        return item.startDate && (*item.startDate < window.start || *item.startDate > window.end);
    };
    const OptionalDate date = row.startDate() ? row.startDate() : row.dueDate();
    for (const EKEvent &item : items.value()) {
        if (isOutside(item) && item.isDetached && item.occurrenceDate == date)
            return {true, item};
    }
    if (!row.repeat().isEmpty())
        return {};
    const auto item = std::ranges::find_if(items.value(), [&isOutside](const EKEvent &one) {
        // The rows of a series have no rule either if none can say it; its others say nothing of this one.
        return isOutside(one) && (one.hasRecurrenceRules() || EventReader::standsAlone(one));
    });
    if (item == items.value().end())
        return {};
    return {true, item->hasRecurrenceRules() ? std::nullopt : std::optional(*item)};
}

struct Verdict
{
    rowfate::Decision decision;
    /// What the row shows from now on, where it stays.
    std::optional<EKEvent> moved = {};
};

/// \param onlyTasks are those that the pass is for; none if it is for all.
Verdict verdictOn(const TaskPtr &row, const std::unordered_set<TaskPtr> &onlyTasks,
                  const DateInterval &window)
{
    rowfate::Facts facts;
    facts.isDone = row->status() == TaskStatus::Done;
    facts.hasCalendarItem = !row->calendarID().isEmpty();
    facts.dueDate = row->dueDate();
    facts.date = row->startDate() ? row->startDate() : row->dueDate();
    facts.window = window;
    facts.allowsChanges = row->allowsContentModifications().value_or(true);
    facts.isOutsideOfPass = !onlyTasks.empty() && !onlyTasks.contains(row);
    if (const auto decision = rowfate::decideAtOnce(facts))
        return {*decision};
    facts.isCalendarChosen = CalendarCatalogue::calendarAccessOfCalendarTypeIdentifier(row->typeCalendarID());
    facts.wasCreatedOffCalendar = row->wasCreatedOffCalendar().value_or(false);
    const OutOfSight found = facts.isCalendarChosen ? outOfSight(*row, window) : OutOfSight();
    facts.hasItemOutsideOfWindow = found.isThere;
    facts.awaitsItem = CoreContext::current().awaitsCalendarItem(*row, row->calendarID());
    return {rowfate::decide(facts), found.moved};
}

/// Within a command, parts what follows from the command in the rows from what other programs did meanwhile:
/// only the former is a part of the user's step. The command's are the objects whose events it has changed.
class Authorship
{
public:
    explicit Authorship(bool isWithinCommand)
        : isParting(isWithinCommand)
    {
        if (!isParting)
            return;
        for (const ItemChange &change : EventStoreAccess::eventStore().stagedChanges())
            ownUids.insert(change.uid);
    }
    /// From here on rows of that object change.
    void turnTo(const QString &uid)
    {
        const bool isOfOthers = isParting && !ownUids.contains(uid);
        if (isOfOthers == ofOthers.has_value())
            return;
        if (isOfOthers)
            ofOthers.emplace(mainContext());
        else
            ofOthers.reset();
    }

private:
    bool isParting;
    std::unordered_set<QString> ownUids;
    std::optional<JournalPause> ofOthers;
};

passbrake::Counts countsOf(const std::vector<EKCalendar> &calendars, const std::vector<EKEvent> &events)
{
    passbrake::Counts counts;
    for (const EKCalendar &calendar : calendars)
        counts.insert(calendar.calendarIdentifier, 0);
    for (const EKEvent &event : events) {
        if (event.calendar)
            ++counts[event.calendar->calendarIdentifier];
    }
    return counts;
}

void keepWhatTheUserKeeps(std::vector<TaskPtr> &going, size_t linkedCount, const passbrake::Counts &events)
{
    passbrake::Counts rowsByCalendar;
    for (const TaskPtr &row : going)
        ++rowsByCalendar[calendarreferences::identifierOf(row->typeCalendarID())];
    const auto kept = passbrake::keptCalendars(rowsByCalendar, linkedCount, events);
    std::erase_if(going, [&kept](const TaskPtr &row) {
        // A question to the user takes its time.
        return !row->context() || row->isDeleted() ||
               kept.contains(calendarreferences::identifierOf(row->typeCalendarID()));
    });
}

void runPass(const std::unordered_set<TaskPtr> &onlyTasks, bool isWithinCommand)
{
    Authorship authorship(isWithinCommand);
    std::vector<TaskPtr> going;
    size_t linkedCount = 0;
    passbrake::Counts counts;
    {
        // All questions of a pass are about the same moment.
        const auto held = EventStoreAccess::eventStore().holdContents();
        const std::vector<EKCalendar> calendars = CalendarCatalogue::getAllAccessCalendars();
        auto events = EventReader::eventsForCalendars(calendars);
        // Calendars that cannot be reached are not empty ones.
        if (!events || !calendarstore::state().isReachable)
            return;
        counts = countsOf(calendars, *events);
        // Of what the user changed and no event shows yet, the rows are right.
        const QSet<QString> waiting = offlinechanges::waitingItems(mainContext());
        std::erase_if(*events, [&waiting](const EKEvent &event) {
            return waiting.contains(event.calendarItemExternalIdentifier);
        });
        Pass pass(*events, waiting);
        const auto groups = EventReader::getEventsGroupedCalendarIDfromAllEvents(*events);
        // A first pass over many events lasts; half a pass would be no pass, so nothing stops it.
        const StepBlock step = passprogress::begin(groups.size());
        QSet<QString> present;
        for (const std::vector<EKEvent> &group : groups) {
            present.insert(group.front().calendarItemExternalIdentifier);
            authorship.turnTo(group.front().calendarItemExternalIdentifier);
            pass.take(group);
            if (step)
                step();
        }
        CoreContext::current().sawCalendarItems(present);
        const DateInterval seen = EventReader::window();
        for (const TaskPtr &row : pass.unclaimed()) {
            const auto [decision, moved] = verdictOn(row, onlyTasks, seen);
            if (decision.fate == rowfate::Fate::Stays && moved) {
                authorship.turnTo(row->calendarID());
                CalendarPass::syncEvent(*moved, *row);
            }
            if (decision.fate == rowfate::Fate::Stays)
                continue;
            // It is damaged, not gone.
            if (EventStoreAccess::eventStore().mayBeUnusable(row->calendarID()))
                continue;
            Log::line(QStringLiteral("%1: %2").arg(row->title(), QLatin1String(decision.reason)));
            going.push_back(row);
        }
        linkedCount = pass.linkedCount();
    }
    if (onlyTasks.empty())
        keepWhatTheUserKeeps(going, linkedCount, counts);
    for (const TaskPtr &row : going) {
        authorship.turnTo(row->calendarID());
        mainContext().deleteObject(row);
    }
}

/// A full pass is no part of a command or of another pass: it waits for their end, and several wishes for one
/// share it.
void passAfterwards()
{
    static std::weak_ptr<bool> wish;
    if (!wish.expired())
        return;
    auto wished = std::make_shared<bool>();
    wish = wished;
    mainContext().afterTransaction([wished]() mutable {
        wished.reset();
        CalendarPass::syncCalendarToAppWithTasks({});
    });
}

} // namespace

static bool isPassRunning = false;

bool CalendarPass::isPassing()
{
    return isPassRunning;
}

void CalendarPass::syncCalendarToAppWithTask(const TaskPtr &task)
{
    syncCalendarToAppWithTasks(task ? std::vector{task} : std::vector<TaskPtr>());
}

void CalendarPass::syncCalendarToAppWithTasks(const std::vector<TaskPtr> &tasks)
{
    if (DBWorker::isSample() || !EventStoreAccess::hasAccesToCalendar())
        return;
    // While a long pass tells how far it is, or a command asks, the calendars may report a change.
    const bool isWithinCommand = mainContext().transaction() != nullptr;
    if (isPassRunning || (isWithinCommand && tasks.empty()))
        return passAfterwards();
    const QScopedValueRollback guard(isPassRunning, true);
    Transaction transaction(mainContext(), ChangeAuthor::Pass);
    runPass({tasks.begin(), tasks.end()}, isWithinCommand);
    DBWorker::tellOfFailure(transaction.commit());
}

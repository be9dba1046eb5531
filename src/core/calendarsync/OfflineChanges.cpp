#include "calendarsync/OfflineChanges.h"

#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/CalendarStoreState.h"
#include "calendarsync/EventReader.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/EventWriter.h"
#include "calendarsync/RecordsTransaction.h"
#include "calendarsync/SeriesRows.h"
#include "calendarsync/StoreReach.h"
#include "calendarsync/TaskToEvent.h"
#include "eventkit/CalendarError.h"
#include "foundation/Log.h"
#include "records/dates/MTDates.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/EventDates.h"

#include <algorithm>
#include <map>

namespace offlinechanges {

namespace {

using calendarstore::state;

OptionalDate dateOf(const EntityTask &task)
{
    return task.startDate() ? task.startDate() : task.dueDate();
}

using taskevent::isOffCalendar;

bool isOfUser(ChangeAuthor author)
{
    return author == ChangeAuthor::User || author == ChangeAuthor::Undo || author == ChangeAuthor::Import;
}

TaskPtr rowWithEvent(const ObjectPtr &object)
{
    const auto task = std::dynamic_pointer_cast<EntityTask>(object);
    return task && !task->calendarID().isEmpty() ? task : nullptr;
}

/// One side of an entry: where the event stands before or after the change, and what the change is about. The
/// text of a deletion names the calendar of the row, which nobody else knows any more; that of an edit the
/// event, from which a row that was ticked off is parted.
struct Side
{
    bool isDeletion = false;
    Span span = Span::ThisTask;
    OptionalDate day;
    ManagedObject::ColumnSet columns;
    QString name;

    static Side of(const QByteArray &text)
    {
        const auto part = [&text](int number) {
            return QString::fromUtf8(text).section(u';', number, number);
        };
        Side side;
        side.isDeletion = part(0) == QStringLiteral("deleted");
        side.span = part(1) == QStringLiteral("future") ? Span::FutureTasks : Span::ThisTask;
        if (!part(2).isEmpty())
            side.day = Date::fromReferenceSeconds(part(2).toDouble());
        side.columns = ManagedObject::ColumnSet(part(3).toStdString());
        side.name = QString::fromUtf8(text).section(u';', 4);
        return side;
    }
    QByteArray text() const
    {
        const QStringList parts = {isDeletion ? QStringLiteral("deleted") : QStringLiteral("edited"),
                                   span == Span::FutureTasks ? QStringLiteral("future") : QString(),
                                   day ? QString::number(day->referenceSeconds(), 'f', 3) : QString(),
                                   QString::fromStdString(columns.to_string()), name};
        return parts.join(u';').toUtf8();
    }
};

/// What is left to be done of one row, or of one event whose row was deleted.
struct Work
{
    std::vector<qint64> sequences;
    Side side;
    /// Of an event: whether its deletion was taken back.
    bool isBack = false;
};

struct AllWork
{
    /// By the identifiers of the rows, and by those of the events with their day.
    std::map<QString, Work> edits;
    std::map<std::pair<QString, QByteArray>, Work> deletions;

    explicit AllWork(ManagedObjectContext &context)
    {
        for (const OutboxEntry &entry : context.pendingOutbox()) {
            if (isOne(entry))
                take(entry);
        }
    }

private:
    void take(const OutboxEntry &entry)
    {
        const QByteArray text = entry.before.value_or(entry.after.value_or(QByteArray()));
        const Side side = Side::of(text);
        Work &work = side.isDeletion ? deletions[{entry.key, text}] : edits[entry.key];
        // The event stands where it was before the first of several changes.
        if (work.sequences.empty())
            work.side = side;
        work.sequences.push_back(entry.sequence);
        work.side.columns |= side.columns;
        if (side.span == Span::FutureTasks)
            work.side.span = side.span;
        work.isBack = !entry.after;
    }
};

/// Makes of the event what the row is.
OptionalError writeRow(EntityTask &row, const Side &side)
{
    const EventFields fields = EventFields::ofColumns(side.columns);
    if (!isOffCalendar(row))
        return taskevent::write(row, fields, side.span, side.day, side.name);
    // Of a row that names another calendar now, the event is still in the former one.
    const QString calendar = fields.calendar ? QString() : row.typeCalendarID();
    if (auto error = taskevent::remove(side.name, calendar, side.span, side.day))
        return error;
    // No later pass pairs the row with its former event; opened again, it gets one.
    row.setCalendarID(QString());
    return std::nullopt;
}

/// Whether a row's event is there: it stands alone, or there is one on the row's day that no other row shows.
bool hasEvent(const TaskPtr &row, const std::vector<TaskPtr> &rows, const std::vector<EKEvent> &events)
{
    if (row->repeat().isEmpty() && std::ranges::all_of(events, EventReader::standsAlone))
        return !events.empty();
    const OptionalDate date = dateOf(*row);
    return std::ranges::any_of(events, [&](const EKEvent &event) {
        const bool isOfDay = date && event.startDate && MTDates::isWithinSameDay(*event.startDate, *date);
        return isOfDay && std::ranges::none_of(rows, [&](const TaskPtr &other) {
                   return other && other != row && eventdates::areShownBy(*other, event);
               });
    });
}

/// The rows of an identifier without an event on their day, by date; an error if that cannot be told.
Result<std::vector<TaskPtr>> rowsWithoutEvent(ManagedObjectContext &context, const QString &uid)
{
    std::vector<TaskPtr> rows;
    std::vector<TaskPtr> all;
    for (const TaskPtr &row : context.fetch<EntityTask>(
             EntityTask::fetchRequest().where(Predicate::format("calendarID == %@", uid))))
        all.push_back(row);
    for (const TaskPtr &row : all) {
        if (!row || isOffCalendar(*row))
            continue;
        const auto events = series::eventsOf(*row);
        if (!events)
            return events.error();
        if (!hasEvent(row, all, events.value()))
            rows.push_back(row);
    }
    std::ranges::sort(rows, {}, [](const TaskPtr &row) { return dateOf(*row); });
    return rows;
}

/// Whether the calendar of a row has no object of its identifier any more.
bool isIdentifierFree(const EntityTask &row)
{
    const auto items = EventStoreAccess::eventStore().calendarItemsWithExternalIdentifier(row.calendarID());
    return items && std::ranges::none_of(items.value(), [&row](const EKEvent &item) {
               return item.calendar &&
                      CalendarCatalogue::identifierOfCalendar(*item.calendar) == row.typeCalendarID();
           });
}

/// Makes the events of rows anew that came back after their events were removed: all of a series in one.
OptionalError restoreEvents(ManagedObjectContext &context, const QString &uid, const Side &side)
{
    auto found = rowsWithoutEvent(context, uid);
    if (!found)
        return found.error();
    std::vector<TaskPtr> &rows = found.value();
    const bool isOfSeries = side.span == Span::FutureTasks;
    if (!isOfSeries)
        std::erase_if(rows, [&side](const TaskPtr &row) { return dateOf(*row) != side.day; });
    if (rows.empty())
        return std::nullopt;
    const TaskPtr &first = rows.front();
    const QString rule = first->repeat();
    const OptionalDate endOfRule = first->endRepeat();
    if (!isOfSeries) {
        // A series goes on without it.
        first->setRepeat(QString());
        first->setEndRepeat(std::nullopt);
    }
    // A series goes on under its identifier, also one whose rule no row can say.
    const QString identifier = rule.isEmpty() && isIdentifierFree(*first) ? uid : QString();
    first->setCalendarID(QString());
    auto error = taskevent::write(*first, EventFields::all(), Span::FutureTasks, dateOf(*first), identifier);
    if (error) {
        first->setCalendarID(uid);
        first->setRepeat(rule);
        first->setEndRepeat(endOfRule);
    }
    for (const TaskPtr &row : rows)
        row->setCalendarID(first->calendarID());
    return error;
}

/// Whether it is done with: written, or refused for ever.
bool isDone(const OptionalError &error)
{
    if (error)
        Log::line(error->message);
    return !error || CalendarError::isRefusal(error);
}

} // namespace

bool isOne(const OutboxEntry &entry)
{
    return entry.place.isEmpty();
}

bool concernsEvent(const ManagedObject::ColumnSet &columns)
{
    const EventFields fields = EventFields::ofColumns(columns);
    return fields.title || fields.place || fields.notes || fields.dates || fields.alarms || fields.calendar ||
           fields.rule || columns.test(static_cast<size_t>(EntityTask::column<"status">()));
}

void keepForLater(EntityTask &row, Span span, OptionalDate formerDay)
{
    if (DBWorker::isSample())
        return;
    // Whether the calendars answer is asked anew.
    state().calendars.reset();
    state().isKeptForLater = true;
    if (!row.calendarID().isEmpty()) {
        state().unwritten[row.identifier()] = {span, formerDay ? formerDay : dateOf(row)};
    } else if (!isOffCalendar(row)) {
        row.setWasCreatedOffCalendar(true);
    }
    if (row.repeat().isEmpty())
        return;
    series::copyEditToOthers(row);
}

void keepDeletionForLater(const EntityTask &row, Span span)
{
    if (DBWorker::isSample() || row.calendarID().isEmpty())
        return;
    state().unwritten[row.identifier()] = {span, dateOf(row)};
    state().calendars.reset();
    state().isKeptForLater = true;
}

void postEdit(ManagedObjectContext &context, const EntityTask &row, const EventOfEntry &event,
              const ManagedObject::ColumnSet &columns)
{
    const Side before{false, event.span, event.day, columns, event.item};
    Side after = before;
    after.day = dateOf(row);
    context.post({0, 0, {}, row.identifier(), before.text(), after.text()});
}

void postDeletion(ManagedObjectContext &context, const EventOfEntry &event)
{
    const Side side{true, event.span, event.day, {}, event.calendar};
    context.post({0, 0, {}, event.item, std::nullopt, side.text()});
}

void postReturn(ManagedObjectContext &context, const EventOfEntry &event)
{
    const Side side{true, event.span, event.day, {}, event.calendar};
    context.post({0, 0, {}, event.item, side.text(), std::nullopt});
}

void post(ManagedObjectContext &context, const StoreChanges &changes)
{
    if (!isOfUser(changes.author))
        return;
    const auto &unwritten = state().unwritten;
    const bool isOffline = calendarstore::isOffline();
    if (!isOffline && unwritten.empty())
        return;
    const auto sideOf = [&](const EntityTask &row) -> std::optional<Side> {
        const auto noted = unwritten.find(row.identifier());
        const bool isNoted = noted != unwritten.end();
        // Of a series only what a rule has kept for later is told; the others follow from it.
        if (!isNoted && (!isOffline || !row.repeat().isEmpty()))
            return std::nullopt;
        Side side;
        side.day = isNoted ? noted->second.day : dateOf(row);
        side.span = isNoted && !row.repeat().isEmpty() ? noted->second.span : Span::ThisTask;
        return side;
    };
    for (const StoreChanges::Update &update : changes.updated) {
        const TaskPtr row = rowWithEvent(update.object);
        const auto before = row && concernsEvent(update.columns) ? sideOf(*row) : std::nullopt;
        if (!before)
            continue;
        postEdit(context, *row, {row->calendarID(), {}, before->span, before->day}, update.columns);
    }
    for (const ObjectPtr &object : changes.deleted) {
        const TaskPtr row = rowWithEvent(object);
        const auto before = row ? sideOf(*row) : std::nullopt;
        if (!before)
            continue;
        postDeletion(context, {row->calendarID(), row->typeCalendarID(), before->span, before->day});
    }
}

void committed()
{
    state().unwritten.clear();
}

void write(ManagedObjectContext &context)
{
    if (calendarstore::isOffline())
        return;
    const AllWork all(context);
    if (all.edits.empty() && all.deletions.empty())
        return;
    RecordsTransaction transaction({}, ChangeAuthor::Pass);
    const auto finish = [&context](const Work &work, const OptionalError &error) {
        if (isDone(error))
            context.finishOutboxWithCommit(work.sequences);
    };
    for (const auto &[identifier, work] : all.edits) {
        const auto row =
            std::static_pointer_cast<EntityTask>(context.object(EntityTask::entityName, identifier));
        finish(work, row ? writeRow(*row, work.side) : OptionalError());
    }
    for (const auto &[event, work] : all.deletions) {
        const Side &side = work.side;
        finish(work, work.isBack ? restoreEvents(context, event.first, side)
                                 : taskevent::remove(event.first, side.name, side.span, side.day));
    }
    DBWorker::tellOfFailure(transaction.commit());
}

QSet<QString> waitingItems(ManagedObjectContext &context)
{
    QSet<QString> identifiers;
    const AllWork all(context);
    for (const auto &[row, work] : all.edits)
        identifiers.insert(work.side.name);
    for (const auto &[event, work] : all.deletions)
        identifiers.insert(event.first);
    return identifiers;
}

void writeNewTasks()
{
    if (calendarstore::isOffline())
        return;
    const auto usual = CalendarCatalogue::getDefaultAccessCalendar();
    RecordsTransaction transaction({}, ChangeAuthor::Pass);
    for (const TaskPtr &row :
         mainContext().fetch<EntityTask>(EntityTask::fetchRequest().where(Predicate::format(
             "wasCreatedOffCalendar == true and calendarID == nil and dueDate != nil and status != %d",
             TaskStatus::Done)))) {
        if (!row || isOffCalendar(*row))
            continue;
        if (row->typeCalendarID().isEmpty() && usual && usual->allowsContentModifications)
            row->setTypeCalendarID(CalendarCatalogue::identifierOfCalendar(*usual));
        const auto calendar = CalendarCatalogue::calendarOfIdentifier(row->typeCalendarID());
        if (!calendar || !calendar->allowsContentModifications)
            continue;
        EventWriter::initEventCalendarFromTask(transaction, *row, Span::FutureTasks, std::nullopt, false);
    }
    DBWorker::tellOfFailure(transaction.commit());
}

} // namespace offlinechanges

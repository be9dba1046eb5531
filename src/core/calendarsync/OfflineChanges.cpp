#include "calendarsync/OfflineChanges.h"

#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/EventReader.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/EventWriter.h"
#include "calendarsync/RecordsTransaction.h"
#include "calendarsync/StoreReach.h"
#include "calendarsync/TaskToEvent.h"
#include "foundation/Log.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <algorithm>
#include <map>

namespace offlinechanges {

namespace {

/// A row that was deleted has no identity any more; its event is told by its calendar and its UID.
constexpr const char *deletionMark = "deleted:";

bool isDeletion(const OutboxEntry &entry)
{
    return entry.before.value_or(entry.after.value_or(QByteArray())).startsWith(deletionMark);
}

bool isOfUser(ChangeAuthor author)
{
    return author == ChangeAuthor::User || author == ChangeAuthor::Undo || author == ChangeAuthor::Import;
}

/// A series is only edited where its calendar can be reached.
TaskPtr singleWithEvent(const ObjectPtr &object)
{
    const auto task = std::dynamic_pointer_cast<EntityTask>(object);
    return task && !task->calendarID().isEmpty() && task->repeat().isEmpty() ? task : nullptr;
}

bool concernsEvent(const ManagedObject::ColumnSet &columns)
{
    const EventFields fields = EventFields::ofColumns(columns);
    return fields.title || fields.place || fields.notes || fields.dates || fields.alarms || fields.calendar ||
           columns.test(static_cast<size_t>(EntityTask::column<"status">()));
}

QByteArray textOf(const ManagedObject::ColumnSet &columns)
{
    return QByteArray::fromStdString(columns.to_string());
}

/// What is left to be done of one row.
struct Work
{
    std::vector<qint64> sequences;
    ManagedObject::ColumnSet columns;
};

void writeRow(RecordsTransaction &transaction, const TaskPtr &row, const ManagedObject::ColumnSet &columns)
{
    const bool isOff = row->status() == TaskStatus::Done || !row->dueDate() ||
                       (!row->startDate() && row->type() != TaskType::EmailCall);
    if (isOff)
        EventWriter::removeEventCalendarFromTask(transaction, row, Span::ThisTask, false);
    else
        taskevent::write(*row, EventFields::ofColumns(columns));
}

void removeEvent(const QString &uid, const QString &calendar)
{
    for (const EKEvent &event : EventReader::eventsWithExternalIdentifier(uid)) {
        if (!event.calendar || CalendarCatalogue::identifierOfCalendar(*event.calendar) != calendar ||
            event.hasRecurrenceRules())
            continue;
        if (const auto error = EventStoreAccess::eventStore().removeEvent(event, EKSpan::FutureEvents, true))
            Log::line(error->message);
    }
}

} // namespace

bool isOne(const OutboxEntry &entry)
{
    return entry.place.isEmpty();
}

void post(ManagedObjectContext &context, const StoreChanges &changes)
{
    if (!isOfUser(changes.author) || !calendarstore::isOffline())
        return;
    for (const StoreChanges::Update &update : changes.updated) {
        const TaskPtr task = singleWithEvent(update.object);
        if (task && concernsEvent(update.columns))
            context.post({0, 0, {}, task->identifier(), std::nullopt, textOf(update.columns)});
    }
    for (const ObjectPtr &object : changes.deleted) {
        if (const TaskPtr task = singleWithEvent(object))
            context.post(
                {0, 0, {}, task->calendarID(), std::nullopt, deletionMark + task->typeCalendarID().toUtf8()});
    }
}

void write(ManagedObjectContext &context)
{
    if (calendarstore::isOffline())
        return;
    std::map<QString, Work> rows;
    /// By UID: the calendar, and what was taken back goes out again.
    std::map<QString, QString> deletions;
    std::vector<qint64> finished;
    for (const OutboxEntry &entry : context.pendingOutbox()) {
        if (!isOne(entry))
            continue;
        finished.push_back(entry.sequence);
        if (!isDeletion(entry)) {
            // An edit that was taken back is an edit, too.
            const std::string columns = entry.after.value_or(entry.before.value_or("")).toStdString();
            rows[entry.key].columns |= ManagedObject::ColumnSet(columns);
        } else if (entry.after) {
            deletions[entry.key] = QString::fromUtf8(entry.after->mid(qstrlen(deletionMark)));
        } else {
            deletions.erase(entry.key);
        }
    }
    if (finished.empty())
        return;
    RecordsTransaction transaction({}, ChangeAuthor::Pass);
    for (const auto &[identifier, work] : rows) {
        const TaskPtr row = singleWithEvent(context.object(EntityTask::entityName, identifier));
        if (row)
            writeRow(transaction, row, work.columns);
    }
    for (const auto &[uid, calendar] : deletions)
        removeEvent(uid, calendar);
    context.finishOutboxWithCommit(finished);
    DBWorker::tellOfFailure(transaction.commit());
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
        const bool isDated = row && (row->startDate() || row->type() == TaskType::EmailCall);
        if (!isDated)
            continue;
        if (row->typeCalendarID().isEmpty() && usual && usual->allowsContentModifications)
            row->setTypeCalendarID(CalendarCatalogue::identifierOfCalendar(*usual));
        const auto calendar = CalendarCatalogue::calendarOfIdentifier(row->typeCalendarID());
        if (!calendar || !calendar->allowsContentModifications)
            continue;
        EventWriter::initEventCalendarFromTask(transaction, *row, Span::FutureTasks, std::nullopt, false);
        if (!row->calendarID().isEmpty())
            row->setWasCreatedOffCalendar(false);
    }
    DBWorker::tellOfFailure(transaction.commit());
}

} // namespace offlinechanges

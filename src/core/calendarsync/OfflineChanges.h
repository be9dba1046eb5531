#pragma once

#include "foundation/Date.h"
#include "objectstore/ManagedObjectContext.h"
#include "store/entities/Entities.h"
#include "store/entities/TaskValues.h"

#include <QSet>

/// What was changed of rows while their events could not be read or written: the outbox keeps which rows, and
/// in which columns, until they can.
namespace offlinechanges {

/// Whether an entry of the outbox is of this kind: it has no place.
bool isOne(const OutboxEntry &entry);

/// The one place for what cannot be written now, because there is no access, none of the calendars is chosen
/// or they do not answer. The change of the row, or its deletion, is posted with its commit; a row without an
/// event gets one later; the other rows of a series are kept alike.
/// \param formerDay where the event stands, if it is not the day of the row.
void keepForLater(EntityTask &row, Span span, OptionalDate formerDay = {});
/// The same of a row that is about to be deleted.
void keepDeletionForLater(const EntityTask &row, Span span);

/// An event as an entry knows it: its identifier, the calendar that its row named, and its day; with the
/// span, of a series those after it.
struct EventOfEntry
{
    QString item;
    QString calendar;
    Span span = Span::ThisTask;
    OptionalDate day;
};
/// Whether columns of a row say something that its event shows.
bool concernsEvent(const ManagedObject::ColumnSet &columns);
/// For the commit that is under way: the columns of a row are to be written to its event, which is still on
/// its former day. Of a row that names no event, one is to be made.
void postEdit(ManagedObjectContext &context, const EntityTask &row, const EventOfEntry &event,
              const ManagedObject::ColumnSet &columns);
/// The same: the event is to go.
void postDeletion(ManagedObjectContext &context, const EventOfEntry &event);
/// The same: it is to be there again.
void postReturn(ManagedObjectContext &context, const EventOfEntry &event);

/// Posts what a commit changes and the calendars cannot take now.
void post(ManagedObjectContext &context, const StoreChanges &changes);
/// The commit has what was kept for later.
void committed();
/// Writes what was posted to the events, and commits. What still cannot be written stays posted.
void write(ManagedObjectContext &context);
/// The identifiers of the events that wait for such changes. Until these are written the events are not right
/// about their rows.
QSet<QString> waitingItems(ManagedObjectContext &context);
/// Makes events for the dated tasks that have none since they were made, in the calendar that they name or
/// else in the default one, and commits.
void writeNewTasks();

} // namespace offlinechanges

#pragma once

#include "foundation/Date.h"
#include "objectstore/ManagedObjectContext.h"

class EKEventStore;

/// Brings what a commit wants of the calendars into the commit, and carries it out after it.
///
/// Writing to an event stages the change only. The commit takes all staged changes into its outbox, so that
/// rows and events change together or not at all; from then on they are seen as if they were written. They
/// are carried out at once, or in small portions while the program goes on if there are many, or at the next
/// start or activation if the program ended or the calendars could not be reached. One that a calendar
/// refuses is given up, and the user is told.
namespace CalendarOutbox {

/// Whether changes are staged that no commit has taken.
bool hasWork();
/// Posts the staged changes to the commit that is under way; where no calendar can be reached, which rows
/// that have events it changes.
void post(ManagedObjectContext &context, const StoreChanges &changes);
/// The commit is done: what it posted is seen as written from here on, and is carried out.
void committed(ManagedObjectContext &context);
/// Tries everything that is left.
void carryOut(ManagedObjectContext &context);
/// Brings to the calendars, now that they can be reached, what was changed of rows with events while they
/// could not. Before a pass, which would take the events for what is right.
void writeChangesMadeOffline(ManagedObjectContext &context);
/// Makes events for tasks that were made meanwhile. After a pass, which may have found one for them.
void writeTasksMadeOffline();
/// The same without a pause, for so long at most; for the end of the program.
void carryOutFor(ManagedObjectContext &context, Seconds longest);
/// A calendar has gone, and the user lets go what was on it: nothing is brought there any more, and what was
/// to leave another calendar for it stays there.
void forgetCalendar(ManagedObjectContext &context, const QString &calendarIdentifier);
/// Lets a new calendar store know what is still to be carried out.
void prepare(EKEventStore &store);

} // namespace CalendarOutbox

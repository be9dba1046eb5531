#pragma once

#include "objectstore/ManagedObjectContext.h"

/// What was changed of rows that have events while no calendar could be reached. The events could not be read
/// then, so that the outbox keeps which rows were changed, and in which columns, until they can.
namespace offlinechanges {

/// Whether an entry of the outbox is of this kind: it has no place.
bool isOne(const OutboxEntry &entry);
/// Posts what a commit changes, if no calendar can be reached.
void post(ManagedObjectContext &context, const StoreChanges &changes);
/// Writes what was posted to the events, and commits.
void write(ManagedObjectContext &context);
/// Makes events for the dated tasks that were made meanwhile, in the calendar that they name or else in the
/// default one, and commits.
void writeNewTasks();

} // namespace offlinechanges

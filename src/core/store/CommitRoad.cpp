#include "store/CommitRoad.h"

#include "calendarsync/AlertSchedule.h"
#include "calendarsync/CalendarOutbox.h"
#include "records/SearchIndex.h"
#include "store/AppDelegate.h"
#include "store/queries/DBWorker.h"

bool CommitRoad::hasWork() const
{
    return CalendarOutbox::hasWork();
}

void CommitRoad::willCommit(ManagedObjectContext &context, const StoreChanges &changes)
{
    SearchIndex::follow(changes);
    CalendarOutbox::post(context, changes);
}

void CommitRoad::didCommit(ManagedObjectContext &context, const StoreChanges &changes)
{
    // What another process committed is no commit of ours.
    if (!changes.isUnknown)
        CalendarOutbox::committed(context);
    if (!DBWorker::isSample())
        AlertSchedule::follow(changes);
    if (AppDelegate *delegate = AppDelegate::shared())
        delegate->managedObjectContexLocalChangeData(changes);
}

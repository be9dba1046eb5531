#include "store/CommitRoad.h"

#include "calendarsync/CalendarOutbox.h"
#include "records/SearchIndex.h"
#include "store/AppDelegate.h"

bool CommitRoad::hasWork() const
{
    return CalendarOutbox::hasWork();
}

void CommitRoad::willCommit(ManagedObjectContext &context, const StoreChanges &changes)
{
    SearchIndex::follow(changes);
    CalendarOutbox::post(context);
}

void CommitRoad::didCommit(ManagedObjectContext &context, const StoreChanges &changes)
{
    CalendarOutbox::committed(context);
    if (AppDelegate *delegate = AppDelegate::shared())
        delegate->managedObjectContexLocalChangeData(changes);
}

#include "cloud/Replication.h"
#include "foundation/Log.h"
#include "records/SearchIndex.h"
#include "store/AppDelegate.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"

// What follows a change of the store: the search index, the badge, the screens.

namespace {

/// Long enough not to come between the steps of one action.
constexpr Seconds restAfterSaves{0.3};
/// So many records are looked through without being felt.
constexpr int rowsAtOnce = 200;

} // namespace

void AppDelegate::managedObjectContexLocalChangeData(const StoreChanges &changes)
{
    if (changes.concerns(EntityTask::entityName))
        badgeUpdataSoon();
    tendSearchIndexSoon();
    if (exchange && !changes.isUnknown)
        exchange->look();
    NotificationCenter::defaultCenter().post(notifications::contextDidSave, changes);
}

void AppDelegate::tendSearchIndexSoon()
{
    if (std::exchange(*isIndexDue, true))
        return;
    MainLoop::performDelayed(restAfterSaves, [this, due = std::weak_ptr(isIndexDue)] {
        if (const auto isDue = due.lock(); isDue && std::exchange(*isDue, false)) {
            const bool isMoreWritten = managedObjectContext().takeInRowsFromElsewhere(rowsAtOnce);
            const bool isMoreLeft = managedObjectContext().tendSubstringIndexes();
            if (isMoreWritten || isMoreLeft || sweep.step(managedObjectContext()))
                tendSearchIndexSoon();
        }
    });
}

void AppDelegate::mergeChanges(const StoreChanges &imported)
{
    Transaction merge(managedObjectContext(), ChangeAuthor::Replication);
    SearchIndex::follow(imported);
    for (const ObjectPtr &object : imported.inserted)
        removeDuplicatesOf(object);
    DBWorker::tellOfFailure(merge.commit());
    if (!imported.inserted.empty())
        badgeUpdata();
}

void AppDelegate::recordsCameIn(const StoreChanges &imported)
{
    Log::line(QStringLiteral("Persistent store update"));
    mergeChanges(imported);
    NotificationCenter::defaultCenter().post(notifications::iCloudChange);
}

void AppDelegate::removeDuplicatesOf(const ObjectPtr &object)
{
    if (object->isDeleted() || !object->context())
        return;
    if (const auto task = std::dynamic_pointer_cast<EntityTask>(object))
        deleteDuplicateTaskTypeWith(task);
    else if (const auto category = std::dynamic_pointer_cast<EntityCategory>(object))
        deleteDuplicateCategoryWith(category);
    else if (const auto contactCategory = std::dynamic_pointer_cast<EntityContactCategory>(object))
        deleteDuplicateCategoryContactWith(contactCategory);
    else if (const auto urlType = std::dynamic_pointer_cast<EntityURLType>(object))
        deleteDuplicateUrlTypeWith(urlType);
    else if (const auto phoneType = std::dynamic_pointer_cast<EntityPhoneType>(object))
        deleteDuplicatePhoneTypeWith(phoneType);
    else if (const auto emailType = std::dynamic_pointer_cast<EntityEmailType>(object))
        deleteDuplicateEmailTypeWith(emailType);
    else if (const auto addressType = std::dynamic_pointer_cast<EntityAddressType>(object))
        deleteDuplicateAddressTypeWith(addressType);
}

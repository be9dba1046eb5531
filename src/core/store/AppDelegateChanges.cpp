#include "records/SearchIndex.h"
#include "store/AppDelegate.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"

// What follows a change of the store: the search index, the badge, the screens.

namespace {

/// Long enough not to come between the steps of one action.
constexpr Seconds restAfterSaves{0.3};

bool isTask(const ObjectPtr &object)
{
    return object->entity().name() == EntityTask::entityName;
}

} // namespace

void AppDelegate::positionInboxTask()
{
    isPositionInbox = true;
    managedObjectContext().skipNextFollowUp();
}

void AppDelegate::managedObjectContexLocalChangeData(const ChangeList &changes)
{
    if (isPositionInbox) {
        isPositionInbox = false;
        return;
    }
    int tasks = 0;
    {
        const AuthorScope indexing(managedObjectContext(), ChangeAuthor::Program);
        for (const ObjectPtr &object : changes.inserted) {
            SearchIndex::addIndexWithObject(object);
            tasks += isTask(object);
        }
        for (const ObjectPtr &object : changes.deleted) {
            SearchIndex::deleteIndexWithObjects(object);
            tasks += isTask(object);
        }
        for (const ObjectPtr &object : changes.updated) {
            SearchIndex::updateIndexWithObject(object);
            tasks += isTask(object);
        }
        managedObjectContext().finishFollowUps();
        if (tasks != 0)
            badgeUpdataSoon();
        if (!changes.isEmpty())
            DBWorker::saveContext();
    }
    tendSearchIndexSoon();
    isPositionInbox = false;
}

void AppDelegate::finishIndexOfUncleanEnd()
{
    ManagedObjectContext &context = managedObjectContext();
    const std::vector<ObjectPtr> unfinished = context.unfinishedFollowUps();
    if (unfinished.empty())
        return;
    const AuthorScope indexing(context, ChangeAuthor::Program);
    for (const ObjectPtr &object : unfinished)
        SearchIndex::updateIndexWithObject(object);
    context.finishFollowUps();
    DBWorker::saveContext();
}

void AppDelegate::tendSearchIndexSoon()
{
    if (std::exchange(*isIndexDue, true))
        return;
    MainLoop::performDelayed(restAfterSaves, [this, due = std::weak_ptr(isIndexDue)] {
        if (const auto isDue = due.lock(); isDue && std::exchange(*isDue, false)) {
            if (managedObjectContext().tendSubstringIndexes())
                tendSearchIndexSoon();
        }
    });
}

void AppDelegate::mergeChanges(const ChangeList &imported)
{
    for (const ObjectPtr &object : imported.deleted)
        SearchIndex::deleteIndexWithObjects(object);
    for (const ObjectPtr &object : imported.updated)
        SearchIndex::updateIndexWithObject(object);
    if (imported.inserted.empty()) {
        DBWorker::saveContext();
        return;
    }
    for (const ObjectPtr &object : imported.inserted) {
        SearchIndex::addIndexWithObject(object);
        removeDuplicatesOf(object);
    }
    DBWorker::saveContext();
    badgeUpdata();
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

void AppDelegate::storesPersistentDidChange()
{
    NotificationCenter::defaultCenter().post(notifications::iCloudChange);
}

void AppDelegate::persistentStoreUbiquitousContentNameKey()
{
    NotificationCenter::defaultCenter().post(notifications::iCloudChange);
}

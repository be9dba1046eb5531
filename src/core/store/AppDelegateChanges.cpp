#include "cloud/Replication.h"
#include "foundation/Log.h"
#include "store/AppDelegate.h"
#include "store/queries/ContactRows.h"
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
    if (exchange)
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
            if (isMoreWritten || isMoreLeft || sweep.step(managedObjectContext()) || ContactRows::readAhead())
                tendSearchIndexSoon();
        }
    });
}

/// Whether tasks of the Inbox may have come to the place of others.
static bool concernsPositions(const StoreChanges &changes)
{
    const auto isTask = [](const ObjectPtr &object) {
        return object->entity().name() == EntityTask::entityName;
    };
    return std::ranges::any_of(changes.inserted, isTask) ||
           std::ranges::any_of(changes.updated, [&](const StoreChanges::Update &one) {
               return isTask(one.object) &&
                      one.columns.test(static_cast<size_t>(EntityTask::column<"position">()));
           });
}

/// Another device can have filed something under a row that was joined with its double meanwhile.
void AppDelegate::adoptOrphans()
{
    if (!exchange)
        return;
    for (const std::string_view entity :
         {EntityCategory::entityName, EntityContactCategory::entityName, EntityPhoneType::entityName,
          EntityEmailType::entityName, EntityAddressType::entityName, EntityURLType::entityName}) {
        for (const auto &orphan : exchange->orphansOf(entity, "title")) {
            const EntityDescription *holder = managedObjectContext().model().entityOfTable(
                std::string_view(orphan.row.table.constData(), static_cast<size_t>(orphan.row.table.size())));
            const ObjectPtr child =
                holder ? managedObjectContext().object(holder->name(), orphan.row.id) : nullptr;
            const int column =
                child ? holder->columnOf(std::string_view(orphan.column.constData(),
                                                          static_cast<size_t>(orphan.column.size())))
                      : -1;
            if (column < 0 || holder->isAttribute(column) || child->related(column))
                continue;
            const auto heirs = managedObjectContext().fetchObjects(
                FetchRequest(entity).where(Predicate::format("title = %@", orphan.formerText)));
            if (heirs.size() > 0)
                child->setRelated(column, heirs.objectAt(0));
        }
    }
}

void AppDelegate::mergeChanges(const StoreChanges &imported)
{
    Transaction merge(managedObjectContext(), ChangeAuthor::Replication);
    for (const ObjectPtr &object : imported.inserted)
        removeDuplicatesOf(object);
    adoptOrphans();
    if (concernsPositions(imported))
        DBWorker::makePositionsDistinct();
    DBWorker::tellOfFailure(merge.commit());
    if (!imported.inserted.empty())
        badgeUpdata();
}

void AppDelegate::recordsCameIn(const StoreChanges &imported)
{
    Log::line(QStringLiteral("Persistent store update"));
    mergeChanges(imported);
    calendarsElsewhere.reset();
    NotificationCenter::defaultCenter().post(notifications::iCloudChange);
}

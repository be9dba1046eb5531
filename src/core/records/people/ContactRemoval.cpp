#include "records/people/ContactRemoval.h"

#include "cloud/IcloudManager.h"
#include "records/RecordRemoval.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <QSet>

static bool isHeld(const QString &picture)
{
    const auto holds = Predicate::format("photoName = %@", picture);
    return !DBWorker::allContactWithImageName(picture).isEmpty() ||
           mainContext().count(EntityCompany::fetchRequest().where(holds)) != 0;
}

void ContactRemoval::remove(const std::vector<ObjectPtr> &contacts, const std::function<void()> &removed,
                            const StepBlock &step)
{
    QSet<QString> pictures;
    for (const ObjectPtr &contact : contacts)
        pictures.insert(std::static_pointer_cast<EntityContacts>(contact)->photoName());
    pictures.remove({});
    const auto removedWithPictures = [&] {
        // Those who hold it still, be it since the user ended the work early, keep it.
        for (const QString &picture : pictures) {
            if (!isHeld(picture))
                IcloudManager::removeImage(picture);
        }
        removed();
    };
    RecordRemoval::remove(contacts, removedWithPictures, step);
}

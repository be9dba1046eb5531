#include "records/people/LoosePictures.h"

#include "cloud/IcloudManager.h"
#include "foundation/Clock.h"
#include "foundation/UserDefaults.h"
#include "objectstore/ChangeJournal.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/state/SettingsKeys.h"

#include <QVariantMap>

static bool isHeldPicture(const QString &name)
{
    const auto holds = Predicate::format("photoName = %@", name);
    return !DBWorker::allContactWithImageName(name).isEmpty() ||
           mainContext().count(EntityCompany::fetchRequest().where(holds)) != 0;
}

void LoosePictures::add(const QStringList &names)
{
    UserDefaults &defaults = UserDefaults::standard();
    QVariantMap all = defaults.object(settings::loosePictures).toMap();
    const double now = Clock::now().referenceSeconds();
    for (const QString &name : names) {
        if (!name.isEmpty())
            all.insert(name, now);
    }
    if (!all.isEmpty() && !DBWorker::isSample())
        defaults.setObject(settings::loosePictures, all);
}

void LoosePictures::sweep()
{
    UserDefaults &defaults = UserDefaults::standard();
    const QVariantMap all = defaults.object(settings::loosePictures).toMap();
    if (all.isEmpty() || DBWorker::isSample())
        return;
    const double expiry = (Clock::now() - ChangeJournal::maximumAge).referenceSeconds();
    QVariantMap left = all;
    for (auto one = all.begin(); one != all.end(); ++one) {
        if (one.value().toDouble() >= expiry)
            continue;
        if (!isHeldPicture(one.key()))
            IcloudManager::removeImage(one.key());
        left.remove(one.key());
    }
    if (left.size() != all.size())
        defaults.setObject(settings::loosePictures, left);
}

#include "filters/SavedFilter.h"

#include "filters/FilterEntries.h"
#include "foundation/UserDefaults.h"
#include "store/state/SettingsKeys.h"

SavedFilter::SavedFilter(QString defaultsKey, QString listKey, FilterEntry (*pristineEntry)())
    : key(std::move(defaultsKey))
    , list(std::move(listKey))
    , pristine(pristineEntry)
{}

SavedFilter SavedFilter::ofTasks(int type)
{
    return {settings::taskFilters, QString::number(type), filters::pristineTaskEntry};
}

SavedFilter SavedFilter::ofProjects()
{
    return {settings::projectsFilters, {}, filters::pristineProjectEntry};
}

SavedFilter SavedFilter::ofContacts()
{
    return {settings::contactsFilters, {}, filters::pristineContactEntry};
}

QString SavedFilter::keyInUse() const
{
    return DBWorker::isSample() ? key + QStringLiteral("OfSample") : key;
}

FilterEntry SavedFilter::entry() const
{
    const QVariantMap stored = UserDefaults::standard().object(keyInUse()).toMap();
    const FilterEntry entry = list.isEmpty() ? stored : stored.value(list).toMap();
    // Those of the sample are not seeded.
    return entry.isEmpty() && DBWorker::isSample() && canBeFiltered() ? pristine() : entry;
}

bool SavedFilter::isEnabled(const FilterEntry &entry)
{
    return entry.value(QStringLiteral("Enabled")).toBool();
}

void SavedFilter::store(const FilterEntry &entry) const
{
    UserDefaults &defaults = UserDefaults::standard();
    QVariantMap stored = entry;
    if (!list.isEmpty()) {
        stored = defaults.object(keyInUse()).toMap();
        stored.insert(list, entry);
    }
    defaults.setObject(keyInUse(), stored);
    defaults.synchronize();
}

void SavedFilter::storePristine() const
{
    if (canBeFiltered())
        store(pristine());
}

bool SavedFilter::canBeFiltered() const
{
    return list.isEmpty() || filters::seedOfTaskFilters().contains(list);
}

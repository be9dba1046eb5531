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

FilterEntry SavedFilter::entry() const
{
    const QVariantMap stored = UserDefaults::standard().object(key).toMap();
    return list.isEmpty() ? stored : stored.value(list).toMap();
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
        stored = defaults.object(key).toMap();
        stored.insert(list, entry);
    }
    defaults.setObject(key, stored);
    defaults.synchronize();
}

void SavedFilter::storePristine() const
{
    if (list.isEmpty() || filters::seedOfTaskFilters().contains(list))
        store(pristine());
}

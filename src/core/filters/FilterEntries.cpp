#include "filters/FilterEntries.h"

#include "foundation/UserDefaults.h"
#include "store/state/SettingsKeys.h"

namespace filters {

namespace {

QVariantMap criterion(const QString &key, const QVariant &value, bool isEnabled = false)
{
    return {{QStringLiteral("Key"), key},
            {QStringLiteral("Value"), value},
            {QStringLiteral("Enabled"), isEnabled ? 1 : 0}};
}

QVariantMap period()
{
    return {{QStringLiteral("Key"), QStringLiteral("Period")},
            {QStringLiteral("From"), allMarker},
            {QStringLiteral("To"), allMarker},
            {QStringLiteral("Enabled"), 0}};
}

QVariantMap entry(const QVariantList &criteria)
{
    return {{QStringLiteral("Enabled"), 0}, {QStringLiteral("Array"), criteria}};
}

} // namespace

QVariantMap pristineTaskEntry()
{
    return entry(
        {criterion(QStringLiteral("Title"), QString(QLatin1String(""))),
         criterion(QStringLiteral("Type"), allMarker), criterion(QStringLiteral("Category"), allMarker),
         criterion(QStringLiteral("Status"), allMarker, true),
         criterion(QStringLiteral("Priority"), allMarker), criterion(QStringLiteral("Tags"), allMarker),
         period(), criterion(QStringLiteral("Location"), allMarker),
         criterion(QStringLiteral("Delegate"), allMarker), criterion(QStringLiteral("Company"), allMarker),
         criterion(QStringLiteral("Project"), allMarker)});
}

QVariantMap pristineProjectEntry()
{
    return entry({criterion(QStringLiteral("Title"), QString(QLatin1String(""))),
                  criterion(QStringLiteral("Priority"), allMarker),
                  criterion(QStringLiteral("Category"), allMarker),
                  criterion(QStringLiteral("Status"), allMarker), period(),
                  criterion(QStringLiteral("Delegate"), allMarker)});
}

QVariantMap pristineContactEntry()
{
    return entry({criterion(QStringLiteral("Active"), allMarker, true),
                  criterion(QStringLiteral("Companies"), allMarker, true),
                  criterion(QStringLiteral("Categories"), allMarker, true)});
}

std::optional<bool> activityOf(const QVariant &value)
{
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    return isNumber ? std::optional<bool>(number != 0) : std::nullopt;
}

QVariantMap seedOfTaskFilters()
{
    QVariantMap seed;
    for (const char *list : {"0", "1", "2", "3", "6"})
        seed.insert(QLatin1String(list), pristineTaskEntry());
    return seed;
}

QVariantMap seedOfTaskGrouped()
{
    QVariantMap seed;
    for (const char *list : {"0", "1", "2", "3"})
        seed.insert(QLatin1String(list), -1);
    return seed;
}

void seedDefaults()
{
    UserDefaults &defaults = UserDefaults::standard();
    const auto seed = [&defaults](const QString &key, QVariantMap (*make)()) {
        if (!defaults.contains(key))
            defaults.setObject(key, make());
    };
    seed(settings::taskFilters, seedOfTaskFilters);
    seed(settings::projectsFilters, pristineProjectEntry);
    seed(settings::contactsFilters, pristineContactEntry);
    seed(settings::taskGrouped, seedOfTaskGrouped);
}

} // namespace filters

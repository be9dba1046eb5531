#include "filters/FilterEntries.h"
#include "filters/FilterPeriod.h"
#include "foundation/UserDefaults.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"
#include "store/queries/DBWorker.h"
#include "store/state/SettingsKeys.h"

// From a saved filter to conditions.

namespace {

/// The criteria of an entry that are to be applied, found by their key.
class Criteria
{
public:
    explicit Criteria(const FilterEntry *entry)
    {
        if (entry && entry->value(QStringLiteral("Enabled")).toBool())
            array = entry->value(QStringLiteral("Array")).toList();
    }

    /// The criterion of that key if it is there and enabled, else an empty map.
    QVariantMap enabled(const QString &key) const
    {
        const int place = DBWorker::indexObject(key, array);
        const QVariantMap criterion = place < 0 ? QVariantMap() : array.at(place).toMap();
        return criterion.value(QStringLiteral("Enabled")).toBool() ? criterion : QVariantMap();
    }
    QVariant value(const QString &key) const { return enabled(key).value(QStringLiteral("Value")); }

private:
    QVariantList array;
};

void addTitle(const Criteria &criteria, std::vector<Predicate> &predicates)
{
    const QString title = criteria.value(QStringLiteral("Title")).toString();
    if (!title.isEmpty())
        predicates.push_back(Predicate::format("title beginswith [cd] %@", title));
}

/// A number: type, status or priority.
void addNumber(const Criteria &criteria, const QString &criterion, const char *key,
               std::vector<Predicate> &predicates)
{
    const QVariant value = criteria.value(criterion);
    bool isNumber = false;
    const qint64 number = value.toLongLong(&isNumber);
    if (value.isValid() && value.toString() != filters::allMarker && isNumber)
        predicates.push_back(Predicate::format(std::string(key) + " = %@", number));
}

/// One linked object, or none.
void addObject(const Criteria &criteria, const QString &criterion, const char *key,
               std::vector<Predicate> &predicates)
{
    const QString value = criteria.value(criterion).toString();
    if (value == filters::noneMarker)
        predicates.push_back(Predicate::format(std::string(key) + " = nil"));
    else if (const ObjectPtr object = DBWorker::getObjectFromId(value))
        predicates.push_back(Predicate::format(std::string(key) + " = %@", object));
}

/// Any of several linked objects, or none at all. A text constrains nothing.
void addObjects(const Criteria &criteria, const QString &criterion, const char *key,
                std::vector<Predicate> &predicates)
{
    const QVariant value = criteria.value(criterion);
    if (value.typeId() != QMetaType::QVariantList && value.typeId() != QMetaType::QStringList)
        return;
    const QVariantList uris = value.toList();
    if (uris.isEmpty()) {
        predicates.push_back(Predicate::format("ANY " + std::string(key) + " == nil"));
        return;
    }
    std::vector<ObjectPtr> objects;
    for (const QVariant &uri : uris)
        objects.push_back(DBWorker::getObjectFromId(uri.toString()));
    predicates.push_back(Predicate::format("ANY " + std::string(key) + " in %@", objects));
}

struct Period
{
    OptionalDate from;
    OptionalDate to;
};

Period periodOf(const QVariantMap &criterion)
{
    const QVariant from = criterion.value(QStringLiteral("From"));
    const QVariant to = criterion.value(QStringLiteral("To"));
    const bool isOpenStart = from.toString() == filters::allMarker;
    Period period;
    period.from =
        filters::dateOfValue(isOpenStart ? UserDefaults::standard().object(settings::firstRun) : from);
    period.to = to.toString() == filters::allMarker ? MVDate::date() : filters::dateOfValue(to);
    if (!period.from)
        period.from = MTDates::oneWeekPrevious(MVDate::date());
    return period;
}

} // namespace

int DBWorker::indexObject(const QString &key, const QVariantList &array)
{
    for (qsizetype place = 0; place < array.size(); ++place) {
        if (array.at(place).toMap().value(QStringLiteral("Key")).toString() == key)
            return static_cast<int>(place);
    }
    return -1;
}

std::vector<Predicate> DBWorker::predicateTasks(const FilterEntry *filter)
{
    const Criteria criteria(filter);
    std::vector<Predicate> predicates;
    addTitle(criteria, predicates);
    addNumber(criteria, QStringLiteral("Type"), "type", predicates);
    addObject(criteria, QStringLiteral("Category"), "category", predicates);
    addNumber(criteria, QStringLiteral("Status"), "status", predicates);
    addNumber(criteria, QStringLiteral("Priority"), "priority", predicates);
    addObjects(criteria, QStringLiteral("Tags"), "tags", predicates);
    if (const QVariantMap period = criteria.enabled(QStringLiteral("Period")); !period.isEmpty()) {
        const auto [from, to] = periodOf(period);
        const OptionalDate dayStart = from ? OptionalDate(MVDate::getStartOfDay(*from)) : std::nullopt;
        const OptionalDate dayEnd = to ? OptionalDate(MVDate::getEndOfDay(*to)) : std::nullopt;
        predicates.push_back(Predicate::format("(creationDate >= %@ and creationDate <= %@) or (dueDate >= "
                                               "%@ and dueDate <= %@) or (startDate >= %@ and "
                                               "startDate <= %@) or (type = %d and ((dueDate >= %@ and "
                                               "dueDate <= %@) or (startDate >= %@ and startDate <= "
                                               "%@)))",
                                               from, to, from, to, from, to, TaskType::ToDo, dayStart, dayEnd,
                                               dayStart, dayEnd));
    }
    addObject(criteria, QStringLiteral("Location"), "location", predicates);
    addObjects(criteria, QStringLiteral("Delegate"), "delegateToUser", predicates);
    addObjects(criteria, QStringLiteral("Company"), "company", predicates);
    addObject(criteria, QStringLiteral("Project"), "project", predicates);
    return predicates;
}

std::vector<Predicate> DBWorker::predicateProjects(const FilterEntry *filter)
{
    const Criteria criteria(filter);
    std::vector<Predicate> predicates;
    addTitle(criteria, predicates);
    addObject(criteria, QStringLiteral("Category"), "category", predicates);
    addNumber(criteria, QStringLiteral("Status"), "status", predicates);
    addNumber(criteria, QStringLiteral("Priority"), "priority", predicates);
    if (const QVariantMap period = criteria.enabled(QStringLiteral("Period")); !period.isEmpty()) {
        const auto [from, to] = periodOf(period);
        predicates.push_back(Predicate::format(
            "(creationDate >= %@ and creationDate <= %@) or (dueDate >= %@ and dueDate <= %@) or "
            "(startDate >= %@ and startDate <= %@)",
            from, to, from, to, from, to));
    }
    addObjects(criteria, QStringLiteral("Delegate"), "delegateToUser", predicates);
    return predicates;
}

std::vector<Predicate> DBWorker::predicateContacts(const FilterEntry *filter)
{
    const Criteria criteria(filter);
    std::vector<Predicate> predicates;
    if (const std::optional<bool> active = filters::activityOf(criteria.value(QStringLiteral("Active"))))
        predicates.push_back(Predicate::format(*active ? "task != nil" : "task == nil"));
    addObjects(criteria, QStringLiteral("Companies"), "company", predicates);
    addObjects(criteria, QStringLiteral("Categories"), "contactCategory", predicates);
    return predicates;
}

#include "filters/ListFilter.h"

#include "filters/FilterEntries.h"
#include "filters/FilterPeriod.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"

// Reading and writing the entry. The pop-ups are in ListFilterPopUps.cpp.

namespace {

const QString arrayKey = QStringLiteral("Array");
const QString enabledKey = QStringLiteral("Enabled");
const QString valueKey = QStringLiteral("Value");
const QString fromKey = QStringLiteral("From");
const QString toKey = QStringLiteral("To");
const QString period = QStringLiteral("Period");

} // namespace

ListFilter::ListFilter(SavedFilter place, std::vector<FilterRow> popoverRows)
    : saved(std::move(place))
    , rows(std::move(popoverRows))
    , dictionary(saved.entry())
{}

void ListFilter::setPlace(const SavedFilter &place)
{
    saved = place;
    reloadEntry();
}

void ListFilter::reloadEntry()
{
    dictionary = saved.entry();
    shownPopUps.clear();
    allowSetDate = false;
}

void ListFilter::clear()
{
    saved.storePristine();
    reloadEntry();
}

QVariantMap ListFilter::criterion(const QString &key) const
{
    const QVariantList array = dictionary.value(arrayKey).toList();
    const int place = DBWorker::indexObject(key, array);
    return place < 0 ? QVariantMap() : array.at(place).toMap();
}

std::vector<FilterRow> ListFilter::enabledRows() const
{
    std::vector<FilterRow> enabled;
    for (const FilterRow &row : rows) {
        if (!criterion(row.key).isEmpty())
            enabled.push_back(row);
    }
    return enabled;
}

void ListFilter::changeCriterion(const QString &key, const QVariantMap &changes, EntryState state)
{
    QVariantList array = dictionary.value(arrayKey).toList();
    const int place = DBWorker::indexObject(key, array);
    if (place >= 0) {
        QVariantMap changed = array.at(place).toMap();
        changed.insert(changes);
        array[place] = changed;
        FilterEntry entry = saved.entry();
        entry.insert(arrayKey, array);
        if (state == EntryState::Enabled)
            entry.insert(enabledKey, 1);
        saved.store(entry);
        dictionary = saved.entry();
    }
    if (reloadBlock)
        reloadBlock(dictionary);
}

void ListFilter::changeValueForKey(const QVariant &value, const QString &key)
{
    changeCriterion(key, {{enabledKey, 1}, {valueKey, value}}, EntryState::Enabled);
}

FilterSelection ListFilter::selection(const QString &key) const
{
    const QVariant stored = value(key);
    FilterSelection selected;
    const bool isList =
        stored.typeId() == QMetaType::QVariantList || stored.typeId() == QMetaType::QStringList;
    selected.selectedAll = !isList && stored.toString() != filters::noneMarker;
    for (const QVariant &uri : isList ? stored.toList() : QVariantList()) {
        if (const ObjectPtr object = DBWorker::getObjectFromId(uri.toString()))
            selected.objects.push_back(object);
    }
    return selected;
}

void ListFilter::toPopUp(const QString &key, const FilterSelection &selected)
{
    QVariantList uris;
    for (const ObjectPtr &object : selected.objects) {
        // What was marked may have been deleted since.
        const QString uri = DBWorker::getIdFromObject(object);
        if (DBWorker::getObjectFromId(uri))
            uris.append(uri);
    }
    changeValueForKey(selected.selectedAll ? QVariant(filters::allMarker) : QVariant(uris), key);
}

const FilterPeriodPickers &ListFilter::setDataPeriod()
{
    allowSetDate = false;
    const QVariantMap stored = criterion(period);
    const QVariant from = stored.value(fromKey);
    const bool isOpenStart = from.toString() == filters::allMarker;
    const OptionalDate start = isOpenStart ? filters::firstRun() : filters::dateOfValue(from);
    pickers.from = start ? *start : MTDates::oneWeekPrevious(MVDate::date());
    pickers.to = filters::dateOfValue(stored.value(toKey)).value_or(MVDate::date());
    pickers.minimumOfTo = pickers.from;
    pickers.maximumOfFrom = pickers.to;
    allowSetDate = true;
    return pickers;
}

void ListFilter::setDateFrom(Date date)
{
    if (!allowSetDate)
        return;
    pickers.from = date;
    pickers.minimumOfTo = date;
    changeCriterion(period, {{enabledKey, 1}, {fromKey, QVariant::fromValue(date)}}, EntryState::Enabled);
}

void ListFilter::setDateTo(Date date)
{
    if (!allowSetDate)
        return;
    pickers.to = date;
    pickers.maximumOfFrom = date;
    changeCriterion(period, {{enabledKey, 1}, {toKey, QVariant::fromValue(date)}}, EntryState::Enabled);
}

void ListFilter::buttonClearPeriod()
{
    const QVariantMap open = {{enabledKey, 0}, {fromKey, filters::allMarker}, {toKey, filters::allMarker}};
    changeCriterion(period, open, EntryState::AsItIs);
    setDataPeriod();
}

#include "filters/FilterEntries.h"
#include "filters/ListFilter.h"
#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/Functional.h"
#include "records/ProjectManager.h"

// The pop-ups of a filter: their items, which one is selected, and what choosing one writes.

namespace {

const QString all = QStringLiteral("All");
const QString none = QStringLiteral("None");

// The words of the numbers that a saved filter holds.

QString typeWord(int number)
{
    return Functional::typeStringFromType(static_cast<TaskType>(number));
}

QString statusWord(int number)
{
    return Functional::statusStringFromType(static_cast<TaskStatus>(number));
}

QString priorityWord(int number)
{
    return Functional::priorityStringFromType(static_cast<Priority>(number));
}

/// What a filter of contacts asks of their tasks.
const QString withTasks = QStringLiteral("Active");
const QString withoutTasks = QStringLiteral("Inactive");

QString activityWord(int number)
{
    return localized(number != 0 ? withTasks : withoutTasks);
}

/// The number that an item of a pop-up of words stands for.
int numberOfWord(const QString &key, const QString &word)
{
    if (key == QStringLiteral("Type"))
        return static_cast<int>(Functional::taskTypeFromString(word));
    if (key == withTasks)
        return word == localized(withTasks) ? 1 : 0;
    return key == QStringLiteral("Status") ? static_cast<int>(Functional::statusTypeFromString(word))
                                           : static_cast<int>(Functional::priorityTypeFromString(word));
}

bool isNumber(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Double:
    case QMetaType::Bool:
        return true;
    default:
        return false;
    }
}

/// The objects of a list with their titles.
struct Titled
{
    std::vector<ObjectPtr> objects;
    QStringList titles;
};

template <typename List, typename TitleOf>
Titled titled(const List &list, TitleOf titleOf)
{
    Titled found;
    for (const auto &object : list) {
        if (!object)
            continue;
        found.objects.push_back(object);
        found.titles.append(titleOf(*object));
    }
    return found;
}

/// The seeded categories go by the words for them; no two items read the same.
Titled titledCategories()
{
    Titled found;
    for (const CategoryPtr &category : DBWorker::allCategories()) {
        found.objects.push_back(category);
        found.titles.append(
            Functional::getUnicalCategoryTitleWithArray(found.titles, Categories::shownTitle(category)));
    }
    return found;
}

} // namespace

FilterPopUp ListFilter::wordsPopUp(const QString &key, const QStringList &words, QString (*wordOf)(int)) const
{
    FilterPopUp popUp;
    popUp.items.append(localized(all));
    for (const QString &word : words)
        popUp.items.append(localized(word));
    popUp.wordCount = static_cast<int>(popUp.items.size());
    const QVariant stored = value(key);
    const QString word = isNumber(stored) ? wordOf(stored.toInt()) : QString();
    popUp.selectedIndex = word.isEmpty() ? 0 : static_cast<int>(popUp.items.indexOf(word));
    return popUp;
}

FilterPopUp ListFilter::objectsPopUp(const QString &key, const std::vector<ObjectPtr> &objects,
                                     const QStringList &titles, const QStringList &words) const
{
    FilterPopUp popUp;
    for (const QString &word : words)
        popUp.items.append(localized(word));
    popUp.wordCount = static_cast<int>(popUp.items.size());
    popUp.items += titles;
    popUp.objects = objects;
    const QString stored = value(key).toString();
    if (stored == filters::noneMarker) {
        popUp.selectedIndex = static_cast<int>(words.indexOf(none));
        return popUp;
    }
    const ObjectPtr object = DBWorker::getObjectFromId(stored);
    const auto found = std::find(objects.begin(), objects.end(), object);
    if (object && found != objects.end())
        popUp.selectedIndex = popUp.wordCount + static_cast<int>(found - objects.begin());
    return popUp;
}

FilterPopUp ListFilter::makePopUp(const QString &key) const
{
    if (key == QStringLiteral("Type"))
        return wordsPopUp(
            key, {QStringLiteral("ToDo"), QStringLiteral("Appointment"), QStringLiteral("Email/Call")},
            typeWord);
    if (key == QStringLiteral("Status"))
        return wordsPopUp(key,
                          {QStringLiteral("Open"), QStringLiteral("In Progress"), QStringLiteral("Pending"),
                           QStringLiteral("Done")},
                          statusWord);
    if (key == QStringLiteral("Priority"))
        return wordsPopUp(key,
                          {QStringLiteral("No Priority"), QStringLiteral("High"), QStringLiteral("Medium"),
                           QStringLiteral("Low")},
                          priorityWord);
    if (key == withTasks)
        return wordsPopUp(key, {withTasks, withoutTasks}, activityWord);
    if (key == QStringLiteral("Category")) {
        const Titled categories = titledCategories();
        return objectsPopUp(key, categories.objects, categories.titles, {all});
    }
    const bool isLocation = key == QStringLiteral("Location");
    if (!isLocation && key != QStringLiteral("Project"))
        return {};
    const Titled places = isLocation ? titled(DBWorker::allLocations(), std::mem_fn(&EntityLocation::title))
                                     : titled(DBWorker::allProjects(), &ProjectManager::shownTitle);
    return objectsPopUp(key, places.objects, places.titles, {all, none});
}

FilterPopUp ListFilter::popUp(const QString &key)
{
    return shownPopUps[key] = makePopUp(key);
}

void ListFilter::chooseItem(int item, const QString &key)
{
    const FilterPopUp shown = shownPopUps.contains(key) ? shownPopUps.value(key) : popUp(key);
    if (item < 0 || item >= shown.items.size())
        return;
    QVariant chosen = filters::allMarker;
    const int place = item - shown.wordCount;
    if (place >= 0)
        chosen = DBWorker::getIdFromObject(shown.objects[static_cast<size_t>(place)]);
    else if (item > 0 && shown.items.at(item) == localized(none))
        chosen = filters::noneMarker;
    else if (item > 0)
        chosen = numberOfWord(key, shown.items.at(item));
    changeValueForKey(chosen, key);
}

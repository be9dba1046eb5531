#include "filters/FilterContact.h"

#include "filters/FilterEntries.h"
#include "foundation/Localization.h"

namespace {

enum Activity { Everybody = 0, Active = 1, Inactive = 2 };

const QString active = QStringLiteral("Active");
const QString companies = QStringLiteral("Companies");
const QString categories = QStringLiteral("Categories");

using Editor = FilterRow::Editor;

FilterRow row(int tag, const QString &key, const QString &label, Editor editor)
{
    return {tag, key, localized(label), editor};
}

template <typename T>
std::vector<std::shared_ptr<T>> objectsOf(const FilterSelection &selection)
{
    std::vector<std::shared_ptr<T>> objects;
    for (const ObjectPtr &object : selection.objects) {
        if (const auto wanted = std::dynamic_pointer_cast<T>(object))
            objects.push_back(wanted);
    }
    return objects;
}

/// What a stored list keeps about companies or categories, as the filter keeps it.
template <typename T>
QVariant valueOf(bool isAll, const std::vector<std::shared_ptr<T>> &objects)
{
    if (isAll || objects.empty())
        return isAll ? filters::allMarker : filters::noneMarker;
    QVariantList uris;
    for (const auto &object : objects)
        uris.append(DBWorker::getIdFromObject(object));
    return uris;
}

} // namespace

FilterContact::FilterContact()
    : ListFilter(SavedFilter::ofContacts(),
                 {row(1, active, QStringLiteral("Tasks"), Editor::Segment),
                  row(2, companies, QStringLiteral("Company"), Editor::Companies),
                  row(3, categories, QStringLiteral("Job Title"), Editor::ContactCategories)})
{}

int FilterContact::segmentControllerActivity() const
{
    const std::optional<bool> wanted = filters::activityOf(value(active));
    return !wanted ? Everybody : *wanted ? Active : Inactive;
}

void FilterContact::setSegmentControllerActivity(int index)
{
    changeValueForKey(index == Active     ? QVariant(1)
                      : index == Inactive ? QVariant(0)
                                          : QVariant(filters::allMarker),
                      active);
}

MVContactGroup FilterContact::getContactGroup() const
{
    MVContactGroup group;
    group.title = localized(QStringLiteral("Private List"));
    const FilterSelection chosenCompanies = selection(companies);
    group.allCompanies = chosenCompanies.selectedAll;
    if (!chosenCompanies.selectedAll)
        group.companies = objectsOf<EntityCompany>(chosenCompanies);
    const FilterSelection chosenCategories = selection(categories);
    group.allCategories = chosenCategories.selectedAll;
    if (!chosenCategories.selectedAll)
        group.categories = objectsOf<EntityContactCategory>(chosenCategories);
    group.criteria = segmentControllerActivity();
    return group;
}

void FilterContact::setFilter(const EntityContactGroup &list)
{
    setSegmentControllerActivity(list.criteria().value_or(Everybody));
    changeValueForKey(valueOf(list.allCompanies().value_or(false), list.companies()), companies);
    changeValueForKey(valueOf(list.allCategories().value_or(false), list.categories()), categories);
}

void FilterContact::viewWillAppear(const EntityContactGroup *group)
{
    if (!group)
        clear();
}

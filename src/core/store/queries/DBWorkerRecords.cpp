#include "foundation/Localization.h"
#include "foundation/TextFolding.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/ListDefinitions.h"
#include "store/queries/TypedNumber.h"

// Fetches of everything that is not a list of tasks.

namespace {

template <typename T>
ObjectList<T> allBy(const char *key)
{
    return mainContext().fetch<T>(T::fetchRequest().sortedBy({ascending(key)}));
}

/// Seeded categories go by the word that is shown for them, those of the user by their own.
QString shownTitle(const EntityCategory &category)
{
    constexpr int firstOwnIndex = 6;
    return category.index().value_or(0) < firstOwnIndex ? localized(category.title()) : category.title();
}

template <typename T>
std::vector<std::shared_ptr<T>> loaded(const ObjectList<T> &list)
{
    std::vector<std::shared_ptr<T>> objects;
    objects.reserve(static_cast<size_t>(list.size()));
    for (auto object : list) {
        if (object)
            objects.push_back(std::move(object));
    }
    return objects;
}

} // namespace

std::vector<CategoryPtr> DBWorker::allCategories(int kind)
{
    FetchRequest request = EntityCategory::fetchRequest();
    if (kind == WithTasks)
        request.where(Predicate::format("task != nil"));
    else if (kind == WithoutTasks)
        request.where(Predicate::format("task == nil"));
    std::vector<std::pair<QString, CategoryPtr>> titled;
    for (CategoryPtr &category : loaded(mainContext().fetch<EntityCategory>(request)))
        titled.emplace_back(shownTitle(*category), std::move(category));
    std::stable_sort(titled.begin(), titled.end(), [](const auto &one, const auto &other) {
        return caseInsensitiveCompare(one.first, other.first) < 0;
    });
    std::vector<CategoryPtr> categories;
    for (auto &[title, category] : titled)
        categories.push_back(std::move(category));
    return categories;
}

ObjectList<EntityContactCategory> DBWorker::allContactCategories(int kind)
{
    // Contact categories know no tasks, so that nothing but all of them can be asked for.
    if (kind != EveryKind)
        return {};
    return allBy<EntityContactCategory>("title");
}

bool DBWorker::categoryExists(const QString &title)
{
    return mainContext().count(
               EntityCategory::fetchRequest().where(Predicate::format("title = %@", title))) != 0;
}

std::vector<ContactPtr> DBWorker::allDelegateds(const FilterEntry *filter)
{
    return sortContacta(loaded(mainContext().fetch<EntityContacts>(
        EntityContacts::fetchRequest().where(Predicate::allOf(predicateContacts(filter))))));
}

ObjectList<EntityContacts> DBWorker::selectContactsWithPredicates(const std::vector<Predicate> &predicates)
{
    return mainContext().fetch<EntityContacts>(EntityContacts::fetchRequest()
                                                   .where(Predicate::allOf(predicates))
                                                   .sortedBy({ascending("firstName")})
                                                   .reportedAs(QStringLiteral("Can't get Contacts")));
}

ObjectList<EntityContactGroup> DBWorker::allContactPrivateGroup()
{
    return mainContext().fetch<EntityContactGroup>(
        EntityContactGroup::fetchRequest()
            .where(Predicate::format("useGeneralFilter != nil && useGeneralFilter == false"))
            .sortedBy({ascending("title")}));
}

ObjectList<EntityContactGroup> DBWorker::allContactPrivateList()
{
    return mainContext().fetch<EntityContactGroup>(
        EntityContactGroup::fetchRequest()
            .where(Predicate::format("useGeneralFilter == nil || useGeneralFilter == true"))
            .sortedBy({ascending("title")}));
}

ObjectList<EntityContacts> DBWorker::allContactWithImageName(const QString &name)
{
    return mainContext().fetch<EntityContacts>(
        EntityContacts::fetchRequest().where(Predicate::format("photoName = %@", name)));
}

ObjectList<EntityCompany> DBWorker::allCompany()
{
    return allBy<EntityCompany>("title");
}

ObjectList<EntityNote> DBWorker::allNote()
{
    return allBy<EntityNote>("title");
}

ObjectList<EntityLocation> DBWorker::allLocations()
{
    return allBy<EntityLocation>("title");
}

ObjectList<EntityProject> DBWorker::allProjects()
{
    return allBy<EntityProject>("title");
}

ObjectList<EntityURLType> DBWorker::allURLType()
{
    return allBy<EntityURLType>("index");
}

ObjectList<EntityPhoneType> DBWorker::allPhoneType()
{
    return allBy<EntityPhoneType>("index");
}

ObjectList<EntityAddressType> DBWorker::allAddressType()
{
    return allBy<EntityAddressType>("index");
}

ObjectList<EntityEmailType> DBWorker::allEmailType()
{
    return allBy<EntityEmailType>("index");
}

ObjectListBase DBWorker::allEntityWithName(const std::string &entity, const std::string &sort)
{
    return mainContext().fetchObjects(FetchRequest(entity).sortedBy({ascending(sort)}));
}

std::vector<ProjectPtr> DBWorker::allProjectsSortDueDate(const FilterEntry *filter)
{
    return sortProjects(loaded(mainContext().fetch<EntityProject>(
        EntityProject::fetchRequest()
            .where(Predicate::allOf(predicateProjects(filter)))
            .sortedBy({ascending("expirationDate"), descending("dueDate"), ascending("title")}))));
}

static FetchRequest indexRowsWith(const QString &text)
{
    return EntitySearchIndex::fetchRequest().where(Predicate::format("string CONTAINS[cd] %@", text));
}

ObjectList<EntitySearchIndex> DBWorker::searchEntityWithString(const QString &text)
{
    return mainContext().fetch<EntitySearchIndex>(indexRowsWith(text));
}

std::vector<QString> DBWorker::searchObjectIdsWithString(const QString &text)
{
    std::vector<QString> ids;
    mainContext().visit(indexRowsWith(text), {"objectId"},
                        [&ids](const RowReader &row) { ids.push_back(row.text(0)); });
    const QString digits = typednumber::digitsOf(text);
    if (digits.isEmpty())
        return ids;
    for (const auto &phone : mainContext().fetch<EntityPhone>(EntityPhone::fetchRequest())) {
        if (!typednumber::isIn(phone->number(), digits))
            continue;
        for (const ObjectPtr &holder : {ObjectPtr(phone->contact()), ObjectPtr(phone->company())}) {
            if (holder)
                ids.push_back(getIdFromObject(holder));
        }
    }
    return ids;
}

std::optional<ObjectListBase> DBWorker::getAllObjectsOFEntity(const std::string &entity,
                                                              const SortDescriptors &usingSortDescriptors,
                                                              const std::vector<Predicate> &andPredicates)
{
    if (entity.empty())
        return std::nullopt;
    std::vector<Predicate> all = andPredicates;
    if (entity == EntityTask::entityName)
        all.push_back(tasklists::visibleTasks());
    return mainContext().fetchObjects(FetchRequest(entity)
                                          .where(Predicate::allOf(all))
                                          .sortedBy(usingSortDescriptors)
                                          .reportedAs(QStringLiteral("Can't get objects")));
}

#include "records/Categories.h"

#include "foundation/Localization.h"
#include "foundation/UserDefaults.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/queries/ListDefinitions.h"
#include "store/state/SettingsKeys.h"

#include <QSet>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int firstOwnIndex = 6;

bool isTitleFree(const QString &title)
{
    return !title.isEmpty() && !DBWorker::categoryExists(title);
}

Predicate ownOf(const CategoryPtr &category)
{
    return Predicate::format("category == %@", std::static_pointer_cast<ManagedObject>(category));
}

Predicate isOpen()
{
    return Predicate::format("status != %d", TaskStatus::Done);
}

} // namespace

Categories::Shown Categories::shown()
{
    const UserDefaults &defaults = UserDefaults::standard();
    if (!defaults.object(settings::selectSortCategoryIndex).isValid())
        return Shown::All;
    switch (defaults.integer(settings::selectSortCategoryIndex)) {
    case 0:
        return Shown::WithTasks;
    case 1:
        return Shown::WithoutTasks;
    default:
        return Shown::All;
    }
}

void Categories::setShown(Shown shown)
{
    UserDefaults::standard().setObject(settings::selectSortCategoryIndex, static_cast<int>(shown));
    UserDefaults::standard().synchronize();
}

std::vector<CategoryPtr> Categories::rows()
{
    std::vector<CategoryPtr> found = DBWorker::allCategories(static_cast<int>(shown()));
    if (!DBWorker::isSample())
        found.push_back(nullptr);
    return found;
}

bool Categories::isBuiltIn(const EntityCategory &category)
{
    return category.index().value_or(0) < firstOwnIndex;
}

QString Categories::shownTitle(const CategoryPtr &category)
{
    if (!category)
        return localized(QStringLiteral("None"));
    return isBuiltIn(*category) ? localized(category->title()) : category->title();
}

int Categories::openTaskCount(const CategoryPtr &category)
{
    if (!category)
        return mainContext().count(tasklists::request(query(nullptr).definition));
    return static_cast<int>(
        mainContext().count(EntityTask::fetchRequest().where(ownOf(category) && isOpen())));
}

TaskListQuery Categories::query(const CategoryPtr &category)
{
    const tasklists::Definition definition =
        category ? tasklists::Definition{ownOf(category) && isOpen(),
                                         {descending("dueDate"), ascending("title")},
                                         tasklists::Order::ByDue}
                 : tasklists::withoutCategory();
    return {.definition = definition, .end = ListEnd::GapOrNotice};
}

TaskList Categories::tasks(const CategoryPtr &category)
{
    std::vector<RowId> rows;
    for (const tasklists::PlacedRow &placed : tasklists::placedRows(query(category).definition))
        rows.push_back(placed.row);
    return tasklists::list(std::move(rows));
}

bool Categories::canAdd()
{
    return DBWorker::allCategories().size() < most;
}

std::optional<CategoryColor> Categories::next()
{
    if (!canAdd())
        return std::nullopt;
    QSet<int> taken;
    for (const CategoryPtr &category : DBWorker::allCategories())
        taken.insert(static_cast<int>(category->index().value_or(0)));
    for (int index = firstOwnIndex; const auto color = Functional::getCategoryColorByIndex(index); ++index)
        if (!taken.contains(index))
            return color;
    return std::nullopt;
}

CategoryPtr Categories::add(const QString &title, const CategoryColor &color)
{
    if (!isTitleFree(title))
        return nullptr;
    const auto category = mainContext().insert<EntityCategory>();
    category->setTitle(title);
    category->setIndex(color.index);
    category->setColorR(color.r);
    category->setColorG(color.g);
    category->setColorB(color.b);
    category->setColorA(color.a);
    DBWorker::saveStep(u"New Category"_s);
    return category;
}

bool Categories::rename(const CategoryPtr &category, const QString &title)
{
    if (!category || isBuiltIn(*category) || !isTitleFree(title))
        return false;
    category->setTitle(title);
    DBWorker::saveStep(u"Change Category"_s);
    return true;
}

void Categories::setDefault(const CategoryPtr &category)
{
    if (const CategoryPtr former = EntityCategory::getCustom())
        former->setDefaultCategory(false);
    if (category)
        category->setDefaultCategory(true);
    DBWorker::saveStep(u"Change Category"_s);
}

bool Categories::remove(const CategoryPtr &category)
{
    if (!category || isBuiltIn(*category))
        return false;
    const CategoryPtr general = EntityCategory::title(QStringLiteral("General"));
    const CategoryPtr heir = general == category ? nullptr : general;
    for (const TaskPtr &task : category->task())
        task->setCategory(heir);
    for (const ProjectPtr &project : category->project())
        project->setCategory(heir);
    mainContext().deleteObject(category);
    DBWorker::saveStep(u"Delete"_s);
    return true;
}

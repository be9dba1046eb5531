#include "records/SearchViewController.h"

#include "foundation/NotificationCenter.h"
#include "foundation/TextFolding.h"
#include "records/BackgroundSearch.h"
#include "store/entities/Entities.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"

#include <algorithm>
#include <array>
#include <unordered_set>

namespace {

constexpr double minimumHeight = 40.0;
constexpr double maximumHeight = 466.0;

} // namespace

QString SearchViewController::getStringWithObject(const ObjectPtr &object)
{
    if (const auto task = std::dynamic_pointer_cast<EntityTask>(object))
        return task->title();
    if (const auto project = std::dynamic_pointer_cast<EntityProject>(object))
        return project->title();
    if (const auto contact = std::dynamic_pointer_cast<EntityContacts>(object))
        return contact->fullName();
    if (const auto company = std::dynamic_pointer_cast<EntityCompany>(object))
        return company->title();
    if (const auto note = std::dynamic_pointer_cast<EntityNote>(object))
        return note->title();
    return {};
}

int SearchViewController::getEntityIndex(const ObjectPtr &object)
{
    static constexpr std::array<std::string_view, 5> entities = {
        EntityTask::entityName, EntityProject::entityName, EntityContacts::entityName,
        EntityCompany::entityName, EntityNote::entityName};
    const auto found =
        object ? std::find(entities.begin(), entities.end(), object->entity().name()) : entities.end();
    return static_cast<int>(found - entities.begin());
}

std::vector<ObjectPtr> SearchViewController::sortetArray(std::vector<ObjectPtr> objects)
{
    std::vector<std::pair<QString, ObjectPtr>> named;
    named.reserve(objects.size());
    for (ObjectPtr &object : objects) {
        QString name = getStringWithObject(object);
        named.emplace_back(std::move(name), std::move(object));
    }
    std::stable_sort(named.begin(), named.end(), [](const auto &one, const auto &other) {
        return caseInsensitiveCompare(one.first, other.first) < 0;
    });
    std::transform(named.begin(), named.end(), objects.begin(),
                   [](auto &one) { return std::move(one.second); });
    return objects;
}

SearchViewController::SearchViewController() = default;
SearchViewController::~SearchViewController() = default;

void SearchViewController::changeFileterString(const QString &text)
{
    const QString wanted = foldedForSearch(text);
    std::vector<SearchHit> hits;
    std::unordered_set<QString> seen;
    for (const QString &uri :
         text.isEmpty() ? std::vector<QString>() : DBWorker::searchObjectIdsWithString(text)) {
        if (!seen.insert(uri).second)
            continue;
        const ObjectPtr record = DBWorker::getObjectFromId(uri);
        const int kind = getEntityIndex(record);
        if (kind >= searchhits::kindCount)
            continue;
        QString name = getStringWithObject(record);
        const bool isNamed = containsFolded(name, wanted);
        hits.push_back({kind, uri, std::move(name), isNamed});
    }
    resultRows = searchhits::rows(std::move(hits), searchhits::headings());
}

void SearchViewController::changeFileterStringLater(const QString &text, std::function<void()> done)
{
    if (!background)
        background = std::make_unique<BackgroundSearch>();
    searching = !text.isEmpty();
    const auto take = [this, done = std::move(done)](SearchRows rows) {
        searching = false;
        background->letGo(std::exchange(resultRows, std::move(rows)));
        done();
    };
    if (searching)
        return background->find(text, take);
    background->cancel();
    take(std::make_shared<const std::vector<Row>>());
}

int SearchViewController::firstChoice() const
{
    const auto named = std::ranges::find(*resultRows, true, &Row::isNamed);
    const auto first = std::ranges::find(*resultRows, false, &Row::isHeading);
    const auto found = named != resultRows->end() ? named : first;
    return found != resultRows->end() ? static_cast<int>(found - resultRows->begin()) : -1;
}

double SearchViewController::popoverHeight(double rowHeight, double headerHeight) const
{
    double height = 0;
    for (const Row &row : *resultRows)
        height += row.isHeading() ? headerHeight : rowHeight;
    return std::clamp(height, minimumHeight, maximumHeight);
}

bool SearchViewController::doubleClick(int row) const
{
    if (row < 0 || row >= static_cast<int>(resultRows->size()))
        return false;
    const ObjectPtr record = (*resultRows)[static_cast<size_t>(row)].record();
    if (!record)
        return false;
    NotificationCenter::defaultCenter().post(notifications::clickTableSearch, record);
    return true;
}

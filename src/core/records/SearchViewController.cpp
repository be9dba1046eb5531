#include "records/SearchViewController.h"

#include "foundation/Localization.h"
#include "foundation/NotificationCenter.h"
#include "foundation/TextFolding.h"
#include "store/entities/Entities.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"

#include <algorithm>
#include <array>
#include <unordered_set>

namespace {

constexpr double minimumHeight = 40.0;
constexpr double maximumHeight = 466.0;

constexpr std::array<const char16_t *, 5> headings = {u"Task", u"Project", u"Contact", u"Company", u"Note"};

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

void SearchViewController::changeFileterString(const QString &text)
{
    resultRows.clear();
    std::array<std::vector<ObjectPtr>, headings.size()> groups;
    std::unordered_set<QString> seen;
    for (const QString &id : DBWorker::searchObjectIdsWithString(text)) {
        if (!seen.insert(id).second)
            continue;
        const ObjectPtr record = DBWorker::getObjectFromId(id);
        const auto kind = static_cast<size_t>(getEntityIndex(record));
        if (kind < groups.size())
            groups[kind].push_back(record);
    }
    for (size_t kind = 0; kind < groups.size(); ++kind) {
        if (groups[kind].empty())
            continue;
        resultRows.push_back({localized(QString::fromUtf16(headings[kind])).toUpper(), nullptr});
        for (ObjectPtr &record : sortetArray(std::move(groups[kind])))
            resultRows.push_back({{}, std::move(record)});
    }
}

double SearchViewController::popoverHeight(double rowHeight, double headerHeight) const
{
    double height = 0;
    for (const Row &row : resultRows)
        height += row.isHeading() ? headerHeight : rowHeight;
    return std::clamp(height, minimumHeight, maximumHeight);
}

bool SearchViewController::doubleClick(int row) const
{
    if (row < 0 || row >= static_cast<int>(resultRows.size()) ||
        resultRows[static_cast<size_t>(row)].isHeading())
        return false;
    NotificationCenter::defaultCenter().post(notifications::clickTableSearch,
                                             resultRows[static_cast<size_t>(row)].record);
    return true;
}

#include "objectstore/ObjectList.h"

#include "objectstore/ManagedObjectContext.h"

namespace {

constexpr int pageSize = 64;
/// Enough for a tall screen and the neighbourhood of its edges; the rest is read again when it is looked at.
constexpr size_t keptPages = 8;

} // namespace

ObjectListBase::ObjectListBase(ManagedObjectContext &context, const EntityDescription &entity,
                               std::vector<RowId> rows)
    : storage(std::make_shared<Storage>())
{
    storage->context = context.self;
    storage->entity = &entity;
    storage->rows = std::move(rows);
}

std::span<const RowId> ObjectListBase::rows() const
{
    return storage ? std::span<const RowId>(storage->rows) : std::span<const RowId>();
}

ObjectListBase::Page &ObjectListBase::page(int number) const
{
    auto &pages = storage->pages;
    const auto found =
        std::find_if(pages.begin(), pages.end(), [number](const Page &one) { return one.number == number; });
    if (found != pages.end()) {
        found->lastUse = ++storage->useCount;
        return *found;
    }
    if (pages.size() == keptPages)
        pages.erase(std::min_element(pages.begin(), pages.end(), [](const Page &one, const Page &other) {
            return one.lastUse < other.lastUse;
        }));
    Page fresh{number, ++storage->useCount, {}};
    if (const auto context = storage->context.lock()) {
        const size_t first = static_cast<size_t>(number) * pageSize;
        const size_t count = std::min<size_t>(pageSize, storage->rows.size() - first);
        fresh.objects =
            (*context)->objectsOfRows(*storage->entity, std::span(storage->rows).subspan(first, count));
    }
    pages.push_back(std::move(fresh));
    return pages.back();
}

ObjectPtr ObjectListBase::objectAt(int index) const
{
    if (index < 0 || index >= size())
        return nullptr;
    const auto &objects = page(index / pageSize).objects;
    const size_t place = static_cast<size_t>(index % pageSize);
    const ObjectPtr object = place < objects.size() ? objects[place] : nullptr;
    return object && object->context() && !object->isDeleted() ? object : nullptr;
}

int ObjectListBase::indexOf(const ManagedObject &object) const
{
    if (!storage || storage->entity != &object.entity())
        return -1;
    const auto found = std::find(storage->rows.begin(), storage->rows.end(), object.rowId());
    return found == storage->rows.end() ? -1 : static_cast<int>(found - storage->rows.begin());
}

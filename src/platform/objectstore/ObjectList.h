#pragma once

#include "objectstore/ManagedObject.h"

#include <iterator>
#include <memory>
#include <span>
#include <vector>

/// The result of a fetch: an ordered snapshot of rows whose objects are loaded, a page at a time, when looked
/// at.
///
/// Copying shares the snapshot. A row deleted since answers null. A list whose context is gone answers null
/// everywhere.
class ObjectListBase
{
public:
    ObjectListBase() = default;
    ObjectListBase(ManagedObjectContext &context, const EntityDescription &entity, std::vector<RowId> rows);

    int size() const { return storage ? static_cast<int>(storage->rows.size()) : 0; }
    bool isEmpty() const { return size() == 0; }
    std::span<const RowId> rows() const;
    /// The object at a place from 0 to size() - 1, or null if it was deleted since.
    ObjectPtr objectAt(int index) const;
    /// The place of an object, or -1.
    int indexOf(const ManagedObject &object) const;
    bool contains(const ManagedObject &object) const { return indexOf(object) >= 0; }

private:
    struct Page
    {
        int number = -1;
        quint64 lastUse = 0;
        std::vector<ObjectPtr> objects;
    };
    struct Storage
    {
        std::weak_ptr<ManagedObjectContext *> context;
        const EntityDescription *entity;
        std::vector<RowId> rows;
        std::vector<Page> pages;
        quint64 useCount = 0;
    };
    Page &page(int number) const;

    std::shared_ptr<Storage> storage;
};

/// An `ObjectListBase` of one entity class.
template <typename T>
class ObjectList : public ObjectListBase
{
public:
    using ObjectListBase::ObjectListBase;
    explicit ObjectList(ObjectListBase base)
        : ObjectListBase(std::move(base))
    {}

    std::shared_ptr<T> at(int index) const { return std::static_pointer_cast<T>(objectAt(index)); }
    std::shared_ptr<T> operator[](int index) const { return at(index); }
    std::shared_ptr<T> first() const { return isEmpty() ? nullptr : at(0); }
    std::shared_ptr<T> last() const { return isEmpty() ? nullptr : at(size() - 1); }

    class Iterator
    {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = std::shared_ptr<T>;
        using difference_type = int;
        using pointer = void;
        using reference = value_type;

        Iterator(const ObjectList *objects, int place)
            : list(objects)
            , index(place)
        {}
        value_type operator*() const { return list->at(index); }
        Iterator &operator++()
        {
            ++index;
            return *this;
        }
        bool operator==(const Iterator &other) const { return index == other.index; }

    private:
        const ObjectList *list;
        int index;
    };
    Iterator begin() const { return Iterator(this, 0); }
    Iterator end() const { return Iterator(this, size()); }
};

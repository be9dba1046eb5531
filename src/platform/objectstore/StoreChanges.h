#pragma once

#include "objectstore/ManagedObject.h"

#include <string_view>
#include <vector>

/// Who makes the changes of a commit. Only those of `User` and `Import` can be undone.
enum class ChangeAuthor {
    /// A command of the user.
    User,
    /// An undo or a redo.
    Undo,
    /// A pass over the calendars.
    Pass,
    /// Records that the user brings in from elsewhere.
    Import,
    /// The program on its own, as when it seeds a new store.
    Program,
    /// Another device.
    Replication,
};

/// What one commit did to the store: each object once, in the order of its first change. Rows of derived
/// entities are left out.
struct StoreChanges
{
    struct Update
    {
        ObjectPtr object;
        /// The columns with another value; none if only its relationships changed.
        ManagedObject::ColumnSet columns;
    };

    ChangeAuthor author = ChangeAuthor::User;
    std::vector<ObjectPtr> inserted;
    /// Also, of entities that follow their links, those to which something was linked or unlinked from its
    /// other end.
    std::vector<Update> updated;
    /// Objects that are gone. Before the commit they still have their values; after it they know their
    /// identifier, row number and entity only.
    std::vector<ObjectPtr> deleted;
    /// Another process wrote to the store: anything can be different, and nothing is told in detail.
    bool isUnknown = false;

    bool isEmpty() const { return inserted.empty() && updated.empty() && deleted.empty() && !isUnknown; }

    /// Whether objects of an entity are among them, or can be.
    bool concerns(std::string_view entity) const
    {
        const auto isOf = [entity](const ObjectPtr &one) { return one->entity().name() == entity; };
        return isUnknown || std::ranges::any_of(inserted, isOf) || std::ranges::any_of(deleted, isOf) ||
               std::ranges::any_of(updated, [&](const Update &one) { return isOf(one.object); });
    }
};

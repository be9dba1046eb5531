#pragma once

#include "filters/MVContactGroup.h"
#include "store/queries/DBWorker.h"

#include <QString>

#include <functional>

/// The two buttons of the bar above the contacts.
struct ContactFilterButtons
{
    struct Button
    {
        QString label;
        bool isEnabled = true;
        bool isOn = false;
        bool operator==(const Button &) const = default;
    };
    Button filter;
    Button group;
    bool operator==(const ContactFilterButtons &) const = default;
};

/// What the contact screen does with groups (members picked by hand) and lists (stored criteria). A null
/// group stands for all people. Stateless; main thread only.
class ContactGroups
{
public:
    ContactGroups() = delete;

    /// Whether it is a group; one that does not tell is a list.
    static bool isGroup(const EntityContactGroup &group);
    /// Whom the screen shows: all people, who meets the criteria of a list, or the members of a group, which
    /// stand as people do.
    static std::vector<ContactPtr> contactsOf(const EntityContactGroup *group);
    /// The same as what the store calls them, without loading anybody. All people are narrowed by a filter.
    static std::vector<RowId> rowsOf(const EntityContactGroup *group, const FilterEntry *filter = nullptr);
    static ContactFilterButtons activeFilterButtons(const EntityContactGroup *group);

    /// The filter is to be kept: as a new list that others are told of, or in the shown one, which is saved;
    /// then `reloadData` is called.
    static void saveListFilterContacts(const MVContactGroup &list,
                                       const std::shared_ptr<EntityContactGroup> &contactGroup,
                                       const std::function<void()> &reloadData);
    /// Gives a group another title and saves. Nothing for a blank one; false if nothing was changed.
    static bool rename(EntityContactGroup &group, const QString &title);
    /// Stores the values of a new group or list and saves.
    static std::shared_ptr<EntityContactGroup> saveContactGroup(const MVContactGroup &values);
};

#pragma once

#include "shell/SidebarItem.h"
#include "widgets/ToolBarButton.h"

#include <QString>

#include <memory>
#include <optional>
#include <string_view>

class EntityContactGroup;
class TabsViewController;
struct RecordKind;

/// A row of the table of screens.
struct ScreenDescription
{
    SidebarItem item;
    /// In English; empty for the groups of contacts, which are called as the user calls them.
    const char16_t *title;
    const char16_t *icon;
    /// Makes the screen; null for one whose kind of record is described, for a heading of the sidebar, and
    /// for the groups of contacts.
    TabsViewController *(*make)() = nullptr;
    /// The entity whose records a search finds here; empty for none.
    std::string_view shows = {};
    /// Describes the kind of record that it shows, but for what stands in this row.
    RecordKind (*describe)() = nullptr;
    /// The button that adds a record of a described kind.
    ToolBarButton::ActionType adds = {};
};

/// Every screen there is. A new kind of record has its row here, and nowhere else.
namespace Screens {

const ScreenDescription &of(SidebarItem item);
/// The screen whose records are of an entity; null if there is none.
const ScreenDescription *showing(std::string_view entity);
/// Makes the screen of an item that has one of its own.
TabsViewController *make(SidebarItem item);
/// Makes the screen of a group or list of contacts.
TabsViewController *makeOfGroup(const std::shared_ptr<EntityContactGroup> &group);

/// What the windows for new records can be opened for: tasks, and the described kinds.
QList<ToolBarButton::ActionType> addable();
/// The kind of record that a button adds; absent for one that is not described.
std::optional<RecordKind> kindAddedBy(ToolBarButton::ActionType type);
/// The same by the entity.
std::optional<RecordKind> kindOf(std::string_view entity);

} // namespace Screens

#pragma once

#include <QModelIndex>

class SidebarModel;
class TabsViewController;

/// Makes the screen that a row of the sidebar stands for.
namespace ScreenFactory {

TabsViewController *make(const SidebarModel &sidebar, const QModelIndex &row);

} // namespace ScreenFactory

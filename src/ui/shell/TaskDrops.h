#pragma once

#include "shell/SidebarItem.h"
#include "store/entities/Entities.h"

#include <QRect>

#include <vector>

class QWidget;

/// What becomes of tasks that are dropped on a row of the sidebar: they are changed so that they belong to
/// what the row stands for. Where that can be one of several, a menu or the bubble of a date asks which.
namespace TaskDrops {

bool areTakenBy(SidebarItem item);
/// \param row where the row is on the sidebar, beside which a question comes up.
void drop(const std::vector<TaskPtr> &tasks, SidebarItem item, QWidget &sidebar, const QRect &row);

} // namespace TaskDrops

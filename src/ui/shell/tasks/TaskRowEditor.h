#pragma once

#include "store/entities/Entities.h"

#include <vector>

/// Changes one field of rows of a list, each saved at once through the rules.
namespace TaskRowEditor {

/// Ticks the tasks, or clears them if all of them are ticked. Tasks without a check box are left out.
void toggleDone(const std::vector<TaskPtr> &tasks);
void setStatus(const std::vector<TaskPtr> &tasks, int status);
void setPriority(const std::vector<TaskPtr> &tasks, int priority);
void setCategory(const std::vector<TaskPtr> &tasks, const CategoryPtr &category);

} // namespace TaskRowEditor

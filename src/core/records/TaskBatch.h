#pragma once

#include "store/entities/Entities.h"
#include "store/state/StepBlock.h"

#include <vector>

/// One change of many tasks, each by the rules of a single change. What can be changed of them is saved
/// together, and one undo takes all of it back. Tasks of read-only calendars are left out. What the rules
/// have to say or to ask about several of the tasks is said once, and the answer holds for all. Main thread
/// only.
namespace TaskBatch {

/// Ticks the tasks, or clears them if all of them are ticked.
void toggleDone(const std::vector<TaskPtr> &tasks, const StepBlock &step = {});
void setStatus(const std::vector<TaskPtr> &tasks, TaskStatus status, const StepBlock &step = {});
void setPriority(const std::vector<TaskPtr> &tasks, Priority priority, const StepBlock &step = {});
/// Null for none.
void setCategory(const std::vector<TaskPtr> &tasks, const CategoryPtr &category, const StepBlock &step = {});

} // namespace TaskBatch

#pragma once

#include "foundation/Date.h"
#include "records/dates/QuickDays.h"
#include "store/entities/Entities.h"
#include "store/state/StepBlock.h"

#include <QStringList>

#include <vector>

struct NewTaskRequest;

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

void setProject(const std::vector<TaskPtr> &tasks, const ProjectPtr &project, const StepBlock &step = {});
/// Plans the tasks for a day, each as long as it was: one with a time keeps it, any other is for the day.
void planOn(const std::vector<TaskPtr> &tasks, Date day, const StepBlock &step = {});
/// The same for one of the days that are a press away. What is for some day has neither dates nor a time.
void plan(const std::vector<TaskPtr> &tasks, QuickDay day, const StepBlock &step = {});
/// Makes tasks of their own with the same fields, open, each with an event of its own where its calendar
/// takes one. What repeats is copied as it stands on its day. \return the new tasks that were stored.
std::vector<TaskPtr> duplicate(const std::vector<TaskPtr> &tasks, const StepBlock &step = {});
/// Makes a task of each line that says something, without what lists of texts begin their lines with: "- ",
/// "* ", "[ ] ", and "1. " where the numbers of at least two lines count on from 1. One that begins with
/// "[x] " is done.
/// \param request what the list gives its new tasks.
/// \return the new tasks that were stored.
std::vector<TaskPtr> addLines(const QStringList &lines, const NewTaskRequest &request,
                              const StepBlock &step = {});

} // namespace TaskBatch

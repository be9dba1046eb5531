#pragma once

#include "records/Functional.h"
#include "store/entities/Entities.h"
#include "store/queries/TaskListQuery.h"

#include <QString>

#include <optional>
#include <vector>

/// The rules by which the user keeps categories. A null category stands for "none".
namespace Categories {

/// With so many there can be no further one.
inline constexpr int most = 20;

/// Which categories are shown. The numbers are those kept in the settings.
enum class Shown { All = -1, WithTasks = 0, WithoutTasks = 1 };
Shown shown();
void setShown(Shown shown);

/// The categories to be shown, by title; last a null one for tasks without any, but not in the sample.
std::vector<CategoryPtr> rows();
/// Seeded ones have their title in the language of the user, and keep it.
bool isBuiltIn(const EntityCategory &category);
/// "None" for a null one.
QString shownTitle(const CategoryPtr &category);
/// How many of its tasks are not done.
int openTaskCount(const CategoryPtr &category);
/// The list of its tasks that are not done and whose calendar may be seen; for "none" of all without any.
TaskListQuery query(const CategoryPtr &category);
/// Its tasks that are not done and whose calendar may be seen, in the order of the list.
TaskList tasks(const CategoryPtr &category);

bool canAdd();
/// The colour and number of the next new category: the lowest that is free. Absent if there can be none.
std::optional<CategoryColor> next();
/// Makes a category of this colour and saves it. Null, and nothing is made, for a title that is empty or
/// taken.
CategoryPtr add(const QString &title, const CategoryColor &color);
/// False, and nothing changes, for a title that is empty or taken, and for a built-in category.
bool rename(const CategoryPtr &category, const QString &title);
/// New tasks get this category; a null one leaves no default.
void setDefault(const CategoryPtr &category);
/// Deletes a category and gives its tasks and projects to "General", or to none if that is not there. False
/// for a built-in one.
bool remove(const CategoryPtr &category);

} // namespace Categories

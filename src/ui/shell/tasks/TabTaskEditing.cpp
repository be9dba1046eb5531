#include "foundation/Localization.h"
#include "records/DetailStack.h"
#include "records/ShellAlerts.h"
#include "records/TaskBatch.h"
#include "records/TaskManager.h"
#include "shell/tasks/TabTaskViewController.h"
#include "shell/tasks/TaskPopupMenu.h"
#include "widgets/LongWork.h"

#include <QScopedValueRollback>

using namespace Qt::Literals::StringLiterals;

// What is done to the tasks of a list in their rows.

// Deleting

void TabTaskViewController::removeSelection()
{
    removeRows(view->selectedRows());
}

void TabTaskViewController::removeRows(const std::set<int> &rows)
{
    std::vector<TaskPtr> going;
    TaskPtr barred;
    for (const TaskPtr &task : tasksAt(rows)) {
        if (task->allowsContentModifications().value_or(true))
            going.push_back(task);
        else
            barred = task;
    }
    if (going.empty() && barred)
        return ShellAlerts::alertEditingEvent(localized(barred->calendarTitle()));
    if (going.empty())
        return;
    const std::vector<ObjectPtr> removable(going.begin(), going.end());
    const int lastIndex = *rows.rbegin();
    if (detailStack()) {
        if (!detailStack()->mayLeave(going))
            return;
        detailStack()->removeAllDetailFromTasks(going);
    }
    const auto removed = [this, going, lastIndex] {
        for (const TaskPtr &task : going)
            rowChanged(task, true);
        selectAfterRemoval(lastIndex);
    };
    LongWork work(removable.size(), localized(u"Deleting the selected tasks"_s));
    TaskManager::deleteTasks(removable, removed, [&work] { return work.step(); });
}

void TabTaskViewController::selectAfterRemoval(int lastIndex)
{
    view->clearSelection();
    updateRows();
    const int row = model->nearestItem(std::min(lastIndex, model->rowCount() - 1), -1);
    if (row >= 0)
        view->selectRow(row);
}

// Changing

/// Changes tasks of the list, whose rows stay for a moment as they are. Many take their time, which is shown.
template <typename Change, typename... Value>
void TabTaskViewController::changeTasks(const std::vector<TaskPtr> &tasks, Change change,
                                        const Value &...value)
{
    LongWork work(tasks.size(), localized(u"Changing the selected tasks"_s));
    std::set<RowId> edited;
    for (const TaskPtr &task : tasks)
        edited.insert(task->rowId());
    {
        // A question lets other things happen to other rows.
        const QScopedValueRollback editing(editedRows, edited);
        change(tasks, value..., [&work] { return work.step(); });
    }
    // Also those of a save that waits.
    for (const RowId row : edited) {
        if (!changedRows.contains(row))
            seenRows.insert(row);
    }
    view->showRowsAnew();
    seenUpdate.start();
}

void TabTaskViewController::toggleDone(const std::set<int> &rows)
{
    const std::vector<TaskPtr> tasks = tasksAt(rows);
    const auto isReadOnly = [](const TaskPtr &task) {
        return !task->allowsContentModifications().value_or(true);
    };
    if (!tasks.empty() && std::ranges::all_of(tasks, isReadOnly))
        return ShellAlerts::alertEditingEvent(localized(tasks.front()->calendarTitle()));
    changeTasks(tasks, &TaskBatch::toggleDone);
}

// Context menu

void TabTaskViewController::setUpMenu()
{
    taskPopupMenu = new TaskPopupMenu(this);
    const auto selected = [this] { return tasksAt(view->selectedRows()); };
    connect(taskPopupMenu, &TaskPopupMenu::statusChosen, this,
            [=, this](TaskStatus status) { changeTasks(selected(), &TaskBatch::setStatus, status); });
    connect(taskPopupMenu, &TaskPopupMenu::priorityChosen, this,
            [=, this](Priority priority) { changeTasks(selected(), &TaskBatch::setPriority, priority); });
    connect(taskPopupMenu, &TaskPopupMenu::categoryChosen, this, [=, this](const CategoryPtr &category) {
        changeTasks(selected(), &TaskBatch::setCategory, category);
    });
    connect(taskPopupMenu, &TaskPopupMenu::whyChosen, this, &TabTaskViewController::whyRequested);
    connect(taskPopupMenu, &TaskPopupMenu::deleteChosen, this, &TabTaskViewController::removeSelection);
}

void TabTaskViewController::showMenu(const QPoint &globalPosition)
{
    if (!taskPopupMenu)
        setUpMenu();
    taskPopupMenu->setTasks(tasksAt(view->selectedRows()));
    taskPopupMenu->popup(globalPosition);
}

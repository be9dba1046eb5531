#include "shell/tasks/TaskRowCommands.h"

#include "foundation/Localization.h"
#include "records/ShellAlerts.h"
#include "records/TaskBatch.h"
#include "shell/tasks/TaskPopupMenu.h"
#include "widgets/LongWork.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

static bool isReadOnly(const EntityTask &task)
{
    return !task.allowsContentModifications().value_or(true);
}

TaskRowCommands::TaskRowCommands(QWidget &list, std::function<Tasks()> selected, ChangeInRows changeInRows)
    : QObject(&list)
    , menuParent(list)
    , selectedTasks(std::move(selected))
    , inRows(std::move(changeInRows))
{}

std::vector<ObjectPtr> TaskRowCommands::removable(const std::vector<ObjectPtr> &tasks)
{
    std::vector<ObjectPtr> going;
    TaskPtr barred;
    for (const ObjectPtr &record : tasks) {
        const auto task = std::static_pointer_cast<EntityTask>(record);
        if (isReadOnly(*task))
            barred = task;
        else
            going.push_back(task);
    }
    if (going.empty() && barred)
        ShellAlerts::alertEditingEvent(localized(barred->calendarTitle()));
    return going;
}

/// Many take their time, which is shown.
template <typename Change, typename... Value>
void TaskRowCommands::changeTasks(const Tasks &tasks, Change change, const Value &...value)
{
    LongWork work(tasks.size(), localized(u"Changing the selected tasks"_s));
    inRows({tasks.begin(), tasks.end()}, [&] { change(tasks, value..., [&work] { return work.step(); }); });
}

void TaskRowCommands::toggleDone(const Tasks &tasks)
{
    const auto isBarred = [](const TaskPtr &task) { return isReadOnly(*task); };
    if (!tasks.empty() && std::ranges::all_of(tasks, isBarred))
        return ShellAlerts::alertEditingEvent(localized(tasks.front()->calendarTitle()));
    changeTasks(tasks, &TaskBatch::toggleDone);
}

void TaskRowCommands::setUpMenu()
{
    taskPopupMenu = new TaskPopupMenu(&menuParent);
    connect(taskPopupMenu, &TaskPopupMenu::statusChosen, this,
            [this](TaskStatus status) { changeTasks(selectedTasks(), &TaskBatch::setStatus, status); });
    connect(taskPopupMenu, &TaskPopupMenu::priorityChosen, this,
            [this](Priority priority) { changeTasks(selectedTasks(), &TaskBatch::setPriority, priority); });
    connect(taskPopupMenu, &TaskPopupMenu::categoryChosen, this, [this](const CategoryPtr &category) {
        changeTasks(selectedTasks(), &TaskBatch::setCategory, category);
    });
    connect(taskPopupMenu, &TaskPopupMenu::whyChosen, this, &TaskRowCommands::whyChosen);
    connect(taskPopupMenu, &TaskPopupMenu::deleteChosen, this, &TaskRowCommands::deleteChosen);
}

void TaskRowCommands::showMenu(const QPoint &globalPosition)
{
    if (!taskPopupMenu)
        setUpMenu();
    taskPopupMenu->setTasks(selectedTasks());
    taskPopupMenu->popup(globalPosition);
}

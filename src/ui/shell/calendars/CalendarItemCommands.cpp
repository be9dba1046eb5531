#include "shell/calendars/CalendarItemCommands.h"

#include "calendarviews/CalendarPage.h"
#include "calendarviews/SelectedTaskController.h"
#include "foundation/Localization.h"
#include "records/ShellAlerts.h"
#include "records/TabsViewController.h"
#include "records/TaskBatch.h"
#include "records/TaskManager.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "shell/tasks/TaskPopupMenu.h"

static bool isReadOnly(const TaskPtr &task)
{
    return !task->allowsContentModifications().value_or(true);
}

static const std::vector<TaskPtr> &selectedTasks()
{
    return SelectedTaskController::sharedCenter().selectedTasks();
}

static void removeTask(const TaskPtr &task)
{
    if (isReadOnly(task))
        return ShellAlerts::alertEditingEvent(localized(task->calendarTitle()));
    TaskManager::deleteTasks({task}, [] {});
}

CalendarItemCommands::CalendarItemCommands(TabsViewController &shownOn)
    : QObject(&shownOn)
    , screen(shownOn)
{}

void CalendarItemCommands::serve(CalendarPage &page)
{
    connect(&page, &CalendarPage::opened, this, [this](const TaskPtr &task) {
        if (screen.detailStack())
            TaskDetailViewController::showTask(task, screen, *screen.detailStack());
    });
    connect(&page, &CalendarPage::removeRequested, this, &removeTask);
    connect(&page, &CalendarPage::toggled, this, [](const TaskPtr &task) {
        if (isReadOnly(task))
            return ShellAlerts::alertEditingEvent(localized(task->calendarTitle()));
        TaskBatch::toggleDone({task}, [] { return true; });
    });
    connect(&page, &CalendarPage::menuWanted, this,
            [this](const TaskPtr &, const QPoint &place) { showMenu(place); });
}

void CalendarItemCommands::removeSelected(CalendarPage &page)
{
    if (const TaskPtr task = page.currentTask())
        removeTask(task);
}

void CalendarItemCommands::showMenu(const QPoint &globalPosition)
{
    if (!menu) {
        menu = new TaskPopupMenu(&screen);
        const auto step = [] { return true; };
        connect(menu, &TaskPopupMenu::statusChosen, this,
                [step](TaskStatus status) { TaskBatch::setStatus(selectedTasks(), status, step); });
        connect(menu, &TaskPopupMenu::priorityChosen, this,
                [step](Priority priority) { TaskBatch::setPriority(selectedTasks(), priority, step); });
        connect(menu, &TaskPopupMenu::categoryChosen, this, [step](const CategoryPtr &category) {
            TaskBatch::setCategory(selectedTasks(), category, step);
        });
        connect(menu, &TaskPopupMenu::whyChosen, &screen, &TabsViewController::whyRequested);
        connect(menu, &TaskPopupMenu::deleteChosen, this, [] {
            if (!selectedTasks().empty())
                removeTask(selectedTasks().front());
        });
    }
    menu->setTasks(selectedTasks());
    menu->popup(globalPosition);
}

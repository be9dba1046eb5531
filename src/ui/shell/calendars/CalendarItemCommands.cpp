#include "shell/calendars/CalendarItemCommands.h"

#include "calendarviews/CalendarPage.h"
#include "calendarviews/SelectedTaskController.h"
#include "records/DetailStack.h"
#include "records/TabsViewController.h"
#include "records/TaskManager.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "shell/tasks/TaskRowCommands.h"

static std::vector<TaskPtr> selectedTasks()
{
    return SelectedTaskController::sharedCenter().selectedTasks();
}

CalendarItemCommands::CalendarItemCommands(TabsViewController &shownOn)
    : QObject(&shownOn)
    , screen(shownOn)
    , commands(
          new TaskRowCommands(shownOn, &selectedTasks, [](const auto &, const auto &change) { change(); }))
{
    connect(commands, &TaskRowCommands::whyChosen, &screen, &TabsViewController::whyRequested);
    connect(commands, &TaskRowCommands::deleteChosen, this, [this] { removeTasks(selectedTasks()); });
}

void CalendarItemCommands::serve(CalendarPage &page)
{
    connect(&page, &CalendarPage::opened, this, [this](const TaskPtr &task) {
        if (screen.detailStack())
            TaskDetailViewController::showTask(task, screen, *screen.detailStack());
    });
    connect(&page, &CalendarPage::personWanted, &screen, &TabsViewController::recordWanted);
    connect(&page, &CalendarPage::removeRequested, this,
            [this](const TaskPtr &task) { removeTasks({task}); });
    connect(&page, &CalendarPage::toggled, this,
            [this](const TaskPtr &task) { commands->toggleDone({task}); });
    connect(&page, &CalendarPage::menuWanted, this,
            [this](const TaskPtr &, const QPoint &place) { commands->showMenu(place); });
}

/// What is typed about them is asked about first.
void CalendarItemCommands::removeTasks(const std::vector<TaskPtr> &tasks)
{
    const std::vector<ObjectPtr> going = TaskRowCommands::removable({tasks.begin(), tasks.end()});
    if (going.empty())
        return;
    if (DetailStack *const stack = screen.detailStack()) {
        if (!stack->mayLeave(going))
            return;
        stack->removeAllDetailFrom(going);
    }
    TaskManager::deleteTasks(going, [] {});
}

void CalendarItemCommands::removeSelected(CalendarPage &page)
{
    if (const TaskPtr task = page.currentTask())
        removeTasks({task});
}

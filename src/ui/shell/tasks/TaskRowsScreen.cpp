#include "shell/tasks/TaskRowsScreen.h"

#include "records/ShellAlerts.h"
#include "records/TaskManager.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "shell/tasks/TaskRowCommands.h"
#include "shell/tasks/TaskTableCell.h"

TaskRowsScreen::TaskRowsScreen(RecordListDescription listDescription, TaskListModel *taskModel,
                               QWidget *parent)
    : RecordListScreen(std::move(listDescription), taskModel, new TaskTableCell, parent)
    , model(taskModel)
    , commands(new TaskRowCommands(
          *this, [this] { return selectedTasks(); },
          [this](const std::vector<ObjectPtr> &records, const std::function<void()> &change) {
              changeInRows(records, change);
          }))
{
    connect(table(), &TableViewExtended::checkToggled, this,
            [this](const std::set<int> &rows) { commands->toggleDone(tasksAt(rows)); });
    connect(commands, &TaskRowCommands::whyChosen, this, &TaskRowsScreen::whyRequested);
    connect(commands, &TaskRowCommands::deleteChosen, this, &TaskRowsScreen::removeSelection);
    connect(commands, &TaskRowCommands::tasksMade, this, [this](const std::vector<TaskPtr> &tasks) {
        selectRecords({tasks.begin(), tasks.end()});
    });
}

TaskPtr TaskRowsScreen::selectedTask() const
{
    return std::static_pointer_cast<EntityTask>(selectedRecord());
}

QRect TaskRowsScreen::placeOf(const TaskPtr &task) const
{
    return placeOfRecord(task);
}

std::vector<TaskPtr> TaskRowsScreen::tasksAt(const std::set<int> &rows) const
{
    std::vector<TaskPtr> tasks;
    for (const ObjectPtr &record : recordsAt(rows))
        tasks.push_back(std::static_pointer_cast<EntityTask>(record));
    return tasks;
}

std::vector<TaskPtr> TaskRowsScreen::selectedTasks() const
{
    return tasksAt(table()->selectedRows());
}

DetailViewController *TaskRowsScreen::makePane(const ObjectPtr &record)
{
    return new TaskDetailViewController(std::static_pointer_cast<EntityTask>(record));
}

void TaskRowsScreen::severalOpened()
{
    ShellAlerts::alertSelectOneTask();
}

std::vector<ObjectPtr> TaskRowsScreen::removable(const std::vector<ObjectPtr> &records)
{
    return TaskRowCommands::removable(records);
}

void TaskRowsScreen::remove(const std::vector<ObjectPtr> &records, const std::function<void()> &removed,
                            const Step &step)
{
    TaskManager::deleteTasks(records, removed, step);
}

void TaskRowsScreen::showMenu(const QPoint &globalPosition)
{
    commands->showMenu(globalPosition);
}

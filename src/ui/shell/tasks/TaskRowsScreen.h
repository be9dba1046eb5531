#pragma once

#include "records/RecordListScreen.h"
#include "shell/tasks/TaskListModel.h"

class TaskRowCommands;

/// A screen whose rows are tasks: they are ticked, opened, planned and deleted in it. What it lists, its
/// model says.
class TaskRowsScreen : public RecordListScreen
{
    Q_OBJECT
public:
    /// \param model the rows; it goes with the screen.
    TaskRowsScreen(RecordListDescription description, TaskListModel *model, QWidget *parent = nullptr);

    TableViewExtended *tableViewTasks() const { return table(); }

    TaskPtr selectedTask() const override;
    QRect placeOf(const TaskPtr &task) const override;

protected:
    const TaskListModel &tasksModel() const { return *model; }
    TaskRowCommands &rowCommands() const { return *commands; }
    std::vector<TaskPtr> selectedTasks() const;

    DetailViewController *makePane(const ObjectPtr &record) override;
    std::vector<ObjectPtr> removable(const std::vector<ObjectPtr> &records) override;
    void remove(const std::vector<ObjectPtr> &records, const std::function<void()> &removed,
                const Step &step) override;
    void showMenu(const QPoint &globalPosition) override;
    void severalOpened() override;

private:
    std::vector<TaskPtr> tasksAt(const std::set<int> &rows) const;

    TaskListModel *model;
    TaskRowCommands *commands;
};

#pragma once

#include "foundation/NotificationCenter.h"
#include "shell/tasks/TaskListModel.h"
#include "widgets/TableViewExtended.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class LinkedTasksModel;
class ListPlace;
class ProgressLine;
class QLabel;
class TaskRowCommands;

/// The tasks that belong to a record, below its form: how many of them are done, a button that adds one, and
/// their rows, in which they are ticked, opened and deleted. It follows the store by itself.
class LinkedTasksView : public QWidget
{
    Q_OBJECT
public:
    using Source = std::function<std::vector<TaskPtr>()>;
    /// \param source the tasks of the record in their order, asked whenever a task changed.
    explicit LinkedTasksView(Source source, QWidget *parent = nullptr);
    ~LinkedTasksView() override;

    TableViewExtended *table() const { return view; }
    /// In the table of a project its title would stand in each row.
    void setShowProject(bool shows);
    /// Whether the rows tell since when their delegate, whom the pane is about, has each task.
    void setTellsWaiting(bool tells);

    /// Takes the tasks anew.
    void loadTasks();
    int allTasksCount() const { return allTasks; }
    int completedTasksCount() const { return completedTasks; }

Q_SIGNALS:
    /// Two presses on a task, or Return.
    void opened(const ObjectPtr &task);
    /// A new task is to be written down for the record.
    void newTaskWanted();
    /// Tasks that exist are to be added to the record.
    void currentTasksWanted();

private:
    QWidget *makeHeader();
    void setUpView();
    void observe();
    void showProgress();
    void fitHeight();
    void changeInRows(const std::function<void()> &change);
    std::vector<TaskPtr> tasksAt(const std::set<int> &rows) const;
    void removeSelection();
    void explain();

    LinkedTasksModel *model;
    QLabel *percent = nullptr;
    ProgressLine *progress = nullptr;
    TableViewExtended *view;
    ListPlace *listPlace;
    TaskRowCommands *commands;
    int allTasks = 0;
    int completedTasks = 0;
    QTimer soon;
    /// Runs while the user is to see what was changed in a row.
    QTimer seen;
    bool isChanging = false;
    std::vector<Observation> observations;
};

#pragma once

#include "filters/TasksFilter.h"
#include "records/RecordListScreen.h"
#include "shell/tasks/TaskListModel.h"
#include "store/queries/DBWorker.h"

class CaptureBar;
class MVSegmentView;
class TaskRowCommands;

/// What makes one task list differ from another.
struct TaskListDescription
{
    ListType type;
    QString title;
    QString icon;
    /// What an empty list says in its middle; empty if it says so in a row of its own.
    QString emptySentence = {};
    /// The key of its grouping in the settings; -1 for a list without the control.
    int groupedType = -1;
    DetailPlace detailPlace = {};
    ToolBarButton::ActionType addType = ToolBarButton::NewTask;
};

/// A screen of tasks. The lists differ by what they fetch.
class TabTaskViewController : public RecordListScreen
{
    Q_OBJECT
public:
    explicit TabTaskViewController(const TaskListDescription &description, QWidget *parent = nullptr);

    ListType type() const { return description.type; }
    TableViewExtended *tableViewTasks() const { return table(); }
    /// Where new tasks are typed; null in a list to which none can come.
    CaptureBar *captureBar() const { return capture; }

    NewTaskRequest newTaskRequest() const override;
    std::optional<ListType> listType() const override { return description.type; }
    TaskPtr selectedTask() const override;
    QString explanationOf(const TaskPtr &task) const override;
    QRect placeOf(const TaskPtr &task) const override;
    bool canTakeLines() const override;
    void takeLines(const QStringList &lines) override;

protected:
    /// What is listed at present; `grouping` is None where the list has no grouping or none is chosen.
    virtual TaskListQuery query(Grouping grouping) const = 0;

    const TaskListModel &tasksModel() const { return *model; }

    DetailViewController *makePane(const ObjectPtr &record) override;
    std::vector<ObjectPtr> removable(const std::vector<ObjectPtr> &records) override;
    void remove(const std::vector<ObjectPtr> &records, const std::function<void()> &removed,
                const Step &step) override;
    void showMenu(const QPoint &globalPosition) override;
    int groupingIndex() const override;
    void severalOpened() override;
    void addFirst() override;
    /// The line above the rows, and what a task that is typed or pasted there begins with.
    void setUpCapture();
    virtual NewTaskRequest captureRequest() const { return newTaskRequest(); }

private:
    TabTaskViewController(const TaskListDescription &description, TaskListModel *model, QWidget *parent);
    void setUpGrouping();
    Grouping grouping() const { return static_cast<Grouping>(groupingIndex()); }
    void saveGrouping(int index);
    std::vector<TaskPtr> tasksAt(const std::set<int> &rows) const;
    void toggleDone(const std::set<int> &rows);

    TaskListDescription description;
    TaskListModel *model;
    TaskRowCommands *commands;
    CaptureBar *capture = nullptr;
    MVSegmentView *tasksGroupedView = nullptr;
};

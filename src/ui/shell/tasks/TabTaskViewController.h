#pragma once

#include "filters/TasksFilter.h"
#include "shell/tasks/TaskRowsScreen.h"
#include "store/queries/DBWorker.h"

class CaptureBar;
class MVSegmentView;

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

/// One of the task lists. They differ by what they fetch.
class TabTaskViewController : public TaskRowsScreen
{
    Q_OBJECT
public:
    explicit TabTaskViewController(const TaskListDescription &description, QWidget *parent = nullptr);

    ListType type() const { return description.type; }
    /// Where new tasks are typed; null in a list to which none can come.
    CaptureBar *captureBar() const { return capture; }

    NewTaskRequest newTaskRequest() const override;
    std::optional<ListType> listType() const override { return description.type; }
    QString explanationOf(const TaskPtr &task) const override;
    QWidget *taskLine() const override;
    void takeLines(const QStringList &lines) override;

protected:
    /// What is listed at present; `grouping` is None where the list has no grouping or none is chosen.
    virtual TaskListQuery query(Grouping grouping) const = 0;

    int groupingIndex() const override;
    void addFirst() override;
    /// The line above the rows, and what a task that is typed or pasted there begins with.
    void setUpCapture();
    virtual NewTaskRequest captureRequest() const { return newTaskRequest(); }

private:
    TabTaskViewController(const TaskListDescription &description, TaskListModel *model, QWidget *parent);
    void setUpGrouping();
    Grouping grouping() const { return static_cast<Grouping>(groupingIndex()); }
    void saveGrouping(int index);

    TaskListDescription description;
    CaptureBar *capture = nullptr;
    MVSegmentView *tasksGroupedView = nullptr;
};

#pragma once

#include "filters/FilterState.h"
#include "filters/TasksFilter.h"
#include "foundation/NotificationCenter.h"
#include "records/TabsViewController.h"
#include "shell/tasks/SelectionMemory.h"
#include "shell/tasks/TaskListModel.h"
#include "store/queries/DBWorker.h"
#include "widgets/TableViewExtended.h"

#include <QTimer>

#include <set>
#include <vector>

class EmptyState;
class MVSegmentView;
class TaskPopupMenu;
class TasksTabTopView;

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
class TabTaskViewController : public TabsViewController
{
    Q_OBJECT
public:
    explicit TabTaskViewController(const TaskListDescription &description, QWidget *parent = nullptr);

    ListType type() const { return description.type; }
    TableViewExtended *tableViewTasks() const { return view; }

    void reloadData() override;
    void updateRows() override;
    NewTaskRequest newTaskRequest() const override;
    bool hasSelection() const override;
    bool hasRows() const override;
    void removeSelection() override;
    void selectAll() override;
    DetailPlace detailPlace() const override { return description.detailPlace; }
    void setDetailSpace(int width) override;
    void clearController() override;

    // The filter.
    void openFilter() override;
    void clearFilter() override;
    bool canFilter() const override;
    bool canClearFilter() const override;

    void selectItem(const ObjectPtr &record) override;
    std::optional<ListType> listType() const override { return description.type; }
    TaskPtr selectedTask() const override;
    QString explanationOf(const TaskPtr &task) const override;
    QRect placeOf(const TaskPtr &task) const override;
    void showDetailWithTask(const TaskPtr &task);
    void takeKeysBack() override { view->setFocus(); }

protected:
    /// What is listed at present; `grouping` is None where the list has no grouping or none is chosen.
    virtual TaskListQuery query(Grouping grouping) const = 0;
    /// What a commit did, to a screen that shows more than its tasks.
    virtual void othersChanged(const StoreChanges &changes) { Q_UNUSED(changes) }
    /// What the query of an ungrouped list is to leave out; null for nothing.
    const FilterEntry *filter() const { return filterState ? filterState->filterOfList() : nullptr; }

    const TaskListModel &tasksModel() const { return *model; }
    std::vector<TaskPtr> tasksAt(const std::set<int> &rows) const;
    /// All rows are fetched anew, soon; several wishes in quick succession share one fetch.
    void reloadSoon();

private:
    void setUpView();
    void setUpTopView();
    void setUpGrouping();
    void setUpFilter();
    void showFilterState();
    Grouping grouping() const;
    void closeHiddenDetails();
    void setUpMenu();
    void observe();
    void storeChanged(const StoreChanges &changes);
    void rowChanged(const ObjectPtr &object, bool isGone);
    bool mustReload() const;
    void update(const std::set<RowId> &changed, const std::set<RowId> &held);
    void reload(SelectionMemory::Otherwise otherwise);
    void isSeen();
    void saveGrouping(int index);
    void toggleDone(const std::set<int> &rows);
    template <typename Change, typename... Value>
    void changeTasks(const std::vector<TaskPtr> &tasks, Change change, const Value &...value);
    void tableViewDoubleAction(int row);
    void removeRows(const std::set<int> &rows);
    void selectAfterRemoval(int lastIndex);
    void showMenu(const QPoint &globalPosition);
    void updateEmptyState();

    TaskListDescription description;
    TaskListModel *model;
    TableViewExtended *view;
    EmptyState *emptyState;
    EmptyState *filteredState = nullptr;
    QWidget *listLayer;
    TasksTabTopView *topView = nullptr;
    TasksFilter tasksFilter;
    /// Null for a list without a filter.
    std::unique_ptr<FilterState> filterState;
    /// A filter changed since the rows were fetched.
    bool mustCloseHidden = false;
    MVSegmentView *tasksGroupedView = nullptr;
    TaskPopupMenu *taskPopupMenu = nullptr;
    /// The tasks that changed since the rows were brought up to date.
    std::set<RowId> changedRows;
    /// Those whose change the user is to see before they leave.
    std::set<RowId> seenRows;
    QTimer promptUpdate;
    QTimer seenUpdate;
    /// Everything can be different.
    bool isAllChanged = false;
    /// Those that the user is changing in their rows just now.
    std::set<RowId> editedRows;
    /// The day on which the rows were fetched: on another one other tasks belong to the list.
    Date shownDay;
    std::vector<Observation> observations;
};

#include "shell/tasks/TabTaskViewController.h"

#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "records/TaskManager.h"
#include "records/dates/MVDate.h"
#include "shell/ShellAlerts.h"
#include "shell/details/DetailStack.h"
#include "shell/details/TaskDetailViewController.h"
#include "shell/tasks/GroupingSetting.h"
#include "shell/tasks/SelectionMemory.h"
#include "shell/tasks/TaskPopupMenu.h"
#include "shell/tasks/TaskRowEditor.h"
#include "shell/tasks/TaskTableCell.h"
#include "store/state/NotificationNames.h"
#include "widgets/BusyCursor.h"
#include "widgets/EmptyState.h"
#include "widgets/MVSegmentView.h"
#include "widgets/ScreenToolBar.h"

#include <QStackedLayout>

using namespace Qt::Literals::StringLiterals;

/// Long enough for a tick to be seen before its row leaves.
constexpr auto tickSeen = std::chrono::milliseconds(1000);

TabTaskViewController::TabTaskViewController(const TaskListDescription &listDescription, QWidget *parent)
    : TabsViewController(listDescription.title, parent)
    , description(listDescription)
    , model(new TaskListModel(listDescription.type, this))
    , view(new TableViewExtended(this))
    , emptyState(new EmptyState(listDescription.icon, listDescription.emptySentence, this))
{
    setUpView();
    setUpGrouping();
    addButton(description.addType);
    addButton(ToolBarButton::Calendars);
    for (QTimer *timer : {&delayedReload, &promptReload}) {
        timer->setSingleShot(true);
        connect(timer, &QTimer::timeout, this, &TabTaskViewController::reloadData);
    }
    delayedReload.setInterval(tickSeen);
    observe();
}

void TabTaskViewController::setUpView()
{
    auto *layers = new QStackedLayout(this);
    layers->setStackingMode(QStackedLayout::StackAll);
    layers->addWidget(view);
    layers->addWidget(emptyState);
    view->setObjectName(u"tableViewTasks"_s);
    view->setAccessibleName(description.title);
    view->setItemDelegate(new TaskTableCell(view));
    view->setModel(model);
    setFocusProxy(view);
    connect(view, &TableViewExtended::doubleAction, this, &TabTaskViewController::tableViewDoubleAction);
    connect(view, &TableViewExtended::removeRequested, this, &TabTaskViewController::removeSelection);
    connect(view, &TableViewExtended::menuRequested, this, &TabTaskViewController::showMenu);
    connect(view, &TableViewExtended::rowSelectionChanged, this, &TabTaskViewController::commandsChanged);
    connect(view, &TableViewExtended::checkToggled, this, [this](const std::set<int> &rows) {
        editing([&] { TaskRowEditor::toggleDone(tasksAt(rows)); });
    });
}

void TabTaskViewController::setUpGrouping()
{
    if (description.groupedType < 0)
        return;
    tasksGroupedView =
        new MVSegmentView({localized(u"Category"_s), localized(u"Project"_s), localized(u"Priority"_s)});
    tasksGroupedView->setObjectName(u"tasksGroupedView"_s);
    tasksGroupedView->setAccessibleName(localized(u"Group by"_s));
    tasksGroupedView->setHaveNotSelect(true);
    tasksGroupedView->setSelectedIndex(GroupingSetting::read(description.groupedType));
    connect(tasksGroupedView, &MVSegmentView::selectedIndexChanged, this,
            &TabTaskViewController::saveGrouping);
    toolBarView()->addControl(tasksGroupedView);
}

void TabTaskViewController::observe()
{
    for (const NotificationName name :
         {notifications::coreDataAddNewTask, notifications::taskChange, notifications::iCloudChange})
        observations.push_back(NotificationCenter::defaultCenter().addObserver(
            name, [this](const Notification &) { changedElsewhere(); }));
}

void TabTaskViewController::changedElsewhere()
{
    if (!isEditing)
        promptReload.start(0);
}

void TabTaskViewController::reloadLater()
{
    promptReload.stop();
    delayedReload.start();
}

void TabTaskViewController::reloadData()
{
    delayedReload.stop();
    promptReload.stop();
    const SelectionMemory memory = SelectionMemory::of(*view, *model);
    const int index = tasksGroupedView ? tasksGroupedView->selectedIndex() : -1;
    model->setRows(fetchRows(static_cast<Grouping>(index)));
    memory.restore(*view, *model);
    updateEmptyState();
    Q_EMIT commandsChanged();
}

void TabTaskViewController::updateEmptyState()
{
    emptyState->setVisible(model->nearestItem(0, 1) < 0);
}

void TabTaskViewController::saveGrouping(int index)
{
    GroupingSetting::write(description.groupedType, index);
    reloadData();
}

NewTaskRequest TabTaskViewController::newTaskRequest() const
{
    NewTaskRequest request;
    request.typeTask = type();
    const Date now = Clock::now();
    if (type() == ListType::Today || type() == ListType::Scheduled) {
        const Date day = type() == ListType::Today ? now : MVDate::addDayWithDate(now);
        request.createWithStartDate = MVDate::getStartOfDay(day);
        request.createWithDueDate = MVDate::getEndOfDay(day);
    }
    return request;
}

std::vector<TaskPtr> TabTaskViewController::tasksAt(const std::set<int> &rows) const
{
    std::vector<TaskPtr> tasks;
    for (const int row : rows) {
        if (const TaskPtr task = model->taskAt(row))
            tasks.push_back(task);
    }
    return tasks;
}

bool TabTaskViewController::hasSelection() const
{
    return view->hasSelectedRows();
}

bool TabTaskViewController::hasRows() const
{
    return model->nearestItem(0, 1) >= 0;
}

void TabTaskViewController::selectAll()
{
    view->selectAll();
}

void TabTaskViewController::selectItem(const TaskPtr &task)
{
    const int row = model->rowOf(task);
    if (row < 0)
        return;
    view->selectRow(row);
    view->scrollToRow(row);
    showDetailWithTask(task);
}

void TabTaskViewController::showDetailWithTask(const TaskPtr &task)
{
    if (detailStack())
        TaskDetailViewController::showTask(task, *this, *detailStack(), type());
}

void TabTaskViewController::setDetailSpace(int width)
{
    setContentsMargins(isRightToLeft() ? width : 0, 0, isRightToLeft() ? 0 : width, 0);
}

void TabTaskViewController::tableViewDoubleAction(int row)
{
    const TaskPtr task = model->taskAt(row);
    if (!task)
        return;
    if (view->selectedCount() > 1)
        ShellAlerts::alertSelectOneTask();
    else
        showDetailWithTask(task);
}

// Deleting

void TabTaskViewController::removeSelection()
{
    removeRows(view->selectedRows());
}

void TabTaskViewController::removeRows(const std::set<int> &rows)
{
    std::vector<ObjectPtr> removable;
    TaskPtr barred;
    for (const TaskPtr &task : tasksAt(rows)) {
        if (task->allowsContentModifications().value_or(true))
            removable.push_back(task);
        else
            barred = task;
    }
    if (rows.size() == 1 && barred)
        return ShellAlerts::alertEditingEvent(localized(barred->calendarTitle()));
    if (removable.empty())
        return;
    const int lastIndex = *rows.rbegin();
    if (detailStack())
        detailStack()->removeAllDetailFromTasks(tasksAt(rows));
    const BusyCursor busy;
    TaskManager::deleteTasks(removable, [this, lastIndex] { selectAfterRemoval(lastIndex); });
}

void TabTaskViewController::selectAfterRemoval(int lastIndex)
{
    view->clearSelection();
    reloadData();
    const int row = model->nearestItem(std::min(lastIndex, model->rowCount() - 1), -1);
    if (row >= 0)
        view->selectRow(row);
}

// Context menu

void TabTaskViewController::setUpMenu()
{
    taskPopupMenu = new TaskPopupMenu(this);
    const auto selected = [this] { return tasksAt(view->selectedRows()); };
    connect(taskPopupMenu, &TaskPopupMenu::statusChosen, this,
            [this, selected](int status) { editing([&] { TaskRowEditor::setStatus(selected(), status); }); });
    connect(taskPopupMenu, &TaskPopupMenu::priorityChosen, this, [this, selected](int priority) {
        editing([&] { TaskRowEditor::setPriority(selected(), priority); });
    });
    connect(taskPopupMenu, &TaskPopupMenu::categoryChosen, this,
            [this, selected](const CategoryPtr &category) {
                editing([&] { TaskRowEditor::setCategory(selected(), category); });
            });
    connect(taskPopupMenu, &TaskPopupMenu::deleteChosen, this, &TabTaskViewController::removeSelection);
}

void TabTaskViewController::showMenu(const QPoint &globalPosition)
{
    if (!taskPopupMenu)
        setUpMenu();
    taskPopupMenu->setTasks(tasksAt(view->selectedRows()));
    taskPopupMenu->popup(globalPosition);
}

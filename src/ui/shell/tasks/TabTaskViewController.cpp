#include "shell/tasks/TabTaskViewController.h"

#include "filters/FilterButtonCancelView.h"
#include "filters/TaskGrouping.h"
#include "filters/TasksFilterButton.h"
#include "filters/TasksTabTopView.h"
#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "records/TaskBatch.h"
#include "records/TaskManager.h"
#include "records/TaskPlacement.h"
#include "records/dates/MVDate.h"
#include "shell/ShellAlerts.h"
#include "shell/details/DetailStack.h"
#include "shell/details/TaskDetailViewController.h"
#include "shell/tasks/TaskPopupMenu.h"
#include "shell/tasks/TaskTableCell.h"
#include "store/state/NotificationNames.h"
#include "widgets/EmptyState.h"
#include "widgets/LongWork.h"
#include "widgets/MVSegmentView.h"
#include "widgets/ScreenToolBar.h"
#include "widgets/Theme.h"

#include <QApplication>
#include <QStackedLayout>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

/// Long enough for a tick to be seen before its row leaves.
constexpr auto tickSeen = std::chrono::milliseconds(1000);

TabTaskViewController::TabTaskViewController(const TaskListDescription &listDescription, QWidget *parent)
    : TabsViewController(listDescription.title, parent)
    , description(listDescription)
    , model(new TaskListModel(listDescription.type, this))
    , view(new TableViewExtended(this))
    , emptyState(new EmptyState(listDescription.icon, listDescription.emptySentence, this))
    , listLayer(new QWidget(this))
{
    setUpView();
    if (TasksFilter::isFilterable(static_cast<int>(type())))
        setUpTopView();
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
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(listLayer, 1);
    auto *layers = new QStackedLayout(listLayer);
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
    connect(view, &TableViewExtended::checkToggled, this,
            [this](const std::set<int> &rows) { changeTasks(tasksAt(rows), &TaskBatch::toggleDone); });
}

void TabTaskViewController::setUpTopView()
{
    topView = new TasksTabTopView;
    static_cast<QVBoxLayout *>(layout())->insertWidget(0, topView);
    filteredState = new EmptyState(u"filtered"_s, localized(u"No task passes the filter."_s), listLayer);
    filteredState->setAction(localized(u"Clear filter"_s));
    listLayer->layout()->addWidget(filteredState);
    filteredState->hide();
    connect(filteredState, &EmptyState::actionClicked, this, &TabTaskViewController::clearFilter);
    setUpGrouping();
    setUpFilter();
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
    tasksGroupedView->setSelectedIndex(TaskGrouping(description.groupedType).selectedIndex());
    connect(tasksGroupedView, &MVSegmentView::selectedIndexChanged, this,
            &TabTaskViewController::saveGrouping);
    topView->setGrouping(tasksGroupedView);
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
    reload(SelectionMemory::Otherwise::Neighbour);
}

void TabTaskViewController::reload(SelectionMemory::Otherwise otherwise)
{
    delayedReload.stop();
    promptReload.stop();
    const SelectionMemory memory = SelectionMemory::of(*view, *model);
    showFilterState();
    model->setRows(fetchRows(grouping()));
    memory.restore(*view, *model, otherwise);
    updateEmptyState();
    if (std::exchange(mustCloseHidden, false))
        closeHiddenDetails();
    Q_EMIT commandsChanged();
}

void TabTaskViewController::updateEmptyState()
{
    const bool isEmpty = model->nearestItem(0, 1) < 0;
    const bool isByFilter = isEmpty && canClearFilter();
    emptyState->setVisible(isEmpty && !isByFilter && !emptyState->sentence().isEmpty());
    if (filteredState)
        filteredState->setVisible(isByFilter);
}

Grouping TabTaskViewController::grouping() const
{
    return tasksGroupedView ? static_cast<Grouping>(tasksGroupedView->selectedIndex()) : Grouping::None;
}

// The filter

void TabTaskViewController::setUpFilter()
{
    tasksFilter.setTasksType(static_cast<int>(type()));
    // Keys that come in quick succession share one fetch.
    filterState = std::make_unique<FilterState>(tasksFilter, [this] {
        mustCloseHidden = true;
        showFilterState();
        promptReload.start(0);
    });
    filterState->filterStartSettings();
    topView->buttonFilter()->setFilter(&tasksFilter);
    connect(topView->cancelFilterView(), &QAbstractButton::clicked, this,
            &TabTaskViewController::clearFilter);
    showFilterState();
}

void TabTaskViewController::showFilterState()
{
    if (!filterState)
        return;
    filterState->setSelectedIndex(static_cast<int>(grouping()));
    topView->cancelFilterView()->setVisible(filterState->isCancelViewVisible());
    topView->buttonFilter()->setState(*filterState);
}

void TabTaskViewController::closeHiddenDetails()
{
    if (!detailStack())
        return;
    std::vector<TaskPtr> hidden = detailStack()->shownTasks();
    std::erase_if(hidden, [this](const TaskPtr &task) { return model->rowOf(task) >= 0; });
    detailStack()->removeAllDetailFromTasks(hidden);
}

bool TabTaskViewController::canFilter() const
{
    return filterState && filterState->isButtonEnabled();
}

bool TabTaskViewController::canClearFilter() const
{
    return filterState && filterState->isCancelViewVisible();
}

void TabTaskViewController::openFilter()
{
    if (canFilter())
        topView->buttonFilter()->togglePopover();
}

void TabTaskViewController::clearFilter()
{
    if (!filterState)
        return;
    topView->buttonFilter()->closePopover();
    filterState->clickDeactiveFilter();
    // Without a filter nothing is hidden: what is open stays so.
    mustCloseHidden = false;
    reloadData();
    // What was pressed may have gone.
    if (!view->hasFocus() && !topView->isAncestorOf(QApplication::focusWidget()))
        view->setFocus();
}

void TabTaskViewController::clearController()
{
    if (topView)
        topView->buttonFilter()->closePopover();
}

void TabTaskViewController::saveGrouping(int index)
{
    TaskGrouping(description.groupedType).setSelectedIndex(index);
    reload(SelectionMemory::Otherwise::Nothing);
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

void TabTaskViewController::selectItem(const ObjectPtr &record)
{
    const auto task = std::dynamic_pointer_cast<EntityTask>(record);
    const int row = model->rowOf(task);
    if (row < 0)
        return;
    view->selectRow(row);
    view->scrollToRow(row);
    showDetailWithTask(task);
}

TaskPtr TabTaskViewController::selectedTask() const
{
    return view->selectedCount() == 1 ? model->taskAt(*view->selectedRows().begin()) : nullptr;
}

QString TabTaskViewController::explanationOf(const TaskPtr &task) const
{
    return TaskPlacement(task).explanation(type(), filter());
}

QRect TabTaskViewController::placeOf(const TaskPtr &task) const
{
    const int row = model->rowOf(task);
    if (row < 0)
        return TabsViewController::placeOf(task);
    const QRect inView = view->visualRect(model->index(row));
    return {view->viewport()->mapTo(this, inView.topLeft()) + QPoint(Theme::contentMargin, 0), inView.size()};
}

void TabTaskViewController::showDetailWithTask(const TaskPtr &task)
{
    if (detailStack())
        TaskDetailViewController::showTask(task, *this, *detailStack(), type());
}

void TabTaskViewController::setDetailSpace(int width)
{
    listLayer->setContentsMargins(isRightToLeft() ? width : 0, 0, isRightToLeft() ? 0 : width, 0);
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
    std::vector<TaskPtr> going;
    TaskPtr barred;
    for (const TaskPtr &task : tasksAt(rows)) {
        if (task->allowsContentModifications().value_or(true))
            going.push_back(task);
        else
            barred = task;
    }
    if (rows.size() == 1 && barred)
        return ShellAlerts::alertEditingEvent(localized(barred->calendarTitle()));
    if (going.empty())
        return;
    const std::vector<ObjectPtr> removable(going.begin(), going.end());
    const int lastIndex = *rows.rbegin();
    if (detailStack())
        detailStack()->removeAllDetailFromTasks(going);
    LongWork work(removable.size(), localized(u"Deleting the selected tasks"_s));
    TaskManager::deleteTasks(
        removable, [this, lastIndex] { selectAfterRemoval(lastIndex); }, [&work] { return work.step(); });
}

void TabTaskViewController::selectAfterRemoval(int lastIndex)
{
    view->clearSelection();
    reloadData();
    const int row = model->nearestItem(std::min(lastIndex, model->rowCount() - 1), -1);
    if (row >= 0)
        view->selectRow(row);
}

// Changing

/// Changes tasks of the list, which must not be fetched at once for that. Many take their time, which is
/// shown.
template <typename Change, typename... Value>
void TabTaskViewController::changeTasks(const std::vector<TaskPtr> &tasks, Change change,
                                        const Value &...value)
{
    LongWork work(tasks.size(), localized(u"Changing the selected tasks"_s));
    isEditing = true;
    change(tasks, value..., [&work] { return work.step(); });
    isEditing = false;
    view->viewport()->update();
    reloadLater();
}

// Context menu

void TabTaskViewController::setUpMenu()
{
    taskPopupMenu = new TaskPopupMenu(this);
    const auto selected = [this] { return tasksAt(view->selectedRows()); };
    connect(taskPopupMenu, &TaskPopupMenu::statusChosen, this,
            [=, this](int status) { changeTasks(selected(), &TaskBatch::setStatus, status); });
    connect(taskPopupMenu, &TaskPopupMenu::priorityChosen, this,
            [=, this](int priority) { changeTasks(selected(), &TaskBatch::setPriority, priority); });
    connect(taskPopupMenu, &TaskPopupMenu::categoryChosen, this, [=, this](const CategoryPtr &category) {
        changeTasks(selected(), &TaskBatch::setCategory, category);
    });
    connect(taskPopupMenu, &TaskPopupMenu::whyChosen, this, &TabTaskViewController::whyRequested);
    connect(taskPopupMenu, &TaskPopupMenu::deleteChosen, this, &TabTaskViewController::removeSelection);
}

void TabTaskViewController::showMenu(const QPoint &globalPosition)
{
    if (!taskPopupMenu)
        setUpMenu();
    taskPopupMenu->setTasks(tasksAt(view->selectedRows()));
    taskPopupMenu->popup(globalPosition);
}

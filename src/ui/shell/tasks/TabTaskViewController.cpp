#include "shell/tasks/TabTaskViewController.h"

#include "filters/TasksFilterButton.h"
#include "filters/TasksTabTopView.h"
#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "records/TaskPlacement.h"
#include "shell/ShellAlerts.h"
#include "shell/details/DetailStack.h"
#include "shell/details/TaskDetailViewController.h"
#include "shell/tasks/TaskTableCell.h"
#include "store/state/NotificationNames.h"
#include "widgets/EmptyState.h"
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
    connect(view, &TableViewExtended::checkToggled, this, &TabTaskViewController::toggleDone);
}

void TabTaskViewController::observe()
{
    NotificationCenter &center = NotificationCenter::defaultCenter();
    const auto reload = [this](const auto &...) { changedElsewhere(); };
    observations.push_back(center.addObserver(notifications::contextDidSave, reload));
    observations.push_back(center.addObserver(notifications::iCloudChange, reload));
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

void TabTaskViewController::clearController()
{
    if (topView)
        topView->buttonFilter()->closePopover();
}

NewTaskRequest TabTaskViewController::newTaskRequest() const
{
    return NewTaskRequest::ofList(type(), Clock::now());
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

#include "shell/tasks/TabTaskViewController.h"

#include "filters/TasksFilterButton.h"
#include "filters/TasksTabTopView.h"
#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "records/DetailStack.h"
#include "records/ShellAlerts.h"
#include "records/TaskPlacement.h"
#include "records/dates/MVDate.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "shell/tasks/TaskTableCell.h"
#include "store/state/NotificationNames.h"
#include "widgets/EmptyState.h"
#include "widgets/MVSegmentView.h"
#include "widgets/ScreenToolBar.h"
#include "widgets/Theme.h"

#include <QApplication>
#include <QScrollBar>
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
    promptUpdate.setSingleShot(true);
    connect(&promptUpdate, &QTimer::timeout, this, &TabTaskViewController::updateRows);
    seenUpdate.setSingleShot(true);
    seenUpdate.setInterval(tickSeen);
    connect(&seenUpdate, &QTimer::timeout, this, &TabTaskViewController::isSeen);
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
    observations.push_back(center.addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) { storeChanged(changes); }));
    observations.push_back(center.addObserver(notifications::iCloudChange, [this] { reloadSoon(); }));
}

// What changed

void TabTaskViewController::storeChanged(const StoreChanges &changes)
{
    if (changes.isUnknown || query(grouping()).isRegroupedBy(changes))
        return reloadSoon();
    for (const ObjectPtr &object : changes.inserted)
        rowChanged(object, false);
    for (const StoreChanges::Update &update : changes.updated)
        rowChanged(update.object, false);
    for (const ObjectPtr &object : changes.deleted)
        rowChanged(object, true);
    if (!changedRows.empty())
        promptUpdate.start(0);
    othersChanged(changes);
}

/// A row that stands until the user has seen its tick stands through further changes, but not without its
/// task.
void TabTaskViewController::rowChanged(const ObjectPtr &object, bool isGone)
{
    if (object->entity().name() != EntityTask::entityName)
        return;
    const RowId row = object->rowId();
    if (isGone)
        seenRows.erase(row);
    else if (editedRows.contains(row))
        seenRows.insert(row);
    if (!seenRows.contains(row)) {
        changedRows.insert(row);
        return;
    }
    changedRows.erase(row);
    view->showRowsAnew();
}

void TabTaskViewController::reloadSoon()
{
    isAllChanged = true;
    promptUpdate.start(0);
}

/// With so many rows, one fetch is quicker than a step for each.
bool TabTaskViewController::mustReload() const
{
    constexpr size_t mostSteps = 200;
    constexpr int mostSelected = 2000;
    return isAllChanged || changedRows.size() > mostSteps ||
           shownDay != MVDate::getStartOfDay(Clock::now()) || view->selectedCount() > mostSelected;
}

void TabTaskViewController::updateRows()
{
    promptUpdate.stop();
    if (mustReload())
        return reloadData();
    if (!changedRows.empty())
        update(std::exchange(changedRows, {}), seenRows);
}

void TabTaskViewController::isSeen()
{
    changedRows.merge(seenRows);
    seenRows.clear();
    updateRows();
}

/// What is selected, seen and current stays so. If all that was selected goes, its neighbour takes its place.
void TabTaskViewController::update(const std::set<RowId> &changed, const std::set<RowId> &held)
{
    const int selected = view->firstSelectedRow();
    std::vector<TableViewExtended::Sight> sights = view->rowsInSight();
    std::erase_if(sights, [&](const TableViewExtended::Sight &sight) {
        return changed.contains(model->rows().identifierAt(sight.row.row()));
    });
    const bool isAtTop = view->verticalScrollBar()->value() == 0;
    model->update(query(grouping()), changed, held);
    if (selected >= 0 && !view->hasSelectedRows())
        SelectionMemory::selectNear(*view, *model, selected);
    if (isAtTop || !sights.empty())
        view->keepInSight(sights);
    updateEmptyState();
    Q_EMIT commandsChanged();
}

void TabTaskViewController::reloadData()
{
    reload(SelectionMemory::Otherwise::Neighbour);
}

void TabTaskViewController::reload(SelectionMemory::Otherwise otherwise)
{
    promptUpdate.stop();
    seenUpdate.stop();
    changedRows.clear();
    seenRows.clear();
    isAllChanged = false;
    shownDay = MVDate::getStartOfDay(Clock::now());
    const SelectionMemory memory = SelectionMemory::of(*view, *model);
    showFilterState();
    model->setRows(query(grouping()).fetch());
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
    if (!detailStack() || TaskDetailViewController::showTask(task, *this, *detailStack(), type()))
        return;
    // The user stays with the task that is edited, and so does the selection.
    const DetailViewController *const edited = detailStack()->top();
    const int row = edited ? model->rowOf(std::dynamic_pointer_cast<EntityTask>(edited->record())) : -1;
    if (row >= 0)
        view->selectRow(row);
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

#include "records/RecordListScreen.h"

#include "filters/FilterButton.h"
#include "filters/TasksTabTopView.h"
#include "foundation/Clock.h"
#include "records/DetailStack.h"
#include "records/DraggedRecords.h"
#include "records/PaperText.h"
#include "records/Waiting.h"
#include "records/dates/MVDate.h"
#include "store/state/NotificationNames.h"
#include "widgets/EmptyState.h"
#include "widgets/LongWork.h"
#include "widgets/TableCell.h"
#include "widgets/Theme.h"

#include <QHash>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStackedLayout>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

/// Long enough for a tick to be seen before its row leaves.
constexpr auto tickSeen = std::chrono::milliseconds(1000);

RecordListScreen::RecordListScreen(RecordListDescription listDescription, RecordListModel *model,
                                   TableCell *cell, QWidget *parent)
    : TabsViewController(listDescription.title, parent)
    , description(std::move(listDescription))
    , listModel(model)
    , view(new TableViewExtended(this))
    , listLayer(new QWidget(this))
    , emptyState(new EmptyState(description.icon, description.emptySentence, listLayer))
{
    listModel->setParent(this);
    setUpView(cell);
    addButton(description.addType);
    if (description.offersFirst && !emptyState->sentence().isEmpty()) {
        emptyState->setAction(description.firstTitle.isEmpty() ? ToolBarButton::titleOf(description.addType)
                                                               : description.firstTitle,
                              u"buttonAddFirst"_s);
        connect(emptyState, &EmptyState::actionClicked, this, &RecordListScreen::addFirst);
    }
    if (description.secondType)
        addButton(*description.secondType);
    promptUpdate.setSingleShot(true);
    connect(&promptUpdate, &QTimer::timeout, this, &RecordListScreen::updateRows);
    seenUpdate.setSingleShot(true);
    seenUpdate.setInterval(tickSeen);
    connect(&seenUpdate, &QTimer::timeout, this, &RecordListScreen::isSeen);
    opening.setSingleShot(true);
    connect(&opening, &QTimer::timeout, this, &RecordListScreen::openSelected);
    observe();
}

RecordListScreen::~RecordListScreen() = default;

void RecordListScreen::setUpView(TableCell *cell)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(listLayer, 1);
    auto *layers = new QStackedLayout(listLayer);
    layers->setStackingMode(QStackedLayout::StackAll);
    layers->addWidget(view);
    layers->addWidget(emptyState);
    view->setObjectName(description.tableName);
    view->setAccessibleName(description.title);
    view->setRowHeights(description.rowHeights);
    cell->setParent(view);
    view->setItemDelegate(cell);
    view->setModel(listModel);
    setFocusProxy(view);
    if (!description.besideSentence.isEmpty())
        besideState = new EmptyState(description.icon, description.besideSentence, this);
    view->setDragsOut([this](const std::set<int> &rows) { return DraggedRecords::of(recordsAt(rows)); });
    connect(view, &TableViewExtended::doubleAction, this, &RecordListScreen::rowOpened);
    connect(view, &TableViewExtended::removeRequested, this, &RecordListScreen::removeSelection);
    connect(view, &TableViewExtended::menuRequested, this, &RecordListScreen::showMenu);
    connect(view, &TableViewExtended::rowSelectionChanged, this, &RecordListScreen::selectionChanged);
}

void RecordListScreen::setHead(QWidget *aboveRows)
{
    // It is as wide as the rows, and not in the way of a pane beside them.
    head = new QWidget;
    auto *own = new QVBoxLayout(head);
    own->setContentsMargins({});
    own->addWidget(aboveRows);
    auto *column = static_cast<QVBoxLayout *>(layout());
    column->insertWidget(column->indexOf(listLayer), head);
}

void RecordListScreen::observe()
{
    NotificationCenter &center = NotificationCenter::defaultCenter();
    observations.push_back(center.addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) { storeChanged(changes); }));
    observations.push_back(center.addObserver(notifications::iCloudChange, [this] { reloadSoon(); }));
}

// What changed

void RecordListScreen::storeChanged(const StoreChanges &changes)
{
    if (changes.isUnknown || listModel->isRegroupedBy(changes))
        return reloadSoon();
    for (const ObjectPtr &object : changes.inserted)
        rowChanged(object, false);
    for (const StoreChanges::Update &update : changes.updated)
        rowChanged(update.object, false);
    for (const ObjectPtr &object : changes.deleted)
        rowChanged(object, true);
    if (!changedRows.empty())
        promptUpdate.start(0);
    const auto isTold = [&](std::string_view entity) { return changes.concerns(entity); };
    if (std::ranges::any_of(description.toldOf, isTold))
        view->showRowsAnew();
    othersChanged(changes);
}

/// A row that stands until the user has seen its tick stands through further changes, but not without its
/// record.
void RecordListScreen::rowChanged(const ObjectPtr &object, bool isGone)
{
    if (object->entity().name() != description.entity)
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

void RecordListScreen::reloadSoon()
{
    isAllChanged = true;
    promptUpdate.start(0);
}

/// With so many rows, one fetch is quicker than a step for each.
bool RecordListScreen::mustReload() const
{
    constexpr size_t mostSteps = 200;
    constexpr int mostSelected = 2000;
    return isAllChanged || changedRows.size() > mostSteps ||
           shownDay != MVDate::getStartOfDay(Clock::now()) || view->selectedCount() > mostSelected;
}

void RecordListScreen::updateRows()
{
    promptUpdate.stop();
    if (mustReload())
        return reloadData();
    if (!changedRows.empty())
        update(std::exchange(changedRows, {}), seenRows);
}

void RecordListScreen::isSeen()
{
    changedRows.merge(seenRows);
    seenRows.clear();
    updateRows();
}

/// What is selected, seen and current stays so. If all that was selected goes, its neighbour takes its place.
void RecordListScreen::update(const std::set<RowId> &changed, const std::set<RowId> &held)
{
    const SelectionMemory memory = SelectionMemory::of(*view, *listModel);
    const bool wasSelected = view->hasSelectedRows();
    const std::vector<ObjectPtr> shown = shownRecords();
    std::vector<TableViewExtended::Sight> sights = view->rowsInSight();
    std::erase_if(sights, [&](const TableViewExtended::Sight &sight) {
        return changed.contains(listModel->identifierAt(sight.row.row()));
    });
    const bool isAtTop = view->verticalScrollBar()->value() == 0;
    listModel->update(changed, held);
    if (wasSelected && !view->hasSelectedRows())
        memory.restore(*view, *listModel, SelectionMemory::Otherwise::Neighbour);
    if (isAtTop || !sights.empty())
        view->keepInSight(sights);
    updateEmptyState();
    closeDetailsOf(shown);
    selectFirstIfNone();
    keepPaneOfLeaver();
    Q_EMIT commandsChanged();
}

void RecordListScreen::reloadData()
{
    reload(SelectionMemory::Otherwise::Neighbour);
}

void RecordListScreen::reload(SelectionMemory::Otherwise otherwise)
{
    promptUpdate.stop();
    seenUpdate.stop();
    changedRows.clear();
    seenRows.clear();
    isAllChanged = false;
    shownDay = MVDate::getStartOfDay(Clock::now());
    const SelectionMemory memory = SelectionMemory::of(*view, *listModel);
    const std::vector<ObjectPtr> shown = shownRecords();
    showFilterState();
    listModel->fetch();
    memory.restore(*view, *listModel, otherwise);
    updateEmptyState();
    if (std::exchange(mustCloseHidden, false))
        closeHiddenDetails();
    else
        closeDetailsOf(shown);
    takePlace();
    selectFirstIfNone();
    keepPaneOfLeaver();
    Q_EMIT commandsChanged();
}

/// What was saved has sent the row away, and nobody wants to leave the pane: the neighbour that is selected
/// now does not take its place.
void RecordListScreen::keepPaneOfLeaver()
{
    DetailViewController *const top = isBeside() && detailStack() ? detailStack()->top() : nullptr;
    if (top && top->record() && listModel->rowOf(top->record()) < 0 &&
        (top->canSave() || top->hasChanges() || top->staysWithoutRow() || isHiddenShown()))
        opening.stop();
}

/// Beside its list a pane is never missed.
void RecordListScreen::selectFirstIfNone()
{
    const int first = listModel->nearestItem(0, 1);
    if (isBeside() && first >= 0 && !view->hasSelectedRows() && !isHiddenShown())
        view->selectRow(first);
}

void RecordListScreen::updateEmptyState()
{
    const bool isEmpty = !hasRows();
    const bool isByFilter = isEmpty && canClearFilter();
    emptyState->setVisible(isEmpty && !isByFilter && !emptyState->sentence().isEmpty());
    if (filteredState)
        filteredState->setVisible(isByFilter);
    if (besideState)
        besideState->setVisible(!isEmpty);
    if (isBeside())
        setDetailSpace(0);
}

/// Where a list was left, and with what.
struct PlaceLeft
{
    int scrollValue = 0;
    ObjectPtr selected;
};

/// As long as the program runs.
static QHash<QString, PlaceLeft> &placesLeft()
{
    static QHash<QString, PlaceLeft> places;
    return places;
}

static QString keyOf(const RecordListDescription &description)
{
    return description.placeKey.isEmpty() ? description.title : description.placeKey;
}

void RecordListScreen::takePlace()
{
    if (std::exchange(hasTakenPlace, true))
        return;
    const PlaceLeft place = placesLeft().take(keyOf(description));
    placeWanted = place.scrollValue;
    const int row = isBeside() && place.selected ? listModel->rowOf(place.selected) : -1;
    if (row >= 0)
        view->selectRow(row);
}

void RecordListScreen::showEvent(QShowEvent *event)
{
    TabsViewController::showEvent(event);
    if (const int place = std::exchange(placeWanted, 0); place > 0)
        view->verticalScrollBar()->setValue(place);
}

void RecordListScreen::clearController()
{
    opening.stop();
    placesLeft().insert(keyOf(description), {view->verticalScrollBar()->value(), selectedRecord()});
    if (topView)
        topView->buttonFilter()->closePopover();
}

// Selection

std::vector<ObjectPtr> RecordListScreen::recordsAt(const std::set<int> &numbers) const
{
    std::vector<ObjectPtr> records;
    for (const int row : numbers) {
        if (ObjectPtr record = listModel->recordAt(row))
            records.push_back(std::move(record));
    }
    return records;
}

void RecordListScreen::print(QPrinter &printer)
{
    PaperText::print(PaperText::ofList(description.title, *listModel, listType()), printer);
}

ExportRecords::Offer RecordListScreen::exportOffer() const
{
    ExportRecords::Offer offer{description.entity, description.exports, description.title};
    const std::set<int> selected = view->selectedRows();
    // A record can stand under several headings.
    std::set<RowId> known;
    for (int row = 0; row < listModel->rowCount(); ++row) {
        const RowId record = listModel->identifierAt(row);
        if (record != 0 && known.insert(record).second)
            offer.all.push_back(record);
    }
    known.clear();
    for (const int row : selected) {
        const RowId record = listModel->identifierAt(row);
        if (record != 0 && known.insert(record).second)
            offer.selected.push_back(record);
    }
    return offer;
}

QString RecordListScreen::selectedText() const
{
    QStringList lines;
    for (const int row : view->selectedRows())
        lines << listModel->index(row, 0).data().toString();
    return lines.join(u'\n');
}

ObjectPtr RecordListScreen::selectedRecord() const
{
    return view->selectedCount() == 1 ? listModel->recordAt(*view->selectedRows().begin()) : nullptr;
}

bool RecordListScreen::hasSelection() const
{
    return view->hasSelectedRows();
}

bool RecordListScreen::hasRows() const
{
    return listModel->nearestItem(0, 1) >= 0;
}

void RecordListScreen::selectAll()
{
    view->selectAll();
}

void RecordListScreen::showHidden(const ObjectPtr &record)
{
    updateRows();
    if (record->entity().name() != description.entity || listModel->rowOf(record) >= 0)
        return;
    view->clearSelection();
    opening.stop();
    hidden = record;
    showDetail(record);
}

/// Whether the pane on top is of a record that was asked for, and that the filter hides.
bool RecordListScreen::isHiddenShown() const
{
    const DetailViewController *const top = detailStack() ? detailStack()->top() : nullptr;
    return top && top->record() && top->record() == hidden.lock() && listModel->rowOf(top->record()) < 0;
}

void RecordListScreen::selectItem(const ObjectPtr &record)
{
    const int row = listModel->rowOf(record);
    if (row < 0)
        return;
    view->selectRow(row);
    view->scrollToRow(row);
    showDetail(record);
}

void RecordListScreen::showNewRecord(const ObjectPtr &record)
{
    selectRecords({record});
}

void RecordListScreen::selectRecords(const std::vector<ObjectPtr> &records)
{
    updateRows();
    std::set<int> rows;
    for (const ObjectPtr &record : records) {
        const int row = record ? listModel->rowOf(record) : -1;
        if (row >= 0)
            rows.insert(row);
    }
    if (rows.empty())
        return;
    view->selectRows(rows);
    view->scrollToRow(*rows.begin());
}

void RecordListScreen::selectionChanged()
{
    const auto selected = static_cast<int>(view->selectedRows().size());
    if (besideState)
        besideState->setSentence(selected > 1 ? listModel->countInWords(selected)
                                              : description.besideSentence);
    // Keys that come in quick succession open one pane.
    if (isBeside())
        opening.start(0);
    Q_EMIT commandsChanged();
}

void RecordListScreen::openSelected()
{
    // What is asked just now may change what is selected.
    if (Waiting::isForAnswer())
        return opening.start(Waiting::lookInterval);
    if (!detailStack())
        return;
    if (const ObjectPtr record = selectedRecord())
        return showDetail(record);
    if (detailStack()->mayLeave())
        detailStack()->removeAllDetail();
    else
        selectEdited();
}

/// The user stays with the record that is edited, and so does the selection.
void RecordListScreen::selectEdited()
{
    if (DetailViewController *const edited = detailStack()->top())
        detailOnTop(edited->record());
}

QRect RecordListScreen::placeOfRecord(const ObjectPtr &record) const
{
    const int row = listModel->rowOf(record);
    if (row < 0)
        return {rect().topLeft(), QSize(width(), 1)};
    const QRect inView = view->visualRect(listModel->index(row));
    return {view->viewport()->mapTo(this, inView.topLeft()) + QPoint(Theme::contentMargin, 0), inView.size()};
}

// Deleting

void RecordListScreen::removeSelection()
{
    const std::set<int> numbers = view->selectedRows();
    const std::vector<ObjectPtr> going = removable(recordsAt(numbers));
    if (going.empty())
        return;
    const int lastIndex = *numbers.rbegin();
    if (detailStack()) {
        if (!detailStack()->mayLeave(going))
            return;
        detailStack()->removeAllDetailFrom(going);
    }
    const auto removed = [this, going, lastIndex] {
        for (const ObjectPtr &record : going)
            rowChanged(record, true);
        selectAfterRemoval(lastIndex);
    };
    LongWork work(going.size(), description.deletingSentence);
    remove(going, removed, [&work] { return work.step(); });
    // Who does not delete goes on reading.
    if (isBeside())
        opening.start(0);
}

void RecordListScreen::selectAfterRemoval(int lastIndex)
{
    view->clearSelection();
    updateRows();
    const int row = listModel->nearestItem(std::min(lastIndex, listModel->rowCount() - 1), -1);
    if (row >= 0)
        view->selectRow(row);
}

// Changing

void RecordListScreen::changeInRows(const std::vector<ObjectPtr> &records,
                                    const std::function<void()> &change)
{
    std::set<RowId> edited;
    for (const ObjectPtr &record : records)
        edited.insert(record->rowId());
    {
        // A question lets other things happen to other rows.
        const QScopedValueRollback editing(editedRows, edited);
        change();
    }
    // Also those of a save that waits.
    for (const RowId row : edited) {
        if (!changedRows.contains(row))
            seenRows.insert(row);
    }
    view->showRowsAnew();
    seenUpdate.start();
}

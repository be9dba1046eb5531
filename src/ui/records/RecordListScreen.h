#pragma once

#include "filters/FilterState.h"
#include "foundation/NotificationCenter.h"
#include "records/RecordListModel.h"
#include "records/SelectionMemory.h"
#include "records/TabsViewController.h"
#include "widgets/TableViewExtended.h"

#include <QTimer>

#include <functional>
#include <set>
#include <string_view>
#include <vector>

class EmptyState;
class ListFilter;
class QVBoxLayout;
class TableCell;
class TasksTabTopView;

/// What makes one list of records differ from another.
struct RecordListDescription
{
    QString title = {};
    /// What its place is remembered by, where its title may be that of another list, too.
    QString placeKey = {};
    QString icon = {};
    /// The entity whose records are the rows.
    std::string_view entity = {};
    /// What the table is called among the widgets.
    QString tableName = {};
    ToolBarButton::ActionType addType = ToolBarButton::NewTask;
    /// The button beside the one that adds, where there is one.
    std::optional<ToolBarButton::ActionType> secondType = {};
    /// Other entities that the rows tell of.
    std::vector<std::string_view> toldOf = {};
    /// What an empty list says in its middle; empty if it says so in a row of its own.
    QString emptySentence = {};
    /// Whether an empty list offers to add its first record.
    bool offersFirst = true;
    /// What is offered in place of the button that adds; empty for that one.
    QString firstTitle = {};
    /// The same of a list whose filter leaves nothing.
    QString filteredSentence = {};
    /// What stands over the sign of a long deletion.
    QString deletingSentence = {};
    DetailPlace detailPlace = {};
    RowHeights rowHeights = {};
    /// When the pane about a record comes up: on two presses, over the list, or beside it with the selection.
    enum class Opens { OnDoubleClick, OnSelection } opens = Opens::OnDoubleClick;
    /// What stands beside the list while no pane does, where panes come with the selection.
    QString besideSentence = {};
    /// The files that its records can be written to, the proposed one first.
    std::vector<ExportFormat> exports = {};
};

/// A screen of records of one kind: a list that follows the store row by row, with what is selected, seen and
/// opened kept through every change, and a filter above it. Of the kind it knows what its description, its
/// model and its cell say, and what the operations below do.
class RecordListScreen : public TabsViewController
{
    Q_OBJECT
public:
    /// \param model the rows, and `cell` what paints them; both go with the screen.
    RecordListScreen(RecordListDescription description, RecordListModel *model, TableCell *cell,
                     QWidget *parent = nullptr);
    ~RecordListScreen() override;

    TableViewExtended *table() const { return view; }

    void reloadData() override;
    void updateRows() override;
    bool hasSelection() const override;
    bool hasRows() const override;
    void removeSelection() override;
    void selectAll() override;
    /// A pane beside a list without a strip above it begins where the list does.
    DetailPlace detailPlace() const override;
    void setDetailSpace(int width) override;
    void detailOnTop(const ObjectPtr &record) override;
    void clearController() override;
    /// Shows a record of its kind that its filter hides, until something else is selected; nothing if it has
    /// a row.
    void showHidden(const ObjectPtr &record);
    void selectItem(const ObjectPtr &record) override;
    void selectRecords(const std::vector<ObjectPtr> &records) override;
    void takeKeysBack() override { view->setFocus(); }

    // The filter.
    void openFilter() override;
    void clearFilter() override;
    bool canFilter() const override;
    bool canClearFilter() const override;

    bool canPrint() const override { return hasRows(); }
    void print(QPrinter &printer) override;
    ObjectPtr selectedRecord() const override;
    bool canExport() const override { return hasRows() && !description.exports.empty(); }
    ExportRecords::Offer exportOffer() const override;
    bool hasSelectedText() const override { return view->hasFocus() && hasSelection(); }
    QString selectedText() const override;
    /// Shows a record in a pane. One that is edited keeps the user there, and its row selected.
    void showDetail(const ObjectPtr &record);
    /// Where the row of a record is on the screen; the upper edge without one.
    QRect placeOfRecord(const ObjectPtr &record) const;

protected:
    // What a kind of record does its own way.
    /// A new pane about a record; null for a kind without one.
    virtual DetailViewController *makePane(const ObjectPtr &record) = 0;
    /// Those of the selected records that may be deleted. Who is told why others may not, is told here.
    virtual std::vector<ObjectPtr> removable(const std::vector<ObjectPtr> &records) { return records; }
    using Step = std::function<bool()>;
    /// Asks and deletes; `removed` is called once it is done, and `step` for each record: false ends it.
    virtual void remove(const std::vector<ObjectPtr> &records, const std::function<void()> &removed,
                        const Step &step) = 0;
    /// The context menu is asked for, with its rows selected.
    virtual void showMenu(const QPoint &globalPosition) { Q_UNUSED(globalPosition) }
    /// What a commit did, to a screen that shows more than its rows.
    virtual void othersChanged(const StoreChanges &changes) { Q_UNUSED(changes) }
    /// The number of the grouping that makes the filter rest; -1 for none.
    virtual int groupingIndex() const { return -1; }
    /// The button of the empty list was pressed.
    virtual void addFirst() { Q_EMIT buttonAdd(description.addType); }
    /// Two presses on a row while several are selected.
    virtual void severalOpened() {}

    /// Puts the strip with the filter above the list.
    void setUpFilter(std::shared_ptr<ListFilter> filter);
    TasksTabTopView *filterStrip() const { return topView; }
    /// Puts a strip above the list, below which panes begin.
    void setStrip(QWidget *aboveList);
    /// Puts something right above the rows, below the strip.
    void setHead(QWidget *aboveRows);
    /// A record was made that the list may show: it is selected and brought into sight, without its pane.
    void showNewRecord(const ObjectPtr &record);
    /// What the list is to leave out; null for nothing.
    const FilterEntry *filter() const { return filterState ? filterState->filterOfList() : nullptr; }

    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

    std::vector<ObjectPtr> recordsAt(const std::set<int> &rows) const;
    /// Fetches all rows at once.
    void reload(SelectionMemory::Otherwise otherwise);
    /// All rows are fetched anew, soon; several wishes in quick succession share one fetch.
    void reloadSoon();
    /// Runs a change of records in their rows, which stay for a moment as they are, so that it is seen.
    void changeInRows(const std::vector<ObjectPtr> &records, const std::function<void()> &change);

private:
    void setUpView(TableCell *cell);
    void observe();
    void storeChanged(const StoreChanges &changes);
    void rowChanged(const ObjectPtr &object, bool isGone);
    bool mustReload() const;
    void update(const std::set<RowId> &changed, const std::set<RowId> &held);
    void isSeen();
    void showFilterState();
    void closeHiddenDetails();
    void closeDetailsOf(const std::vector<ObjectPtr> &shownBefore);
    std::vector<ObjectPtr> shownRecords() const;
    void rowOpened(int row);
    void selectionChanged();
    bool isBeside() const;
    void openSelected();
    void showBeside(const ObjectPtr &record);
    void selectEdited();
    void selectFirstIfNone();
    bool isHiddenShown() const;
    /// Brings back what the list showed when it was left.
    void takePlace();
    void keepPaneOfLeaver();
    void selectAfterRemoval(int lastIndex);
    void updateEmptyState();

    RecordListDescription description;
    RecordListModel *listModel;
    TableViewExtended *view;
    QWidget *listLayer;
    /// What stands right above the rows; null for nothing.
    QWidget *head = nullptr;
    EmptyState *emptyState;
    EmptyState *filteredState = nullptr;
    EmptyState *besideState = nullptr;
    TasksTabTopView *topView = nullptr;
    /// Null for a list with nothing above it.
    QWidget *strip = nullptr;
    /// Null for a list without a filter.
    std::shared_ptr<ListFilter> listFilter;
    std::unique_ptr<FilterState> filterState;
    /// A filter changed since the rows were fetched.
    bool mustCloseHidden = false;
    /// The records that changed since the rows were brought up to date.
    std::set<RowId> changedRows;
    /// Those whose change the user is to see before they leave.
    std::set<RowId> seenRows;
    /// What was asked for and has no row.
    std::weak_ptr<ManagedObject> hidden;
    QTimer promptUpdate;
    QTimer seenUpdate;
    QTimer opening;
    /// Everything can be different.
    bool isAllChanged = false;
    /// Those that the user is changing in their rows just now.
    std::set<RowId> editedRows;
    /// Where its rows are to begin once they stand; 0 where they do.
    int placeWanted = 0;
    bool hasTakenPlace = false;
    /// The day on which the rows were fetched: on another one other records may belong to the list.
    Date shownDay;
    std::vector<Observation> observations;
};

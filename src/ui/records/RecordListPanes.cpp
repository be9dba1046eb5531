#include "records/RecordListScreen.h"

#include "filters/TasksTabTopView.h"
#include "records/DetailStack.h"
#include "records/Waiting.h"
#include "widgets/EmptyState.h"

// The panes about the records of a list: over it, or beside it with what is selected.

void RecordListScreen::rowOpened(int row)
{
    const ObjectPtr record = listModel->recordAt(row);
    if (!record)
        return;
    if (view->selectedCount() > 1)
        return severalOpened();
    showDetail(record);
    DetailViewController *const pane = detailStack() ? detailStack()->top() : nullptr;
    if (isBeside() && pane)
        pane->setFocus();
}

void RecordListScreen::showDetail(const ObjectPtr &record)
{
    opening.stop();
    DetailStack *const stack = detailStack();
    if (!stack)
        return;
    if (isBeside())
        return showBeside(record);
    DetailViewController *const open = stack->paneOf(record);
    DetailViewController *const pane = open ? nullptr : makePane(record);
    const bool isShown = open ? stack->showAgain(open) : !pane || stack->showDetail(pane, this);
    if (!isShown)
        selectEdited();
}

void RecordListScreen::showBeside(const ObjectPtr &record)
{
    DetailStack &stack = *detailStack();
    DetailViewController *const open = stack.paneOf(record);
    if (open && open == stack.top())
        return;
    if (!stack.mayLeave())
        return selectEdited();
    // The answer may have taken time, and the record away.
    const ObjectPtr selected = selectedRecord();
    if (selected ? selected != record : hidden.lock() != record)
        return opening.start(0);
    if (DetailViewController *const pane = makePane(record))
        stack.embed(pane, *this);
}

DetailPlace RecordListScreen::detailPlace() const
{
    DetailPlace place = description.detailPlace;
    if (isBeside() && !strip)
        place.topInset = 0;
    return place;
}

bool RecordListScreen::isBeside() const
{
    return description.opens == RecordListDescription::Opens::OnSelection;
}

void RecordListScreen::detailOnTop(const ObjectPtr &record)
{
    const int row = listModel->rowOf(record);
    if (row < 0 || (view->selectedCount() == 1 && view->firstSelectedRow() == row))
        return;
    view->selectRow(row);
    view->scrollToRow(row);
}

/// The records of its kind that panes are about and rows stand for.
std::vector<ObjectPtr> RecordListScreen::shownRecords() const
{
    if (!detailStack())
        return {};
    std::vector<ObjectPtr> shown = detailStack()->shownRecords();
    std::erase_if(shown, [this](const ObjectPtr &record) { return listModel->rowOf(record) < 0; });
    return shown;
}

/// A pane goes with its row. What is being typed stays, whatever the list shows, and so does a pane by which
/// the user has sent the row away.
void RecordListScreen::closeDetailsOf(const std::vector<ObjectPtr> &shownBefore)
{
    std::vector<ObjectPtr> gone = shownBefore;
    std::erase_if(gone, [this](const ObjectPtr &record) {
        DetailViewController *const pane = detailStack()->paneOf(record);
        return listModel->rowOf(record) >= 0 || !pane || pane->canSave() || pane->hasChanges() ||
               pane->staysWithoutRow();
    });
    if (!gone.empty())
        detailStack()->removeAllDetailFrom(gone);
}

void RecordListScreen::closeHiddenDetails()
{
    if (!detailStack())
        return;
    std::vector<ObjectPtr> ofKind = detailStack()->shownRecords();
    std::erase_if(ofKind,
                  [this](const ObjectPtr &record) { return record->entity().name() != description.entity; });
    closeDetailsOf(ofKind);
}

void RecordListScreen::setDetailSpace(int width)
{
    // Without rows there is nothing to look at beside them, but for a pane that still has words.
    const bool hasPane = detailStack() && detailStack()->top();
    if (isBeside())
        width = hasRows() || hasPane ? qRound(this->width() * description.detailPlace.width) : 0;
    for (QWidget *part : {listLayer, head}) {
        if (part)
            part->setContentsMargins(isRightToLeft() ? width : 0, 0, isRightToLeft() ? 0 : width, 0);
    }
    if (besideState)
        besideState->setGeometry(
            QStyle::visualRect(layoutDirection(), rect(), QRect(this->width() - width, 0, width, height())));
}

void RecordListScreen::resizeEvent(QResizeEvent *event)
{
    TabsViewController::resizeEvent(event);
    if (besideState)
        setDetailSpace(0);
}

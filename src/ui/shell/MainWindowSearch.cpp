#include "records/DetailStack.h"
#include "records/HistoryWindow.h"
#include "records/Waiting.h"
#include "shell/Actions.h"
#include "shell/MainWindow.h"
#include "shell/MainWindowController.h"
#include "shell/RightToolBar.h"
#include "shell/search/SearchPopover.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"
#include "widgets/TextBubble.h"

// The search, where its results lead, and why a task is where it is.

void MainWindowController::observeSearch()
{
    observations.push_back(NotificationCenter::defaultCenter().addObserver(
        notifications::searchMorvane, [this] { mainWindow->rightToolBarMain()->focusSearch(); }));
    observations.push_back(NotificationCenter::defaultCenter().addObserver(
        notifications::clickTableSearch, [this](const ObjectPtr &record) { searchSelectSoon(record); }));
}

/// A notification can be pressed at any time, even while the screen asks something; then the last one counts.
void MainWindowController::searchSelectSoon(const ObjectPtr &record)
{
    if (!Waiting::isForUser())
        return searchSelectItem(record);
    if (!std::exchange(searchWanted, record))
        Waiting::afterwards(Waiting::isForUser, this, [this] { searchSelectWanted(); });
}

/// The answer may have deleted the record, or another store be in use.
void MainWindowController::searchSelectWanted()
{
    const ObjectPtr record = std::exchange(searchWanted, nullptr);
    if (record && !record->isDeleted() && record->context())
        searchSelectItem(record);
}

void MainWindowController::searchSelectItem(const ObjectPtr &record)
{
    const auto item = SidebarModel::itemShowing(record);
    if (!item)
        return;
    if (!showList(*item))
        return;
    // Not by command: a list that a filter has emptied of it must not offer another row instead.
    if (screen->focusProxy())
        screen->setFocus(Qt::OtherFocusReason);
    screen->selectItem(record);
    showHidden(record);
    searchedRecord = DBWorker::getIdFromObject(record);
    actions->update();
}

/// The result that the keys are on, the selected task, the one in the pane, or the one that was searched for.
TaskPtr MainWindowController::taskInQuestion() const
{
    const auto found = std::dynamic_pointer_cast<EntityTask>(mainWindow->rightToolBarMain()->currentResult());
    if (found)
        return found;
    const TaskPtr selected = screen ? screen->selectedTask() : nullptr;
    return selected ? selected
                    : std::dynamic_pointer_cast<EntityTask>(DBWorker::getObjectFromId(searchedRecord));
}

/// That of the pane on top, or else the selected one.
ObjectPtr MainWindowController::recordInQuestion() const
{
    const DetailViewController *pane = details->top();
    if (pane && pane->record())
        return pane->record();
    return screen ? screen->selectedRecord() : nullptr;
}

void MainWindowController::showHistory()
{
    if (const ObjectPtr record = recordInQuestion())
        (new HistoryWindow(record, mainWindow.get()))->showWindow();
}

void MainWindowController::explainPlace()
{
    const TaskPtr task = taskInQuestion();
    if (!task || !screen)
        return;
    RightToolBar &bar = *mainWindow->rightToolBarMain();
    const QString text = screen->explanationOf(task);
    if (bar.currentResult())
        TextBubble::show(text, *bar.searchPopover(), bar.searchPopover()->currentPlace());
    else
        TextBubble::show(text, *screen, screen->placeOf(task));
}

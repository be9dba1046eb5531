#include "calendarsync/CalendarEvent.h"
#include "records/DetailStack.h"
#include "records/DraftKeeper.h"
#include "records/RecordKind.h"
#include "records/RecordListScreen.h"
#include "records/ShellAlerts.h"
#include "shell/MainWindow.h"
#include "shell/MainWindowController.h"
#include "shell/Screens.h"
#include "shell/calendars/CalendarsAppleWindowController.h"
#include "shell/calendars/MVSetiingsCalendarController.h"
#include "shell/contactimport/ImportContactWindowController.h"
#include "shell/people/ContactViewController.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "shell/tasks/WindowNewTask.h"
#include "store/AppDelegate.h"
#include "store/queries/DBWorker.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

// The windows beside the main one.

/// To which those belong who come in now; null for none.
std::shared_ptr<EntityContactGroup> MainWindowController::joinedGroup() const
{
    const auto *people = qobject_cast<ContactViewController *>(screen.data());
    return people ? people->joinedGroup() : nullptr;
}

void MainWindowController::buttonAdd(ToolBarButton::ActionType type)
{
    if (type == ToolBarButton::NewTask || type == ToolBarButton::NewTaskOnStart)
        showNewTask(screen ? screen->newTaskRequest() : NewTaskRequest());
    else if (type == ToolBarButton::Calendars)
        showCalendars();
    else if (type == ToolBarButton::ImportContacts)
        connect(ImportContactWindowController::open(mainWindow.get(), joinedGroup()),
                &ImportContactWindowController::preferencesWanted, this, &MainWindowController::showSettings,
                Qt::UniqueConnection);
    else if (const auto kind = Screens::kindAddedBy(type))
        showNewWindow(kind->windowName, [&] {
            RecordWindow *const window = kind->makeWindow(mainWindow.get());
            if (screen)
                screen->prepareNew(window->form());
            return window;
        });
}

/// One that is open is brought to the front as it is.
template <typename Make>
void MainWindowController::showNewWindow(const QString &name, Make make)
{
    QPointer<RecordWindow> &window = newWindows[name];
    if (!window) {
        window = make();
        window->setAttribute(Qt::WA_DeleteOnClose);
        connect(window, &RecordWindow::saved, this, &MainWindowController::showNewRecord);
    }
    window->showWindow();
}

/// It is the next that one works with; only where words wait to be saved, these come first.
void MainWindowController::showNewRecord(const ObjectPtr &record)
{
    if (!record || !screen || details->hasChanges())
        return;
    screen->selectRecords({record});
    showHidden(record);
    // A list that was empty could not have the keys before.
    const auto *list = dynamic_cast<RecordListScreen *>(screen.data());
    const QWidget *focus = mainWindow->focusWidget();
    if (list && list->table()->hasSelectedRows() && !(focus && screen->isAncestorOf(focus)))
        list->table()->setFocus();
}

/// A record that the filter of its list hides is shown beside the list all the same. A task stands in many
/// lists, and in this one it has no place then.
void MainWindowController::showHidden(const ObjectPtr &record)
{
    auto *list = dynamic_cast<RecordListScreen *>(screen.data());
    if (list && !list->listType())
        list->showHidden(record);
}

void MainWindowController::showNewTask(const NewTaskRequest &request)
{
    showNewWindow(u"WindowNewTask"_s, [&] { return new WindowNewTask(request, mainWindow.get()); });
}

/// A kind without a pane has nothing to show.
void MainWindowController::showOver(const ObjectPtr &record, QWidget *from)
{
    if (const auto task = std::dynamic_pointer_cast<EntityTask>(record))
        TaskDetailViewController::showTask(task, *from, *details);
    else if (DetailViewController *const open = details->paneOf(record))
        details->showAgain(open);
    else if (const auto kind = Screens::kindOf(record->entity().name()))
        details->showDetail(kind->makePane(record), from);
}

void MainWindowController::newTask(const MarkedSpan &dates, TimePeriod timePeriod)
{
    showNewTask(NewTaskRequest::ofCalendar(dates, timePeriod));
}

void MainWindowController::showCalendars()
{
    if (!windowCalendars) {
        windowCalendars = new CalendarsAppleWindowController(mainWindow.get());
        connect(windowCalendars, &CalendarsAppleWindowController::preferencesWanted, this,
                &MainWindowController::showSettings);
    }
    windowCalendars->showWindow();
}

void MainWindowController::showSettings()
{
    if (!windowSettings) {
        windowSettings = new MVSetiingsCalendarController(mainWindow.get());
        connect(windowSettings, &MVSetiingsCalendarController::calendarsAllowed, this,
                &MainWindowController::calendarsAllowed);
    }
    windowSettings->showWindow();
}

/// Both sides come in line at once; where no calendar was ever chosen there is one to choose.
void MainWindowController::calendarsAllowed()
{
    AppDelegate::shared()->applicationDidBecomeActive();
    if (CalendarEvent::getAllAccessCalendars().empty())
        showCalendars();
}

bool MainWindowController::closeNewWindows()
{
    LeaveGate gate;
    // That of what was said in a call belongs to the window of the call.
    const auto windows = mainWindow->findChildren<RecordWindow *>();
    for (RecordWindow *window : windows)
        gate.add(*window, [window] { window->showWindow(); });
    details->addTo(gate);
    const auto imports =
        mainWindow->findChildren<ImportContactWindowController *>(Qt::FindDirectChildrenOnly);
    const bool isImporting = std::ranges::any_of(imports, &ImportContactWindowController::isBusy);
    if (isImporting || !gate.mayLeave())
        return false;
    for (ImportContactWindowController *window : imports)
        window->close();
    for (RecordWindow *window : mainWindow->findChildren<RecordWindow *>())
        window->close();
    return true;
}

// What earlier runs were left with

bool MainWindowController::openDraft(const Drafts::Found &found)
{
    const TaskPtr task = found.draft.task();
    if (!task) {
        openAsNewTask(found);
        return true;
    }
    if (!details->paneOf(task))
        searchSelectItem(task);
    // The user has just been asked about another edit, and stays with it.
    if (!details->paneOf(task) && details->hasChanges())
        return false;
    // The list may not show it.
    if (!screen || !TaskDetailViewController::showTask(task, *screen, *details))
        return false;
    auto *pane = dynamic_cast<TaskDetailViewController *>(details->paneOf(task));
    if (!pane || pane->hasChanges())
        return false;
    if (pane->taskForm()->canEdit()) {
        pane->resume(found);
    } else {
        ShellAlerts::tellOfTextWithoutPlace(task->title());
        openAsNewTask(found);
    }
    return true;
}

/// Words for a record that is there go on in its pane, any others in the window for a new one.
bool MainWindowController::openDraft(const QString &file, const RecordDraft &draft)
{
    const auto kind = Screens::kindOf(draft.entity.toStdString());
    if (!kind)
        return true;
    const ObjectPtr record = DBWorker::getObjectFromId(draft.record);
    if (!record) {
        openAsNew(*kind, file, draft);
        return true;
    }
    if (details->hasChanges())
        return false;
    searchSelectItem(record);
    auto *pane = dynamic_cast<RecordPane *>(details->paneOf(record));
    if (!pane)
        openAsNew(*kind, file, draft);
    else
        pane->resume(file, draft);
    return true;
}

RecordWindow *MainWindowController::openAsNew(const RecordKind &kind, const QString &file,
                                              const RecordDraft &draft)
{
    RecordWindow *const window = kind.makeWindow(mainWindow.get());
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->resume(file, draft);
    window->showWindow();
    return window;
}

/// What was typed for a record that is no more, or can only be read now.
void MainWindowController::openLeftText(const QString &file)
{
    const auto found = Drafts::read(file);
    const auto draft = found ? std::nullopt : Drafts::readRecord(file);
    const auto kind = draft ? Screens::kindOf(draft->entity.toStdString()) : std::nullopt;
    RecordWindow *const window = found  ? openAsNewTask(*found)
                                 : kind ? openAsNew(*kind, file, *draft)
                                        : nullptr;
    if (!window)
        return;
    const bool isThere =
        found ? found->draft.task() != nullptr : DBWorker::getObjectFromId(draft->record) != nullptr;
    window->tell(localized(
        isThere ? u"This can only be read now. “Save” keeps what you typed, as a new one."_s
                : u"This was deleted while you edited it. “Save” makes it anew, with what you typed."_s));
}

RecordWindow *MainWindowController::openAsNewTask(const Drafts::Found &found)
{
    auto *window = new WindowNewTask(found, mainWindow.get());
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->showWindow();
    return window;
}

void MainWindowController::openDrafts()
{
    const Drafts::Leftovers leftovers = Drafts::find();
    if (!leftovers.putAside.isEmpty())
        ShellAlerts::tellOfUnreadableDrafts(leftovers.putAside);
    if (leftovers.drafts.isEmpty())
        return;
    ShellAlerts::tellOfDrafts();
    // Whoever stays with one edit is not asked again for each of the others, which wait for the next time.
    bool isStaying = false;
    // Records may have come or gone while that was read.
    for (const QString &file : leftovers.drafts) {
        const auto found = Drafts::read(file);
        if (found && !(isStaying && found->draft.task()))
            isStaying = !openDraft(*found) || isStaying;
        const auto other = Drafts::readRecord(file);
        if (other && !(isStaying && DBWorker::getObjectFromId(other->record)))
            isStaying = !openDraft(file, *other) || isStaying;
    }
}

#include "calendarviews/BirthdayDays.h"
#include "foundation/Alert.h"
#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "records/DetailStack.h"
#include "records/FeedbackMail.h"
#include "records/HelpAddresses.h"
#include "records/ShellAlerts.h"
#include "shell/Actions.h"
#include "shell/MainWindow.h"
#include "shell/MainWindowController.h"
#include "shell/OutlineViewExtended.h"
#include "shell/Shortcuts.h"
#include "shell/TextCommands.h"
#include "shell/WindowCommands.h"
#include "shell/calendars/CalendarViewController.h"
#include "shell/calendars/GoToDateWindowController.h"
#include "shell/contactimport/ImportContactWindowController.h"
#include "shell/help/AboutWindowController.h"
#include "shell/help/HelpPages.h"
#include "shell/help/HelpWindow.h"
#include "shell/help/UpdateCheck.h"
#include "shell/tasks/TaskRowCommands.h"
#include "store/AppDelegate.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"
#include "widgets/BusyCursor.h"
#include "workspace/Workspace.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QPrintPreviewDialog>
#include <QPrinter>

// What the commands of the menus do.

using namespace Qt::Literals::StringLiterals;

static ManagedObjectContext *context()
{
    AppDelegate *delegate = AppDelegate::shared();
    return delegate && delegate->hasManagedObjectContext() ? &delegate->managedObjectContext() : nullptr;
}

/// While a text has the keys, its own typing is what is taken back.
static bool canUndo()
{
    return TextCommands::hasSteps() ? TextCommands::canUndo() : context() && context()->canUndo();
}

static bool canRedo()
{
    return TextCommands::hasSteps() ? TextCommands::canRedo() : context() && context()->canRedo();
}

/// What the step that would be taken back, or done again, is called; empty for typing.
static QString nameOfStep(QString (ManagedObjectContext::*name)())
{
    return TextCommands::hasSteps() || !context() ? QString() : localized((context()->*name)());
}

/// Opens an address with the program that the desktop has for it, or says that there is none.
static void openOrTell(const QString &address)
{
    if (!Workspace::openUrl(address))
        Alert::run({{},
                    localized(u"No program is there that opens this."_s),
                    address.startsWith(u"mailto:"_s) ? localized(u"Set up a program for mail."_s) : address,
                    {localized(u"OK"_s)}});
}

void MainWindowController::bindActions()
{
    actions->bind(ActionId::NewTask, [this] { menuClickNewTask(); });
    actions->bind(ActionId::AddInLine, [this] { addInLine(); });
    for (const auto &[id, type] : {std::pair(ActionId::NewProject, ToolBarButton::NewProject),
                                   std::pair(ActionId::NewContact, ToolBarButton::NewContact),
                                   std::pair(ActionId::NewCompany, ToolBarButton::NewCompany),
                                   std::pair(ActionId::NewNote, ToolBarButton::NewNote)})
        actions->bind(id, [this, type = type] { buttonAdd(type); });
    actions->bind(
        ActionId::Calendars, [this] { showCalendars(); }, [] { return !DBWorker::isSample(); });
    actions->bind(ActionId::Preferences, [this] { showSettings(); });
    actions->bind(ActionId::CloseWindow, [this] { mainWindow->close(); });
    actions->bind(ActionId::Quit, [this] { Q_EMIT quitRequested(); });
    actions->bind(
        ActionId::Undo, [this] { undo(); }, [] { return canUndo(); });
    actions->bind(
        ActionId::Redo, [this] { redo(); }, [] { return canRedo(); });
    actions->nameObject(ActionId::Undo, [] { return nameOfStep(&ManagedObjectContext::undoName); });
    actions->nameObject(ActionId::Redo, [] { return nameOfStep(&ManagedObjectContext::redoName); });
    actions->bind(ActionId::Search,
                  [] { NotificationCenter::defaultCenter().post(notifications::searchMorvane); });
    actions->bind(
        ActionId::FilterTasks, [this] { screen->openFilter(); },
        [this] { return screen && screen->canFilter(); });
    actions->bind(
        ActionId::ClearFilter, [this] { screen->clearFilter(); },
        [this] { return screen && screen->canClearFilter(); });
    actions->bind(
        ActionId::WhyIsItHere, [this] { explainPlace(); }, [this] { return taskInQuestion() != nullptr; });
    actions->bind(
        ActionId::ShowHistory, [this] { showHistory(); }, [this] { return recordInQuestion() != nullptr; });
    actions->bind(ActionId::Cut, TextCommands::cut, TextCommands::canCut);
    actions->bind(
        ActionId::Copy, [this] { copy(); },
        [this] { return TextCommands::canCopy() || (screen && screen->hasSelectedText()); });
    actions->bind(
        ActionId::CopyTable, [this] { copyTable(); }, [this] { return canCopyTable(); });
    const auto openPeople = [this](const QStringList &paths) {
        ImportContactWindowController::openFiles(mainWindow.get(), paths, joinedGroup());
    };
    actions->bind(ActionId::Import, [this, openPeople] { ImportTasks::run(*mainWindow, openPeople); });
    // The drag ends first: what comes of the files may ask the user something.
    connect(
        mainWindow.get(), &MainWindow::filesDropped, this,
        [openPeople](const QStringList &paths) { ImportTasks::openFiles(paths, openPeople); },
        Qt::QueuedConnection);
    actions->bind(
        ActionId::Export, [this] { exportRecords(); }, [this] { return screen && screen->canExport(); });
    actions->bind(
        ActionId::Paste, [this, openPeople] { paste(openPeople); },
        [this] { return TextCommands::canPaste() || canTakeLines() || canCopyTable(); });
    actions->bind(
        ActionId::Save, [] { NotificationCenter::defaultCenter().post(notifications::keySave); },
        [this] { return details->top() && details->top()->canSave(); });
    actions->bind(
        ActionId::OpenMainWindow, [this] { showWindow(); }, [this] { return !mainWindow->isVisible(); });
    actions->bind(
        ActionId::Delete, [this] { removeSelected(); }, [this] { return canRemoveSelected(); });
    actions->bind(
        ActionId::SelectAll,
        [this] { TextCommands::hasText() ? TextCommands::selectAll() : screen->selectAll(); },
        [this] { return TextCommands::hasText() || (screen && screen->hasRows()); });
    bindPlanning();
    actions->bind(ActionId::FullScreen, [this] { toggleFullScreen(); });
}

/// What is marked in a text, or else the selected rows as lines.
void MainWindowController::copy()
{
    if (TextCommands::canCopy())
        return TextCommands::copy();
    if (screen && screen->hasSelectedText())
        QApplication::clipboard()->setText(screen->selectedText());
}

/// What can be done with the selected records of a list that has no menu of its own.
void MainWindowController::showRecordMenu(const QPoint &globalPosition)
{
    auto *menu = new QMenu(mainWindow.get());
    menu->setObjectName(u"recordMenu"_s);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    actions->update();
    for (const ActionId id : {ActionId::Copy, ActionId::CopyTable, ActionId::Export, ActionId::ShowHistory})
        menu->addAction(actions->action(id));
    menu->addSeparator();
    menu->addAction(actions->action(ActionId::Delete));
    menu->popup(globalPosition);
}

bool MainWindowController::canCopyTable() const
{
    return !TextCommands::hasText() && screen && screen->canExport();
}

void MainWindowController::copyTable()
{
    if (auto table = screen ? ExportRecords::table(screen->exportOffer()) : nullptr)
        QApplication::clipboard()->setMimeData(table.release());
}

/// What the clipboard has is asked of another program, which takes its time, so that is asked when it is
/// wanted.
bool MainWindowController::canTakeLines() const
{
    return !TextCommands::hasText() && screen && screen->taskLine();
}

/// Into a text, or else as the records of a table, or as a task for each line.
void MainWindowController::paste(const ImportTasks::FilesOpener &openPeople)
{
    if (TextCommands::canPaste())
        return TextCommands::paste();
    const QString text = QApplication::clipboard()->text();
    // A first line of one word is no title row.
    if (text.section(u'\n', 0, 0).contains(u'\t') && ImportTasks::openTable(text, openPeople))
        return;
    static const QRegularExpression lineEnd(u"[\\r\\n\\x{2028}\\x{2029}]+"_s);
    const QStringList lines = text.split(lineEnd, Qt::SkipEmptyParts);
    if (canTakeLines() && !lines.isEmpty())
        screen->takeLines(lines);
}

// Tasks in their rows

TaskRowCommands *MainWindowController::taskCommandsWithKeys() const
{
    const auto &all = TaskRowCommands::ofAllLists();
    const auto found = std::ranges::find_if(all, [this](const TaskRowCommands *commands) {
        return commands->hasKeys() && commands->isOn(*mainWindow);
    });
    return found == all.end() ? nullptr : *found;
}

/// Those of the list that has the keys, or else of the one that has something selected.
TaskRowCommands *MainWindowController::taskCommands() const
{
    if (TaskRowCommands *const commands = taskCommandsWithKeys())
        return commands;
    if (!screen || !screen->hasSelection())
        return nullptr;
    const auto &all = TaskRowCommands::ofAllLists();
    const auto found = std::ranges::find_if(all, [this](const TaskRowCommands *commands) {
        return commands->isOn(*screen) && commands->hasTasks();
    });
    return found == all.end() ? nullptr : *found;
}

bool MainWindowController::hasTaskCommands() const
{
    if (TextCommands::hasSteps() || !screen)
        return false;
    // A screen can have very many selected, which are not to be loaded for that.
    const auto isOnScreen = [this](const TaskRowCommands *commands) { return commands->isOn(*screen); };
    if (const TaskRowCommands *const commands = taskCommandsWithKeys(); commands && !isOnScreen(commands))
        return commands->hasTasks();
    return screen->hasSelection() && std::ranges::any_of(TaskRowCommands::ofAllLists(), isOnScreen);
}

void MainWindowController::bindPlanning()
{
    const auto bind = [this](ActionId id, auto command) {
        actions->bind(
            id,
            [this, command] {
                if (TaskRowCommands *const commands = taskCommands())
                    command(*commands);
            },
            [this] { return hasTaskCommands(); });
    };
    const auto bindDay = [&bind](ActionId id, QuickDay day) {
        bind(id, [day](TaskRowCommands &commands) { commands.plan(day); });
    };
    bindDay(ActionId::PlanToday, QuickDay::Today);
    bindDay(ActionId::PlanTomorrow, QuickDay::Tomorrow);
    bindDay(ActionId::PlanWeekend, QuickDay::Weekend);
    bindDay(ActionId::PlanNextWeek, QuickDay::NextWeek);
    bindDay(ActionId::PlanSomeday, QuickDay::Someday);
    bind(ActionId::PlanOtherDay, [](TaskRowCommands &commands) { commands.planOnOtherDay(); });
    bind(ActionId::Duplicate, [](TaskRowCommands &commands) { commands.duplicate(); });
}

void MainWindowController::exportRecords()
{
    if (screen)
        ExportRecords::run(screen->exportOffer(), *mainWindow);
}

/// A list gives its tasks what makes them belong to it; written down from anywhere else, one is for today.
void MainWindowController::menuClickNewTask()
{
    if (screen && screen->listType())
        return buttonAdd(ToolBarButton::NewTask);
    NotificationCenter::defaultCenter().post(notifications::allDayCalendarCreateTask,
                                             NewTaskRequest::today(Clock::now()));
}

/// From where nothing can be typed so, it goes to the Inbox first.
void MainWindowController::addInLine()
{
    if (!screen || !screen->taskLine())
        goToList(SidebarItem::Inbox);
    if (QWidget *const line = screen ? screen->taskLine() : nullptr)
        line->setFocus(Qt::ShortcutFocusReason);
}

void MainWindowController::bindLists()
{
    for (const ActionDescription &description : Actions::table()) {
        if (const auto list = description.list)
            actions->bind(description.id, [this, list] { goToList(*list); });
    }
}

// The calendar, which comes up first

void MainWindowController::doInCalendar(const std::function<void(CalendarViewController &)> &command)
{
    if (!dynamic_cast<CalendarViewController *>(screen.data()))
        goToList(SidebarItem::Calendar);
    if (auto *calendar = dynamic_cast<CalendarViewController *>(screen.data()))
        command(*calendar);
}

void MainWindowController::bindCalendar()
{
    using Type = CalendarViewController::CalendarType;
    const auto show = [this](ActionId id, Type type) {
        actions->bind(id, [this, type] {
            doInCalendar([type](CalendarViewController &calendar) { calendar.showCalendar(type); });
        });
    };
    const auto turn = [this](ActionId id, int pages) {
        actions->bind(id, [this, pages] {
            doInCalendar(
                [pages](CalendarViewController &calendar) { calendar.daysControllerSelectButton(pages); });
        });
    };
    show(ActionId::CalendarDay, Type::Day);
    show(ActionId::CalendarWeek, Type::Week);
    show(ActionId::CalendarMonth, Type::Month);
    turn(ActionId::CalendarToday, 0);
    turn(ActionId::CalendarNext, 1);
    turn(ActionId::CalendarPrevious, -1);
    actions->bind(
        ActionId::Print, [this] { printScreen(); },
        [this] { return (details->top() && details->top()->record()) || (screen && screen->canPrint()); });
    actions->bind(ActionId::CalendarGoToDate, [this] { goToDate(); });
    actions->bind(ActionId::CalendarBirthdays, [this] {
        BirthdayDays::setWanted(!BirthdayDays::areWanted());
        nameBirthdays();
    });
    nameBirthdays();
}

void MainWindowController::nameBirthdays()
{
    actions->action(ActionId::CalendarBirthdays)
        ->setText(localized(BirthdayDays::areWanted() ? u"Hide Birthdays"_s : u"Show Birthdays"_s));
}

void MainWindowController::goToDate()
{
    doInCalendar([this](CalendarViewController &) {
        auto *window = new GoToDateWindowController(Clock::now(), mainWindow.get());
        connect(window, &GoToDateWindowController::dateChosen, this, [this](Date date) {
            doInCalendar([date](CalendarViewController &calendar) { calendar.calendarGoToDate(date); });
        });
        window->open();
    });
}

void MainWindowController::printScreen()
{
    QPrinter printer(QPrinter::HighResolution);
    const bool isPane = details->top() && details->top()->record();
    const bool isCalendar = !isPane && dynamic_cast<CalendarViewController *>(screen.data());
    printer.setPageOrientation(isCalendar ? QPageLayout::Landscape : QPageLayout::Portrait);
    QPrintPreviewDialog preview(&printer, mainWindow.get());
    preview.setObjectName(u"QPrintPreviewDialog"_s);
    connect(&preview, &QPrintPreviewDialog::paintRequested, this, [this](QPrinter *paper) {
        DetailViewController *const pane = details->top();
        if (!(pane && pane->record() && pane->print(*paper)) && screen)
            screen->print(*paper);
    });
    preview.exec();
}

bool MainWindowController::canRemoveSelected() const
{
    if (TextCommands::hasText())
        return TextCommands::canRemove();
    const OutlineViewExtended &outline = *mainWindow->outlineViewListItem();
    return outline.hasFocus() ? sidebar->groupAt(outline.currentIndex()) != nullptr
                              : screen && screen->hasSelection();
}

void MainWindowController::removeSelected()
{
    const OutlineViewExtended &outline = *mainWindow->outlineViewListItem();
    if (TextCommands::hasText())
        TextCommands::remove();
    else if (outline.hasFocus())
        didRemoveRow(outline.currentIndex());
    else if (screen)
        screen->removeSelection();
}

/// What was taken back may have been a contact group.
void MainWindowController::groupsMayHaveChanged()
{
    if (sidebar->refreshGroups())
        return;
    const SidebarItem former = selectItem.value_or(SidebarItem::Home);
    const QString group = selectedGroup;
    loadContactsGroup();
    selectAgain(former, group);
}

void MainWindowController::undo()
{
    TextCommands::hasSteps() ? TextCommands::undo() : stepBack(&ManagedObjectContext::undo);
}

void MainWindowController::redo()
{
    TextCommands::hasSteps() ? TextCommands::redo() : stepBack(&ManagedObjectContext::redo);
}

/// Takes the last save back, or does it again, and shows what has come of it: those of the records that are
/// on the screen are selected.
void MainWindowController::stepBack(OptionalError (ManagedObjectContext::*step)())
{
    const BusyCursor busy;
    const bool hasKeys = screen && screen->isAncestorOf(mainWindow->focusWidget());
    std::vector<ObjectPtr> touched;
    {
        const Observation seen = NotificationCenter::defaultCenter().addObserver(
            notifications::contextDidSave, [&touched](const StoreChanges &changes) {
                touched.insert(touched.end(), changes.inserted.begin(), changes.inserted.end());
                for (const StoreChanges::Update &update : changes.updated)
                    touched.push_back(update.object);
            });
        ShellAlerts::presentError((context()->*step)());
    }
    groupsMayHaveChanged();
    if (!screen)
        return;
    screen->updateRows();
    screen->selectRecords(touched);
    // The list may be another one than before.
    if (hasKeys && !screen->isAncestorOf(mainWindow->focusWidget()))
        screen->setFocus(Qt::OtherFocusReason);
}

void MainWindowController::toggleFullScreen()
{
    mainWindow->setWindowState(mainWindow->windowState() ^ Qt::WindowFullScreen);
}

/// The desktop may have done it, too.
void MainWindowController::fullScreenChanged()
{
    const bool isFull = mainWindow->isFullScreen();
    actions->action(ActionId::FullScreen)
        ->setText(localized(isFull ? u"Exit Full Screen"_s : u"Enter Full Screen"_s));
}

// Help

QString MainWindowController::helpPage() const
{
    if (const DetailViewController *pane = details->top(); pane && pane->record())
        return HelpPages::ofRecords(pane->record()->entity().name());
    switch (selectItem.value_or(SidebarItem::Home)) {
    case SidebarItem::Home:
        return u"start.html"_s;
    case SidebarItem::Projects:
        return u"projects.html"_s;
    case SidebarItem::Contacts:
    case SidebarItem::People:
    case SidebarItem::Companies:
    case SidebarItem::ContactGroup:
    case SidebarItem::WaitingFor:
        return u"people.html"_s;
    case SidebarItem::Calendar:
        return u"calendar.html"_s;
    case SidebarItem::Notes:
        return u"notes.html"_s;
    default:
        return u"lists.html"_s;
    }
}

void MainWindowController::bindHelp()
{
    actions->bind(ActionId::About, [] { AboutWindowController::defaultController()->showWindow(); });
    actions->bind(ActionId::CheckUpdates, [] { UpdateCheck::run(); });
    actions->bind(ActionId::Welcome, [this] { openWelcomeWindow(); });
    actions->bind(ActionId::HelpHere, [this] { HelpWindow::showPage(helpPage()); });
    actions->bind(ActionId::UserGuide, [this] { Q_EMIT userGuideRequested(); });
    actions->bind(ActionId::KeyboardShortcuts, [] { HelpWindow::showPage(HelpPages::shortcuts); });
    actions->bind(ActionId::ShortcutsHere, [this] {
        ShortcutsOverlay::toggle(*mainWindow, Shortcuts::linesOf(WindowCommands::commandsOf(*mainWindow)));
    });
    actions->bind(ActionId::Feedback, [] { openOrTell(FeedbackMail::url()); });
    actions->bind(ActionId::HowTo, [] { openOrTell(HelpAddresses::videos()); });
}

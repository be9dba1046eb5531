#include "shell/MainWindowController.h"

#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "shell/Actions.h"
#include "shell/MainMenu.h"
#include "shell/MainWindow.h"
#include "shell/OutlineViewExtended.h"
#include "shell/RightToolBar.h"
#include "shell/ScreenFactory.h"
#include "shell/ShellAlerts.h"
#include "shell/calendars/CalendarsAppleWindowController.h"
#include "shell/calendars/MVSetiingsCalendarController.h"
#include "shell/details/DetailStack.h"
#include "shell/search/SearchPopover.h"
#include "shell/tasks/WindowNewTask.h"
#include "store/AppDelegate.h"
#include "store/state/NotificationNames.h"
#include "widgets/BusyCursor.h"
#include "widgets/ScreenToolBar.h"
#include "widgets/TextBubble.h"

#include <QLayout>
#include <QMenuBar>
#include <QMessageBox>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

constexpr auto badgeInterval = 60s;
constexpr auto firstSelectionDelay = 300ms;

MainWindowController::MainWindowController()
    : mainWindow(std::make_unique<MainWindow>())
    , sidebar(new SidebarModel(this))
    , actions(new Actions(this))
    , details(std::make_unique<DetailStack>(*mainWindow->rightContentView()))
{
    bindActions();
    bindLists();
    MainMenu::fill(*mainWindow->menuBar(), *actions);
    mainWindow->addActions(actions->all());
    windowDidLoad();
}

MainWindowController::~MainWindowController() = default;

void MainWindowController::windowDidLoad()
{
    OutlineViewExtended &outline = *mainWindow->outlineViewListItem();
    outline.setModel(sidebar);
    loadContactsGroup();
    connect(&outline, &OutlineViewExtended::selectionDidChange, this,
            &MainWindowController::outlineViewSelectionDidChange);
    connect(&outline, &OutlineViewExtended::didRemoveRow, this, &MainWindowController::didRemoveRow);
    connect(mainWindow.get(), &MainWindow::closed, this, &MainWindowController::closeNewWindows);
    badgeRecount.setSingleShot(true);
    connect(&badgeRecount, &QTimer::timeout, this, &MainWindowController::countTasksBadge);
    connect(mainWindow.get(), &MainWindow::firstPainted, &badgeRecount, [this] { badgeRecount.start(0); });
    badgeTimer.emplace(badgeInterval, [this] { countTasksBadge(); });
    observe();
    observeSearch();
    QTimer::singleShot(firstSelectionDelay, this, &MainWindowController::selectFirstRow);
}

void MainWindowController::selectFirstRow()
{
    if (!selectItem)
        showList(SidebarItem::Home);
}

void MainWindowController::observe()
{
    for (const NotificationName name : {notifications::contextDidSave, notifications::iCloudChange})
        observations.push_back(NotificationCenter::defaultCenter().addObserver(
            name, [this](const Notification &) { storeChanged(); }));
}

void MainWindowController::observeSearch()
{
    connect(mainWindow->rightToolBarMain(), &RightToolBar::currentResultChanged, actions,
            &Actions::updateEnabled);
    observations.push_back(NotificationCenter::defaultCenter().addObserver(
        notifications::searchMorvane,
        [this](const Notification &) { mainWindow->rightToolBarMain()->focusSearch(); }));
    observations.push_back(NotificationCenter::defaultCenter().addObserver(
        notifications::clickTableSearch, [this](const Notification &notification) {
            if (const auto *record = std::any_cast<ObjectPtr>(&notification.object))
                searchSelectItem(*record);
        }));
}

void MainWindowController::storeChanged()
{
    badgeRecount.start(0);
    actions->updateEnabled();
}

void MainWindowController::showWindow()
{
    mainWindow->show();
    mainWindow->raise();
    mainWindow->activateWindow();
}

// Commands

static ManagedObjectContext *context()
{
    AppDelegate *delegate = AppDelegate::shared();
    return delegate && delegate->hasManagedObjectContext() ? &delegate->managedObjectContext() : nullptr;
}

void MainWindowController::bindActions()
{
    actions->bind(ActionId::NewTask, [this] { buttonAdd(ToolBarButton::NewTask); });
    actions->bind(
        ActionId::Calendars, [this] { showCalendars(); }, [] { return !DBWorker::isSample(); });
    actions->bind(ActionId::Settings, [this] { showSettings(); });
    actions->bind(ActionId::CloseWindow, [this] { mainWindow->close(); });
    actions->bind(ActionId::Quit, [this] { Q_EMIT quitRequested(); });
    actions->bind(
        ActionId::Undo, [this] { undo(); }, [] { return context() && context()->canUndo(); });
    actions->bind(
        ActionId::Redo, [this] { redo(); }, [] { return context() && context()->canRedo(); });
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
        ActionId::Delete, [this] { removeSelected(); }, [this] { return screen && screen->hasSelection(); });
    actions->bind(
        ActionId::SelectAll, [this] { screen->selectAll(); }, [this] { return screen && screen->hasRows(); });
    actions->bind(ActionId::FullScreen, [this] { toggleFullScreen(); });
    actions->bind(ActionId::About, [this] { showAbout(); });
}

void MainWindowController::bindLists()
{
    for (const ActionDescription &description : Actions::table()) {
        if (const auto list = Actions::listOf(description.id))
            actions->bind(description.id, [this, list] { goToList(*list); });
    }
}

void MainWindowController::removeSelected()
{
    if (mainWindow->outlineViewListItem()->hasFocus())
        didRemoveRow(mainWindow->outlineViewListItem()->currentIndex());
    else if (screen)
        screen->removeSelection();
}

static void present(const OptionalError &error)
{
    if (error)
        Alert::run(
            {.title = {}, .message = error->message, .informativeText = {}, .buttons = {localized(u"OK"_s)}});
}

void MainWindowController::undo()
{
    const BusyCursor busy;
    present(context()->undo());
    if (screen)
        screen->reloadData();
    storeChanged();
}

void MainWindowController::redo()
{
    const BusyCursor busy;
    present(context()->redo());
    if (screen)
        screen->reloadData();
    storeChanged();
}

void MainWindowController::toggleFullScreen()
{
    mainWindow->setWindowState(mainWindow->windowState() ^ Qt::WindowFullScreen);
    const bool isFull = mainWindow->isFullScreen();
    actions->action(ActionId::FullScreen)
        ->setText(localized(isFull ? u"Exit Full Screen"_s : u"Enter Full Screen"_s));
}

void MainWindowController::showAbout()
{
    QMessageBox::about(mainWindow.get(), localized(u"About Morvane"_s),
                       u"<h3>Morvane</h3><p>%1 %2</p><p>%3</p>"_s.arg(
                           localized(u"Version"_s), AppDelegate::version(),
                           localized(u"Tasks, projects, contacts and calendars in one place."_s)));
}

// The tree

void MainWindowController::showList(SidebarItem item)
{
    mainWindow->outlineViewListItem()->selectIndex(sidebar->indexOf(item));
}

/// By command one goes to a list to work in it: its rows take the keys. Walking through the sidebar leaves
/// them there.
void MainWindowController::goToList(SidebarItem item)
{
    showList(item);
    if (screen && screen->focusProxy())
        screen->setFocus(Qt::ShortcutFocusReason);
}

void MainWindowController::loadContactsGroup()
{
    const bool isExpanded =
        mainWindow->outlineViewListItem()->isExpanded(sidebar->indexOf(SidebarItem::Contacts));
    const bool isTasksExpanded =
        mainWindow->outlineViewListItem()->isExpanded(sidebar->indexOf(SidebarItem::Tasks));
    sidebar->loadContactsGroup();
    mainWindow->outlineViewListItem()->setExpanded(sidebar->indexOf(SidebarItem::Contacts), isExpanded);
    mainWindow->outlineViewListItem()->setExpanded(sidebar->indexOf(SidebarItem::Tasks), isTasksExpanded);
}

void MainWindowController::countTasksBadge()
{
    sidebar->setBadges(DBWorker::taskBadges());
}

void MainWindowController::changeDataBase()
{
    const auto former = selectItem.value_or(SidebarItem::Home);
    loadContactsGroup();
    QTimer::singleShot(firstSelectionDelay, this, [this, former] { showList(former); });
    countTasksBadge();
}

void MainWindowController::didRemoveRow(const QModelIndex &index)
{
    const auto group = sidebar->groupAt(index);
    if (!group || !ShellAlerts::alertRemoveItem())
        return;
    context()->deleteObject(group);
    present(DBWorker::saveContext());
    loadContactsGroup();
    showList(SidebarItem::People);
}

// Search

void MainWindowController::searchSelectItem(const ObjectPtr &record)
{
    const auto item = SidebarModel::itemShowing(record);
    if (!item)
        return;
    goToList(*item);
    screen->selectItem(record);
    searchedRecord = DBWorker::getIdFromObject(record);
    actions->updateEnabled();
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

// Screens

void MainWindowController::outlineViewSelectionDidChange(const QModelIndex &index)
{
    selectItem = sidebar->itemAt(index);
    searchedRecord.clear();
    show(ScreenFactory::make(*sidebar, index));
}

void MainWindowController::show(TabsViewController *newScreen)
{
    TabsViewController *const former = screen;
    details->removeAllDetail();
    screen = newScreen;
    newScreen->setDetailStack(details.get());
    connect(newScreen, &TabsViewController::buttonAdd, this, &MainWindowController::buttonAdd);
    connect(newScreen, &TabsViewController::whyRequested, this, &MainWindowController::explainPlace);
    connect(newScreen, &TabsViewController::commandsChanged, actions, &Actions::updateEnabled);
    newScreen->reloadData();
    mainWindow->rightToolBarMain()->chengedToolBar()->addToolBar(newScreen->toolBarView());
    mainWindow->rightContentView()->layout()->addWidget(newScreen);
    if (former) {
        former->clearController();
        delete former;
    }
    newScreen->show();
    actions->updateEnabled();
}

// New records

void MainWindowController::buttonAdd(ToolBarButton::ActionType type)
{
    if (type == ToolBarButton::NewTask || type == ToolBarButton::NewTaskOnStart)
        showNewTask(screen ? screen->newTaskRequest() : NewTaskRequest());
    else if (type == ToolBarButton::Calendars)
        showCalendars();
}

void MainWindowController::showNewTask(const NewTaskRequest &request)
{
    if (!windowNewTask) {
        windowNewTask = new WindowNewTask(request, mainWindow.get());
        windowNewTask->setAttribute(Qt::WA_DeleteOnClose);
    }
    windowNewTask->showWindow();
}

void MainWindowController::showCalendars()
{
    if (!windowCalendars)
        windowCalendars = new CalendarsAppleWindowController(mainWindow.get());
    windowCalendars->showWindow();
}

void MainWindowController::showSettings()
{
    if (!windowSettings)
        windowSettings = new MVSetiingsCalendarController(mainWindow.get());
    windowSettings->showWindow();
}

bool MainWindowController::closeNewWindows()
{
    return !windowNewTask || windowNewTask->close();
}

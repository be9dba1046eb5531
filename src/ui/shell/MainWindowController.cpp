#include "shell/MainWindowController.h"

#include "calendarviews/SelectedTaskController.h"
#include "filters/ContactGroups.h"
#include "records/DetailStack.h"
#include "records/DraftKeeper.h"
#include "records/RecordRemoval.h"
#include "records/RecordWindow.h"
#include "records/Waiting.h"
#include "shell/Actions.h"
#include "shell/FirstHints.h"
#include "shell/MainMenu.h"
#include "shell/MainWindow.h"
#include "shell/OutlineViewExtended.h"
#include "shell/RightToolBar.h"
#include "shell/Screens.h"
#include "shell/ShortcutTips.h"
#include "shell/SidebarNotice.h"
#include "shell/TaskDrops.h"
#include "shell/UndoNote.h"
#include "shell/WindowMemory.h"
#include "shell/search/SearchField.h"
#include "shell/tasks/CaptureBar.h"
#include "store/AppDelegate.h"
#include "store/state/NotificationNames.h"
#include "widgets/ScreenToolBar.h"

#include <QApplication>
#include <QLayout>
#include <QMenuBar>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

constexpr auto badgeInterval = 60s;
/// What a commit changes is shown in the lists first; the counts over all tasks follow.
constexpr auto badgePatience = 50ms;
constexpr auto firstSelectionDelay = 300ms;
constexpr auto groupFocusDelay = 200ms;

MainWindowController::MainWindowController()
    : mainWindow(std::make_unique<MainWindow>())
    , sidebar(new SidebarModel(this))
    , actions(new Actions(this))
    , details(std::make_unique<DetailStack>(*mainWindow->rightContentView()))
    , badges([this](const TaskBadges &counted) { sidebar->setBadges(counted); })
{
    bindActions();
    bindLists();
    bindCalendar();
    bindHelp();
    MainMenu::fill(*mainWindow->menuBar(), *actions);
    mainWindow->addActions(actions->all());
    windowDidLoad();
}

/// While the parts go one by one, nobody asks them what is possible.
MainWindowController::~MainWindowController()
{
    actions->forgetRules();
}

void MainWindowController::windowDidLoad()
{
    OutlineViewExtended &outline = *mainWindow->outlineViewListItem();
    outline.setModel(sidebar);
    loadContactsGroup();
    connect(&outline, &OutlineViewExtended::selectionDidChange, this,
            &MainWindowController::outlineViewSelectionDidChange);
    connect(&outline, &OutlineViewExtended::heldOver, this, &MainWindowController::heldOver);
    // The drag ends first: what comes of it may ask the user something.
    connect(&outline, &OutlineViewExtended::dropped, this, &MainWindowController::tasksDropped,
            Qt::QueuedConnection);
    outline.setTaskTargets([this](const QModelIndex &index) {
        return index.isValid() && (TaskDrops::areTakenBy(sidebar->itemAt(index)) || opensUnderDrag(index));
    });
    connect(&outline, &OutlineViewExtended::didRemoveRow, this, &MainWindowController::didRemoveRow);
    outline.setLeaveQuestion(
        [this](const QModelIndex &index) { return !isShown(index) && details->hasChanges(); },
        [this] { return details->mayLeave(); });
    connect(details.get(), &DetailStack::textLeft, this, &MainWindowController::openLeftText);
    connect(details.get(), &DetailStack::recordWanted, this, &MainWindowController::showOver);
    connect(details.get(), &DetailStack::newTaskWanted, this, &MainWindowController::showNewTask);
    connect(details.get(), &DetailStack::commandsChanged, actions, &Actions::update);
    mainWindow->setCloseQuestion([this] { return closeNewWindows(); });
    memory = std::make_unique<WindowMemory>(*mainWindow, *sidebar);
    mainWindow->addToSidebarFoot(new FirstHints(*actions, mainWindow.get()));
    mainWindow->addToSidebarFoot(new SharingNotice(mainWindow.get()));
    mainWindow->addToSidebarFoot(new SampleNotice(mainWindow.get()));
    connect(mainWindow->rightToolBarMain()->searchField(), &SearchField::textChanged, this,
            [this] { actions->noteUse(ActionId::Search); });
    auto *note = new UndoNote(*mainWindow->rightContentView());
    connect(note, &UndoNote::undoWanted, this, [this] { stepBack(&ManagedObjectContext::undo); });
    connect(this, &MainWindowController::storeLeft, note, &QWidget::hide);
    badgeRecount.setSingleShot(true);
    connect(&badgeRecount, &QTimer::timeout, this, &MainWindowController::countTasksBadge);
    groupsRecount.setSingleShot(true);
    connect(&groupsRecount, &QTimer::timeout, this, &MainWindowController::groupsMayHaveChanged);
    connect(mainWindow.get(), &MainWindow::firstPainted, &badgeRecount, [this] { badgeRecount.start(0); });
    badgeTimer.emplace(badgeInterval, [this] { countTasksBadge(); });
    connect(mainWindow.get(), &MainWindow::stateChanged, this, &MainWindowController::fullScreenChanged);
    connect(mainWindow.get(), &MainWindow::closed, this, &MainWindowController::stopObserving);
    connect(mainWindow.get(), &MainWindow::didBecomeKey, this, &MainWindowController::observe);
    connect(mainWindow->rightToolBarMain(), &RightToolBar::currentResultChanged, actions, &Actions::update);
    connect(sidebar, &SidebarModel::groupRenamed, this, &MainWindowController::groupRenamed);
    connect(qApp, &QApplication::focusChanged, actions, &Actions::update);
    observe();
    QTimer::singleShot(firstSelectionDelay, this, &MainWindowController::selectFirstRow);
}

void MainWindowController::selectFirstRow()
{
    if (!selectItem)
        showList(SidebarItem::Home);
    // What the program asks at its start comes first.
    if (Waiting::isForUser())
        Waiting::afterwards(Waiting::isForUser, this, [this] { openDrafts(); });
    else
        openDrafts();
}

void MainWindowController::stopObserving()
{
    observations.clear();
}

/// A window that was closed and comes back has missed what was saved in between.
void MainWindowController::observe()
{
    if (!observations.empty())
        return;
    badgeRecount.start(0);
    observeSearch();
    observeCalendar();
    observeGroups();
    NotificationCenter &center = NotificationCenter::defaultCenter();
    observations.push_back(
        center.addObserver(notifications::contextDidSave, [this](const StoreChanges &changes) {
            if (changes.concerns(EntityTask::entityName) && !badgeRecount.isActive())
                badgeRecount.start(badgePatience);
            // What the user does to groups brings the rows along by itself.
            if (changes.author != ChangeAuthor::User && changes.author != ChangeAuthor::Undo &&
                changes.concerns(EntityContactGroup::entityName))
                groupsRecount.start(0);
            actions->update();
        }));
    observations.push_back(center.addObserver(notifications::iCloudChange, [this] {
        groupsRecount.start(0);
        badgeRecount.start(0);
        actions->update();
    }));
}

void MainWindowController::observeCalendar()
{
    const auto create = [this](NotificationName<MarkedSpan> name, TimePeriod period) {
        observations.push_back(NotificationCenter::defaultCenter().addObserver(
            name, [this, period](const MarkedSpan &dates) { newTask(dates, period); }));
    };
    create(notifications::dayCalendarCreateTask, TimePeriod::Timed);
    create(notifications::allDayCalendarCreateTask, TimePeriod::AllDay);
}

void MainWindowController::observeGroups()
{
    observations.push_back(NotificationCenter::defaultCenter().addObserver(
        notifications::saveNewContactGroup,
        [this](const MVContactGroup &values) { saveContactGroup(values); }));
}

/// From here on it hears of everything: what opens it may be about to show a task in it.
void MainWindowController::showWindow()
{
    observe();
    mainWindow->show();
    mainWindow->raise();
    mainWindow->activateWindow();
}

// The tree

bool MainWindowController::showList(SidebarItem item)
{
    const QModelIndex row = sidebar->indexOf(item);
    return row.isValid() ? mainWindow->outlineViewListItem()->selectIndex(row) : showScreenWithoutRow(item);
}

/// No row is selected then: the next press on one leads away.
bool MainWindowController::showScreenWithoutRow(SidebarItem item)
{
    if (screen && selectItem == item)
        return true;
    if (!details->mayLeave())
        return false;
    mainWindow->outlineViewListItem()->selectionModel()->clear();
    selectItem = item;
    selectedGroup.clear();
    searchedRecord.clear();
    show(Screens::make(item));
    return true;
}

/// By command one goes to a list to work in it: its rows take the keys. Walking through the sidebar leaves
/// them there.
void MainWindowController::goToList(SidebarItem item)
{
    if (showList(item) && screen)
        screen->takeKeys();
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

void MainWindowController::saveContactGroup(const MVContactGroup &values)
{
    newGroupEntity = ContactGroups::saveContactGroup(values);
    loadContactsGroup();
    QTimer::singleShot(firstSelectionDelay, this, [this] {
        if (!newGroupEntity)
            return;
        mainWindow->outlineViewListItem()->selectIndex(sidebar->indexOfGroup(*newGroupEntity));
        QTimer::singleShot(groupFocusDelay, this, &MainWindowController::nameNewGroup);
    });
}

void MainWindowController::nameNewGroup()
{
    if (const auto group = std::exchange(newGroupEntity, nullptr))
        mainWindow->outlineViewListItem()->rename(sidebar->indexOfGroup(*group));
}

/// The row may stand elsewhere by its new title. It moves once the field over it has gone.
void MainWindowController::groupRenamed(const std::shared_ptr<EntityContactGroup> &group)
{
    QTimer::singleShot(0, this, [this, group] {
        loadContactsGroup();
        mainWindow->outlineViewListItem()->selectIndex(sidebar->indexOfGroup(*group));
    });
}

void MainWindowController::countTasksBadge()
{
    badges.count();
}

/// The row that was selected, if it is still there.
void MainWindowController::selectAgain(SidebarItem former, const QString &formerGroup)
{
    const auto group = std::dynamic_pointer_cast<EntityContactGroup>(DBWorker::getObjectFromId(formerGroup));
    const QModelIndex place = group ? sidebar->indexOfGroup(*group) : QModelIndex();
    if (place.isValid())
        mainWindow->outlineViewListItem()->selectIndex(place);
    else
        showList(former == SidebarItem::ContactGroup ? SidebarItem::People : former);
}

void MainWindowController::leaveDataBase()
{
    Q_EMIT storeLeft();
    details->removeAllDetail();
    searchWanted = nullptr;
    newGroupEntity = nullptr;
    SelectedTaskController::sharedCenter().removeAllTasks();
    mainWindow->rightToolBarMain()->searchField()->clear();
    const auto windows = mainWindow->findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
    for (const QPointer<QWidget> window : windows) {
        if (window && window->isWindow())
            window->close();
    }
    if (TabsViewController *const former = screen) {
        screen = nullptr;
        letGoOf(former);
    }
    sidebar->forgetGroups();
}

void MainWindowController::changeDataBase()
{
    // Panes and windows for new records are about the other store.
    details->removeAllDetail();
    searchWanted = nullptr;
    SelectedTaskController::sharedCenter().removeAllTasks();
    const SidebarItem former = selectItem.value_or(SidebarItem::Home);
    const QString group = selectedGroup;
    mainWindow->findChild<FirstHints *>()->refresh();
    mainWindow->findChild<SharingNotice *>()->refresh();
    mainWindow->findChild<SampleNotice *>()->refresh();
    // Its screen shows the other store, too.
    selectItem.reset();
    loadContactsGroup();
    selectAgain(former, group);
    countTasksBadge();
    actions->update();
    QTimer::singleShot(0, this, [this] {
        if (mainWindow->isVisible())
            openDrafts();
    });
}

void MainWindowController::openWelcomeWindow()
{
    if (AppDelegate *delegate = AppDelegate::shared(); delegate && mainWindow->close())
        delegate->startStartWindow();
}

void MainWindowController::didRemoveRow(const QModelIndex &index)
{
    const auto group = sidebar->groupAt(index);
    if (!group || !RecordRemoval::isWanted({group}))
        return;
    AppDelegate::shared()->managedObjectContext().deleteObject(group);
    DBWorker::saveStep(u"Delete"_s);
    loadContactsGroup();
    showList(SidebarItem::People);
}

// Screens

/// Whether the screen of a row is the one that stands.
bool MainWindowController::isShown(const QModelIndex &index) const
{
    return screen && selectItem == sidebar->itemAt(index) &&
           selectedGroup == DBWorker::getIdFromObject(sidebar->groupAt(index));
}

/// Where tasks can be planned comes up under what is held; no question can be answered meanwhile.
void MainWindowController::heldOver(const QModelIndex &index)
{
    if (index.isValid() && opensUnderDrag(index) && !isShown(index) && !details->hasChanges())
        showList(sidebar->itemAt(index));
}

bool MainWindowController::opensUnderDrag(const QModelIndex &index) const
{
    const SidebarItem item = sidebar->itemAt(index);
    return item == SidebarItem::Calendar || item == SidebarItem::Home;
}

void MainWindowController::tasksDropped(const QModelIndex &index, const std::vector<TaskPtr> &tasks)
{
    if (!index.isValid() || tasks.empty())
        return;
    OutlineViewExtended &outline = *mainWindow->outlineViewListItem();
    if (opensUnderDrag(index))
        heldOver(index);
    else
        TaskDrops::drop(tasks, sidebar->itemAt(index), outline, outline.visualRect(index));
}

void MainWindowController::outlineViewSelectionDidChange(const QModelIndex &index)
{
    // The rows were made anew around it.
    if (isShown(index) && details->hasChanges())
        return;
    selectItem = sidebar->itemAt(index);
    const auto group = sidebar->groupAt(index);
    selectedGroup = DBWorker::getIdFromObject(group);
    searchedRecord.clear();
    show(group ? Screens::makeOfGroup(group) : Screens::make(*selectItem));
}

void MainWindowController::show(TabsViewController *newScreen)
{
    TabsViewController *const former = screen;
    details->removeAllDetail();
    screen = newScreen;
    newScreen->setDetailStack(details.get());
    connect(newScreen, &TabsViewController::buttonAdd, this, &MainWindowController::buttonAdd);
    newScreen->setAvailableTypes(Screens::addable());
    connect(newScreen, &TabsViewController::whyRequested, this, &MainWindowController::explainPlace);
    connect(newScreen, &TabsViewController::recordWanted, this,
            [this, newScreen](const ObjectPtr &record) { showOver(record, newScreen); });
    connect(newScreen, &TabsViewController::commandsChanged, actions, &Actions::update);
    connect(newScreen, &TabsViewController::menuWanted, this, &MainWindowController::showRecordMenu);
    for (const QWidget *part :
         {static_cast<QWidget *>(newScreen->toolBarView()), static_cast<QWidget *>(newScreen)}) {
        for (const auto *capture : part->findChildren<CaptureBar *>())
            connect(capture, &CaptureBar::captured, actions,
                    [this] { actions->noteUse(ActionId::AddInLine); });
        ShortcutTips::put(*part);
    }
    newScreen->reloadData();
    mainWindow->rightToolBarMain()->chengedToolBar()->addToolBar(newScreen->toolBarView());
    mainWindow->rightContentView()->layout()->addWidget(newScreen);
    if (former)
        letGoOf(former);
    newScreen->show();
    actions->update();
}

void MainWindowController::letGoOf(TabsViewController *former)
{
    former->clearController();
    former->disconnect(this);
    former->setDetailStack(nullptr);
    mainWindow->rightContentView()->layout()->removeWidget(former);
    Waiting::remove(former);
}

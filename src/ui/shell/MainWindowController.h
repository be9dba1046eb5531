#pragma once

#include "filters/MVContactGroup.h"
#include "foundation/Error.h"
#include "foundation/MainLoop.h"
#include "foundation/NotificationCenter.h"
#include "records/ImportTasks.h"
#include "records/TabsViewController.h"
#include "shell/SidebarModel.h"
#include "store/queries/BackgroundBadges.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <memory>
#include <optional>
#include <vector>

class TaskRowCommands;
class WindowMemory;
class Actions;
class DetailStack;
class MainWindow;
class ManagedObjectContext;
class CalendarViewController;
class CalendarsAppleWindowController;
class MVSetiingsCalendarController;
class RecordWindow;
struct RecordDraft;
struct RecordKind;
namespace Drafts {
struct Found;
}

/// The main window at work: the tree with its badges, the screen that is shown, the windows for new records.
class MainWindowController : public QObject
{
    Q_OBJECT
public:
    MainWindowController();
    ~MainWindowController() override;

    MainWindow *window() const { return mainWindow.get(); }
    Actions *commands() const { return actions; }
    TabsViewController *currentScreen() const { return screen; }
    DetailStack *detailStack() const { return details.get(); }

    /// Shows the window, or brings it to the front.
    void showWindow();
    /// Shows the screen of a list, opening what its row lies in. False if what is typed in a pane keeps the
    /// user where they are.
    bool showList(SidebarItem item);
    /// The same, and puts the focus into its rows.
    void goToList(SidebarItem item);
    void showOver(const ObjectPtr &record, QWidget *from);
    /// The command New Task: for the list that is shown, or for today.
    void menuClickNewTask();
    /// Opens the window for a new task; one that is open is brought to the front as it is.
    void showNewTask(const NewTaskRequest &request);
    /// Selects what was stored in a window of its own, if it is on the screen.
    void showNewRecord(const ObjectPtr &record);
    /// The same with what was marked in a calendar.
    void newTask(const MarkedSpan &dates, TimePeriod timePeriod);
    void showCalendars();
    /// The page of the guide about what the user has before them.
    QString helpPage() const;
    void showSettings();
    void calendarsAllowed();
    /// Asks about every window and every pane with something typed. False if one of them is to stay; then all
    /// of them do, but for what was saved.
    bool closeNewWindows();
    /// Opens what earlier runs of the program were left with, and tells the user of it.
    void openDrafts();

    void loadContactsGroup();
    /// Stores a new group and lets the user name it in its row.
    void saveContactGroup(const MVContactGroup &values);
    /// Counts the numbers beside the rows of "Tasks".
    void countTasksBadge();
    /// A result of the search was chosen: goes to the screen that shows it.
    void searchSelectItem(const ObjectPtr &record);
    void showHidden(const ObjectPtr &record);
    /// Says by which rule the task in question is on the shown list, or why it is not.
    void explainPlace();
    void showHistory();
    void copy();
    void showRecordMenu(const QPoint &globalPosition);
    bool canCopyTable() const;
    void copyTable();
    void paste(const ImportTasks::FilesOpener &openPeople);
    bool canTakeLines() const;
    TaskRowCommands *taskCommands() const;
    TaskRowCommands *taskCommandsWithKeys() const;
    bool hasTaskCommands() const;
    void bindPlanning();
    void exportRecords();
    /// The store in use is about to be closed: screens, panes and windows let go of its records.
    void leaveDataBase();
    /// Another store is in use: everything is fetched anew.
    void changeDataBase();
    /// Closes the main window, if nothing typed is to stay, and opens the window that the program offers its
    /// stores in.
    void openWelcomeWindow();

Q_SIGNALS:
    void quitRequested();
    void userGuideRequested();
    /// The records on the screen belong to a store that is about to be left.
    void storeLeft();

private:
    void windowDidLoad();
    void bindActions();
    void bindLists();
    void bindCalendar();
    void doInCalendar(const std::function<void(CalendarViewController &)> &command);
    void goToDate();
    void printScreen();
    void observe();
    void observeSearch();
    void searchSelectSoon(const ObjectPtr &record);
    void searchSelectWanted();
    void observeCalendar();
    void observeGroups();
    void stopObserving();
    void nameNewGroup();
    void groupRenamed(const std::shared_ptr<EntityContactGroup> &group);
    void outlineViewSelectionDidChange(const QModelIndex &index);
    bool isShown(const QModelIndex &index) const;
    void heldOver(const QModelIndex &index);
    bool opensUnderDrag(const QModelIndex &index) const;
    void tasksDropped(const QModelIndex &index, const std::vector<TaskPtr> &tasks);
    /// False if it has to wait, since the user stays with what is typed elsewhere.
    bool openDraft(const Drafts::Found &found);
    RecordWindow *openAsNewTask(const Drafts::Found &found);
    bool openDraft(const QString &file, const RecordDraft &draft);
    RecordWindow *openAsNew(const RecordKind &kind, const QString &file, const RecordDraft &draft);
    void openLeftText(const QString &file);
    void didRemoveRow(const QModelIndex &index);
    void show(TabsViewController *newScreen);
    void letGoOf(TabsViewController *former);
    void bindHelp();
    bool showScreenWithoutRow(SidebarItem item);
    template <typename Make>
    void showNewWindow(const QString &name, Make make);
    void selectFirstRow();
    void buttonAdd(ToolBarButton::ActionType type);
    std::shared_ptr<EntityContactGroup> joinedGroup() const;
    void addInLine();
    bool canRemoveSelected() const;
    void removeSelected();
    TaskPtr taskInQuestion() const;
    ObjectPtr recordInQuestion() const;
    void selectAgain(SidebarItem former, const QString &formerGroup);
    void groupsMayHaveChanged();
    void undo();
    void redo();
    void stepBack(OptionalError (ManagedObjectContext::*step)());
    void nameBirthdays();
    void toggleFullScreen();
    void fullScreenChanged();

    std::unique_ptr<MainWindow> mainWindow;
    std::unique_ptr<WindowMemory> memory;
    SidebarModel *sidebar;
    Actions *actions;
    std::unique_ptr<DetailStack> details;
    QPointer<TabsViewController> screen;
    std::optional<SidebarItem> selectItem;
    /// The URI of the group that is selected, or empty.
    QString selectedGroup;
    /// The URI of the record that a search led here for; empty once another row was selected.
    QString searchedRecord;
    /// The record to go to when nothing waits for the user any more, or null.
    ObjectPtr searchWanted;
    /// The group just made, until its row has taken the focus.
    std::shared_ptr<EntityContactGroup> newGroupEntity;
    /// The open windows for new records, by what they are called among the widgets.
    QHash<QString, QPointer<RecordWindow>> newWindows;
    QPointer<CalendarsAppleWindowController> windowCalendars;
    QPointer<MVSetiingsCalendarController> windowSettings;
    BackgroundBadges badges;
    QTimer badgeRecount;
    QTimer groupsRecount;
    std::optional<RepeatingTimer> badgeTimer;
    std::vector<Observation> observations;
};

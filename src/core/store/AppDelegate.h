#pragma once

#include "foundation/Error.h"
#include "foundation/MainLoop.h"
#include "foundation/NotificationCenter.h"
#include "objectstore/ManagedObjectContext.h"
#include "objectstore/StoreWatcher.h"
#include "records/SearchIndexSweep.h"
#include "store/entities/Entities.h"
#include "store/state/CoreContext.h"
#include "usernotifications/NotificationPresenter.h"

#include <QString>

#include <array>
#include <memory>
#include <vector>

class CommitRoad;
class IcloudManager;
class Reminder;
class Replication;

/// What the root of the program needs of the screens. The shell gives an implementation, tests another.
class ShellPort
{
public:
    virtual ~ShellPort() = default;
    /// Shows the main window, making it once; brings it to the front if it is visible.
    virtual void showMainWindow() = 0;
    virtual void showStartWindow() = 0;
    virtual bool hasMainWindow() const = 0;
    /// Ends an edit in progress; false if it cannot be ended.
    virtual bool commitEditing() = 0;
    /// The number beside the program's icon; an empty text for none.
    virtual void setBadgeLabel(const QString &label) = 0;
    /// Asks about words that are typed and not saved; false if the user stays with them.
    virtual bool mayLeaveStore() { return true; }
    /// No screen holds a record from here on until `changeDataBase`: the store in use is about to be closed.
    virtual void leaveStore() {}
    /// Another store is in use: everything that is shown is fetched anew.
    virtual void changeDataBase() {}
    virtual void closeStartWindow() {}
    /// Shows the user guide.
    virtual void openHelp() {}
    /// Offers what is in files of records. False while there is no window to do so.
    virtual bool openFiles(const QStringList &) { return false; }
};

/// The root of the running program: owner of the two store stacks and of what the screens share.
///
/// The order of calls is that of the program's life: `applicationWillFinishLaunching`,
/// `applicationDidFinishLaunching`, then `applicationDidBecomeActive` and `applicationDidResignActive` in
/// turn, then `applicationShouldTerminate` and `applicationWillTerminate`. Main thread only.
class AppDelegate
{
public:
    explicit AppDelegate(std::unique_ptr<ShellPort> shell = nullptr);
    ~AppDelegate();
    AppDelegate(const AppDelegate &) = delete;
    AppDelegate &operator=(const AppDelegate &) = delete;

    /// The running one, or null.
    static AppDelegate *shared();

    // Life of the program.
    void applicationWillFinishLaunching();
    void applicationDidFinishLaunching();
    /// While a command is under way, which may ask the user something, the activation waits for its end.
    void applicationDidBecomeActive();
    void applicationDidResignActive();
    enum class TerminateReply { Cancel = 0, Now = 1 };
    /// Who wants the program to quit: the user, who can be asked, or the system, which does not wait.
    enum class QuitWish { OfUser, OfSystem };
    /// Saves. If the store cannot be saved, the user is asked once, and may quit all the same.
    TerminateReply applicationShouldTerminate(QuitWish wish = QuitWish::OfUser);
    void applicationWillTerminate();
    bool applicationShouldTerminateAfterLastWindowClosed() const { return false; }
    bool applicationShouldHandleReopen(bool hasVisibleWindows);

    /// Whether the program was in front at the last word of it.
    bool isActive() const { return core->isInFront; }
    /// The link to the desktop's reminders, made at first need.
    Reminder &reminderManager();

    // The store.
    /// The context of the store in use, made at first need. A store that cannot be opened ends the process.
    ManagedObjectContext &managedObjectContext();
    /// Whether the context of the store in use was made already.
    bool hasManagedObjectContext() const;
    /// Forgets the stack of the user's own store, so that the next access opens it anew.
    void resetStack0();
    /// The same for the store in use, which the screens let go of before. What was not saved is given up.
    void closeStore();
    DataConteiner &dataConteiner() { return core->dataConteiner; }
    /// The cloud behind the store, made at first need.
    IcloudManager &icloud();
    /// The program's version, for example "1.0.0".
    static QString version();

    // Windows and refresh.
    void startMainWindow();
    void startStartWindow();
    void badgeUpdata();
    /// The same once for all saves of one turn of the main loop.
    void badgeUpdataSoon();
    void reloadCalendarSetting();
    bool hasMainWindow() const { return shell && shell->hasMainWindow(); }
    bool mayLeaveStore() { return !shell || shell->mayLeaveStore(); }
    void closeStartWindow();
    /// Another store is in use: screens and badge follow.
    void changeDataBase();
    void openHelp();
    /// Offers what is in files of records. False while there is no window to do so.
    bool openFiles(const QStringList &paths) { return shell && shell->openFiles(paths); }
    /// Does what an activation does, when the main loop comes round.
    void activateSoon();

    // What follows a change of the store.
    /// What follows a commit of the store in use, after the calendars: badge and screens.
    void managedObjectContexLocalChangeData(const StoreChanges &changes);
    /// Records came in from another device: what is there twice goes.
    void mergeChanges(const StoreChanges &imported);

    // Rows that exist twice.
    void deleteDuplicateCategoryWith(const CategoryPtr &category);
    void deleteDuplicateCategoryContactWith(const std::shared_ptr<EntityContactCategory> &category);
    void deleteDuplicatePhoneTypeWith(const std::shared_ptr<EntityPhoneType> &type);
    void deleteDuplicateEmailTypeWith(const std::shared_ptr<EntityEmailType> &type);
    void deleteDuplicateAddressTypeWith(const std::shared_ptr<EntityAddressType> &type);
    void deleteDuplicateUrlTypeWith(const std::shared_ptr<EntityURLType> &type);
    void deleteDuplicateTaskTypeWith(const TaskPtr &task);

    // User notifications.
    /// From now on messages appear when they are due; what was missed appears now.
    void startUserNotifications(std::unique_ptr<NotificationPresenter> presenter);
    bool userNotificationCenterShouldPresentNotification() const { return true; }
    /// The exchange with the user's other devices; null without a shared folder.
    Replication *replication() { return exchange.get(); }

    /// A notification of the program was clicked; `taskId` is the URI of its task.
    void userNotificationCenterDidActivateNotification(const QString &taskId);

private:
    void fillContext();
    /// The screens hear of it if the calendars whose tasks are shown are others than at the last look.
    void followVisibleCalendars(QStringList references);
    void activate();
    /// Reads from the settings which store is to be in use. Writes "0" where that is absent.
    void chooseStore();
    size_t selectedStack() const;
    void resetStack(size_t stack);
    std::unique_ptr<ManagedObjectContext> openStore(const QString &fileName);
    [[noreturn]] static void endForStore(const QString &path, const Error &error);
    void registerObservers();
    /// Compares what can be reached with the last activation, says so if the calendars and the records live
    /// in different places, and tells whether a pass may go ahead.
    static bool examineAccess(bool hasCalendar, bool hasCloud, bool isCalendarInCloud);
    void removeDuplicatesOf(const ObjectPtr &object);
    /// Gives children whose row was joined with another one of its title to that.
    void adoptOrphans();
    void startReplication();
    /// The shared folder can come while the program runs, such as one on a stick.
    void awaitSharedFolder();
    void keepInPlaceOfDoubles(const ObjectPtr &survivor);
    /// What lies on calendars that this computer has never had is shown: here nobody can choose them.
    const QStringList &referencesElsewhere();
    void recordsCameIn(const StoreChanges &imported);
    /// Brings the index of substrings up to date, a little at each turn.
    void tendSearchIndexSoon();

    std::unique_ptr<ShellPort> shell;
    /// What all below this knows of the program.
    std::unique_ptr<CoreContext> core;
    std::unique_ptr<CommitRoad> road;
    /// The user's own store and the sample store.
    std::array<std::unique_ptr<ManagedObjectContext>, 2> contexts;
    std::array<std::unique_ptr<StoreWatcher>, 2> watchers;
    std::unique_ptr<Replication> exchange;
    std::unique_ptr<IcloudManager> cloud;
    std::unique_ptr<Reminder> reminders;
    Observation storeSetting;
    std::vector<Observation> observations;
    std::unique_ptr<RepeatingTimer> badgeTimer;
    /// Whether the badge is to be brought up to date when the main loop comes round.
    std::shared_ptr<bool> isBadgeDue = std::make_shared<bool>(false);
    std::shared_ptr<bool> isFolderAwaited = std::make_shared<bool>(false);
    std::shared_ptr<bool> isIndexDue = std::make_shared<bool>(false);
    SearchIndexSweep sweep;
    std::shared_ptr<bool> isActivationDue = std::make_shared<bool>(false);
    /// How tasks name calendars that only other devices have; absent before the first look.
    std::optional<QStringList> calendarsElsewhere;
    /// Sorted; absent before the first look.
    std::optional<QStringList> formerVisibleCalendars;
};

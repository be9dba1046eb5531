#include "store/AppDelegate.h"
#include "store/CommitRoad.h"

#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/CalendarEvent.h"
#include "calendarsync/ChangesOfOthers.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/Reminder.h"
#include "cloud/DeviceHealth.h"
#include "cloud/FileManager.h"
#include "cloud/IcloudManager.h"
#include "cloud/Replication.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/UserDefaults.h"
#include "store/SampleStore.h"
#include "store/entities/Model.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"
#include "store/state/SettingsKeys.h"
#include "ubiquity/UbiquityContainer.h"
#include "usernotifications/UserNotificationCenter.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

AppDelegate *runningDelegate = nullptr;

constexpr size_t ownStack = 0;
constexpr size_t sampleStack = 1;

const QString &storeFileName(size_t stack)
{
    static const QString names[] = {QStringLiteral("Model0.sqlite"), QStringLiteral("Model11.sqlite")};
    return names[stack];
}

} // namespace

AppDelegate::AppDelegate(std::unique_ptr<ShellPort> shellPort)
    : shell(std::move(shellPort))
    , core(std::make_unique<CoreContext>())
    , road(std::make_unique<CommitRoad>())
{
    runningDelegate = this;
    fillContext();
    chooseStore();
    storeSetting = NotificationCenter::defaultCenter().addObserver(
        userDefaultsDidChange, [this](const DefaultsChange &change) {
            if (change.key == settings::valueSwitchDatabase)
                chooseStore();
        });
}

AppDelegate::~AppDelegate()
{
    observations.clear();
    badgeTimer.reset();
    UserNotificationCenter::defaultUserNotificationCenter().close();
    exchange.reset();
    for (auto &watcher : watchers)
        watcher.reset();
    for (auto &context : contexts)
        context.reset();
    core.reset();
    if (runningDelegate == this)
        runningDelegate = nullptr;
}

void AppDelegate::fillContext()
{
    core->store = [this] { return &managedObjectContext(); };
    core->openedStore = [this] { return contexts[selectedStack()].get(); };
    core->hasAccessToCalendars = [] { return CalendarEvent::hasAccesToCalendar(); };
    core->awaitsCalendarItem = [this](const ManagedObject &row, const QString &item) {
        return exchange && exchange->awaitsCalendarItem(row, item);
    };
    core->isCalendarItemElsewhere = [this](const ManagedObject &row, const QString &item) {
        return exchange && exchange->isCalendarItemElsewhere(row, item);
    };
    core->sawCalendarItems = [this](const QSet<QString> &items) {
        if (exchange)
            exchange->sawCalendarItems(items);
    };
    core->isCalendarElsewhere = [this](const QStringList &names) {
        return exchange && exchange->isCalendarElsewhere(names);
    };
    core->answerForCalendars = [this](const QStringList &names) {
        if (exchange)
            exchange->answerForCalendars(names);
    };
    core->visibleCalendars = [this] {
        const QStringList references = CalendarCatalogue::visibleReferences() + referencesElsewhere();
        followVisibleCalendars(references);
        return references;
    };
}

const QStringList &AppDelegate::referencesElsewhere()
{
    if (!exchange || core->isSample) {
        static const QStringList none;
        return none;
    }
    if (!calendarsElsewhere) {
        calendarsElsewhere = exchange->textsIn(EntityTask::entityName, "typeCalendarID");
        calendarsElsewhere->removeIf(CalendarCatalogue::isKnownReference);
    }
    return *calendarsElsewhere;
}

/// The pictures of the own store.
static QStringList picturesIn(ManagedObjectContext &context)
{
    QStringList names;
    for (const std::string_view entity : {EntityContacts::entityName, EntityCompany::entityName}) {
        context.visit(FetchRequest(entity).where(Predicate::format("photoName != nil")), {"photoName"},
                      [&names](const RowReader &row) { names.append(row.text(0)); });
    }
    return names;
}

void AppDelegate::startReplication()
{
    sharedfolder::noteStart();
    const QByteArray folder = IcloudManager::currentiCloudToken();
    UserDefaults &defaults = UserDefaults::standard();
    // Pictures that come while there is none are to reach it later.
    if (folder.isEmpty()) {
        defaults.removeObject(settings::imagesSharedWith);
    } else if (defaults.object(settings::imagesSharedWith).toByteArray() != folder) {
        IcloudManager::shareImages(picturesIn(*contexts[ownStack]));
        defaults.setObject(settings::imagesSharedWith, folder);
    }
    exchange = Replication::start(
        *contexts[ownStack], [this](const StoreChanges &imported) { recordsCameIn(imported); },
        std::make_unique<ChangesOfOthers>(*contexts[ownStack]));
    if (exchange)
        exchange->setResting(core->isSample);
    else if (!sharedfolder::path().isEmpty())
        awaitSharedFolder();
    NotificationCenter::defaultCenter().post(notifications::sharingChanged);
}

void AppDelegate::awaitSharedFolder()
{
    constexpr Seconds interval{10};
    if (std::exchange(*isFolderAwaited, true))
        return;
    MainLoop::performDelayed(interval, [this, awaited = std::weak_ptr(isFolderAwaited)] {
        const auto isAwaited = awaited.lock();
        if (!isAwaited)
            return;
        *isAwaited = false;
        if (exchange || !contexts[ownStack] || sharedfolder::isWaitingForStart())
            return;
        if (UbiquityContainer::path().isEmpty())
            return awaitSharedFolder();
        contexts[ownStack]->afterTransaction([this, awaited] {
            if (!awaited.lock() || exchange || !contexts[ownStack])
                return;
            startReplication();
            if (exchange && EventStoreAccess::hasAccesToAppleCalendar())
                exchange->tellCalendars(CalendarCatalogue::namesForOtherDevices());
            if (exchange)
                exchange->look();
        });
    });
}

void AppDelegate::followVisibleCalendars(QStringList references)
{
    references.sort();
    if (formerVisibleCalendars == references)
        return;
    const bool isFirstLook = !formerVisibleCalendars;
    formerVisibleCalendars = std::move(references);
    if (isFirstLook)
        return;
    MainLoop::performDelayed(Seconds(0), [living = std::weak_ptr(isBadgeDue)] {
        if (living.lock())
            NotificationCenter::defaultCenter().post(notifications::iCloudChange);
    });
}

void AppDelegate::chooseStore()
{
    UserDefaults &defaults = UserDefaults::standard();
    if (!defaults.contains(settings::valueSwitchDatabase)) {
        defaults.setObject(settings::valueSwitchDatabase, QStringLiteral("0"));
        defaults.synchronize();
    }
    core->isSample = defaults.integer(settings::valueSwitchDatabase) == 1;
    if (exchange)
        exchange->setResting(core->isSample);
}

AppDelegate *AppDelegate::shared()
{
    return runningDelegate;
}

QString AppDelegate::version()
{
    return CoreContext::version();
}

// The store.

size_t AppDelegate::selectedStack() const
{
    return core->isSample ? sampleStack : ownStack;
}

ManagedObjectContext &AppDelegate::managedObjectContext()
{
    const size_t stack = selectedStack();
    auto &context = contexts[stack];
    if (!context) {
        context = openStore(storeFileName(stack));
        watchers[stack] = std::make_unique<StoreWatcher>(*context);
        if (stack == ownStack)
            startReplication();
    }
    return *context;
}

bool AppDelegate::hasManagedObjectContext() const
{
    return contexts[selectedStack()] != nullptr;
}

void AppDelegate::resetStack(size_t stack)
{
    if (stack == ownStack)
        exchange.reset();
    watchers[stack].reset();
    contexts[stack].reset();
}

void AppDelegate::resetStack0()
{
    resetStack(ownStack);
}

void AppDelegate::closeStore()
{
    if (shell)
        shell->leaveStore();
    // What was saved last goes out before the store rests.
    if (exchange && selectedStack() == ownStack)
        exchange->finish();
    resetStack(selectedStack());
}

std::unique_ptr<ManagedObjectContext> AppDelegate::openStore(const QString &fileName)
{
    FileManager::createAppFolder();
    const QString path = FileManager::appFolderURL() + u'/' + fileName;
    auto opened = ManagedObjectContext::open(path, organiserModel());
    // A sample that cannot be used must not keep the user from the own records: it is made anew.
    if (!opened && fileName == storeFileName(sampleStack)) {
        Log::line(opened.error().message);
        SampleStore::putInPlace(path);
        opened = ManagedObjectContext::open(path, organiserModel());
    }
    if (!opened)
        endForStore(path, opened.error());
    ManagedObjectContext *context = opened->get();
    context->setMergePolicy(MergePolicy::PropertyObjectTrump);
    context->setCommitEffects(road.get());
    return std::move(*opened);
}

void AppDelegate::endForStore(const QString &path, const Error &error)
{
    Log::line(QStringLiteral("Unresolved error %1, %2").arg(error.message, error.domain));
    Alert::run({localized(QStringLiteral("Your data cannot be opened")),
                localized(QStringLiteral("Your data cannot be opened")),
                error.message + QStringLiteral("\n\n") +
                    localized(QStringLiteral("The file was left as it is: %1")).arg(path),
                {localized(QStringLiteral("Quit"))}});
    std::fflush(nullptr);
    std::_Exit(EXIT_FAILURE);
}

// Windows and refresh.

void AppDelegate::startMainWindow()
{
    if (shell)
        shell->showMainWindow();
}

void AppDelegate::startStartWindow()
{
    if (shell)
        shell->showStartWindow();
}

void AppDelegate::closeStartWindow()
{
    if (shell)
        shell->closeStartWindow();
}

void AppDelegate::changeDataBase()
{
    if (shell)
        shell->changeDataBase();
    badgeUpdataSoon();
    tendSearchIndexSoon();
}

void AppDelegate::openHelp()
{
    if (shell)
        shell->openHelp();
}

void AppDelegate::activateSoon()
{
    MainLoop::performDelayed(Seconds(0), [this, living = std::weak_ptr(isBadgeDue)] {
        if (living.lock())
            applicationDidBecomeActive();
    });
}

bool AppDelegate::applicationShouldHandleReopen(bool hasVisibleWindows)
{
    if (!hasVisibleWindows && shell)
        shell->hasMainWindow() ? startMainWindow() : startStartWindow();
    return true;
}

void AppDelegate::badgeUpdata()
{
    const int count = DBWorker::countStaleTasks();
    if (shell)
        shell->setBadgeLabel(count >= 1 ? QString::number(count) : QString());
}

Reminder &AppDelegate::reminderManager()
{
    if (!reminders)
        reminders = std::make_unique<Reminder>();
    return *reminders;
}

IcloudManager &AppDelegate::icloud()
{
    if (!cloud)
        cloud = std::make_unique<IcloudManager>();
    return *cloud;
}

void AppDelegate::badgeUpdataSoon()
{
    if (std::exchange(*isBadgeDue, true))
        return;
    // The weak reference tells whether this object is still there when the time comes.
    MainLoop::performDelayed(Seconds(0), [this, due = std::weak_ptr(isBadgeDue)] {
        const auto isDue = due.lock();
        if (isDue && std::exchange(*isDue, false))
            badgeUpdata();
    });
}

void AppDelegate::reloadCalendarSetting()
{
    CalendarEvent::syncCalendarToAppWithTask(nullptr);
}

void AppDelegate::userNotificationCenterDidActivateNotification(const QString &taskId)
{
    if (const auto task = std::dynamic_pointer_cast<EntityTask>(DBWorker::getObjectFromId(taskId)))
        NotificationCenter::defaultCenter().post(notifications::clickTableSearch, task);
}

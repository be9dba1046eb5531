#include "calendarsync/AlertSchedule.h"
#include "calendarsync/CalendarEvent.h"
#include "calendarsync/CalendarOutbox.h"
#include "cloud/FileManager.h"
#include "cloud/IcloudManager.h"
#include "cloud/Replication.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Region.h"
#include "foundation/UserDefaults.h"
#include "records/dates/MTDates.h"
#include "records/people/LoosePictures.h"
#include "store/AppDelegate.h"
#include "store/StartWindowController.h"
#include "store/queries/DBWorker.h"
#include "store/state/CloudUserDefaults.h"
#include "store/state/NotificationNames.h"
#include "store/state/SettingsKeys.h"
#include "usernotifications/UserNotificationCenter.h"

// Launch, activation, resignation, quit.

namespace {

constexpr Seconds badgeInterval{60.0};
constexpr Seconds untilFirstPicture{0.2};
/// What is left of the calendars' outbox then is carried out at the next start.
constexpr Seconds patienceAtQuit{3.0};

const QString yes = QStringLiteral("YES");
const QString no = QStringLiteral("NO");

const QString &yesOrNo(bool isYes)
{
    return isYes ? yes : no;
}

} // namespace

void AppDelegate::applicationWillFinishLaunching()
{
    FileManager::keepFromOthers();
    UserDefaults &defaults = UserDefaults::standard();
    defaults.setObject(settings::calendarState, 0);
    defaults.setObject(settings::selectSortCategoryIndex, -1);
    defaults.removeObject(settings::calendarLastDate);
    FileManager::createAppFolder();
    startMainWindow();
    StartWindowController::startValueUserDefaults();
    Transaction cleaning(managedObjectContext(), ChangeAuthor::Program);
    for (const CategoryPtr &category : DBWorker::allCategories()) {
        if (category->context() && !category->isDeleted())
            deleteDuplicateCategoryWith(category);
    }
    DBWorker::tellOfFailure(cleaning.commit());
}

void AppDelegate::applicationDidFinishLaunching()
{
    CloudUserDefaults::registerForNotifications();
    FileManager::createFolder(QStringLiteral("Orrelin Images"));
    // A count over very many tasks does not stand between the user and the first picture.
    MainLoop::performDelayed(untilFirstPicture, [this, living = std::weak_ptr(isBadgeDue)] {
        if (living.lock()) {
            badgeUpdata();
            LoosePictures::sweep();
        }
    });
    badgeTimer = std::make_unique<RepeatingTimer>(badgeInterval, [this] {
        badgeUpdata();
        AlertSchedule::followService();
    });
    registerObservers();
    tendSearchIndexSoon();
    UserNotificationCenter::defaultUserNotificationCenter().open(FileManager::appFolderURL() +
                                                                 QStringLiteral("/Notifications.json"));
}

namespace {

/// In the sample nothing is caught up on, so that nothing can count as rung.
void noteRung()
{
    if (!DBWorker::isSample())
        AlertSchedule::noteRung();
}

/// What stands for several messages that nobody saw.
UserNotification digestOf(const std::vector<UserNotification> &missed)
{
    constexpr qsizetype namesShown = 5;
    QStringList names;
    for (const UserNotification &one : missed)
        names.append(one.subtitle);
    names.removeDuplicates();
    if (names.size() > namesShown)
        names = names.first(namesShown) << QStringLiteral("…");
    UserNotification digest = missed.back();
    digest.subtitle = localizedCount(QStringLiteral("%1 alerts came while Morvane was closed: %2"),
                                     static_cast<qint64>(missed.size()))
                          .arg(names.join(QStringLiteral(", ")));
    digest.hasActionButton = false;
    return digest;
}

} // namespace

void AppDelegate::startUserNotifications(std::unique_ptr<NotificationPresenter> presenter)
{
    UserNotificationCenter &center = UserNotificationCenter::defaultUserNotificationCenter();
    center.setActivationHandler([this](const UserNotification &clicked) {
        startMainWindow();
        userNotificationCenterDidActivateNotification(clicked.userInfo.value(QStringLiteral("TASK_ID_KEY")));
    });
    center.setDeliveryCondition(AlertSchedule::isMeant);
    center.setDeliveryHandler([] { noteRung(); });
    if (!DBWorker::isSample())
        AlertSchedule::catchUp();
    center.setPresenter(std::move(presenter));
    center.deliverMissed(digestOf);
    noteRung();
}

void AppDelegate::registerObservers()
{
    NotificationCenter &center = NotificationCenter::defaultCenter();
    observations.push_back(
        center.addObserver(notifications::preferences, [this] { reloadCalendarSetting(); }));
}

void AppDelegate::applicationDidResignActive()
{
    core->isInFront = false;
    UserDefaults &defaults = UserDefaults::standard();
    CalendarEvent::resetMessageForBanChangeRepeat();
    defaults.setObject(settings::isAccesToCalendarForDidEnterBackground,
                       yesOrNo(CalendarEvent::hasAccesToCalendar()));
    badgeUpdata();
    DBWorker::saveOrTell(DBWorker::Occasion::Program);
    noteRung();
}

bool AppDelegate::examineAccess(bool hasCalendar, bool hasCloud, bool isCalendarInCloud)
{
    UserDefaults &defaults = UserDefaults::standard();
    const QString former = defaults.string(settings::sumStatuses);
    const QString sum = QString::number(int(hasCalendar) + int(hasCloud) + int(isCalendarInCloud));
    defaults.setObject(settings::sumStatuses, sum);
    if (!hasCalendar || !CalendarCatalogue::lacksCloudFolder(hasCloud))
        return true;
    const QString message =
        QStringLiteral("To sync app with Calendar an access to Morvane should be activated in iCloud!");
    if (!former.isEmpty() && former != sum) {
        Log::line(message);
        Alert::run({{}, {}, localized(message), {localized(QStringLiteral("Continue"))}});
    }
    return false;
}

void AppDelegate::applicationDidBecomeActive()
{
    core->isInFront = true;
    // The user may have travelled, or changed the system's settings, while another program was in front.
    const quint64 formerRegion = Region::generation();
    Region::reload();
    if (Region::generation() != formerRegion)
        MTDates::reset();
    if (std::exchange(*isActivationDue, true))
        return;
    managedObjectContext().afterTransaction([this, due = std::weak_ptr(isActivationDue)] {
        if (const auto isDue = due.lock(); isDue && std::exchange(*isDue, false) && core->isInFront)
            activate();
    });
}

void AppDelegate::activate()
{
    UserDefaults &defaults = UserDefaults::standard();
    managedObjectContext().lookForChangesFromElsewhere();
    if (exchange)
        exchange->look();
    calendarsElsewhere.reset();
    {
        Transaction upgrade(managedObjectContext(), ChangeAuthor::Program);
        CalendarEvent::handleBeforeAllCalendarsSync();
        DBWorker::tellOfFailure(upgrade.commit());
    }
    const bool hasCloud = IcloudManager::connectIcloud();
    Log::line(QStringLiteral("SYNC:%1 - ACCESS APP TO iCLOUD").arg(yesOrNo(hasCloud)));
    const bool hasCalendar = CalendarEvent::hasAccesToAppleCalendar();
    if (hasCalendar) {
        CalendarEvent::refreshSourcesIfNecessary();
        CalendarOutbox::carryOut(managedObjectContext());
        CalendarEvent::handleChangedCalendars();
    }
    if (exchange && !core->isSample)
        exchange->tellCalendars(CalendarCatalogue::namesForOtherDevices());
    Log::line(QStringLiteral("SYNC:%1 - ACCESS APP TO iCALENDAR").arg(yesOrNo(hasCalendar)));
    const bool isCalendarInCloud = CalendarEvent::getSourceType() == CalendarCatalogue::cloudSourceType;
    Log::line(QStringLiteral("SYNC:%1 - iCLOUD CALENDARS").arg(yesOrNo(isCalendarInCloud)));
    bool goesAhead = examineAccess(hasCalendar, hasCloud, isCalendarInCloud) && hasCalendar;
    // The first activation after access was granted runs without the go-ahead.
    const bool hadNoAccess = defaults.string(settings::isAccessToCalendar) == no;
    defaults.setObject(settings::isAccessToCalendar, yesOrNo(goesAhead));
    goesAhead = goesAhead && !hadNoAccess;
    defaults.setObject(settings::isiCloudCalendars, yesOrNo(isCalendarInCloud));
    CalendarEvent::tryCreateMessageForBanEditingRepeatTask();
    if (!goesAhead && version() == QStringLiteral("3.0"))
        CalendarEvent::syncAppToCalendarWithNeedCreateNewEvents(true);
    CalendarOutbox::writeChangesMadeOffline(managedObjectContext());
    CalendarEvent::syncCalendarToAppWithTask(nullptr);
    CalendarOutbox::writeTasksMadeOffline();
    if (!DBWorker::isSample())
        AlertSchedule::rebuild();
    DBWorker::saveOrTell(DBWorker::Occasion::Program);
    // The look tells the screens if they are others now.
    core->visibleCalendars();
    defaults.setObject(settings::applicationDidBecomeActive, yes);
    defaults.synchronize();
}

AppDelegate::TerminateReply AppDelegate::applicationShouldTerminate(QuitWish wish)
{
    if (!hasManagedObjectContext())
        return TerminateReply::Now;
    if (shell && !shell->commitEditing()) {
        Log::line(QStringLiteral("%1:%2 unable to commit editing to terminate")
                      .arg(QStringLiteral("AppDelegate"), QStringLiteral("applicationShouldTerminate:")));
        return TerminateReply::Cancel;
    }
    if (!managedObjectContext().hasChanges())
        return TerminateReply::Now;
    const OptionalError error = DBWorker::saveContext();
    if (!error || wish == QuitWish::OfSystem)
        return TerminateReply::Now;
    const int answer =
        Alert::run({{},
                    localized(QStringLiteral("Could not save changes while quitting. Quit anyway?")),
                    error->message + QStringLiteral("\n\n") +
                        localized(QStringLiteral("Quitting now will lose any changes you have made since the "
                                                 "last successful save")),
                    {localized(QStringLiteral("Quit anyway")), localized(QStringLiteral("Cancel"))}});
    return answer == Alert::firstButton ? TerminateReply::Now : TerminateReply::Cancel;
}

void AppDelegate::applicationWillTerminate()
{
    // What fails now the user has heard of, or nobody can be told.
    DBWorker::saveContext().ignore();
    CalendarOutbox::carryOutFor(managedObjectContext(), patienceAtQuit);
    if (exchange)
        exchange->finish();
    noteRung();
    UserDefaults::standard().synchronize();
}

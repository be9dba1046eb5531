#include "calendarsync/EventStoreAccess.h"

#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/CalendarOutbox.h"
#include "calendarsync/CalendarStoreState.h"
#include "cloud/IcloudManager.h"
#include "eventkit/SharedEventStore.h"
#include "foundation/Log.h"
#include "foundation/UserDefaults.h"
#include "store/state/SettingsKeys.h"

// Whether the calendar store may be used, and what of it is kept while the program runs.

calendarstore::State &calendarstore::state()
{
    static State shared;
    return shared;
}

namespace {

using calendarstore::state;

QString yesOrNo(bool isYes)
{
    return isYes ? QStringLiteral("YES") : QStringLiteral("NO");
}

} // namespace

EKEventStore &EventStoreAccess::eventStore()
{
    auto &shared = state();
    if (!shared.store) {
        shared.store = std::make_unique<EKEventStore>();
        CalendarOutbox::prepare(*shared.store);
        shared.calendars.reset();
        shared.storeChanged = NotificationCenter::defaultCenter().addObserver(
            EKEventStoreChangedNotification, [] { state().calendars.reset(); });
    }
    return *shared.store;
}

void EventStoreAccess::resetEventStore()
{
    state() = {};
}

bool EventStoreAccess::hasAccesToCalendar()
{
    return UserDefaults::standard().string(settings::isAccessToCalendar) != QStringLiteral("NO") &&
           hasAccesToAppleCalendar();
}

bool EventStoreAccess::hasAccesToAppleCalendar()
{
    // Where there are no calendars there is nothing to ask for.
    if (!sharedCalendarBackend())
        return false;
    const EKAuthorizationStatus status = EKEventStore::authorizationStatusForEntityType(EKEntityType::Event);
    if (status == EKAuthorizationStatus::Authorized)
        return true;
    if (status != EKAuthorizationStatus::NotDetermined)
        return false;
    UserDefaults &defaults = UserDefaults::standard();
    defaults.setObject(settings::statusRequestAccessToCalendar, QStringLiteral("start"));
    const auto isGrantedNow = std::make_shared<bool>(false);
    eventStore().requestAccessToEntityType(EKEntityType::Event, [isGrantedNow](bool isGranted) {
        UserDefaults &kept = UserDefaults::standard();
        kept.setObject(settings::statusRequestAccessToCalendar, QStringLiteral("end"));
        if (!isGranted)
            return;
        *isGrantedNow = true;
        state().store.reset();
        kept.setObject(settings::nowAccessToAppleCalendar, yesOrNo(true));
    });
    return *isGrantedNow;
}

void EventStoreAccess::refreshSourcesIfNecessary()
{
    eventStore().refreshSourcesIfNecessary();
    state().calendars.reset();
}

// Whether repeating tasks may be edited.

void EventStoreAccess::tryCreateMessageForBanEditingRepeatTask()
{
    const bool hasCalendar = hasAccesToAppleCalendar();
    const bool hasCloud = IcloudManager::connectIcloud();
    const bool isCalendarInCloud = CalendarCatalogue::getSourceType() == CalendarCatalogue::cloudSourceType;
    Log::line(QStringLiteral("SYNC:%1 - ACCESS APP TO iCLOUD").arg(yesOrNo(hasCloud)));
    Log::line(QStringLiteral("SYNC:%1 - ACCESS APP TO iCALENDAR").arg(yesOrNo(hasCalendar)));
    Log::line(QStringLiteral("SYNC:%1 - iCLOUD CALENDARS").arg(yesOrNo(isCalendarInCloud)));
    QString &message = state().banMessage;
    message.clear();
    if (!hasCalendar)
        message = QStringLiteral(
            "Editing Repeated tasks is not allowed because the app has no access to Apple Calendar!");
    else if (CalendarCatalogue::lacksCloudFolder(hasCloud))
        message =
            QStringLiteral("Editing Repeated tasks is not allowed because the app has no access to iCloud!");
}

void EventStoreAccess::resetMessageForBanChangeRepeat()
{
    state().banMessage.clear();
}

bool EventStoreAccess::isAccessChangeRepeatTaskWithMessage(bool)
{
    return state().banMessage.isEmpty();
}

QString EventStoreAccess::messageForBanChangeRepeat()
{
    return state().banMessage;
}

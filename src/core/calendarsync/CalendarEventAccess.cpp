#include "calendarsync/CalendarEvent.h"
#include "calendarsync/CalendarOutbox.h"
#include "calendarsync/CalendarStoreState.h"
#include "cloud/IcloudManager.h"
#include "eventkit/SharedEventStore.h"
#include "foundation/Log.h"
#include "foundation/UserDefaults.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"
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

EKEventStore &CalendarEvent::eventStore()
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

void CalendarEvent::resetEventStore()
{
    state() = {};
}

bool CalendarEvent::hasAccesToCalendar()
{
    return UserDefaults::standard().string(settings::isAccessToCalendar) != QStringLiteral("NO") &&
           hasAccesToAppleCalendar();
}

bool CalendarEvent::hasAccesToAppleCalendar()
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

void CalendarEvent::refreshSourcesIfNecessary()
{
    eventStore().refreshSourcesIfNecessary();
    state().calendars.reset();
}

// Whether repeating tasks may be edited.

void CalendarEvent::tryCreateMessageForBanEditingRepeatTask()
{
    const bool hasCalendar = hasAccesToAppleCalendar();
    const bool hasCloud = IcloudManager::connectIcloud();
    const bool isCalendarInCloud = getSourceType() == 2;
    Log::line(QStringLiteral("SYNC:%1 - ACCESS APP TO iCLOUD").arg(yesOrNo(hasCloud)));
    Log::line(QStringLiteral("SYNC:%1 - ACCESS APP TO iCALENDAR").arg(yesOrNo(hasCalendar)));
    Log::line(QStringLiteral("SYNC:%1 - iCLOUD CALENDARS").arg(yesOrNo(isCalendarInCloud)));
    QString &message = state().banMessage;
    message.clear();
    if (!hasCalendar)
        message = QStringLiteral(
            "Editing Repeated tasks is not allowed because the app has no access to Apple Calendar!");
    else if (hasCloud && !isCalendarInCloud)
        message = QStringLiteral(
            "Editing Repeated tasks is not allowed because Apple Calendar is not activated in iCloud!");
    else if (!hasCloud && isCalendarInCloud)
        message =
            QStringLiteral("Editing Repeated tasks is not allowed because the app has no access to iCloud!");
}

void CalendarEvent::resetMessageForBanChangeRepeat()
{
    state().banMessage.clear();
}

bool CalendarEvent::isAccessChangeRepeatTaskWithMessage(bool)
{
    return state().banMessage.isEmpty();
}

QString CalendarEvent::messageForBanChangeRepeat()
{
    return state().banMessage;
}

// The changes that this program made itself.

void CalendarEvent::setEventToDictionaryChangedEventsOfNow(const EKEvent &event)
{
    if (!event.eventIdentifier.isEmpty() && event.lastModifiedDate)
        state().changedEvents.insert_or_assign(event.eventIdentifier, *event.lastModifiedDate);
}

bool CalendarEvent::isEventInDictionaryChangedEventsOfNow(const EKEvent &event)
{
    return state().changedEvents.contains(event.eventIdentifier);
}

void CalendarEvent::removeEventFromDictionaryChangedEventsOfNow(const EKEvent &event)
{
    constexpr qint64 secondsKept = 6;
    const auto entry = state().changedEvents.find(event.eventIdentifier);
    if (entry != state().changedEvents.end() &&
        MTDates::secondsSinceDate(MVDate::date(), entry->second) >= secondsKept)
        state().changedEvents.erase(entry);
}

void CalendarEvent::removeAllObectsFromDictionaryChangedEventsOfNow()
{
    state().changedEvents.clear();
}

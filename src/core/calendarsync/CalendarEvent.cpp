#include "calendarsync/CalendarEvent.h"

#include "cloud/IcloudManager.h"
#include "foundation/Log.h"
#include "foundation/UserDefaults.h"
#include "store/state/SettingsKeys.h"
#include "workspace/PlatformConfiguration.h"

// The calendars of a desktop that offers none: access is never given, and tasks live in the store alone.

namespace {

/// Why repeating tasks may not be edited; empty while they may.
QString banMessage;

QString yesOrNo(bool isYes)
{
    return isYes ? QStringLiteral("YES") : QStringLiteral("NO");
}

} // namespace

bool CalendarEvent::hasAccesToCalendar()
{
    return UserDefaults::standard().string(settings::isAccessToCalendar) != QStringLiteral("NO") &&
           hasAccesToAppleCalendar();
}

bool CalendarEvent::hasAccesToAppleCalendar()
{
    return false;
}

std::vector<EKCalendar> CalendarEvent::getAllAccessCalendars()
{
    return {};
}

QString CalendarEvent::identifierOfCalendar(const EKCalendar &calendar)
{
    if (calendar.allowsContentModifications)
        return calendar.title;
    return QStringLiteral("%1[<±>]%2").arg(calendar.title, calendar.calendarIdentifier);
}

int CalendarEvent::getSourceType()
{
    return 0;
}

void CalendarEvent::refreshSourcesIfNecessary() {}

void CalendarEvent::handleChangedCalendars() {}

void CalendarEvent::tryCreateMessageForBanEditingRepeatTask()
{
    const bool hasCalendar = hasAccesToAppleCalendar();
    const bool hasCloud = IcloudManager::connectIcloud();
    const bool isCalendarInCloud = getSourceType() == 2;
    Log::line(QStringLiteral("SYNC:%1 - ACCESS APP TO iCLOUD").arg(yesOrNo(hasCloud)));
    Log::line(QStringLiteral("SYNC:%1 - ACCESS APP TO iCALENDAR").arg(yesOrNo(hasCalendar)));
    Log::line(QStringLiteral("SYNC:%1 - iCLOUD CALENDARS").arg(yesOrNo(isCalendarInCloud)));
    banMessage.clear();
    if (!hasCalendar)
        banMessage = QStringLiteral(
            "Editing Repeated tasks is not allowed because the app has no access to Apple Calendar!");
    else if (hasCloud && !isCalendarInCloud)
        banMessage = QStringLiteral(
            "Editing Repeated tasks is not allowed because Apple Calendar is not activated in iCloud!");
    else if (!hasCloud && isCalendarInCloud)
        banMessage =
            QStringLiteral("Editing Repeated tasks is not allowed because the app has no access to iCloud!");
}

void CalendarEvent::resetMessageForBanChangeRepeat()
{
    banMessage.clear();
}

bool CalendarEvent::isAccessChangeRepeatTaskWithMessage(bool)
{
    return banMessage.isEmpty();
}

void CalendarEvent::handleBeforeAllCalendarsSync() {}

void CalendarEvent::syncCalendarToAppWithTask(const TaskPtr &) {}

void CalendarEvent::syncAppToCalendarWithNeedCreateNewEvents(bool) {}

#include "calendarsync/AccessChoice.h"

#include "calendarsync/AlertSchedule.h"
#include "calendarsync/EventStoreAccess.h"
#include "eventkit/EKEventStore.h"
#include "foundation/NotificationCenter.h"
#include "store/state/NotificationNames.h"
#include "workspace/PlatformConfiguration.h"

namespace {

QString nameOf(accesschoice::Kind kind)
{
    switch (kind) {
    case accesschoice::Kind::Calendars:
        return QStringLiteral("events");
    case accesschoice::Kind::Reminders:
        return QStringLiteral("reminders");
    case accesschoice::Kind::Contacts:
        break;
    }
    return QStringLiteral("contacts");
}

constexpr auto granted = static_cast<int>(EKAuthorizationStatus::Authorized);
constexpr auto denied = static_cast<int>(EKAuthorizationStatus::Denied);

} // namespace

bool accesschoice::isAllowed(Kind kind)
{
    return PlatformConfiguration().authorization(nameOf(kind)) == granted;
}

void accesschoice::choose(Kind kind, bool isAllowed)
{
    PlatformConfiguration::setAuthorization(nameOf(kind), isAllowed ? granted : denied);
    if (kind != Kind::Calendars)
        return;
    EventStoreAccess::resetEventStore();
    if (!isAllowed)
        AlertSchedule::rebuild();
    NotificationCenter::defaultCenter().post(notifications::iCloudChange);
}

#include "store/entities/EntityTask.h"

#include "foundation/Clock.h"
#include "foundation/Region.h"
#include "store/entities/Entities.h"
#include "usernotifications/UserNotificationCenter.h"

MANAGED_TO_ONE_DEFINITION(EntityTask, EntityCategory, category, setCategory)
MANAGED_TO_ONE_DEFINITION(EntityTask, EntityCompany, company, setCompany)
MANAGED_TO_ONE_DEFINITION(EntityTask, EntityLocation, location, setLocation)
MANAGED_TO_ONE_DEFINITION(EntityTask, EntityProject, project, setProject)
MANAGED_TO_MANY_DEFINITION(EntityTask, EntityTags, tags, setTags)

ContactPtr EntityTask::delegateToUser() const
{
    return std::static_pointer_cast<EntityContacts>(related(column<"delegateToUser">()));
}

void EntityTask::setDelegateToUser(const ContactPtr &contact)
{
    if (contact == delegateToUser())
        return;
    setRelated(column<"delegateToUser">(), contact);
    setDelegatedSince(contact ? OptionalDate(Clock::now()) : std::nullopt);
    setLastAsked(std::nullopt);
}

const QString &EntityTask::taskIdKey()
{
    static const QString key = QStringLiteral("TASK_ID_KEY");
    return key;
}

std::vector<UserNotification> EntityTask::newLocalNotification() const
{
    return localNotifications(Clock::now());
}

std::vector<UserNotification> EntityTask::localNotifications(Date from) const
{
    std::vector<UserNotification> notifications;
    for (const OptionalDate &moment : {alert(), secondAlert()}) {
        if (moment && *moment >= from)
            notifications.push_back({QStringLiteral("Morvane"),
                                     title(),
                                     *moment,
                                     Region::zoneIdentifier(),
                                     true,
                                     {{taskIdKey(), uri()}}});
    }
    return notifications;
}

void EntityTask::removeNotifications() const
{
    UserNotificationCenter &center = UserNotificationCenter::defaultUserNotificationCenter();
    if (center.scheduledNotifications().empty())
        return;
    center.removeScheduledNotifications(
        [id = uri()](const UserNotification &one) { return one.userInfo.value(taskIdKey()) == id; });
}

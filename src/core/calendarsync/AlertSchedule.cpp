#include "calendarsync/AlertSchedule.h"

#include "calendarsync/EventStoreAccess.h"
#include "foundation/Clock.h"
#include "foundation/UserDefaults.h"
#include "records/copies/TaskColumns.h"
#include "store/entities/Entities.h"
#include "store/entities/MainContext.h"
#include "store/state/SettingsKeys.h"
#include "usernotifications/UserNotificationCenter.h"

#include <QSet>

#include <algorithm>

namespace AlertSchedule {

namespace {

UserNotificationCenter &center()
{
    return UserNotificationCenter::defaultUserNotificationCenter();
}

class Schedule
{
public:
    std::vector<UserNotification> of(const EntityTask &task)
    {
        return isSilent(task) ? std::vector<UserNotification>() : task.newLocalNotification();
    }
    bool isSilent(const EntityTask &task)
    {
        return task.status() == TaskStatus::Done || (!task.alert() && !task.secondAlert()) ||
               (!task.calendarID().isEmpty() && calendarsRing());
    }

private:
    bool calendarsRing()
    {
        if (!known)
            known = EventStoreAccess::eventStore().ringsAlarms();
        return *known;
    }
    std::optional<bool> known;
};

} // namespace

void follow(const StoreChanges &changes)
{
    if (changes.isUnknown)
        return rebuild();
    std::vector<ObjectPtr> changed = changes.inserted;
    changed.insert(changed.end(), changes.deleted.begin(), changes.deleted.end());
    for (const StoreChanges::Update &update : changes.updated) {
        if (update.object->entity().name() == EntityTask::entityName &&
            taskcolumns::concern(update, taskcolumns::FollowedBy::Alerts))
            changed.push_back(update.object);
    }
    QSet<QString> uris;
    std::vector<UserNotification> wanted;
    Schedule schedule;
    for (const ObjectPtr &object : changed) {
        const auto task = std::dynamic_pointer_cast<EntityTask>(object);
        if (!task)
            continue;
        uris.insert(mainContext().uriOf(*task));
        if (task->context())
            std::ranges::move(schedule.of(*task), std::back_inserter(wanted));
    }
    const auto &present = center().scheduledNotifications();
    const auto isMeant = [&uris](const UserNotification &one) {
        return uris.contains(one.userInfo.value(EntityTask::taskIdKey()));
    };
    if (wanted.empty() && std::ranges::none_of(present, isMeant))
        return;
    std::vector<UserNotification> all;
    std::ranges::copy_if(present, std::back_inserter(all), std::not_fn(isMeant));
    std::ranges::move(wanted, std::back_inserter(all));
    center().setScheduledNotifications(std::move(all));
}

void rebuild()
{
    std::vector<UserNotification> all;
    Schedule schedule;
    const auto request = EntityTask::fetchRequest().where(
        Predicate::format("(alert != nil or secondAlert != nil) and status != %d", TaskStatus::Done));
    for (const TaskPtr &task : mainContext().fetch<EntityTask>(request)) {
        if (task)
            std::ranges::move(schedule.of(*task), std::back_inserter(all));
    }
    center().setScheduledNotifications(std::move(all));
}

void catchUp()
{
    const OptionalDate from = UserDefaults::standard().date(settings::alertsRungUntil);
    const Date now = Clock::now();
    if (!from || *from >= now)
        return;
    const auto isScheduled = [](const UserNotification &missed) {
        return std::ranges::any_of(center().scheduledNotifications(), [&missed](const UserNotification &one) {
            return one.userInfo == missed.userInfo && one.deliveryDate == missed.deliveryDate;
        });
    };
    std::vector<UserNotification> unseen;
    Schedule schedule;
    const auto request = EntityTask::fetchRequest().where(
        Predicate::format("((alert > %@ and alert < %@) or (secondAlert > %@ and secondAlert < %@)) and "
                          "status != %d",
                          *from, now, *from, now, TaskStatus::Done));
    for (const TaskPtr &task : mainContext().fetch<EntityTask>(request)) {
        if (!task || schedule.isSilent(*task))
            continue;
        for (const UserNotification &missed : task->localNotifications(*from)) {
            if (missed.deliveryDate < now && !isScheduled(missed))
                unseen.push_back(missed);
        }
    }
    center().addScheduledNotifications(unseen);
}

void noteRung()
{
    UserDefaults::standard().setObject(settings::alertsRungUntil, QVariant::fromValue(Clock::now()));
}

} // namespace AlertSchedule

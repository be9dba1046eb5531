#include "calendarsync/AlertSchedule.h"

#include "calendarsync/EventStoreAccess.h"
#include "foundation/Clock.h"
#include "foundation/UserDefaults.h"
#include "records/copies/TaskColumns.h"
#include "store/entities/Entities.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/state/SettingsKeys.h"
#include "usernotifications/UserNotificationCenter.h"

#include <QSet>

#include <algorithm>
#include <array>

namespace AlertSchedule {

namespace {

UserNotificationCenter &center()
{
    return UserNotificationCenter::defaultUserNotificationCenter();
}

/// Whether the calendars rang when they were last asked; absent if no task made that a question.
std::optional<bool> &lastKnown()
{
    static std::optional<bool> known;
    return known;
}

/// From when on the alerts of rows count that others have written: they may be seen a little late.
Date beginningOf(const StoreChanges &changes)
{
    const Date now = Clock::now();
    const OptionalDate rung = changes.author == ChangeAuthor::Replication
                                  ? UserDefaults::standard().date(settings::alertsRungUntil)
                                  : std::nullopt;
    return rung && *rung < now ? *rung : now;
}

class Schedule
{
public:
    std::vector<UserNotification> of(const EntityTask &task) { return of(task, Clock::now()); }
    std::vector<UserNotification> of(const EntityTask &task, Date from)
    {
        return isSilent(task) ? std::vector<UserNotification>() : task.localNotifications(from);
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
            known = lastKnown() = EventStoreAccess::eventStore().ringsAlarms();
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
    const Date from = beginningOf(changes);
    for (const ObjectPtr &object : changed) {
        const auto task = std::dynamic_pointer_cast<EntityTask>(object);
        if (!task)
            continue;
        uris.insert(mainContext().uriOf(*task));
        if (task->context())
            std::ranges::move(schedule.of(*task, from), std::back_inserter(wanted));
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

bool isMeant(const UserNotification &notification)
{
    if (DBWorker::isSample())
        return true;
    const auto task = std::dynamic_pointer_cast<EntityTask>(
        mainContext().objectForUri(notification.userInfo.value(EntityTask::taskIdKey())));
    if (!task || Schedule().isSilent(*task))
        return false;
    // The list is kept as text.
    constexpr Seconds roughly{1};
    return std::ranges::any_of(std::array{task->alert(), task->secondAlert()},
                               [&notification, roughly](const OptionalDate &moment) {
                                   return moment && *moment - notification.deliveryDate < roughly &&
                                          notification.deliveryDate - *moment < roughly;
                               });
}

void followService()
{
    if (lastKnown() && EventStoreAccess::eventStore().ringsAlarms() != *lastKnown())
        rebuild();
}

} // namespace AlertSchedule

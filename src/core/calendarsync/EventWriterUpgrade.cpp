#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/CalendarStoreState.h"
#include "calendarsync/EventReader.h"
#include "calendarsync/EventStoreAccess.h"
#include "calendarsync/EventWriter.h"
#include "foundation/Log.h"
#include "foundation/UserDefaults.h"
#include "store/queries/DBWorker.h"
#include "store/state/CoreContext.h"
#include "store/state/SettingsKeys.h"

// What the upgrade from one version needs: tasks written to the calendars one way, and a preparation once.

namespace {

const QString upgradedVersion = QStringLiteral("3.0");

void pushNew(EntityTask &task)
{
    if (const auto event = EventReader::getEventByTitleOfTask(task))
        task.setCalendarID(event->calendarItemExternalIdentifier);
    else
        EventWriter::initEventCalendarFromTask(task, Span::ThisTask, std::nullopt, false);
}

void pushLinked(EntityTask &task, bool needCreateNewEvents)
{
    const auto found = EventReader::eventsWithExternalIdentifier(task.calendarID());
    if (!found)
        return Log::line(found.error().message);
    const std::vector<EKEvent> &events = found.value();
    if (events.empty() && !needCreateNewEvents)
        return;
    EKEvent event =
        events.empty() ? EKEvent::eventWithEventStore(EventStoreAccess::eventStore()) : events.front();
    EventWriter::syncTask(task, event);
    if (const auto error = EventStoreAccess::eventStore().saveEvent(event, EKSpan::FutureEvents, false))
        return Log::line(QStringLiteral("Error -saveCalendar: %1").arg(error->message));
    task.setCalendarID(event.calendarItemExternalIdentifier);
}

void push(const TaskPtr &task, bool needCreateNewEvents)
{
    const bool isLinked = !task->calendarID().isEmpty();
    if (task->status() == TaskStatus::Done || !task->dueDate()) {
        if (isLinked)
            EventWriter::removeEventCalendarFromTask(task, Span::ThisTask, false);
    } else if (isLinked) {
        pushLinked(*task, needCreateNewEvents);
    } else if (needCreateNewEvents) {
        pushNew(*task);
    }
}

void setNilTasksForDefaultGeneral()
{
    constexpr int indexOfGeneral = 5;
    const CategoryPtr custom = EntityCategory::getCustom();
    if (!custom || custom->index() != indexOfGeneral)
        return;
    for (const TaskPtr &task : custom->task())
        task->setCategory(nullptr);
    custom->setDefaultCategory(false);
}

void setOurCalendarForAllTasksWithID()
{
    if (!DBWorker::getAllTasksWithTypeCalendarIDIsNil().isEmpty())
        return;
    const std::optional<EKCalendar> own = CalendarCatalogue::getCalendar();
    if (!own)
        return;
    const EKColor color = CalendarCatalogue::getColorOfCalendar(*own);
    for (const TaskPtr &task : DBWorker::getAllTasksWithOnlyCalendarIDs()) {
        if (!task)
            continue;
        task->setCalendarTitle(own->title);
        task->setTypeCalendarID(CalendarCatalogue::identifierOfCalendar(*own));
        task->setColorCalendarR(static_cast<float>(color.red));
        task->setColorCalendarG(static_cast<float>(color.green));
        task->setColorCalendarB(static_cast<float>(color.blue));
        task->setColorCalendarA(static_cast<float>(color.alpha));
        task->setAllowsContentModifications(own->allowsContentModifications);
    }
}

} // namespace

void EventWriter::syncAppToCalendarWithNeedCreateNewEvents(bool needCreateNewEvents)
{
    if (DBWorker::isSample() || !EventStoreAccess::hasAccesToCalendar() ||
        !CalendarCatalogue::isOurCalendar())
        return;
    std::vector<TaskPtr> rows;
    for (const TaskPtr &task : DBWorker::getAllTasksWithCalendarTitle(calendarstore::ownTitle)) {
        if (task)
            rows.push_back(task);
    }
    for (const std::vector<TaskPtr> &group : DBWorker::getTasksGroupedCalendarIDfromTasks(rows)) {
        if (group.size() == 1)
            push(group.front(), needCreateNewEvents);
    }
    if (const auto error = EventStoreAccess::eventStore().commit())
        Log::line(QStringLiteral("Error -saveCalendar: %1").arg(error->message));
}

void EventWriter::handleBeforeAllCalendarsSync()
{
    UserDefaults &defaults = UserDefaults::standard();
    const QString yes = QStringLiteral("YES");
    if (DBWorker::isSample() || defaults.string(settings::handleBeforeAllCalendarsSync) == yes)
        return;
    if (CoreContext::version() != upgradedVersion || !EventStoreAccess::hasAccesToAppleCalendar())
        return;
    setNilTasksForDefaultGeneral();
    setOurCalendarForAllTasksWithID();
    defaults.setObject(settings::handleBeforeAllCalendarsSync, yes);
}

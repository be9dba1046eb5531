#include "calendarsync/PassRows.h"

#include "calendarsync/CalendarCatalogue.h"
#include "calendarsync/EventReader.h"
#include "store/entities/MainContext.h"
#include "store/queries/EventDates.h"
#include "store/queries/EventMatching.h"

#include <algorithm>

namespace {

bool isLive(const TaskPtr &row)
{
    return row && row->context() && !row->isDeleted();
}

void addOnce(std::vector<TaskPtr> &rows, const TaskPtr &row)
{
    if (std::find(rows.begin(), rows.end(), row) == rows.end())
        rows.push_back(row);
}

/// Those that were on the very calendar of an event: several calendars can have the same item.
std::vector<TaskPtr> ofCalendarItem(std::vector<TaskPtr> rows, const EKEvent &event)
{
    const QString reference =
        event.calendar ? CalendarCatalogue::identifierOfCalendar(*event.calendar) : QString();
    std::erase_if(rows, [&](const TaskPtr &row) {
        return row->calendarID() != event.calendarItemExternalIdentifier ||
               row->typeCalendarID() != reference;
    });
    return rows;
}

/// The first by start, absent starts before all others.
template <typename Condition>
TaskPtr firstByStart(const std::vector<TaskPtr> &rows, Condition condition)
{
    TaskPtr first;
    for (const TaskPtr &row : rows) {
        if (isLive(row) && condition(*row) && (!first || row->startDate() < first->startDate()))
            first = row;
    }
    return first;
}

} // namespace

PassRows::PassRows(const std::vector<EKEvent> &events)
{
    visibleCalendars = CalendarCatalogue::visibleReferences();
    for (const TaskPtr &row : mainContext().fetch<EntityTask>(
             EntityTask::fetchRequest().where(Predicate::format("calendarID != nil")))) {
        if (!row)
            continue;
        note(row);
        if (isVisible(*row))
            linkedRows.push_back(row);
    }
    std::vector<QString> titles;
    for (const EKEvent &event : events)
        titles.push_back(event.title);
    std::sort(titles.begin(), titles.end());
    titles.erase(std::unique(titles.begin(), titles.end()), titles.end());
    for (const TaskPtr &row :
         mainContext().fetch<EntityTask>(EntityTask::fetchRequest().where(Predicate::format(
             "title in %@ and calendarID == nil and status != %d", titles, TaskStatus::Done)))) {
        if (row)
            note(row);
    }
}

bool PassRows::isVisible(const EntityTask &row) const
{
    const QString reference = row.typeCalendarID();
    return reference.isEmpty() || visibleCalendars.contains(reference);
}

void PassRows::note(const TaskPtr &row)
{
    addOnce(byTitle[row->title()], row);
    if (!row->calendarID().isEmpty())
        addOnce(byItem[row->calendarID()], row);
}

TaskPtr PassRows::rowOf(const EKEvent &event) const
{
    Rows candidates;
    const auto take = [this, &candidates](const auto &index, const QString &key, const auto &hasStill) {
        const auto found = index.find(key);
        if (found == index.end())
            return;
        for (const TaskPtr &row : found->second) {
            if (isFree(row) && row->status() != TaskStatus::Done && hasStill(*row))
                candidates.push_back(row);
        }
    };
    const QString &identifier = event.calendarItemExternalIdentifier;
    take(byTitle, event.title, [&](const EntityTask &row) { return row.title() == event.title; });
    take(byItem, identifier,
         [&](const EntityTask &row) { return row.calendarID() == identifier && row.title() != event.title; });
    std::stable_sort(candidates.begin(), candidates.end(), [](const TaskPtr &one, const TaskPtr &other) {
        return one->dueDate() < other->dueDate();
    });
    // Who has exactly what the event gives comes first, so that none goes away empty-handed.
    const Rows own = ofCalendarItem(candidates, event);
    const auto exact = std::find_if(
        own.begin(), own.end(), [&event](const TaskPtr &row) { return eventdates::areShownBy(*row, event); });
    if (exact != own.end())
        return *exact;
    const TaskPtr near = matching::rowOf(event, own);
    return near ? near : matching::rowOf(event, candidates);
}

TaskPtr PassRows::firstOf(const EKEvent &event) const
{
    const auto found = byItem.find(event.calendarItemExternalIdentifier);
    if (found == byItem.end())
        return nullptr;
    const auto isMeant = [&](const EntityTask &row) {
        return row.calendarID() == event.calendarItemExternalIdentifier && isVisible(row);
    };
    Rows free = found->second;
    std::erase_if(free, [this](const TaskPtr &row) { return !isFree(row); });
    const TaskPtr own = firstByStart(ofCalendarItem(free, event), isMeant);
    return own ? own : firstByStart(free, isMeant);
}

TaskPtr PassRows::strayOf(const EKEvent &event) const
{
    const auto found = byItem.find(event.calendarItemExternalIdentifier);
    const DateInterval seen = EventReader::window();
    for (const TaskPtr &row : found == byItem.end() ? Rows() : ofCalendarItem(found->second, event)) {
        if (!isFree(row) || row->status() == TaskStatus::Done)
            continue;
        const OptionalDate date = row->startDate() ? row->startDate() : row->dueDate();
        if (!date || (*date >= seen.start && *date <= seen.end))
            continue;
        const auto events = EventReader::eventsOfRow(row->calendarID(), row->typeCalendarID(), {date});
        const auto isShown = [&row](const EKEvent &one) { return eventdates::areShownBy(*row, one); };
        if (events && std::ranges::none_of(events.value(), isShown))
            return row;
    }
    return nullptr;
}

void PassRows::claim(const TaskPtr &row)
{
    claimed.insert(row.get());
}

void PassRows::claimItems(const QSet<QString> &identifiers)
{
    for (const QString &identifier : identifiers) {
        const auto found = byItem.find(identifier);
        for (const TaskPtr &row : found == byItem.end() ? Rows() : found->second)
            claim(row);
    }
}

bool PassRows::isFree(const TaskPtr &row) const
{
    return isLive(row) && !claimed.contains(row.get());
}

std::vector<TaskPtr> PassRows::unclaimed() const
{
    Rows left;
    std::copy_if(linkedRows.begin(), linkedRows.end(), std::back_inserter(left),
                 [this](const TaskPtr &row) { return isFree(row); });
    return left;
}

TaskPtr PassRows::firstOfTitle(const QString &title) const
{
    const auto found = byTitle.find(title);
    if (found == byTitle.end())
        return nullptr;
    return firstByStart(found->second, [&](const EntityTask &row) {
        return row.title() == title && row.status() != TaskStatus::Done && isVisible(row);
    });
}

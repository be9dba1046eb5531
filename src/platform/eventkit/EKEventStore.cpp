#include "eventkit/EKEventStore.h"

#include "eventkit/CalendarContents.h"
#include "eventkit/CalendarError.h"
#include "eventkit/EmptyBackend.h"
#include "eventkit/EventReading.h"
#include "eventkit/SharedEventStore.h"
#include "foundation/Clock.h"
#include "foundation/Log.h"

#include <algorithm>

/// More of one series no screen shows in a useful way, and of all together no pass takes in a bearable time.
static constexpr std::size_t mostOfASeries = 1500;
/// Of a series that has more.
static constexpr std::size_t mostOfACutSeries = 500;
static constexpr std::size_t mostOfAllSeries = 100'000;

EKEventStore::EKEventStore()
    : EKEventStore(sharedCalendarBackend())
{}

EKEventStore::EKEventStore(std::shared_ptr<CalendarBackend> backend)
    : contents(
          std::make_unique<CalendarContents>(backend ? std::move(backend) : std::make_shared<EmptyBackend>()))
{}

EKEventStore::~EKEventStore() = default;

Result<std::vector<EKSource>> EKEventStore::sources() const
{
    return contents->backend().sources();
}

Result<std::vector<EKCalendar>> EKEventStore::allCalendars() const
{
    return contents->calendars();
}

Result<std::vector<EKCalendar>> EKEventStore::calendarsForEntityType(EKEntityType entityType) const
{
    auto calendars = allCalendars();
    if (calendars)
        std::erase_if(calendars.value(), [entityType](const EKCalendar &calendar) {
            return !calendar.allowedEntityTypes.contains(entityType);
        });
    return calendars;
}

Result<std::optional<EKCalendar>> EKEventStore::calendarWithIdentifier(const QString &identifier) const
{
    const auto calendars = allCalendars();
    if (!calendars)
        return calendars.error();
    for (const EKCalendar &calendar : calendars.value())
        if (calendar.calendarIdentifier == identifier)
            return std::optional(calendar);
    return std::optional<EKCalendar>();
}

std::optional<EKCalendar> EKEventStore::defaultCalendar(EKEntityType entityType) const
{
    const auto identifier = contents->backend().defaultCalendar(entityType);
    if (!identifier)
        return std::nullopt;
    const auto calendar = calendarWithIdentifier(*identifier);
    return calendar ? calendar.value() : std::nullopt;
}

std::optional<EKCalendar> EKEventStore::defaultCalendarForNewEvents() const
{
    return defaultCalendar(EKEntityType::Event);
}

std::optional<EKCalendar> EKEventStore::defaultCalendarForNewReminders() const
{
    return defaultCalendar(EKEntityType::Reminder);
}

OptionalError EKEventStore::saveCalendar(EKCalendar &calendar, bool commit)
{
    if (calendar.title.trimmed().isEmpty())
        return CalendarError::make(CalendarError::Invalid,
                                   QStringLiteral("Cannot save a calendar without a title."));
    if (calendar.calendarIdentifier.isEmpty()) {
        const auto made = contents->backend().createCalendar(calendar);
        if (!made)
            return made.error();
        contents->forgetHeld();
        calendar = made.value();
        return commit ? this->commit() : std::nullopt;
    }
    contents->beginGroup();
    contents->stageCalendar(calendar);
    return commit ? this->commit() : std::nullopt;
}

OptionalError EKEventStore::removeCalendar(const EKCalendar &calendar, bool commit)
{
    contents->beginGroup();
    contents->stageCalendarRemoval(calendar.calendarIdentifier);
    return commit ? this->commit() : std::nullopt;
}

EKEventPredicate
EKEventStore::predicateForEventsWithStartDate(Date startDate, Date endDate,
                                              const std::optional<std::vector<EKCalendar>> &calendars) const
{
    EKEventPredicate predicate{startDate, endDate, {}};
    const auto all = calendars ? *calendars : calendarsForEntityType(EKEntityType::Event);
    if (all)
        for (const EKCalendar &calendar : all.value())
            predicate.calendarIdentifiers.push_back(calendar.calendarIdentifier);
    return predicate;
}

std::vector<ItemOccurrence> EKEventStore::bearableOccurrences(const CalendarItem &item,
                                                              const EKCalendar &calendar,
                                                              const DateWindow &window,
                                                              std::size_t &budget) const
{
    if (!item.isSeries())
        return ItemExpansion::occurrences(item, window);
    const std::size_t most = std::min(mostOfASeries, budget);
    auto occurrences = ItemExpansion::occurrences(item, window, most);
    if (!occurrences.isWhole) {
        cutSeries[calendar.calendarIdentifier].insert({item.uid(), window.to - window.from});
        if (toldCalendars.insert(calendar.calendarIdentifier).second)
            Log::line(QStringLiteral("The calendar \"%1\" holds too much: \"%2\" repeats too often to be "
                                     "shown whole.")
                          .arg(calendar.title, item.uid()));
        // Those to come matter most.
        const Date now = Clock::now();
        if (!occurrences.found.empty() && now > window.from && now < window.to)
            occurrences =
                ItemExpansion::occurrences(item, {now, window.to}, std::min(most, mostOfACutSeries));
        else if (occurrences.found.size() > mostOfACutSeries)
            occurrences.found.resize(mostOfACutSeries);
    }
    budget -= std::min(budget, occurrences.found.size());
    return std::move(occurrences.found);
}

Result<std::vector<EKEvent>> EKEventStore::eventsMatchingPredicate(const EKEventPredicate &predicate) const
{
    const auto calendars = allCalendars();
    if (!calendars)
        return calendars.error();
    std::vector<EKEvent> events;
    const DateWindow window{predicate.startDate, predicate.endDate};
    std::size_t budget = mostOfAllSeries;
    for (const EKCalendar &calendar : calendars.value()) {
        const auto &wanted = predicate.calendarIdentifiers;
        if (std::find(wanted.begin(), wanted.end(), calendar.calendarIdentifier) == wanted.end())
            continue;
        const auto items = contents->items(calendar.calendarIdentifier);
        if (!items)
            return items.error();
        std::erase_if(cutSeries[calendar.calendarIdentifier],
                      [&](const auto &entry) { return entry.second <= window.to - window.from; });
        const auto firstOfCalendar = static_cast<std::ptrdiff_t>(events.size());
        for (const StoredItem &stored : items.value())
            if (stored.item->entityType() == EKEntityType::Event)
                for (const ItemOccurrence &occurrence :
                     bearableOccurrences(*stored.item, calendar, window, budget))
                    events.push_back(eventOf(stored.item, occurrence, calendar));
        std::stable_sort(
            events.begin() + firstOfCalendar, events.end(),
            [](const EKEvent &one, const EKEvent &other) { return one.startDate < other.startDate; });
    }
    return events;
}

/// The first occurrence of a series and those that were edited.
static std::vector<ItemOccurrence> representativesOf(const CalendarItem &item)
{
    std::vector<ItemOccurrence> found;
    const auto first = ItemExpansion::first(item);
    if (first)
        found.push_back(*first);
    for (const ItemPart &part : item.detached())
        if (!first || part.key != first->key)
            found.push_back(*ItemExpansion::occurrence(item, part.key));
    return found;
}

Result<std::vector<EKEvent>> EKEventStore::calendarItemsWithExternalIdentifier(
    const QString &externalIdentifier, const std::optional<std::vector<EKCalendar>> &amongCalendars) const
{
    const auto calendars = amongCalendars ? *amongCalendars : calendarsForEntityType(EKEntityType::Event);
    if (!calendars)
        return calendars.error();
    std::vector<EKEvent> events;
    for (const EKCalendar &calendar : calendars.value()) {
        const auto stored = contents->item(calendar.calendarIdentifier, externalIdentifier);
        if (!stored)
            return stored.error();
        if (!stored.value() || stored.value()->item->entityType() != EKEntityType::Event)
            continue;
        for (const ItemOccurrence &occurrence : representativesOf(*stored.value()->item))
            events.push_back(eventOf(stored.value()->item, occurrence, calendar));
    }
    return events;
}

Result<std::optional<EKEvent>> EKEventStore::eventWithIdentifier(const QString &identifier) const
{
    const auto events =
        calendarItemsWithExternalIdentifier(identifier.section(QStringLiteral("/RID="), 0, 0));
    if (!events)
        return events.error();
    const bool isOfDetached = identifier.contains(QStringLiteral("/RID="));
    for (const EKEvent &event : events.value())
        if (!isOfDetached || event.eventIdentifier == identifier)
            return std::optional(event);
    return std::optional<EKEvent>();
}

bool EKEventStore::mayBeUnusable(const QString &externalIdentifier) const
{
    const bool isCut = std::ranges::any_of(
        cutSeries, [&](const auto &calendar) { return calendar.second.contains(externalIdentifier); });
    return isCut || contents->mayBeUnusable(externalIdentifier);
}

bool EKEventStore::isOnlyOccurrence(const EKEvent &event)
{
    return event.origin && !ItemExpansion::hasOther(*event.origin->item, event.origin->occurrence.key);
}

OptionalDate EKEventStore::lastStartOf(const EKEvent &event)
{
    return event.origin ? ItemExpansion::lastStart(*event.origin->item) : std::nullopt;
}

std::shared_ptr<void> EKEventStore::holdContents() const
{
    CalendarContents *held = contents.get();
    held->hold();
    return {held, [](CalendarContents *released) { released->release(); }};
}

std::shared_ptr<void> EKEventStore::together()
{
    CalendarContents *joined = contents.get();
    joined->join();
    return {joined, [](CalendarContents *parted) { parted->part(); }};
}

void EKEventStore::deferWrites()
{
    contents->deferObjects();
}

std::vector<ItemChange> EKEventStore::stagedChanges() const
{
    return contents->stagedChanges();
}

bool EKEventStore::hasStagedChanges() const
{
    return contents->hasStagedChanges();
}

void EKEventStore::forgetStaged()
{
    contents->forgetStaged();
}

void EKEventStore::setPromises(std::vector<ItemChange> changes)
{
    contents->setPromises(std::move(changes));
}

OptionalError EKEventStore::carryOut(const std::vector<ItemChange> &together)
{
    return contents->carryOut(together);
}

OptionalError EKEventStore::commit()
{
    return contents->commit();
}

void EKEventStore::reset()
{
    contents->reset();
}

bool EKEventStore::ringsAlarms() const
{
    return contents->backend().ringsAlarms();
}

void EKEventStore::refreshSourcesIfNecessary()
{
    contents->forgetHeld();
    contents->backend().refresh();
}

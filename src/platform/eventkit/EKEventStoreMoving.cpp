#include "eventkit/CalendarContents.h"
#include "eventkit/CalendarError.h"
#include "eventkit/EKEventStore.h"

#include <algorithm>

OptionalError EKEventStore::moveContents(const EKCalendar &from, const EKCalendar &to, bool commit)
{
    const auto objects = contents->backend().objects(from.calendarIdentifier);
    const auto items = contents->items(from.calendarIdentifier);
    const auto present = contents->items(to.calendarIdentifier);
    if (!objects || !items || !present)
        return !objects ? objects.error() : !items ? items.error() : present.error();
    const auto isThere = [&present](const StoredItem &one) {
        return std::any_of(present.value().begin(), present.value().end(),
                           [&one](const StoredItem &other) { return one.item->uid() == other.item->uid(); });
    };
    if (objects.value().size() != items.value().size() ||
        std::any_of(items.value().begin(), items.value().end(), isThere))
        return CalendarError::make(
            CalendarError::Invalid,
            QStringLiteral("The calendar \"%1\" holds what \"%2\" cannot take.").arg(from.title, to.title));
    contents->beginGroup();
    for (const StoredItem &one : items.value()) {
        if (auto error = contents->stagePut(to.calendarIdentifier, {}, one.item->text()))
            return error;
        contents->stageRemoval(from.calendarIdentifier, one);
    }
    return commit ? contents->commitGroup() : std::nullopt;
}

#include "calendarsync/RowFate.h"

namespace rowfate {

std::optional<Decision> decideAtOnce(const Facts &facts)
{
    if (facts.isDone)
        return Decision{Fate::Stays, "it is done"};
    if (!facts.hasCalendarItem)
        return Decision{Fate::Stays, "it is on no calendar"};
    if (!facts.dueDate)
        return Decision{Fate::Stays, "it has no due date"};
    const bool isSeen = facts.date && *facts.date >= facts.window.start && *facts.date <= facts.window.end;
    if (!isSeen && facts.allowsChanges)
        return Decision{Fate::Stays, "it lies outside of the window"};
    if (facts.isOutsideOfPass)
        return Decision{Fate::Stays, "the pass is for another task"};
    return std::nullopt;
}

Decision decide(const Facts &facts)
{
    if (const auto decision = decideAtOnce(facts))
        return *decision;
    if (!facts.isCalendarChosen)
        return {Fate::Stays, "its calendar is hidden"};
    if (facts.awaitsItem)
        return {Fate::Stays, "its event has not come here yet"};
    if (!facts.wasCreatedOffCalendar && !facts.hasItemOutsideOfWindow)
        return {Fate::Goes, "its event has gone"};
    if (!facts.allowsChanges)
        return {Fate::Goes, "it cannot be changed and its event is out of sight"};
    return {Fate::Stays, "it was made here, or its event is out of sight"};
}

} // namespace rowfate

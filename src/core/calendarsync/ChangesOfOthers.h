#pragma once

#include "objectstore/ManagedObjectContext.h"
#include "replication/Replica.h"

#include <map>

/// What a device without a calendar does to rows that have their events in it, brings this one, which has the
/// calendar, to the events: it posts it with the commit that takes it in, like what was changed here while
/// the calendars could not be reached. A device that has the calendar writes its events itself, and of one
/// that has not told of its calendars that is supposed; but two devices can each have a calendar of that
/// name, and what a device has never seen of it the other one writes. What comes in a snapshot is not looked
/// at.
class ChangesOfOthers final : public replication::Onlooker
{
public:
    explicit ChangesOfOthers(ManagedObjectContext &store)
        : context(store)
    {}

    void comes(const replication::Arrival &arrival) override;
    void ended() override;
    /// For the commit that is under way, if it takes such changes in: of these, what has come into the rows.
    static void post(ManagedObjectContext &context, const StoreChanges &changes);

private:
    void note(const replication::Arrival &arrival, const replication::RowDelta &delta,
              sqlite::Statement &row);
    bool isHere(const QString &calendar);

    ManagedObjectContext &context;
    /// As far as it was asked for in this transaction.
    std::map<QString, bool> known;
};

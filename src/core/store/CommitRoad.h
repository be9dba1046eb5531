#pragma once

#include "objectstore/ManagedObjectContext.h"

/// What every commit of a store of the organiser brings with it, whoever makes it, in this order: the search
/// index and the outbox of the calendars inside of the commit; after it the calendars, the alerts, the badge
/// and the screens.
class CommitRoad final : public CommitEffects
{
public:
    bool hasWork() const override;
    void willCommit(ManagedObjectContext &context, const StoreChanges &changes) override;
    void didCommit(ManagedObjectContext &context, const StoreChanges &changes) override;
};

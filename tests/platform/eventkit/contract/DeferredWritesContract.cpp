#include "EventStoreContract.h"

namespace {

/// A store whose writes somebody keeps, and what that one does.
struct Keeper
{
    explicit Keeper(EKEventStore &keptStore)
        : store(keptStore)
    {
        store.deferWrites();
    }
    void take()
    {
        for (ItemChange change : store.stagedChanges()) {
            change.sequence = ++last;
            kept.push_back(change);
        }
        store.forgetStaged();
        store.setPromises(kept);
    }
    void carryOutAll()
    {
        for (const ItemChange &change : std::exchange(kept, {}))
            EXPECT_FALSE(store.carryOut({change}));
        store.setPromises({});
    }

    EKEventStore &store;
    std::vector<ItemChange> kept;
    qint64 last = 0;
};

QStringList titles(EKEventStore &store)
{
    QStringList found;
    const auto window = store.predicateForEventsWithStartDate(localDate(2024, 3, 1), localDate(2024, 4, 1));
    const auto events = store.eventsMatchingPredicate(window);
    for (const EKEvent &event : events.value())
        found.append(event.title);
    found.sort();
    return found;
}

} // namespace

TEST_P(EventStoreContract, DeferredWritesAreSeenAtOnceAndWrittenLater)
{
    EKEvent old = newEvent(u"Old"_qs);
    save(old);
    Keeper keeper(store);
    EKEvent fresh = newEvent(u"New"_qs);
    save(fresh);
    EXPECT_FALSE(fresh.calendarItemExternalIdentifier.isEmpty());
    old.title = u"Renamed"_qs;
    save(old);
    EKEvent brief = newEvent(u"Brief"_qs);
    save(brief);
    expectNoError(store.removeEvent(brief, EKSpan::ThisEvent, true));
    EXPECT_EQ(titles(store), QStringList({u"New"_qs, u"Renamed"_qs}));
    EXPECT_EQ(list(3).size(), 1) << "nobody else sees anything of it";
    EXPECT_EQ(store.stagedChanges().size(), 2u) << "what was made and removed again is nothing";
    keeper.take();
    EXPECT_FALSE(store.hasStagedChanges());
    EXPECT_EQ(titles(store), QStringList({u"New"_qs, u"Renamed"_qs})) << "it is promised";
    keeper.carryOutAll();
    EXPECT_EQ(titles(store), QStringList({u"New"_qs, u"Renamed"_qs}));
    EXPECT_EQ(list(3).size(), 2);
}

TEST_P(EventStoreContract, PromisesAreKeptOnceAndBesideWhatOthersWrite)
{
    EKEvent meeting = newEvent(u"Meeting"_qs);
    save(meeting);
    Keeper keeper(store);
    meeting.title = u"Renamed"_qs;
    save(meeting);
    keeper.take();
    // Meanwhile another program moves it by a day.
    EKEventStore elsewhere(place->open());
    EKEvent theirs = eventAt(localDate(2024, 3, 4, 9));
    theirs.startDate = localDate(2024, 3, 5, 9);
    theirs.endDate = localDate(2024, 3, 5, 10);
    expectNoError(elsewhere.saveEvent(theirs, EKSpan::ThisEvent, true));
    const auto kept = keeper.kept;
    keeper.carryOutAll();
    EXPECT_EQ(list(3), QStringList(u"Renamed 03-05 09:00-10:00"_qs));
    const QByteArray text = textOf(meeting.calendarItemExternalIdentifier);
    for (const ItemChange &change : kept)
        EXPECT_FALSE(store.carryOut({change}));
    EXPECT_EQ(textOf(meeting.calendarItemExternalIdentifier), text) << "a second time nothing is written";
}

TEST_P(EventStoreContract, WhatWasCarriedOutCanBeTakenBack)
{
    EKEvent series = addSeries(u"Series"_qs, u"FREQ=DAILY;COUNT=4"_qs);
    const QStringList before = list(3);
    Keeper keeper(store);
    EKEvent third = eventAt(localDate(2024, 3, 6, 9));
    third.title = u"Other"_qs;
    save(third, EKSpan::FutureEvents);
    keeper.take();
    std::vector<ItemChange> done = keeper.kept;
    ASSERT_EQ(done.size(), 2u) << "the series is divided";
    keeper.carryOutAll();
    EXPECT_EQ(list(3).filter(u"Other"_qs).size(), 2);
    for (auto change = done.rbegin(); change != done.rend(); ++change) {
        std::swap(change->before, change->after);
        change->yields = true;
        expectNoError(store.carryOut({*change}));
    }
    EXPECT_EQ(list(3), before);
    EXPECT_EQ(objectCount(), 1);
}

#include "calendarsync/RowFate.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace {

using rowfate::Facts;
using rowfate::Fate;

/// A row inside the window, whose event has gone.
Facts orphan()
{
    Facts facts;
    facts.date = facts.dueDate = localDate(2026, 11, 24, 9);
    facts.window = {localDate(2026, 10, 21), localDate(2027, 2, 22)};
    return facts;
}

TEST(RowFate, EachFactAloneKeepsARowWhoseEventIsGone)
{
    EXPECT_EQ(rowfate::decide(orphan()).fate, Fate::Goes);
    const std::vector<void (*)(Facts &)> keepers = {
        [](Facts &facts) { facts.isDone = true; },
        [](Facts &facts) { facts.hasCalendarItem = false; },
        [](Facts &facts) { facts.dueDate.reset(); },
        [](Facts &facts) { facts.date = localDate(2027, 6, 1); },
        [](Facts &facts) { facts.isOutsideOfPass = true; },
        [](Facts &facts) { facts.isCalendarChosen = false; },
        [](Facts &facts) { facts.wasCreatedOffCalendar = true; },
        [](Facts &facts) { facts.hasItemOutsideOfWindow = true; },
    };
    for (size_t place = 0; place < keepers.size(); ++place) {
        Facts facts = orphan();
        keepers[place](facts);
        EXPECT_EQ(rowfate::decide(facts).fate, Fate::Stays) << place;
    }
}

TEST(RowFate, WhatMayNotBeChangedGoesWithItsEvent)
{
    const std::vector<void (*)(Facts &)> reasons = {
        [](Facts &facts) { facts.date = localDate(2027, 6, 1); },
        [](Facts &facts) { facts.wasCreatedOffCalendar = true; },
        [](Facts &facts) { facts.hasItemOutsideOfWindow = true; },
    };
    for (const auto &reason : reasons) {
        Facts facts = orphan();
        facts.allowsChanges = false;
        reason(facts);
        EXPECT_EQ(rowfate::decide(facts).fate, Fate::Goes);
        facts.isCalendarChosen = false;
        EXPECT_EQ(rowfate::decide(facts).fate, Fate::Stays);
    }
}

} // namespace

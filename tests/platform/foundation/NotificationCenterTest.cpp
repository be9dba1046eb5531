#include "foundation/NotificationCenter.h"

#include <gmock/gmock.h>

static constexpr NotificationName<> changed{u"Changed"};
static constexpr NotificationName<> other{u"Other"};

class NotificationCenterTest : public testing::Test
{
protected:
    auto note(char letter)
    {
        return [this, letter] { calls += letter; };
    }

    NotificationCenter center;
    std::string calls;
};

TEST_F(NotificationCenterTest, ObserversOfANameAreCalledInOrderUntilTheirEnd)
{
    auto first = center.addObserver(changed, note('a'));
    auto second = center.addObserver(changed, note('b'));
    auto elsewhere = center.addObserver(other, note('x'));
    center.post(changed);
    first.cancel();
    center.post(changed);
    second = center.addObserver(changed, note('c'));
    center.post(changed);
    const auto moved = std::move(second);
    center.post(changed);
    EXPECT_EQ(calls, "abbcc");
}

TEST_F(NotificationCenterTest, TheSubjectArrivesAndOnlyWithItsType)
{
    static constexpr NotificationName<std::string> named{u"Named"};
    static constexpr NotificationName<int> numbered{u"Named"};
    std::string received;
    const auto observation = center.addObserver(named, [&](const std::string &name) { received += name; });
    center.post(named, "subject");
    center.post(numbered, 7);
    EXPECT_EQ(received, "subject");
}

TEST_F(NotificationCenterTest, AnObserverMayEndItselfAndOthersDuringAPost)
{
    Observation itself;
    Observation victim;
    const std::string captured = "still here";
    itself = center.addObserver(changed, [&, captured] {
        itself.cancel();
        victim.cancel();
        calls += captured;
    });
    victim = center.addObserver(changed, note('v'));
    const auto last = center.addObserver(changed, note('!'));
    center.post(changed);
    center.post(changed);
    EXPECT_EQ(calls, "still here!!");
}

TEST_F(NotificationCenterTest, AnObserverAddedDuringAPostWaitsForTheNext)
{
    std::vector<Observation> added;
    const auto adding =
        center.addObserver(changed, [&] { added.push_back(center.addObserver(changed, note('n'))); });
    center.post(changed);
    EXPECT_EQ(calls, "");
    center.post(changed);
    EXPECT_EQ(calls, "n");
}

TEST_F(NotificationCenterTest, APostInsideAPostIsDeliveredAtOnce)
{
    const auto outer = center.addObserver(changed, [&] {
        calls += '(';
        center.post(other);
        calls += ')';
    });
    const auto inner = center.addObserver(other, note('i'));
    center.post(changed);
    EXPECT_EQ(calls, "(i)");
}

TEST_F(NotificationCenterTest, AnObservationMayOutliveItsCenter)
{
    Observation observation;
    {
        NotificationCenter shortLived;
        observation = shortLived.addObserver(changed, note('a'));
    }
    observation.cancel();
    EXPECT_EQ(calls, "");
}

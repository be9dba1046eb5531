#include "foundation/NotificationCenter.h"

#include <gmock/gmock.h>

#include <optional>

static constexpr NotificationName changed{u"Changed"};
static constexpr NotificationName other{u"Other"};

class NotificationCenterTest : public testing::Test
{
protected:
    auto note(char letter)
    {
        return [this, letter](const Notification &) { calls += letter; };
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

TEST_F(NotificationCenterTest, ObjectAndInformationArrive)
{
    std::optional<Notification> received;
    const auto observation = center.addObserver(changed, [&](const Notification &note) { received = note; });
    center.post(changed, std::string("object"), 7);
    ASSERT_TRUE(received);
    EXPECT_TRUE(received->name == changed);
    EXPECT_EQ(std::any_cast<std::string>(received->object), "object");
    EXPECT_EQ(std::any_cast<int>(received->userInfo), 7);
}

TEST_F(NotificationCenterTest, AnObserverMayEndItselfAndOthersDuringAPost)
{
    Observation itself;
    Observation victim;
    const std::string captured = "still here";
    itself = center.addObserver(changed, [&, captured](const Notification &) {
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
    const auto adding = center.addObserver(
        changed, [&](const Notification &) { added.push_back(center.addObserver(changed, note('n'))); });
    center.post(changed);
    EXPECT_EQ(calls, "");
    center.post(changed);
    EXPECT_EQ(calls, "n");
}

TEST_F(NotificationCenterTest, APostInsideAPostIsDeliveredAtOnce)
{
    const auto outer = center.addObserver(changed, [&](const Notification &) {
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

#include "DeviceOfLibrary.h"

#include "support/TestSupport.h"

#include <QTemporaryDir>

// What a device has outside of its store, and what the others know of that.

namespace {

using Holdings = std::optional<QStringList>;

Holdings heldBy(DeviceOfLibrary &one, DeviceOfLibrary &asked)
{
    for (const replication::Device &device : asked.replica().devices()) {
        if (device.id == one.replica().device())
            return device.holdings;
    }
    return std::nullopt;
}

void exchange(DeviceOfLibrary &from, DeviceOfLibrary &to)
{
    for (const QByteArray &bytes : from.send())
        to.receive(bytes);
    to.takeIn();
}

} // namespace

TEST(HoldingsTest, AreToldAtOnceAndOnce)
{
    DeviceOfLibrary one{1};
    DeviceOfLibrary other{2};
    one.library().author("Ann");
    one.library().save();
    exchange(one, other);
    EXPECT_EQ(heldBy(one, other), Holdings()) << "It has not said yet";
    const Holdings both(QStringList{u"Home"_qs, u"Wörk \"2\""_qs});
    one.replica().hold(*both);
    ASSERT_TRUE(one.replica().owesAcknowledgement());
    EXPECT_FALSE(one.replica().acknowledge());
    exchange(one, other);
    EXPECT_EQ(heldBy(one, other), both);
    // Nothing new is to be told, neither now nor after a start.
    one.replica().hold(*both);
    EXPECT_FALSE(one.replica().owesAcknowledgement());
    one.restart();
    other.restart();
    one.replica().hold(*both);
    EXPECT_FALSE(one.replica().owesAcknowledgement());
    EXPECT_EQ(heldBy(one, other), both);
    // What was not told before the program ended is told after.
    one.replica().hold({});
    one.restart();
    one.replica().hold({});
    ASSERT_TRUE(one.replica().owesAcknowledgement());
    // A save of the user tells it, too.
    one.library().author("Bob");
    one.library().save();
    EXPECT_FALSE(one.replica().owesAcknowledgement());
    exchange(one, other);
    EXPECT_EQ(heldBy(one, other), Holdings(QStringList()));
}

TEST(HoldingsTest, ComeWithASnapshotAndStayThoseOfTheirDevice)
{
    const QTemporaryDir folder;
    DeviceOfLibrary one{1};
    DeviceOfLibrary other{2};
    DeviceOfLibrary third{3};
    const Holdings home(QStringList{u"Home"_qs});
    one.library().author("Ann");
    one.replica().hold(*home);
    one.library().save();
    exchange(one, other);
    other.library().author("Bob");
    other.library().save();
    third.adopt(other.snapshot(folder.filePath(u"snapshot"_qs)));
    EXPECT_EQ(heldBy(one, third), home);
    EXPECT_EQ(heldBy(other, third), Holdings());
    // Under another number it has to say so again, and its former self had it.
    const replication::DeviceId former = one.replica().device();
    EXPECT_FALSE(one.replica().becomeAnother());
    EXPECT_NE(one.replica().device(), former);
    ASSERT_TRUE(one.replica().owesAcknowledgement());
    EXPECT_FALSE(one.replica().acknowledge());
    exchange(one, third);
    EXPECT_EQ(heldBy(one, third), home);
}

#include "DeviceOfLibrary.h"

#include "support/TestSupport.h"

// The clock of one device is a year ahead.

namespace {

class ClockTest : public testing::Test
{
protected:
    static Date now(double ahead = 0) { return Date::fromReferenceSeconds(8e8 + ahead); }
    void bring(DeviceOfLibrary &from, DeviceOfLibrary &to)
    {
        for (const QByteArray &bytes : from.send())
            to.receive(bytes);
        to.takeIn();
    }
    static void rename(DeviceOfLibrary &device, const char *before, const char *after)
    {
        device.library().find(before)->setTitle(QString::fromUtf8(after));
        device.library().save();
    }
    static qint64 stampOf(const Date &date) { return qint64(date.unixSeconds() * 1000) << 16; }

    const double year = 365 * 86400.0;
    DeviceOfLibrary right{1};
    DeviceOfLibrary ahead{2};
};

} // namespace

TEST_F(ClockTest, WhoHasSeenAValueWinsAgainstItAndIsNotCarriedAway)
{
    {
        const FrozenClock clock(now(year));
        ahead.library().book("Momo");
        ahead.library().save();
    }
    const FrozenClock clock(now());
    bring(ahead, right);
    rename(right, "Momo", "Emma");
    bring(right, ahead);
    EXPECT_NE(ahead.library().find("Emma"), nullptr);
    // What has nothing to do with it gets the time that it is.
    right.library()->insert<Shelf>()->setName(u"New"_qs);
    right.library().save();
    const QStringList stamp =
        right.library().ask(u"SELECT stamp FROM ObjectStoreRowStates WHERE tbl = 'Shelf'"_qs);
    EXPECT_LE(stamp.front().toLongLong(), stampOf(now(2 * 86400)));
    // So it is after a start, and for the one whose clock was set right.
    ahead.restart();
    right.restart();
    rename(ahead, "Emma", "Kim");
    bring(ahead, right);
    EXPECT_NE(right.library().find("Kim"), nullptr);
    rename(right, "Kim", "Nils");
    bring(right, ahead);
    EXPECT_EQ(right.library().dump(), ahead.library().dump());
    EXPECT_NE(ahead.library().find("Nils"), nullptr);
    ahead.library()->insert<Label>()->setName(u"Later"_qs);
    ahead.library().save();
    EXPECT_LE(ahead.library()
                  .ask(u"SELECT stamp FROM ObjectStoreRowStates WHERE tbl = 'Label'"_qs)
                  .front()
                  .toLongLong(),
              stampOf(now(2 * 86400)));
}

TEST_F(ClockTest, AClockAheadIsToldOfUntilItIsSetRight)
{
    const auto isToldOf = [this] {
        for (const replication::Device &device : right.replica().devices()) {
            if (!device.isOwn)
                return device.isClockAhead;
        }
        return false;
    };
    {
        const FrozenClock clock(now(year));
        ahead.library().book("Momo");
        ahead.library().save();
    }
    const FrozenClock clock(now());
    bring(ahead, right);
    EXPECT_TRUE(isToldOf());
    // A later value over one of that time does not bring its device into the same suspicion.
    rename(right, "Momo", "Emma");
    bring(right, ahead);
    for (const replication::Device &device : ahead.replica().devices())
        EXPECT_FALSE(device.isClockAhead);
    rename(ahead, "Emma", "Kim");
    bring(ahead, right);
    EXPECT_FALSE(isToldOf());
}

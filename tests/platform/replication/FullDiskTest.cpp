#include "DeviceOfLibrary.h"

#include "support/TestSupport.h"

// The disk is full while a device is to go on under a new number.

TEST(FullDiskTest, ADeviceIsTheFormerOneUntilTheNewOneIsWritten)
{
    const LogCapture log;
    DeviceOfLibrary one{1};
    DeviceOfLibrary other{2};
    const auto exchanged = [&] {
        for (const QByteArray &bytes : one.send())
            other.receive(bytes);
        other.takeIn();
        EXPECT_EQ(other.waitingCount(), 0u);
        EXPECT_EQ(other.library().dump(), one.library().dump());
    };
    const auto holdings = [&](const QByteArray &id) {
        for (const replication::Device &device : other.replica().devices()) {
            if (device.id == id)
                return device.holdings;
        }
        return std::optional<QStringList>();
    };
    one.replica().hold({u"Home"_qs});
    one.library().book(QByteArray(300'000, 'x').constData());
    one.library().save();
    exchanged();
    // What the store could use again is used.
    ASSERT_FALSE(one.replica().clear(1));
    one.library().elsewhere("CREATE TABLE Filler (x); INSERT INTO Filler VALUES (zeroblob(2000000))");
    const QByteArray former = one.replica().device();
    sqlite::Database &database = one.library().context().connection();
    int failures = 0;
    for (int room = 0; one.replica().device() == former; room += 25) {
        ASSERT_LT(room, 1000);
        const qint64 pages = database.queryInteger("PRAGMA page_count") + room;
        ASSERT_FALSE(database.execute("PRAGMA max_page_count = " + QByteArray::number(pages)));
        const auto before = one.replica().seen();
        const qint64 number = one.replica().number();
        const OptionalError error = one.replica().becomeAnother();
        ASSERT_FALSE(database.execute("PRAGMA max_page_count = 1000000"));
        if (!error)
            continue;
        ++failures;
        ASSERT_EQ(one.replica().device(), former);
        EXPECT_EQ(one.replica().seen(), before);
        EXPECT_FALSE(one.replica().owesAcknowledgement());
        // It works on, and is heard.
        one.library().book(QByteArray::number(room).constData());
        one.library().save();
        EXPECT_EQ(one.replica().number(), number + 1);
        exchanged();
    }
    EXPECT_GT(failures, 1);
    ASSERT_NE(one.replica().device(), former);
    EXPECT_TRUE(one.replica().owesAcknowledgement()) << "Nobody has heard what the new one holds";
    one.library().book("Last");
    one.library().save();
    exchanged();
    EXPECT_EQ(holdings(one.replica().device()), QStringList({u"Home"_qs}));
}

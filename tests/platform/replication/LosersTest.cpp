#include "DeviceOfLibrary.h"

#include "objectstore/ChangeHistory.h"
#include "support/TestSupport.h"

// What loses against a later value can be put back from the history of the record.

namespace {

class LosersTest : public testing::Test
{
protected:
    using Files = std::vector<QByteArray>;

    LosersTest()
    {
        const FrozenClock clock(at(0));
        one.library().book("Momo");
        one.library().save();
        first = one.send();
        take(two, first);
        take(three, first);
    }
    static Date at(double seconds) { return Date::fromReferenceSeconds(8e8 + seconds); }
    static void take(DeviceOfLibrary &device, const Files &files)
    {
        for (const QByteArray &bytes : files)
            device.receive(bytes);
        device.takeIn();
    }
    static std::shared_ptr<Book> only(DeviceOfLibrary &device)
    {
        return device.library()->fetchFirst<Book>(FetchRequest("Book"));
    }
    static Files rename(DeviceOfLibrary &device, const char *title, double seconds)
    {
        const FrozenClock clock(at(seconds));
        only(device)->setTitle(QString::fromUtf8(title));
        device.library().save();
        return device.send();
    }
    /// What the title was before something else took its place, sorted.
    static QStringList formerTitles(DeviceOfLibrary &device)
    {
        QStringList titles;
        for (const RecordedSave &save : device.library()->historyOf(*only(device))) {
            for (const RowChange &row : save.rows) {
                for (const RowChange::Field &field : row.fields) {
                    const auto *title = std::get_if<QString>(&field.before);
                    if (field.key == "title" && title)
                        titles.append(*title);
                }
            }
        }
        titles.sort();
        return titles;
    }

    QTemporaryDir folder;
    DeviceOfLibrary one{1};
    DeviceOfLibrary two{2};
    DeviceOfLibrary three{3};
    Files first;
};

} // namespace

TEST_F(LosersTest, EachOfABatchHasItsOwnEntryWhateverTheOrder)
{
    const QByteArray early = rename(two, "Early", 10).front();
    const QByteArray middle = rename(three, "Middle", 20).front();
    const QByteArray later = rename(one, "Later", 30).front();
    // Who wrote it had seen what it replaces.
    const QByteArray latest = rename(one, "Latest", 40).front();
    for (const Files &order : {Files{later, latest, early, middle}, Files{early, middle, later, latest},
                               Files{middle, later, early, latest}}) {
        DeviceOfLibrary reader{4};
        take(reader, first);
        take(reader, order);
        EXPECT_EQ(only(reader)->title(), u"Latest"_qs);
        EXPECT_EQ(formerTitles(reader), QStringList({u"Early"_qs, u"Middle"_qs, u"Momo"_qs}));
    }
}

TEST_F(LosersTest, WhatADeviceWroteAndLosesToASnapshotIsThere)
{
    rename(two, "Sent", 10);
    rename(two, "Mine", 15);
    {
        const FrozenClock clock(at(17));
        only(two)->setPages(7);
        two.library().save();
    }
    take(one, rename(three, "Of others", 20));
    rename(one, "Theirs", 30);
    const FrozenClock clock(at(60));
    two.adopt(one.snapshot(folder.filePath(u"snapshot"_qs)));
    EXPECT_EQ(only(two)->title(), u"Theirs"_qs);
    EXPECT_EQ(only(two)->pages(), 7);
    const auto saves = two.library()->historyOf(*only(two));
    ASSERT_FALSE(saves.empty());
    EXPECT_EQ(saves.front().author, ChangeAuthor::Replication);
    EXPECT_EQ(formerTitles(two), QStringList({u"Mine"_qs, u"Momo"_qs, u"Sent"_qs}));
    // What comes and loses is there as well.
    rename(two, "Left behind", 70);
    rename(three, "Latest", 90);
    three.adopt(two.snapshot(folder.filePath(u"second"_qs)));
    EXPECT_EQ(only(three)->title(), u"Latest"_qs);
    EXPECT_EQ(formerTitles(three), QStringList({u"Left behind"_qs, u"Momo"_qs, u"Of others"_qs}));
}

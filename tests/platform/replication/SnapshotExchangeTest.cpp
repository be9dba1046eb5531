#include "ExchangeFixture.h"

#include <QCborMap>
#include <QCryptographicHash>
#include <QtEndian>

// Snapshots take the place of saves.

namespace {

class SnapshotExchangeTest : public ExchangeTest
{
protected:
    SnapshotExchangeTest()
    {
        other.stop();
        one.stop();
        one.terms.mostFiles = 5;
        one.start();
    }
    QStringList snapshotsOf(const Device &device) const { return filesOf(device).filter(u"snapshot-"_qs); }
    qsizetype saveCountOf(const Device &device) const
    {
        return filesOf(device).filter(u"changes-"_qs).size();
    }
    QString pathOfSnapshot(const Device &device) const { return path(device, snapshotsOf(device).front()); }
    void expectEqual()
    {
        EXPECT_TRUE(waitFor([this] { return one.library().dump() == other.library().dump(); }));
        for (Device *device : {&one, &other})
            EXPECT_EQ(device->library().ask(u"PRAGMA foreign_key_check"_qs), QStringList());
    }
    /// A snapshot as the first format had it: parts of zlib.
    static QByteArray inFirstFormat(const QString &path, const QString &database)
    {
        auto head = replication::snapshot::unpack(path, {}, QString(), database);
        EXPECT_TRUE(head.hasValue());
        const auto part = [](const QByteArray &content) {
            QByteArray length(4, '\0');
            qToBigEndian(quint32(content.size()), length.data());
            return length + QCryptographicHash::hash(content, QCryptographicHash::Sha256) + content;
        };
        const QByteArray rows = part(qCompress(contents(database), 1));
        const QCborMap map{{0, 1},
                           {1, head->schema},
                           {2, QString::fromUtf8(head->dot.device)},
                           {3, head->dot.number},
                           {4, QString::fromUtf8(head->seen.text())},
                           {5, 1},
                           {6, rows.size()}};
        return "MVSNAPSH" + part(QCborValue(map).toCbor()) + rows;
    }
    const QStringList six = {u"A"_qs, u"B"_qs, u"C"_qs, u"D"_qs, u"E"_qs, u"F"_qs};
};

} // namespace

TEST_F(SnapshotExchangeTest, ANewDeviceBeginsWithOneAndGoesOn)
{
    one.save(six);
    ASSERT_TRUE(waitFor([this] { return snapshotsOf(one).size() == 1 && saveCountOf(one) == 1; }))
        << "The last save stays";
    other.start();
    other.save({u"Own"_qs});
    EXPECT_TRUE(waitFor([this] { return other.has("A") && other.has("F") && one.has("Own"); }));
    // Its own edit of what came with the snapshot goes back, and what is new comes by itself.
    other.library().find("B")->setTitle(u"Bee"_qs);
    other.library().save();
    other.look();
    one.save({u"G"_qs});
    EXPECT_TRUE(waitFor([this] { return other.has("G") && one.has("Bee"); }));
    expectEqual();
    EXPECT_TRUE(other.exchange().health().problems.empty());
    // The next one replaces it, and the saves that both have go again.
    one.save({u"1"_qs, u"2"_qs, u"3"_qs, u"4"_qs, u"5"_qs});
    ASSERT_TRUE(waitFor([this] { return other.has("5"); }));
    other.save({u"Told"_qs});
    EXPECT_TRUE(waitFor([this] { return snapshotsOf(one).size() == 1 && saveCountOf(one) == 1; }));
    one.stop();
    one.start();
    EXPECT_FALSE(waitFor([this] { return saveCountOf(one) != 1; }, 700)) << "What was cleared stays away";
}

TEST_F(SnapshotExchangeTest, SavesStayUntilAllHaveThemButForWhoIsAwayForMonths)
{
    other.start();
    other.save({u"Here I am"_qs});
    ASSERT_TRUE(waitFor([this] { return one.has("Here I am"); }));
    other.stop();
    one.save(six);
    ASSERT_TRUE(waitFor([this] { return snapshotsOf(one).size() == 1; }));
    EXPECT_FALSE(waitFor([this] { return saveCountOf(one) < 6; }, 700));
    // It edits what the others go on with meanwhile, and deletes what they edit.
    other.start();
    ASSERT_TRUE(waitFor([this] { return other.has("F"); }));
    other.stop();
    const QTemporaryDir empty;
    {
        Device &away = other;
        away.startIn(empty.path());
        away.library().find("A")->setTitle(u"Away"_qs);
        away.library()->deleteObject(away.library().find("B"));
        away.library()->deleteObject(away.library().find("C"));
        away.library().save();
        away.stop();
    }
    const FrozenClock later(Clock::now() + Seconds(100.0 * 86400));
    one.library().find("A")->setPages(7);
    one.library().find("B")->setPages(8);
    one.library().save();
    one.save({u"1"_qs, u"2"_qs, u"3"_qs, u"4"_qs, u"5"_qs, u"6"_qs});
    ASSERT_TRUE(waitFor([this] { return saveCountOf(one) == 1; })) << "Nobody waits for ever";
    other.startIn(shared.path());
    EXPECT_TRUE(waitFor([this] { return one.has("Away") && other.has("6"); }));
    expectEqual();
    EXPECT_TRUE(other.has("B")) << "The deletion did not know of the edit";
    EXPECT_FALSE(other.has("C"));
    EXPECT_EQ(other.library().find("Away")->pages(), 7);
}

TEST_F(SnapshotExchangeTest, ADamagedOneIsToldOfAndLosesNothing)
{
    const LogCapture log;
    one.save(six);
    ASSERT_TRUE(waitFor([this] { return snapshotsOf(one).size() == 1 && saveCountOf(one) == 1; }));
    const QString file = pathOfSnapshot(one);
    one.stop();
    const QByteArray whole = contents(file);
    const qsizetype middle = whole.size() / 2;
    for (const QByteArray &bad :
         {whole.left(whole.size() - 1), whole.left(20), QByteArray(), whole + 'x',
          QByteArray(whole).replace(middle, 1, QByteArray(1, char(whole.at(middle) ^ 1))),
          QByteArray(5000, 'z')}) {
        write(file, bad);
        other.start();
        EXPECT_TRUE(waitFor([this] { return other.exchange().health().problems.size() == 1; })) << bad.size();
        EXPECT_FALSE(other.has("A"));
        EXPECT_EQ(other.library().ask(u"PRAGMA foreign_key_check"_qs), QStringList());
        other.stop();
    }
    // Whoever made it makes another one as soon as it looks.
    one.start();
    other.start();
    EXPECT_TRUE(waitFor([this] { return other.has("A"); }));
    expectEqual();
    // Without any, too.
    other.stop();
    ASSERT_TRUE(QFile::remove(pathOfSnapshot(one)));
    one.look();
    EXPECT_TRUE(waitFor([this] { return snapshotsOf(one).size() == 1; }));
}

TEST_F(SnapshotExchangeTest, OneOfTheFirstFormatIsReadAndOneOfALaterIsLeft)
{
    one.save(six);
    ASSERT_TRUE(waitFor([this] { return snapshotsOf(one).size() == 1 && saveCountOf(one) == 1; }));
    const QString file = pathOfSnapshot(one);
    one.stop();
    const QByteArray former = inFirstFormat(file, shared.filePath(u"rows"_qs));
    ASSERT_TRUE(QFile::remove(shared.filePath(u"rows"_qs)));
    QByteArray later = former;
    constexpr qsizetype beginOfHead = 8 + 4 + 32; // The mark, the length, the digest.
    ASSERT_EQ(later.at(beginOfHead + 2), 1);
    later[beginOfHead + 2] = 3;
    const qsizetype length = qFromBigEndian<quint32>(later.constData() + 8);
    later.replace(12, 32,
                  QCryptographicHash::hash(later.mid(beginOfHead, length), QCryptographicHash::Sha256));
    write(file, later);
    other.start();
    EXPECT_TRUE(waitFor([this] { return other.exchange().health().problems.size() == 1; }));
    EXPECT_FALSE(other.has("A"));
    other.stop();
    write(file, former);
    other.start();
    EXPECT_TRUE(waitFor([this] { return other.has("A") && other.has("F"); }));
    expectEqual();
}

TEST_F(SnapshotExchangeTest, AStoreThatWasPutBackIsAnotherDeviceThoughItsSavesAreCleared)
{
    one.save({u"Before"_qs});
    ASSERT_TRUE(waitFor([this] { return saveCountOf(one) == 1; }));
    one.stop();
    const QString store = one.library().path();
    const QString copy = store + u".copy"_qs;
    ASSERT_TRUE(QFile::copy(store, copy));
    one.start();
    const QByteArray former = one.id();
    one.save(six);
    ASSERT_TRUE(waitFor([this] { return snapshotsOf(one).size() == 1 && saveCountOf(one) == 1; }));
    const QString last = path(one, filesOf(one).filter(u"changes-"_qs).front());
    one.stop();
    ASSERT_TRUE(QFile::remove(store) && QFile::rename(copy, store) && QFile::remove(last));
    one.start();
    EXPECT_TRUE(waitFor([&] { return one.id() != former && one.has("F"); }));
    one.save({u"After"_qs});
    other.start();
    EXPECT_TRUE(waitFor([this] { return other.has("After") && other.has("Before") && other.has("A"); }));
    expectEqual();
}

TEST_F(SnapshotExchangeTest, ADeviceThatOnlyReadsSaysSoOnce)
{
    other.start();
    QStringList many;
    for (int number = 0; number < 55; ++number)
        many.append(QString::number(number));
    one.save(many);
    const auto told = [this] {
        for (const replication::Device &device : one.exchange().health().devices) {
            if (!device.isOwn)
                return device.seen.of(one.id());
        }
        return qint64(0);
    };
    EXPECT_TRUE(waitFor([&] { return told() >= 50; }));
    EXPECT_TRUE(waitFor([this] { return saveCountOf(one) < 55; })) << "So that its saves can go";
    const auto filesOfBoth = [this] { return filesOf(one) + filesOf(other); };
    waitFor([&] { return one.exchange().health().unsent + other.exchange().health().unsent == 0; });
    // They have nothing more to say to each other, not even after days.
    const FrozenClock later(Clock::now() + Seconds(3.0 * 86400));
    other.look();
    EXPECT_TRUE(waitFor([&] { return told() == 55; }));
    waitFor([] { return false; }, 1000);
    const QStringList before = filesOfBoth();
    const FrozenClock evenLater(Clock::now() + Seconds(3.0 * 86400));
    one.look();
    other.look();
    EXPECT_FALSE(waitFor([&] { return filesOfBoth() != before; }, 1500));
}

// A device is gone for good, or so the user believes.

namespace {

class RemovedDeviceTest : public SnapshotExchangeTest
{
protected:
    RemovedDeviceTest()
    {
        other.start();
        third.save({u"Of the third"_qs});
        other.save({u"Of the other"_qs});
        for (Device *device : {&one, &other, &third})
            EXPECT_TRUE(waitFor([&] { return device->has("Of the third") && device->has("Of the other"); }));
        lost = third.id();
        third.stop();
        // The other one tells what it has; the third cannot.
        one.save(six);
        EXPECT_TRUE(waitFor([this] { return snapshotsOf(one).size() == 1 && other.has("F"); }));
        other.save({u"Told"_qs});
        EXPECT_TRUE(waitFor([this] { return one.has("Told"); }));
    }
    bool knows(const Device &device, const QByteArray &id) const
    {
        return std::ranges::any_of(device.exchange().health().devices,
                                   [&id](const replication::Device &known) { return known.id == id; });
    }
    bool hasFolder(const QByteArray &id) const
    {
        return QFile::exists(shared.filePath(QString::fromUtf8(id)));
    }

    Device third{shared.path(), "third"};
    QByteArray lost;
};

} // namespace

TEST_F(RemovedDeviceTest, NobodyWaitsForItAnyMore)
{
    EXPECT_FALSE(waitFor([this] { return saveCountOf(one) < 6; }, 700)) << "They wait for the third";
    EXPECT_TRUE(one.remove(one.id()).has_value()) << "Nobody removes itself";
    ASSERT_TRUE(knows(one, lost) && knows(other, lost));
    leaveBehind(shared.filePath(QString::fromUtf8(lost)) + u"/snapshot-0000000009"_qs);
    ASSERT_FALSE(one.remove(lost));
    EXPECT_FALSE(knows(one, lost));
    EXPECT_TRUE(waitFor([this] { return saveCountOf(one) == 1 && !knows(other, lost); }));
    EXPECT_TRUE(waitFor([this] { return !hasFolder(lost); })) << "A snapshot holds what it wrote";
    EXPECT_TRUE(one.has("Of the third") && other.has("Of the third"));
    // It stays away over a start, also with a device that has all of it from the snapshot.
    other.stop();
    other.start();
    EXPECT_FALSE(knows(other, lost));
    one.save({u"1"_qs, u"2"_qs, u"3"_qs, u"4"_qs, u"5"_qs});
    ASSERT_TRUE(waitFor([this] { return other.has("5") && snapshotsOf(one).front().endsWith(u"12"_qs); }));
    other.save({u"Told again"_qs});
    ASSERT_TRUE(waitFor([this] { return saveCountOf(one) == 1; }));
    Device fresh(shared.path(), "fresh");
    EXPECT_TRUE(waitFor([&] { return fresh.has("Of the third") && fresh.has("Told again"); }));
    EXPECT_FALSE(knows(fresh, lost));
}

TEST_F(RemovedDeviceTest, ItLosesNothingIfItComesBackAndTakesPartAgain)
{
    // It is alive, and works on without the folder.
    const QTemporaryDir elsewhere;
    third.startIn(elsewhere.path());
    third.save({u"Unseen"_qs});
    third.library().find("Of the other")->setTitle(u"Changed there"_qs);
    third.library()->deleteObject(third.library().find("Of the third"));
    third.library().save();
    third.stop();
    ASSERT_FALSE(one.remove(lost));
    // What it never saw is deleted and cleared, and what it deletes is edited.
    one.library()->deleteObject(one.library().find("A"));
    one.library().find("Of the third")->setPages(3);
    one.library().save();
    one.save({u"1"_qs, u"2"_qs, u"3"_qs, u"4"_qs, u"5"_qs});
    ASSERT_TRUE(waitFor([this] { return other.has("5"); }));
    other.save({u"Told again"_qs});
    ASSERT_TRUE(waitFor([this] { return saveCountOf(one) == 1 && !hasFolder(lost); }));

    third.startIn(shared.path());
    EXPECT_TRUE(waitFor([this] { return one.has("Unseen") && other.has("Unseen") && third.has("5"); }));
    EXPECT_TRUE(waitFor([this] { return knows(one, lost) && knows(other, lost); }))
        << "It is one of them again";
    for (Device *device : {&one, &other, &third}) {
        EXPECT_TRUE(waitFor([&] { return device->has("Changed there") && device->has("Told again"); }));
        EXPECT_TRUE(device->has("Of the third")) << "The deletion did not know of the edit";
        EXPECT_FALSE(device->has("A")) << "What was cleared did not come back";
        EXPECT_TRUE(waitFor([&] { return device->library().dump() == one.library().dump(); }));
    }
    // What it has told counts again.
    third.save({u"Back"_qs});
    EXPECT_TRUE(waitFor([this] { return one.has("Back") && other.has("Back"); }));
    third.stop();
    const QStringList snapshot = snapshotsOf(one);
    one.save({u"u"_qs, u"v"_qs, u"w"_qs, u"x"_qs, u"y"_qs, u"z"_qs});
    EXPECT_TRUE(waitFor([&] { return saveCountOf(one) >= 6 && snapshotsOf(one) != snapshot; }));
    other.save({u"Told at last"_qs});
    EXPECT_TRUE(waitFor([this] { return one.has("Told at last"); }));
    EXPECT_FALSE(waitFor([this] { return saveCountOf(one) < 6; }, 700));
}

TEST_F(RemovedDeviceTest, ItComesBackWithoutAnythingToSay)
{
    ASSERT_FALSE(one.remove(lost));
    EXPECT_TRUE(waitFor([this] { return saveCountOf(one) == 1 && !knows(other, lost); }));
    third.start();
    EXPECT_TRUE(waitFor([this] { return knows(one, lost) && knows(other, lost) && third.has("Told"); }));
    EXPECT_EQ(third.id(), lost);
    third.stop();
    one.stop();
    one.start();
    EXPECT_TRUE(knows(one, lost));
    // Also when it knows everything but this.
    ASSERT_FALSE(one.remove(lost));
    ASSERT_TRUE(waitFor([this] { return !knows(one, lost) && !knows(other, lost); }));
    third.start();
    EXPECT_TRUE(waitFor([this] { return knows(one, lost) && knows(other, lost); }));
}

TEST_F(SnapshotExchangeTest, TheSnapshotOfARemovedDeviceStaysWhileItAloneHoldsSomething)
{
    one.stop();
    one.terms.mostFiles = 1000;
    one.start();
    Device third(shared.path(), "third");
    third.stop();
    third.terms.mostFiles = 3;
    third.start();
    one.save(six);
    ASSERT_TRUE(waitFor([&] { return third.has("F"); }));
    third.save({u"1"_qs, u"2"_qs, u"3"_qs});
    ASSERT_TRUE(waitFor([this] { return one.has("3") && saveCountOf(one) == 1; }));
    const QByteArray lost = third.id();
    const QString folder = shared.filePath(QString::fromUtf8(lost));
    third.stop();
    ASSERT_FALSE(one.remove(lost));
    EXPECT_FALSE(
        waitFor([&] { return QDir(folder).entryList({u"snapshot-*"_qs}, QDir::Files).isEmpty(); }, 1000));
    other.start();
    EXPECT_TRUE(waitFor([this] { return other.has("A") && other.has("3"); }));
    other.save({u"Told"_qs});
    ASSERT_TRUE(waitFor([this] { return one.has("Told"); }));
    // It goes once another one holds all of that.
    one.stop();
    one.terms.mostFiles = 3;
    one.start();
    one.save({u"x"_qs, u"y"_qs, u"z"_qs});
    EXPECT_TRUE(waitFor([&] { return !QFile::exists(folder); }));
    Device fresh(shared.path(), "fresh");
    EXPECT_TRUE(waitFor([&] { return fresh.has("A") && fresh.has("3") && fresh.has("z"); }));
}

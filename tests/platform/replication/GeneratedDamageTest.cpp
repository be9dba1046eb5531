#include "DeviceOfLibrary.h"

#include "support/TestSupport.h"

#include <QCryptographicHash>

#include <random>

// Saves and snapshots that were damaged with care: their digests are right. They are refused or taken in, and
// the store is whole in either case.

namespace {

class GeneratedDamageTest : public testing::Test
{
protected:
    GeneratedDamageTest()
    {
        Library &library = sender.library();
        const auto shelf = library->insert<Shelf>();
        shelf->setName(u"Shelf"_qs);
        const auto label = library->insert<Label>();
        label->setName(u"red"_qs);
        for (const char *title : {"Momo", "Emma", "Kim"}) {
            const auto book = library.book(title);
            book->setShelf(shelf);
            book->setAuthor(library.author(title));
            book->setLabels({label});
        }
        library.save();
        library->deleteObject(library.find("Emma"));
        library.find("Kim")->setPages(7);
        library.save();
    }
    int below(qsizetype bound) { return std::uniform_int_distribution<int>(0, int(bound) - 1)(random); }
    /// Changes, removes or doubles some of the bytes behind the first ones.
    QByteArray damaged(QByteArray bytes, int first)
    {
        for (int count = 1 + below(4); count > 0 && bytes.size() > first + 1; --count) {
            const int place = first + below(bytes.size() - first);
            switch (below(5)) {
            case 0:
                bytes.remove(place, 1 + below(8));
                break;
            case 1:
                bytes.insert(place, bytes.mid(place, 1 + below(20)));
                break;
            default:
                bytes[place] = char(below(256));
            }
        }
        return bytes;
    }
    void expectWhole(DeviceOfLibrary &device)
    {
        Library &library = device.library();
        EXPECT_EQ(library.ask(u"PRAGMA integrity_check"_qs), QStringList(u"ok"_qs));
        EXPECT_EQ(library.ask(u"PRAGMA foreign_key_check"_qs), QStringList());
        library.book("Later");
        library.save();
    }

    const LogCapture log;
    QTemporaryDir folder;
    std::mt19937 random{testSeed()};
    DeviceOfLibrary sender{1};
};

} // namespace

TEST_F(GeneratedDamageTest, SavesLeaveTheStoreWhole)
{
    const std::vector<QByteArray> files = sender.send();
    ASSERT_EQ(files.size(), 2u);
    constexpr int headLength = 40; // The mark and the digest.
    int takenCount = 0;
    for (int round = 0; round < 150; ++round) {
        DeviceOfLibrary receiver(2);
        std::deque<replication::ChangeFile> waiting;
        for (const QByteArray &file : files) {
            const QByteArray content = damaged(file, headLength).mid(headLength);
            auto read = replication::ChangeFile::fromBytes(
                file.left(8) + QCryptographicHash::hash(content, QCryptographicHash::Sha256) + content);
            if (read)
                waiting.push_back(std::move(*read));
        }
        const auto changes = receiver.replica().takeIn(waiting, 1000);
        takenCount += changes.hasValue() && !changes.value().isEmpty() ? 1 : 0;
        expectWhole(receiver);
        ASSERT_FALSE(HasFailure()) << "Round " << round;
    }
    EXPECT_GT(takenCount, 5) << "Some of the damage is done to values only";
}

TEST_F(GeneratedDamageTest, SnapshotsLeaveTheStoreWhole)
{
    const auto snapshot = sender.snapshot(folder.filePath(u"whole"_qs));
    QFile file(snapshot.path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray whole = file.readAll();
    for (int round = 0; round < 60; ++round) {
        DeviceOfLibrary receiver(2);
        receiver.library().book("Own");
        receiver.library().save();
        const QString path = folder.filePath(u"damaged"_qs);
        QFile::remove(path);
        QFile copy(path);
        ASSERT_TRUE(copy.open(QIODevice::WriteOnly));
        // Behind the header of the database, page by page as disks do it.
        QByteArray bytes = whole;
        for (int count = 1 + below(20); count > 0; --count)
            bytes[100 + below(bytes.size() - 100)] = char(below(256));
        copy.write(bytes);
        copy.close();
        const auto changes = receiver.replica().adopt(path, snapshot.seen);
        EXPECT_TRUE(receiver.library().find("Own")) << changes.hasValue();
        expectWhole(receiver);
        ASSERT_FALSE(HasFailure()) << "Round " << round;
    }
}

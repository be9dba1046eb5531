#include "TwoDevices.h"

#include "cloud/FileManager.h"
#include "cloud/IcloudManager.h"
#include "support/TestSupport.h"

#include <QFile>

// Pictures in a folder that is sealed: one computer seals them, the other one shows them.

#ifdef MORVANE_SEALING_LIBRARY

namespace {

const QByteArray face = "\x89PNG\r\n\x1a\n a face that nobody else sees";
const QByteArray house = "\x89PNG\r\n\x1a\n a house";

class SealedPicturesTest : public testing::Test
{
protected:
    SealedPicturesTest()
    {
        Replication::setSealingLibrary(QStringLiteral(MORVANE_SEALING_LIBRARY));
        turnTo(0);
    }
    ~SealedPicturesTest() override
    {
        devices.end();
        QFile::remove(keyInUse);
        Replication::setSealingLibrary({});
    }
    /// Each computer has the keys that it was given.
    void turnTo(int home)
    {
        devices.end();
        if (QFile::exists(keyInUse))
            QFile::rename(keyInUse, keyOf(current));
        current = home;
        if (QFile::exists(keyOf(current)))
            QFile::rename(keyOf(current), keyInUse);
        devices.turnTo(home);
    }
    QString keyOf(int home) const { return keys.filePath(QString::number(home)); }
    QByteArray inFolder(const QString &name) const
    {
        QFile file(devices.sharedFolder() + u"/Documents/Orrelin Images/"_qs + name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    bool isSealed(const QString &name) const
    {
        const QByteArray bytes = inFolder(name);
        return bytes.startsWith("MVSEALED") && !bytes.contains("face") && !bytes.contains("PNG");
    }
    Replication &replication() { return *devices.program().replication(); }
    replication::SealingState state() { return replication().health().sealing; }
    static QByteArray shown(const QString &name) { return IcloudManager::imageData(name); }

    TwoDevices devices;
    QTemporaryDir keys;
    int current = 0;
    const QString keyInUse = ApplicationPaths::configFolder() + u"/Morvane/sealing.key"_qs;
    const QString a = u"a.png"_qs;
    const QString b = u"b.png"_qs;
    const QString first = u"seven seals"_qs;
    const QString second = u"seven other seals"_qs;
};

} // namespace

TEST_F(SealedPicturesTest, AreSealedWithTheFolderAndOpenedForShowingOnly)
{
    ASSERT_TRUE(IcloudManager::saveImageWithData(face, a));
    EXPECT_EQ(inFolder(a), face) << "The folder is open";
    ASSERT_FALSE(replication().seal(first));
    devices.settle();
    EXPECT_TRUE(isSealed(a)) << "What was there becomes sealed";
    ASSERT_TRUE(IcloudManager::saveImageWithData(house, b));
    EXPECT_TRUE(isSealed(b));
    EXPECT_EQ(shown(a), face);
    EXPECT_EQ(shown(b), house);
    EXPECT_TRUE(isSealed(a) && isSealed(b)) << "Showing opens nothing in the folder";
    EXPECT_EQ(FileManager::existPhotoData(house), b);
    EXPECT_EQ(FileManager::existPhotoData(house + 'x'), std::nullopt);
    // A picture cannot stand for another one.
    const QString folder = devices.sharedFolder() + u"/Documents/Orrelin Images/"_qs;
    ASSERT_TRUE(QFile::copy(folder + a, folder + u"c.png"_qs));
    EXPECT_EQ(shown(u"c.png"_qs), QByteArray());
    ASSERT_TRUE(QFile::remove(folder + u"c.png"_qs));

    // The other computer without the key shows none, and what it adds waits there.
    turnTo(1);
    EXPECT_EQ(state(), replication::SealingState::NeedsPassphrase);
    EXPECT_EQ(shown(a), QByteArray());
    const QString c = u"c.png"_qs;
    ASSERT_TRUE(IcloudManager::saveImageWithData(face + 'c', c));
    devices.settle();
    EXPECT_EQ(inFolder(c), QByteArray()) << "Nothing goes into a sealed folder in the open";
    EXPECT_EQ(shown(c), face + 'c');
    turnTo(1);
    EXPECT_EQ(shown(c), face + 'c') << "Also after a start";
    ASSERT_FALSE(replication().enterPassphrase(first));
    devices.settle();
    EXPECT_EQ(shown(a), face);
    EXPECT_TRUE(isSealed(c));
    EXPECT_EQ(shown(c), face + 'c');
    EXPECT_FALSE(QFile::exists(IcloudManager::waitingImagesUrl() + u'/' + c));
    turnTo(0);
    EXPECT_EQ(shown(c), face + 'c');
    EXPECT_TRUE(replication().health().problems.empty());
}

TEST_F(SealedPicturesTest, FollowTheKeyOfTheFolder)
{
    ASSERT_FALSE(replication().seal(first));
    ASSERT_TRUE(IcloudManager::saveImageWithData(face, a));
    turnTo(1);
    ASSERT_FALSE(replication().enterPassphrase(first));
    devices.settle();
    turnTo(0);
    const QByteArray before = inFolder(a);
    ASSERT_FALSE(replication().changePassphrase(second));
    devices.kill();
    turnTo(0);
    EXPECT_TRUE(isSealed(a));
    EXPECT_NE(inFolder(a), before);
    EXPECT_EQ(shown(a), face);
    const QByteArray after = inFolder(a);

    // Another computer brings a picture that it sealed with the former key, and one that it left open.
    const auto carry = [this](const QString &name, const QByteArray &bytes) {
        QFile file(devices.sharedFolder() + u"/Documents/Orrelin Images/"_qs + name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    };
    carry(a, before);
    carry(b, house);
    EXPECT_EQ(shown(a), face);
    EXPECT_EQ(shown(b), house);
    devices.settle();
    EXPECT_EQ(inFolder(a), after) << "Whoever seals it again makes the same file";
    EXPECT_TRUE(isSealed(b));
    // Who has the former key only still sees what was sealed with that.
    turnTo(1);
    EXPECT_EQ(state(), replication::SealingState::NeedsPassphrase);
    EXPECT_EQ(shown(a), QByteArray());
    carry(a, before);
    EXPECT_EQ(shown(a), face);
    ASSERT_FALSE(replication().enterPassphrase(second));
    devices.settle();
    EXPECT_EQ(inFolder(a), after);

    ASSERT_FALSE(replication().endSealing());
    devices.settle();
    EXPECT_EQ(inFolder(a), face);
    EXPECT_EQ(inFolder(b), house);
    // A file that was on its way when the sealing ended.
    turnTo(0);
    carry(a, after);
    devices.settle();
    EXPECT_EQ(inFolder(a), face);
    EXPECT_EQ(state(), replication::SealingState::Open);
    EXPECT_TRUE(replication().health().problems.empty());
}

#endif

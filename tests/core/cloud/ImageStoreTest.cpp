#include "CloudTest.h"

#include "cloud/Document.h"
#include "cloud/FileManager.h"
#include "cloud/IcloudManager.h"
#include "store/state/NotificationNames.h"
#include "support/FullDisk.h"

namespace {

class ImageStore : public CloudTest
{
protected:
    ~ImageStore() override { UserDefaults::standard().removeObject(settings::ubiquityIdentityToken); }

    const QString local = FileManager::appFolderURL() + u"/Orrelin Images"_qs;
    const QString shared = cloud.path() + u"/Documents/Orrelin Images"_qs;
};

TEST_F(ImageStore, LiesWhereTheStoreInUseSaysSo)
{
    EXPECT_EQ(IcloudManager::stateDB(), 1);
    EXPECT_EQ(FileManager::imageFolderURL(), local);
    joinCloud();
    EXPECT_EQ(IcloudManager::stateDB(), 0);
    EXPECT_EQ(IcloudManager::imageUrl(), shared);
    for (const bool isConnected : {true, false}) {
        if (!isConnected)
            leaveCloud();
        UserDefaults::standard().setObject(settings::valueSwitchDatabase, 1);
        EXPECT_EQ(IcloudManager::stateDB(), -1) << isConnected;
        EXPECT_EQ(IcloudManager::imageUrl(), local) << "The sample store never touches the cloud";
        UserDefaults::standard().setObject(settings::valueSwitchDatabase, 0);
    }
    writeFile(configuration(), R"({"cloudFolder": "/does/not/exist"})");
    EXPECT_FALSE(IcloudManager::connectIcloud());
    writeFile(configuration(), R"({"cloudFolder": 7})");
    EXPECT_FALSE(IcloudManager::connectIcloud());
    writeFile(configuration(), R"({"cloudFolder": "data"})");
    EXPECT_FALSE(IcloudManager::connectIcloud()) << "A relative path would hang on where the program starts";
}

TEST_F(ImageStore, KeepsFindsAndRemovesPictures)
{
    EXPECT_TRUE(IcloudManager::saveImageWithData("first", u"a.png"_qs));
    EXPECT_TRUE(IcloudManager::saveImageWithData("other", u"b.png"_qs));
    EXPECT_EQ(contentsOf(local + u"/a.png"_qs), "first");
    EXPECT_EQ(IcloudManager::listImageName(), QStringList({u"a.png"_qs, u"b.png"_qs}));
    EXPECT_EQ(FileManager::existPhotoData("other"), u"b.png"_qs);
    EXPECT_EQ(FileManager::existPhotoData("otter"), std::nullopt);
    EXPECT_FALSE(QFile::exists(ApplicationPaths::cacheFolder() + u"/tempImage.png"_qs));
    writeFile(local + u"/.hidden"_qs, "secret");
    QDir(local).mkdir(u"folder"_qs);
    EXPECT_EQ(FileManager::existPhotoData("secret"), std::nullopt);
    EXPECT_EQ(IcloudManager::listImageURL().size(), 3);
    EXPECT_EQ(IcloudManager::listImageName().size(), 4);
    EXPECT_TRUE(FileManager::isDictionary(local + u"/folder"_qs));

    EXPECT_EQ(IcloudManager::imageData(u"a.png"_qs), "first");
    EXPECT_EQ(IcloudManager::imageData(u"gone.png"_qs), QByteArray());
    EXPECT_EQ(IcloudManager::imageData(u"folder"_qs), QByteArray());
    EXPECT_TRUE(IcloudManager::removeImage(u"a.png"_qs));
    EXPECT_FALSE(IcloudManager::removeImage(u"a.png"_qs));
    EXPECT_FALSE(IcloudManager::removeImage(QString()));
    EXPECT_FALSE(IcloudManager::removeImage(u"folder"_qs));
    EXPECT_TRUE(IcloudManager::existenceFile(local + u"/b.png"_qs));
}

TEST_F(ImageStore, NeverLeavesItsFolder)
{
    const QString outside = FileManager::appFolderURL() + u"/outside.png"_qs;
    writeFile(outside, "mine");
    for (const QString &name : {u"../outside.png"_qs, outside, u"."_qs, u".."_qs, u"a/../../outside.png"_qs,
                                QString(), QString(u"a\0b"_qs + QChar(0))}) {
        EXPECT_FALSE(IcloudManager::saveImageWithData("evil", name)) << qPrintable(name);
        EXPECT_FALSE(IcloudManager::removeImage(name)) << qPrintable(name);
        EXPECT_EQ(IcloudManager::imageData(name), QByteArray()) << qPrintable(name);
    }
    EXPECT_EQ(contentsOf(outside), "mine");
    EXPECT_TRUE(QDir(local).exists());
}

TEST_F(ImageStore, LeavesNoTraceOfAPictureThatCannotBeWritten)
{
    const LogCapture log;
    EXPECT_TRUE(IcloudManager::saveImageWithData("old", u"a.png"_qs));
    {
        const FullDisk disk(10);
        EXPECT_FALSE(IcloudManager::saveImageWithData(QByteArray(5000, 'x'), u"a.png"_qs));
        EXPECT_FALSE(IcloudManager::saveImageWithData(QByteArray(5000, 'x'), u"b.png"_qs));
    }
    EXPECT_EQ(log.lines().filter(u"Cannot write "_qs).size(), 2);
    EXPECT_EQ(contentsOf(local + u"/a.png"_qs), "old");
    EXPECT_EQ(IcloudManager::listImageName(), QStringList(u"a.png"_qs));
    // A file stands where the folder should be.
    QDir(local).removeRecursively();
    writeFile(local, "no folder");
    EXPECT_FALSE(IcloudManager::saveImageWithData("new", u"a.png"_qs));
    EXPECT_EQ(IcloudManager::listImageName(), QStringList());
    EXPECT_EQ(FileManager::existPhotoData("new"), std::nullopt);
    EXPECT_FALSE(IcloudManager::saveImageWithData(QByteArray(), u"a.png"_qs));
}

TEST_F(ImageStore, FollowsIntoASharedFolderAndOutOfIt)
{
    EXPECT_TRUE(IcloudManager::saveImageWithData("early", u"early.png"_qs));
    EXPECT_TRUE(IcloudManager::saveImageWithData("sample", u"sample.png"_qs));
    joinCloud();
    const IcloudManager manager;
    EXPECT_EQ(IcloudManager::imageData(u"early.png"_qs), "early") << "from the first moment on";
    IcloudManager::shareImages({u"early.png"_qs, u"missing.png"_qs});
    EXPECT_EQ(contentsOf(IcloudManager::waitingImagesUrl() + u"/early.png"_qs), "early");
    EXPECT_EQ(QDir(IcloudManager::waitingImagesUrl()).entryList(QDir::Files).size(), 1);
    EXPECT_TRUE(IcloudManager::saveImageWithData("late", u"late.png"_qs));
    EXPECT_TRUE(IcloudManager::saveImageWithData("gone", u"gone.png"_qs));
    // It left the folder before and was changed there.
    EXPECT_TRUE(IcloudManager::saveImageWithData("other", u"sample.png"_qs));
    EXPECT_EQ(IcloudManager::imageData(u"sample.png"_qs), "other");
    EXPECT_TRUE(IcloudManager::removeImage(u"sample.png"_qs));
    EXPECT_EQ(IcloudManager::imageData(u"sample.png"_qs), QByteArray())
        << "the former one does not come back";
    EXPECT_TRUE(IcloudManager::removeImage(u"gone.png"_qs));
    IcloudManager::keepImages();
    leaveCloud();
    EXPECT_EQ(IcloudManager::imageData(u"early.png"_qs), "early");
    EXPECT_EQ(IcloudManager::imageData(u"late.png"_qs), "late");
    EXPECT_EQ(IcloudManager::imageData(u"gone.png"_qs), QByteArray());
}

TEST_F(ImageStore, IsSharedInTheCloudAndLeavesOutWhatIsNotHereYet)
{
    joinCloud();
    EXPECT_EQ(IcloudManager::listImageName(), QStringList());
    const IcloudManager manager;
    EXPECT_TRUE(QDir(shared).exists());
    EXPECT_TRUE(IcloudManager::saveImageWithData("here", u"here.png"_qs));
    // What another program has only announced is a link to nowhere.
    EXPECT_TRUE(QFile::link(shared + u"/not here"_qs, shared + u"/later.png"_qs));
    EXPECT_EQ(IcloudManager::listImageName(), QStringList(u"here.png"_qs));
    leaveCloud();
    EXPECT_EQ(IcloudManager::imageData(u"here.png"_qs), QByteArray()) << "Pictures do not follow";
}

TEST_F(ImageStore, KeepsWhatTheSharedFolderDoesNotTake)
{
    joinCloud();
    const IcloudManager manager;
    // Something stands in the way, as on a stick that takes no such name.
    ASSERT_TRUE(QDir().mkpath(shared + u"/24-11-2026 10:00:00.png/x"_qs));
    EXPECT_TRUE(IcloudManager::saveImageWithData("taken", u"24-11-2026 10:00:00.png"_qs));
    EXPECT_EQ(IcloudManager::imageData(u"24-11-2026 10:00:00.png"_qs), "taken");
}

TEST_F(ImageStore, KnowsTheAccountByItsToken)
{
    UserDefaults &defaults = UserDefaults::standard();
    EXPECT_EQ(IcloudManager::iCloudState(), 0);
    EXPECT_FALSE(defaults.contains(settings::ubiquityIdentityToken));
    joinCloud();
    EXPECT_FALSE(IcloudManager::iCloudOut());
    IcloudManager::icloudToken();
    EXPECT_EQ(defaults.object(settings::ubiquityIdentityToken).toByteArray(),
              IcloudManager::currentiCloudToken());
    EXPECT_EQ(IcloudManager::iCloudState(), 0) << "Bytes read as a boolean are no";
    leaveCloud();
    EXPECT_TRUE(IcloudManager::iCloudOut());
    EXPECT_EQ(IcloudManager::iCloudState(), -1);
    EXPECT_FALSE(defaults.contains(settings::ubiquityIdentityToken));
    joinCloud();
    defaults.setObject(settings::ubiquityIdentityToken, 1);
    EXPECT_TRUE(IcloudManager::canUseICloud());
    EXPECT_EQ(IcloudManager::iCloudState(), -1);
}

TEST_F(ImageStore, ReadsAndWritesDocuments)
{
    Document document(u"png"_qs);
    Result<QByteArray> empty = document.dataOfType(u"png"_qs);
    ASSERT_FALSE(empty);
    EXPECT_EQ(empty.error().domain, u"NSCocoaErrorDomain"_qs);
    EXPECT_EQ(empty.error().code, 512);
    EXPECT_FALSE(document.readFromData(QByteArray(), u"png"_qs));
    EXPECT_TRUE(document.readFromData("data", u"png"_qs));
    EXPECT_EQ(*document.dataOfType(u"png"_qs), "data");
}

} // namespace

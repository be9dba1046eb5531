#include "CoreTest.h"

#include "foundation/ApplicationPaths.h"
#include "foundation/PrivateFiles.h"
#include "workspace/PlatformConfiguration.h"

#include <QDirIterator>
#include <QTemporaryDir>

#include <sys/stat.h>

/// Who may read what the program writes.
class FileModesTest : public CoreTest
{
protected:
    static mode_t modeOf(const QString &path)
    {
        struct stat status = {};
        lstat(QFile::encodeName(path).constData(), &status);
        return status.st_mode & 07777;
    }
    static void setMode(const QString &path, mode_t mode)
    {
        chmod(QFile::encodeName(path).constData(), mode);
    }
    static void write(const QString &path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        setMode(path, 0644);
    }
    static QStringList folders()
    {
        return {FileManager::appFolderURL(), ApplicationPaths::configFolder() + u"/Morvane"_qs};
    }
    static QStringList readableByOthers()
    {
        QStringList found;
        for (const QString &folder : folders()) {
            QStringList all{folder};
            QDirIterator each(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                              QDirIterator::Subdirectories);
            while (each.hasNext())
                all.append(each.next());
            for (const QString &path : all) {
                if ((modeOf(path) & 077) != 0 && !QFileInfo(path).isSymLink())
                    found.append(path);
            }
        }
        return found;
    }
};

TEST_F(FileModesTest, NothingOfTheProgramIsReadByOtherAccounts)
{
    const mode_t former = umask(022);
    startAnew();
    add(u"secret"_qs);
    EXPECT_FALSE(DBWorker::saveContext());
    PlatformConfiguration().setText(u"productPage"_qs, u"x"_qs);
    UserDefaults::standard().synchronize();
    EXPECT_TRUE(QFile::exists(storePath() + u"-wal"_qs));
    EXPECT_EQ(readableByOthers(), QStringList());
    umask(former);
}

TEST_F(FileModesTest, WhatWasOpenToAllIsNarrowedAtTheNextStart)
{
    quit();
    const QTemporaryDir shared;
    setMode(shared.path(), 0755);
    const QString link = FileManager::appFolderURL() + u"/Linked"_qs;
    EXPECT_TRUE(QFile::link(shared.path(), link));
    const QString inside = FileManager::appFolderURL() + u"/Calendars/here/a.ics"_qs;
    QDir().mkpath(QFileInfo(inside).path());
    for (const QString &path : {inside, shared.path() + u"/b.ics"_qs, storePath() + u".broken-1"_qs})
        write(path);
    setMode(storePath(), 0644);
    for (const QString &folder : folders())
        setMode(folder, 0755);
    launch();
    EXPECT_EQ(readableByOthers(), QStringList());
    EXPECT_EQ(modeOf(shared.path()), 0755U) << "a linked folder is somebody else's";
    EXPECT_EQ(modeOf(shared.path() + u"/b.ics"_qs), 0644U);
    QFile::remove(link);
    QFile::remove(inside);
}

TEST_F(FileModesTest, ADeepFolderIsMadeForTheOwnerAndAnOldOneStays)
{
    const QTemporaryDir home;
    setMode(home.path(), 0755);
    EXPECT_TRUE(PrivateFiles::makeFolder(home.path() + u"/a/b"_qs));
    EXPECT_EQ(modeOf(home.path() + u"/a"_qs), 0700U);
    EXPECT_EQ(modeOf(home.path() + u"/a/b"_qs), 0700U);
    EXPECT_EQ(modeOf(home.path()), 0755U);
    write(home.path() + u"/file"_qs);
    EXPECT_FALSE(PrivateFiles::makeFolder(home.path() + u"/file/c"_qs));
}

#include "Library.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

class BadFiles : public testing::Test
{
protected:
    BadFiles()
    {
        for (int number = 0; number < 400; ++number) {
            const auto book = library.book("A book of some length, so that the file has many pages");
            book->setPages(number);
        }
        library.save();
    }

    /// Copies file and log as a crash would leave them.
    void copyWithLog(const QString &copy)
    {
        write(copy, bytesOf(library.path()));
        write(copy + QStringLiteral("-wal"), bytesOf(library.path() + QStringLiteral("-wal")));
    }

    void expectRefusal(const QString &path, const char *reason)
    {
        const QByteArray before = bytesOf(path);
        const QByteArray logBefore = bytesOf(path + QStringLiteral("-wal"));
        const auto opened = ManagedObjectContext::open(path, libraryModel());
        ASSERT_FALSE(opened) << reason;
        const std::string message = opened.error().message.toStdString();
        EXPECT_TRUE(message.find("Cannot open the store " + path.toStdString() + ": ") == 0) << message;
        EXPECT_NE(message.find(reason), std::string::npos) << message;
        EXPECT_TRUE(bytesOf(path) == before) << reason;
        EXPECT_TRUE(bytesOf(path + QStringLiteral("-wal")) == logBefore) << reason;
    }

    Library library;
};

} // namespace

TEST_F(BadFiles, whatIsNoStoreIsRefusedAndLeftAsItIs)
{
    const QString path = library.file("other");
    write(path, "Dear diary");
    expectRefusal(path, "not a database");
    write(path, QByteArray(8192, 'x'));
    expectRefusal(path, "not a database");
    write(path, "SQLite format 3" + QByteArray(5000, '\0'));
    expectRefusal(path, "not a database");
    QDir().mkdir(library.file("folder"));
    expectRefusal(library.file("folder"), "not a file");
    expectRefusal(library.file("other/below"), "unable to open");
    expectRefusal(library.file("missing/below"), "unable to open");
    EXPECT_FALSE(QFile::exists(library.file("missing")));
}

TEST_F(BadFiles, aFileOfAnotherProgramOrANewerVersionIsRefused)
{
    library.elsewhere("PRAGMA user_version = 4");
    copyWithLog(library.file("crashed"));
    expectRefusal(library.file("crashed"), "newer version");
    library.close();
    expectRefusal(library.path(), "newer version");
    library.elsewhere("PRAGMA user_version = 3; PRAGMA application_id = 77");
    expectRefusal(library.path(), "another program");
    library.elsewhere(
        "PRAGMA user_version = 900; PRAGMA application_id = 0; DROP TABLE Book; DROP TABLE Book_labels;"
        "DROP TABLE Author; DROP TABLE Shelf; DROP TABLE Label; DROP TABLE CatalogLine");
    expectRefusal(library.path(), "another program");
}

TEST_F(BadFiles, aFileCutShortIsRefused)
{
    const QString path = library.file("cut");
    const QString log = path + QStringLiteral("-wal");
    copyWithLog(path);
    auto recovered = ManagedObjectContext::open(path, libraryModel());
    ASSERT_TRUE(recovered) << recovered.error().message.toStdString();
    EXPECT_EQ((*recovered)->count(FetchRequest("Book")), 400) << "a log is what a crash leaves, and no fault";
    recovered->reset();

    const QByteArray whole = bytesOf(path);
    ASSERT_GT(whole.size(), 40000);
    for (const qsizetype size :
         {qsizetype(60), qsizetype(100), qsizetype(4096), qsizetype(20000), whole.size() - 1}) {
        write(path, whole.left(size));
        expectRefusal(path, size < 100 ? "not a database" : "shorter than it should be");
    }
    ASSERT_TRUE(ManagedObjectContext::open(library.path(), libraryModel()));
    library.elsewhere("PRAGMA wal_checkpoint(TRUNCATE)");
    library.book("One more page in the log");
    library.save();
    for (const qsizetype size : {qsizetype(0), qsizetype(60), qsizetype(20000)}) {
        copyWithLog(path);
        ASSERT_GT(QFile(log).size(), 0);
        write(path, bytesOf(path).left(size));
        expectRefusal(path, size == 60 ? "not a database" : "shorter than it should be");
    }
}

TEST_F(BadFiles, anEmptyFileBecomesAStore)
{
    write(library.file("empty"), {});
    auto opened = ManagedObjectContext::open(library.file("empty"), libraryModel());
    ASSERT_TRUE(opened);
    EXPECT_NE((*opened)->storeIdentifier(), library->storeIdentifier());
    EXPECT_EQ((*opened)->storeIdentifier().size(), 36);
}

TEST_F(BadFiles, aFileThatCannotBeWrittenIsRefused)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can become nobody";
    library.close();
    QFile::setPermissions(library.path(), QFile::ReadOwner | QFile::ReadOther);
    ::chmod(library.file("").toUtf8().constData(), 0755);
    const pid_t child = fork();
    if (child == 0) {
        const bool isNobody = setresgid(65534, 65534, 65534) == 0 && setresuid(65534, 65534, 65534) == 0;
        const auto opened = ManagedObjectContext::open(library.path(), libraryModel());
        const bool isRefused = !opened && opened.error().message.contains(QLatin1String("cannot be written"));
        _exit(isNobody && isRefused ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    QFile::setPermissions(library.path(), QFile::ReadOwner | QFile::WriteOwner);
    library.open();
    EXPECT_EQ(library->count(FetchRequest("Book")), 400);
}

TEST_F(BadFiles, garbageInTheMiddleCostsWhatItCoversAndNoMore)
{
    library.close();
    QByteArray bytes = bytesOf(library.path());
    const QString path = library.file("damaged");
    bool hasComplained = false;
    for (qsizetype start = 4096; start + 4096 <= bytes.size(); start += 4096) {
        QByteArray damaged = bytes;
        damaged.replace(start, 4096, QByteArray(4096, '\xA5'));
        write(path, damaged);
        const LogCapture log;
        const auto opened = ManagedObjectContext::open(path, libraryModel());
        if (!opened)
            continue;
        ManagedObjectContext &context = *opened.value();
        const auto books = context.fetch<Book>(FetchRequest("Book").sortedBy({ascending("title")}));
        for (const auto &book : books) {
            if (book)
                book->setPages(book->pages().value_or(0) + 1);
        }
        context.insert<Book>()->addRelated("labels", context.insert<Label>());
        EXPECT_LE(books.size(), 400);
        if (context.save() && context.hasChanges())
            hasComplained = true;
        hasComplained = hasComplained || !log.lines().isEmpty();
        [[maybe_unused]] const OptionalError undone = context.undo();
        QFile::remove(path + QStringLiteral("-wal"));
    }
    EXPECT_TRUE(hasComplained);
}

#include "Library.h"

#include "support/FullDisk.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

// A save that fails keeps everything that was changed; the next one that succeeds saves each thing once.

namespace {

/// Holds the store as another program's transaction does.
class Lock
{
public:
    explicit Lock(const QString &path)
    {
        sqlite3_open(path.toUtf8().constData(), &connection);
        EXPECT_EQ(sqlite3_exec(connection, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    }
    ~Lock() { sqlite3_close(connection); }
    Lock(const Lock &) = delete;
    Lock &operator=(const Lock &) = delete;

private:
    sqlite3 *connection = nullptr;
};

class FailingSaves : public testing::Test
{
protected:
    /// Changes of every sort, of which some are written already when the save fails.
    void changeAll()
    {
        const auto label = library->insert<Label>();
        for (int number = 0; number < 300; ++number) {
            const auto fresh = library.book("New");
            fresh->setPages(number);
            fresh->setLabels({label});
        }
        changed->setTitle(QStringLiteral("Changed"));
    }
    void expectOnce()
    {
        EXPECT_FALSE(library->hasChanges());
        EXPECT_EQ(library.ask(
                      QStringLiteral("SELECT COUNT(*), COUNT(DISTINCT pages) FROM Book WHERE title = 'New'")),
                  QStringList(QStringLiteral("300|300")));
        EXPECT_EQ(library.ask(QStringLiteral("SELECT COUNT(*) FROM Book_labels")),
                  QStringList(QStringLiteral("300")));
        EXPECT_EQ(library.ask(QStringLiteral("SELECT title FROM Book WHERE title <> 'New'")),
                  QStringList(QStringLiteral("Changed")));
        EXPECT_EQ(library.ask(QStringLiteral("SELECT COUNT(*) FROM ObjectStoreJournal")),
                  QStringList(QStringLiteral("2")));
        EXPECT_EQ(library.ask(QStringLiteral("PRAGMA integrity_check")), QStringList(QStringLiteral("ok")));
    }

    FailingSaves()
    {
        library->deleteObject(library.book("Never"));
        library.save();
    }

    Library library;
    std::shared_ptr<Book> changed = library.book("Old");
    std::shared_ptr<Book> deleted = library.book("Deleted");
};

} // namespace

TEST_F(FailingSaves, aStoreThatIsHeldElsewhereIsSavedLater)
{
    library.save();
    Listener listener;
    library->setCommitEffects(&listener);
    listener.will = [](ManagedObjectContext &context, const StoreChanges &) {
        context.insert<CatalogLine>();
        context.post({0, 0, QStringLiteral("shop"), QStringLiteral("Emma"), std::nullopt, "text"});
    };
    {
        const Lock lock(library.path());
        changeAll();
        library->deleteObject(deleted);
        const OptionalError error = library->save();
        ASSERT_TRUE(error);
        EXPECT_EQ(error->message,
                  QStringLiteral("Cannot write to the store %1: database is locked").arg(library.path()));
        EXPECT_TRUE(library->hasChanges());
        const auto opened = ManagedObjectContext::open(library.path(), libraryModel());
        EXPECT_TRUE(opened) << "reading is free while another writes";
    }
    EXPECT_TRUE(listener.heard.empty());
    library.save();
    ASSERT_EQ(listener.heard.size(), 1u);
    EXPECT_EQ(listener.heard.front().inserted.size(), 301u);
    library->setCommitEffects(nullptr);
    expectOnce();
    EXPECT_EQ(library->pendingOutbox().size(), 1u);
    EXPECT_EQ(library->count(FetchRequest("CatalogLine")), 1) << "what the failed commit made is given up";
}

TEST_F(FailingSaves, aStoreThatIsHeldWhileItIsMadeIsRefused)
{
    const Lock lock(library.file("new"));
    const auto opened = ManagedObjectContext::open(library.file("new"), libraryModel());
    ASSERT_FALSE(opened);
    EXPECT_TRUE(opened.error().message.endsWith(QLatin1String("database is locked")))
        << opened.error().message.toStdString();
}

TEST_F(FailingSaves, aFullDiskLosesNothing)
{
    library.save();
    const LogCapture log;
    changeAll();
    const auto list = library->fetch<Book>(FetchRequest("Book").sortedBy({ascending("pages")}));
    library->deleteObject(deleted);
    for (const rlim_t size : {rlim_t(0), rlim_t(30000), rlim_t(60000)}) {
        const FullDisk disk(size);
        const OptionalError error = library->save();
        ASSERT_TRUE(error) << size;
        EXPECT_TRUE(error->message.contains(library.path())) << error->message.toStdString();
        EXPECT_TRUE(library->hasChanges());
        EXPECT_EQ(changed->title(), QStringLiteral("Changed"));
        EXPECT_EQ(library->count(FetchRequest("Book").where(Predicate::format("title = 'Deleted'"))), 0)
            << "what is deleted is in no list, although it still stands in the file";
    }
    library.save();
    expectOnce();
    ASSERT_NE(list.last(), nullptr);
    EXPECT_EQ(list.last()->pages(), 299) << "lists know the rows that were written again";
    EXPECT_FALSE(library->undo());
    EXPECT_NE(library.find("Deleted"), nullptr);
}

#include "Library.h"

#include <gmock/gmock.h>

#include <sqlite3.h>

using testing::ElementsAre;
using testing::IsEmpty;

#include <sys/syscall.h>
#include <unistd.h>

/// How often SQLite waited for the disk.
static int syncs = 0;

int fsync(int file)
{
    ++syncs;
    return static_cast<int>(syscall(SYS_fsync, file));
}

int fdatasync(int file)
{
    ++syncs;
    return static_cast<int>(syscall(SYS_fdatasync, file));
}

namespace {

/// Each commit posts what a test has put here.
class OutboxOfAStore : public testing::Test
{
protected:
    OutboxOfAStore()
    {
        listener.will = [this](ManagedObjectContext &context, const StoreChanges &) {
            for (const OutboxEntry &entry : next)
                context.post(entry);
        };
        listener.did = [this](ManagedObjectContext &, const StoreChanges &) { next.clear(); };
        library->setCommitEffects(&listener);
    }
    ~OutboxOfAStore() override { library->setCommitEffects(nullptr); }

    QStringList pending()
    {
        QStringList texts;
        for (const OutboxEntry &entry : library->pendingOutbox())
            texts.append(QStringLiteral("%1/%2 %3>%4%5")
                             .arg(entry.place, entry.key, QString::fromUtf8(entry.before.value_or("-")),
                                  QString::fromUtf8(entry.after.value_or("-")),
                                  entry.yields ? QStringLiteral(" yields") : QString()));
        return texts;
    }
    void finishAll()
    {
        std::vector<qint64> sequences;
        for (const OutboxEntry &entry : library->pendingOutbox())
            sequences.push_back(entry.sequence);
        EXPECT_FALSE(library->finishOutbox(sequences));
    }

    Library library;
    Listener listener;
    std::vector<OutboxEntry> next;
};

} // namespace

TEST_F(OutboxOfAStore, keepsWhatWasCommittedUntilItWasCarriedOut)
{
    next = {{0, 1, u"work"_qs, u"a"_qs, std::nullopt, "new"}, {0, 1, u"home"_qs, u"b"_qs, "", std::nullopt}};
    library.book("Emma");
    library.save();
    library.close();
    library.open();
    EXPECT_THAT(pending(), ElementsAre(u"work/a ->new"_qs, u"home/b >-"_qs)) << "after a restart, too";
    EXPECT_EQ(library->pendingOutbox().front().group, 1);
    EXPECT_FALSE(library->finishOutbox({library->pendingOutbox().front().sequence}));
    EXPECT_THAT(pending(), ElementsAre(u"home/b >-"_qs));
}

TEST_F(OutboxOfAStore, isTakenBackWithTheStepInReverse)
{
    next = {{0, 1, u"work"_qs, u"a"_qs, "old", "new"}, {0, 2, u"home"_qs, u"a"_qs, "new", std::nullopt}};
    library.book("Emma");
    library.save();
    finishAll();
    ASSERT_FALSE(library->undo());
    EXPECT_THAT(pending(), ElementsAre(u"home/a ->new yields"_qs, u"work/a new>old yields"_qs));
    EXPECT_EQ(library.find("Emma"), nullptr);
    finishAll();
    ASSERT_FALSE(library->redo());
    EXPECT_THAT(pending(), ElementsAre(u"work/a old>new yields"_qs, u"home/a new>- yields"_qs));
}

TEST_F(OutboxOfAStore, whatIsPostedInAnUndoIsWrittenAndWhatWaitsBeforeItIsAStepOfItsOwn)
{
    library.book("Emma");
    library.save();
    next = {{0, 1, u"work"_qs, u"a"_qs, std::nullopt, "new"}};
    ASSERT_FALSE(library->undo());
    EXPECT_THAT(pending(), ElementsAre(u"work/a ->new"_qs));
    finishAll();
    ASSERT_FALSE(library->redo());
    EXPECT_THAT(pending(), IsEmpty());

    next = {{0, 1, u"home"_qs, u"b"_qs, std::nullopt, "new"}};
    listener.isWorkLeft = true;
    listener.did = [this](ManagedObjectContext &, const StoreChanges &) {
        next.clear();
        listener.isWorkLeft = false;
    };
    ASSERT_FALSE(library->undo());
    EXPECT_NE(library.find("Emma"), nullptr);
    EXPECT_THAT(pending(), ElementsAre(u"home/b ->new"_qs, u"home/b new>- yields"_qs));
}

TEST_F(OutboxOfAStore, commitsAreFlushedAlsoAfterItCouldNotBeEmptied)
{
    next = {{0, 1, u"work"_qs, u"a"_qs, std::nullopt, "new"}};
    library.book("Emma");
    library.save();
    finishAll();
    syncs = 0;
    library.book("Persuasion");
    library.save();
    const int usual = syncs;
    EXPECT_GT(usual, 0);

    sqlite3 *other = nullptr;
    ASSERT_EQ(sqlite3_open(library.path().toUtf8().constData(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_TRUE(library->finishOutbox({1})) << "another program holds the store";
    sqlite3_close(other);
    syncs = 0;
    library.book("Lady Susan");
    library.save();
    EXPECT_EQ(syncs, usual);
}

TEST_F(OutboxOfAStore, ofAPassIsCarriedOutButNotUndone)
{
    const auto emma = library.book("Emma");
    library.save();
    {
        Transaction pass(library.context(), ChangeAuthor::Pass);
        emma->setPages(3);
        next = {{0, 1, u"work"_qs, u"a"_qs, "old", "new"}};
        ASSERT_FALSE(pass.commit());
    }
    EXPECT_THAT(pending(), ElementsAre(u"work/a old>new"_qs));
    finishAll();
    ASSERT_FALSE(library->undo());
    EXPECT_THAT(pending(), IsEmpty());
}

TEST_F(OutboxOfAStore, isAStepOfItsOwnWhereNoRowChanges)
{
    next = {{0, 1, u"work"_qs, u"a"_qs, std::nullopt, "new"}};
    EXPECT_FALSE(library->save());
    EXPECT_THAT(pending(), IsEmpty()) << "nobody said that there is work";
    listener.isWorkLeft = true;
    EXPECT_FALSE(library->save());
    listener.isWorkLeft = false;
    EXPECT_THAT(pending(), ElementsAre(u"work/a ->new"_qs));
    finishAll();
    ASSERT_FALSE(library->undo());
    EXPECT_THAT(pending(), ElementsAre(u"work/a new>- yields"_qs));
}

TEST_F(OutboxOfAStore, isAddedToAStoreOfAFormerVersion)
{
    library.book("Emma");
    library.save();
    library.close();
    sqlite3 *raw = nullptr;
    ASSERT_EQ(sqlite3_open(library.path().toUtf8().constData(), &raw), SQLITE_OK);
    const char *former =
        "DROP TABLE ObjectStoreOutbox; ALTER TABLE ObjectStoreJournal DROP COLUMN name;"
        "ALTER TABLE ObjectStoreJournal DROP COLUMN outside; ALTER TABLE ObjectStoreJournal DROP "
        "COLUMN digest; PRAGMA user_version = 0";
    ASSERT_EQ(sqlite3_exec(raw, former, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(raw);
    sqlite3_close(raw);
    library.open();
    ASSERT_TRUE(library->canUndo());
    ASSERT_FALSE(library->undo());
    EXPECT_EQ(library.find("Emma"), nullptr);
    EXPECT_THAT(pending(), IsEmpty());
}

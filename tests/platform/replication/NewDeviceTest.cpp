#include "DeviceOfLibrary.h"

#include "objectstore/ChangeHistory.h"
#include "support/TestSupport.h"

#include <chrono>
#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

// A device begins with a snapshot: one that knows nothing yet takes over whole tables with their indexes, one
// that has rows of its own brings them in row by row. Nobody can tell which it was.

namespace {

using Snapshot = DeviceOfLibrary::Snapshot;

class NewDeviceTest : public testing::Test
{
protected:
    /// As many as are worth taking off the indexes for, with pairs, gaps, edits and what has gone.
    static constexpr int many = 6000;
    /// In the file only, so that it tells whether a row came over as it was.
    static constexpr int rowsFromHere = 1'000'000;

    void fill()
    {
        Library &library = maker.library();
        const auto author = library.author("Jane");
        const auto shelf = library->insert<Shelf>();
        shelf->setName(u"Top"_qs);
        for (int number = 0; number < many; ++number) {
            const auto book = library.book(QByteArray::number(number).constData());
            if (number % 3 == 0)
                book->setAuthor(author);
            if (number % 5 == 0)
                book->setShelf(shelf);
        }
        const auto label = library->insert<Label>();
        label->setName(u"Read"_qs);
        library.find("1")->setLabels({label});
        library.save();
        library.find("2")->setPages(2);
        library->deleteObject(library.find("4"));
        library.save();
        library.find("7")->setTitle(u"Seven"_qs);
        library->deleteObject(author);
        library.save();
    }
    Snapshot taken(const char *name)
    {
        const Snapshot made = maker.snapshot(folder.filePath(QString::fromUtf8(name)));
        change(made, QStringLiteral("UPDATE Book SET rowid = rowid + %1").arg(rowsFromHere).toUtf8());
        return made;
    }
    /// As former versions made it: without keys and indexes.
    Snapshot takenAsFormerly(const char *name)
    {
        const Snapshot made = taken(name);
        for (const QByteArray table : {"Author", "Book", "Shelf", "Label", "Book_labels"})
            change(made, "CREATE TABLE former AS SELECT * FROM " + table + "; DROP TABLE " + table +
                             "; ALTER TABLE former RENAME TO " + table);
        return made;
    }
    static void change(const Snapshot &snapshot, const QByteArray &sql)
    {
        auto database = sqlite::Database::open(snapshot.path, sqlite::Database::Mode::ReadWrite);
        ASSERT_TRUE(database);
        ASSERT_FALSE((*database)->execute(sql));
    }
    static bool cameWhole(DeviceOfLibrary &device)
    {
        return device.library().ask(u"SELECT MAX(rowid) FROM Book"_qs).front().toInt() > rowsFromHere;
    }
    /// The rows, and all that is known of them.
    static QStringList allOf(DeviceOfLibrary &device)
    {
        QStringList all = device.library().dump();
        for (const char *book : {"RowStates", "CellStamps", "Parked"}) {
            sqlite::Statement lines = device.library().context().connection().prepare(
                "SELECT * FROM ObjectStore" + QByteArray(book) + " ORDER BY tbl, id");
            while (lines.step()) {
                QStringList line;
                for (int column = 0; !lines.isNull(column); ++column)
                    line.append(lines.text(column));
                all.append(line.join(u'|'));
            }
        }
        return all;
    }
    static void expectSound(DeviceOfLibrary &device)
    {
        Library fresh;
        const QString indexes = u"SELECT sql FROM sqlite_master WHERE type = 'index' AND tbl_name NOT LIKE "
                                "'ObjectStore%' ORDER BY name"_qs;
        EXPECT_EQ(device.library().ask(indexes), fresh.ask(indexes));
        EXPECT_EQ(device.library().ask(u"PRAGMA foreign_key_check"_qs), QStringList());
        EXPECT_EQ(device.library().ask(u"PRAGMA integrity_check"_qs), QStringList{u"ok"_qs});
    }
    static void give(DeviceOfLibrary &from, const std::vector<DeviceOfLibrary *> &others)
    {
        for (const QByteArray &bytes : from.send()) {
            for (DeviceOfLibrary *other : others)
                other->receive(bytes);
        }
        for (DeviceOfLibrary *other : others)
            other->takeIn();
    }

    QTemporaryDir folder;
    DeviceOfLibrary maker{1};
};

} // namespace

TEST_F(NewDeviceTest, EndsAlikeWhetherTablesComeWholeOrRowByRow)
{
    fill();
    maker.send();
    DeviceOfLibrary whole{2};
    DeviceOfLibrary single{3};
    whole.adopt(taken("now"));
    single.adopt(takenAsFormerly("formerly"));
    EXPECT_TRUE(cameWhole(whole));
    EXPECT_FALSE(cameWhole(single));
    EXPECT_EQ(whole.library().dump(), maker.library().dump());
    EXPECT_EQ(allOf(whole), allOf(single));
    EXPECT_EQ(allOf(whole), allOf(maker));
    for (DeviceOfLibrary *device : {&whole, &single})
        expectSound(*device);
    // The search finds what came, and what comes gets a row of its own.
    EXPECT_EQ(whole.library()->count(
                  FetchRequest("Book").where(Predicate::format("title CONTAINS[cd] %@", u"seve"_qs))),
              1);
    // What one of them edits while another deletes it is merged alike.
    whole.library().find("10")->setTitle(u"Ten"_qs);
    whole.library()->deleteObject(whole.library().find("12"));
    whole.library().book("New");
    whole.library().save();
    maker.library().find("12")->setPages(12);
    maker.library()->deleteObject(maker.library().find("15"));
    maker.library().find("10")->setPages(10);
    maker.library().save();
    give(whole, {&maker, &single});
    give(maker, {&whole, &single});
    EXPECT_EQ(allOf(whole), allOf(single));
    EXPECT_EQ(allOf(whole), allOf(maker));
    EXPECT_NE(whole.library().find("12"), nullptr) << "The deletion did not know of the edit";
    expectSound(whole);
    // The same snapshot once more brings nothing.
    const QStringList before = allOf(whole);
    whole.adopt({folder.filePath(u"now"_qs), {}});
    EXPECT_EQ(allOf(whole), before);
}

TEST_F(NewDeviceTest, KeepsItsUndoAndHistoryToItself)
{
    fill();
    DeviceOfLibrary whole{2};
    whole.library().author("Own");
    whole.library().save();
    whole.adopt(taken("now"));
    ASSERT_TRUE(cameWhole(whole)) << "Of the books nothing was known";
    const auto book = whole.library().find("2");
    EXPECT_TRUE(whole.library()->historyOf(*book).empty());
    book->setPages(222);
    whole.library().save();
    ASSERT_EQ(whole.library()->historyOf(*book).size(), 1u);
    ASSERT_FALSE(whole.library()->undo());
    EXPECT_EQ(book->pages(), 2);
    ASSERT_FALSE(whole.library()->undo());
    EXPECT_EQ(whole.library()->count(FetchRequest("Author")), 0) << "Its own author goes";
    EXPECT_FALSE(whole.library()->canUndo());
    ASSERT_FALSE(whole.library()->redo());
    give(whole, {&maker});
    EXPECT_EQ(maker.library().dump(), whole.library().dump());
    expectSound(whole);
}

TEST_F(NewDeviceTest, WithRowsOfItsOwnKeepsThem)
{
    fill();
    DeviceOfLibrary other{2};
    const auto own = other.library().book("Own");
    other.library().save();
    other.adopt(taken("now"));
    EXPECT_FALSE(cameWhole(other));
    EXPECT_EQ(own->title(), u"Own"_qs);
    give(other, {&maker});
    EXPECT_EQ(maker.library().dump(), other.library().dump());
    EXPECT_EQ(allOf(maker), allOf(other));
    expectSound(other);
}

TEST_F(NewDeviceTest, DoesNotBringBackWhatWasDeletedThough)
{
    maker.library().book("Gone");
    maker.library().save();
    DeviceOfLibrary other{2};
    give(maker, {&other});
    other.library()->deleteObject(other.library().find("Gone"));
    other.library().save();
    ASSERT_EQ(other.library()->count(FetchRequest("Book")), 0) << "The table is empty, but not unknown";
    other.adopt(taken("now"));
    EXPECT_EQ(other.library()->count(FetchRequest("Book")), 0);
    give(other, {&maker});
    EXPECT_EQ(allOf(maker), allOf(other));
}

TEST_F(NewDeviceTest, MakesTheIndexesThatDoNotCome)
{
    fill();
    const Snapshot snapshot = taken("now");
    change(snapshot, "DROP INDEX Book_byTitle; DROP INDEX Book_byAuthor; CREATE INDEX Book_byAuthor ON Book "
                     "(\"author\", \"title\")");
    DeviceOfLibrary whole{2};
    whole.adopt(snapshot);
    EXPECT_TRUE(cameWhole(whole));
    EXPECT_EQ(allOf(whole), allOf(maker));
    expectSound(whole);
    // With columns in another order it is no such table.
    DeviceOfLibrary other{3};
    change(snapshot, "CREATE TABLE turned AS SELECT \"pages\", \"title\", \"id\", \"price\", \"isLent\", "
                     "\"published\", \"author\", \"shelf\" FROM Book; DROP TABLE Book; ALTER TABLE turned "
                     "RENAME TO Book");
    other.adopt(snapshot);
    EXPECT_EQ(allOf(other), allOf(maker));
    expectSound(other);
}

TEST_F(NewDeviceTest, HasAllOrNothingOnAFullDisk)
{
    fill();
    const Snapshot snapshot = taken("now");
    DeviceOfLibrary whole{2};
    whole.library().author("Own");
    whole.library().save();
    const QStringList before = allOf(whole);
    sqlite::Database &database = whole.library().context().connection();
    const qint64 pages = database.queryInteger("PRAGMA page_count");
    for (const int more : {3, 100, 300, 450}) {
        ASSERT_FALSE(database.execute("PRAGMA max_page_count = " + QByteArray::number(pages + more)));
        const QString copy = folder.filePath(u"copy"_qs);
        ASSERT_TRUE(QFile::copy(snapshot.path, copy));
        EXPECT_FALSE(whole.replica().adopt(copy, snapshot.seen)) << more;
        QFile::remove(copy);
        EXPECT_EQ(allOf(whole), before);
        expectSound(whole);
    }
    ASSERT_FALSE(database.execute("PRAGMA max_page_count = 1000000"));
    whole.adopt(snapshot);
    EXPECT_EQ(whole.library()->count(FetchRequest("Book")), many - 1);
    give(whole, {&maker});
    EXPECT_EQ(allOf(whole), allOf(maker));
}

TEST_F(NewDeviceTest, HasAllOrNothingWhenItIsKilled)
{
    fill();
    const Snapshot snapshot = taken("now");
    int complete = 0;
    int empty = 0;
    std::chrono::microseconds pause{2000};
    for (int round = 0; round < 12; ++round) {
        const QString store = folder.filePath(QStringLiteral("store%1").arg(round));
        const QString copy = store + u"-arriving"_qs;
        ASSERT_TRUE(QFile::copy(snapshot.path, copy));
        const auto begun = std::chrono::steady_clock::now();
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            auto context = ManagedObjectContext::open(store, libraryModel());
            auto replica = replication::Replica::open(**context, u"killed"_qs, "killed");
            _exit((*replica)->adopt(copy, snapshot.seen) ? 0 : 1);
        }
        if (round > 0)
            ::usleep(static_cast<useconds_t>(pause.count() * round / 12));
        if (round > 0)
            ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        // The first one is left alone, and tells how long it takes.
        if (round == 0) {
            ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
            pause = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() -
                                                                          begun);
        }
        auto context = ManagedObjectContext::open(store, libraryModel());
        ASSERT_TRUE(context) << context.error().message.toStdString();
        const auto count = [&context] { return (*context)->count(FetchRequest("Book")); };
        ASSERT_TRUE(count() == 0 || count() == many - 1) << count();
        ++(count() == 0 ? empty : complete);
        auto replica = replication::Replica::open(**context, u"killed"_qs, "killed");
        ASSERT_TRUE(replica);
        EXPECT_EQ((*replica)->seen().covers(snapshot.seen), count() > 0);
        QFile::remove(copy);
        ASSERT_TRUE(QFile::copy(snapshot.path, copy));
        ASSERT_TRUE((*replica)->adopt(copy, snapshot.seen));
        EXPECT_EQ(count(), many - 1);
        EXPECT_EQ((*context)->connection().queryInteger("SELECT COUNT(*) FROM pragma_integrity_check WHERE "
                                                        "integrity_check <> 'ok'"),
                  0);
    }
    EXPECT_GT(complete, 0);
    EXPECT_GT(empty, 0);
}

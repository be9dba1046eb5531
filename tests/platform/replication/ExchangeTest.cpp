#include "ExchangeFixture.h"

#include "objectstore/ChangeHistory.h"

// What can happen in the folder between two devices.

TEST_F(ExchangeTest, WhatIsSavedArrivesInBothDirections)
{
    one.library().book("Momo");
    one.library().save();
    one.look();
    ASSERT_TRUE(waitFor([this] { return other.has("Momo"); }));
    other.library().find("Momo")->setTitle(QStringLiteral("Emma"));
    other.library().save();
    other.look();
    ASSERT_TRUE(waitFor([this] { return one.has("Emma"); }));
    // What came in is no step of the user's that can be undone.
    EXPECT_FALSE(one.library()->undo());
    EXPECT_FALSE(one.has("Emma") && one.has("Momo"));
    EXPECT_TRUE(waitFor([this] { return one.exchange().health().unsent == 0; }));
    EXPECT_EQ(one.exchange().health().devices.size(), 2u);
}

TEST_F(ExchangeTest, WhatOtherProgramsWriteIntoTheStoreArrivesToo)
{
    one.save({u"Momo"_qs, u"Emma"_qs, u"Kim"_qs});
    ASSERT_TRUE(waitFor([this] { return other.has("Kim"); }));
    one.stop();
    one.library().open();
    one.library().elsewhere(
        "UPDATE Book SET pages = 7 WHERE title = 'Momo'; UPDATE Book SET pages = 8 WHERE "
        "title = 'Momo'; DELETE FROM Book WHERE title = 'Emma'; INSERT INTO Label (id, name) "
        "VALUES ('l', 'red'); INSERT INTO Book_labels SELECT id, 'l' FROM Book");
    one.start();
    EXPECT_TRUE(waitFor([this] { return !other.has("Emma"); }));
    // While it runs, and over what the other one changes elsewhere in the row.
    other.library().find("Kim")->setPages(3);
    other.library().save();
    one.library().elsewhere("UPDATE Book SET title = 'Kim Two' WHERE title = 'Kim'");
    one.look();
    other.look();
    EXPECT_TRUE(
        waitFor([this] { return other.has("Kim Two") && one.library().dump() == other.library().dump(); }));
    EXPECT_EQ(other.library().find("Kim Two")->pages(), 3);
    EXPECT_EQ(other.library().find("Momo")->pages(), 8);
    EXPECT_EQ(other.library().find("Momo")->labels().size(), 1u);
    // A row that is replaced goes in silence, and then it goes altogether.
    one.library().elsewhere("PRAGMA foreign_keys = ON;"
                            "INSERT OR REPLACE INTO Book SELECT * FROM Book WHERE title = 'Momo'; "
                            "DELETE FROM Book WHERE title = 'Momo'; "
                            "INSERT OR REPLACE INTO Book (id, title) SELECT id, 'Kim Three' FROM Book WHERE "
                            "title = 'Kim Two'");
    one.look();
    EXPECT_TRUE(waitFor([this] { return !other.has("Momo") && other.has("Kim Three"); }));
    EXPECT_TRUE(waitFor([this] { return one.library().dump() == other.library().dump(); }));
    EXPECT_EQ(one.library().ask(u"SELECT COUNT(*) FROM ObjectStoreFormer"_qs), QStringList(u"0"_qs));
}

/// Most tools do not enforce foreign keys.
TEST_F(ExchangeTest, NamesOfRowsThatOtherProgramsTookAwayGoOnAllDevices)
{
    const auto emma = one.library().book("Emma");
    emma->setAuthor(one.library().author("Austen"));
    const auto red = one.library()->insert<Label>();
    emma->setLabels({red});
    const auto shelf = one.library()->insert<Shelf>();
    emma->setShelf(shelf);
    one.library().save();
    one.save({u"Momo"_qs});
    ASSERT_TRUE(waitFor([this] { return other.has("Momo"); }));
    one.library().elsewhere("DELETE FROM Author; DELETE FROM Shelf; DELETE FROM Label;"
                            "INSERT INTO Book (id, title, author) VALUES ('lost', 'Lost', 'nobody');"
                            "INSERT INTO Book_labels (source, target) VALUES ('lost', 'nothing')");
    one.look();
    EXPECT_TRUE(waitFor([this] { return other.has("Lost"); }));
    EXPECT_TRUE(waitFor([this] { return one.library().dump() == other.library().dump(); }));
    for (Device *device : {&one, &other}) {
        EXPECT_EQ(device->library().ask(u"PRAGMA foreign_key_check"_qs), QStringList());
        EXPECT_EQ(device->library().ask(
                      u"SELECT COUNT(*) FROM Book WHERE author IS NOT NULL OR shelf IS NOT NULL"_qs),
                  QStringList(u"0"_qs));
        EXPECT_EQ(device->library().ask(u"SELECT COUNT(*) FROM Book_labels"_qs), QStringList(u"0"_qs));
    }
    other.library().find("Lost")->setPages(9);
    other.library().save();
    one.library().find("Emma")->setPages(8);
    one.library().save();
    one.look();
    other.look();
    EXPECT_TRUE(waitFor([this] { return one.library().dump() == other.library().dump(); }));
    EXPECT_EQ(one.library().find("Lost")->pages(), 9);
}

TEST_F(ExchangeTest, WhatWasSavedWhileTheFolderWasAwayArrivesWhenItIsBack)
{
    one.save({u"Momo"_qs, u"Emma"_qs, u"Kim"_qs});
    ASSERT_TRUE(waitFor([this] { return other.has("Kim"); }));
    // Two runs without it, with a change that is taken back, and one that another program makes.
    for (const int run : {1, 2}) {
        one.stop();
        one.startAlone();
        Library &library = one.library();
        library.find("Kim")->setPages(run);
        library.book(run == 1 ? "New" : "Newer")->setPages(5);
        library.save();
        library.context().deleteObject(library.find("Momo"));
        ASSERT_FALSE(library.context().save());
        if (run == 1)
            ASSERT_FALSE(library.context().undo());
        else
            library.elsewhere("UPDATE Book SET pages = 8 WHERE title = 'Emma'");
    }
    other.library().find("Kim")->setTitle(u"Kim Two"_qs);
    other.library().save();
    one.stop();
    one.start();
    EXPECT_TRUE(waitFor([this] { return other.has("New") && other.has("Newer") && !other.has("Momo"); }));
    other.look();
    EXPECT_TRUE(waitFor([this] { return one.library().dump() == other.library().dump(); }));
    EXPECT_EQ(other.library().find("Kim Two")->pages(), 2);
    EXPECT_EQ(other.library().find("Newer")->pages(), 5);
    EXPECT_EQ(other.library().find("Emma")->pages(), 8);
    EXPECT_EQ(one.library().ask(u"SELECT COUNT(*) FROM ObjectStoreFormer"_qs), QStringList(u"0"_qs));
}

TEST_F(ExchangeTest, FilesThatAreBrokenOrOfOthersAreToldOfAndTriedAgain)
{
    const LogCapture log;
    one.library().book("Momo");
    one.library().save();
    other.stop();
    one.look();
    ASSERT_TRUE(waitFor([this] { return filesOf(one).size() == 1; }));
    const QString file = path(one, filesOf(one).front());
    const QByteArray whole = contents(file);
    for (const QByteArray &bad :
         {whole.left(whole.size() / 2), QByteArray(), QByteArray("MVCHANGE"),
          QByteArray(whole).replace(whole.size() - 3, 1, "x"), QByteArray(5000, 'z')}) {
        write(file, bad);
        other.start();
        EXPECT_TRUE(waitFor([this] { return other.exchange().health().problems.size() == 1; })) << bad.size();
        EXPECT_FALSE(other.has("Momo"));
        other.stop();
    }
    // Under another number it is not that save; what programs of the folder leave behind is not looked at.
    write(file, whole);
    write(path(one, QStringLiteral("changes-0000000007")), whole);
    write(path(one, QStringLiteral("changes-0000000001.sync-conflict-20261121-101500-ABCDEFG")), "x");
    write(path(one, QStringLiteral(".syncthing.changes-0000000002.tmp")), "x");
    write(shared.filePath(QStringLiteral("readme.txt")), "x");
    other.start();
    EXPECT_TRUE(waitFor([this] { return other.has("Momo"); }));
    EXPECT_TRUE(waitFor([this] { return other.exchange().health().problems.size() == 1; }));
    EXPECT_EQ(other.library().ask(QStringLiteral("SELECT COUNT(*) FROM Book")), QStringList(u"1"_qs));
}

TEST_F(ExchangeTest, WhatCannotBeReadKeepsNothingElseAndIsReadAgainWhenItChanges)
{
    const LogCapture log;
    other.stop();
    one.save({u"Momo"_qs, u"Emma"_qs, u"Kim"_qs});
    ASSERT_TRUE(waitFor([this] { return filesOf(one).size() == 3; }));
    const auto damage = [](const QByteArray &whole) { return whole.left(whole.size() - 1) + 'x'; };
    const QString emma = path(one, filesOf(one).at(1));
    const QString kim = path(one, filesOf(one).at(2));
    const QByteArray wholeEmma = contents(emma);
    const QByteArray wholeKim = contents(kim);
    write(emma, damage(wholeEmma));
    write(kim, damage(wholeKim));
    const QDateTime time = QFileInfo(emma).lastModified();
    // Saves of a device that comes before all others, more than are read at once.
    const QString large = shared.filePath(u"0000000000000000"_qs);
    ASSERT_TRUE(QDir().mkpath(large));
    for (const QString &number : {u"1"_qs, u"2"_qs}) {
        QFile file(large + u"/changes-000000000"_qs + number);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(9'000'000));
    }
    other.start();
    EXPECT_TRUE(waitFor([this] { return other.has("Momo"); }));
    EXPECT_TRUE(waitFor([this] { return other.exchange().health().problems.size() == 4; }));
    // As long as a file looks the same, it is not read at each look.
    write(emma, wholeEmma);
    {
        QFile file(emma);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite) &&
                    file.setFileTime(time, QFileDevice::FileModificationTime));
    }
    write(kim, wholeKim);
    other.look();
    EXPECT_TRUE(waitFor([this] { return other.exchange().health().problems.size() == 3; }));
    EXPECT_FALSE(other.has("Emma"));
    const FrozenClock later(Clock::now() + Seconds(7200.0));
    other.look();
    EXPECT_TRUE(waitFor([this] { return other.has("Emma") && other.has("Kim"); }));
    EXPECT_TRUE(waitFor([this] { return other.exchange().health().problems.size() == 2; }));
}

TEST_F(ExchangeTest, ASaveThatCannotBeTakenInStopsItsOwnDeviceOnly)
{
    const LogCapture log;
    other.stop();
    one.save({u"Momo"_qs, u"Emma"_qs, u"Kim"_qs});
    ASSERT_TRUE(waitFor([this] { return filesOf(one).size() == 3; }));
    const QString emma = path(one, filesOf(one).at(1));
    one.stop();
    // Its digest is right, but not what it says.
    auto file = replication::ChangeFile::fromBytes(contents(emma));
    ASSERT_TRUE(file);
    file->changeset = "no changes";
    write(emma, file->toBytes());
    // Those of another device that has not heard of that one, and of which the store refuses one.
    const QTemporaryDir elsewhere;
    Device third(elsewhere.path(), "third");
    third.save({u"First"_qs, u"Twice"_qs, u"Twice"_qs, u"Last"_qs});
    const QString folder = QString::fromUtf8(third.id());
    ASSERT_TRUE(waitFor(
        [&] { return QDir(elsewhere.filePath(folder)).entryList({u"changes-??????????"_qs}).size() == 4; }));
    third.stop();
    ASSERT_TRUE(QDir().rename(elsewhere.filePath(folder), shared.filePath(folder)));
    other.library().open();
    other.library().elsewhere("CREATE UNIQUE INDEX oneOfEach ON Book (title)");
    other.start();
    EXPECT_TRUE(waitFor([this] { return other.has("Momo") && other.has("First") && other.has("Twice"); }));
    EXPECT_TRUE(waitFor([this] { return other.exchange().health().problems.size() == 2; }));
    QStringList bad;
    for (const auto &problem : other.exchange().health().problems)
        bad.append(QFileInfo(problem.path).fileName());
    bad.sort();
    EXPECT_EQ(bad, QStringList({u"changes-0000000002"_qs, u"changes-0000000003"_qs}));
    EXPECT_EQ(other.exchange().health().folderProblem, QString());
    EXPECT_EQ(other.exchange().health().waiting, 2) << "What follows them";
    EXPECT_FALSE(other.has("Kim") || other.has("Last"));
    // A snapshot that holds what the damaged file does not say takes its place.
    ASSERT_TRUE(QDir().rename(shared.filePath(folder), elsewhere.filePath(folder)));
    one.terms.mostFiles = 3;
    one.start();
    EXPECT_TRUE(waitFor([this] { return other.has("Emma") && other.has("Kim"); }));
    EXPECT_TRUE(waitFor([this] { return other.exchange().health().problems.size() == 1; }));
}

TEST_F(ExchangeTest, FilesThatWentAreWrittenAgain)
{
    for (const char *title : {"Momo", "Emma", "Ulysses"}) {
        one.library().book(title);
        one.library().save();
    }
    other.stop();
    one.look();
    ASSERT_TRUE(waitFor([this] { return filesOf(one).size() == 3; }));
    ASSERT_TRUE(QFile::remove(path(one, filesOf(one).at(1))));
    other.start();
    ASSERT_TRUE(waitFor([this] { return other.has("Momo"); }));
    EXPECT_TRUE(waitFor([this] { return other.exchange().health().waiting == 1; }));
    EXPECT_FALSE(other.has("Ulysses")) << "It comes after what its device knew";
    one.stop();
    one.start();
    EXPECT_TRUE(waitFor([this] { return other.has("Ulysses") && other.has("Emma"); }));
}

TEST_F(ExchangeTest, WhatAKillLeftGoesAtTheNextStart)
{
    one.save({u"Momo"_qs});
    other.save({u"Emma"_qs});
    ASSERT_TRUE(waitFor([this] { return one.has("Emma") && other.has("Momo"); }));
    const QStringList own = {leaveBehind(path(one, u"changes-0000000002"_qs)),
                             leaveBehind(path(one, u"snapshot-0000000002"_qs))};
    const QString foreign = leaveBehind(path(other, u"changes-0000000002"_qs));
    const QString unknown = path(one, u"changes-0000000001.sync-conflict-20261121-101500-ABCDEFG"_qs);
    write(unknown, "x");
    one.stop();
    one.start();
    EXPECT_TRUE(waitFor(
        [&] { return std::ranges::none_of(own, [](const QString &left) { return QFile::exists(left); }); }));
    EXPECT_TRUE(waitFor([this] { return one.exchange().isAtRest(); }));
    EXPECT_TRUE(QFile::exists(foreign) && QFile::exists(unknown));
    EXPECT_EQ(filesOf(one).size(), 2);
    EXPECT_TRUE(one.exchange().health().problems.empty() && other.exchange().health().problems.empty());
}

TEST_F(ExchangeTest, FilesThatGoWhileItRunsAreWrittenAgain)
{
    other.stop();
    one.save({u"Momo"_qs, u"Emma"_qs});
    const auto areAllThere = [this](int count) {
        return filesOf(one).size() == count && one.exchange().health().unsent == 0;
    };
    ASSERT_TRUE(waitFor([&] { return areAllThere(2); }));
    // The folder goes, as with the file system that it lies on, and comes back.
    const QString folder = shared.filePath(QString::fromUtf8(one.id()));
    const QTemporaryDir elsewhere;
    ASSERT_TRUE(QDir().rename(folder, elsewhere.filePath(u"former"_qs)));
    one.save({u"Kim"_qs});
    ASSERT_TRUE(waitFor([&] { return areAllThere(3); })) << "All that is missing, not only what is new";
    ASSERT_TRUE(QDir(folder).removeRecursively());
    ASSERT_TRUE(QDir().rename(elsewhere.filePath(u"former"_qs), folder));
    one.look();
    EXPECT_TRUE(waitFor([&] { return areAllThere(3); }));
    // A single one, of many.
    ASSERT_TRUE(QFile::remove(path(one, filesOf(one).at(1))));
    one.look();
    EXPECT_TRUE(waitFor([&] { return areAllThere(3); }));
    other.start();
    EXPECT_TRUE(waitFor([this] { return other.has("Momo") && other.has("Emma") && other.has("Kim"); }));
    EXPECT_TRUE(waitFor([this] { return one.exchange().isAtRest(); })) << "It does not look for ever";
}

TEST_F(ExchangeTest, AFullDiskLosesNothing)
{
    const LogCapture log;
    other.stop();
    {
        // The folder is a file: nothing can be written there.
        ASSERT_TRUE(QDir(shared.path()).removeRecursively());
        write(shared.path(), "x");
        one.library().book("Momo");
        one.library().save();
        one.look();
        EXPECT_TRUE(waitFor([this] { return !one.exchange().health().folderProblem.isEmpty(); }));
        EXPECT_EQ(one.exchange().health().unsent, 1);
        EXPECT_TRUE(one.has("Momo"));
    }
    ASSERT_TRUE(QFile::remove(shared.path()) && QDir().mkpath(shared.path()));
    one.look();
    other.start();
    EXPECT_TRUE(waitFor([this] { return other.has("Momo"); }));
    EXPECT_TRUE(one.exchange().health().folderProblem.isEmpty());
}

TEST_F(ExchangeTest, WhatLosesStaysInTheHistoryOfBoth)
{
    const auto book = one.library().book("Momo");
    one.library().save();
    one.look();
    ASSERT_TRUE(waitFor([this] { return other.has("Momo"); }));
    one.stop();
    other.library().find("Momo")->setTitle(QStringLiteral("Theirs"));
    other.library().save();
    other.stop();
    one.start();
    one.library().find("Momo")->setTitle(QStringLiteral("Mine"));
    one.library().save();
    other.start();
    one.look();
    const auto titleOf = [](Device &device) {
        return device.library().ask(QStringLiteral("SELECT title FROM Book"));
    };
    ASSERT_TRUE(waitFor(
        [&] { return titleOf(one) == titleOf(other) && one.exchange().health().devices.size() == 2; }));
    const QString loser = titleOf(one).front() == u"Mine" ? u"Theirs"_qs : u"Mine"_qs;
    for (Device *device : {&one, &other}) {
        EXPECT_TRUE(waitFor([&] {
            const auto present = device->library()->fetchFirst<Book>(FetchRequest("Book"));
            for (const RecordedSave &save : device->library()->historyOf(*present)) {
                for (const RowChange &row : save.rows) {
                    for (const RowChange::Field &field : row.fields) {
                        if (field.before == Value(loser))
                            return true;
                    }
                }
            }
            return false;
        })) << "It can be put back";
    }
}

/// The store is put back from a copy, and worked in while the folder is not there: under its numbers the
/// others have other saves.
TEST_F(ExchangeTest, AStoreThatWasPutBackAndWorkedInAloneGoesOnAsAnother)
{
    const LogCapture log;
    const auto rename = [](Device &device, const char *from, const char *to) {
        const auto book = device.library().find(from);
        ASSERT_TRUE(book) << from;
        book->setTitle(QString::fromUtf8(to));
        device.library().save();
    };
    const QTemporaryDir elsewhere;
    for (const auto &[isAlone, saves] : {std::pair(true, 1), {true, 5}, {false, 1}, {false, 5}}) {
        SCOPED_TRACE(::testing::Message() << isAlone << ' ' << saves);
        const QString round = u"%1 %2 "_qs.arg(isAlone).arg(saves);
        const auto titled = [&round](const char *title) {
            return (round + QString::fromUtf8(title)).toUtf8();
        };
        one.save({round + u"Momo"_qs, round + u"Emma"_qs});
        ASSERT_TRUE(waitFor([&] { return other.has(titled("Emma")); }));
        one.stop();
        const QString store = one.library().path();
        const QString copy = elsewhere.filePath(round + u"copy"_qs);
        ASSERT_TRUE(QFile::copy(store, copy));
        one.start();
        one.save({round + u"Two"_qs, round + u"Three"_qs});
        ASSERT_TRUE(
            waitFor([&] { return other.has(titled("Three")) && one.exchange().health().unsent == 0; }));
        one.stop();
        for (const char *ending : {"", "-wal", "-shm"})
            QFile::remove(store + QString::fromUtf8(ending));
        ASSERT_TRUE(QFile::copy(copy, store));
        isAlone ? one.startAlone() : one.startIn(elsewhere.filePath(round + u"folder"_qs));
        rename(one, titled("Emma"), titled("Emma anew"));
        for (int save = 1; save < saves; ++save) {
            one.library().book(titled("Alone") + QByteArray::number(save));
            one.library().save();
        }
        if (!isAlone) {
            one.look();
            ASSERT_TRUE(waitFor([&] { return one.exchange().health().unsent == 0; }));
        }
        one.stop();
        one.startIn(shared.path());
        EXPECT_TRUE(waitFor([&] {
            return one.has(titled("Two")) && one.has(titled("Three")) && other.has(titled("Emma anew")) &&
                   (saves == 1 || other.has(titled("Alone") + QByteArray::number(saves - 1)));
        }));
        rename(other, titled("Two"), titled("Two anew"));
        rename(one, titled("Three"), titled("Three anew"));
        one.look();
        other.look();
        EXPECT_TRUE(waitFor([&] { return one.has(titled("Two anew")) && other.has(titled("Three anew")); }));
        EXPECT_EQ(one.library().dump(), other.library().dump());
    }
}

/// A copy of a file under another name is no save, and what was not sent when a device became another is
/// not lost.
TEST_F(ExchangeTest, AFileUnderAnotherNameCutsNobodyOff)
{
    const LogCapture log;
    one.save({u"Momo"_qs, u"Emma"_qs});
    ASSERT_TRUE(waitFor([this] { return other.has("Emma") && filesOf(one).size() == 2; }));
    one.library().find("Emma")->setTitle(u"Emma anew"_qs);
    one.library().save();
    one.library().book("Unsent");
    one.library().save();
    const QString first = path(one, filesOf(one).front());
    one.stop();
    const QString foreign = QString(first).replace(u"0000000001"_qs, u"0000000012"_qs);
    ASSERT_NE(foreign, first);
    ASSERT_TRUE(QFile::copy(first, foreign));
    one.start();
    one.save({u"Two"_qs});
    EXPECT_TRUE(
        waitFor([this] { return other.has("Emma anew") && other.has("Unsent") && other.has("Two"); }));
    QFile::remove(foreign);
    one.save({u"Three"_qs});
    EXPECT_TRUE(waitFor([this] { return other.has("Three"); }));
    EXPECT_EQ(one.library().dump(), other.library().dump());
}

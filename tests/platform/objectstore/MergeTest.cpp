#include "Library.h"

#include "support/FullDisk.h"
#include "support/TestSupport.h"

#include <gmock/gmock.h>

#include <QCoreApplication>

using testing::ElementsAre;

// Another program changes the file between our reading and our saving.

namespace {

class Merge : public testing::Test
{
protected:
    Merge()
    {
        emma->setPages(100);
        emma->setPrice(5);
        emma->setAuthor(austen);
        emma->setLabels({label});
        library.save();
    }

    Library library;
    std::shared_ptr<Author> austen = library.author("Austen");
    std::shared_ptr<Label> label = library->insert<Label>();
    std::shared_ptr<Book> emma = library.book("Emma");
};

} // namespace

TEST_F(Merge, whatWasChangedHereWinsAndAllElseIsTakenOver)
{
    emma->setPages(200);
    library.elsewhere("UPDATE Book SET title = 'Emma, again', pages = 300, price = 6;"
                      "INSERT INTO Book (id, title) VALUES ('lady', 'Lady Susan')");
    library.save();
    EXPECT_EQ(library.ask(QStringLiteral("SELECT title, pages, price FROM Book ORDER BY title")),
              QStringList({QStringLiteral("Emma, again|200|6.0"), QStringLiteral("Lady Susan|NULL|NULL")}));
    EXPECT_EQ(emma->title(), QStringLiteral("Emma, again"));
    EXPECT_EQ(emma->price(), 6);
    EXPECT_EQ(library.find("Lady Susan")->identifier(), QStringLiteral("lady"));
}

TEST_F(Merge, theWholeObjectWinsIfItIsToOverwrite)
{
    library->setMergePolicy(MergePolicy::Overwrite);
    emma->setPages(200);
    library.elsewhere("UPDATE Book SET title = 'Other', price = 6");
    library.save();
    EXPECT_EQ(library.ask(QStringLiteral("SELECT title, pages, price FROM Book")),
              QStringList(QStringLiteral("Emma|200|5.0")));
}

TEST_F(Merge, aRowDeletedElsewhereComesBackWholeIfItWasChanged)
{
    emma->setPages(200);
    library.elsewhere("DELETE FROM Book");
    library.save();
    EXPECT_EQ(
        library.ask(QStringLiteral("SELECT title, pages, price, author = (SELECT id FROM Author) FROM Book")),
        QStringList(QStringLiteral("Emma|200|5.0|1")));
    EXPECT_EQ(library.find("Emma"), emma);

    library.elsewhere("DELETE FROM Book");
    EXPECT_EQ(library->count(FetchRequest("Book")), 0);
    EXPECT_TRUE(emma->title().isNull()) << "unchanged, it is gone";
    emma->setPages(300);
    EXPECT_FALSE(library->hasChanges()) << "and is not made again out of one value";
    EXPECT_EQ(library->objectForUri(emma->uri()), nullptr);
}

TEST_F(Merge, aNameOfWhatWasDeletedElsewhereBecomesEmpty)
{
    const auto lady = library.book("Lady Susan");
    lady->setAuthor(austen);
    lady->setLabels({label});
    emma->setPages(1);
    library.elsewhere("DELETE FROM Author; DELETE FROM Label");
    library.save();
    EXPECT_FALSE(library->hasChanges());
    EXPECT_EQ(lady->author(), nullptr);
    EXPECT_TRUE(lady->labels().empty());
    EXPECT_EQ(library.ask(QStringLiteral("SELECT title FROM Book WHERE author IS NULL AND title LIKE 'L%'")),
              QStringList(QStringLiteral("Lady Susan")));
}

TEST_F(Merge, aRowNumberUsedAgainElsewhereIsAnotherObject)
{
    library.elsewhere("DELETE FROM Book; INSERT INTO Book (id, title) VALUES ('p', 'Persuasion')");
    const auto books = library->fetch<Book>(FetchRequest("Book"));
    ASSERT_EQ(titles(books), QStringList(QStringLiteral("Persuasion")));
    EXPECT_NE(books.at(0), emma);
    library->deleteObject(emma);
    library.save();
    EXPECT_EQ(library.ask(QStringLiteral("SELECT id FROM Book")), QStringList(QStringLiteral("p")));
}

TEST_F(Merge, listsSurviveACompactionElsewhere)
{
    for (const char *title : {"A", "B", "C"})
        library.book(title);
    library.save();
    library->deleteObject(library.find("A"));
    library.save();
    const auto books = library->fetch<Book>(FetchRequest("Book").sortedBy({ascending("title")}));
    library.elsewhere("VACUUM");
    EXPECT_EQ(titles(books), QStringList({QStringLiteral("B"), QStringLiteral("C"), QStringLiteral("Emma")}));
    EXPECT_EQ(library.find("Emma"), emma);
    emma->setPages(7);
    library.book("D");
    library.save();
    EXPECT_EQ(library.ask(QStringLiteral("SELECT title FROM Book WHERE pages = 7")),
              QStringList(QStringLiteral("Emma")));
}

// What another program wrote is told.

namespace {

class Elsewhere : public testing::Test
{
protected:
    Elsewhere()
    {
        library.save();
        library->setCommitEffects(&listener);
        while (library->takeInRowsFromElsewhere(100)) {
        }
        listener.heard.clear();
    }
    ~Elsewhere() override { library->setCommitEffects(nullptr); }

    static QStringList identifiers(const std::vector<ObjectPtr> &objects)
    {
        QStringList all;
        for (const ObjectPtr &object : objects)
            all.append(object->identifier());
        return all;
    }
    static QStringList updated(const StoreChanges &changes)
    {
        std::vector<ObjectPtr> objects;
        for (const StoreChanges::Update &one : changes.updated)
            objects.push_back(one.object);
        QStringList all = identifiers(objects);
        all.sort();
        return all;
    }
    void comeRound() const { QCoreApplication::processEvents(); }

    Library library;
    Listener listener;
    std::shared_ptr<Label> label = library->insert<Label>();
    std::shared_ptr<Book> emma = library.book("Emma");
};

} // namespace

TEST_F(Elsewhere, aWriteOfAnotherProcessIsToldOnceWhoeverFindsIt)
{
    const std::function<void()> finders[] = {
        [this] { library->lookForChangesFromElsewhere(); },
        [this] { library->count(FetchRequest("Book")); },
        [this] {
            emma->setPages(emma->pages().value_or(0) + 1);
            library.save();
        },
    };
    for (const auto &find : finders) {
        listener.heard.clear();
        library.elsewhere("UPDATE Book SET price = coalesce(price, 0) + 1");
        find();
        std::erase_if(listener.heard, [](const StoreChanges &one) { return !one.isUnknown; });
        EXPECT_THAT(listener.heard, testing::IsEmpty()) << "nobody is told while the store is at work";
        find();
        comeRound();
        comeRound();
        const auto unknown = std::ranges::count_if(listener.heard, &StoreChanges::isUnknown);
        EXPECT_EQ(unknown, 1);
    }
    listener.heard.clear();
    emma->setPages(1000);
    library.save();
    library->lookForChangesFromElsewhere();
    comeRound();
    ASSERT_EQ(listener.heard.size(), 1u);
    EXPECT_FALSE(listener.heard[0].isUnknown) << "our own commits are nobody else's";
}

TEST_F(Elsewhere, rowsWithOtherTextsOrLinksAreTakenInByACommitOfTheirOwn)
{
    const RowId row = emma->rowId();
    library.elsewhere("INSERT INTO Book (id, title) VALUES ('lady', 'Lady Susan');"
                      "INSERT INTO Book (id, title) VALUES ('p', 'Persuasion');"
                      "INSERT INTO Book_labels SELECT 'p', id FROM Label;"
                      "INSERT INTO Author (id, name) VALUES ('a', 'Austen')");
    ASSERT_FALSE(library->takeInRowsFromElsewhere(100));
    ASSERT_EQ(listener.heard.size(), 1u);
    EXPECT_EQ(listener.heard[0].author, ChangeAuthor::Replication);
    EXPECT_EQ(updated(listener.heard[0]), QStringList({u"lady"_qs, u"p"_qs}));
    EXPECT_THAT(listener.heard[0].inserted, testing::IsEmpty());

    library.elsewhere("UPDATE Book SET pages = 5; DELETE FROM Book WHERE title = 'Emma'");
    ASSERT_FALSE(library->takeInRowsFromElsewhere(100));
    ASSERT_EQ(listener.heard.size(), 2u);
    EXPECT_THAT(listener.heard[1].updated, testing::IsEmpty()) << "a number is no text";
    ASSERT_EQ(listener.heard[1].deleted.size(), 1u);
    EXPECT_EQ(listener.heard[1].deleted[0], emma);
    EXPECT_EQ(listener.heard[1].deleted[0]->rowId(), row);
    EXPECT_FALSE(library->takeInRowsFromElsewhere(100));
    EXPECT_EQ(listener.heard.size(), 2u);
    library->undo().ignore();
    EXPECT_EQ(library.ask(u"SELECT COUNT(*) FROM Book WHERE id IN ('lady', 'p')"_qs), QStringList(u"2"_qs))
        << "it is no step of the user";
}

TEST_F(Elsewhere, ownWritesAreNotTakenInAgainAndStrangersWordsAreKeptUntilThereIsTime)
{
    emma->setTitle(u"Emma II"_qs);
    library.book("Persuasion");
    library.save();
    ASSERT_FALSE(library->undo());
    ASSERT_FALSE(library->redo());
    listener.heard.clear();
    EXPECT_FALSE(library->takeInRowsFromElsewhere(100));
    EXPECT_THAT(listener.heard, testing::IsEmpty());

    library.elsewhere("INSERT OR ABORT INTO Book (id, title) VALUES ('1', 'a'), ('2', 'b'), ('3', 'c');"
                      "UPDATE OR FAIL Book SET title = 'd' WHERE id = '3'");
    emma->setTitle(u"Emma III"_qs);
    EXPECT_FALSE(library->takeInRowsFromElsewhere(100)) << "the user is at work";
    library.save();
    library.close();
    library.open();
    listener.heard.clear();
    library->setCommitEffects(&listener);
    EXPECT_TRUE(library->takeInRowsFromElsewhere(2));
    EXPECT_FALSE(library->takeInRowsFromElsewhere(2));
    QStringList all;
    for (const StoreChanges &changes : listener.heard)
        all += updated(changes);
    EXPECT_EQ(all, QStringList({u"1"_qs, u"2"_qs, u"3"_qs}));
}

TEST_F(Elsewhere, aTakingInThatFailsIsDoneAgain)
{
    library.elsewhere("INSERT INTO Book (id, title) VALUES ('1', 'a')");
    listener.will = [](ManagedObjectContext &context, const StoreChanges &) {
        context.insert<CatalogLine>()->setWords(u"line"_qs);
    };
    {
        const FullDisk disk;
        const LogCapture log;
        EXPECT_FALSE(library->takeInRowsFromElsewhere(100));
        EXPECT_EQ(log.lines().size(), 1);
    }
    EXPECT_THAT(listener.heard, testing::IsEmpty());
    EXPECT_FALSE(library->takeInRowsFromElsewhere(100));
    EXPECT_EQ(listener.heard.size(), 1u);
    EXPECT_EQ(library.ask(u"SELECT words FROM CatalogLine"_qs), QStringList(u"line"_qs));
}

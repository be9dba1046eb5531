#include "Library.h"

#include <gmock/gmock.h>

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

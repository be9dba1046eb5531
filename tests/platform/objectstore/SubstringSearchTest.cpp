#include "Library.h"

#include "foundation/TextFolding.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <random>

namespace {

/// Texts of several scripts, with letters that fold into others, in front of a store that searches them.
class SubstringSearch : public testing::Test
{
protected:
    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); }

    QString text(int parts)
    {
        static const QStringList words = {u"Café"_qs,
                                          u"cafe\u0301"_qs,
                                          u"CAFE"_qs,
                                          u"Straße"_qs,
                                          u"STRASSE"_qs,
                                          u"Łódź"_qs,
                                          u"lodz"_qs,
                                          u"İstanbul"_qs,
                                          u"ıspanak"_qs,
                                          u"Ελλάς"_qs,
                                          u"ελλας"_qs,
                                          u"Москва"_qs,
                                          u"ёлка"_qs,
                                          u"елка"_qs,
                                          u"日本語"_qs,
                                          u"ガラス"_qs,
                                          u"カラス"_qs,
                                          u"한국어"_qs,
                                          u"שָׁלוֹם"_qs,
                                          u"مَرْحَبًا"_qs,
                                          u"ﬁnal"_qs,
                                          u"final"_qs,
                                          u"\U0001F600\U0001F601"_qs,
                                          u"a\"b"_qs,
                                          u"x' OR"_qs,
                                          u"NEAR( AND"_qs,
                                          u"%_"_qs,
                                          u"\u200Frtl\u200E"_qs,
                                          u" "_qs,
                                          u"  "_qs,
                                          u"-"_qs,
                                          QString(QChar(0xD83D)),
                                          QString(QChar::Null),
                                          u"\uFFFD"_qs,
                                          u"１２３"_qs,
                                          u"123"_qs,
                                          u"ab"_qs,
                                          u"abc"_qs};
        QString joined;
        for (int count = 0; count < parts; ++count)
            joined += words.at(below(int(words.size())));
        return joined;
    }
    /// A piece of a text, so that most searches find something.
    QString piece()
    {
        const QString whole = text(1 + below(3));
        const int start = below(int(whole.size()));
        return below(4) == 0 ? text(1) : whole.mid(start, 1 + below(8));
    }

    QStringList found(const QString &part)
    {
        QStringList result = titles(library->fetch<Book>(
            FetchRequest("Book").where(Predicate::format("title CONTAINS[cd] %@", part))));
        result.sort();
        return result;
    }
    QStringList scanned(const QString &part)
    {
        QStringList result;
        const Predicate predicate = Predicate::format("title CONTAINS[cd] %@", part);
        for (const auto &book : library->fetch<Book>(FetchRequest("Book"))) {
            if (predicate.evaluate(*book))
                result.append(book->title());
        }
        result.sort();
        return result;
    }
    /// Whether the search leans on the index for all rows.
    bool isUpToDate() const
    {
        return library.ask(u"SELECT COUNT(*) FROM Book_title_waiting"_qs).first() == u"0";
    }
    void tend()
    {
        while (library->tendSubstringIndexes()) {
        }
    }

    std::mt19937 random;
    Library library;
};

TEST_F(SubstringSearch, FindsWhatAScanFindsInGeneratedRows)
{
    random.seed(testSeed());
    std::vector<std::shared_ptr<Book>> books;
    for (int round = 0; round < 40; ++round) {
        for (int count = 0; count < 20; ++count) {
            books.push_back(library->insert<Book>());
            books.back()->setTitle(text(1 + below(6)));
        }
        for (int count = 0; count < 8; ++count) {
            const auto place = static_cast<size_t>(below(int(books.size())));
            if (below(2) == 0) {
                books[place]->setTitle(text(below(4)));
            } else {
                // The numbers of the last rows are given out again.
                library->deleteObject(below(2) == 0 ? books[place] : books.back());
                books.erase(below(2) == 0 ? books.begin() + std::ptrdiff_t(place) : books.end() - 1);
            }
        }
        if (below(2) == 0)
            library.save();
        if (below(5) == 0 && library->canUndo()) {
            EXPECT_FALSE(library->undo());
        }
        if (below(5) == 0)
            tend();
        for (int count = 0; count < 12; ++count) {
            const QString part = piece();
            ASSERT_EQ(found(part), scanned(part)) << part.toStdString();
        }
    }
}

TEST_F(SubstringSearch, KnowsWhatOtherProgramsWrote)
{
    library.book("Ann's Café");
    library.save();
    EXPECT_FALSE(isUpToDate());
    tend();
    EXPECT_TRUE(isUpToDate());
    library.elsewhere("INSERT INTO Book (id, title) VALUES ('stranger', 'Blue CAFÉ in Łódź');"
                      "UPDATE Book SET title = 'Tea house' WHERE title LIKE 'Ann%'");
    EXPECT_FALSE(isUpToDate());
    EXPECT_EQ(found(u"cafe"_qs), QStringList(u"Blue CAFÉ in Łódź"_qs));
    EXPECT_EQ(found(u"HOUSE"_qs), QStringList(u"Tea house"_qs));
    tend();
    EXPECT_TRUE(isUpToDate());
    EXPECT_EQ(found(u"in lodz"_qs), QStringList(u"Blue CAFÉ in Łódź"_qs));
    library.elsewhere("DELETE FROM Book");
    EXPECT_TRUE(found(u"cafe"_qs).isEmpty());
}

TEST_F(SubstringSearch, StartsAnewWhenRowsWereRenumberedOrFoldedOtherwise)
{
    for (const char *title : {"first", "second", "third"})
        library.book(title);
    library.save();
    library->deleteObject(library.find("first"));
    library.save();
    library.close();
    library.elsewhere("VACUUM");
    library.open();
    EXPECT_EQ(found(u"second"_qs), QStringList(u"second"_qs));
    EXPECT_EQ(found(u"third"_qs), QStringList(u"third"_qs));
    tend();
    EXPECT_EQ(found(u"third"_qs), QStringList(u"third"_qs));
    library.close();
    library.elsewhere("UPDATE ObjectStoreMetadata SET value = 'former' WHERE key = 'substringIndexes';"
                      "INSERT INTO Book_title_trigrams(Book_title_trigrams) VALUES ('delete-all')");
    library.open();
    EXPECT_EQ(found(u"third"_qs), QStringList(u"third"_qs));
}

TEST_F(SubstringSearch, BearsTextsWithoutMeasure)
{
    const QString huge = QString(500000, u'é') + u"needle"_qs + QString(500000, u'A');
    const auto book = library->insert<Book>();
    book->setTitle(huge);
    library.save();
    EXPECT_EQ(found(u"ENEEDLEA"_qs), QStringList(huge));
    EXPECT_EQ(found(huge), QStringList(huge));
    EXPECT_TRUE(found(huge + u"b"_qs).isEmpty());
}

} // namespace

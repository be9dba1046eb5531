#include "Library.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

std::vector<PredicateArgument> numbers(int count)
{
    return std::vector<PredicateArgument>(static_cast<size_t>(count), PredicateArgument(1));
}

std::optional<QString> refusal(const char *text, int arguments = 0)
{
    QString problem;
    const auto parsed = Predicate::tryParse(text, numbers(arguments), &problem);
    EXPECT_EQ(parsed.has_value(), problem.isEmpty()) << text;
    return parsed ? parsed->problemFor(libraryModel(), libraryModel().requireEntity("Book"))
                  : std::optional(problem);
}

class Predicates : public testing::Test
{
protected:
    /// Whether a book passes, by SQL and in memory.
    template <typename... Arguments>
    bool passes(const std::shared_ptr<Book> &object, const char *text, const Arguments &...arguments)
    {
        const Predicate predicate = Predicate::format(text, arguments...);
        const bool isFound = library->fetch<Book>(FetchRequest("Book").where(predicate)).contains(*object);
        EXPECT_EQ(isFound, predicate.evaluate(*object)) << text;
        return isFound;
    }

    Library library;
    std::shared_ptr<Book> book = library.book("Émile and the Detectives");
};

} // namespace

TEST_F(Predicates, allSpellingsAreUnderstood)
{
    for (const char *text : {"title = nil",
                             "title ==  nil",
                             "title<>NULL",
                             "pages!=-1",
                             "pages =< 1 && pages => 1 || pages<1",
                             "price > 1.5 AND (pages>=1 Or not isLent == TRUE)",
                             "!(isLent = no)",
                             "title beginswith [cd] 'a b'",
                             "title CONTAINS[cd] \"it's\"",
                             "title endsWith title",
                             "any labels.name = 'x'",
                             "ANY labels != nil",
                             "labels.@count > 2",
                             "author.name = author.name",
                             "author.books.labels.name = nil",
                             "'x' = title",
                             "author.books == nil",
                             "title ==[cd] 'x'",
                             "((((pages = 1))))",
                             "price = 0.5 and yes = isLent"})
        EXPECT_EQ(refusal(text), std::nullopt) << text;
    EXPECT_EQ(refusal("pages = %d and price = %i and isLent == %@", 3), std::nullopt);
}

TEST_F(Predicates, wrongOnesAreRefusedWithAReason)
{
    for (const char *text : {"",
                             "pages",
                             "pages =",
                             "= 1",
                             "pages = 1 pages = 2",
                             "(pages = 1",
                             "pages = 1)",
                             "pages = 1 and",
                             "pages === 1",
                             "title = 'x",
                             "pages = 1 &",
                             "title beginswith[c] 'x'",
                             "title contains[cd",
                             "pages = -",
                             "pages = 1.2.3",
                             "pages = 1-2",
                             "pages = - 1",
                             "pages = 99999999999999999999",
                             "title in[cd] 'x'",
                             "pages = %d",
                             "pages = %",
                             "pages = %x",
                             "pages ? 1",
                             "title = \xc3\xa9"})
        EXPECT_TRUE(refusal(text).value_or(QString()).contains(u' ')) << text;
    EXPECT_NE(refusal("pages = %d", 2), std::nullopt);
    for (const char *text : {"publisher = nil", "title.name = 1", "author = 5", "title < 5",
                             "pages contains 'x'", "labels > 'x'", "title in 'x'", "labels.@count = 'x'",
                             "pages.@count = 1", "author.@count = 1", "published = 5", "title = labels",
                             "author.publisher = nil", "labels = 5", "pages ==[cd] 5", "labels contains 'x'"})
        EXPECT_NE(refusal(text), std::nullopt) << text;
    const std::vector<Value> texts = {Value(QStringLiteral("1"))};
    EXPECT_TRUE(Predicate::format("pages in %@", texts)
                    .problemFor(libraryModel(), libraryModel().requireEntity("Book")));
}

TEST_F(Predicates, andBindsTighterThanOrAndNotTighterThanBoth)
{
    book->setPages(1);
    EXPECT_TRUE(passes(book, "pages = 1 or pages = 2 and pages = 3"));
    EXPECT_FALSE(passes(book, "(pages = 1 or pages = 2) and pages = 3"));
    EXPECT_TRUE(passes(book, "pages = 3 && pages = 2 || pages = 1"));
    EXPECT_FALSE(passes(book, "not pages = 1 or pages = 2"));
    EXPECT_TRUE(passes(book, "not (pages = 2) and !pages = 3"));
    std::vector<Predicate> many(3000, Predicate::format("pages = 2"));
    many.push_back(Predicate::format("pages = 1"));
    const Predicate any = Predicate::anyOf(many);
    EXPECT_EQ(library->count(FetchRequest("Book").where(any)), 1) << "deeper than SQLite's own trees may be";
    EXPECT_EQ(library->count(FetchRequest("Book").where(Predicate::anyOf({}))), 0);
    EXPECT_TRUE(Predicate::allOf({}).isAlwaysTrue());
}

TEST_F(Predicates, anAbsentValueIsUnequalToAllAndBeyondAllOrder)
{
    EXPECT_FALSE(passes(book, "isLent = %@", false));
    EXPECT_FALSE(passes(book, "isLent = 0"));
    EXPECT_TRUE(passes(book, "isLent != true"));
    EXPECT_TRUE(passes(book, "isLent <> 0"));
    EXPECT_TRUE(passes(book, "isLent == nil and isLent = %@", nullptr));
    EXPECT_FALSE(passes(book, "pages < 5 or pages >= 0 or pages <= 5 or pages > 0"));
    EXPECT_FALSE(passes(book, "published <= %@", OptionalDate()));
    EXPECT_TRUE(passes(book, "not pages < 5"));
    EXPECT_TRUE(passes(book, "author.name == nil"));
    EXPECT_TRUE(passes(book, "author.name != 'x'"));
    EXPECT_TRUE(passes(book, "price = %@", std::nan("")));
    EXPECT_FALSE(passes(book, "author.name beginswith ''"));
    book->setIsLent(false);
    EXPECT_TRUE(passes(book, "isLent = 0 and isLent != nil and isLent < 1"));
}

TEST_F(Predicates, textsAreSearchedAsTheyAreOrFolded)
{
    EXPECT_TRUE(passes(book, "title beginswith [cd] %@", QStringLiteral("EMI")));
    EXPECT_FALSE(passes(book, "title beginswith %@", QStringLiteral("emi")));
    EXPECT_TRUE(passes(book, "title contains[cd] 'DÉTEC' and title endswith 'tives'"));
    EXPECT_TRUE(passes(book, "title ==[cd] 'emile AND the detectives'"));
    EXPECT_TRUE(passes(book, "title >[cd] 'EMILD' and title < 'émile'"));
    EXPECT_TRUE(passes(book, "title contains '' and title contains[cd] ''"));
    book->setTitle(QStringLiteral(""));
    EXPECT_TRUE(
        passes(book, "title == '' and title != nil and title beginswith '' and title endswith[cd] ''"));
    book->setTitle(QString(QChar::Null) + QStringLiteral("b\U0001F600"));
    EXPECT_TRUE(passes(book, "title contains 'b' and title endswith %@", QStringLiteral("\U0001F600")));
}

TEST_F(Predicates, relationshipsAreAskedForObjectsEmptinessAndCount)
{
    const auto label = library->insert<Label>();
    const auto other = library->insert<Label>();
    const auto author = library.author("Kästner");
    EXPECT_TRUE(
        passes(book, "any labels = nil and author = nil and author.books = nil and labels.@count = 0"));
    EXPECT_FALSE(passes(book, "labels.name = nil")) << "there is none that could lack a name";
    book->setLabels({label});
    book->setAuthor(author);
    EXPECT_TRUE(passes(book, "any labels = %@ and author == %@", label, author));
    EXPECT_FALSE(passes(book, "any labels != %@", label));
    EXPECT_TRUE(passes(book, "any labels in %@", std::vector<std::shared_ptr<Label>>{other, label, nullptr}));
    EXPECT_FALSE(passes(book, "any labels in %@", std::vector<std::shared_ptr<Label>>{}));
    EXPECT_TRUE(passes(book, "labels.name = nil and labels != nil"));
    EXPECT_TRUE(passes(book, "author.books = %@ and author.books.labels != nil", book));
    EXPECT_TRUE(passes(book, "author.books.author.name = author.name and labels.@count >= 1"));
    library->deleteObject(label);
    EXPECT_TRUE(passes(book, "labels = nil"));
}

TEST_F(Predicates, numbersAreComparedExactly)
{
    const qint64 large = (qint64(1) << 53) + 1;
    book->setValueForKey("pages", Value(large));
    EXPECT_TRUE(passes(book, "pages = %@", large));
    EXPECT_FALSE(passes(book, "pages = %@", double(large)));
    EXPECT_TRUE(passes(book, "pages > %@", 9007199254740992.0));
    book->setValueForKey("pages", Value(std::numeric_limits<qint64>::max()));
    EXPECT_TRUE(passes(book, "pages < %@", 9223372036854775808.0));
    book->setValueForKey("pages", Value(std::numeric_limits<qint64>::min()));
    EXPECT_TRUE(passes(book, "pages = %@", std::numeric_limits<qint64>::min()));
    EXPECT_TRUE(passes(book, "pages >= %@", -std::numeric_limits<double>::infinity()));
}

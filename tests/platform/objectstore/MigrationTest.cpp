#include "Library.h"

#include "support/TestSupport.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

/// The library as an older program knew it: books with nothing but a title.
class OldBook : public ManagedObject
{};

const ManagedObjectModel &oldModel()
{
    static const ManagedObjectModel model(2,
                                          {EntityDescription("Book", {{"title", AttributeType::String}}, {},
                                                             [] { return std::make_shared<OldBook>(); })});
    return model;
}

class Migration : public testing::Test
{
protected:
    /// A file made by SQL alone takes the place of the library's.
    void makeByHand(const char *sql)
    {
        library.close();
        for (const char *ending : {"", "-wal", "-shm"})
            QFile::remove(library.path() + QString::fromUtf8(ending));
        library.elsewhere(sql);
    }
    QString answer(const char *question) { return library.ask(QString::fromUtf8(question)).join(u' '); }

    Library library;
};

} // namespace

TEST_F(Migration, addsWhatAnOlderModelLeftOut)
{
    makeByHand("");
    library.open(oldModel());
    library->insertObject("Book")->setValueForKey("title", Value(QStringLiteral("Emma")));
    library.save();
    const QString identifier = library->storeIdentifier();
    library.reopen();
    EXPECT_EQ(library->storeIdentifier(), identifier);
    const auto emma = library.find("Emma");
    ASSERT_NE(emma, nullptr);
    EXPECT_EQ(emma->pages(), std::nullopt);
    emma->setPages(5);
    emma->setAuthor(library.author("Austen"));
    emma->setLabels({library->insert<Label>()});
    library.save();
    EXPECT_EQ(answer("PRAGMA user_version"), QStringLiteral("3"));
    EXPECT_EQ(answer("SELECT name FROM sqlite_master WHERE name = 'Book_byTitle'"),
              QStringLiteral("Book_byTitle"));
    EXPECT_FALSE(library->undo());
    EXPECT_FALSE(library->undo());
    EXPECT_EQ(library.find("Emma"), nullptr) << "also what the older program saved can be undone";

    library.close();
    EXPECT_FALSE(ManagedObjectContext::open(library.path(), oldModel())) << "the older program keeps away";
}

TEST_F(Migration, makesAnIndexAnewThatIsDefinedOtherwiseNowAndKeepsOthers)
{
    makeByHand("");
    library.open(oldModel());
    library.close();
    library.elsewhere("CREATE INDEX Book_byTitle ON Book (title COLLATE NOCASE, id);"
                      "CREATE INDEX handmade ON Book (title DESC)");
    library.reopen();
    EXPECT_EQ(answer("SELECT name FROM pragma_index_info('Book_byTitle')"), QStringLiteral("title"));
    EXPECT_EQ(answer("SELECT COUNT(*) FROM sqlite_master WHERE name = 'handmade'"), QStringLiteral("1"));
}

TEST_F(Migration, changesNothingUnlessAllOfItSucceeds)
{
    makeByHand("CREATE TABLE Book (id TEXT PRIMARY KEY, title TEXT); INSERT INTO Book VALUES ('1', 'Emma');"
               "CREATE TABLE Book_byAuthor (x)");
    const auto opened = ManagedObjectContext::open(library.path(), libraryModel());
    ASSERT_FALSE(opened);
    EXPECT_TRUE(opened.error().message.contains(QLatin1String("Book_byAuthor")));
    EXPECT_EQ(answer("SELECT group_concat(name, ' ') FROM pragma_table_info('Book')"),
              QStringLiteral("id title"));
    EXPECT_EQ(answer("SELECT COUNT(*) FROM sqlite_master WHERE name = 'Author'"), QStringLiteral("0"));
    EXPECT_EQ(answer("PRAGMA user_version"), QStringLiteral("0"));
}

TEST_F(Migration, aStoreMadeByHandIsOneLikeAnyOther)
{
    makeByHand("CREATE TABLE Label (id TEXT PRIMARY KEY, name TEXT);"
               "CREATE TABLE Book (Title TEXT, pages, id TEXT PRIMARY KEY, author TEXT);"
               "CREATE TABLE Book_labels (source TEXT, target TEXT);"
               "INSERT INTO Label VALUES ('L', 'blue');"
               "INSERT INTO Book VALUES ('Emma', 'many', 'B', 'nobody'), (x'00ff', 3.7, 'C', NULL), (5, "
               "x'01', 'D', NULL);"
               "INSERT INTO Book_labels VALUES ('B', 'L'), ('B', 'L'), ('B', 'nothing')");
    library.open();
    const auto emma = library.find("Emma");
    ASSERT_NE(emma, nullptr);
    EXPECT_EQ(emma->pages(), std::nullopt) << "a text is no number";
    EXPECT_EQ(emma->author(), nullptr);
    EXPECT_EQ(emma->labels().size(), 1u);
    const auto second = std::static_pointer_cast<Book>(library->object("Book", QStringLiteral("C")));
    EXPECT_TRUE(second->title().isNull()) << "bytes are no text";
    EXPECT_EQ(second->pages(), 3);
    const QStringList before = library.dump();

    emma->setPages(4);
    emma->setTitle(QStringLiteral("Emma II"));
    emma->setLabels({});
    second->setLabels({std::static_pointer_cast<Label>(library->object("Label", QStringLiteral("L")))});
    library.save();
    library->deleteObject(second);
    library->deleteObject(library->object("Label", QStringLiteral("L")));
    library.save();
    EXPECT_EQ(answer("SELECT pages FROM Book WHERE title = 'Emma II'"), QStringLiteral("4"));
    EXPECT_EQ(answer("SELECT * FROM Book_labels"), QString());
    EXPECT_FALSE(library->undo());
    EXPECT_FALSE(library->undo());
    EXPECT_EQ(answer("SELECT pages, title FROM Book WHERE id = 'B'"), QStringLiteral("many|Emma"));
    EXPECT_EQ(answer("SELECT source, target FROM Book_labels"), QStringLiteral("B|L"));
    EXPECT_EQ(library.dump().size(), before.size());
}

TEST_F(Migration, everyValueComesBackAsItWas)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const QString strange = QStringLiteral("a") + QChar::Null + QStringLiteral("\U0001F600 漢\n");
    const std::vector<std::pair<const char *, Value>> kept = {
        {"title", Value(strange)},
        {"title", Value(QStringLiteral(""))},
        {"title", Value()},
        {"title", Value(QString(1 << 20, QChar(u'é')))},
        {"pages", Value(std::numeric_limits<qint64>::max())},
        {"pages", Value(std::numeric_limits<qint64>::min())},
        {"price", Value(5e-324)},
        {"price", Value(-infinity)},
        {"price", Value(0.1 + 0.2)},
        {"isLent", Value(false)},
        {"published", Value(Date::fromReferenceSeconds(1e300))},
        {"published", Value(Date::fromReferenceSeconds(-63114076800.125))}};
    const std::vector<std::tuple<const char *, Value, Value>> fitted = {
        {"title", Value(QString(QChar(0xD83D)) + QStringLiteral("x")), Value(QStringLiteral("\uFFFDx"))},
        {"title", Value(QString()), Value()},
        {"title", Value(5.0), Value()},
        {"price", Value(std::nan("")), Value()},
        {"pages", Value(1e300), Value()},
        {"pages", Value(2.9), Value(qint64(2))},
        {"isLent", Value(qint64(7)), Value(true)},
        {"published", Value(qint64(7)), Value(Date::fromReferenceSeconds(7))}};
    const auto check = [this](const char *key, const Value &given, const Value &expected) {
        const auto book = library->insert<Book>();
        book->setValueForKey("title", Value(QStringLiteral("before")));
        book->setValueForKey(key, given);
        EXPECT_EQ(book->valueForKey(key), expected) << key;
        const QString identifier = book->identifier();
        library.save();
        library->refreshAllObjects();
        EXPECT_EQ(book->valueForKey(key), expected) << key << " after a save";
        library.reopen();
        EXPECT_EQ(library->object("Book", identifier)->valueForKey(key), expected)
            << key << " after a restart";
    };
    for (const auto &[key, value] : kept)
        check(key, value, value);
    for (const auto &[key, given, expected] : fitted)
        check(key, given, expected);
}

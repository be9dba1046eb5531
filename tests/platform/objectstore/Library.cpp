#include "Library.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

MANAGED_TO_MANY_DEFINITION(Author, Book, books, setBooks)
MANAGED_TO_MANY_DEFINITION(Shelf, Book, books, setBooks)
MANAGED_TO_MANY_DEFINITION(Label, Book, books, setBooks)
MANAGED_TO_ONE_DEFINITION(Book, Author, author, setAuthor)
MANAGED_TO_ONE_DEFINITION(Book, Shelf, shelf, setShelf)
MANAGED_TO_MANY_DEFINITION(Book, Label, labels, setLabels)

namespace {

template <typename Entity>
EntityDescription describe()
{
    return EntityDescription(Entity::entityName,
                             {Entity::attributeTable.begin(), Entity::attributeTable.end()},
                             {Entity::relationshipTable.begin(), Entity::relationshipTable.end()},
                             [] { return std::make_shared<Entity>(); });
}

/// A connection of another program.
class Stranger
{
public:
    explicit Stranger(const QString &path) { sqlite3_open(path.toUtf8().constData(), &connection); }
    ~Stranger() { sqlite3_close(connection); }
    Stranger(const Stranger &) = delete;
    Stranger &operator=(const Stranger &) = delete;

    QStringList run(const QByteArray &sql) const
    {
        QStringList lines;
        char *problem = nullptr;
        const auto takeRow = [](void *taken, int count, char **values, char **) {
            QStringList row;
            for (int column = 0; column < count; ++column)
                row.append(values[column] ? QString::fromUtf8(values[column]) : QStringLiteral("NULL"));
            static_cast<QStringList *>(taken)->append(row.join(u'|'));
            return 0;
        };
        if (sqlite3_exec(connection, sql.constData(), takeRow, &lines, &problem) != SQLITE_OK)
            ADD_FAILURE() << sql.constData() << ": " << problem;
        sqlite3_free(problem);
        return lines;
    }

private:
    sqlite3 *connection = nullptr;
};

} // namespace

const ManagedObjectModel &libraryModel()
{
    static const ManagedObjectModel model(
        3, {describe<Author>(),
            describe<Book>().followingLinks().substringIndexed("title").indexedBy(
                {{"Book_byTitle", "\"title\""}, {"Book_byAuthor", "\"author\""}}),
            describe<Shelf>(), describe<Label>(), describe<CatalogLine>().derived()});
    return model;
}

void Library::open(const ManagedObjectModel &model)
{
    auto result = ManagedObjectContext::open(path(), model);
    ASSERT_TRUE(result) << result.error().message.toStdString();
    opened = std::move(*result);
}

std::shared_ptr<Book> Library::book(const char *title)
{
    auto made = opened->insert<Book>();
    made->setTitle(QString::fromUtf8(title));
    return made;
}

std::shared_ptr<Author> Library::author(const char *name)
{
    auto made = opened->insert<Author>();
    made->setName(QString::fromUtf8(name));
    return made;
}

std::shared_ptr<Book> Library::find(const char *title)
{
    return opened->fetchFirst<Book>(
        FetchRequest("Book").where(Predicate::format("title = %@", QString::fromUtf8(title))));
}

void Library::save()
{
    const OptionalError error = opened->save();
    EXPECT_FALSE(error) << error->message.toStdString();
}

void Library::elsewhere(const char *sql) const
{
    Stranger(path()).run(sql);
}

QStringList Library::ask(const QString &sql) const
{
    return Stranger(path()).run(sql.toUtf8());
}

QStringList Library::dump() const
{
    const Stranger stranger(path());
    QStringList lines;
    for (const char *table : {"Author", "Book", "Shelf", "Label", "Book_labels"})
        lines += stranger.run(QByteArray("SELECT '") + table + "', * FROM " + table + " ORDER BY 2, 3");
    return lines;
}

QStringList titles(const ObjectList<Book> &books)
{
    QStringList list;
    for (const auto &book : books)
        list.append(book ? book->title() : QStringLiteral("gone"));
    return list;
}

QStringList titles(const std::vector<ObjectPtr> &books)
{
    QStringList list;
    for (const ObjectPtr &book : books)
        list.append(std::static_pointer_cast<Book>(book)->title());
    return list;
}

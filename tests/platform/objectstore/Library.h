#pragma once

#include "objectstore/ManagedObjectContext.h"
#include "objectstore/TypedObject.h"

#include <QTemporaryDir>

#include <array>

// A small library: shelves hold books (and take them along when they go), authors wrote them, labels stick on
// them.

class Author;
class Book;
class Shelf;
class Label;

class Author : public TypedObject<Author>
{
public:
    static constexpr std::string_view entityName = "Author";
    static constexpr std::array<AttributeDescription, 2> attributeTable = {
        {{"name", AttributeType::String}, {"born", AttributeType::Date}}};
    static constexpr std::array<RelationshipDescription, 1> relationshipTable = {
        {{"books", Cardinality::ToMany, "Book", "author"}}};

    MANAGED_TEXT(name, setName)
    MANAGED_DATE(born, setBorn)
    MANAGED_TO_MANY(Book, books, setBooks)
};

class Book : public TypedObject<Book>
{
public:
    static constexpr std::string_view entityName = "Book";
    static constexpr std::array<AttributeDescription, 5> attributeTable = {
        {{"title", AttributeType::String},
         {"pages", AttributeType::Integer},
         {"price", AttributeType::Double},
         {"isLent", AttributeType::Boolean},
         {"published", AttributeType::Date}}};
    static constexpr std::array<RelationshipDescription, 3> relationshipTable = {
        {{"author", Cardinality::ToOne, "Author", "books"},
         {"shelf", Cardinality::ToOne, "Shelf", "books"},
         {"labels", Cardinality::ToManyOwningJoin, "Label", "books"}}};

    MANAGED_TEXT(title, setTitle)
    MANAGED_INTEGER(pages, setPages)
    MANAGED_DOUBLE(price, setPrice)
    MANAGED_BOOLEAN(isLent, setIsLent)
    MANAGED_DATE(published, setPublished)
    MANAGED_TO_ONE(Author, author, setAuthor)
    MANAGED_TO_ONE(Shelf, shelf, setShelf)
    MANAGED_TO_MANY(Label, labels, setLabels)
};

class Shelf : public TypedObject<Shelf>
{
public:
    static constexpr std::string_view entityName = "Shelf";
    static constexpr std::array<AttributeDescription, 1> attributeTable = {{{"name", AttributeType::String}}};
    static constexpr std::array<RelationshipDescription, 1> relationshipTable = {
        {{"books", Cardinality::ToMany, "Book", "shelf", DeleteRule::Cascade}}};

    MANAGED_TEXT(name, setName)
    MANAGED_TO_MANY(Book, books, setBooks)
};

class Label : public TypedObject<Label>
{
public:
    static constexpr std::string_view entityName = "Label";
    static constexpr std::array<AttributeDescription, 1> attributeTable = {{{"name", AttributeType::String}}};
    static constexpr std::array<RelationshipDescription, 1> relationshipTable = {
        {{"books", Cardinality::ToManyThroughJoin, "Book", "labels"}}};

    MANAGED_TEXT(name, setName)
    MANAGED_TO_MANY(Book, books, setBooks)
};

/// Can be made again from the books.
class CatalogLine : public TypedObject<CatalogLine>
{
public:
    static constexpr std::string_view entityName = "CatalogLine";
    static constexpr std::array<AttributeDescription, 1> attributeTable = {
        {{"words", AttributeType::String}}};
    static constexpr std::array<RelationshipDescription, 0> relationshipTable = {};

    MANAGED_TEXT(words, setWords)
};

const ManagedObjectModel &libraryModel();

/// Hears what commits do, and has a part in them where a test wants it.
class Listener : public CommitEffects
{
public:
    bool hasWork() const override { return isWorkLeft; }
    void willCommit(ManagedObjectContext &context, const StoreChanges &changes) override
    {
        if (will)
            will(context, changes);
    }
    void didCommit(ManagedObjectContext &context, const StoreChanges &changes) override
    {
        heard.push_back(changes);
        if (did)
            did(context, changes);
    }

    bool isWorkLeft = false;
    std::function<void(ManagedObjectContext &, const StoreChanges &)> will;
    std::function<void(ManagedObjectContext &, const StoreChanges &)> did;
    std::vector<StoreChanges> heard;
};

/// A folder with a library in it, and both ways to the file: the store's and that of a stranger.
class Library
{
public:
    Library() { open(); }

    QString path() const { return folder.filePath(QStringLiteral("library.sqlite")); }
    QString file(const char *name) const { return folder.filePath(QString::fromUtf8(name)); }
    ManagedObjectContext &context() { return *opened; }
    ManagedObjectContext *operator->() { return opened.get(); }
    /// Ends the context, and with it everything that was not saved.
    void close() { opened.reset(); }
    void open(const ManagedObjectModel &model = libraryModel());
    void reopen()
    {
        close();
        open();
    }

    std::shared_ptr<Book> book(const char *title);
    std::shared_ptr<Author> author(const char *name);
    /// The saved book of that title, or null.
    std::shared_ptr<Book> find(const char *title);
    /// Saves, and fails the test on an error.
    void save();
    /// Runs SQL as another program would, on a connection of its own.
    void elsewhere(const char *sql) const;
    /// The first column of the answer, row for row, as another program sees it.
    QStringList ask(const QString &sql) const;
    /// Every row of every table of the model, as another program sees it.
    QStringList dump() const;

private:
    QTemporaryDir folder;
    std::unique_ptr<ManagedObjectContext> opened;
};

/// The titles of books in their order.
QStringList titles(const ObjectList<Book> &books);
QStringList titles(const std::vector<ObjectPtr> &books);

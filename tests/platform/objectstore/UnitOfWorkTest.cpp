#include "Library.h"

#include "support/TestSupport.h"

#include <gmock/gmock.h>

#include <QCoreApplication>

using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

QStringList titlesOfUpdated(const StoreChanges &changes)
{
    QStringList found;
    for (const StoreChanges::Update &one : changes.updated)
        found.append(std::static_pointer_cast<Book>(one.object)->title());
    return found;
}

class UnitOfWork : public testing::Test
{
protected:
    QStringList allTitles() { return titles(library->fetch<Book>(FetchRequest("Book"))); }

    Library library;
};

} // namespace

TEST_F(UnitOfWork, queriesSeeWhatIsNotSavedAndOthersDoNot)
{
    const auto emma = library.book("Emma");
    library.save();
    emma->setTitle(QStringLiteral("Emma, revised"));
    library.book("Persuasion");
    EXPECT_EQ(allTitles(), QStringList({QStringLiteral("Emma, revised"), QStringLiteral("Persuasion")}));
    EXPECT_EQ(library->count(FetchRequest("Book")), 2);
    EXPECT_EQ(library.ask(QStringLiteral("SELECT title FROM Book")), QStringList(QStringLiteral("Emma")));

    library->deleteObject(emma);
    EXPECT_EQ(allTitles(), QStringList(QStringLiteral("Persuasion")));
    library.save();
    EXPECT_EQ(library.ask(QStringLiteral("SELECT title FROM Book")),
              QStringList(QStringLiteral("Persuasion")));
    EXPECT_FALSE(library->hasChanges());
}

TEST_F(UnitOfWork, aCommitTellsEachObjectOnceInTheOrderOfItsFirstChange)
{
    const auto kept = library.book("Kept");
    const auto dropped = library.book("Dropped");
    library.save();

    Listener listener;
    library->setCommitEffects(&listener);
    dropped->setPages(1);
    const auto second = library.book("B");
    const auto first = library.book("A");
    kept->setPages(2);
    const auto never = library.book("Never");
    EXPECT_EQ(library->count(FetchRequest("Book")), 5);
    library->deleteObject(dropped);
    library->deleteObject(never);
    second->setPages(3);
    library.save();
    library.save();

    const auto &heard = listener.heard;
    ASSERT_EQ(heard.size(), 1u) << "a save without changes tells nothing";
    EXPECT_THAT(heard[0].inserted, ElementsAre(second, first));
    EXPECT_EQ(titlesOfUpdated(heard[0]), QStringList(QStringLiteral("Kept")));
    EXPECT_THAT(heard[0].deleted, ElementsAre(dropped));
    EXPECT_EQ(dropped->context(), nullptr);
    EXPECT_EQ(dropped->entity().name(), "Book");
    EXPECT_EQ(library->objectForUri(library->uriOf(*dropped)), nullptr);
}

TEST_F(UnitOfWork, settingWhatIsThereAlreadyIsNoChange)
{
    const auto book = library.book("Emma");
    book->setPages(10);
    library.save();
    book->setTitle(QStringLiteral("Emma"));
    book->setPages(10);
    book->setShelf(nullptr);
    book->setLabels({});
    book->setPublished(std::nullopt);
    book->setValueForKey("pages", Value(10.0));
    book->setValueForKey("price", Value(std::nan("")));
    EXPECT_FALSE(library->hasChanges());
}

TEST_F(UnitOfWork, bothEndsOfARelationshipFollowEachOther)
{
    const auto austen = library.author("Austen");
    const auto emma = library.book("Emma");
    const auto lady = library.book("Lady Susan");
    const auto label = library->insert<Label>();
    emma->setAuthor(austen);
    austen->addRelated("books", lady);
    EXPECT_THAT(austen->books(), UnorderedElementsAre(emma, lady));
    EXPECT_EQ(lady->author(), austen);
    emma->setLabels({label});
    EXPECT_THAT(label->books(), ElementsAre(emma));
    label->setBooks({lady});
    EXPECT_TRUE(emma->labels().empty());
    EXPECT_THAT(lady->labels(), ElementsAre(label));
    library.save();
    austen->setBooks({emma});
    library.save();
    EXPECT_EQ(library.ask(QStringLiteral("SELECT title FROM Book WHERE author IS NULL")),
              QStringList(QStringLiteral("Lady Susan")));
    EXPECT_EQ(library.ask(QStringLiteral("SELECT source FROM Book_labels")), QStringList(lady->identifier()));

    Library another;
    emma->setAuthor(another.author("Of another store"));
    EXPECT_EQ(emma->author(), nullptr);
}

TEST_F(UnitOfWork, deletionEmptiesReferencesOrTakesTheHoldersAlong)
{
    const auto austen = library.author("Austen");
    const auto shelf = library->insert<Shelf>();
    const auto label = library->insert<Label>();
    const auto shelved = library.book("Shelved");
    const auto loose = library.book("Loose");
    shelved->setShelf(shelf);
    for (const auto &book : {shelved, loose}) {
        book->setAuthor(austen);
        book->setLabels({label});
    }
    library.save();

    Listener listener;
    library->setCommitEffects(&listener);
    library->deleteObject(shelf);
    library->deleteObject(austen);
    EXPECT_TRUE(Predicate::format("author == nil").evaluate(*loose)) << "also before anything is written";
    EXPECT_EQ(allTitles(), QStringList(QStringLiteral("Loose")));
    EXPECT_EQ(loose->author(), nullptr);
    EXPECT_THAT(label->books(), ElementsAre(loose));
    library.save();
    ASSERT_EQ(listener.heard.size(), 1u);
    EXPECT_EQ(titlesOfUpdated(listener.heard.front()), QStringList(QStringLiteral("Loose")));
    EXPECT_EQ(listener.heard.front().deleted.size(), 3u);
    library->setCommitEffects(nullptr);
    EXPECT_EQ(library.ask(QStringLiteral("SELECT source FROM Book_labels")),
              QStringList(loose->identifier()));

    library->deleteObject(label);
    EXPECT_TRUE(loose->labels().empty());
    library.save();
    EXPECT_TRUE(library.ask(QStringLiteral("SELECT * FROM Book_labels")).isEmpty());
}

TEST_F(UnitOfWork, resetGivesUpEverythingSinceTheLastSave)
{
    const auto changed = library.book("Changed");
    const auto deleted = library.book("Deleted");
    const auto label = library->insert<Label>();
    library.save();
    changed->setTitle(QStringLiteral("Other"));
    changed->setLabels({label});
    library->deleteObject(deleted);
    const auto fresh = library.book("New");
    allTitles();
    library->reset();
    EXPECT_FALSE(library->hasChanges());
    EXPECT_EQ(changed->title(), QStringLiteral("Changed"));
    EXPECT_TRUE(changed->labels().empty());
    EXPECT_FALSE(deleted->isDeleted());
    EXPECT_EQ(deleted->title(), QStringLiteral("Deleted"));
    EXPECT_EQ(fresh->context(), nullptr);
    deleted->setPages(4);
    library.save();
    EXPECT_EQ(library.ask(QStringLiteral("SELECT title FROM Book WHERE pages = 4")),
              QStringList(QStringLiteral("Deleted")));
}

TEST_F(UnitOfWork, oneObjectStandsForARowWhicheverWayItIsReached)
{
    constexpr int count = 64 * 8 * 2 + 3;
    for (int number = 0; number < count; ++number)
        library.book("Many")->setPages(number);
    const auto author = library.author("Author");
    const auto third = library->fetchFirst<Book>(FetchRequest("Book").where(Predicate::format("pages = 3")));
    third->setAuthor(author);
    library.save();

    const auto list = library->fetch<Book>(FetchRequest("Book").sortedBy({ascending("pages")}));
    ASSERT_EQ(list.size(), count);
    std::weak_ptr<Book> unheld = list.at(5);
    for (int pass = 0; pass < 2; ++pass) {
        for (int place = 0; place < count; ++place)
            ASSERT_EQ(list.at(place)->pages(), place);
    }
    EXPECT_TRUE(unheld.expired()) << "pages that nobody looks at are let go";
    EXPECT_EQ(list.at(3), third);
    EXPECT_EQ(author->books().front(), third);
    EXPECT_EQ(library->object("Book", third->identifier()), third);
    EXPECT_EQ(library->objectForUri(third->uri()), third);
    EXPECT_EQ(list.indexOf(*third), 3);

    library->deleteObject(third);
    EXPECT_EQ(list.at(3), nullptr);
    library.save();
    EXPECT_EQ(list.at(3), nullptr);
    library.book("Latecomer");
    library.save();
    EXPECT_EQ(list.at(count - 1)->pages(), count - 1);
    EXPECT_EQ(list.at(count), nullptr);
}

TEST_F(UnitOfWork, effectsHaveTheirPartInTheCommitAndMayCommitMoreAfterIt)
{
    Listener listener;
    library->setCommitEffects(&listener);
    listener.will = [](ManagedObjectContext &context, const StoreChanges &changes) {
        for (const ObjectPtr &book : changes.inserted)
            context.insert<CatalogLine>()->setWords(std::static_pointer_cast<Book>(book)->title());
    };
    listener.did = [](ManagedObjectContext &context, const StoreChanges &changes) {
        if (changes.inserted.size() != 1)
            return;
        std::static_pointer_cast<Book>(changes.inserted.front())->setPages(1);
        EXPECT_FALSE(context.save());
    };
    library.book("Emma");
    library.save();
    library->setCommitEffects(nullptr);
    ASSERT_EQ(listener.heard.size(), 2u) << "derived rows alone are not told";
    EXPECT_EQ(listener.heard[0].inserted.size(), 1u);
    EXPECT_EQ(listener.heard[1].inserted.size(), 0u);
    EXPECT_EQ(titlesOfUpdated(listener.heard[1]), QStringList(QStringLiteral("Emma")));
    EXPECT_EQ(library.ask(QStringLiteral("SELECT words FROM CatalogLine")),
              QStringList(QStringLiteral("Emma")));
}

TEST_F(UnitOfWork, tellsWhichColumnsAnUpdateChanged)
{
    const auto emma = library.book("Emma");
    library.save();
    Listener listener;
    library->setCommitEffects(&listener);
    emma->setPages(7);
    emma->setTitle(QStringLiteral("Emma"));
    library.save();
    EXPECT_FALSE(library->undo());
    library->setCommitEffects(nullptr);
    ManagedObject::ColumnSet pages;
    pages.set(static_cast<size_t>(emma->entity().columnOf("pages")));
    ASSERT_EQ(listener.heard.size(), 2u);
    for (const StoreChanges &changes : listener.heard) {
        ASSERT_EQ(changes.updated.size(), 1u);
        EXPECT_EQ(changes.updated.front().columns, pages) << "the same value is no change";
    }
}

TEST_F(UnitOfWork, visitorsMayChangeWhatTheyAreShown)
{
    for (const char *title : {"A", "B", "C"})
        library.book(title);
    library.save();
    int visits = 0;
    library->visit(FetchRequest("Book"), {"title"}, [&](const RowReader &row) {
        ++visits;
        library.find(qPrintable(row.text(0)))->setPages(7);
        EXPECT_EQ(library->count(FetchRequest("Book").where(Predicate::format("pages = 7"))), visits);
        library.save();
    });
    EXPECT_EQ(visits, 3);
    EXPECT_EQ(library->maximum(FetchRequest("Book"), "pages"), 7);
}

TEST_F(UnitOfWork, objectsAndListsOutliveTheirContext)
{
    const auto saved = library.book("Saved");
    library.save();
    const auto list = library->fetch<Book>(FetchRequest("Book"));
    const auto looked = list.at(0);
    const auto pending = library.book("Pending");
    library->deleteObject(saved);
    library.close();
    EXPECT_EQ(list.at(0), nullptr);
    EXPECT_EQ(saved->context(), nullptr);
    pending->setTitle(QStringLiteral("Ignored"));
    EXPECT_TRUE(pending->title().isNull());
    EXPECT_TRUE(saved->labels().empty());
    EXPECT_EQ(saved->author(), nullptr);
    library.open();
    EXPECT_NE(library.find("Saved"), nullptr) << "what was not saved is given up";
}

TEST_F(UnitOfWork, wrongPredicatesAndKeysFindNothingAndSaySo)
{
    library.book("Emma");
    library.save();
    const LogCapture log;
    EXPECT_EQ(library->count(FetchRequest("Book").where(Predicate::format("publisher = nil"))), 0);
    EXPECT_EQ(library->count(FetchRequest("Book").where(Predicate::format("any pages.words = nil"))), 0);
    EXPECT_EQ(library->maximum(FetchRequest("Book"), "weight"), std::nullopt);
    EXPECT_GE(log.lines().size(), 3);
}

TEST_F(UnitOfWork, whatMustNotMeddleWithATransactionWaitsForItsEnd)
{
    QStringList done;
    library->afterTransaction([&] { done.append(u"at once"_qs); });
    EXPECT_EQ(done.size(), 1);
    {
        Transaction outer(library.context());
        {
            Transaction inner(library.context());
            library->afterTransaction([&] { done.append(u"first"_qs); });
        }
        library->afterTransaction([&] {
            done.append(u"second"_qs);
            Transaction own(library.context());
            library->afterTransaction([&] { done.append(u"third"_qs); });
        });
        QCoreApplication::processEvents();
        EXPECT_EQ(done.size(), 1);
    }
    EXPECT_EQ(done.size(), 1) << "not within the call that ends it";
    QCoreApplication::processEvents();
    EXPECT_EQ(done, QStringList({u"at once"_qs, u"first"_qs, u"second"_qs}));
    QCoreApplication::processEvents();
    EXPECT_EQ(done.size(), 4);
    {
        Transaction last(library.context());
        library->afterTransaction([&] { done.append(u"never"_qs); });
    }
    library.close();
    QCoreApplication::processEvents();
    EXPECT_EQ(done.size(), 4) << "the store has gone";
}

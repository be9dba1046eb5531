#include "Library.h"

#include "support/TestSupport.h"

#include <gmock/gmock.h>

#include <random>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

class Undo : public testing::Test
{
protected:
    void undo() { EXPECT_FALSE(library->undo()); }
    void redo() { EXPECT_FALSE(library->redo()); }
    template <typename Change>
    void saveAs(ChangeAuthor author, Change change)
    {
        Transaction transaction(library.context(), author);
        change();
        ASSERT_FALSE(transaction.commit());
    }

    Library library;
};

} // namespace

TEST_F(Undo, takesBackAllThatATransactionSavedAtOnce)
{
    library.book("before");
    library.save();
    {
        Transaction outer(library.context(), ChangeAuthor::User, u"Two books"_qs);
        {
            Transaction inner(library.context());
            library.book("one");
            ASSERT_FALSE(inner.commit());
        }
        library.book("two");
        library.save();
        EXPECT_EQ(library.ask(u"SELECT title FROM Book"_qs), QStringList(u"before"_qs));
        EXPECT_NE(library.find("one"), nullptr) << "queries see it already";
        ASSERT_FALSE(outer.commit());
    }
    EXPECT_EQ(library->undoName(), u"Two books"_qs);
    EXPECT_EQ(library.ask(u"SELECT title FROM Book"_qs).size(), 3);
    undo();
    EXPECT_EQ(library->undoName(), QString());
    EXPECT_EQ(library->redoName(), u"Two books"_qs);
    EXPECT_EQ(library.ask(u"SELECT title FROM Book"_qs), QStringList(u"before"_qs));
}

TEST_F(Undo, takesBackAllPartsOfAStepAndNothingBesideThem)
{
    library.book("before");
    library.save();
    {
        Transaction import(library.context(), ChangeAuthor::Import, u"Import"_qs);
        library.book("one");
        ASSERT_FALSE(import.commitPart());
        EXPECT_EQ(library.ask(u"SELECT COUNT(*) FROM Book"_qs), QStringList(u"2"_qs)) << "is on the disk";
        library.find("one")->setTitle(u"uno"_qs);
        library.book("two");
        ASSERT_FALSE(import.commitPart());
        library.book("three");
        ASSERT_FALSE(import.commit());
    }
    saveAs(ChangeAuthor::User, [this] { library.book("after"); });
    const QStringList rows = library.dump();
    undo();
    EXPECT_EQ(library->undoName(), u"Import"_qs);
    undo();
    EXPECT_EQ(library.ask(u"SELECT title FROM Book"_qs), QStringList(u"before"_qs));
    EXPECT_EQ(library->undoName(), QString()) << "the first book is a step of its own";
    EXPECT_EQ(library->redoName(), u"Import"_qs);
    redo();
    EXPECT_EQ(library.ask(u"SELECT title FROM Book ORDER BY title"_qs),
              QStringList({u"before"_qs, u"three"_qs, u"two"_qs, u"uno"_qs}));
    redo();
    EXPECT_EQ(library.dump(), rows);
    undo();

    // Two imports in a row are two steps.
    {
        Transaction import(library.context(), ChangeAuthor::Import, u"Import"_qs);
        library.book("four");
        ASSERT_FALSE(import.commitPart());
    }
    undo();
    EXPECT_EQ(library.ask(u"SELECT COUNT(*) FROM Book"_qs), QStringList(u"4"_qs)) << "not the import before";
}

TEST_F(Undo, refusesADamagedStepAndTouchesNoRow)
{
    library.book("one");
    library.save();
    saveAs(ChangeAuthor::User, [this] {
        library.find("one")->setTitle(u"two"_qs);
        library.book("more");
    });
    const QStringList rows = library.dump();
    // Another text in it would be written over what is there; a cut one would be half a step.
    const auto expectRefused = [&](const char *damage) {
        SCOPED_TRACE(damage);
        library.elsewhere("CREATE TABLE Kept AS SELECT * FROM ObjectStoreJournal");
        library.elsewhere(damage);
        EXPECT_TRUE(library->undo());
        EXPECT_EQ(library.dump(), rows);
        library.elsewhere("DELETE FROM ObjectStoreJournal; INSERT INTO ObjectStoreJournal SELECT * FROM Kept;"
                          "DROP TABLE Kept");
    };
    expectRefused("UPDATE ObjectStoreJournal SET changeset = CAST(substr(changeset, 1, length(changeset) - "
                  "9) AS BLOB)");
    expectRefused("UPDATE ObjectStoreJournal SET outside = X'7FFFFFFFABCD'");
    expectRefused("UPDATE ObjectStoreJournal SET changeset = CAST(replace(changeset, 'one', '0ne') AS BLOB)");
    // Entries of a former version tell damage only by their structure.
    library.elsewhere("UPDATE ObjectStoreJournal SET digest = NULL");
    expectRefused("UPDATE ObjectStoreJournal SET changeset = CAST(substr(changeset, 1, length(changeset) - "
                  "9) AS BLOB)");
    expectRefused("UPDATE ObjectStoreJournal SET outside = X'7FFFFFFFABCD'");
    undo();
    EXPECT_EQ(library.ask(u"SELECT title FROM Book"_qs), QStringList(u"one"_qs));
}

TEST_F(Undo, reachesBackBeyondTheStartOfTheProgram)
{
    EXPECT_FALSE(library->canUndo());
    const auto author = library.author("Austen");
    library.book("Emma")->setAuthor(author);
    library.save();
    library.find("Emma")->setTitle(QStringLiteral("Emma II"));
    library.save();
    library.reopen();
    undo();
    EXPECT_NE(library.find("Emma"), nullptr);
    undo();
    EXPECT_FALSE(library->canUndo());
    EXPECT_EQ(library->count(FetchRequest("Author")), 0);
    library.reopen();
    EXPECT_TRUE(library->canRedo());
    redo();
    redo();
    EXPECT_FALSE(library->canRedo());
    EXPECT_EQ(library.find("Emma II")->author()->name(), QStringLiteral("Austen"));
    redo();
}

TEST_F(Undo, tellsEachRowOnce)
{
    const auto label = library->insert<Label>();
    const auto emma = library.book("Emma");
    emma->setLabels({label});
    library.save();
    Listener listener;
    library->setCommitEffects(&listener);
    undo();
    redo();
    const auto &heard = listener.heard;
    ASSERT_EQ(heard.size(), 2u);
    EXPECT_THAT(heard[0].deleted, UnorderedElementsAre(emma, label));
    EXPECT_THAT(heard[0].updated, IsEmpty());
    EXPECT_EQ(heard[1].inserted.size(), 2u);
    EXPECT_THAT(heard[1].updated, IsEmpty());
    EXPECT_EQ(emma->context(), nullptr);
    EXPECT_EQ(heard[0].author, ChangeAuthor::Undo);
    library->setCommitEffects(nullptr);
}

TEST_F(Undo, tellsTheRowNumberOfWhatItDeletesAlsoWithoutAnObject)
{
    library.book("Emma");
    library.save();
    const RowId row = library.find("Emma")->rowId();
    library.reopen();
    Listener listener;
    library->setCommitEffects(&listener);
    undo();
    redo();
    undo();
    ASSERT_EQ(listener.heard.size(), 3u);
    const RowId rowOfRedo = listener.heard[1].inserted.at(0)->rowId();
    EXPECT_EQ(listener.heard[0].deleted.at(0)->rowId(), row) << "lists know it by its number";
    EXPECT_EQ(listener.heard[2].deleted.at(0)->rowId(), rowOfRedo);
    library->setCommitEffects(nullptr);
}

TEST_F(Undo, neverTakesBackWhatCameFromElsewhere)
{
    const auto emma = library.book("Emma");
    emma->setPages(1);
    library.save();
    emma->setPages(2);
    emma->setPrice(2);
    library.save();
    saveAs(ChangeAuthor::Replication, [&] {
        emma->setPages(3);
        library.book("Imported");
    });
    undo();
    EXPECT_EQ(emma->pages(), 3) << "another hand was here since";
    EXPECT_EQ(emma->price(), std::nullopt);
    undo();
    EXPECT_EQ(library.find("Emma"), emma) << "the row is no longer as the user made it";
    EXPECT_FALSE(library->canUndo());
    EXPECT_NE(library.find("Imported"), nullptr);
    redo();
    redo();
    EXPECT_EQ(emma->pages(), 3);
    EXPECT_EQ(emma->price(), 2);
}

TEST_F(Undo, leavesWhatOthersDidWithinTheStep)
{
    const auto emma = library.book("Emma");
    const auto other = library.book("Other");
    const auto going = library.book("Going");
    library.save();
    {
        Transaction step(library.context());
        emma->setPages(5);
        {
            const JournalPause others(library.context());
            library.book("Foreign");
            other->setTitle(u"Renamed"_qs);
            library->deleteObject(going);
            const JournalPause nested(library.context());
            emma->setPrice(3);
        }
        library.book("Mine");
        ASSERT_FALSE(step.commit());
    }
    EXPECT_EQ(library->count(FetchRequest("Book")), 4);
    undo();
    EXPECT_EQ(library.find("Mine"), nullptr);
    EXPECT_NE(library.find("Foreign"), nullptr);
    EXPECT_EQ(other->title(), u"Renamed"_qs);
    EXPECT_EQ(library.find("Going"), nullptr);
    EXPECT_EQ(emma->pages(), std::nullopt);
    EXPECT_EQ(emma->price(), std::nullopt) << "a row that the step changes goes back as a whole";
    redo();
    EXPECT_EQ(emma->pages(), 5);
    EXPECT_NE(library.find("Mine"), nullptr);

    // One that begins with others' part.
    {
        Transaction step(library.context());
        {
            const JournalPause others(library.context());
            other->setTitle(u"Again"_qs);
        }
        emma->setPages(6);
        ASSERT_FALSE(step.commit());
    }
    undo();
    EXPECT_EQ(other->title(), u"Again"_qs);
    EXPECT_EQ(emma->pages(), 5);
}

TEST_F(Undo, savesWhatTheUserChangedBeforeAnotherAuthorBegins)
{
    const auto emma = library.book("Emma");
    library.save();
    emma->setPages(10);
    saveAs(ChangeAuthor::Pass, [&] {
        library.book("Made by a pass");
        emma->setPrice(1);
    });
    emma->setIsLent(true);
    library.save();
    undo();
    EXPECT_EQ(emma->isLent(), std::nullopt);
    EXPECT_EQ(emma->pages(), 10);
    undo();
    EXPECT_EQ(emma->pages(), std::nullopt);
    EXPECT_EQ(emma->price(), 1);
    EXPECT_NE(library.find("Made by a pass"), nullptr);
}

TEST_F(Undo, bringsBackWhatWasDeletedWithItsRelations)
{
    const auto shelf = library->insert<Shelf>();
    const auto author = library.author("Austen");
    const auto kept = library->insert<Label>();
    const auto vanished = library->insert<Label>();
    const auto emma = library.book("Emma");
    emma->setShelf(shelf);
    emma->setAuthor(author);
    emma->setLabels({kept, vanished});
    library.save();
    const QStringList before = library.dump();
    library->deleteObject(shelf);
    library.save();
    undo();
    EXPECT_EQ(library.dump(), before);

    redo();
    saveAs(ChangeAuthor::Replication, [&] {
        library->deleteObject(author);
        library->deleteObject(vanished);
    });
    undo();
    const auto back = library.find("Emma");
    ASSERT_NE(back, nullptr);
    EXPECT_NE(back->shelf(), nullptr);
    EXPECT_EQ(back->author(), nullptr);
    EXPECT_THAT(back->labels(), ElementsAre(kept));
    EXPECT_TRUE(library.ask(QStringLiteral("PRAGMA foreign_key_check")).isEmpty());
}

TEST_F(Undo, savesWhatIsPendingFirstAndANewSaveCutsRedoOff)
{
    const auto emma = library.book("Emma");
    library.save();
    emma->setPages(1);
    Listener listener;
    library->setCommitEffects(&listener);
    listener.did = [this](ManagedObjectContext &, const StoreChanges &) {
        if (library->count(FetchRequest("CatalogLine")) == 0)
            library->insert<CatalogLine>();
        library->count(FetchRequest("CatalogLine"));
    };
    undo();
    EXPECT_EQ(emma->pages(), std::nullopt);
    EXPECT_TRUE(library->canRedo());
    saveAs(ChangeAuthor::Program, [&] { emma->setPrice(1); });
    EXPECT_TRUE(library->canRedo()) << "only the user's own saves cut it off";
    emma->setIsLent(true);
    library.save();
    EXPECT_FALSE(library->canRedo());
    undo();
    undo();
    EXPECT_EQ(library.find("Emma"), emma) << "its price came from another hand";
    library->setCommitEffects(nullptr);
}

TEST_F(Undo, leavesNewNumbersToRowsThatComeBack)
{
    library.book("First");
    library.save();
    library.book("Second");
    library.save();
    const auto list = library->fetch<Book>(FetchRequest("Book"));
    undo();
    undo();
    EXPECT_EQ(list.at(1), nullptr);
    redo();
    EXPECT_EQ(list.at(1), nullptr) << "the place of another row";
    EXPECT_NE(library.find("First"), nullptr);
}

TEST_F(Undo, keepsAThousandSavesOfNinetyDays)
{
    const Date start = utcDate(2024, 1, 1);
    const auto emma = library.book("Emma");
    {
        const FrozenClock clock(start);
        library.save();
        emma->setPages(0);
        library.save();
    }
    {
        const FrozenClock clock(start + std::chrono::days(91));
        EXPECT_FALSE(library->canUndo());
        undo();
        EXPECT_EQ(emma->pages(), 0);
        for (int number = 1; number <= 1003; ++number) {
            emma->setPages(number);
            library.save();
        }
        EXPECT_EQ(library.ask(QStringLiteral("SELECT COUNT(*) FROM ObjectStoreJournal")),
                  QStringList(QStringLiteral("1000")));
        int undone = 0;
        for (; library->canUndo(); ++undone)
            undo();
        EXPECT_EQ(undone, 1000);
        EXPECT_EQ(emma->pages(), 3);
    }
}

TEST_F(Undo, walksAnyGeneratedHistoryBackAndForth)
{
    std::mt19937 random(testSeed());
    const auto below = [&random](size_t bound) {
        return std::uniform_int_distribution<size_t>(0, bound - 1)(random);
    };
    const auto someOf = [&](const char *entity) -> ObjectPtr {
        const auto all = library->fetchObjects(FetchRequest(entity));
        return all.isEmpty() ? nullptr
                             : all.objectAt(static_cast<int>(below(static_cast<size_t>(all.size()))));
    };
    std::vector<QStringList> states = {library.dump()};
    for (int save = 0; save < 60; ++save) {
        for (size_t count = 1 + below(6); count > 0; --count) {
            const char *const entities[] = {"Author", "Book", "Book", "Shelf", "Label"};
            const char *const entity = entities[below(5)];
            const ObjectPtr object = someOf(entity);
            if (!object || below(3) == 0) {
                library->insertObject(entity);
            } else if (below(5) == 0) {
                library->deleteObject(object);
            } else {
                const int attribute = static_cast<int>(below(object->entity().attributes().size()));
                const bool isText = object->entity().columnType(attribute) == AttributeType::String;
                const auto number = static_cast<qint64>(below(4));
                object->setValue(attribute, isText ? Value(QString::number(number)) : Value(number));
            }
            if (const auto book = std::static_pointer_cast<Book>(someOf("Book"))) {
                book->setRelated(Book::column<"author">(), someOf("Author"));
                book->setRelated(Book::column<"shelf">(), someOf("Shelf"));
                if (below(2) == 0)
                    book->addRelated("labels", someOf("Label"));
                else
                    book->removeRelated("labels", someOf("Label"));
            }
        }
        library.save();
        const QStringList state = library.dump();
        if (state != states.back())
            states.push_back(state);
    }
    for (int round = 0; round < 2; ++round) {
        for (size_t place = states.size() - 1; place > 0; --place) {
            undo();
            ASSERT_EQ(library.dump(), states[place - 1]) << "undo to " << place - 1;
        }
        EXPECT_FALSE(library->canUndo());
        if (round == 0)
            library.reopen();
        for (size_t place = 1; place < states.size(); ++place) {
            redo();
            ASSERT_EQ(library.dump(), states[place]) << "redo to " << place;
        }
        EXPECT_FALSE(library->canRedo());
    }
}

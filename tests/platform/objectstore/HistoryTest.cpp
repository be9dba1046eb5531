#include "Library.h"

#include "foundation/Clock.h"
#include "objectstore/ChangeHistory.h"
#include "support/TestSupport.h"

namespace {

class History : public testing::Test
{
protected:
    template <typename Change>
    void saveAs(ChangeAuthor author, Change change)
    {
        // Each save at a moment of its own.
        clock.pass(Seconds(60));
        Transaction transaction(library.context(), author,
                                author == ChangeAuthor::User ? u"Edit"_qs : QString());
        change();
        ASSERT_FALSE(transaction.commit());
    }
    static QString text(const Value &value)
    {
        if (const auto *words = std::get_if<QString>(&value))
            return *words;
        return numberOf(value) ? QString::number(*numberOf(value)) : u"-"_qs;
    }
    /// A line for each changed value: by whom, of what, from what to what.
    QStringList told(const ManagedObject &object)
    {
        static const QStringList authors = {u"user"_qs,   u"undo"_qs,    u"pass"_qs,
                                            u"import"_qs, u"program"_qs, u"device"_qs};
        QStringList lines;
        for (const RecordedSave &save : library->historyOf(object)) {
            for (const RowChange &row : save.rows) {
                for (const RowChange::Field &field : row.fields)
                    lines << u"%1%2 %3.%4 %5>%6"_qs.arg(
                        authors.at(static_cast<int>(save.author)), save.isUndone ? u"(undone)"_qs : QString(),
                        QString::fromUtf8(row.entity->name().data(), qsizetype(row.entity->name().size())),
                        QString::fromUtf8(field.key.data(), qsizetype(field.key.size())), text(field.before),
                        text(field.after));
            }
        }
        return lines;
    }

    struct TickingClock
    {
        TickingClock()
        {
            Clock::setSource([this] { return now; });
        }
        ~TickingClock() { Clock::setSource({}); }
        void pass(Seconds time) { now = now + time; }

        Date now = localDate(2026, 11, 21, 9, 15);
    };
    TickingClock clock;
    Library library;
};

} // namespace

TEST_F(History, tellsWhoChangedWhatOfARecordAndWhatBelongsToIt)
{
    std::shared_ptr<Shelf> shelf;
    std::shared_ptr<Book> book;
    saveAs(ChangeAuthor::User, [&] {
        shelf = library->insert<Shelf>();
        shelf->setName(u"Novels"_qs);
        library.book("alone");
    });
    saveAs(ChangeAuthor::Import, [&] {
        book = library.book("one");
        book->setShelf(shelf);
    });
    saveAs(ChangeAuthor::Pass, [&] { book->setPages(7); });
    saveAs(ChangeAuthor::Program, [&] { book->setPages(8); });
    saveAs(ChangeAuthor::User, [&] { library->deleteObject(book); });
    const QString shelfId = shelf->identifier();
    EXPECT_EQ(told(*shelf),
              QStringList({u"user Book.title one>-"_qs, u"user Book.pages 8>-"_qs,
                           u"user Book.shelf %1>-"_qs.arg(shelfId), u"pass Book.pages ->7"_qs,
                           u"import Book.title ->one"_qs, u"import Book.shelf ->%1"_qs.arg(shelfId),
                           u"user Shelf.name ->Novels"_qs}));
    library.reopen();
    EXPECT_EQ(library->historyOf(*library->fetch<Shelf>(FetchRequest(Shelf::entityName)).at(0)).size(), 4u);
}

TEST_F(History, keepsWhatWasTakenBackAndLinksOfMany)
{
    std::shared_ptr<Book> book;
    std::shared_ptr<Label> label;
    saveAs(ChangeAuthor::User, [&] {
        book = library.book("one");
        label = library->insert<Label>();
    });
    saveAs(ChangeAuthor::User, [&] { book->setLabels({label}); });
    saveAs(ChangeAuthor::User, [&] { book->setTitle(u"two"_qs); });
    clock.pass(Seconds(60));
    EXPECT_FALSE(library->undo());
    const QString named = u"user Book.labels ->%1"_qs.arg(label->identifier());
    const QStringList taken = {u"undo Book.title two>one"_qs, u"user(undone) Book.title one>two"_qs, named,
                               u"user Book.title ->one"_qs};
    EXPECT_EQ(told(*book), taken);
    // The next save of the user drops the step, and not what it did.
    saveAs(ChangeAuthor::User, [&] { book->setLabels({}); });
    EXPECT_FALSE(library->canRedo());
    EXPECT_EQ(told(*book), QStringList(u"user Book.labels %1>-"_qs.arg(label->identifier())) + taken);
}

TEST_F(History, TellsLinksThatAnotherRecordHolds)
{
    std::shared_ptr<Label> label;
    std::shared_ptr<Author> author;
    std::shared_ptr<Book> book;
    saveAs(ChangeAuthor::User, [&] {
        label = library->insert<Label>();
        author = library->insert<Author>();
        book = library.book("one");
    });
    saveAs(ChangeAuthor::User, [&] {
        label->addRelated("books", book);
        author->addRelated("books", book);
    });
    saveAs(ChangeAuthor::Import, [&] {
        book->setLabels({});
        library.book("two")->setAuthor(author);
    });
    saveAs(ChangeAuthor::Pass, [&] { library->deleteObject(book); });
    const QString id = book->identifier();
    EXPECT_EQ(told(*label),
              QStringList({u"import Label.books %1>-"_qs.arg(id), u"user Label.books ->%1"_qs.arg(id)}));
    const QString two = author->relatedObjects("books").front()->identifier();
    EXPECT_EQ(told(*author),
              QStringList({u"pass Author.books %1>-"_qs.arg(id), u"import Author.books ->%1"_qs.arg(two),
                           u"user Author.books ->%1"_qs.arg(id)}));
}

TEST_F(History, ReachesBackAsFarAsTheJournalAndSkipsWhatIsDamaged)
{
    const auto book = library.book("one");
    library.save();
    for (int number = 1; number <= 1010; ++number)
        saveAs(ChangeAuthor::Pass, [&] { book->setPages(number); });
    EXPECT_EQ(library->historyOf(*book).size(), 1001u);
    library.elsewhere(
        "UPDATE ObjectStoreHistory SET changeset = CAST(substr(changeset, 1, 20) AS BLOB) WHERE "
        "sequence > 20");
    EXPECT_EQ(library->historyOf(*book).size(), 11u);
    clock.pass(std::chrono::days(91));
    for (int number = 0; number < 12; ++number)
        saveAs(ChangeAuthor::Pass, [&] { book->setPages(number); });
    EXPECT_EQ(library->historyOf(*book).size(), 13u) << "The step of the user goes with his next save";
    // A whole calendar at once says nothing.
    saveAs(ChangeAuthor::Pass, [&] {
        for (int number = 0; number < 60'000; ++number)
            library.book("many");
        book->setPages(5000);
    });
    EXPECT_EQ(library->historyOf(*book).size(), 13u);
}

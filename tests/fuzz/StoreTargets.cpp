#include "fuzz/Targets.h"

#include "platform/objectstore/Library.h"

#include <QFile>

#include <algorithm>

namespace {

/// More nesting than SQLite takes is an error of who wrote it.
constexpr qsizetype longestPredicate = 300;

std::vector<PredicateArgument> argumentsFor(const QByteArray &text, const ObjectPtr &object)
{
    std::vector<PredicateArgument> all = {QStringLiteral("Aé"),
                                          2,
                                          object,
                                          Date::fromReferenceSeconds(1),
                                          nullptr,
                                          std::vector<QString>{QStringLiteral("a"), QStringLiteral("Zoë")}};
    const auto count = std::size_t(text.count("%@") + text.count("%d") + text.count("%i"));
    std::vector<PredicateArgument> arguments;
    while (arguments.size() < count)
        arguments.push_back(all[arguments.size() % all.size()]);
    return arguments;
}

/// A few books, with everything absent somewhere.
struct Books
{
    Books()
    {
        for (int number = 0; number < 6; ++number) {
            const auto book = library->insert<Book>();
            if (number > 0)
                book->setTitle(
                    QStringList{u"a"_qs, u"Aé"_qs, u"Zoe\u0308"_qs, u"%_"_qs, u""_qs}.at(number - 1));
            if (number % 2)
                book->setPages(number - 2);
            if (number % 3)
                book->setPrice(number / 2.0);
            book->setIsLent(number > 3);
            if (number < 4)
                book->setPublished(Date::fromReferenceSeconds(number));
            if (number > 2)
                book->setAuthor(library.author(number % 2 ? "Aé" : "Zoe"));
            all.push_back(book);
        }
        library.save();
    }
    Library library;
    std::vector<std::shared_ptr<Book>> all;
};

/// A store in which the user has changed, removed and linked books of known identifiers.
class Journalled
{
public:
    Journalled()
    {
        library.elsewhere("INSERT INTO Shelf (id, name) VALUES ('s1', 'one'), ('s2', 'two');"
                          "INSERT INTO Author (id, name, born) VALUES ('a1', 'Zoe', 5);"
                          "INSERT INTO Label (id, name) VALUES ('l1', 'red');"
                          "INSERT INTO Book (id, title, pages, author, shelf) VALUES "
                          "('b1', 'first', 1, 'a1', 's1'), ('b2', 'second', 2, NULL, 's1'), "
                          "('b3', 'third', 3, 'a1', 's2')");
        library.reopen();
        makeStep();
        states[0] = taken();
        if (library->undo())
            qFatal("The step is not taken back");
        states[1] = taken();
    }
    /// Opens the store as it was after the step, or after that was taken back.
    Library &restored(bool isUndone)
    {
        library.close();
        QFile file(library.path());
        if (!file.open(QIODevice::WriteOnly) || file.write(states[isUndone]) < 0)
            qFatal("Cannot write the store");
        file.close();
        library.open();
        return library;
    }

private:
    void makeStep()
    {
        Transaction step(library.context(), ChangeAuthor::User, QStringLiteral("Step"));
        library.find("first")->setTitle(QStringLiteral("changed"));
        library.find("third")->setLabels({library->fetchFirst<Label>(FetchRequest("Label"))});
        library->deleteObject(library.find("second"));
        OutboxEntry outside;
        outside.place = QStringLiteral("Home");
        outside.key = QStringLiteral("event");
        outside.before = QByteArray("before");
        outside.after = QByteArray("after");
        library->post(outside);
        if (step.commit())
            qFatal("The step is not saved");
    }
    QByteArray taken()
    {
        library.close();
        QFile file(library.path());
        const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        library.open();
        return bytes;
    }
    Library library;
    std::array<QByteArray, 2> states;
};

} // namespace

QString contradictionInPredicate(const QByteArray &bytes)
{
    static Books *const books = new Books; // For as long as the process lives.
    if (bytes.size() > longestPredicate)
        return {};
    QString problem;
    const auto predicate = Predicate::tryParse({bytes.constData(), std::size_t(bytes.size())},
                                               argumentsFor(bytes, books->all.back()->author()), &problem);
    if (!predicate)
        return problem.isEmpty() ? QStringLiteral("refused without a reason") : QString();
    if (predicate->problemFor(libraryModel(), libraryModel().requireEntity("Book")))
        return {};
    const auto found = books->library->fetch<Book>(FetchRequest("Book").where(*predicate));
    const bool isAgreed = std::all_of(books->all.begin(), books->all.end(), [&](const auto &book) {
        return found.contains(*book) == predicate->evaluate(*book);
    });
    return isAgreed ? QString() : QStringLiteral("SQL finds others than pass in memory");
}

QString contradictionInJournal(const QByteArray &bytes)
{
    static Journalled *const store = new Journalled; // For as long as the process lives.
    if (bytes.isEmpty())
        return {};
    const bool isOutside = bytes.at(0) & 1;
    const bool isRedo = bytes.at(0) & 2;
    Library &library = store->restored(isRedo);
    // Without its digest, which would tell the damage.
    library.elsewhere("UPDATE ObjectStoreJournal SET digest = NULL, " +
                      QByteArray(isOutside ? "outside" : "changeset") + " = X'" + bytes.mid(1).toHex() +
                      '\'');
    const QStringList before = library.dump();
    const OptionalError refusal = isRedo ? library->redo() : library->undo();
    if (refusal && library.dump() != before)
        return QStringLiteral("refused, and changed all the same");
    if (library.ask(QStringLiteral("PRAGMA integrity_check")) != QStringList(QStringLiteral("ok")) ||
        !library.ask(QStringLiteral("PRAGMA foreign_key_check")).isEmpty())
        return QStringLiteral("the store is damaged");
    const auto added = library.author("Later");
    return library->save() ||
                   library.ask(QStringLiteral("SELECT id FROM Author WHERE name = 'Later'")).isEmpty()
               ? QStringLiteral("nothing can be saved any more")
               : QString();
}

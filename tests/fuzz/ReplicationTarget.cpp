#include "fuzz/Targets.h"

#include "platform/objectstore/Library.h"
#include "replication/Replica.h"

#include <QCryptographicHash>
#include <QFile>

namespace {

/// A store that takes part, with rows of known identifiers.
class Taking
{
public:
    Taking()
    {
        library.elsewhere("INSERT INTO Shelf (id, name) VALUES ('s1', 'one');"
                          "INSERT INTO Author (id, name, born) VALUES ('a1', 'Zoe', 5);"
                          "INSERT INTO Label (id, name) VALUES ('l1', 'red');"
                          "INSERT INTO Book (id, title, pages, author, shelf) VALUES "
                          "('b1', 'first', 1, 'a1', 's1'), ('b2', 'second', 2, NULL, 's1')");
        library.reopen();
        if (!replicaOf(library))
            qFatal("The store cannot take part");
        library.close();
        QFile file(library.path());
        state = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        library.open();
    }
    /// Opens the store as it was at first.
    Library &restored()
    {
        library.close();
        QFile file(library.path());
        if (!file.open(QIODevice::WriteOnly) || file.write(state) < 0)
            qFatal("Cannot write the store");
        file.close();
        library.open();
        return library;
    }
    static std::unique_ptr<replication::Replica> replicaOf(Library &of)
    {
        auto opened = replication::Replica::open(of.context(), QStringLiteral("Fuzz"), "fuzz");
        return opened ? std::move(*opened) : nullptr;
    }

private:
    Library library;
    QByteArray state;
};

} // namespace

QString contradictionInSave(const QByteArray &bytes)
{
    static Taking *const store = new Taking; // For as long as the process lives.
    // With the digest that would tell the damage.
    const QByteArray digest = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
    auto file = replication::ChangeFile::fromBytes("MVCHANGE" + digest + bytes);
    if (!file)
        return {};
    Library &library = store->restored();
    const QStringList before = library.dump();
    const auto replica = Taking::replicaOf(library);
    if (!replica)
        return QStringLiteral("the store cannot take part any more");
    constexpr int mostChanges = 1000;
    std::deque<replication::ChangeFile> waiting;
    waiting.push_back(std::move(*file));
    const auto taken = replica->takeIn(waiting, mostChanges);
    if (!taken && library.dump() != before)
        return QStringLiteral("refused, and changed all the same");
    if (taken && replica->hasUnsettled() && !replica->settle())
        return QStringLiteral("rows that wait for others cannot be looked at");
    if (library.ask(QStringLiteral("PRAGMA integrity_check")) != QStringList(QStringLiteral("ok")) ||
        !library.ask(QStringLiteral("PRAGMA foreign_key_check")).isEmpty())
        return QStringLiteral("the store is damaged");
    library.author("Later");
    return library->save() ||
                   library.ask(QStringLiteral("SELECT id FROM Author WHERE name = 'Later'")).isEmpty()
               ? QStringLiteral("nothing can be saved any more")
               : QString();
}

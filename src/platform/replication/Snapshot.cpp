#include "replication/Snapshot.h"

#include "foundation/PrivateFiles.h"
#include "objectstore/ManagedObjectModel.h"
#include "objectstore/SqlText.h"
#include "objectstore/Sqlite.h"

#include <QCborMap>
#include <QCborValue>
#include <QCryptographicHash>
#include <QFile>
#include <QSaveFile>
#include <QScopeGuard>
#include <QtEndian>

#include <sqlite3.h>

namespace replication::snapshot {

namespace {

const QByteArray fileMark = "MVSNAPSH";
constexpr int snapshotFormat = 1;
constexpr qsizetype partSize = 4'000'000;
constexpr qsizetype lengthSize = 4;
constexpr qsizetype partDigest = 32;
/// More than the parts that are written can become.
constexpr quint32 largestPart = 2 * partSize;
/// The quickest one: what is saved beyond that takes many times as long.
constexpr int compressionLevel = 1;

/// The keys of the head.
namespace headkey {
enum { Format, Schema, Device, Number, Seen, Parts, Size };
}

Error failure(const QString &why)
{
    return {QStringLiteral("snapshot"), 0, why};
}

QString partName(const QString &name, int part)
{
    return name + u'/' + QString::number(part);
}

QByteArray headBytes(const SnapshotHead &head, int parts, qint64 size)
{
    QCborMap map;
    map.insert(headkey::Format, snapshotFormat);
    map.insert(headkey::Schema, head.schema);
    map.insert(headkey::Device, QString::fromUtf8(head.dot.device));
    map.insert(headkey::Number, head.dot.number);
    map.insert(headkey::Seen, QString::fromUtf8(head.seen.text()));
    map.insert(headkey::Parts, parts);
    map.insert(headkey::Size, size);
    return QCborValue(map).toCbor();
}

/// Writes parts one behind the other.
class PartWriter
{
public:
    PartWriter(QIODevice &device, const Sealer *cipher, QString fileName)
        : file(device)
        , sealer(cipher)
        , name(std::move(fileName))
    {}
    /// A part with its number, which must be the next one.
    OptionalError write(int part, const QByteArray &content)
    {
        QByteArray bytes = content;
        if (sealer) {
            auto sealed = sealer->seal(content, partName(name, part));
            if (!sealed)
                return sealed.error();
            bytes = *sealed;
        }
        QByteArray length(lengthSize, '\0');
        qToBigEndian(static_cast<quint32>(bytes.size()), length.data());
        const QByteArray digest = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
        const QByteArray whole = length + digest + bytes;
        return file.write(whole) == whole.size() ? std::nullopt : OptionalError(failure(file.errorString()));
    }

private:
    QIODevice &file;
    const Sealer *sealer;
    QString name;
};

class PartReader
{
public:
    PartReader(QIODevice &device, const SealingStatus &status, QString fileName)
        : file(device)
        , sealed(status)
        , name(std::move(fileName))
    {}
    Result<QByteArray> read(int part)
    {
        const QByteArray begin = file.read(lengthSize + partDigest);
        if (begin.size() != lengthSize + partDigest)
            return failure(QStringLiteral("It is not complete"));
        const auto length = qFromBigEndian<quint32>(begin.constData());
        if (length > largestPart)
            return failure(QStringLiteral("It is no snapshot"));
        const QByteArray bytes = file.read(length);
        if (QCryptographicHash::hash(bytes, QCryptographicHash::Sha256) != begin.mid(lengthSize))
            return failure(QStringLiteral("It is not complete"));
        mark = Sealer::keyMarkIn(bytes);
        return sealed.opened(bytes, partName(name, part));
    }
    /// Of the key of the part that was read last.
    const QByteArray &keyMark() const { return mark; }

private:
    QIODevice &file;
    const SealingStatus &sealed;
    QByteArray mark;
    QString name;
};

struct HeadWithParts
{
    SnapshotHead head;
    int parts = 0;
};

Result<HeadWithParts> headOf(QFile &file, PartReader &reader)
{
    if (!file.open(QIODevice::ReadOnly))
        return failure(file.errorString());
    if (file.read(fileMark.size()) != fileMark)
        return failure(QStringLiteral("It is no snapshot"));
    auto bytes = reader.read(0);
    if (!bytes)
        return bytes.error();
    QCborParserError parser;
    const QCborValue value = QCborValue::fromCbor(*bytes, &parser);
    if (parser.error.c != QCborError::NoError)
        return failure(QStringLiteral("It is damaged"));
    const QCborMap map = value.toMap();
    if (map.value(headkey::Format).toInteger() != snapshotFormat)
        return failure(QStringLiteral("It was written by another version of the program"));
    HeadWithParts found;
    found.head.schema = static_cast<int>(map.value(headkey::Schema).toInteger());
    found.head.dot = {map.value(headkey::Device).toString().toUtf8(), map.value(headkey::Number).toInteger()};
    found.head.seen = VersionVector::fromText(map.value(headkey::Seen).toString().toUtf8());
    found.head.size = file.size();
    found.head.keyMark = reader.keyMark();
    found.parts = static_cast<int>(map.value(headkey::Parts).toInteger());
    // The parts before it was known how long they become.
    const qint64 expected = file.pos() + map.value(headkey::Size).toInteger();
    if (found.head.dot.device.isEmpty() || found.parts < 1 || expected != file.size())
        return failure(QStringLiteral("It is not complete"));
    return found;
}

/// The tables that a snapshot has.
std::vector<QByteArray> tablesOf(const ManagedObjectModel &model)
{
    std::vector<QByteArray> tables;
    for (const EntityDescription &entity : model.entities()) {
        if (entity.isDerived())
            continue;
        tables.push_back(entity.table());
        for (const RelationshipDescription &one : entity.relationships()) {
            if (one.cardinality == Cardinality::ToManyOwningJoin)
                tables.push_back(model.joinTable(entity, one).table);
        }
    }
    return tables;
}

QByteArray extraction(const ManagedObjectModel &model)
{
    QByteArray sql =
        "CREATE TABLE copy.ObjectStoreRowStates (tbl TEXT NOT NULL, id TEXT NOT NULL, stamp INTEGER NOT NULL,"
        " device TEXT NOT NULL, events TEXT NOT NULL, buried TEXT, deletions TEXT, PRIMARY KEY (tbl, id))"
        " WITHOUT ROWID;"
        "CREATE TABLE copy.ObjectStoreCellStamps (tbl TEXT NOT NULL, id TEXT NOT NULL, col TEXT NOT NULL,"
        " stamp INTEGER NOT NULL, device TEXT NOT NULL, PRIMARY KEY (tbl, id, col)) WITHOUT ROWID;"
        "CREATE TABLE copy.ObjectStoreParked (tbl TEXT NOT NULL, id TEXT NOT NULL, col TEXT NOT NULL, value,"
        " PRIMARY KEY (tbl, id, col)) WITHOUT ROWID;"
        "CREATE TABLE copy.ObjectStoreReplicas (device TEXT PRIMARY KEY NOT NULL, name TEXT, number INTEGER,"
        " time INTEGER, seen TEXT, wall INTEGER, heard INTEGER, removed INTEGER, holdings TEXT) WITHOUT "
        "ROWID;"
        "INSERT INTO copy.ObjectStoreRowStates SELECT tbl, id, stamp, device, events, buried, deletions FROM"
        " main.ObjectStoreRowStates;"
        "INSERT INTO copy.ObjectStoreCellStamps SELECT tbl, id, col, stamp, device FROM"
        " main.ObjectStoreCellStamps;"
        "INSERT INTO copy.ObjectStoreParked SELECT tbl, id, col, value FROM main.ObjectStoreParked;"
        "INSERT INTO copy.ObjectStoreReplicas SELECT device, name, number, time, seen, wall, heard,"
        " removed, holdings FROM main.ObjectStoreReplicas;"
        // The number of the last save stands with the save.
        "UPDATE copy.ObjectStoreReplicas SET number = MAX(number, (SELECT IFNULL(MAX(number), 0) FROM"
        " main.ObjectStoreOutgoing)) WHERE device = (SELECT device FROM main.ObjectStoreReplicas WHERE"
        " machine IS NOT NULL);";
    for (const QByteArray &table : tablesOf(model))
        sql += "CREATE TABLE copy." + quoted(table) + " AS SELECT * FROM main." + quoted(table) + ';';
    return sql;
}

} // namespace

Result<SnapshotHead> extract(const QString &storePath, const ManagedObjectModel &model,
                             const QString &databasePath, const std::atomic<bool> &isCancelled)
{
    // An empty file is an empty database, which the connection does not make by itself.
    QFile::remove(databasePath);
    PrivateFiles::makeFile(databasePath);
    auto opened = sqlite::Database::open(storePath, sqlite::Database::Mode::ReadWrite);
    if (!opened)
        return opened.error();
    sqlite::Database &database = **opened;
    database.setCheckpointAtEnd(false);
    constexpr int stepsBetweenLooks = 10'000;
    sqlite3_progress_handler(
        database.handle(), stepsBetweenLooks,
        [](void *cancelled) { return static_cast<const std::atomic<bool> *>(cancelled)->load() ? 1 : 0; },
        const_cast<std::atomic<bool> *>(&isCancelled));
    sqlite::Statement attached = database.prepare("ATTACH ? AS copy");
    if (!attached.bind(databasePath).run())
        return database.lastError(QStringLiteral("Cannot make a snapshot"));
    attached.reset();
    OptionalError error = database.execute("PRAGMA copy.journal_mode = OFF; PRAGMA copy.synchronous = OFF;"
                                           "BEGIN;" +
                                           extraction(model) + "COMMIT");
    if (error) {
        QFile::remove(databasePath);
        return *error;
    }
    SnapshotHead head{model.version(), {}, {}, 0};
    sqlite::Statement devices = database.prepare("SELECT device, number FROM copy.ObjectStoreReplicas");
    while (devices.step())
        head.seen.add(devices.text(0).toUtf8(), devices.integer(1));
    sqlite::Statement own =
        database.prepare("SELECT device, number FROM main.ObjectStoreReplicas WHERE machine IS NOT NULL");
    if (own.step())
        head.dot = {own.text(0).toUtf8(), head.seen.of(own.text(0).toUtf8())};
    return head;
}

OptionalError pack(const SnapshotHead &head, const QString &databasePath, const Sealer *sealer,
                   const QString &name, const QString &path)
{
    QFile database(databasePath);
    if (!database.open(QIODevice::ReadOnly))
        return failure(database.errorString());
    // The head comes first, and says how long the rest is: the rest waits beside the database.
    QFile rest(databasePath + QStringLiteral(".parts"));
    if (!rest.open(QIODevice::ReadWrite | QIODevice::Truncate | QIODevice::Unbuffered))
        return failure(rest.errorString());
    const auto remover = qScopeGuard([&rest] { rest.remove(); });
    PartWriter parts(rest, sealer, name);
    int count = 0;
    while (!database.atEnd()) {
        if (auto error = parts.write(++count, qCompress(database.read(partSize), compressionLevel)))
            return error;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return failure(file.errorString());
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    if (file.write(fileMark) != fileMark.size())
        return failure(file.errorString());
    if (auto error = PartWriter(file, sealer, name).write(0, headBytes(head, count, rest.size())))
        return error;
    rest.seek(0);
    while (!rest.atEnd()) {
        const QByteArray bytes = rest.read(partSize);
        if (file.write(bytes) != bytes.size())
            return failure(file.errorString());
    }
    return file.commit() ? std::nullopt : OptionalError(failure(file.errorString()));
}

Result<SnapshotHead> readHead(const QString &path, const SealingStatus &sealed, const QString &name)
{
    QFile file(path);
    PartReader reader(file, sealed, name);
    auto found = headOf(file, reader);
    return found ? Result<SnapshotHead>(found->head) : Result<SnapshotHead>(found.error());
}

Result<SnapshotHead> unpack(const QString &path, const SealingStatus &sealed, const QString &name,
                            const QString &databasePath)
{
    QFile file(path);
    PartReader reader(file, sealed, name);
    auto found = headOf(file, reader);
    if (!found)
        return found.error();
    QFile database(databasePath);
    if (!databasePath.isEmpty()) {
        PrivateFiles::makeFile(databasePath);
        if (!database.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return failure(database.errorString());
    }
    auto remover = qScopeGuard([&database, &databasePath] {
        if (!databasePath.isEmpty())
            database.remove();
    });
    for (int part = 1; part <= found->parts; ++part) {
        auto bytes = reader.read(part);
        if (!bytes)
            return bytes.error();
        const QByteArray content = qUncompress(*bytes);
        if (content.isEmpty() || content.size() > partSize)
            return failure(QStringLiteral("It is damaged"));
        if (!databasePath.isEmpty() && database.write(content) != content.size())
            return failure(database.errorString());
    }
    if (!databasePath.isEmpty() && !database.flush())
        return failure(database.errorString());
    remover.dismiss();
    return found->head;
}

} // namespace replication::snapshot

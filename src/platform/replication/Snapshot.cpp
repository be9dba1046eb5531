#include "replication/Snapshot.h"

#include "foundation/PrivateFiles.h"
#include "objectstore/ManagedObjectModel.h"
#include "objectstore/SqlText.h"
#include "objectstore/Sqlite.h"
#include "objectstore/StoreFile.h"
#include "replication/WholeNumber.h"

#include <QCborMap>
#include <QCborValue>
#include <QCryptographicHash>
#include <QFile>
#include <QSaveFile>
#include <QScopeGuard>
#include <QThreadPool>
#include <QtEndian>

#include <sqlite3.h>
#include <zstd.h>

#include <algorithm>

namespace replication::snapshot {

namespace {

const QByteArray fileMark = "MVSNAPSH";
/// Zstandard frames, RFC 8878. The parts of the first format, which can still be read, are zlib streams.
constexpr int snapshotFormat = 2;
constexpr int zlibFormat = 1;
constexpr qsizetype partSize = 4'000'000;
constexpr qsizetype lengthSize = 4;
constexpr qsizetype partDigest = 32;
/// More than the parts that are written can become.
constexpr quint32 largestPart = 2 * partSize;
/// A quick one: what is saved beyond that takes many times as long.
constexpr int compressionLevel = 1;

/// The keys of the head.
namespace headkey {
enum { Format, Schema, Device, Number, Seen, Parts, Size };
}

Error failure(const QString &why)
{
    return {QStringLiteral("snapshot"), 0, why};
}

/// Empty if there is no memory for it.
QByteArray compressed(const QByteArray &bytes)
{
    QByteArray frame(static_cast<qsizetype>(ZSTD_compressBound(static_cast<size_t>(bytes.size()))),
                     Qt::Uninitialized);
    const size_t size = ZSTD_compress(frame.data(), static_cast<size_t>(frame.size()), bytes.constData(),
                                      static_cast<size_t>(bytes.size()), compressionLevel);
    frame.truncate(ZSTD_isError(size) ? 0 : static_cast<qsizetype>(size));
    return frame;
}

/// What was compressed to a part; empty if it cannot be one.
QByteArray uncompressed(const QByteArray &part, int format)
{
    if (format == zlibFormat)
        return qUncompress(part);
    QByteArray bytes(partSize, Qt::Uninitialized);
    const size_t size = ZSTD_decompress(bytes.data(), static_cast<size_t>(bytes.size()), part.constData(),
                                        static_cast<size_t>(part.size()));
    bytes.truncate(ZSTD_isError(size) ? 0 : static_cast<qsizetype>(size));
    return bytes;
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
    /// A part as it stands in the file.
    struct Packed
    {
        int number = 0;
        QByteArray digest = {};
        QByteArray bytes = {};
    };
    /// The next part, which must have the number.
    Result<Packed> next(int number)
    {
        const QByteArray begin = file.read(lengthSize + partDigest);
        if (begin.size() != lengthSize + partDigest)
            return failure(QStringLiteral("It is not complete"));
        const auto length = qFromBigEndian<quint32>(begin.constData());
        if (length > largestPart)
            return failure(QStringLiteral("It is no snapshot"));
        return Packed{number, begin.mid(lengthSize), file.read(length)};
    }
    /// What is in a part. Any thread, several at a time.
    Result<QByteArray> opened(const Packed &part) const
    {
        if (QCryptographicHash::hash(part.bytes, QCryptographicHash::Sha256) != part.digest)
            return failure(QStringLiteral("It is not complete"));
        return sealed.opened(part.bytes, partName(name, part.number));
    }

private:
    QIODevice &file;
    const SealingStatus &sealed;
    QString name;
};

struct HeadWithParts
{
    SnapshotHead head;
    int format = 0;
    int parts = 0;
};

Result<HeadWithParts> headOf(QFile &file, PartReader &reader)
{
    if (!file.open(QIODevice::ReadOnly))
        return failure(file.errorString());
    if (file.read(fileMark.size()) != fileMark)
        return failure(QStringLiteral("It is no snapshot"));
    auto part = reader.next(0);
    if (!part)
        return part.error();
    auto bytes = reader.opened(*part);
    if (!bytes)
        return bytes.error();
    QCborParserError parser;
    const QCborValue value = QCborValue::fromCbor(*bytes, &parser);
    if (parser.error.c != QCborError::NoError)
        return failure(QStringLiteral("It is damaged"));
    const QCborMap map = value.toMap();
    HeadWithParts found;
    found.format = static_cast<int>(wholeNumber(map.value(headkey::Format)));
    if (found.format != snapshotFormat && found.format != zlibFormat)
        return failure(QStringLiteral("It was written by another version of the program"));
    found.head.schema = static_cast<int>(wholeNumber(map.value(headkey::Schema)));
    found.head.dot = {map.value(headkey::Device).toString().toUtf8(),
                      wholeNumber(map.value(headkey::Number))};
    found.head.seen = VersionVector::fromText(map.value(headkey::Seen).toString().toUtf8());
    found.head.size = file.size();
    found.head.keyMark = Sealer::keyMarkIn(part->bytes);
    found.parts = static_cast<int>(wholeNumber(map.value(headkey::Parts)));
    // The parts before it was known how long they become.
    const qint64 size = wholeNumber(map.value(headkey::Size));
    if (found.head.dot.device.isEmpty() || found.parts < 1 || size != file.size() - file.pos())
        return failure(QStringLiteral("It is not complete"));
    return found;
}

/// So many parts are unpacked beside each other.
constexpr int partsAtOnce = 4;

/// The next parts of the database, in their order.
Result<std::vector<QByteArray>> unpackParts(PartReader &reader, int format, int first, int count)
{
    std::vector<PartReader::Packed> parts;
    for (int number = first; number < first + count; ++number) {
        auto part = reader.next(number);
        if (!part)
            return part.error();
        parts.push_back(std::move(*part));
    }
    std::vector<Result<QByteArray>> contents(parts.size(), Result<QByteArray>(QByteArray()));
    QThreadPool threads;
    for (size_t place = 0; place < parts.size(); ++place) {
        threads.start([&reader, format, &part = parts[place], &content = contents[place]] {
            content = reader.opened(part);
            if (content)
                content = uncompressed(*content, format);
        });
    }
    threads.waitForDone();
    std::vector<QByteArray> unpacked;
    for (Result<QByteArray> &content : contents) {
        if (!content)
            return content.error();
        if (content->isEmpty() || content->size() > partSize)
            return failure(QStringLiteral("It is damaged"));
        unpacked.push_back(std::move(*content));
    }
    return unpacked;
}

std::vector<std::pair<QByteArray, QByteArray>> columnsOf(sqlite::Database &database, const char *schema,
                                                         const QByteArray &table)
{
    std::vector<std::pair<QByteArray, QByteArray>> columns;
    sqlite::Statement statement =
        database.prepare("PRAGMA " + QByteArray(schema) + ".table_info(" + quoted(table) + ')');
    while (statement.step())
        columns.emplace_back(statement.text(1).toUtf8(), statement.text(2).toUtf8());
    return columns;
}

/// The rows of a table. Columns stand in the order of a new store, whatever the order is here, so that a new
/// device can take over the whole table; those that the model does not know come behind.
QByteArray rowsOf(sqlite::Database &database, const QByteArray &table)
{
    const auto known = columnsOf(database, "copy", table);
    QByteArray sql;
    QByteArray names;
    for (const auto &column : columnsOf(database, "main", table)) {
        const QByteArray &name = column.first;
        names += (names.isEmpty() ? "" : ", ") + quoted(name);
        const auto isNamed = [&name](const auto &one) {
            return one.first.compare(name, Qt::CaseInsensitive) == 0;
        };
        if (std::ranges::none_of(known, isNamed))
            sql += "ALTER TABLE copy." + quoted(table) + " ADD COLUMN " + quoted(name) + ' ' + column.second +
                   ';';
    }
    return sql + "INSERT OR IGNORE INTO copy." + quoted(table) + " (" + names + ") SELECT " + names +
           " FROM main." + quoted(table) + ';';
}

/// The rows of all tables. Indexes are made of the rows, so that a damaged one does not travel.
OptionalError extractRows(sqlite::Database &database, const ManagedObjectModel &model)
{
    for (const EntityDescription &entity : model.entities()) {
        if (entity.isDerived())
            continue;
        if (auto error = database.execute(storefile::tablesOf(entity, "copy")))
            return error;
        QByteArray sql = rowsOf(database, entity.table());
        for (const RelationshipDescription &one : entity.relationships()) {
            if (one.cardinality == Cardinality::ToManyOwningJoin)
                sql += rowsOf(database, model.joinTable(entity, one).table);
        }
        if (auto error = database.execute(sql + storefile::indexesOf(entity, "copy")))
            return error;
    }
    return std::nullopt;
}

/// Makes the books, with what they hold.
const QByteArray extraction =
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
                                           "PRAGMA copy.cache_size = -65536; BEGIN;" +
                                           extraction);
    if (!error)
        error = extractRows(database, model);
    if (!error)
        error = database.execute("COMMIT");
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
        const QByteArray part = compressed(database.read(partSize));
        if (part.isEmpty())
            return failure(QStringLiteral("There is not enough memory"));
        if (auto error = parts.write(++count, part))
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
    for (int first = 1; first <= found->parts; first += partsAtOnce) {
        auto contents =
            unpackParts(reader, found->format, first, std::min(partsAtOnce, found->parts - first + 1));
        if (!contents)
            return contents.error();
        for (const QByteArray &content : *contents) {
            if (!databasePath.isEmpty() && database.write(content) != content.size())
                return failure(database.errorString());
        }
    }
    if (!databasePath.isEmpty() && !database.flush())
        return failure(database.errorString());
    remover.dismiss();
    return found->head;
}

} // namespace replication::snapshot

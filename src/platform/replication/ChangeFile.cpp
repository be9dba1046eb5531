#include "replication/ChangeFile.h"

#include "objectstore/ManagedObjectModel.h"
#include "replication/WholeNumber.h"

#include <QCborArray>
#include <QCborMap>
#include <QCborValue>
#include <QCryptographicHash>

namespace replication {

namespace {

const QByteArray mark = "MVCHANGE";
constexpr qsizetype digestLength = 32;
constexpr int formatVersion = 1;

/// The keys of the map.
namespace key {
enum {
    Format,
    Schema,
    Device,
    Number,
    Time,
    Seen,
    Name,
    Tables,
    Changes,
    Touched,
    Wall,
    Removed,
    Holdings,
    Unseen
};
}

Error unreadable(const char *why)
{
    return {QStringLiteral("replication"), 0, QString::fromUtf8(why)};
}

} // namespace

QByteArray ChangeFile::toBytes() const
{
    QCborMap columns;
    for (const auto &[table, names] : tables) {
        QCborArray list;
        for (const QByteArray &name : names)
            list.append(QString::fromUtf8(name));
        columns.insert(QString::fromUtf8(table), list);
    }
    QCborMap map;
    map.insert(key::Format, formatVersion);
    map.insert(key::Schema, schema);
    map.insert(key::Device, QString::fromUtf8(dot.device));
    map.insert(key::Number, dot.number);
    map.insert(key::Time, time);
    map.insert(key::Wall, wall);
    map.insert(key::Seen, QString::fromUtf8(seen.text()));
    map.insert(key::Name, deviceName);
    map.insert(key::Tables, columns);
    map.insert(key::Changes, changeset);
    QCborArray rows;
    for (const RowKey &one : touched)
        rows.append(QCborArray{QString::fromUtf8(one.table), one.id});
    map.insert(key::Touched, rows);
    if (!removed.isEmpty())
        map.insert(key::Removed, QString::fromUtf8(removed.text()));
    if (holdings)
        map.insert(key::Holdings, QCborArray::fromStringList(*holdings));
    if (!unseen.isEmpty())
        map.insert(key::Unseen, QCborArray::fromStringList(unseen));
    const QByteArray content = QCborValue(map).toCbor();
    return mark + QCryptographicHash::hash(content, QCryptographicHash::Sha256) + content;
}

Result<ChangeFile> ChangeFile::fromBytes(const QByteArray &bytes)
{
    if (!bytes.startsWith(mark) || bytes.size() < mark.size() + digestLength)
        return unreadable("It is no file of changes");
    const QByteArray content = bytes.mid(mark.size() + digestLength);
    if (QCryptographicHash::hash(content, QCryptographicHash::Sha256) != bytes.mid(mark.size(), digestLength))
        return unreadable("It is not complete");
    // What was read before an error is no map that can be asked.
    QCborParserError parser;
    const QCborValue value = QCborValue::fromCbor(content, &parser);
    if (parser.error.c != QCborError::NoError)
        return unreadable("It is damaged");
    const QCborMap map = value.toMap();
    if (wholeNumber(map.value(key::Format)) != formatVersion)
        return unreadable("It was written by another version of the program");
    ChangeFile file;
    file.schema = static_cast<int>(wholeNumber(map.value(key::Schema)));
    file.dot = {map.value(key::Device).toString().toUtf8(), wholeNumber(map.value(key::Number))};
    file.time = wholeNumber(map.value(key::Time));
    file.wall = wholeNumber(map.value(key::Wall));
    file.seen = VersionVector::fromText(map.value(key::Seen).toString().toUtf8());
    file.deviceName = map.value(key::Name).toString();
    file.changeset = map.value(key::Changes).toByteArray();
    const QCborMap columns = map.value(key::Tables).toMap();
    for (const auto &[table, names] : columns) {
        std::vector<QByteArray> &list = file.tables[table.toString().toUtf8()];
        for (const QCborValue &name : names.toArray())
            list.push_back(name.toString().toUtf8());
    }
    for (const QCborValue &one : map.value(key::Touched).toArray())
        file.touched.push_back({one.toArray().at(0).toString().toUtf8(), one.toArray().at(1).toString()});
    file.removed = VersionVector::fromText(map.value(key::Removed).toString().toUtf8());
    if (map.contains(key::Holdings)) {
        file.holdings.emplace();
        for (const QCborValue &one : map.value(key::Holdings).toArray())
            file.holdings->append(one.toString());
    }
    for (const QCborValue &one : map.value(key::Unseen).toArray())
        file.unseen.append(one.toString());
    constexpr qint64 latest = qint64(1) << 62;
    if (file.dot.device.isEmpty() || file.dot.number < 1 || file.time < 1 || file.time > latest)
        return unreadable("It does not say which save it is");
    return file;
}

std::optional<std::vector<RowDelta>> ChangeFile::deltas(const ManagedObjectModel &model) const
{
    std::vector<RowDelta> list;
    if (!readChangeset(changeset, tables, model, {time, dot.device}, dot, seen, list))
        return std::nullopt;
    addTouched(model, list);
    return list;
}

void ChangeFile::addTouched(const ManagedObjectModel &model, std::vector<RowDelta> &list) const
{
    for (const RowKey &one : touched) {
        if (!model.entityOfTable({one.table.constData(), static_cast<size_t>(one.table.size())}))
            continue;
        RowDelta delta{.key = one};
        delta.events.add(dot.device, dot.number);
        list.push_back(std::move(delta));
    }
}

} // namespace replication

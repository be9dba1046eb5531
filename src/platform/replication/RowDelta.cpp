#include "replication/RowDelta.h"

#include "objectstore/ChangesetCheck.h"
#include "objectstore/ManagedObjectModel.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstring>

namespace replication {

RawValue copied(const sqlite3_value *value)
{
    return {value ? sqlite3_value_dup(value) : nullptr, sqlite3_value_free};
}

bool isNull(const RawValue &value)
{
    return !value || sqlite3_value_type(value.get()) == SQLITE_NULL;
}

bool isSame(const RawValue &one, const RawValue &other)
{
    if (isNull(one) || isNull(other))
        return isNull(one) && isNull(other);
    const int type = sqlite3_value_type(one.get());
    if (type != sqlite3_value_type(other.get()))
        return false;
    if (type == SQLITE_INTEGER)
        return sqlite3_value_int64(one.get()) == sqlite3_value_int64(other.get());
    if (type == SQLITE_FLOAT)
        return sqlite3_value_double(one.get()) == sqlite3_value_double(other.get());
    const int size = sqlite3_value_bytes(one.get());
    return size == sqlite3_value_bytes(other.get()) &&
           std::memcmp(sqlite3_value_blob(one.get()), sqlite3_value_blob(other.get()),
                       static_cast<size_t>(size)) == 0;
}

QString textIn(const RawValue &value)
{
    if (!value || sqlite3_value_type(value.get()) != SQLITE_TEXT)
        return {};
    return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_value_text(value.get())),
                             sqlite3_value_bytes(value.get()));
}

Stamp RowState::stampOf(const QByteArray &column) const
{
    const auto found = cells.find(column);
    return found == cells.end() ? base : std::max(base, found->second);
}

namespace {

/// Steps through a changeset, whatever its end.
class Iterator
{
public:
    explicit Iterator(const QByteArray &changeset)
    {
        void *bytes = const_cast<char *>(changeset.constData());
        code = sqlite3changeset_start(&handle, static_cast<int>(changeset.size()), bytes);
    }
    ~Iterator() { sqlite3changeset_finalize(handle); }
    Iterator(const Iterator &) = delete;
    Iterator &operator=(const Iterator &) = delete;

    bool next()
    {
        if (code != SQLITE_OK && code != SQLITE_ROW)
            return false;
        code = sqlite3changeset_next(handle);
        if (code != SQLITE_ROW)
            return false;
        const char *name = nullptr;
        int isIndirect = 0;
        sqlite3changeset_op(handle, &name, &columnCount, &kind, &isIndirect);
        table = name;
        return true;
    }
    bool isAtEnd() const { return code == SQLITE_DONE; }
    RawValue before(int column) const
    {
        sqlite3_value *value = nullptr;
        if (kind != SQLITE_INSERT)
            sqlite3changeset_old(handle, column, &value);
        return value ? copied(value) : nullptr;
    }
    RawValue after(int column) const
    {
        sqlite3_value *value = nullptr;
        if (kind != SQLITE_DELETE)
            sqlite3changeset_new(handle, column, &value);
        return value ? copied(value) : nullptr;
    }

    QByteArray table;
    int columnCount = 0;
    int kind = 0;

private:
    sqlite3_changeset_iter *handle = nullptr;
    int code = SQLITE_ERROR;
};

/// Reads the operations of one changeset.
class Reader
{
public:
    Reader(const TableColumns &columns, const ManagedObjectModel &objectModel, std::vector<RowDelta> &into)
        : tables(columns)
        , model(objectModel)
        , deltas(into)
    {}

    bool read(const QByteArray &changeset, const Stamp &stamp, const Dot &dot, const VersionVector &seen)
    {
        const size_t first = deltas.size();
        Iterator operation(changeset);
        while (operation.next()) {
            const EntityDescription *entity = model.entityOfTable(operation.table.toStdString());
            const auto known = tables.find(operation.table);
            if (known == tables.end())
                return false;
            if (!entity)
                continue;
            if (operation.columnCount > static_cast<int>(known->second.size()))
                return false;
            const bool isRead = operation.table == entity->table()
                                    ? readRow(operation, *entity, known->second, stamp)
                                    : readPair(operation, known->second, stamp);
            if (!isRead)
                return false;
        }
        if (!operation.isAtEnd())
            return false;
        setAsideLostReferences(first);
        addSaves(first, dot, seen);
        return true;
    }

private:
    bool readRow(const Iterator &operation, const EntityDescription &entity,
                 const std::vector<QByteArray> &columns, const Stamp &stamp)
    {
        RowDelta delta;
        delta.key.table = operation.table;
        if (operation.kind == SQLITE_INSERT)
            delta.base = stamp;
        for (int place = 0; place < operation.columnCount; ++place) {
            const QByteArray &name = columns[static_cast<size_t>(place)];
            const RawValue before = operation.before(place);
            const RawValue after = operation.after(place);
            if (name == "id") {
                delta.key.id = textIn(before ? before : after);
                continue;
            }
            const int column =
                entity.columnOf(std::string_view(name.constData(), static_cast<size_t>(name.size())));
            if (column < 0)
                continue;
            if (before)
                delta.formerValues[name] = before;
            if (operation.kind != SQLITE_DELETE && after)
                delta.cells[name] = {stamp, after};
            if (operation.kind == SQLITE_UPDATE && after && isNull(after) && !isNull(before) &&
                entity.relationshipOfColumn(column))
                delta.lostReferences[name] = before;
        }
        isDeletion.push_back(operation.kind == SQLITE_DELETE);
        if (operation.kind == SQLITE_DELETE)
            deletedRows.insert(delta.key);
        deltas.push_back(std::move(delta));
        return !deltas.back().key.id.isEmpty();
    }

    bool readPair(const Iterator &operation, const std::vector<QByteArray> &columns, const Stamp &stamp)
    {
        QString source;
        QString target;
        for (int place = 0; place < operation.columnCount; ++place) {
            const QByteArray &name = columns[static_cast<size_t>(place)];
            const QString end =
                textIn(operation.kind == SQLITE_DELETE ? operation.before(place) : operation.after(place));
            if (name == "source")
                source = end;
            else if (name == "target")
                target = end;
        }
        if (operation.kind == SQLITE_UPDATE || source.isEmpty() || target.isEmpty())
            return false;
        RowDelta delta{.key = {operation.table, source + u'/' + target}};
        if (operation.kind == SQLITE_INSERT)
            delta.base = stamp;
        for (int place = 0; place < operation.columnCount && operation.kind == SQLITE_DELETE; ++place)
            delta.formerValues[columns[static_cast<size_t>(place)]] = operation.before(place);
        isDeletion.push_back(operation.kind == SQLITE_DELETE);
        deltas.push_back(std::move(delta));
        return true;
    }

    /// A reference counts as lost only if the row that it named goes with the same save.
    void setAsideLostReferences(size_t first)
    {
        for (size_t place = first; place < deltas.size(); ++place) {
            RowDelta &delta = deltas[place];
            const EntityDescription *entity = model.entityOfTable(delta.key.table.toStdString());
            std::erase_if(delta.lostReferences, [&](const auto &lost) {
                const int column = entity->columnOf(
                    std::string_view(lost.first.constData(), static_cast<size_t>(lost.first.size())));
                const EntityDescription &target = model.destinationOf(*entity->relationshipOfColumn(column));
                if (!deletedRows.contains({target.table(), textIn(lost.second)}))
                    return true;
                delta.cells.erase(lost.first);
                return false;
            });
        }
    }

    void addSaves(size_t first, const Dot &dot, const VersionVector &seen)
    {
        for (size_t place = first; place < deltas.size(); ++place) {
            RowDelta &delta = deltas[place];
            if (isDeletion[place - first]) {
                delta.buried = seen;
                delta.buried.add(dot.device, dot.number);
                delta.deletions.insert(dot);
            } else if (delta.base.time > 0 || !delta.cells.empty()) {
                delta.events.add(dot.device, dot.number);
            }
        }
    }

    const TableColumns &tables;
    const ManagedObjectModel &model;
    std::vector<RowDelta> &deltas;
    std::vector<bool> isDeletion;
    std::set<RowKey> deletedRows;
};

} // namespace

bool readChangeset(const QByteArray &changeset, const TableColumns &columns, const ManagedObjectModel &model,
                   const Stamp &stamp, const Dot &dot, const VersionVector &seen,
                   std::vector<RowDelta> &deltas)
{
    if (changeset.isEmpty())
        return true;
    return isWellFormedChangeset(changeset) &&
           Reader(columns, model, deltas).read(changeset, stamp, dot, seen);
}

} // namespace replication

#include "replication/RowMerge.h"

#include "objectstore/SqlText.h"
#include "objectstore/SubstringIndex.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>

namespace replication {

namespace {

std::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<size_t>(bytes.size())};
}

QByteArray bytesOf(std::string_view text)
{
    return {text.data(), static_cast<qsizetype>(text.size())};
}

} // namespace

RowMerge::RowMerge(sqlite::Database &connection, const ManagedObjectModel &objectModel,
                   RowNumbering numbering)
    : database(connection)
    , model(objectModel)
    , nextRow(std::move(numbering))
    , ledger(connection)
{}

// What the model says.

const EntityDescription *RowMerge::entityOf(const RowKey &key) const
{
    return model.entityOfTable(viewOf(key.table));
}

bool RowMerge::isPair(const RowKey &key) const
{
    const EntityDescription *entity = entityOf(key);
    return entity && entity->table() != key.table;
}

std::array<RowKey, 2> RowMerge::endsOf(const RowKey &pair) const
{
    const EntityDescription *entity = entityOf(pair);
    const qsizetype slash = pair.id.indexOf(u'/');
    QByteArray targetTable;
    for (const RelationshipDescription &relationship : entity->relationships()) {
        if (relationship.cardinality == Cardinality::ToManyOwningJoin &&
            model.joinTable(*entity, relationship).table == pair.table)
            targetTable = model.destinationOf(relationship).table();
    }
    return {RowKey{entity->table(), pair.id.left(slash)}, RowKey{targetTable, pair.id.mid(slash + 1)}};
}

const std::vector<RowMerge::Reference> &RowMerge::referencesTo(const EntityDescription &target)
{
    const auto [place, isNew] = references.try_emplace(&target);
    if (!isNew)
        return place->second;
    for (const EntityDescription &entity : model.entities()) {
        if (entity.isDerived())
            continue;
        for (const RelationshipDescription &one : entity.relationships()) {
            if (one.cardinality != Cardinality::ToOne || one.destination != target.name())
                continue;
            const RelationshipDescription *inverse = target.relationship(one.inverse);
            const bool isOwner = inverse && inverse->deleteRule == DeleteRule::Cascade;
            place->second.push_back({&entity, &one, bytesOf(one.name), isOwner});
        }
    }
    return place->second;
}

const RowMerge::Reference *RowMerge::referenceIn(const RowKey &key, const QByteArray &column)
{
    const EntityDescription *entity = entityOf(key);
    if (!entity || entity->table() != key.table)
        return nullptr;
    const RelationshipDescription *relationship = entity->relationship(viewOf(column));
    if (!relationship || relationship->cardinality != Cardinality::ToOne)
        return nullptr;
    for (const Reference &one : referencesTo(model.destinationOf(*relationship))) {
        if (one.entity == entity && one.column == column)
            return &one;
    }
    return nullptr;
}

// What the store and its books say.

bool RowMerge::isInTable(const RowKey &key)
{
    const auto known = inTable.find(key);
    if (known != inTable.end())
        return known->second;
    sqlite::Statement statement = database.prepare(
        isPair(key) ? "SELECT 1 FROM " + quoted(key.table) + " WHERE source = ? AND target = ?"
                    : "SELECT 1 FROM " + quoted(key.table) + " WHERE \"id\" = ?");
    if (isPair(key)) {
        const auto ends = endsOf(key);
        statement.bind(ends[0].id).bind(ends[1].id);
    } else {
        statement.bind(key.id);
    }
    return inTable[key] = statement.step();
}

/// What a column says, whether it can be seen or not.
RawValue RowMerge::logicalValue(const RowKey &key, const QByteArray &column)
{
    const auto &parked = ledger.row(key).parked;
    const auto found = parked.find(column);
    if (found != parked.end())
        return found->second;
    if (!isInTable(key))
        return nullptr;
    sqlite::Statement statement =
        database.prepare("SELECT " + quoted(column) + " FROM " + quoted(key.table) + " WHERE \"id\" = ?");
    return statement.bind(key.id).step() ? copied(statement.raw(0)) : nullptr;
}

/// The rows without which a row means nothing: the ends of a pair, the owner of a detail.
std::vector<RowKey> RowMerge::ownersOf(const RowKey &key)
{
    if (isPair(key)) {
        const auto ends = endsOf(key);
        return {ends.begin(), ends.end()};
    }
    std::vector<RowKey> owners;
    const EntityDescription *entity = entityOf(key);
    for (const RelationshipDescription &one : entity->relationships()) {
        const Reference *reference = referenceIn(key, bytesOf(one.name));
        if (!reference || !reference->isOwner)
            continue;
        const QString id = textIn(logicalValue(key, reference->column));
        if (!id.isEmpty())
            owners.push_back({model.destinationOf(one).table(), id});
    }
    return owners;
}

// What follows from it.

/// Whether a row was deleted only because its owner was, which is there after all.
bool RowMerge::goesWith(const RowKey &key, const RowKey &owner)
{
    const Dots deletions = ledger.row(key).state.deletions;
    const Dots &ofOwner = ledger.row(owner).state.deletions;
    return !deletions.empty() && std::ranges::includes(ofOwner, deletions) && isAlive(owner);
}

bool RowMerge::isAlive(const RowKey &key)
{
    const RowLedger::Row &row = ledger.row(key);
    if (row.isNew && !row.isStateChanged)
        return isInTable(key); // Written by another program, and not told of.
    if (row.state.isAlive())
        return true;
    if (row.state.events.isEmpty())
        return false;
    return std::ranges::any_of(ownersOf(key), [&](const RowKey &owner) { return goesWith(key, owner); });
}

// Taking in.

bool RowMerge::merge(const RowDelta &delta, const Dot &save, const VersionVector &seen)
{
    if (!keptDevice.isEmpty() && !isPair(delta.key))
        noteReplaced(delta);
    const std::vector<QByteArray> winners = ledger.join(delta);
    unsettled.insert(delta.key);
    if (isPair(delta.key))
        return true;
    noteLosers(delta, winners, save, seen);
    return takeValues(delta, winners);
}

/// Values of rows that are not there, and names, wait until everything is taken in.
bool RowMerge::takeValues(const RowDelta &delta, const std::vector<QByteArray> &columns)
{
    const RowKey &key = delta.key;
    const bool isThere = isInTable(key);
    const EntityDescription &entity = *entityOf(key);
    for (const QByteArray &column : columns) {
        const RawValue &value = delta.cells.at(column).value;
        if (entity.columnOf(viewOf(column)) < 0)
            continue;
        if (!isThere || referenceIn(key, column))
            ledger.park(key, column, value);
        else if (!setColumn(key, column, value))
            return false;
    }
    return true;
}

bool RowMerge::setColumn(const RowKey &key, const QByteArray &column, const RawValue &value)
{
    sqlite::Statement statement =
        database.prepare("UPDATE " + quoted(key.table) + " SET " + quoted(column) +
                         " = ?1 WHERE \"id\" = ?2 AND " + quoted(column) + " IS NOT ?1");
    if (!statement.bindRaw(value.get()).bind(key.id).run())
        return false;
    if (database.changes() > 0)
        noteColumn(key, column);
    return true;
}

// Settling.

Result<std::vector<AppliedChange>> RowMerge::finish()
{
    const auto failure = [this] {
        return database.lastError(QStringLiteral("Cannot take in what another device changed"));
    };
    for (const RowKey &key : unsettled) {
        // Those who look for the row by what it names must find it.
        if (!isInTable(key) && !ledger.row(key).isNew && !ledger.writeParked(key))
            return failure();
    }
    while (!unsettled.empty()) {
        const RowKey key = *unsettled.begin();
        unsettled.erase(unsettled.begin());
        if (!settle(key))
            return failure();
    }
    if (!noteForSubstrings() || !keepLosers() || !ledger.write())
        return failure();
    return applied;
}

bool RowMerge::settle(const RowKey &key)
{
    if (!entityOf(key))
        return true; // The books of a damaged snapshot can name any table.
    if (isPair(key)) {
        const auto ends = endsOf(key);
        const bool isWanted = isAlive(key) && isAlive(ends[0]) && isAlive(ends[1]);
        if (!isWanted)
            return hidePair(key);
        return isInTable(key) || showPair(key);
    }
    const bool isWanted = isAlive(key);
    if (isWanted != isInTable(key)) {
        if (!(isWanted ? show(key) : hide(key)))
            return false;
        settleDependentsLater(key);
    } else if (isWanted && !settleReferences(key)) {
        return false;
    }
    return ledger.writeParked(key);
}

void RowMerge::settleDependentsLater(const RowKey &key)
{
    for (const auto &[place, column] : ledger.placesOf(key.id)) {
        if (place != key)
            unsettled.insert(place);
    }
}

bool RowMerge::show(const RowKey &key)
{
    const EntityDescription &entity = *entityOf(key);
    const RowId row = nextRow(entity);
    QByteArray names = "rowid, \"id\"";
    QByteArray places = "?, ?";
    std::vector<RawValue> values;
    const auto parked = ledger.row(key).parked;
    for (const auto &[column, value] : parked) {
        if (entity.columnOf(viewOf(column)) < 0)
            continue;
        const Reference *reference = referenceIn(key, column);
        const bool isKept = reference && !isNull(value) &&
                            !isAlive({model.destinationOf(*reference->relationship).table(), textIn(value)});
        if (isKept)
            continue;
        names += ", " + quoted(column);
        places += ", ?";
        values.push_back(value);
        ledger.unpark(key, column);
    }
    sqlite::Statement statement =
        database.prepare("INSERT INTO " + quoted(key.table) + " (" + names + ") VALUES (" + places + ')');
    statement.bind(row).bind(key.id);
    for (const RawValue &value : values)
        statement.bindRaw(value.get());
    if (!statement.run())
        return false;
    inTable[key] = true;
    note(key, AppliedChange::Kind::Inserted);
    for (const auto &[column, value] : parked)
        noteTarget(key, column, value);
    return true;
}

bool RowMerge::hide(const RowKey &key)
{
    const EntityDescription &entity = *entityOf(key);
    // What names the row waits for it.
    for (const Reference &reference : referencesTo(entity)) {
        std::vector<RowKey> holders;
        sqlite::Statement statement =
            database.prepare("SELECT \"id\" FROM " + quoted(reference.entity->table()) + " WHERE " +
                             quoted(reference.column) + " = ?");
        statement.bind(key.id);
        while (statement.step())
            holders.push_back({reference.entity->table(), statement.text(0)});
        for (const RowKey &holder : holders) {
            if (holder == key)
                continue;
            ledger.park(holder, reference.column, logicalValue(holder, reference.column));
            unsettled.insert(holder);
            if (!setColumn(holder, reference.column, nullptr) || !ledger.writeParked(holder))
                return false;
        }
    }
    for (const EntityDescription &owner : model.entities()) {
        for (const RelationshipDescription &one : owner.relationships()) {
            if (one.cardinality != Cardinality::ToManyOwningJoin)
                continue;
            const QByteArray table = model.joinTable(owner, one).table;
            for (const char *end : {"source", "target"}) {
                const bool isMine =
                    (QByteArrayView(end) == "source" ? owner.table() : model.destinationOf(one).table()) ==
                    key.table;
                if (!isMine)
                    continue;
                sqlite::Statement pairs = database.prepare("SELECT source, target FROM " + quoted(table) +
                                                           " WHERE " + end + " = ?");
                pairs.bind(key.id);
                std::vector<RowKey> found;
                while (pairs.step())
                    found.push_back({table, pairs.text(0) + u'/' + pairs.text(1)});
                pairs.reset();
                if (!std::ranges::all_of(found, [this](const RowKey &pair) { return hidePair(pair); }))
                    return false;
            }
        }
    }
    // What it says itself is kept.
    sqlite::Statement statement =
        database.prepare("SELECT rowid, * FROM " + quoted(key.table) + " WHERE \"id\" = ?");
    if (!statement.bind(key.id).step())
        return false;
    const RowId row = statement.integer(0);
    for (int column = 0; column < entity.columnCount(); ++column) {
        const QByteArray name = bytesOf(entity.columnName(column));
        if (!ledger.row(key).parked.contains(name))
            ledger.park(key, name, logicalValue(key, name));
    }
    statement.reset();
    sqlite::Statement deletion = database.prepare("DELETE FROM " + quoted(key.table) + " WHERE \"id\" = ?");
    if (!deletion.bind(key.id).run())
        return false;
    inTable[key] = false;
    note(key, AppliedChange::Kind::Deleted, {}, row);
    for (const auto &[column, value] : ledger.row(key).parked)
        noteTarget(key, column, value);
    return true;
}

bool RowMerge::showPair(const RowKey &key)
{
    const auto ends = endsOf(key);
    sqlite::Statement statement =
        database.prepare("INSERT OR IGNORE INTO " + quoted(key.table) + " (source, target) VALUES (?, ?)");
    if (!statement.bind(ends[0].id).bind(ends[1].id).run())
        return false;
    inTable[key] = true;
    ledger.unparkAll(key);
    notePair(key);
    return ledger.writeParked(key);
}

/// Its ends are written down, so that it is found when they come back.
bool RowMerge::hidePair(const RowKey &key)
{
    const auto ends = endsOf(key);
    if (!isInTable(key) && !ledger.row(key).parked.empty())
        return true;
    sqlite::Statement text = database.prepare("SELECT ?, ?");
    if (!text.bind(ends[0].id).bind(ends[1].id).step())
        return false;
    ledger.park(key, "source", copied(text.raw(0)));
    ledger.park(key, "target", copied(text.raw(1)));
    text.reset();
    sqlite::Statement deletion =
        database.prepare("DELETE FROM " + quoted(key.table) + " WHERE source = ? AND target = ?");
    if (!deletion.bind(ends[0].id).bind(ends[1].id).run())
        return false;
    if (database.changes() > 0)
        notePair(key);
    inTable[key] = false;
    return ledger.writeParked(key);
}

bool RowMerge::settleReferences(const RowKey &key)
{
    const auto parked = ledger.row(key).parked;
    for (const auto &[column, value] : parked) {
        const Reference *reference = referenceIn(key, column);
        if (!reference)
            continue;
        const bool isThere =
            isNull(value) || isAlive({model.destinationOf(*reference->relationship).table(), textIn(value)});
        noteTarget(key, column, logicalValue(key, column));
        if (!setColumn(key, column, isThere ? value : nullptr))
            return false;
        if (isThere)
            ledger.unpark(key, column);
    }
    return true;
}

bool RowMerge::noteForSubstrings()
{
    return std::ranges::all_of(applied, [this](const AppliedChange &change) {
        const auto index =
            change.kind == AppliedChange::Kind::Deleted ? std::nullopt : SubstringIndex::of(*change.entity);
        return !index || index->note(database, change.identifier);
    });
}

// The history of what lost.

/// Before the delta is joined with what is known.
void RowMerge::noteReplaced(const RowDelta &delta)
{
    const RowKey &key = delta.key;
    for (const auto &[column, cell] : delta.cells) {
        const Stamp present = ledger.row(key).state.stampOf(column);
        if (present.device != keptDevice || present >= cell.stamp)
            continue;
        const RawValue value = logicalValue(key, column);
        if (!isSame(value, cell.value))
            losers.push_back({key, column, value});
    }
}

void RowMerge::noteLosers(const RowDelta &delta, const std::vector<QByteArray> &winners, const Dot &save,
                          const VersionVector &seen)
{
    const RowKey &key = delta.key;
    for (const auto &[column, cell] : delta.cells) {
        if (std::ranges::find(winners, column) == winners.end()) {
            if (!isSame(cell.value, logicalValue(key, column)))
                losers.push_back({key, column, cell.value});
            continue;
        }
        if (save.number == 0)
            continue;
        const auto [former, isFirst] = brought.try_emplace({key, column}, Brought{save, cell.value});
        if (isFirst)
            continue;
        Brought &one = former->second;
        if (seen.of(one.save.device) < one.save.number && !isSame(one.value, cell.value))
            losers.push_back({key, column, one.value});
        one = {save, cell.value};
    }
}

/// Of several that one column had, each has its turn.
bool RowMerge::keepLosers()
{
    std::erase_if(losers, [this](const Loser &one) { return !isInTable(one.key); });
    while (!losers.empty()) {
        std::set<std::pair<RowKey, QByteArray>> places;
        const auto later = std::stable_partition(losers.begin(), losers.end(), [&places](const Loser &one) {
            return places.insert({one.key, one.column}).second;
        });
        if (!keepTogether({losers.begin(), later}))
            return false;
        losers.erase(losers.begin(), later);
    }
    return true;
}

/// Each is written for a moment, so that the history holds what it was before the later value.
bool RowMerge::keepTogether(std::span<const Loser> some)
{
    std::vector<RawValue> winners;
    const auto set = [this](const Loser &one, const RawValue &value) {
        sqlite::Statement statement = database.prepare("UPDATE " + quoted(one.key.table) + " SET " +
                                                       quoted(one.column) + " = ? WHERE \"id\" = ?");
        return statement.bindRaw(value.get()).bind(one.key.id).run();
    };
    for (const Loser &one : some) {
        sqlite::Statement statement = database.prepare("SELECT " + quoted(one.column) + " FROM " +
                                                       quoted(one.key.table) + " WHERE \"id\" = ?");
        if (!statement.bind(one.key.id).step())
            return false;
        winners.push_back(copied(statement.raw(0)));
    }
    for (const Loser &one : some) {
        if (!set(one, one.value))
            return false;
    }
    sqlite3_session *session = nullptr;
    if (sqlite3session_create(database.handle(), "main", &session) != SQLITE_OK)
        return false;
    const std::unique_ptr<sqlite3_session, void (*)(sqlite3_session *)> capture(session,
                                                                                sqlite3session_delete);
    for (const Loser &one : some)
        sqlite3session_attach(session, one.key.table.constData());
    for (size_t place = 0; place < some.size(); ++place) {
        if (!set(some[place], winners[place]))
            return false;
    }
    int size = 0;
    void *bytes = nullptr;
    const int code = sqlite3session_changeset(session, &size, &bytes);
    const QByteArray changeset(static_cast<const char *>(bytes), size);
    sqlite3_free(bytes);
    if (code != SQLITE_OK)
        return false;
    // The history takes no larger ones.
    if (changeset.size() > ChangeJournal::largestInHistory && some.size() > 1)
        return keepTogether(some.first(some.size() / 2)) && keepTogether(some.subspan(some.size() / 2));
    return ChangeJournal::addToHistory(database, ChangeAuthor::Replication, changeset);
}

// What is told.

void RowMerge::note(const RowKey &key, AppliedChange::Kind kind, ManagedObject::ColumnSet columns, RowId row)
{
    applied.push_back({entityOf(key), key.id, kind, columns, row});
}

void RowMerge::noteColumn(const RowKey &key, const QByteArray &column)
{
    ManagedObject::ColumnSet columns;
    const int known = entityOf(key)->columnOf(viewOf(column));
    if (known >= 0)
        columns.set(static_cast<size_t>(known));
    note(key, AppliedChange::Kind::Updated, columns);
}

/// What is named counts as updated, if something follows from that.
void RowMerge::noteTarget(const RowKey &key, const QByteArray &column, const RawValue &value)
{
    const Reference *reference = referenceIn(key, column);
    if (!reference || isNull(value))
        return;
    const EntityDescription &target = model.destinationOf(*reference->relationship);
    if (target.followsLinks())
        applied.push_back({&target, textIn(value), AppliedChange::Kind::Updated});
}

void RowMerge::notePair(const RowKey &key)
{
    const auto ends = endsOf(key);
    note(ends[0], AppliedChange::Kind::Updated);
    if (entityOf(ends[1])->followsLinks())
        note(ends[1], AppliedChange::Kind::Updated);
}

} // namespace replication

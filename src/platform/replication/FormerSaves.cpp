#include "replication/FormerSaves.h"

namespace replication {

FormerSaves::FormerSaves(sqlite::Database &connection, std::optional<qint64> keptNumber)
    : database(connection)
{
    sqlite::Statement own =
        database.prepare("SELECT device, number FROM ObjectStoreReplicas WHERE machine IS NOT NULL");
    if (!own.step())
        return;
    former = own.text(0).toUtf8();
    const qint64 number =
        std::max(own.integer(1), database.queryInteger("SELECT MAX(number) FROM ObjectStoreOutgoing"));
    sqlite::Statement unsent =
        database.prepare("SELECT MIN(number) FROM ObjectStoreOutgoing WHERE isSent = 0");
    const bool isAllSent = !unsent.step() || unsent.isNull(0);
    kept = keptNumber.value_or(isAllSent ? number : unsent.integer(0) - 1);
}

OptionalError FormerSaves::failure() const
{
    return database.lastError(QStringLiteral("Cannot go on as another device"));
}

OptionalError FormerSaves::take()
{
    if (former.isEmpty())
        return std::nullopt;
    sqlite::Statement all =
        database.prepare("SELECT bytes FROM ObjectStoreOutgoing WHERE number > ? ORDER BY number");
    all.bind(kept);
    while (all.step()) {
        auto file = ChangeFile::fromBytes(all.blob(0));
        // One that the disk has spoiled is in the rows, and goes with them.
        if (file)
            files.push_back(std::move(*file));
    }
    all.reset();
    sqlite::Statement known = database.prepare("UPDATE ObjectStoreReplicas SET number = ? WHERE device = ?");
    if (!known.bind(kept).bind(QString::fromUtf8(former)).run() ||
        !database.prepare("DELETE FROM ObjectStoreOutgoing").run())
        return failure();
    return std::nullopt;
}

void FormerSaves::lower(VersionVector &known) const
{
    if (!former.isEmpty())
        known.lower(former, kept);
}

Result<std::vector<ChangeFile>> FormerSaves::renamed(const DeviceId &own, qint64 last)
{
    for (ChangeFile &file : files) {
        lower(file.seen);
        file.seen.add(own, last);
        numbers[file.dot.number] = ++last;
        file.dot = {own, last};
    }
    if (!files.empty() && !renameStates(own))
        return *failure();
    return std::move(files);
}

/// Of a save that cannot be read, the next one stands for its rows.
qint64 FormerSaves::numberFor(qint64 number) const
{
    const auto found = numbers.lower_bound(number);
    return found == numbers.end() ? numbers.rbegin()->second : found->second;
}

/// A row must count as changed by the saves that the others get, or it would outlive a deletion here that it
/// does not outlive there.
bool FormerSaves::renameStates(const DeviceId &own)
{
    struct State
    {
        QString table;
        QString id;
        VersionVector events;
        VersionVector buried;
        Dots deletions;
    };
    std::vector<State> states;
    sqlite::Statement all = database.prepare(
        "SELECT tbl, id, events, buried, deletions FROM ObjectStoreRowStates WHERE instr(events, ?1) OR "
        "instr(buried, ?1)");
    all.bind(QString::fromUtf8(former + ':'));
    while (all.step()) {
        State state{all.text(0), all.text(1), VersionVector::fromText(all.text(2).toUtf8()),
                    VersionVector::fromText(all.text(3).toUtf8()), dotsOfText(all.text(4).toUtf8())};
        if (state.events.of(former) > kept || state.buried.of(former) > kept)
            states.push_back(std::move(state));
    }
    all.reset();
    sqlite::Statement write = database.prepare(
        "UPDATE ObjectStoreRowStates SET events = ?, buried = ?, deletions = ? WHERE tbl = ? AND id = ?");
    for (State &state : states) {
        if (const qint64 number = state.events.of(former); number > kept) {
            // Whoever has the new save has all that the device did before.
            state.events.lower(former, 0);
            state.events.add(own, numberFor(number));
        }
        if (const qint64 number = state.buried.of(former); number > kept) {
            state.buried.lower(former, kept);
            state.buried.add(own, numberFor(number));
        }
        Dots deletions;
        for (const Dot &dot : state.deletions)
            deletions.insert(dot.device == former && dot.number > kept ? Dot{own, numberFor(dot.number)}
                                                                       : dot);
        write.reset();
        write.bind(QString::fromUtf8(state.events.text()));
        const auto textOrNothing = [](const QByteArray &text) {
            return text.isEmpty() ? Value() : Value(QString::fromUtf8(text));
        };
        write.bind(textOrNothing(state.buried.text())).bind(textOrNothing(textOf(deletions)));
        if (!write.bind(state.table).bind(state.id).run())
            return false;
    }
    return true;
}

} // namespace replication

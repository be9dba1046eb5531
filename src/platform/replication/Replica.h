#pragma once

#include "objectstore/CommitLog.h"
#include "objectstore/ManagedObjectContext.h"
#include "replication/ChangeFile.h"
#include "replication/OutsideItems.h"

#include <QSet>
#include <QStringList>

#include <deque>

struct sqlite3_session;

namespace replication {

class FormerSaves;
class RowLedger;

/// A device that takes part, as far as this one knows.
struct Device
{
    DeviceId id;
    QString name;
    bool isOwn = false;
    /// Its last save that was taken in.
    qint64 number = 0;
    /// When its last save was made, by its own clock; absent before the first.
    OptionalDate lastSave;
    /// When something of it was last taken in here, by the clock of this device.
    OptionalDate heard;
    /// Whether its clock is more than a day ahead of the one here.
    bool isClockAhead = false;
    /// What it knew when it last told.
    VersionVector seen;
    /// Whether the user has removed it, on this device or another one, and nothing of it came since. Nobody
    /// waits for it then.
    bool isRemoved = false;
    /// What it has outside of the store, as far as it has told; absent if it never did.
    std::optional<QStringList> holdings = {};
};

/// A save of another device that is about to be taken in: the rows are still what they were.
struct Arrival
{
    /// What its device has outside of the store; absent if it never told.
    std::optional<QStringList> holdings;
    /// The outside items that it is about and that its device has never seen.
    QSet<QString> unseen;
    const std::vector<RowDelta> &deltas;
    /// The rows that it makes anew, after they had been deleted.
    std::set<RowKey> returning;
};

/// Looks on while saves of other devices are taken in.
class Onlooker
{
public:
    virtual ~Onlooker() = default;
    /// Inside of the transaction that takes it in.
    virtual void comes(const Arrival &arrival) = 0;
    /// The transaction has ended, whatever became of it.
    virtual void ended() = 0;
};

/// A store as one of several that hold the same records: it writes each commit down for the others, in the
/// store itself and as a part of the commit, and takes in what the others wrote down. Main thread only.
class Replica final : public CommitLog
{
public:
    /// Makes a context a replica. What is in the store already counts as the first save of this device.
    /// \param machine tells one computer and one place of the store from others: a copy of a store that is
    /// opened elsewhere is another device.
    static Result<std::unique_ptr<Replica>> open(ManagedObjectContext &context, const QString &deviceName,
                                                 const QByteArray &machine);
    /// For a store that is on its own for a while, because its folder is away or none is chosen: what is
    /// saved until the context goes is told to the others once the store is a replica again.
    static OptionalError keepForLater(ManagedObjectContext &context);
    /// Nothing may be under way in the context.
    ~Replica() override;

    const DeviceId &device() const { return own.device; }
    /// The number of the last save of this device.
    qint64 number() const { return own.number; }
    /// All saves that the rows hold, those of this device included.
    const VersionVector &seen() const { return known; }
    std::vector<Device> devices() const;

    /// A save of this device that has not reached the others yet.
    struct Outgoing
    {
        qint64 number;
        QByteArray bytes;
    };
    /// In order, at most so many bytes but at least one save.
    std::vector<Outgoing> outgoing(qsizetype mostBytes) const;
    /// Up to which number the saves of this device are in the folder no more, or never were, since a snapshot
    /// stands for them.
    qint64 cleared() const { return clearedUpTo; }
    /// Forgets the saves up to a number. They cannot be sent again.
    OptionalError clear(qint64 upTo);
    int unsentCount() const;
    /// Whether the store keeps a save of this device, so that it can be sent again.
    std::optional<QByteArray> sent(qint64 number) const;
    OptionalError markSent(qint64 number);
    OptionalError markUnsent(qint64 number);

    /// Whether the others should be told that their saves have arrived here, though nothing was saved here
    /// for long: after fifty of them, or a day. Saves that say nothing else are not answered. A device that
    /// was removed tells it as soon as it hears of that, and takes part again; one that holds other things
    /// than it has told of tells that at once.
    bool owesAcknowledgement() const;
    /// Tells it, with a save that changes nothing. The store must be free.
    OptionalError acknowledge();
    /// Removes another device that is gone for good, for all devices: nobody waits for it any more. Nothing
    /// that it wrote is lost: if it comes back, it takes in what it missed, sends what nobody has seen, and
    /// takes part again by its next save. The store must be free. The error says why it stays.
    OptionalError remove(const DeviceId &device);
    /// Makes a save of what other programs have written into the store, as the next commit does, too. The
    /// store must be free.
    OptionalError saveForeignWrites();
    bool hasForeignWrites() const;
    /// The next commit counts as a change of this row, even if it changes no value of it: a deletion by who
    /// did not know of it does not prevail. For a row that stays in the place of others.
    void keep(const RowKey &key) { kept.insert(key); }

    /// Takes in what can be taken in by now: saves come in the order of their device, and after all that
    /// their device knew of. The others stay in the list; those that are known already leave it. \param
    /// mostChanges about so many at once
    /// One that cannot be taken in, whatever happens, is set aside until the next start; what comes after it
    /// waits. An error is one that may pass, and nothing was taken in then.
    Result<StoreChanges> takeIn(std::deque<ChangeFile> &waiting, int mostChanges);
    bool isSetAside(const ChangeFile &file) const { return asideSaves.contains(file.dot); }
    /// Whether it can be taken in now, or is known already.
    bool isNext(const ChangeFile &file) const { return isKnown(file) || isReady(file); }
    bool isOfNewerVersion(const ChangeFile &file) const { return file.schema > model.version(); }
    /// Whether nothing is under way in the store that this would come between.
    bool isFree() const { return context.isFree(); }
    const QString &storePath() const { return context.path(); }
    const ManagedObjectModel &objectModel() const { return model; }
    int schema() const { return model.version(); }
    /// Looks once more at rows that wait for others. For what a save of this device brought back.
    bool hasUnsettled() const { return !unsettled.empty(); }
    Result<StoreChanges> settle();

    /// Takes in a snapshot: all that it holds, whether this device holds nothing, or other things, or is
    /// ahead. The store must be free.
    /// \param databasePath an unpacked snapshot, which is changed.
    /// \param seen the saves in it.
    /// \return Everything may have changed. As inserted it names the rows that were here only, since what
    /// came can hold doubles of them.
    Result<StoreChanges> adopt(const QString &databasePath, const VersionVector &seen);
    /// Brings what a snapshot brought from the log of a store, where it is safe already, to its place in the
    /// file. Otherwise the next save would, and take long. Any thread; the store may be in use.
    static OptionalError moveFromLog(const QString &storePath);

    /// Another device uses the number of this one: it goes on under a new one, and the former counts as
    /// another.
    /// \param lastOut the last save that is out as this one has it; absent if all are that were sent. What it
    /// has saved since goes out under the new number.
    OptionalError becomeAnother(std::optional<qint64> lastOut = {});

    /// A reference to a row that has gone, in a row that is there.
    struct Orphan
    {
        RowKey row;
        QByteArray column;
        /// What the row that has gone said in the column that was asked for.
        QString formerText;
    };
    /// Those that name rows of a table.
    std::vector<Orphan> orphansOf(const QByteArray &table, const QByteArray &column) const;
    OutsideItems &outsideItems() { return items; }
    /// What this device has outside of the store: the others hear of it with its next save. The former ones
    /// count no more.
    void hold(const QStringList &holdings);
    /// Who looks on from now on; null for nobody. It must live until it is replaced.
    void setOnlooker(Onlooker *wanted) { onlooker = wanted; }

    void transactionBegan(sqlite::Database &database, bool isCaptured) override;
    void captureEnds() override;
    OptionalError willCommit(sqlite::Database &database, const Result<QByteArray> &captured) override;
    void transactionEnded() override;

private:
    bool isReady(const ChangeFile &file) const;
    /// One transaction, and the saves that were meant to come in with it.
    struct Attempt
    {
        Result<StoreChanges> changes;
        Dots saves;
    };
    Attempt tryToTakeIn(std::deque<ChangeFile> &waiting, int mostChanges);
    bool isKnown(const ChangeFile &file) const { return known.of(file.dot.device) >= file.dot.number; }
    Replica(ManagedObjectContext &replicated, QString deviceName);
    OptionalError load(const QByteArray &machine);
    OptionalError startAs(const QByteArray &machine, std::optional<qint64> lastOut = {});
    OptionalError writeStart(const QByteArray &machine, FormerSaves &former);
    OptionalError addFormerSaves(FormerSaves &former);
    OptionalError addPresentRows(const Stamp &stamp);
    bool hasManyRows() const;
    OptionalError standFirstSaveInSnapshot();
    void startSession();
    Result<QByteArray> changesetOfSession() const;
    Result<QByteArray> netChange(const Result<QByteArray> &captured) const;
    OptionalError writeOwn() const { return writeOwn(own.number, clock, known); }
    OptionalError writeOwn(qint64 number, qint64 time, const VersionVector &seen) const;
    qint64 nextTime() const;
    qint64 lastOutgoing() const;
    TableColumns columnsOfTables();
    OptionalError writeBooks(RowLedger &ledger, const std::vector<RowDelta> &deltas);
    std::vector<RowKey> touchedBy(const std::vector<RowDelta> &deltas);
    ChangeFile fileOf(const QByteArray &changeset, qint64 time, const Dot &dot);
    qint64 timeBeyond(RowLedger &ledger, const std::vector<RowDelta> &deltas, qint64 time) const;
    OptionalError addOutgoing(const ChangeFile &file);
    OptionalError noteDevice(const ChangeFile &file);
    Arrival arrivalOf(const ChangeFile &file, const std::vector<RowDelta> &deltas) const;
    OptionalError noteRemoved(const VersionVector &removed);
    OptionalError saveNothing(const VersionVector &removed);
    OptionalError noteHoldings(const std::optional<QStringList> &holdings);
    OptionalError joinDevices(const VersionVector &seen);

    ManagedObjectContext &context;
    sqlite::Database &database;
    const ManagedObjectModel &model;
    QString name;
    Dot own;
    qint64 clock = 0;
    VersionVector known;
    /// Sees what the context does not capture of the open transaction; null while there is nothing of that.
    std::unique_ptr<sqlite3_session, void (*)(sqlite3_session *)> session;
    bool isSessionMissing = false;
    /// Whether a save is made of the open transaction.
    bool isWatching = false;
    /// Whether the context captures the open transaction, or its beginning.
    bool usesCaptured = false;
    bool isTakingIn = false;
    /// Saves of others that cannot be taken in.
    Dots asideSaves;
    TableColumns columns;
    std::set<RowKey> unsettled;
    OutsideItems items;
    std::set<RowKey> kept;
    /// Saves that changed something, taken in since the last save of this device, and when the first came
    /// (milliseconds since 1970).
    int untold = 0;
    qint64 untoldSince = 0;
    /// Others do not wait for this device, as long as it saves nothing beyond this.
    qint64 removedAt = 0;
    qint64 clearedUpTo = 0;
    Onlooker *onlooker = nullptr;
    std::optional<QStringList> held;
    /// What the last save that told of it said.
    std::optional<QStringList> toldOf;

    /// What belongs to one device number; it comes back if another one could not be written.
    struct Identity
    {
        Dot own;
        qint64 clock;
        VersionVector known;
        qint64 removedAt;
        qint64 clearedUpTo;
        std::optional<QStringList> toldOf;
    };

    /// What the open transaction will have brought when it ends.
    struct Pending
    {
        Dot dot;
        qint64 clock = 0;
        VersionVector known;
        std::set<RowKey> unsettled;
    };
    std::optional<Pending> pending;
};

} // namespace replication

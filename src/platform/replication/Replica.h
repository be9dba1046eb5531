#pragma once

#include "objectstore/CommitLog.h"
#include "objectstore/ManagedObjectContext.h"
#include "replication/ChangeFile.h"

#include <QSet>

#include <deque>

struct sqlite3_session;

namespace replication {

/// A device that takes part, as far as this one knows.
struct Device
{
    DeviceId id;
    QString name;
    bool isOwn = false;
    /// Its last save that was taken in.
    qint64 number = 0;
    /// When its last save was made; absent before the first.
    OptionalDate lastSave;
    /// What it knew when it last told.
    VersionVector seen;
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
    int unsentCount() const;
    /// Whether the store keeps a save of this device, so that it can be sent again.
    std::optional<QByteArray> sent(qint64 number) const;
    OptionalError markSent(qint64 number);
    OptionalError markUnsent(qint64 number);

    /// Takes in what can be taken in by now: saves come in the order of their device, and after all that
    /// their device knew of. The others stay in the list; those that are known already leave it. \param
    /// mostChanges about so many at once
    Result<StoreChanges> takeIn(std::deque<ChangeFile> &waiting, int mostChanges);
    /// Whether it can be taken in now, or is known already.
    bool isNext(const ChangeFile &file) const { return isKnown(file) || isReady(file); }
    bool isOfNewerVersion(const ChangeFile &file) const { return file.schema > model.version(); }
    /// Whether nothing is under way in the store that this would come between.
    bool isFree() const { return context.isFree(); }
    /// Looks once more at rows that wait for others. For what a save of this device brought back.
    bool hasUnsettled() const { return !unsettled.empty(); }
    Result<StoreChanges> settle();

    /// Another device uses the number of this one: it goes on under a new one, and the former counts as
    /// another.
    OptionalError becomeAnother();

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
    /// Whether the row was made by another device.
    bool isMadeElsewhere(const RowKey &key) const;
    /// Texts that this device keeps for itself: things outside of the store that it has seen.
    const QSet<QString> &witnessed();
    void witness(const QSet<QString> &items);

    void transactionBegan(sqlite::Database &database) override;
    OptionalError willCommit(sqlite::Database &database) override;
    void transactionEnded() override;

private:
    bool isReady(const ChangeFile &file) const;
    bool isKnown(const ChangeFile &file) const { return known.of(file.dot.device) >= file.dot.number; }
    Replica(ManagedObjectContext &replicated, QString deviceName);
    OptionalError load(const QByteArray &machine);
    OptionalError startAs(const QByteArray &machine);
    OptionalError addPresentRows(const Stamp &stamp);
    Result<QByteArray> capturedChangeset() const;
    OptionalError writeOwn() const { return writeOwn(own.number, clock, known); }
    OptionalError writeOwn(qint64 number, qint64 time, const VersionVector &seen) const;
    qint64 nextTime() const;
    TableColumns columnsOfTables();
    OptionalError writeBooks(const std::vector<RowDelta> &deltas);
    std::vector<RowKey> touchedBy(const std::vector<RowDelta> &deltas);
    ChangeFile fileOf(const QByteArray &changeset, qint64 time, const Dot &dot);
    OptionalError addOutgoing(const ChangeFile &file);
    OptionalError noteDevice(const ChangeFile &file);

    ManagedObjectContext &context;
    sqlite::Database &database;
    const ManagedObjectModel &model;
    QString name;
    Dot own;
    qint64 clock = 0;
    VersionVector known;
    std::unique_ptr<sqlite3_session, void (*)(sqlite3_session *)> session;
    bool isTakingIn = false;
    TableColumns columns;
    std::set<RowKey> unsettled;
    std::optional<QSet<QString>> seenItems;

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

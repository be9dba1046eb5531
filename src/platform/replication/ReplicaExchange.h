#pragma once

#include "replication/ExchangeRound.h"

#include <QFileSystemWatcher>
#include <QThreadPool>

#include <functional>

class RepeatingTimer;

namespace replication {

/// How the exchange with the other devices stands.
struct Health
{
    using Problem = FileProblem;

    /// Without those that were removed.
    std::vector<Device> devices;
    /// Saves of this device that are not in the folder yet.
    int unsent = 0;
    /// Saves of others that wait for what has not come yet.
    int waiting = 0;
    std::vector<Problem> problems;
    /// Why the folder cannot be used; empty if it can.
    QString folderProblem;
    SealingState sealing = SealingState::Open;
    /// Why nothing can go out or come in, since the folder is sealed; empty if it can.
    QString sealingProblem;
};

/// Keeps a replica and the folder of the devices in step: what is saved here goes there soon, and what comes
/// there is taken in. Files are read and written off the main thread; a file that cannot be read is tried
/// again when it changes, since it may not have come whole yet, and now and then. In a sealed folder it
/// writes and takes in sealed files only, and its own that are open it writes anew; without the key nothing
/// goes out or comes in. Saves that all devices have, and that a snapshot holds, it removes. Main thread.
class ReplicaExchange
{
public:
    using TakenIn = std::function<void(const StoreChanges &)>;

    /// \param takenIn hears of each commit that brought in something.
    /// \param folderSealing whether the folder is sealed; null if it never is.
    /// \param snapshotTerms when it makes a snapshot.
    ReplicaExchange(Replica &exchanged, ReplicaFolder sharedFolder, TakenIn takenIn,
                    std::shared_ptr<const Sealing> folderSealing = nullptr, SnapshotTerms snapshotTerms = {});
    /// Waits for the file that is being written or read.
    ~ReplicaExchange();
    ReplicaExchange(const ReplicaExchange &) = delete;
    ReplicaExchange &operator=(const ReplicaExchange &) = delete;

    /// Looks for what is new on both sides, when the main loop comes round.
    void lookSoon();
    /// Sends what was saved, at once; for the end of the program.
    void sendNow();
    /// To be called when the folder was sealed, or its key was entered.
    void sealingChanged();
    /// Files that travel beside the saves, and are sealed with them.
    void setFilesBeside(sealedfiles::Place place) { filesBeside = std::move(place); }
    /// While it rests, nothing goes out or comes in.
    void setResting(bool isOn);
    Health health() const;
    /// Whether nothing is being looked for, written or taken in, and nothing is about to be.
    bool isAtRest() const { return !isRoundDue && !isRunning && !isMaking; }
    /// Called whenever the health may be another.
    void setListener(std::function<void()> wanted) { listener = std::move(wanted); }

private:
    void startRound();
    void finishRound(ExchangeRound &round);
    bool isKnown(const Replica::Outgoing &file) const;
    qint64 lastKept(const std::vector<qint64> &numbers) const;
    void noteLost(const std::vector<qint64> &unfit, qint64 upTo);
    void takeInSome();
    void checkOwnFiles(const ExchangeRound &round);
    void lookForLostFiles(const ExchangeRound &round);
    void tidy(const ExchangeRound &round);
    void follow(const QStringList &folders);
    void tell() const;

    Replica &replica;
    ReplicaFolder folder;
    TakenIn takenIn;
    std::function<void()> listener;
    QThreadPool thread;
    /// Makes snapshots, which takes seconds, beside it.
    QThreadPool maker;
    QFileSystemWatcher watcher;
    std::unique_ptr<RepeatingTimer> timer;
    std::deque<ChangeFile> waiting;
    std::vector<Health::Problem> problems;
    std::map<Dot, UnreadSave> unread;
    std::vector<Health::Problem> ownProblems;
    QString folderProblem;
    std::shared_ptr<const Sealing> sealing;
    SealingStatus sealed;
    /// The key under which the own files were found, or are being written; empty for open files.
    QByteArray ownKeyMark;
    /// The numbers of the own saves that are in the folder, as far as is known.
    std::vector<qint64> ownFiles;
    SnapshotTerms terms;
    const QDateTime started = QDateTime::currentDateTimeUtc();
    /// An unpacked snapshot that waits to be taken in, and where it does.
    std::optional<SnapshotHead> arrived;
    QString arrivalPath;
    QString arrivedMark;
    QSet<QString> verified;
    QSet<QString> refused;
    sealedfiles::Place filesBeside;
    QSet<QString> fitFiles;
    bool isMaking = false;
    /// Whoever makes a snapshot stops then.
    std::atomic<bool> isEnding = false;
    bool isResting = false;
    bool isRoundDue = false;
    bool isRunning = false;
    bool wantsAnother = false;
    bool hasCheckedOwnFiles = false;
    /// Whether this object is still there when the time comes.
    std::shared_ptr<bool> living = std::make_shared<bool>(true);
};

} // namespace replication

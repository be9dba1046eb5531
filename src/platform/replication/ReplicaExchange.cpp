#include "replication/ReplicaExchange.h"

#include "foundation/Log.h"
#include "foundation/MainLoop.h"

#include <QFile>

#include <algorithm>
#include <array>

namespace replication {

namespace {

/// Long enough for the saves of one command to go together.
constexpr Seconds restBeforeLook{0.2};
/// For folders of which the system tells nothing, such as those of other computers.
constexpr Seconds betweenLooks{60.0};
/// While the store is being changed.
constexpr Seconds untilFree{0.3};
constexpr qsizetype mostBytesToSend = 8'000'000;
constexpr int mostChangesAtOnce = 400;

/// Whether what failed may succeed later: the disk is full, or the store is in use.
bool isPassing(const Error &error)
{
    constexpr int resultBits = 0xff;
    constexpr std::array codes = {5, 10, 13}; // SQLITE_BUSY, SQLITE_IOERR, SQLITE_FULL
    return error.domain == u"store" || error.domain == u"replication" ||
           (error.domain == u"sqlite" && std::ranges::find(codes, error.code & resultBits) != codes.end());
}

} // namespace

ReplicaExchange::ReplicaExchange(Replica &exchanged, ReplicaFolder sharedFolder, TakenIn hearer,
                                 std::shared_ptr<const Sealing> folderSealing, SnapshotTerms snapshotTerms)
    : replica(exchanged)
    , folder(std::move(sharedFolder))
    , takenIn(std::move(hearer))
    , timer(std::make_unique<RepeatingTimer>(betweenLooks, [this] { lookSoon(); }))
    , sealing(std::move(folderSealing))
    , terms(snapshotTerms)
    , arrivalPath(replica.storePath() + QStringLiteral("-arriving"))
{
    QFile::remove(arrivalPath);
    maker.setMaxThreadCount(1);
    if (sealing)
        sealed = sealing->look();
    thread.setMaxThreadCount(1);
    QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, &watcher, [this] { lookSoon(); });
    lookSoon();
}

ReplicaExchange::~ReplicaExchange()
{
    living.reset();
    thread.waitForDone();
    isEnding = true;
    maker.waitForDone();
}

void ReplicaExchange::lookSoon()
{
    if (std::exchange(isRoundDue, true))
        return;
    MainLoop::performDelayed(restBeforeLook, [this, alive = std::weak_ptr(living)] {
        if (!alive.lock())
            return;
        isRoundDue = false;
        startRound();
    });
}

void ReplicaExchange::startRound()
{
    if (isResting)
        return;
    if (std::exchange(isRunning, true)) {
        wantsAnother = true;
        return;
    }
    wantsAnother = false;
    if (replica.isFree()) {
        if (const auto error = replica.saveForeignWrites())
            Log::line(error->message);
    }
    if (hasCheckedOwnFiles && replica.isFree() && replica.owesAcknowledgement()) {
        if (const auto error = replica.acknowledge())
            Log::line(error->message);
    }
    auto round = std::make_shared<ExchangeRound>(folder, replica.device());
    round->known = replica.seen();
    round->schema = replica.schema();
    round->number = replica.number();
    round->cleared = replica.cleared();
    round->devices = replica.devices();
    round->terms = terms;
    // Before it writes, it must know that nobody else writes under its name.
    round->listsOwn = !hasCheckedOwnFiles;
    round->started = started;
    if (hasCheckedOwnFiles)
        round->outgoing = replica.outgoing(mostBytesToSend);
    for (const ChangeFile &file : waiting) {
        round->waiting.insert(file.dot);
        if (replica.isSetAside(file))
            round->aside.insert(file.dot);
    }
    if (!arrived)
        round->arrivalPath = arrivalPath;
    round->unread = unread;
    round->sealing = sealing;
    round->verified = verified;
    round->refused = refused;
    round->filesBeside = filesBeside;
    round->fitFiles = fitFiles;
    thread.start([this, round, alive = std::weak_ptr(living)] {
        round->run();
        MainLoop::performDelayed(Seconds(0), [this, round, alive] {
            if (alive.lock())
                finishRound(*round);
        });
    });
}

void ReplicaExchange::finishRound(ExchangeRound &round)
{
    isRunning = false;
    folderProblem = round.folderProblem;
    problems = std::move(round.problems);
    unread = std::move(round.unread);
    for (const qint64 number : round.written) {
        if (const auto error = replica.markSent(number))
            Log::line(error->message);
        ownFiles.push_back(number);
    }
    const bool hasExchanged = folderProblem.isEmpty() && round.sealed.canExchange();
    sealed = std::move(round.sealed);
    if (hasExchanged && ownKeyMark != sealed.keyMark()) {
        // All that lies there under another key, or open, is to be written anew.
        ownKeyMark = sealed.keyMark();
        round.fitFiles.clear();
        hasCheckedOwnFiles = false;
        wantsAnother = true;
    }
    verified = std::move(round.verified);
    fitFiles = std::move(round.fitFiles);
    if (round.listsOwn && hasExchanged)
        checkOwnFiles(round);
    else if (hasExchanged)
        lookForLostFiles(round);
    for (ChangeFile &file : round.files)
        waiting.push_back(std::move(file));
    if (round.arrived) {
        arrived = std::move(round.arrived);
        arrivedMark = round.arrivedMark;
    }
    if (!round.listsOwn && hasExchanged)
        tidy(round);
    follow(round.watchedFolders);
    if (!waiting.empty() || arrived || replica.hasUnsettled())
        takeInSome();
    const bool hasMoreToSend = hasExchanged && !replica.outgoing(1).empty();
    if (wantsAnother || round.isMoreLeft || hasMoreToSend || (round.listsOwn && hasCheckedOwnFiles))
        lookSoon();
    tell();
}

/// Files that are gone are written again. Files of this device that it has not written, or that others know
/// of, are those of a store that was put back from a copy, or of a second one with its name. Files that are
/// not sealed as they should be are written anew.
void ReplicaExchange::checkOwnFiles(const ExchangeRound &round)
{
    const std::vector<qint64> &numbers = round.ownNumbers;
    qint64 last = std::max(round.greatestOwn, round.ownCovered);
    for (const ChangeFile &file : round.files)
        last = std::max(last, file.seen.of(replica.device()));
    if (last > replica.number() || (round.lastOwn && !isKnown(*round.lastOwn))) {
        // After a failure the next look that comes by itself tries again.
        if (const auto error = replica.becomeAnother(lastKept(numbers)))
            Log::line(error->message);
        else
            wantsAnother = true;
        return;
    }
    hasCheckedOwnFiles = true;
    ownFiles = numbers;
    ownProblems.clear();
    for (qint64 number = replica.number(); number > replica.cleared(); --number) {
        if (std::ranges::binary_search(numbers, number) && !std::ranges::binary_search(round.unfit, number))
            continue;
        if (!replica.sent(number)) {
            noteLost(round.unfit, number);
            break;
        }
        if (const auto error = replica.markUnsent(number))
            Log::line(error->message);
    }
}

/// Whether a file of this device holds what it has saved under that number.
bool ReplicaExchange::isKnown(const Replica::Outgoing &file) const
{
    const auto saved = replica.sent(file.number);
    return !saved || *saved == file.bytes;
}

/// The last own save that is in the folder as this device has it, or the last that was cleared.
qint64 ReplicaExchange::lastKept(const std::vector<qint64> &numbers) const
{
    for (qint64 number = replica.number(); number > replica.cleared(); --number) {
        const auto saved = replica.sent(number);
        const auto there = std::ranges::binary_search(numbers, number)
                               ? ExchangeRound::contentOf(folder, sealed, {replica.device(), number})
                               : std::nullopt;
        if (saved && there && *saved == *there)
            return number;
    }
    return replica.cleared();
}

/// What was there at the look before, or was written since, is to be there still. Otherwise the folder is
/// not the one that it was, such as that below a file system which came or went: a look at all own files
/// follows.
void ReplicaExchange::lookForLostFiles(const ExchangeRound &round)
{
    std::ranges::sort(ownFiles);
    const auto firstKept = std::ranges::upper_bound(ownFiles, replica.cleared());
    if (!std::includes(round.ownNumbers.begin(), round.ownNumbers.end(), firstKept, ownFiles.end())) {
        hasCheckedOwnFiles = false;
        wantsAnother = true;
    }
    ownFiles = round.ownNumbers;
}

/// The store forgets saves before their files go, which the next round sees to.
void ReplicaExchange::tidy(const ExchangeRound &round)
{
    if (round.clearable > replica.cleared() && replica.isFree()) {
        if (const auto error = replica.clear(round.clearable))
            Log::line(error->message);
        else
            wantsAnother = true;
    }
    if (!round.isSnapshotDue || std::exchange(isMaking, true))
        return;
    maker.start([this, from = replica.storePath(), own = replica.device(), model = &replica.objectModel(),
                 to = folder, status = sealed, alive = std::weak_ptr(living)] {
        const OptionalError error = makeSnapshot(to, status, from, *model, own, isEnding);
        MainLoop::performDelayed(Seconds(0), [this, error, alive] {
            if (!alive.lock())
                return;
            // After a failure the next look that comes by itself tries again.
            isMaking = false;
            if (error)
                Log::line(error->message);
            else
                lookSoon();
        });
    });
}

/// What the store does not keep any more cannot be written anew; all before it neither.
void ReplicaExchange::noteLost(const std::vector<qint64> &unfit, qint64 upTo)
{
    for (const qint64 number : unfit) {
        if (number <= upTo)
            ownProblems.push_back(
                {folder.pathOf({replica.device(), number}),
                 QStringLiteral(
                     "It was written before the folder was sealed, and cannot be sealed any more")});
    }
}

void ReplicaExchange::takeInSome()
{
    const auto again = [this](Seconds delay) {
        MainLoop::performDelayed(delay, [this, alive = std::weak_ptr(living)] {
            if (alive.lock())
                takeInSome();
        });
    };
    if (isResting)
        return;
    if (!replica.isFree())
        return again(untilFree);
    if (arrived) {
        const SnapshotHead head = *std::exchange(arrived, std::nullopt);
        const auto adopted = replica.adopt(arrivalPath, head.seen);
        QFile::remove(arrivalPath);
        if (!adopted) {
            Log::line(adopted.error().message);
            if (!isPassing(adopted.error()))
                refused.insert(arrivedMark);
        } else {
            takenIn(adopted.value());
            // If that fails, a save does it.
            maker.start([path = replica.storePath()] { Replica::moveFromLog(path).ignore(); });
            // There may be nothing left to wait for.
            lookSoon();
        }
    }
    const size_t before = waiting.size();
    const auto changes =
        std::ranges::any_of(waiting, [this](const ChangeFile &one) { return replica.isNext(one); })
            ? replica.takeIn(waiting, mostChangesAtOnce)
            : Result<StoreChanges>(StoreChanges());
    if (!changes) {
        Log::line(changes.error().message);
        folderProblem = changes.error().message;
        tell();
        return;
    }
    if (!changes.value().isEmpty())
        takenIn(changes.value());
    if (replica.hasUnsettled() && replica.isFree()) {
        const auto settled = replica.settle();
        if (!settled)
            Log::line(settled.error().message);
        else if (!settled.value().isEmpty())
            takenIn(settled.value());
    }
    tell();
    const bool hasTaken = waiting.size() < before;
    if (hasTaken && !waiting.empty())
        again(Seconds(0));
    else if (hasTaken || replica.owesAcknowledgement())
        lookSoon(); // What others have told of having can go now.
}

/// Folders of devices that came since are watched, too.
void ReplicaExchange::follow(const QStringList &folders)
{
    const QStringList watched = watcher.directories();
    for (const QString &path : folders) {
        // What came there before it was watched is still to be looked for.
        if (!watched.contains(path) && watcher.addPath(path))
            lookSoon();
    }
}

void ReplicaExchange::sendNow()
{
    thread.waitForDone();
    if (!hasCheckedOwnFiles)
        return; // It is sent at the next start.
    const SealingStatus status = sealing ? sealing->look() : sealed;
    if (!status.canExchange() || !sealed.canExchange())
        return;
    for (const Replica::Outgoing &one : replica.outgoing(mostBytesToSend)) {
        if (writeSave(folder, status, {replica.device(), one.number}, one.bytes) ||
            replica.markSent(one.number))
            return;
        ownFiles.push_back(one.number);
    }
}

void ReplicaExchange::setResting(bool isOn)
{
    if (std::exchange(isResting, isOn) && !isOn)
        lookSoon();
}

void ReplicaExchange::sealingChanged()
{
    if (sealing)
        sealed = sealing->look();
    lookSoon();
    tell();
}

Health ReplicaExchange::health() const
{
    Health health;
    health.devices = replica.devices();
    std::erase_if(health.devices, [](const Device &device) { return device.isRemoved; });
    health.unsent = replica.unsentCount();
    health.waiting = static_cast<int>(waiting.size());
    health.problems = problems;
    std::ranges::copy(ownProblems, std::back_inserter(health.problems));
    health.folderProblem = folderProblem;
    health.sealing = sealed.state;
    health.sealingProblem = sealed.problem;
    for (const ChangeFile &file : waiting) {
        if (replica.isOfNewerVersion(file)) {
            health.problems.push_back({folder.pathOf(file.dot),
                                       QStringLiteral("It was written by a newer version of the program")});
            --health.waiting;
        } else if (replica.isSetAside(file)) {
            health.problems.push_back({folder.pathOf(file.dot), QStringLiteral("It is damaged")});
            --health.waiting;
        }
    }
    return health;
}

void ReplicaExchange::tell() const
{
    if (listener)
        listener();
}

} // namespace replication

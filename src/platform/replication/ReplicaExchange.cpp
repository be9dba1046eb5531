#include "replication/ReplicaExchange.h"

#include "foundation/Log.h"
#include "foundation/MainLoop.h"

#include <QFile>

#include <algorithm>

namespace replication {

namespace {

/// Long enough for the saves of one command to go together.
constexpr Seconds restBeforeLook{0.2};
/// For folders of which the system tells nothing, such as those of other computers.
constexpr Seconds betweenLooks{60.0};
/// While the store is being changed.
constexpr Seconds untilFree{0.3};
constexpr qsizetype mostBytesAtOnce = 8'000'000;
constexpr int mostChangesAtOnce = 400;

/// What identifies a file for the seal: where it lies below the folder.
QString sealName(const Dot &dot)
{
    return QString::fromUtf8(dot.device) + u'/' + QString::number(dot.number);
}

/// Writes a save, sealed if the folder is.
OptionalError writeSave(const ReplicaFolder &folder, const SealingStatus &sealed, const Dot &dot,
                        const QByteArray &bytes)
{
    if (!sealed.sealer)
        return folder.write(dot, bytes);
    auto content = sealed.sealer->seal(bytes, sealName(dot));
    return content ? folder.write(dot, *content) : OptionalError(content.error());
}

QByteArray keyMarkOf(const SealingStatus &sealed)
{
    return sealed.sealer ? sealed.sealer->keyMark() : QByteArray();
}

} // namespace

/// What one look does off the main thread, and what it finds.
struct ReplicaExchange::Round
{
    ReplicaFolder folder;
    DeviceId own;
    std::vector<Replica::Outgoing> outgoing;
    VersionVector known;
    Dots waiting;
    bool listsOwn = false;
    std::shared_ptr<const Sealing> sealing = {};

    SealingStatus sealed = {};
    /// Own files that are open in a sealed folder, or sealed with a former key.
    std::vector<qint64> unfit = {};
    std::vector<qint64> written = {};
    std::vector<qint64> ownNumbers = {};
    std::vector<ChangeFile> files = {};
    std::vector<Health::Problem> problems = {};
    QString folderProblem = {};
    bool isMoreLeft = false;

    void run()
    {
        if (const auto error = folder.prepare()) {
            folderProblem = error->message;
            return;
        }
        if (sealing)
            sealed = sealing->look();
        // What comes first tells of a folder whose file with the key is still on its way.
        if (sealed.canExchange())
            read();
        if (!sealed.canExchange())
            return;
        if (listsOwn)
            listOwn();
        else
            write();
    }

private:
    void listOwn()
    {
        ownNumbers = folder.numbersOf(own);
        if (!sealed.sealer)
            return;
        for (const qint64 number : ownNumbers) {
            QFile file(folder.pathOf({own, number}));
            if (file.open(QIODevice::ReadOnly) && !sealed.sealer->isOwnSeal(file.read(Sealer::headLength())))
                unfit.push_back(number);
        }
    }
    /// The save in a file that is sealed just if the folder is.
    Result<ChangeFile> saveIn(const QByteArray &bytes, const Dot &dot)
    {
        if (sealed.sealer) {
            auto content = sealed.sealer->open(bytes, sealName(dot));
            return content ? ChangeFile::fromBytes(*content) : Result<ChangeFile>(content.error());
        }
        if (!Sealer::isSealed(bytes))
            return ChangeFile::fromBytes(bytes);
        const Error error{
            QStringLiteral("sealing"), 0,
            QStringLiteral("It is sealed, and the file \"key\" of the folder has not come yet")};
        // Nothing may be written in the open beside it.
        sealed = {SealingState::Unusable, nullptr, error.message};
        return error;
    }
    void write()
    {
        for (const Replica::Outgoing &one : outgoing) {
            if (const auto error = writeSave(folder, sealed, {own, one.number}, one.bytes)) {
                folderProblem = error->message;
                return;
            }
            written.push_back(one.number);
        }
    }
    void read()
    {
        qsizetype size = 0;
        for (const ReplicaFolder::Entry &entry : folder.list(known)) {
            if (entry.device == own || waiting.contains({entry.device, entry.number}))
                continue;
            if (size > mostBytesAtOnce) {
                isMoreLeft = true;
                return;
            }
            QFile file(entry.path);
            if (!file.open(QIODevice::ReadOnly)) {
                problems.push_back({entry.path, file.errorString()});
                continue;
            }
            const QByteArray bytes = file.readAll();
            size += bytes.size();
            auto content = saveIn(bytes, {entry.device, entry.number});
            if (!content)
                problems.push_back({entry.path, content.error().message});
            else if (content->dot != Dot{entry.device, entry.number})
                problems.push_back({entry.path, QStringLiteral("It is another save than its name says")});
            else
                files.push_back(std::move(*content));
        }
    }
};

ReplicaExchange::ReplicaExchange(Replica &exchanged, ReplicaFolder sharedFolder, TakenIn hearer,
                                 std::shared_ptr<const Sealing> folderSealing)
    : replica(exchanged)
    , folder(std::move(sharedFolder))
    , takenIn(std::move(hearer))
    , timer(std::make_unique<RepeatingTimer>(betweenLooks, [this] { lookSoon(); }))
    , sealing(std::move(folderSealing))
{
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
    if (hasCheckedOwnFiles && replica.isFree() && replica.owesAcknowledgement()) {
        if (const auto error = replica.acknowledge())
            Log::line(error->message);
    }
    auto round = std::make_shared<Round>(Round{folder, replica.device(), {}, replica.seen(), {}});
    // Before it writes, it must know that nobody else writes under its name.
    round->listsOwn = !hasCheckedOwnFiles;
    if (hasCheckedOwnFiles)
        round->outgoing = replica.outgoing(mostBytesAtOnce);
    for (const ChangeFile &file : waiting)
        round->waiting.insert(file.dot);
    round->sealing = sealing;
    thread.start([this, round, alive = std::weak_ptr(living)] {
        round->run();
        MainLoop::performDelayed(Seconds(0), [this, round, alive] {
            if (alive.lock())
                finishRound(*round);
        });
    });
}

void ReplicaExchange::finishRound(Round &round)
{
    isRunning = false;
    folderProblem = round.folderProblem;
    problems = std::move(round.problems);
    for (const qint64 number : round.written) {
        if (const auto error = replica.markSent(number))
            Log::line(error->message);
    }
    const bool hasExchanged = folderProblem.isEmpty() && round.sealed.canExchange();
    sealed = std::move(round.sealed);
    if (hasExchanged && ownKeyMark != keyMarkOf(sealed)) {
        // All that lies there under another key, or open, is to be written anew.
        ownKeyMark = keyMarkOf(sealed);
        hasCheckedOwnFiles = false;
        wantsAnother = true;
    }
    if (round.listsOwn && hasExchanged)
        checkOwnFiles(round.ownNumbers, round.unfit);
    for (ChangeFile &file : round.files)
        waiting.push_back(std::move(file));
    follow();
    if (!waiting.empty() || replica.hasUnsettled())
        takeInSome();
    const bool hasMoreToSend = hasExchanged && !replica.outgoing(1).empty();
    if (wantsAnother || round.isMoreLeft || hasMoreToSend || (round.listsOwn && hasCheckedOwnFiles))
        lookSoon();
    tell();
}

/// Files that are gone are written again. Files of this device that it has not written are those of a store
/// that was put back from a copy, or of a second one with its name. Files that are not sealed as they should
/// be are written anew.
void ReplicaExchange::checkOwnFiles(const std::vector<qint64> &numbers, const std::vector<qint64> &unfit)
{
    if (!numbers.empty() && numbers.back() > replica.number()) {
        if (const auto error = replica.becomeAnother())
            Log::line(error->message);
        return;
    }
    hasCheckedOwnFiles = true;
    ownProblems.clear();
    for (qint64 number = replica.number(); number > 0; --number) {
        if (std::ranges::binary_search(numbers, number) && !std::ranges::binary_search(unfit, number))
            continue;
        if (!replica.sent(number)) {
            noteLost(unfit, number);
            break;
        }
        if (const auto error = replica.markUnsent(number))
            Log::line(error->message);
    }
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
    if (waiting.size() < before && !waiting.empty())
        again(Seconds(0));
    else if (replica.owesAcknowledgement())
        lookSoon();
}

/// Folders of devices that came since are watched, too.
void ReplicaExchange::follow()
{
    const QStringList watched = watcher.directories();
    for (const QString &path : folder.watchedFolders()) {
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
    for (const Replica::Outgoing &one : replica.outgoing(mostBytesAtOnce)) {
        if (writeSave(folder, status, {replica.device(), one.number}, one.bytes) ||
            replica.markSent(one.number))
            return;
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

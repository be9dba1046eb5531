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
        if (listsOwn)
            ownNumbers = folder.numbersOf(own);
        else
            write();
        read();
    }

private:
    void write()
    {
        for (const Replica::Outgoing &one : outgoing) {
            if (const auto error = folder.write({own, one.number}, one.bytes)) {
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
            auto content = ChangeFile::fromBytes(bytes);
            if (!content)
                problems.push_back({entry.path, content.error().message});
            else if (content->dot != Dot{entry.device, entry.number})
                problems.push_back({entry.path, QStringLiteral("It is another save than its name says")});
            else
                files.push_back(std::move(*content));
        }
    }
};

ReplicaExchange::ReplicaExchange(Replica &exchanged, ReplicaFolder sharedFolder, TakenIn hearer)
    : replica(exchanged)
    , folder(std::move(sharedFolder))
    , takenIn(std::move(hearer))
    , timer(std::make_unique<RepeatingTimer>(betweenLooks, [this] { lookSoon(); }))
{
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
    auto round = std::make_shared<Round>(Round{folder, replica.device(), {}, replica.seen(), {}});
    // Before it writes, it must know that nobody else writes under its name.
    round->listsOwn = !hasCheckedOwnFiles;
    if (hasCheckedOwnFiles)
        round->outgoing = replica.outgoing(mostBytesAtOnce);
    for (const ChangeFile &file : waiting)
        round->waiting.insert(file.dot);
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
    if (round.listsOwn && folderProblem.isEmpty())
        checkOwnFiles(round.ownNumbers);
    for (ChangeFile &file : round.files)
        waiting.push_back(std::move(file));
    follow();
    if (!waiting.empty() || replica.hasUnsettled())
        takeInSome();
    const bool hasMoreToSend = folderProblem.isEmpty() && !replica.outgoing(1).empty();
    if (wantsAnother || round.isMoreLeft || hasMoreToSend || (round.listsOwn && hasCheckedOwnFiles))
        lookSoon();
    tell();
}

/// Files that are gone are written again. Files of this device that it has not written are those of a store
/// that was put back from a copy, or of a second one with its name.
void ReplicaExchange::checkOwnFiles(const std::vector<qint64> &numbers)
{
    if (!numbers.empty() && numbers.back() > replica.number()) {
        if (const auto error = replica.becomeAnother())
            Log::line(error->message);
        return;
    }
    hasCheckedOwnFiles = true;
    for (qint64 number = replica.number(); number > 0; --number) {
        if (std::ranges::binary_search(numbers, number))
            continue;
        if (!replica.sent(number))
            break;
        if (const auto error = replica.markUnsent(number))
            Log::line(error->message);
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
    for (const Replica::Outgoing &one : replica.outgoing(mostBytesAtOnce)) {
        if (folder.write({replica.device(), one.number}, one.bytes) || replica.markSent(one.number))
            return;
    }
}

void ReplicaExchange::setResting(bool isOn)
{
    if (std::exchange(isResting, isOn) && !isOn)
        lookSoon();
}

Health ReplicaExchange::health() const
{
    Health health;
    health.devices = replica.devices();
    health.unsent = replica.unsentCount();
    health.waiting = static_cast<int>(waiting.size());
    health.problems = problems;
    health.folderProblem = folderProblem;
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

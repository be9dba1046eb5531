#include "replication/ExchangeRound.h"

#include "foundation/Clock.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>

#include <algorithm>

namespace replication {

namespace {

constexpr qsizetype mostBytesAtOnce = 8'000'000;
/// What could not be read, and has not changed since.
constexpr Seconds untilReadAgain{3600.0};

/// What identifies a file for the seal: where it lies below the folder.
QString sealName(const Dot &dot)
{
    return QString::fromUtf8(dot.device) + u'/' + QString::number(dot.number);
}

QString snapshotSealName(const Dot &dot)
{
    return QStringLiteral("snapshot/") + sealName(dot);
}

QString sizeMark(const ReplicaFolder::Entry &entry)
{
    const QFileInfo info(entry.path);
    return entry.path + u' ' + QString::number(info.size()) + u' ' +
           QString::number(info.lastModified().toMSecsSinceEpoch());
}

QString marksOfKeys(const SealingStatus &sealed)
{
    QByteArray all;
    for (const QByteArray &one : sealed.marks)
        all += ' ' + one.toHex();
    return QString::fromUtf8(all + (sealed.formerSealer ? " former " : " ") + sealed.keyMark().toHex());
}

} // namespace

OptionalError writeSave(const ReplicaFolder &folder, const SealingStatus &sealed, const Dot &dot,
                        const QByteArray &bytes)
{
    if (!sealed.sealer)
        return folder.write(dot, bytes);
    auto content = sealed.sealer->seal(bytes, sealName(dot));
    return content ? folder.write(dot, *content) : OptionalError(content.error());
}

OptionalError makeSnapshot(const ReplicaFolder &folder, const SealingStatus &sealed, const QString &storePath,
                           const ManagedObjectModel &model, const DeviceId &own,
                           const std::atomic<bool> &isCancelled)
{
    const QString databasePath = storePath + QStringLiteral("-leaving");
    const auto remover = qScopeGuard([&databasePath] { QFile::remove(databasePath); });
    auto head = snapshot::extract(storePath, model, databasePath, isCancelled);
    if (!head)
        return head.error();
    if (head->dot.device != own)
        return Error{QStringLiteral("snapshot"), 0, QStringLiteral("The store is that of another device")};
    if (auto error = folder.makeFolderOf(own))
        return error;
    if (auto error = snapshot::pack(*head, databasePath, sealed.sealer.get(), snapshotSealName(head->dot),
                                    folder.snapshotPathOf(head->dot)))
        return error;
    for (const ReplicaFolder::Entry &entry : folder.snapshots()) {
        if (entry.device == own && entry.number != head->dot.number)
            QFile::remove(entry.path);
    }
    return std::nullopt;
}

void ExchangeRound::run()
{
    if (const auto error = folder.prepare()) {
        folderProblem = error->message;
        return;
    }
    watchedFolders = folder.watchedFolders();
    if (sealing)
        sealed = sealing->look();
    // What comes first tells of a folder whose file with the key is still on its way.
    if (sealed.canExchange())
        read();
    if (!sealed.canExchange())
        return;
    findSnapshots();
    if (!sealed.canExchange())
        return;
    takeSnapshot();
    std::ranges::move(sealedfiles::refit(filesBeside, sealed, fitFiles), std::back_inserter(problems));
    if (listsOwn) {
        folder.removeLeftovers(own, started);
        listOwn();
        return;
    }
    write();
    tidy();
}

void ExchangeRound::listOwn()
{
    ownNumbers = folder.numbersOf(own);
    for (const qint64 one : ownNumbers) {
        QFile file(folder.pathOf({own, one}));
        if (file.open(QIODevice::ReadOnly) && !sealed.isFit(file.read(Sealer::headLength())))
            unfit.push_back(one);
    }
    // A name alone says nothing: somebody can have copied a file under another one.
    for (auto one = ownNumbers.rbegin(); one != ownNumbers.rend() && !lastOwn; ++one) {
        const Dot dot{own, *one};
        QFile file(folder.pathOf(dot));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray bytes = file.readAll();
        auto content = sealed.opened(bytes, sealName(dot));
        auto save = content ? ChangeFile::fromBytes(*content) : Result<ChangeFile>(content.error());
        const bool isOwn = save && save->dot == dot;
        if (isOwn || (!content && Sealer::isSealed(bytes)))
            greatestOwn = std::max(greatestOwn, *one);
        else if (!std::ranges::binary_search(unfit, *one))
            unfit.insert(std::ranges::lower_bound(unfit, *one), *one);
        if (isOwn && *one <= number)
            lastOwn = Replica::Outgoing{*one, *content};
    }
}

std::optional<QByteArray> ExchangeRound::contentOf(const ReplicaFolder &folder, const SealingStatus &sealed,
                                                   const Dot &dot)
{
    QFile file(folder.pathOf(dot));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    auto content = sealed.opened(file.readAll(), sealName(dot));
    return content ? std::optional(*content) : std::nullopt;
}

Result<ChangeFile> ExchangeRound::saveIn(const QByteArray &bytes, const Dot &dot)
{
    auto content = sealed.opened(bytes, sealName(dot));
    if (content)
        return ChangeFile::fromBytes(*content);
    return content.error();
}

/// Nothing may be written in the open beside a file that is sealed with a key of which the folder tells
/// nothing yet.
void ExchangeRound::heed(const Error &error)
{
    if (error.code == SealingStatus::unknownKey && error.domain == u"sealing")
        sealed = {.state = SealingState::Unusable, .problem = error.message};
}

void ExchangeRound::write()
{
    for (const Replica::Outgoing &one : outgoing) {
        if (const auto error = writeSave(folder, sealed, {own, one.number}, one.bytes)) {
            folderProblem = error->message;
            return;
        }
        written.push_back(one.number);
    }
}

void ExchangeRound::read()
{
    qsizetype size = 0;
    present = folder.list(known);
    Dots there;
    for (const ReplicaFolder::Entry &entry : present) {
        const Dot dot{entry.device, entry.number};
        there.insert(dot);
        if (entry.device == own || waiting.contains(dot))
            continue;
        if (size > mostBytesAtOnce) {
            isMoreLeft = true;
            return;
        }
        size += readOne(entry);
    }
    std::erase_if(unread, [&there](const auto &one) { return !there.contains(one.first); });
}

/// Adds a save to the files, and gives its size. One that cannot be read is told of, counts nothing, and
/// costs no time at the next looks.
qsizetype ExchangeRound::readOne(const ReplicaFolder::Entry &entry)
{
    const Dot dot{entry.device, entry.number};
    // Before it is read: what comes meanwhile counts as a change.
    const QString looks = sizeMark(entry) + marksOfKeys(sealed);
    auto former = unread.find(dot);
    if (former == unread.end() || former->second.mark != looks ||
        std::chrono::abs(Clock::now() - former->second.tried) > untilReadAgain) {
        QFile file(entry.path);
        if (!file.open(QIODevice::ReadOnly)) {
            problems.push_back({entry.path, file.errorString()});
            return 0;
        }
        const QByteArray bytes = file.readAll();
        auto content = saveIn(bytes, dot);
        if (content && content->dot != dot)
            content = Error{{}, 0, QStringLiteral("It is another save than its name says")};
        if (content) {
            unread.erase(dot);
            files.push_back(std::move(*content));
            return bytes.size();
        }
        const UnreadSave failed{looks, Clock::now(), content.error(), !sealed.isFit(bytes)};
        former = unread.insert_or_assign(dot, failed).first;
    }
    const UnreadSave &failed = former->second;
    heed(failed.why);
    problems.push_back({entry.path, failed.why.message});
    if (failed.isUnfit)
        unopened.insert(dot);
    return 0;
}

void ExchangeRound::findSnapshots()
{
    for (const ReplicaFolder::Entry &entry : folder.snapshots()) {
        const Dot dot{entry.device, entry.number};
        auto head = snapshot::readHead(entry.path, sealed, snapshotSealName(dot));
        if (head && head->dot != dot)
            head = Error{{}, 0, QStringLiteral("It is another save than its name says")};
        if (head && head->schema > schema)
            head = Error{{}, 0, QStringLiteral("It was written by a newer version of the program")};
        if (head && !refused.isEmpty() && refused.contains(sizeMark(entry)))
            head = Error{{}, 0, QStringLiteral("It is damaged")};
        if (head)
            snapshots.push_back({entry, *head});
        else if (entry.device != own)
            problems.push_back({entry.path, head.error().message});
        if (!head)
            heed(head.error());
        // One that is not sealed as it should be is made anew.
        if (entry.device == own && (!head || head->keyMark != sealed.keyMark()))
            isSnapshotDue = !listsOwn;
    }
    for (const Found &one : snapshots)
        ownCovered = std::max(ownCovered, one.head.seen.of(own));
}

void ExchangeRound::takeSnapshot()
{
    if (arrivalPath.isEmpty())
        return;
    Dots there;
    // A snapshot may hold what the file does not say.
    std::ranges::set_difference(waiting, aside, std::inserter(there, there.end()));
    for (const ReplicaFolder::Entry &entry : present) {
        // What is sealed otherwise may stay so for ever, if its device is gone.
        const Dot dot{entry.device, entry.number};
        if (!unopened.contains(dot) && !aside.contains(dot))
            there.insert(dot);
    }
    std::vector<SnapshotHead> heads;
    for (const Found &one : snapshots)
        heads.push_back(one.head);
    // One that turns out to be damaged leaves the place to the next one.
    while (const auto place = snapshotToTake(heads, known, there, own)) {
        const ReplicaFolder::Entry &entry = snapshots[*place].entry;
        auto head =
            snapshot::unpack(entry.path, sealed, snapshotSealName({entry.device, entry.number}), arrivalPath);
        if (head) {
            arrived = *head;
            arrivedMark = sizeMark(entry);
            return;
        }
        problems.push_back({entry.path, head.error().message});
        snapshots.erase(snapshots.begin() + static_cast<std::ptrdiff_t>(*place));
        heads.erase(heads.begin() + static_cast<std::ptrdiff_t>(*place));
    }
}

/// Looks whether a snapshot is to be made, and removes own saves that nobody needs any more.
void ExchangeRound::tidy()
{
    ownNumbers = folder.numbersOf(own);
    qint64 bytes = 0;
    int uncovered = 0;
    for (const qint64 one : ownNumbers) {
        if (one > ownCovered) {
            ++uncovered;
            bytes += uncovered < terms.mostFiles ? QFileInfo(folder.pathOf({own, one})).size() : 0;
        }
    }
    isSnapshotDue =
        isSnapshotDue || cleared > ownCovered || uncovered >= terms.mostFiles || bytes >= terms.mostBytes;
    std::vector<SnapshotHead> whole;
    for (const Found &one : snapshots) {
        if (one.head.seen.of(own) > 0 && isWhole(one))
            whole.push_back(one.head);
    }
    if (!ownNumbers.empty()) {
        clearable = clearableUpTo(ownNumbers.back(), devices, whole, own);
        for (const qint64 one : ownNumbers) {
            if (one <= std::min(clearable, cleared))
                QFile::remove(folder.pathOf({own, one}));
        }
    }
    for (const Device &device : devices) {
        if (device.isRemoved)
            clearAwayRemoved(device.id);
    }
}

/// Whether a snapshot can be read to its end. One that may have to stand in for files is, once.
bool ExchangeRound::isWhole(const Found &snapshot)
{
    const QString mark = sizeMark(snapshot.entry);
    const Dot dot{snapshot.entry.device, snapshot.entry.number};
    if (!verified.contains(mark) && !snapshot::unpack(snapshot.entry.path, sealed, snapshotSealName(dot), {}))
        return false;
    verified.insert(mark);
    return true;
}

/// What a removed device has left in the folder goes once the snapshot of another one holds it.
void ExchangeRound::clearAwayRemoved(const DeviceId &removed)
{
    if (!QFileInfo::exists(folder.path() + u'/' + QString::fromUtf8(removed)))
        return;
    const auto isGone = [this](const DeviceId &id) {
        return std::ranges::any_of(devices,
                                   [&id](const Device &one) { return one.id == id && one.isRemoved; });
    };
    std::vector<SnapshotHead> whole;
    for (const Found &one : snapshots) {
        if (!isGone(one.entry.device) && one.head.seen.of(removed) > 0 && isWhole(one))
            whole.push_back(one.head);
    }
    const qint64 upTo = clearableOfRemoved(removed, devices, whole);
    for (const qint64 one : folder.numbersOf(removed)) {
        if (one <= upTo)
            QFile::remove(folder.pathOf({removed, one}));
    }
    for (const Found &one : snapshots) {
        const bool isHeld =
            one.entry.device == removed && std::ranges::any_of(whole, [&one](const SnapshotHead &other) {
                return other.seen.covers(one.head.seen);
            });
        if (isHeld)
            QFile::remove(one.entry.path);
    }
    // If it lives after all, it is writing what is newer.
    folder.removeLeftovers(removed, QDateTime::currentDateTimeUtc().addDays(-1));
    // It stays while something is in it.
    QDir(folder.path()).rmdir(QString::fromUtf8(removed));
}

} // namespace replication

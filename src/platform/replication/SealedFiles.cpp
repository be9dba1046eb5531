#include "replication/SealedFiles.h"

#include "foundation/AtomicFile.h"
#include "foundation/PrivateFiles.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace replication::sealedfiles {

namespace {

/// A file that is written must not be the former one again.
std::mutex &writing()
{
    static std::mutex mutex;
    return mutex;
}

QString nameForSeal(const QString &path)
{
    return QStringLiteral("file/") + QFileInfo(path).fileName();
}

/// Tells a file from what it was before.
QString stateOf(const QString &path)
{
    const QFileInfo info(path);
    return info.fileName() + u' ' + QString::number(info.size()) + u' ' +
           QString::number(info.lastModified().toMSecsSinceEpoch());
}

OptionalError writeNow(const QString &path, const QByteArray &bytes, const SealingStatus &status,
                       const LastCheck &check = {})
{
    if (!status.sealer)
        return writeFileAtomically(path, bytes, check);
    auto sealed = status.sealer->sealAlike(bytes, nameForSeal(path));
    return sealed ? writeFileAtomically(path, *sealed, check) : OptionalError(sealed.error());
}

QFileInfoList filesIn(const QString &folder)
{
    return QDir(folder).entryInfoList(QDir::Files);
}

/// What came meanwhile stays, and is looked at the next time.
OptionalError refitOne(const QString &path, const SealingStatus &status)
{
    const QString before = stateOf(path);
    auto content = read(path, status);
    if (!content)
        return content.error();
    const std::scoped_lock lock(writing());
    bool isOvertaken = false;
    auto error = writeNow(path, *content, status, [&]() -> OptionalError {
        isOvertaken = stateOf(path) != before;
        return isOvertaken ? OptionalError(Error{}) : std::nullopt;
    });
    return isOvertaken ? std::nullopt : error;
}

void sendWaiting(const Place &place, const SealingStatus &status)
{
    for (const QFileInfo &one : filesIn(place.waiting)) {
        QFile file(one.filePath());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        PrivateFiles::makeFolder(place.folder);
        if (!write(place.folder + u'/' + one.fileName(), file.readAll(), status))
            file.remove();
    }
}

} // namespace

Result<QByteArray> read(const QString &path, const SealingStatus &status)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Error{QStringLiteral("files"), 0, file.errorString()};
    QByteArray bytes = file.readAll();
    if (!Sealer::isSealed(bytes))
        return bytes;
    const Sealer *sealer = status.sealer ? status.sealer.get() : status.formerSealer.get();
    if (!sealer)
        return Error{QStringLiteral("sealing"), 0, QStringLiteral("It is sealed with another passphrase")};
    return sealer->open(bytes, nameForSeal(path));
}

OptionalError write(const QString &path, const QByteArray &bytes, const SealingStatus &status)
{
    if (!status.canExchange())
        return Error{QStringLiteral("sealing"), 0, status.problem};
    const std::scoped_lock lock(writing());
    return writeNow(path, bytes, status);
}

std::vector<FileProblem> refit(const Place &place, const SealingStatus &status, QSet<QString> &fit)
{
    std::vector<FileProblem> problems;
    if (place.folder.isEmpty() || !status.canExchange())
        return problems;
    sendWaiting(place, status);
    for (const QFileInfo &one : filesIn(place.folder)) {
        const QString path = one.filePath();
        if (fit.contains(stateOf(path)))
            continue;
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            continue; // It has not come yet.
        const bool isFit = status.isFit(file.read(Sealer::headLength()));
        file.close();
        const OptionalError error = isFit ? std::nullopt : refitOne(path, status);
        if (error)
            problems.push_back({path, error->message});
        else if (isFit)
            fit.insert(stateOf(path));
    }
    return problems;
}

} // namespace replication::sealedfiles

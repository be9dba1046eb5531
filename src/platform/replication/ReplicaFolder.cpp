#include "replication/ReplicaFolder.h"

#include "foundation/AtomicFile.h"
#include "foundation/PrivateFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace replication {

namespace {

const QString prefix = QStringLiteral("changes-");
const QString snapshotPrefix = QStringLiteral("snapshot-");
constexpr int digits = 10;

/// The number in the name of a file, or 0 if it is the name of something else.
qint64 numberIn(const QString &name, const QString &beginning)
{
    if (name.size() != beginning.size() + digits || !name.startsWith(beginning))
        return 0;
    bool isNumber = false;
    const qint64 number = name.mid(beginning.size()).toLongLong(&isNumber);
    return isNumber && number > 0 ? number : 0;
}

std::vector<qint64> numbersIn(const QString &folder, const QString &beginning)
{
    std::vector<qint64> numbers;
    QDirIterator names(folder, QDir::Files);
    while (names.hasNext()) {
        names.next();
        if (const qint64 number = numberIn(names.fileName(), beginning))
            numbers.push_back(number);
    }
    std::ranges::sort(numbers);
    return numbers;
}

/// Whether it is the name of a file while it is written.
bool isTemporary(const QString &name)
{
    constexpr int letters = 6;
    const QString wanted = name.chopped(std::min<qsizetype>(name.size(), letters + 1));
    return (numberIn(wanted, prefix) > 0 || numberIn(wanted, snapshotPrefix) > 0) &&
           name.at(wanted.size()) == u'.' &&
           std::ranges::all_of(name.last(letters), [](QChar letter) { return letter.isLetter(); });
}

bool isDevice(const QString &name)
{
    constexpr int hexDigits = 16;
    return name.size() == hexDigits && std::ranges::all_of(name, [](QChar letter) {
               return (letter >= u'0' && letter <= u'9') || (letter >= u'a' && letter <= u'f');
           });
}

} // namespace

OptionalError ReplicaFolder::prepare() const
{
    return PrivateFiles::makeFolder(folder)
               ? std::nullopt
               : OptionalError(Error{QStringLiteral("files"), 0,
                                     QStringLiteral("The folder %1 cannot be made").arg(folder)});
}

QString ReplicaFolder::pathOf(const Dot &dot) const
{
    return folderOf(dot.device) + u'/' + prefix + QString::number(dot.number).rightJustified(digits, u'0');
}

QString ReplicaFolder::snapshotPathOf(const Dot &dot) const
{
    return folderOf(dot.device) + u'/' + snapshotPrefix +
           QString::number(dot.number).rightJustified(digits, u'0');
}

OptionalError ReplicaFolder::makeFolderOf(const DeviceId &device) const
{
    const QString path = folderOf(device);
    return PrivateFiles::makeFolder(path)
               ? std::nullopt
               : OptionalError(Error{QStringLiteral("files"), 0,
                                     QStringLiteral("The folder %1 cannot be made").arg(path)});
}

OptionalError ReplicaFolder::write(const Dot &dot, const QByteArray &bytes) const
{
    if (auto error = makeFolderOf(dot.device))
        return error;
    return writeFileAtomically(pathOf(dot), bytes);
}

std::vector<qint64> ReplicaFolder::numbersOf(const DeviceId &device) const
{
    return numbersIn(folderOf(device), prefix);
}

std::vector<DeviceId> ReplicaFolder::devices() const
{
    std::vector<DeviceId> list;
    for (const QString &name : QDir(folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (isDevice(name))
            list.push_back(name.toUtf8());
    }
    return list;
}

std::vector<ReplicaFolder::Entry> ReplicaFolder::list(const VersionVector &beyond) const
{
    std::vector<Entry> entries;
    for (const DeviceId &device : devices()) {
        for (const qint64 number : numbersOf(device)) {
            if (number > beyond.of(device))
                entries.push_back({device, number, pathOf({device, number})});
        }
    }
    return entries;
}

std::vector<ReplicaFolder::Entry> ReplicaFolder::snapshots() const
{
    std::vector<Entry> entries;
    for (const DeviceId &device : devices()) {
        for (const qint64 number : numbersIn(folderOf(device), snapshotPrefix))
            entries.push_back({device, number, snapshotPathOf({device, number})});
    }
    return entries;
}

void ReplicaFolder::removeLeftovers(const DeviceId &device, const QDateTime &before) const
{
    for (const QFileInfo &one : QDir(folderOf(device)).entryInfoList(QDir::Files)) {
        if (isTemporary(one.fileName()) && one.lastModified() < before)
            QFile::remove(one.filePath());
    }
}

QStringList ReplicaFolder::watchedFolders() const
{
    QStringList folders;
    if (QFileInfo(folder).isDir())
        folders.append(folder);
    for (const DeviceId &device : devices())
        folders.append(folderOf(device));
    return folders;
}

} // namespace replication

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
constexpr int digits = 10;

/// The number in the name of a save, or 0 if it is the name of something else.
qint64 numberIn(const QString &name)
{
    if (name.size() != prefix.size() + digits || !name.startsWith(prefix))
        return 0;
    bool isNumber = false;
    const qint64 number = name.mid(prefix.size()).toLongLong(&isNumber);
    return isNumber && number > 0 ? number : 0;
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
    return folder + u'/' + QString::fromUtf8(dot.device) + u'/' + prefix +
           QString::number(dot.number).rightJustified(digits, u'0');
}

OptionalError ReplicaFolder::write(const Dot &dot, const QByteArray &bytes) const
{
    const QString path = pathOf(dot);
    PrivateFiles::makeFolder(QFileInfo(path).path());
    return writeFileAtomically(path, bytes);
}

std::vector<qint64> ReplicaFolder::numbersOf(const DeviceId &device) const
{
    std::vector<qint64> numbers;
    QDirIterator names(folder + u'/' + QString::fromUtf8(device), QDir::Files);
    while (names.hasNext()) {
        names.next();
        if (const qint64 number = numberIn(names.fileName()))
            numbers.push_back(number);
    }
    std::ranges::sort(numbers);
    return numbers;
}

std::vector<ReplicaFolder::Entry> ReplicaFolder::list(const VersionVector &beyond) const
{
    std::vector<Entry> entries;
    for (const QString &name : QDir(folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (!isDevice(name))
            continue;
        const DeviceId device = name.toUtf8();
        for (const qint64 number : numbersOf(device)) {
            if (number > beyond.of(device))
                entries.push_back({device, number, pathOf({device, number})});
        }
    }
    return entries;
}

QStringList ReplicaFolder::watchedFolders() const
{
    QStringList folders;
    if (QFileInfo(folder).isDir())
        folders.append(folder);
    for (const QString &name : QDir(folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (isDevice(name))
            folders.append(folder + u'/' + name);
    }
    return folders;
}

} // namespace replication

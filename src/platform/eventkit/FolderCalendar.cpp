#include "eventkit/FolderCalendar.h"

#include "eventkit/CalendarError.h"
#include "foundation/AtomicFile.h"
#include "foundation/Log.h"

#include <QCryptographicHash>
#include <QFile>
#include <QRegularExpression>
#include <QUuid>

#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

namespace {

const QString extension = QStringLiteral(".ics");
/// No calendar object is larger; what is, is something else.
constexpr qint64 largestFile = 64 * 1024 * 1024;
constexpr qsizetype longestName = 200;

Error conflict(const QString &path)
{
    return CalendarError::make(CalendarError::Conflict,
                               QStringLiteral("Cannot write %1: somebody else has changed it.").arg(path));
}

Error readOnly(const QString &path)
{
    return CalendarError::make(CalendarError::ReadOnly,
                               QStringLiteral("Cannot change %1: it may only be read.").arg(path));
}

/// Other programs take the UID for the name only if it has no other characters.
bool isPlainName(const QString &uid)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_+-][A-Za-z0-9_.+-]*$"));
    return uid.size() <= longestName && plain.match(uid).hasMatch();
}

/// Makes the entry of a new file in its folder outlast a loss of power.
void synchronizeFolder(const QString &path)
{
    const int handle = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        return;
    ::fsync(handle);
    ::close(handle);
}

Result<QStringList> namesIn(const QString &path)
{
    std::error_code error;
    QStringList names;
    std::filesystem::directory_iterator entry(QFile::encodeName(path).toStdString(), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const QString name = QFile::decodeName(QByteArray::fromStdString(entry->path().filename().string()));
        if (name.endsWith(extension) && !name.startsWith(u'.'))
            names.append(name);
    }
    if (!error)
        return names;
    const bool isGone = error == std::errc::no_such_file_or_directory;
    return CalendarError::make(
        isGone ? CalendarError::NotFound : CalendarError::Storage,
        QStringLiteral("Cannot read the calendar %1: %2").arg(path, QString::fromStdString(error.message())));
}

} // namespace

FolderCalendar::FolderCalendar(const QString &folder)
    : path(folder)
{}

QString FolderCalendar::pathOf(const QString &name) const
{
    return path + u'/' + name;
}

/// One that cannot be read, maybe only now, is tried again each time and reported once.
FolderCalendar::Known FolderCalendar::read(const QString &name, const FileStamp &stamp) const
{
    QFile file(pathOf(name));
    const Known former = known.value(name);
    Known found{stamp, stamp.isSettled(), {name, {}, {}}};
    const bool isTooLarge = stamp.size > largestFile;
    const bool isOpen = !isTooLarge && file.open(QIODevice::ReadOnly);
    if (isOpen)
        found.object.text = file.readAll();
    if (!isOpen || file.error() != QFileDevice::NoError) {
        if (former.object.name.isEmpty() || !former.object.etag.isEmpty())
            Log::line(QStringLiteral("Cannot read %1: %2")
                          .arg(file.fileName(),
                               isTooLarge ? QStringLiteral("it is too large") : file.errorString()));
        return {stamp, false, {name, {}, {}}};
    }
    const QByteArray hash = QCryptographicHash::hash(found.object.text, QCryptographicHash::Sha1).toHex();
    found.object.etag = stamp.text() + ';' + hash.left(16);
    return found;
}

/// Null for what is not there or no file. Without an etag if it cannot be read.
const FolderCalendar::Known *FolderCalendar::look(const QString &name)
{
    const auto stamp = FileStamp::of(pathOf(name));
    if (!stamp || !stamp->isRegular) {
        known.remove(name);
        return nullptr;
    }
    const auto former = known.constFind(name);
    if (former != known.constEnd() && former->stamp == *stamp && former->isSettled)
        return &*former;
    return &*known.insert(name, read(name, *stamp));
}

Result<std::vector<CalendarObject>> FolderCalendar::objects()
{
    const auto names = namesIn(path);
    if (!names)
        return names.error();
    std::vector<CalendarObject> found;
    QHash<QString, Known> present;
    for (const QString &name : names.value())
        if (const Known *entry = look(name)) {
            present.insert(name, *entry);
            found.push_back(entry->object);
        }
    known = std::move(present);
    return found;
}

std::optional<CalendarObject> FolderCalendar::object(const QString &name)
{
    const Known *entry = look(name);
    return entry ? std::optional(entry->object) : std::nullopt;
}

OptionalError FolderCalendar::checkUnchanged(const QString &name, const QByteArray &etag)
{
    const Known *present = look(name);
    return present && !etag.isEmpty() && present->object.etag == etag ? OptionalError()
                                                                      : conflict(pathOf(name));
}

QString FolderCalendar::freeNameFor(const QString &uid) const
{
    QString wished = uid + extension;
    if (isPlainName(uid) && !FileStamp::of(pathOf(wished)))
        return wished;
    return QUuid::createUuid().toString(QUuid::WithoutBraces) + extension;
}

Result<CalendarObject> FolderCalendar::put(const CalendarObject &object, const QString &uid)
{
    const bool isNew = object.name.isEmpty();
    const QString name = isNew ? freeNameFor(uid) : object.name;
    if (!FileStamp::of(path))
        return CalendarError::make(
            CalendarError::NotFound,
            QStringLiteral("Cannot write %1: the calendar has gone.").arg(pathOf(name)));
    if (!isWritablePath(path) || (!isNew && FileStamp::of(pathOf(name)) && !isWritablePath(pathOf(name))))
        return readOnly(pathOf(name));
    const LastCheck check = [&]() -> OptionalError {
        if (isNew)
            return FileStamp::of(pathOf(name)) ? OptionalError(conflict(pathOf(name))) : std::nullopt;
        return checkUnchanged(name, object.etag);
    };
    if (auto error = check())
        return *error;
    if (auto error = writeFileAtomically(pathOf(name), object.text, check)) {
        if (error->domain != QStringLiteral("files"))
            return *error;
        return CalendarError::make(CalendarError::Storage,
                                   QStringLiteral("Cannot write %1: %2").arg(pathOf(name), error->message));
    }
    if (isNew)
        synchronizeFolder(path);
    const Known *written = look(name);
    if (!written || written->object.text != object.text)
        return conflict(pathOf(name));
    return written->object;
}

OptionalError FolderCalendar::remove(const QString &name, const QByteArray &etag)
{
    if (!FileStamp::of(pathOf(name)))
        return std::nullopt;
    if (!isWritablePath(path))
        return readOnly(pathOf(name));
    if (auto error = checkUnchanged(name, etag))
        return error;
    QFile file(pathOf(name));
    if (!file.remove())
        return CalendarError::make(
            CalendarError::Storage,
            QStringLiteral("Cannot remove %1: %2").arg(file.fileName(), file.errorString()));
    known.remove(name);
    return std::nullopt;
}

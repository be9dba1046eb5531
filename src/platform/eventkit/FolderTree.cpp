#include "eventkit/FolderTree.h"

#include "eventkit/CalendarError.h"
#include "eventkit/ColorText.h"
#include "eventkit/FileStamp.h"
#include "eventkit/IcalText.h"
#include "foundation/AtomicFile.h"
#include "foundation/PrivateFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUuid>

#include <algorithm>
#include <filesystem>

namespace {

const QString localFolder = QStringLiteral("local");
const QString nameFile = QStringLiteral("displayname");
const QString colorFile = QStringLiteral("color");

/// The folders in a folder that are not hidden, by name. None in one that does not exist; one that cannot be
/// read is an error, and never an empty one.
Result<QStringList> foldersIn(const QString &path)
{
    std::error_code error;
    QStringList names;
    std::filesystem::directory_iterator entry(QFile::encodeName(path).toStdString(), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const QString name = QFile::decodeName(QByteArray::fromStdString(entry->path().filename().string()));
        if (!name.startsWith(u'.') && QFileInfo(path + u'/' + name).isDir())
            names.append(name);
    }
    if (error && error != std::errc::no_such_file_or_directory)
        return CalendarError::make(CalendarError::Storage,
                                   QStringLiteral("Cannot read the calendars in %1: %2")
                                       .arg(path, QString::fromStdString(error.message())));
    names.sort();
    return names;
}

QStringList readableFoldersIn(const QString &path)
{
    const auto folders = foldersIn(path);
    return folders ? folders.value() : QStringList();
}

/// The trimmed contents of a small file; empty without one.
QString contentsOf(const QString &folder, const QString &name)
{
    constexpr qint64 mostBytes = 4096;
    QFile file(folder + u'/' + name);
    const auto stamp = FileStamp::of(file.fileName());
    const bool isOpen = stamp && stamp->isRegular && file.open(QIODevice::ReadOnly);
    return isOpen ? IcalText::fromBytes(file.read(mostBytes)).trimmed() : QString();
}

QString titleOf(const QString &path)
{
    const QString name = contentsOf(path, nameFile);
    return name.isEmpty() ? QFileInfo(path).fileName() : name;
}

Error storageError(const QString &path, const QString &reason)
{
    return CalendarError::make(CalendarError::Storage,
                               QStringLiteral("Cannot change the calendar %1: %2").arg(path, reason));
}

OptionalError writeProperty(const QString &folder, const QString &name, const QString &contents)
{
    if (contentsOf(folder, name) == contents)
        return std::nullopt;
    if (auto error = writeFileAtomically(folder + u'/' + name, contents.toUtf8()))
        return storageError(folder, error->message);
    return std::nullopt;
}

QString folderNameFor(const QString &title)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9][A-Za-z0-9_-]{0,60}$"));
    return plain.match(title).hasMatch() ? title : QUuid::createUuid().toString(QUuid::WithoutBraces);
}

OptionalError writeProperties(const QString &path, const EKCalendar &calendar)
{
    const QString title = calendar.title.simplified();
    if (titleOf(path) != title)
        if (auto error = writeProperty(path, nameFile, title))
            return error;
    return calendar.color ? writeProperty(path, colorFile, textOfColor(*calendar.color)) : std::nullopt;
}

template <typename T, typename Key>
void sortBy(std::vector<T> &values, Key key)
{
    std::stable_sort(values.begin(), values.end(),
                     [&](const T &one, const T &other) { return key(one) < key(other); });
}

} // namespace

FolderTree::FolderTree(const QString &rootFolder)
    : root(rootFolder)
{}

EKSource FolderTree::sourceOf(const QString &folder) const
{
    const QString path = root + u'/' + folder;
    const QString type = contentsOf(path, QStringLiteral("type")).toLower();
    const EKSourceType sourceType = type == QStringLiteral("caldav")     ? EKSourceType::CalDAV
                                    : type == QStringLiteral("exchange") ? EKSourceType::Exchange
                                                                         : EKSourceType::Local;
    const bool isUnnamedLocal = folder == localFolder && contentsOf(path, nameFile).isEmpty();
    return {isUnnamedLocal ? QStringLiteral("Local") : titleOf(path), sourceType, folder};
}

Result<std::vector<EKSource>> FolderTree::sources() const
{
    const auto folders = foldersIn(root);
    if (!folders)
        return folders.error();
    std::vector<EKSource> found;
    for (const QString &folder : folders.value())
        found.push_back(sourceOf(folder));
    const bool hasLocal = std::any_of(found.begin(), found.end(), [](const EKSource &source) {
        return source.sourceType == EKSourceType::Local;
    });
    if (!hasLocal)
        found.push_back(sourceOf(localFolder));
    sortBy(found, [](const EKSource &source) { return std::pair(source.title, source.sourceIdentifier); });
    return found;
}

EKCalendar FolderTree::calendarOf(const EKSource &source, const QString &folder) const
{
    const QString identifier = source.sourceIdentifier + u'/' + folder;
    const QString path = pathOf(identifier);
    EKCalendar calendar;
    calendar.title = titleOf(path);
    calendar.calendarIdentifier = identifier;
    calendar.allowsContentModifications = isWritablePath(path);
    calendar.isImmutable = !isWritablePath(pathOf(source.sourceIdentifier));
    calendar.source = source;
    calendar.color = colorFromText(contentsOf(path, colorFile));
    calendar.type = source.sourceType == EKSourceType::CalDAV     ? EKCalendarType::CalDAV
                    : source.sourceType == EKSourceType::Exchange ? EKCalendarType::Exchange
                                                                  : EKCalendarType::Local;
    return calendar;
}

Result<std::vector<EKCalendar>> FolderTree::calendars() const
{
    const auto present = sources();
    if (!present)
        return present.error();
    std::vector<EKCalendar> found;
    for (const EKSource &source : present.value()) {
        const auto folders = foldersIn(pathOf(source.sourceIdentifier));
        if (!folders)
            return folders.error();
        std::vector<EKCalendar> ofSource;
        for (const QString &folder : folders.value())
            ofSource.push_back(calendarOf(source, folder));
        sortBy(ofSource, [](const EKCalendar &calendar) { return calendar.title; });
        found.insert(found.end(), ofSource.begin(), ofSource.end());
    }
    return found;
}

Result<EKCalendar> FolderTree::create(const EKCalendar &calendar) const
{
    const auto present = sources();
    if (!present)
        return present.error();
    const auto source =
        std::find_if(present.value().begin(), present.value().end(), [&](const EKSource &one) {
            return one.sourceIdentifier == calendar.source.sourceIdentifier;
        });
    if (source == present.value().end())
        return CalendarError::make(
            CalendarError::NotFound,
            QStringLiteral("Cannot make the calendar \"%1\": its account has gone.").arg(calendar.title));
    const QString sourcePath = pathOf(source->sourceIdentifier);
    QString folder = folderNameFor(calendar.title);
    if (QFileInfo::exists(sourcePath + u'/' + folder))
        folder = QUuid::createUuid().toString(QUuid::WithoutBraces);
    const QString path = sourcePath + u'/' + folder;
    if (!PrivateFiles::makeFolder(path))
        return storageError(path, QStringLiteral("the folder cannot be made"));
    if (auto error = writeProperties(path, calendar))
        return *error;
    return calendarOf(*source, folder);
}

OptionalError FolderTree::update(const EKCalendar &calendar) const
{
    const QString path = pathOf(calendar.calendarIdentifier);
    return writeProperties(path, calendar);
}

OptionalError FolderTree::remove(const QString &identifier) const
{
    const QString path = pathOf(identifier);
    const QFileInfo info(path);
    if (info.isSymLink())
        return QFile::remove(path) ? std::nullopt
                                   : OptionalError(storageError(path, QStringLiteral("the link stays")));
    if (!info.exists())
        return std::nullopt;
    // First out of sight at once, then file by file.
    const QString hidden =
        info.path() + QStringLiteral("/.removed-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
    if (!QDir().rename(path, hidden))
        return storageError(path, QStringLiteral("the folder cannot be removed"));
    QDir(hidden).removeRecursively();
    return std::nullopt;
}

QStringList FolderTree::folders() const
{
    QStringList found = {root};
    for (const QString &source : readableFoldersIn(root)) {
        found.append(pathOf(source));
        for (const QString &calendar : readableFoldersIn(pathOf(source)))
            found.append(pathOf(source) + u'/' + calendar);
    }
    return found;
}

QHash<QString, QByteArray> FolderTree::stampsOf(const QStringList &watchedFolders) const
{
    QHash<QString, QByteArray> found;
    for (const QString &folder : watchedFolders) {
        found.insert(folder, {});
        for (const QString &name : QDir(folder).entryList(QDir::Files)) {
            const QString path = folder + u'/' + name;
            if (const auto stamp = FileStamp::of(path))
                found.insert(path, stamp->text());
        }
    }
    return found;
}

bool FolderTree::has(const QString &identifier) const
{
    const QStringList parts = identifier.split(u'/');
    const bool isHidden = std::any_of(parts.begin(), parts.end(), [](const QString &part) {
        return part.isEmpty() || part.startsWith(u'.');
    });
    return parts.size() == 2 && !isHidden && QFileInfo(pathOf(identifier)).isDir();
}

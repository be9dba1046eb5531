#include "eventkit/FolderBackend.h"

#include "eventkit/CalendarError.h"
#include "eventkit/FolderWatcher.h"

#include <QDir>

FolderBackend::FolderBackend(const QString &rootFolder)
    : tree(QDir::cleanPath(rootFolder))
{}

FolderBackend::~FolderBackend() = default;

static Error hasGone(const QString &calendarIdentifier)
{
    return CalendarError::make(CalendarError::NotFound,
                               QStringLiteral("The calendar %1 has gone.").arg(calendarIdentifier));
}

FolderCalendar &FolderBackend::folder(const QString &calendarIdentifier)
{
    return folders.try_emplace(calendarIdentifier, tree.pathOf(calendarIdentifier)).first->second;
}

void FolderBackend::forgive(const QString &path)
{
    if (watcher)
        watcher->forgive(path);
}

Result<std::vector<EKSource>> FolderBackend::sources()
{
    return tree.sources();
}

Result<std::vector<EKCalendar>> FolderBackend::calendars()
{
    return tree.calendars();
}

std::optional<QString> FolderBackend::defaultCalendar(EKEntityType entityType)
{
    const auto calendars = tree.calendars();
    if (!calendars)
        return std::nullopt;
    for (const EKCalendar &calendar : calendars.value())
        if (calendar.allowsContentModifications && calendar.allowedEntityTypes.contains(entityType))
            return calendar.calendarIdentifier;
    return std::nullopt;
}

Result<std::vector<CalendarObject>> FolderBackend::objects(const QString &calendarIdentifier)
{
    if (tree.has(calendarIdentifier))
        return folder(calendarIdentifier).objects();
    folders.erase(calendarIdentifier);
    return hasGone(calendarIdentifier);
}

Result<std::optional<CalendarObject>> FolderBackend::object(const QString &calendarIdentifier,
                                                            const QString &name)
{
    if (tree.has(calendarIdentifier))
        return folder(calendarIdentifier).object(name);
    return hasGone(calendarIdentifier);
}

QByteArray FolderBackend::stampOfNames(const QString &calendarIdentifier)
{
    const auto stamp = FileStamp::of(tree.pathOf(calendarIdentifier));
    return stamp && stamp->isSettled() ? stamp->text() : QByteArray();
}

Result<CalendarObject> FolderBackend::put(const QString &calendarIdentifier, const CalendarObject &object,
                                          const QString &uid)
{
    if (!tree.has(calendarIdentifier))
        return hasGone(calendarIdentifier);
    auto written = folder(calendarIdentifier).put(object, uid);
    if (written)
        forgive(folder(calendarIdentifier).pathOf(written->name));
    return written;
}

OptionalError FolderBackend::remove(const QString &calendarIdentifier, const QString &name,
                                    const QByteArray &etag)
{
    if (!tree.has(calendarIdentifier))
        return std::nullopt;
    auto error = folder(calendarIdentifier).remove(name, etag);
    if (!error)
        forgive(folder(calendarIdentifier).pathOf(name));
    return error;
}

Result<EKCalendar> FolderBackend::createCalendar(const EKCalendar &calendar)
{
    auto made = tree.create(calendar);
    if (made)
        forgive(tree.pathOf(made->calendarIdentifier));
    return made;
}

OptionalError FolderBackend::updateCalendar(const EKCalendar &calendar)
{
    if (!tree.has(calendar.calendarIdentifier))
        return hasGone(calendar.calendarIdentifier);
    auto error = tree.update(calendar);
    forgive(tree.pathOf(calendar.calendarIdentifier));
    return error;
}

OptionalError FolderBackend::removeCalendar(const QString &calendarIdentifier)
{
    if (!tree.has(calendarIdentifier))
        return std::nullopt;
    auto error = tree.remove(calendarIdentifier);
    folders.erase(calendarIdentifier);
    forgive(tree.pathOf(calendarIdentifier));
    return error;
}

void FolderBackend::refresh()
{
    if (watcher)
        watcher->check();
}

void FolderBackend::setChangedCallback(std::function<void()> callback)
{
    watcher.reset();
    if (callback)
        watcher = std::make_unique<FolderWatcher>(tree, std::move(callback));
}

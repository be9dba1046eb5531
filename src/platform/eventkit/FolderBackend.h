#pragma once

#include "eventkit/CalendarBackend.h"
#include "eventkit/FolderCalendar.h"
#include "eventkit/FolderTree.h"

#include <map>
#include <memory>

class FolderWatcher;

/// Calendars as a tree of files, "<root>/<source>/<calendar>/<name>.ics", one object a file, in the layout
/// "vdir" that other calendar programs read and write too. No daemon is needed.
class FolderBackend : public CalendarBackend
{
public:
    /// The root is made when something is first written.
    explicit FolderBackend(const QString &rootFolder);
    ~FolderBackend() override;

    Result<std::vector<EKSource>> sources() override;
    Result<std::vector<EKCalendar>> calendars() override;
    std::optional<QString> defaultCalendar(EKEntityType entityType) override;
    Result<std::vector<CalendarObject>> objects(const QString &calendarIdentifier) override;
    Result<std::optional<CalendarObject>> object(const QString &calendarIdentifier,
                                                 const QString &name) override;
    QByteArray stampOfNames(const QString &calendarIdentifier) override;
    Result<CalendarObject> put(const QString &calendarIdentifier, const CalendarObject &object,
                               const QString &uid) override;
    OptionalError remove(const QString &calendarIdentifier, const QString &name,
                         const QByteArray &etag) override;
    Result<EKCalendar> createCalendar(const EKCalendar &calendar) override;
    OptionalError updateCalendar(const EKCalendar &calendar) override;
    OptionalError removeCalendar(const QString &calendarIdentifier) override;
    void refresh() override;
    void setChangedCallback(std::function<void()> callback) override;

private:
    FolderCalendar &folder(const QString &calendarIdentifier);
    void forgive(const QString &path);

    FolderTree tree;
    std::map<QString, FolderCalendar> folders;
    std::unique_ptr<FolderWatcher> watcher;
};

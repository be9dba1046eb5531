#pragma once

#include "eventkit/CalendarBackend.h"
#include "eventkit/FileStamp.h"

#include <QHash>

/// The objects of one calendar as files "<name>.ics" of a folder. What was read is kept; a file that did not
/// change costs no more than the question for its stamp.
class FolderCalendar
{
public:
    explicit FolderCalendar(const QString &folder);

    /// Hidden files are left out; those that cannot be read are reported once.
    Result<std::vector<CalendarObject>> objects();
    std::optional<CalendarObject> object(const QString &name);
    Result<CalendarObject> put(const CalendarObject &object, const QString &uid);
    OptionalError remove(const QString &name, const QByteArray &etag);

    QString pathOf(const QString &name) const;

private:
    struct Known
    {
        FileStamp stamp;
        bool isSettled = false;
        CalendarObject object;
    };

    const Known *look(const QString &name);
    Known read(const QString &name, const FileStamp &stamp) const;
    OptionalError checkUnchanged(const QString &name, const QByteArray &etag);
    QString freeNameFor(const QString &uid) const;

    QString path;
    QHash<QString, Known> known;
};

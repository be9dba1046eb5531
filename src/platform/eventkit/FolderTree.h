#pragma once

#include "eventkit/EKCalendar.h"
#include "foundation/Error.h"

#include <QByteArray>
#include <QHash>

#include <vector>

/// The folders of a tree "<root>/<source>/<calendar>" and the small files that describe them: "displayname"
/// and "color" of a calendar, "displayname" and "type" ("local", "caldav" or "exchange") of a source. Hidden
/// folders are not looked at. The identifier of a calendar is "<source>/<calendar>".
class FolderTree
{
public:
    explicit FolderTree(const QString &rootFolder);

    const QString &rootPath() const { return root; }
    QString pathOf(const QString &identifier) const { return root + u'/' + identifier; }

    /// By title. There is always a local one: where no folder is, it is made with its first calendar.
    Result<std::vector<EKSource>> sources() const;
    /// Whether there is a calendar of that identifier.
    bool has(const QString &identifier) const;
    /// By source and title.
    Result<std::vector<EKCalendar>> calendars() const;

    Result<EKCalendar> create(const EKCalendar &calendar) const;
    OptionalError update(const EKCalendar &calendar) const;
    /// A calendar that is a symbolic link loses the link only.
    OptionalError remove(const QString &identifier) const;

    /// The folders to be watched: root, sources, calendars.
    QStringList folders() const;
    /// The stamps of the files in these folders by path, and an empty text for each folder.
    QHash<QString, QByteArray> stampsOf(const QStringList &watchedFolders) const;

private:
    EKSource sourceOf(const QString &folder) const;
    EKCalendar calendarOf(const EKSource &source, const QString &folder) const;

    QString root;
};

#pragma once

#include "calendarsync/CalendarEvent.h"
#include "eventkit/FolderBackend.h"
#include "foundation/UserDefaults.h"
#include "store/state/SettingsKeys.h"
#include "workspace/PlatformConfiguration.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// While it lives, the program may use calendars. All that there are at first are chosen.
class CalendarAccess
{
public:
    explicit CalendarAccess(const QStringList &titles = {})
    {
        for (const QString &title : titles)
            QDir().mkpath(folder.filePath(QStringLiteral("Local/") + title));
        EKEventStore::setSharedBackend(std::make_shared<FolderBackend>(folder.path()));
        allow(3);
        UserDefaults::standard().removeObject(settings::isAccessToCalendar);
        UserDefaults::standard().setObject(settings::savedChooseCalendars, titles.join(QStringLiteral("Ω")));
    }
    ~CalendarAccess()
    {
        allow(2);
        for (const QString &key : {settings::savedChooseCalendars, settings::defaultCalendar})
            UserDefaults::standard().removeObject(key);
        EKEventStore::setSharedBackend(nullptr);
        CalendarEvent::resetEventStore();
    }
    /// Files of a calendar that nobody can read.
    void writeBroken(const QString &calendar, int count) const
    {
        for (int number = 0; number < count; ++number) {
            QFile file(folder.filePath(QStringLiteral("Local/%1/broken%2.ics").arg(calendar).arg(number)));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write("BEGIN:VCAL");
        }
    }
    /// Another program writes an event of an hour into a calendar.
    /// \param start as it stands in its file.
    /// \param more lines, each with its end.
    void writeEvent(const QString &calendar, const QString &title, const QString &start,
                    const QString &more = {}) const
    {
        QFile file(folder.filePath(QStringLiteral("Local/%1/%2.ics").arg(calendar, title)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QStringLiteral(
                       "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//other//EN\r\nBEGIN:VEVENT\r\nUID:%1\r\n"
                       "DTSTAMP:20260101T000000Z\r\nSUMMARY:%1\r\nDTSTART:%2\r\nDURATION:PT1H\r\n%3"
                       "END:VEVENT\r\nEND:VCALENDAR\r\n")
                       .arg(title, start, more)
                       .toUtf8());
    }

    CalendarAccess(const CalendarAccess &) = delete;
    CalendarAccess &operator=(const CalendarAccess &) = delete;

private:
    static void allow(int status)
    {
        PlatformConfiguration::setAuthorization(QStringLiteral("events"), status);
        CalendarEvent::resetEventStore();
    }

    QTemporaryDir folder;
};

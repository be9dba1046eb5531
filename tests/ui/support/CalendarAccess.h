#pragma once

#include "calendarsync/CalendarEvent.h"
#include "eventkit/FolderBackend.h"
#include "foundation/UserDefaults.h"
#include "store/state/SettingsKeys.h"
#include "workspace/PlatformConfiguration.h"

#include <QDir>
#include <QTemporaryDir>

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

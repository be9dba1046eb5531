#include "CalendarBackends.h"

#include "cloud/FileManager.h"
#include "eventkit/CalendarBackend.h"
#include "eventkit/DesktopCalendars.h"
#include "eventkit/EKEventStore.h"
#include "eventkit/FolderBackend.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "shell/ApplicationLife.h"
#include "widgets/WaitSign.h"
#include "workspace/PlatformConfiguration.h"

#include <QCoreApplication>

static const QString eds = QStringLiteral("eds");
static const QString folder = QStringLiteral("folder");

static bool isAllowedByUser(EKEntityType entityType)
{
    const QString message = entityType == EKEntityType::Event
                                ? QStringLiteral("Morvane would like to use your calendars.")
                                : QStringLiteral("Morvane would like to use your reminders.");
    return Alert::run({{},
                       localized(message),
                       localized(QStringLiteral("Tasks with dates are kept in step with those that you "
                                                "choose. You can change this later.")),
                       {localized(QStringLiteral("Allow")), localized(QStringLiteral("Don't Allow"))}}) ==
           Alert::firstButton;
}

/// What the configuration says, or what is found here; that is then written down, so that a daemon which is
/// late one morning does not show other calendars.
static QString chosenStore(DesktopCalendars &desktop)
{
    static const QString key = QStringLiteral("calendarStore");
    const QString configured = PlatformConfiguration().text(key);
    if (configured == eds || configured == folder)
        return configured;
    const QString found = desktop.isAvailable() ? eds : folder;
    PlatformConfiguration::setText(key, found);
    return found;
}

static std::shared_ptr<CalendarBackend> makeBackend()
{
    DesktopCalendars desktop(QCoreApplication::applicationDirPath() +
                             QStringLiteral("/" MORVANE_LIBRARIES "/morvane-eds"));
    if (chosenStore(desktop) == eds) {
        auto backend = desktop.backend();
        if (backend)
            backend->setWaitListener(WaitSign::showForCalendars);
        return backend;
    }
    return std::make_shared<FolderBackend>(FileManager::appFolderURL() + QStringLiteral("/Calendars"));
}

void connectCalendars()
{
    EKEventStore::setSharedBackendSource(makeBackend);
    EKEventStore::setAccessQuestion([](EKEntityType entityType, const std::function<void(bool)> &answer) {
        const bool isAllowed = isAllowedByUser(entityType);
        // A question that goes down with the program was not answered.
        if (ApplicationLife::isEnding())
            return;
        answer(isAllowed);
        if (isAllowed && entityType == EKEntityType::Event)
            ApplicationLife::shared()->calendarsWereAllowed();
    });
}

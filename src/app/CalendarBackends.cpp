#include "CalendarBackends.h"

#include "cloud/FileManager.h"
#include "eventkit/EKEventStore.h"
#include "eventkit/FolderBackend.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "workspace/PlatformConfiguration.h"

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

void connectCalendars()
{
    if (PlatformConfiguration().text(QStringLiteral("calendarStore")) != QStringLiteral("folder"))
        return;
    EKEventStore::setSharedBackend(
        std::make_shared<FolderBackend>(FileManager::appFolderURL() + QStringLiteral("/Calendars")));
    EKEventStore::setAccessQuestion([](EKEntityType entityType, const std::function<void(bool)> &answer) {
        answer(isAllowedByUser(entityType));
    });
}

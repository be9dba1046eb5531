#include "ContactBackends.h"

#include "contacts/CNContactStore.h"
#include "contacts/DesktopContacts.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "shell/ApplicationLife.h"

#include <QCoreApplication>

static bool isAllowedByUser()
{
    return Alert::run(
               {{},
                localized(QStringLiteral("Morvane would like to use your contacts.")),
                localized(QStringLiteral("Those that you choose are copied. You can change this later.")),
                {localized(QStringLiteral("Allow")), localized(QStringLiteral("Don't Allow"))}}) ==
           Alert::firstButton;
}

void connectContacts()
{
    CNContactStore::setBackendSource([] {
        return DesktopContacts::backend(QCoreApplication::applicationDirPath() +
                                        QStringLiteral("/" MORVANE_LIBRARIES "/morvane-eds-contacts"));
    });
    CNContactStore::setAccessQuestion([](const std::function<void(bool)> &answer) {
        const bool isAllowed = isAllowedByUser();
        // A question that goes down with the program was not answered.
        if (!ApplicationLife::isEnding())
            answer(isAllowed);
    });
}

#include "contacts/CNContactStore.h"

#include "workspace/PlatformConfiguration.h"

int CNContactStore::authorizationStatus()
{
    return PlatformConfiguration().authorization(QStringLiteral("contacts"));
}

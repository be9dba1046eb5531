#include "contacts/DesktopContacts.h"

#include "contacts/ContactBackend.h"
#include "contacts/DesktopContactsLibrary.h"
#include "foundation/Log.h"

#include <QLibrary>

std::shared_ptr<ContactBackend> DesktopContacts::backend(const QString &libraryPath)
{
    QLibrary library(libraryPath);
    // What it uses does not bear being unloaded.
    library.setLoadHints(QLibrary::PreventUnloadHint);
    const auto make = reinterpret_cast<decltype(morvaneMakeDesktopContacts) *>(
        library.resolve("morvaneMakeDesktopContacts"));
    if (!make) {
        Log::line(
            QStringLiteral("The desktop's address books cannot be used: %1").arg(library.errorString()));
        return nullptr;
    }
    return std::shared_ptr<ContactBackend>(make());
}

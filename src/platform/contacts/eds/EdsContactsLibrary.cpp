#include "contacts/DesktopContactsLibrary.h"
#include "contacts/eds/EdsContacts.h"

Q_DECL_EXPORT ContactBackend *morvaneMakeDesktopContacts()
{
    return new EdsContacts;
}

#include "eventkit/DesktopLibrary.h"
#include "eventkit/eds/EdsBackend.h"

Q_DECL_EXPORT bool morvaneDesktopCalendarsAnswer()
{
    return EdsBackend::isAvailable();
}

Q_DECL_EXPORT CalendarBackend *morvaneMakeDesktopCalendars()
{
    return new EdsBackend;
}

#include "eventkit/EmptyBackend.h"

#include "eventkit/CalendarError.h"

Error EmptyBackend::nothing()
{
    return CalendarError::make(CalendarError::NotFound, QStringLiteral("There are no calendars."));
}

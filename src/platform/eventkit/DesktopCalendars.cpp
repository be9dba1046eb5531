#include "eventkit/DesktopCalendars.h"

#include "eventkit/CalendarBackend.h"
#include "eventkit/DesktopLibrary.h"
#include "foundation/Log.h"

template <typename Function>
static Function *resolve(QLibrary &library, const char *name)
{
    return reinterpret_cast<Function *>(library.resolve(name));
}

/// The library stays loaded: what it uses does not bear being unloaded.
DesktopCalendars::DesktopCalendars(const QString &libraryPath)
    : library(libraryPath)
{
    library.setLoadHints(QLibrary::PreventUnloadHint);
}

bool DesktopCalendars::isAvailable()
{
    const auto answers =
        resolve<decltype(morvaneDesktopCalendarsAnswer)>(library, "morvaneDesktopCalendarsAnswer");
    return answers && answers();
}

std::shared_ptr<CalendarBackend> DesktopCalendars::backend()
{
    const auto make = resolve<decltype(morvaneMakeDesktopCalendars)>(library, "morvaneMakeDesktopCalendars");
    if (!make) {
        Log::line(QStringLiteral("The desktop's calendars cannot be used: %1").arg(library.errorString()));
        return nullptr;
    }
    return std::shared_ptr<CalendarBackend>(make());
}

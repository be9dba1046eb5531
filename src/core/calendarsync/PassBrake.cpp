#include "calendarsync/PassBrake.h"

#include "calendarsync/CalendarStoreState.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/UserDefaults.h"
#include "store/state/SettingsKeys.h"

namespace passbrake {

namespace {

constexpr size_t alwaysAllowed = 25;

bool isAnswered(size_t count)
{
    auto &answer = calendarstore::state().mayRemoveMany;
    if (!answer) {
        const QString message =
            localized(QStringLiteral("%1 tasks are no longer found in your calendars.")).arg(count);
        const QString information =
            localized(QStringLiteral("If a calendar is only missing at the moment, keep them. If you removed "
                                     "their events, remove them too."));
        answer = Alert::run({{},
                             message,
                             information,
                             {localized(QStringLiteral("Remove them")),
                              localized(QStringLiteral("Keep them"))}}) == Alert::firstButton;
    }
    return *answer;
}

} // namespace

bool mayDelete(const std::vector<TaskPtr> &rows, size_t linkedCount, size_t eventCount)
{
    UserDefaults &defaults = UserDefaults::standard();
    const bool hadEvents = defaults.integer(settings::eventsAtLastPass) > 0;
    const bool isSuddenlyEmpty = eventCount == 0 && hadEvents;
    if (!isSuddenlyEmpty)
        defaults.setObject(settings::eventsAtLastPass, static_cast<int>(eventCount));
    const bool isMuch = rows.size() > alwaysAllowed && rows.size() * 3 > linkedCount;
    if (rows.empty() || (!isMuch && !isSuddenlyEmpty))
        return true;
    Log::line(QStringLiteral("The pass would remove %1 tasks, which is much; nothing is removed unasked.")
                  .arg(rows.size()));
    if (!isAnswered(rows.size()))
        return false;
    defaults.setObject(settings::eventsAtLastPass, static_cast<int>(eventCount));
    return true;
}

} // namespace passbrake

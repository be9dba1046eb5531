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

bool isMuch(size_t rowCount, size_t linkedCount)
{
    return rowCount > alwaysAllowed && rowCount * 3 > linkedCount;
}

/// What the user says, now or before. Who is just being asked has not said anything yet.
bool mayRemove(size_t rowCount)
{
    auto &answer = calendarstore::state().mayRemoveMany;
    Log::line(QStringLiteral("The pass would remove %1 tasks, which is much; nothing is removed unasked.")
                  .arg(rowCount));
    if (answer)
        return *answer;
    answer = false;
    const QString message =
        localized(QStringLiteral("%1 tasks are no longer found in your calendars.")).arg(rowCount);
    const QString information =
        localized(QStringLiteral("If a calendar is only missing at the moment, keep them. If you removed "
                                 "their events, remove them too."));
    const int button =
        Alert::run({{},
                    message,
                    information,
                    {localized(QStringLiteral("Remove them")), localized(QStringLiteral("Keep them"))}});
    if (button != Alert::firstButton)
        return false;
    calendarstore::state().mayRemoveMany.reset();
    return true;
}

} // namespace

bool mayDelete(size_t rowCount, size_t linkedCount, size_t eventCount)
{
    UserDefaults &defaults = UserDefaults::standard();
    const bool hadEvents = defaults.integer(settings::eventsAtLastPass) > 0;
    const bool isSuddenlyEmpty = eventCount == 0 && hadEvents;
    const auto keepCount = [&] {
        defaults.setObject(settings::eventsAtLastPass, static_cast<int>(eventCount));
    };
    if (!isSuddenlyEmpty)
        keepCount();
    if (rowCount > 0 && (isSuddenlyEmpty || isMuch(rowCount, linkedCount))) {
        if (!mayRemove(rowCount))
            return false;
        keepCount();
        return true;
    }
    if (!isSuddenlyEmpty)
        calendarstore::state().mayRemoveMany.reset();
    return true;
}

bool mayDeleteRowsOfCalendar(size_t rowCount, size_t linkedCount)
{
    return !isMuch(rowCount, linkedCount) || mayRemove(rowCount);
}

} // namespace passbrake

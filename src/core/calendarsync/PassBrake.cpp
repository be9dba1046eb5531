#include "calendarsync/PassBrake.h"

#include "calendarsync/CalendarStoreState.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/UserDefaults.h"
#include "store/state/SettingsKeys.h"

#include <QVariantMap>

#include <algorithm>

namespace passbrake {

namespace {

constexpr size_t alwaysAllowed = 25;
/// A calendar of so few events may be emptied by hand.
constexpr int fewEvents = 5;

bool isMuch(size_t rowCount, size_t linkedCount)
{
    return rowCount > alwaysAllowed && rowCount * 3 > linkedCount;
}

/// What the user says, now or before. Who is just being asked has not said anything yet.
bool mayRemove(size_t rowCount, std::optional<bool> &answer)
{
    Log::line(QStringLiteral("The pass would remove %1 tasks, which is much; nothing is removed unasked.")
                  .arg(rowCount));
    if (answer)
        return *answer;
    answer = false;
    const QString message =
        rowCount == 1
            ? localized(QStringLiteral("One task is no longer found in your calendars."))
            : localized(QStringLiteral("%1 tasks are no longer found in your calendars.")).arg(rowCount);
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
    answer.reset();
    return true;
}

/// Whether a calendar that held more than a few events holds none any more. One that is not followed any
/// longer is not among those that are asked about.
bool isOneSuddenlyEmpty(const EventCounts &events)
{
    const QVariantMap former = UserDefaults::standard().object(settings::eventsAtLastPass).toMap();
    return std::any_of(events.keyValueBegin(), events.keyValueEnd(), [&former](const auto &one) {
        return one.second == 0 && former.value(one.first).toInt() > fewEvents;
    });
}

void keep(const EventCounts &events)
{
    QVariantMap counts;
    for (auto one = events.cbegin(); one != events.cend(); ++one)
        counts.insert(one.key(), one.value());
    UserDefaults::standard().setObject(settings::eventsAtLastPass, counts);
}

} // namespace

bool mayDelete(size_t rowCount, size_t linkedCount, const EventCounts &events)
{
    const bool isSuddenlyEmpty = isOneSuddenlyEmpty(events);
    if (rowCount > 0 && (isSuddenlyEmpty || isMuch(rowCount, linkedCount))) {
        if (!isSuddenlyEmpty)
            keep(events);
        if (!mayRemove(rowCount, calendarstore::state().mayRemoveMany))
            return false;
    } else if (!isSuddenlyEmpty) {
        calendarstore::state().mayRemoveMany.reset();
    }
    keep(events);
    return true;
}

bool mayDeleteRowsOfCalendar(size_t rowCount, size_t linkedCount)
{
    return (rowCount <= static_cast<size_t>(fewEvents) && !isMuch(rowCount, linkedCount)) ||
           mayRemove(rowCount, calendarstore::state().mayRemoveRowsOfCalendars);
}

void noCalendarIsMissing()
{
    calendarstore::state().mayRemoveRowsOfCalendars.reset();
}

} // namespace passbrake

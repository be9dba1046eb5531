#include "calendarsync/PassBrake.h"

#include "calendarsync/CalendarStoreState.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/UserDefaults.h"
#include "store/state/SettingsKeys.h"

#include <QScopedValueRollback>
#include <QVariantMap>

#include <numeric>

namespace passbrake {

namespace {

constexpr size_t alwaysAllowed = 25;
/// A calendar of so few events may be emptied by hand.
constexpr int fewEvents = 5;

bool isMuch(size_t rowCount, size_t linkedCount)
{
    return rowCount > alwaysAllowed && rowCount * 3 > linkedCount;
}

/// Whether the user lets rows go; absent while another such question stands.
std::optional<bool> mayRemove(int rowCount)
{
    bool &isAsking = calendarstore::state().isAskingAboutRows;
    if (isAsking)
        return std::nullopt;
    const QScopedValueRollback guard(isAsking, true);
    Log::line(QStringLiteral("The pass would remove %1 tasks, which is much; nothing is removed unasked.")
                  .arg(rowCount));
    const QString message =
        localizedCount(QStringLiteral("%1 tasks are no longer found in your calendars."), rowCount);
    const QString information =
        localized(QStringLiteral("If a calendar is only missing at the moment, keep them. If you removed "
                                 "their events, remove them too."));
    return Alert::run({{},
                       message,
                       information,
                       {localized(QStringLiteral("Remove them")), localized(QStringLiteral("Keep them"))}}) ==
           Alert::firstButton;
}

/// Calendars as a setting keeps them, each with a number.
Counts countsIn(const QString &setting)
{
    Counts counts;
    const QVariantMap kept = UserDefaults::standard().object(setting).toMap();
    for (auto one = kept.cbegin(); one != kept.cend(); ++one)
        counts.insert(one.key(), one.value().toInt());
    return counts;
}

void keep(const QString &setting, const Counts &counts)
{
    QVariantMap kept;
    for (auto one = counts.cbegin(); one != counts.cend(); ++one)
        kept.insert(one.key(), one.value());
    UserDefaults::standard().setObject(setting, kept);
}

/// What an answer to keep the rows says of the calendar, besides the number of its events.
constexpr int isMissing = -1;

int sum(const Counts &counts)
{
    return std::accumulate(counts.begin(), counts.end(), 0);
}

/// The rows that the user is asked about, by calendar.
Counts doubtful(const Counts &going, size_t linkedCount, const Counts &events, const QSet<QString> &returned)
{
    if (isMuch(static_cast<size_t>(sum(going)), linkedCount))
        return going;
    const Counts former = countsIn(settings::eventsAtLastPass);
    Counts some;
    for (auto one = going.cbegin(); one != going.cend(); ++one) {
        const bool isSuddenlyEmpty =
            events.value(one.key(), isMissing) == 0 && former.value(one.key()) > fewEvents;
        if (isSuddenlyEmpty || returned.contains(one.key()))
            some.insert(one.key(), one.value());
    }
    return some;
}

} // namespace

QSet<QString> keptCalendars(const Counts &going, size_t linkedCount, const Counts &events)
{
    Counts answered = countsIn(settings::calendarsWithKeptRows);
    QSet<QString> returned;
    Counts undecided = going;
    for (const QString &identifier : answered.keys()) {
        const bool isRead = events.contains(identifier) || identifier.isEmpty();
        if (!isRead)
            continue;
        if (events.value(identifier) > answered.value(identifier))
            returned.insert(identifier);
        else
            undecided.remove(identifier);
        if (returned.contains(identifier) || !going.contains(identifier))
            answered.remove(identifier);
    }
    const Counts asked = doubtful(undecided, linkedCount, events, returned);
    const auto mayGo = asked.isEmpty() ? true : mayRemove(sum(asked));
    QStringList kept = answered.keys();
    if (mayGo != true)
        kept += asked.keys();
    if (mayGo) {
        for (const QString &identifier : kept)
            answered.insert(identifier, answered.value(identifier, events.value(identifier)));
        keep(settings::calendarsWithKeptRows, answered);
        keep(settings::eventsAtLastPass, events);
    }
    return {kept.begin(), kept.end()};
}

bool mayDeleteRowsOfCalendar(const QString &identifier, size_t rowCount, size_t linkedCount)
{
    Counts answered = countsIn(settings::calendarsWithKeptRows);
    if (answered.value(identifier) == isMissing)
        return false;
    if (rowCount <= static_cast<size_t>(fewEvents) && !isMuch(rowCount, linkedCount))
        return true;
    const auto mayGo = mayRemove(static_cast<int>(rowCount));
    answered.remove(identifier);
    if (mayGo == false)
        answered.insert(identifier, isMissing);
    if (mayGo)
        keep(settings::calendarsWithKeptRows, answered);
    return mayGo.value_or(false);
}

} // namespace passbrake

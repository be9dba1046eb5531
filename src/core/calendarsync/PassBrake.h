#pragma once

#include <QMap>
#include <QSet>
#include <QString>

#include <cstddef>

/// Keeps the organiser from taking away much because a calendar went missing. Beyond that the user decides.
/// Who keeps the rows of a calendar is asked again only when it has something again, also after a restart;
/// who removes them decides about these alone.
namespace passbrake {

/// How many events, or rows, calendars have, by the identifier of the calendar.
using Counts = QMap<QString, int>;

/// The calendars whose rows a pass may not take away. The user is asked about the rows of a calendar that
/// held more than five events at the last pass and holds nothing, and about all rows that are more than 25
/// and more than a third of all linked ones.
/// \param going counts the rows whose events have gone.
/// \param linkedCount is the number of all rows that have events.
/// \param events holds all calendars that were read.
QSet<QString> keptCalendars(const Counts &going, size_t linkedCount, const Counts &events);

/// Whether the rows of a calendar that has gone may go: more than five, or many, are asked about.
bool mayDeleteRowsOfCalendar(const QString &identifier, size_t rowCount, size_t linkedCount);

} // namespace passbrake

#pragma once

#include <QMap>
#include <QString>

#include <cstddef>

/// Keeps the organiser from taking away much because a calendar went missing. Beyond that the user decides:
/// who keeps the rows is not asked again until a pass finds nothing unusual or the program starts anew; who
/// removes them decides about these alone.
namespace passbrake {

/// How many events each calendar that was read holds, by its identifier.
using EventCounts = QMap<QString, int>;

/// Whether a pass may take away so many rows: unasked, unless they are more than 25 and more than a third of
/// all linked ones, or a calendar holds nothing that held more than five events at the last pass.
bool mayDelete(size_t rowCount, size_t linkedCount, const EventCounts &events);

/// The same for the rows of a calendar that has gone: more than five, or many, are asked about.
bool mayDeleteRowsOfCalendar(size_t rowCount, size_t linkedCount);
/// The next calendar that goes is asked about anew.
void noCalendarIsMissing();

} // namespace passbrake

#pragma once

#include "eventkit/CalendarBackend.h"
#include "store/entities/Entities.h"

#include <QByteArray>

#include <memory>

/// Events for the benchmarks, and how the program is led to them.
namespace BenchEvents {

/// The event of a number, between 30 days ago and 90 days ahead; one in ten of them is a series.
QByteArray eventText(int number);
/// The same as an object of a calendar.
QByteArray calendarText(int number);

/// Lets the program use the calendar "Bench" of the backend; null for no calendars any more.
void useCalendars(std::shared_ptr<CalendarBackend> backend);

/// Some task that an event without repetition is linked to. There must be one.
TaskPtr plainLinkedTask();
/// Gives the task another title and writes it to its event, as a save does.
void writeToEvent(EntityTask &task);

} // namespace BenchEvents

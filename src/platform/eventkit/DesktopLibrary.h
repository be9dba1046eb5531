#pragma once

class CalendarBackend;

/// What the library for the desktop's calendars offers. It is built together with the program that loads it.
extern "C" {

/// Whether the daemon answers; it is started if it does not run.
bool morvaneDesktopCalendarsAnswer();
/// A new backend, which the caller owns.
CalendarBackend *morvaneMakeDesktopCalendars();
}

#pragma once

/// Connects the program with the calendars that the configuration of this machine names (`calendarStore`),
/// and lets the user be asked before they are used. Without a name there are none.
void connectCalendars();

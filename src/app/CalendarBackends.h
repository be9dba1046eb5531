#pragma once

/// Connects the program with the calendars that the configuration of this machine names (`calendarStore`):
/// those of the desktop ("eds") or a folder ("folder"). At the first start it is the desktop's where its
/// daemon answers. Lets the user be asked before they are used.
void connectCalendars();

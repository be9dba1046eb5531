#pragma once

/// What of the desktop the program may use. An answer that was given once can be changed at any time.
namespace accesschoice {

enum class Kind { Calendars, Reminders, Contacts };

/// Whether the user has allowed it; false also where nobody has asked yet.
bool isAllowed(Kind kind);
/// Keeps the answer. Without access to the calendars all tasks stay as they are, and the program itself rings
/// their alerts; with it the next activation brings both sides in line.
void choose(Kind kind, bool isAllowed);

} // namespace accesschoice

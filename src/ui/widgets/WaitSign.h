#pragma once

#include <chrono>

/// A sentence over the window, with the pointer of a program that is busy, for a wait in which no event is
/// handled. It goes by itself when events are handled again.
///
/// It is drawn straight onto the picture of the window: no widget paints itself meanwhile, since a list would
/// read its rows from the very store that is waited for.
namespace WaitSign {

/// Called again and again while the main thread waits for another program that holds the store.
/// \param waited for how long it has; of less than a tenth of a second nothing is shown.
void showForStore(std::chrono::milliseconds waited);
/// The same for the calendars.
void showForCalendars(std::chrono::milliseconds waited);
/// Whether the sign stands.
bool isShown();

} // namespace WaitSign

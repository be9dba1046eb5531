#pragma once

#include <chrono>

/// A sentence over the window, with the pointer of a program that is busy, for a wait in which no event is
/// handled. It is drawn at once, and goes by itself when events are handled again.
namespace WaitSign {

/// Called again and again while the main thread waits for another program that holds the store.
/// \param waited for how long it has; shorter waits than a tenth of a second are not told of.
void show(std::chrono::milliseconds waited);

} // namespace WaitSign

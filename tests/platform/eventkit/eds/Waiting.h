#pragma once

#include <functional>

/// Lets the main loop run until something has become true, ten seconds at most. Whether it has.
bool waitUntil(const std::function<bool()> &isTrue);

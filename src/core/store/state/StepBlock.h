#pragma once

#include <functional>

/// Called after each step of work that may take long: false ends it there, and what is done stays done. An
/// empty one lets it run to its end.
using StepBlock = std::function<bool()>;

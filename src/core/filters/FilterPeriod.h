#pragma once

#include "foundation/Date.h"

#include <QVariant>

/// The dates in the criterion "Period" of a saved filter.
namespace filters {

/// When the program was started for the first time; absent if the defaults do not tell.
OptionalDate firstRun();

/// The date that a value stands for: a date, or a text such as "2026-12-30 12:30:00 +0000". Absent for what
/// is neither.
OptionalDate dateOfValue(const QVariant &value);

} // namespace filters

#pragma once

#include "foundation/Date.h"

#include <QVariant>

/// The dates in the criterion "Period" of a saved filter.
namespace filters {

/// When the program was started for the first time; absent if the defaults do not tell.
OptionalDate firstRun();

/// The date that a value stands for, by way of its text form: the pattern "YYYY-MM-dd HH:mm:ss ZZZ" (Unicode
/// Technical Standard 35) is written and read as it stands, with the year of the week, so that the days
/// around New Year may come out in another year. Absent for what is neither a date nor such a text.
OptionalDate dateThroughText(const QVariant &value);

/// The date that a picker shows for a value: a stored date as it is, a text as it reads.
OptionalDate dateOfValue(const QVariant &value);

} // namespace filters

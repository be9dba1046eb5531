#pragma once

#include "recurrence/RecurrencePickerLanguage.h"
#include "recurrence/RecurrenceRule.h"

#include <QString>

/// A rule as a sentence for the user: "Repeats every 2 weeks on Monday and Friday".
namespace RecurrenceSentence {

/// The sentence in a language. Only what the repeat window can set is told: interval, and the weekdays, days
/// of the month or months that belong to the frequency. Empty for a rule by hours or less.
QString of(const RecurrenceRule &rule, RecurrencePickerLanguage language);

} // namespace RecurrenceSentence

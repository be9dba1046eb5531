#pragma once

#include "foundation/Date.h"

#include <QString>

#include <array>

/// The days that tasks are put off to most, each one press away.
enum class QuickDay { Today, Tomorrow, Weekend, NextWeek, Someday };

namespace quickdays {

inline constexpr std::array all = {QuickDay::Today, QuickDay::Tomorrow, QuickDay::Weekend, QuickDay::NextWeek,
                                   QuickDay::Someday};

/// In the user's language.
QString title(QuickDay day);
/// The beginning of that day: of the coming Saturday for the weekend, or of the Sunday that is left of it,
/// and of the coming Monday for the next week. Absent for some day.
OptionalDate dayOf(QuickDay day, Date now);

} // namespace quickdays

#pragma once

#include "recurrence/RRule.h"

/// One rule that several hold by reference; it starts without any.
class Rule
{
public:
    std::optional<RecurrenceRule> recurrenceRule;
};

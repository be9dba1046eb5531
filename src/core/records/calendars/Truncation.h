#pragma once

#include <cmath>
#include <limits>

/// The whole part of a number, with the nearest number that the type holds for one beyond it and 0 for none.
template <typename Integer>
Integer truncated(double number)
{
    if (std::isnan(number))
        return 0;
    // The greatest number of a wide type is no double: the next one above it is, and lies outside.
    if (number >= static_cast<double>(std::numeric_limits<Integer>::max()))
        return std::numeric_limits<Integer>::max();
    if (number <= static_cast<double>(std::numeric_limits<Integer>::min()))
        return std::numeric_limits<Integer>::min();
    return static_cast<Integer>(number);
}

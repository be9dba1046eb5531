#pragma once

#include "store/state/StepBlock.h"

#include <cstddef>

/// How a screen learns how far a pass over the calendars is. Without a screen nobody asks.
namespace passprogress {

/// Gives what is called after each of so many steps and forgotten at the end of the pass. Nothing stops a
/// pass: the answers of the block do not count.
using Begin = std::function<StepBlock(std::size_t steps)>;

void setBegin(Begin begin);
/// A pass begins. The block may be empty.
StepBlock begin(std::size_t steps);

} // namespace passprogress

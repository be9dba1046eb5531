#pragma once

#include "eventkit/ItemChange.h"

#include <vector>

/// Changes that a calendar does not take, now or later: it may only be read, or finds something wrong with
/// them.
namespace refusedchanges {

/// Brings the rows back to what the calendars hold, and tells the user, as soon as no question stands and no
/// command is at work. A row whose event could not be made stays, without one. Each group holds changes that
/// belong together.
void settle(std::vector<std::vector<ItemChange>> refused);

} // namespace refusedchanges

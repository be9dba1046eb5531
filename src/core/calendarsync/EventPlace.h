#pragma once

#include "eventkit/EKEvent.h"
#include "store/entities/Entities.h"

/// How the place of an event and that of a row are compared.
namespace eventplace {

/// Where a row has a place: cut to six decimals, zero where the event does not tell.
GeoLocation positionOf(const EKStructuredLocation &place);

/// Whether a row of that place shows the event's; it need not be written then.
bool isShownBy(const EntityLocation &place, const EKEvent &event);

} // namespace eventplace

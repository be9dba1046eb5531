#pragma once

#include "eventkit/EKAlarm.h"
#include "eventkit/IcalComponent.h"

#include <vector>

/// The VALARM components of an event or reminder (RFC 5545, section 3.6.6). Those of the actions DISPLAY and
/// AUDIO with a trigger that can be read are alarms to us; all others are left alone.
class AlarmComponents
{
public:
    /// `lengthInSeconds` is that of the event, for alarms that count from its end.
    static std::vector<EKAlarm> read(const IcalComponent &component, double lengthInSeconds);
    /// Makes `read` answer these alarms. Components of alarms that stay are kept as they are.
    static void write(IcalComponent &component, const std::vector<EKAlarm> &alarms, double lengthInSeconds);
};

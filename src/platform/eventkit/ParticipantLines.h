#pragma once

#include "eventkit/EKParticipant.h"
#include "eventkit/IcalComponent.h"

#include <QStringList>

#include <optional>
#include <vector>

/// The people of an event. `ownAddresses` are those of the calendar's owner, without "mailto:".
std::optional<EKParticipant> organizerOf(const IcalComponent &component, const QStringList &ownAddresses);
std::vector<EKParticipant> attendeesOf(const IcalComponent &component, const QStringList &ownAddresses);

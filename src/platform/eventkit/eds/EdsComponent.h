#pragma once

#include "eventkit/eds/EdsGlib.h"

#include <QByteArrayList>

#include <optional>
#include <vector>

/// One component of an object as the daemon has it: an event or reminder, or an edited occurrence of one.
struct EdsComponent
{
    QByteArray uid;
    /// The value of RECURRENCE-ID as it is written; empty in the event itself.
    QByteArray recurrenceId;
    /// From BEGIN to END.
    QByteArray text;
    /// The names of the time zones that it speaks of.
    QByteArrayList zones;
    /// The same for components with the same properties, whatever their order. What the daemon keeps for its
    /// own use does not count.
    QByteArray fingerprint;

    static EdsComponent of(ICalComponent *component);
    /// Reads one component; what cannot be understood in it is left out. Absent if it is none.
    static std::optional<EdsComponent> fromText(const QByteArray &text);

    bool isDetached() const { return !recurrenceId.isEmpty(); }
    GlibObject<ICalComponent> component() const;
};

/// A UID's components, the event itself first and edited occurrences in order.
using EdsComponents = std::vector<EdsComponent>;

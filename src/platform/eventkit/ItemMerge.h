#pragma once

#include "eventkit/ItemChange.h"

#include <optional>

/// Brings a change to an object that somebody else may have changed meanwhile: field by field, so that only
/// what the change is about is written. Fields are the properties of a component by name (RFC 5545, section
/// 3.8), those of its times together, its alarms together; properties that stand several times are merged
/// line by line.
namespace itemmerge {

/// What the object is to be, given what it is; absent where it is not there, or goes. A text that cannot be
/// understood is answered as it is.
std::optional<QByteArray> merged(const std::optional<QByteArray> &present, const ItemChange &change);

/// Whether two texts of an object say the same, but for the notes about when and by what they were written.
bool isSame(const QByteArray &one, const QByteArray &other);

} // namespace itemmerge

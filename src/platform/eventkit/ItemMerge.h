#pragma once

#include "eventkit/ItemChange.h"

#include <optional>
#include <span>
#include <vector>

/// Brings a change to an object that somebody else may have changed meanwhile: field by field, so that only
/// what the change is about is written. Fields are the properties of a component by name (RFC 5545, section
/// 3.8), those of its times together, its alarms together; properties that stand several times are merged
/// line by line.
namespace itemmerge {

/// What the object is to be, given what it is; absent where it is not there, or goes. A text that cannot be
/// understood is answered as it is.
std::optional<QByteArray> merged(const std::optional<QByteArray> &present, const ItemChange &change);

/// The text of an object, absent where it is not there.
using ItemText = std::optional<QByteArray>;

/// The same of changes that belong together, each with what its object is at present. What moves to another
/// calendar takes the present text along. Of what is taken back either all is, or nothing: if somebody else
/// works on the later part of a divided series, or has another rule for it, both parts stay.
std::vector<ItemText> mergedTogether(const std::vector<ItemText> &present,
                                     std::span<const ItemChange> changes);

/// How many changes from the first on belong together: those of one group, each object once. At least one.
std::size_t countTogether(std::span<const ItemChange> changes);

/// Whether two texts of an object say the same, but for the notes about when and by what they were written.
bool isSame(const QByteArray &one, const QByteArray &other);

} // namespace itemmerge

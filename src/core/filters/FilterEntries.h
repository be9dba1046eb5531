#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

/// The shape of saved filters: an entry has "Enabled" and "Array", a list of criteria with "Key", "Value" and
/// "Enabled".
namespace filters {

/// Stands in a value for "no constraint".
inline const QString allMarker = QStringLiteral("±#");
/// Stands in a value for "only records that have none".
inline const QString noneMarker = QStringLiteral("#±");

/// An entry that constrains nothing, as each list starts with.
QVariantMap pristineTaskEntry();
QVariantMap pristineProjectEntry();
QVariantMap pristineContactEntry();

/// What the criterion "Active" of contacts asks for: with tasks or without. Absent for anything but a number.
std::optional<bool> activityOf(const QVariant &value);

/// What the defaults are seeded with where a key is missing.
QVariantMap seedOfTaskFilters();
QVariantMap seedOfTaskGrouped();

/// Stores the seeds of the four keys that are missing.
void seedDefaults();

} // namespace filters

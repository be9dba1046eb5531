#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

/// The shape of saved filters.
///
/// An entry has "Enabled" (0 or 1: whether the list applies it) and "Array", a list of criteria. A criterion
/// has "Key", "Value" and "Enabled" (0 or 1), and is found by its key, wherever it stands; one that is
/// missing or not enabled constrains nothing. The eleven keys of a task list, and their values:
///
/// - "Title": the text that titles begin with; the empty one constrains nothing.
/// - "Type", "Status", "Priority": the number of a `TaskType`, `TaskStatus` or `Priority`.
/// - "Category", "Location", "Project": the URI of an object, or the none marker. The URI of an object that
///   has gone constrains nothing.
/// - "Tags", "Delegate", "Company": a list of URIs, one of which a task must have; the empty list asks for
///   tasks without any. Objects that have gone are left out. A text constrains nothing.
/// - "Period": has "From" and "To" in place of "Value", each a date.
///
/// The all marker may stand for each of these values but the title: it constrains nothing, as "From" it is
/// the first run of the program and as "To" the present moment.
///
/// Of these keys the filter of projects has "Title", "Priority", "Category", "Status", "Period" and
/// "Delegate". That of contacts has "Active" (a number: 0 for those without tasks, else those with some),
/// "Companies" and "Categories" (lists of URIs as above).
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

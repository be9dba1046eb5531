#pragma once

#include "calendarsync/CalendarEvent.h"
#include "store/entities/Entities.h"
#include "store/queries/ContactRows.h"

#include <optional>
#include <vector>

/// What the pop-ups of a task's form offer.
namespace TaskFormChoices {

/// In the sample every task has a category; elsewhere null, for none, comes first.
std::vector<CategoryPtr> categories();
/// Those of all contacts, without loading anybody.
std::vector<ContactRows::Named> contactNames();
/// Null for 0, and for one who has gone meanwhile.
ContactPtr contactOfRow(RowId row);
/// What people are to the user, in the order of the words that are shown.
std::vector<std::shared_ptr<EntityContactCategory>> contactCategories();
QString shownTitle(const EntityContactCategory &category);
std::vector<CompanyPtr> companies();
/// Open projects, and the one that is chosen already in any state.
std::vector<ProjectPtr> projects(const ProjectPtr &chosen);
/// The calendars that a task can be written to, under the titles of their accounts.
std::vector<CalendarChooserRow> calendars();
/// Whether a calendar is among them; absent is not.
bool isCalendar(const std::optional<EKCalendar> &calendar);
/// What stands above them: what they are for, or that there is no access to them.
QString calendarsHeader(bool hasAccess);

} // namespace TaskFormChoices

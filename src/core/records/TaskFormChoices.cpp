#include "records/TaskFormChoices.h"

#include "foundation/Localization.h"
#include "records/copies/MVTask.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"
#include "store/queries/DBWorker.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

std::vector<CategoryPtr> TaskFormChoices::categories()
{
    std::vector<CategoryPtr> choices = DBWorker::allCategories();
    if (!DBWorker::isSample())
        choices.insert(choices.begin(), nullptr);
    return choices;
}

std::vector<ContactRows::Named> TaskFormChoices::contactNames()
{
    return ContactRows::named(EntityContacts::fetchRequest());
}

ContactPtr TaskFormChoices::contactOfRow(RowId row)
{
    if (row == 0)
        return nullptr;
    return ObjectList<EntityContacts>(mainContext(),
                                      organiserModel().requireEntity(EntityContacts::entityName), {row})
        .first();
}

QString TaskFormChoices::shownTitle(const EntityContactCategory &category)
{
    return localized(category.title());
}

std::vector<std::shared_ptr<EntityContactCategory>> TaskFormChoices::contactCategories()
{
    const auto found = DBWorker::allContactCategories();
    std::vector<std::shared_ptr<EntityContactCategory>> choices(found.begin(), found.end());
    std::ranges::stable_sort(choices, [](const auto &one, const auto &other) {
        return shownTitle(*one).localeAwareCompare(shownTitle(*other)) < 0;
    });
    return choices;
}

std::vector<CompanyPtr> TaskFormChoices::companies()
{
    const auto found = DBWorker::allCompany();
    return {found.begin(), found.end()};
}

std::vector<ProjectPtr> TaskFormChoices::projects(const ProjectPtr &chosen)
{
    std::vector<ProjectPtr> choices = DBWorker::allProjectsSortDueDate();
    std::erase_if(choices, [&](const ProjectPtr &project) {
        return project != chosen && project->status() == TaskStatus::Done;
    });
    return choices;
}

std::vector<CalendarChooserRow> TaskFormChoices::calendars()
{
    return CalendarEvent::sortingAndGroupingByTitleForData(true).data;
}

bool TaskFormChoices::isCalendar(const std::optional<EKCalendar> &calendar)
{
    return calendar &&
           std::ranges::any_of(
               CalendarEvent::getAllModifiedCalendarsFromCalendars(CalendarEvent::getAllAccessCalendars()),
               [&](const EKCalendar &one) { return one.calendarIdentifier == calendar->calendarIdentifier; });
}

QString TaskFormChoices::calendarsHeader(bool hasAccess)
{
    return localized(hasAccess ? u"Choose calendars to sync with Apple calendar"_s
                               : u"The app does not have access to the Apple calendar"_s);
}

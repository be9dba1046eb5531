#include "store/entities/Model.h"

#include "store/entities/Entities.h"

namespace {

/// Grows with every column, entity or index that is added.
constexpr int modelVersion = 9;

template <typename Entity>
EntityDescription describe()
{
    return EntityDescription(Entity::entityName,
                             {Entity::attributeTable.begin(), Entity::attributeTable.end()},
                             {Entity::relationshipTable.begin(), Entity::relationshipTable.end()},
                             [] { return std::make_shared<Entity>(); });
}

/// Each index holds all that its list or count asks of a row, so that it is answered from the index alone;
/// most leave out the tasks that are done. Their conditions are written as the queries write them, which is
/// how SQLite knows them again.
EntityDescription describeTask()
{
    constexpr std::string_view open = "\"status\" IS NOT 3";
    return describe<EntityTask>().followingLinks().indexedBy({
        // Not Done and Today in their order, with what a filter by a period or a priority asks.
        {"EntityTask_openByDueDate",
         "\"dueDate\" DESC, \"title\", \"type\", \"status\", \"dueSomeDay\", \"startDate\", "
         "\"typeCalendarID\", \"priority\", \"creationDate\"",
         open},
        {"EntityTask_scheduled",
         "\"startDate\", \"title\", \"type\", \"dueDate\", \"status\", \"dueSomeDay\", \"typeCalendarID\", "
         "\"creationDate\", \"priority\"",
         "\"status\" IS NOT 3 AND \"dueSomeDay\" = 0"},
        {"EntityTask_inbox",
         "\"position\", \"status\", \"dueSomeDay\", \"startDate\", \"type\", \"typeCalendarID\"",
         "\"startDate\" IS NULL AND \"type\" = 0"},
        {"EntityTask_someday", "\"title\", \"type\", \"status\", \"dueSomeDay\", \"typeCalendarID\"",
         "\"status\" IS NOT 3 AND \"dueSomeDay\" = 1"},
        // What the badges count: ranges within one type.
        {"EntityTask_countsByStart",
         "\"type\", \"startDate\", \"dueDate\", \"status\", \"dueSomeDay\", \"typeCalendarID\"", open},
        {"EntityTask_countsByDue",
         "\"type\", \"dueDate\", \"startDate\", \"status\", \"dueSomeDay\", \"typeCalendarID\"", open},
        {"EntityTask_countsSomeday", "\"type\", \"status\", \"dueSomeDay\", \"typeCalendarID\"",
         "\"status\" IS NOT 3 AND \"dueSomeDay\" = 1"},
        {"EntityTask_done", "\"expirationDate\", \"status\", \"typeCalendarID\"",
         "\"status\" = 3 AND \"expirationDate\" IS NOT NULL"},
        // What the calendars show beside what is counted, done ones included; and the few that are due before
        // they start, which no range of due dates holds. Without the status, or counts would come along it.
        {"EntityTask_calendar", "\"type\", \"dueDate\", \"startDate\", \"typeCalendarID\"",
         "\"dueDate\" IS NOT NULL"},
        {"EntityTask_dueBeforeStart",
         "\"type\", \"startDate\", \"dueDate\", \"status\", \"dueSomeDay\", \"typeCalendarID\"",
         "\"dueDate\" < \"startDate\""},
        // The few tasks of 31 days and more, of which a span may show one that is due long after it.
        {"EntityTask_long", "\"type\", \"dueDate\", \"startDate\", \"typeCalendarID\"",
         "\"dueDate\" - \"startDate\" >= 2678400"},
        // Look-ups. The titles are what a project, a contact and a company have in the search index.
        {"EntityTask_byTitle", "\"title\""},
        {"EntityTask_byCalendarItem", "\"calendarID\"", "\"calendarID\" IS NOT NULL"},
        {"EntityTask_onCalendar", "\"typeCalendarID\"", "\"typeCalendarID\" IS NOT NULL"},
        {"EntityTask_withAlert", "\"alert\"", "\"alert\" IS NOT NULL"},
        {"EntityTask_withReminder", "\"remindID\"", "\"remindID\" IS NOT NULL"},
        {"EntityTask_category", "\"category\", \"status\", \"typeCalendarID\"", "\"category\" IS NOT NULL"},
        {"EntityTask_delegate", "\"delegateToUser\", \"status\", \"typeCalendarID\", \"title\"",
         "\"delegateToUser\" IS NOT NULL"},
        {"EntityTask_project", "\"project\", \"title\"", "\"project\" IS NOT NULL"},
        {"EntityTask_company", "\"company\", \"title\"", "\"company\" IS NOT NULL"},
        {"EntityTask_location", "\"location\"", "\"location\" IS NOT NULL"},
    });
}

/// Rows that belong to a contact or a company.
template <typename Entity>
EntityDescription describeDetail(std::string_view contactIndex, std::string_view companyIndex)
{
    return describe<Entity>()
        .keptInOrderOf("position")
        .indexedBy({{contactIndex, "\"contact\""}, {companyIndex, "\"company\""}});
}

std::vector<EntityDescription> describeEntities()
{
    return {
        describeTask(),
        describe<EntityProject>().followingLinks().indexedBy(
            {{"EntityProject_category", "\"category\""}, {"EntityProject_byTitle", "\"title\""}}),
        describe<EntityContacts>().followingLinks().indexedBy(
            {{"EntityContacts_company", "\"company\""},
             {"EntityContacts_category", "\"contactCategory\""},
             {"EntityContacts_birthday", "\"birthday\", \"firstName\", \"lastName\"",
              "\"birthday\" IS NOT NULL"}}),
        describe<EntityCompany>().followingLinks(),
        describeDetail<EntityPhone>("EntityPhone_contact", "EntityPhone_company"),
        describeDetail<EntityEmail>("EntityEmail_contact", "EntityEmail_company"),
        describeDetail<EntityURL>("EntityURL_contact", "EntityURL_company"),
        describeDetail<EntityAddress>("EntityAddress_contact", "EntityAddress_company"),
        describe<EntityPhoneType>(),
        describe<EntityEmailType>(),
        describe<EntityURLType>(),
        describe<EntityAddressType>(),
        describe<EntityCategory>(),
        describe<EntityContactCategory>(),
        describe<EntityContactGroup>(),
        describe<EntityTags>(),
        describe<EntityLocation>(),
        describe<EntityNote>().followingLinks().indexedBy(
            {{"EntityNote_contact", "\"contact\""}, {"EntityNote_company", "\"company\""}}),
        describe<EntitySearchIndex>().derived().substringIndexed("string").indexedBy(
            {{"EntitySearchIndex_object", "\"objectId\", \"string\""}}),
    };
}

} // namespace

const ManagedObjectModel &organiserModel()
{
    static const ManagedObjectModel model(modelVersion, describeEntities());
    return model;
}

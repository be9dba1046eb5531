#include "store/entities/Model.h"

#include "store/entities/Entities.h"

namespace {

/// Grows with every column, entity or index that is added.
constexpr int modelVersion = 1;

template <typename Entity>
EntityDescription describe()
{
    return EntityDescription(
        Entity::entityName, {Entity::attributeTable.begin(), Entity::attributeTable.end()},
        {Entity::relationshipTable.begin(), Entity::relationshipTable.end()}, [] { return std::make_shared<Entity>(); });
}

/// Each index holds all that its list asks of a row, so that the list is read from the index alone.
EntityDescription describeTask()
{
    return describe<EntityTask>().followedUp().indexedBy({
        {"EntityTask_byDueDate",
         "\"dueDate\" DESC, \"title\", \"status\", \"type\", \"dueSomeDay\", \"startDate\", \"typeCalendarID\""},
        {"EntityTask_byStartDate",
         "\"startDate\", \"title\", \"status\", \"type\", \"dueSomeDay\", \"dueDate\", \"typeCalendarID\""},
        {"EntityTask_inbox", "\"type\", \"position\", \"status\", \"dueSomeDay\", \"typeCalendarID\"",
         "\"startDate\" IS NULL"},
        {"EntityTask_someday", "\"title\", \"status\", \"type\", \"typeCalendarID\"", "\"dueSomeDay\" = 1"},
        {"EntityTask_byStatus", "\"status\", \"expirationDate\", \"typeCalendarID\""},
        {"EntityTask_byTitle", "\"title\""},
        {"EntityTask_byCalendarItem", "\"calendarID\"", "\"calendarID\" IS NOT NULL"},
        {"EntityTask_withAlert", "\"alert\"", "\"alert\" IS NOT NULL"},
        {"EntityTask_withReminder", "\"remindID\"", "\"remindID\" IS NOT NULL"},
        {"EntityTask_category", "\"category\", \"status\", \"typeCalendarID\""},
        {"EntityTask_delegate", "\"delegateToUser\", \"status\", \"typeCalendarID\""},
        {"EntityTask_project", "\"project\""},
        {"EntityTask_company", "\"company\"", "\"company\" IS NOT NULL"},
        {"EntityTask_location", "\"location\"", "\"location\" IS NOT NULL"},
    });
}

/// Rows that belong to a contact or a company.
template <typename Entity>
EntityDescription describeDetail(std::string_view contactIndex, std::string_view companyIndex)
{
    return describe<Entity>().indexedBy({{contactIndex, "\"contact\""}, {companyIndex, "\"company\""}});
}

std::vector<EntityDescription> describeEntities()
{
    return {
        describeTask(),
        describe<EntityProject>().followedUp().indexedBy(
            {{"EntityProject_category", "\"category\""}, {"EntityProject_byTitle", "\"title\""}}),
        describe<EntityContacts>().followedUp().indexedBy(
            {{"EntityContacts_company", "\"company\""}, {"EntityContacts_category", "\"contactCategory\""}}),
        describe<EntityCompany>().followedUp(),
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
        describe<EntityNote>().followedUp().indexedBy({{"EntityNote_contact", "\"contact\""}}),
        describe<EntitySearchIndex>().derived().indexedBy({{"EntitySearchIndex_object", "\"objectId\""}}),
    };
}

} // namespace

const ManagedObjectModel &organiserModel()
{
    static const ManagedObjectModel model(modelVersion, describeEntities());
    return model;
}

// Every column of a task takes its part in whatever is done with all of them.

#include "CoreTest.h"

#include "calendarsync/SeriesRows.h"
#include "records/TaskMerge.h"

#include <gmock/gmock.h>

#include <functional>

using namespace Qt::Literals::StringLiterals;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;

namespace {

using Names = std::vector<std::string>;

/// The columns are read and written by their names in the store, whatever accessors there are.
class TaskColumnsTest : public CoreTest
{
protected:
    static Names columns()
    {
        Names names;
        for (const AttributeDescription &attribute : EntityTask::attributeTable)
            names.emplace_back(attribute.name);
        for (const RelationshipDescription &relationship : EntityTask::relationshipTable)
            names.emplace_back(relationship.name);
        return names;
    }
    /// The columns that pass a test.
    static Names columnsThat(const std::function<bool(const std::string &)> &pass)
    {
        Names names = columns();
        std::erase_if(names, [&pass](const std::string &name) { return !pass(name); });
        return names;
    }
    static const RelationshipDescription *relationship(const std::string &name)
    {
        const auto &table = EntityTask::relationshipTable;
        const auto found = std::ranges::find(table, name, &RelationshipDescription::name);
        return found == table.end() ? nullptr : &*found;
    }
    static bool isToMany(const std::string &name)
    {
        const RelationshipDescription *found = relationship(name);
        return found && found->cardinality != Cardinality::ToOne;
    }
    static std::vector<Value> valuesOf(const EntityTask &row, const std::string &name)
    {
        if (!isToMany(name))
            return {row.valueForKey(name)};
        std::vector<Value> identifiers;
        for (const ObjectPtr &object : row.relatedObjects(name))
            identifiers.emplace_back(object->identifier());
        return identifiers;
    }
    static bool isEmpty(const EntityTask &row, const std::string &name)
    {
        const std::vector<Value> values = valuesOf(row, name);
        return values.empty() || isAbsent(values.front());
    }

    Value valueFor(AttributeType type)
    {
        ++number;
        switch (type) {
        case AttributeType::Integer:
            return qint64(number);
        case AttributeType::Double:
            return number / 100.0;
        case AttributeType::Boolean:
            return true;
        case AttributeType::String:
            return u"text %1"_s.arg(number);
        case AttributeType::Date:
            return localDate(2026, 11, 1) + Seconds(86400.0 * number);
        }
        return {};
    }
    /// Gives a column a value that no other has.
    void change(EntityTask &row, const std::string &name)
    {
        if (const RelationshipDescription *found = relationship(name)) {
            const ObjectPtr target = context().insertObject(found->destination);
            if (isToMany(name))
                row.setRelatedObjects(name, {target});
            else
                row.setValueForKey(name, target->identifier());
            return;
        }
        const auto &table = EntityTask::attributeTable;
        const auto type = std::ranges::find(table, name, &AttributeDescription::name)->type;
        if (type == AttributeType::Boolean && !isEmpty(row, name))
            row.setValueForKey(name, false);
        else
            row.setValueForKey(name, valueFor(type));
    }
    TaskPtr fullRow()
    {
        const auto row = context().insert<EntityTask>();
        for (const std::string &name : columns())
            change(*row, name);
        return row;
    }
    static Names differences(const EntityTask &one, const EntityTask &other)
    {
        return columnsThat(
            [&](const std::string &name) { return valuesOf(one, name) != valuesOf(other, name); });
    }

    /// A copy of the row as it would be with another value in one column.
    MVTask changedCopy(const TaskPtr &row, const std::string &name)
    {
        const std::vector<ObjectPtr> objects =
            isToMany(name) ? row->relatedObjects(name) : std::vector<ObjectPtr>();
        const Value value = isToMany(name) ? Value() : row->valueForKey(name);
        change(*row, name);
        MVTask copy(row);
        if (isToMany(name))
            row->setRelatedObjects(name, objects);
        else
            row->setValueForKey(name, value);
        return copy;
    }

    /// A save sets the moments itself, and the place in the Inbox; those of a delegate begin with them.
    /// Nothing uses the row index.
    const Names decidedBySave = {"creationDate", "lastModificationDate", "expirationDate", "position",
                                 "rowIndex",     "delegatedSince",       "lastAsked"};
    int number = 0;
};

TEST_F(TaskColumnsTest, AWorkingCopyCarriesWhatASaveDoesNotDecide)
{
    const TaskPtr from = fullRow();
    for (const std::string &name : columns())
        EXPECT_FALSE(isEmpty(*from, name)) << name;
    MVTask copy(from);
    EXPECT_EQ(copy.creationDate, from->creationDate());
    EXPECT_EQ(copy.expirationDate, from->expirationDate());
    EXPECT_EQ(copy.position, from->position());
    EXPECT_FALSE(copy.rowIndex);
    copy.detach();
    copy.save();
    EXPECT_THAT(differences(*from, *copy.task()), UnorderedElementsAreArray(decidedBySave));
}

TEST_F(TaskColumnsTest, AWorkingCopyIsFilledOnlyWhereItHoldsNothing)
{
    const TaskPtr first = fullRow();
    const TaskPtr second = fullRow();
    MVTask copy(first);
    copy.setTask(second);
    copy.save();
    EXPECT_THAT(differences(*first, *second), UnorderedElementsAreArray(decidedBySave));
}

TEST_F(TaskColumnsTest, AnEditorNoticesAChangeOfAnyButAFew)
{
    const TaskPtr row = fullRow();
    EXPECT_FALSE(MVTask(row).isChangedTask());
    const Names unnoticed =
        columnsThat([&](const std::string &name) { return !changedCopy(row, name).isChangedTask(); });
    EXPECT_THAT(unnoticed, UnorderedElementsAre("creationDate", "expirationDate", "rowIndex",
                                                "delegatedSince", "lastAsked", "tags"));
}

TEST_F(TaskColumnsTest, AnEmptyTextAndNoneAreNoDifference)
{
    const auto row = context().insert<EntityTask>();
    const MVTask base(row);
    MVTask copy = base;
    for (const AttributeDescription &attribute : EntityTask::attributeTable) {
        if (attribute.type == AttributeType::String)
            row->setValueForKey(attribute.name, u""_s);
    }
    EXPECT_FALSE(copy.isChangedTask());
    EXPECT_FALSE(TaskMerge::follow(copy, base, MVTask(row)));
}

TEST_F(TaskColumnsTest, AnEditFollowsItsRowExceptInWhatGoesWithItsOwnChange)
{
    const std::vector<Names> groups = {
        {"type", "startDate", "dueDate", "dueSomeDay", "alert", "secondAlert", "repeat", "endRepeat"},
        {"status", "expirationDate"},
        {"company", "delegateToUser"},
        {"typeCalendarID", "calendarTitle", "colorCalendarR", "colorCalendarG", "colorCalendarB",
         "colorCalendarA"}};
    const TaskPtr row = fullRow();
    const MVTask base(row);
    for (const std::string &edited : columns()) {
        const MVTask edit = changedCopy(row, edited);
        const Names kept = columnsThat([&](const std::string &name) {
            MVTask copy = edit;
            const MVTask present = changedCopy(row, name);
            const bool isFollowed = TaskMerge::follow(copy, base, present);
            EXPECT_FALSE(TaskMerge::follow(copy, base, present)) << name;
            return !isFollowed;
        });
        Names expected = {"creationDate", "rowIndex", "delegatedSince", "lastAsked"};
        const auto group = std::ranges::find_if(
            groups, [&](const Names &names) { return std::ranges::count(names, edited) != 0; });
        if (group != groups.end())
            expected.insert(expected.end(), group->begin(), group->end());
        else if (std::ranges::count(expected, edited) == 0)
            expected.push_back(edited);
        EXPECT_THAT(kept, UnorderedElementsAreArray(expected)) << edited;
    }
}

TEST_F(TaskColumnsTest, RowsOfASeriesKeepWhatIsTheirOwn)
{
    const TaskPtr from = fullRow();
    from->setType(TaskType::Appointment);
    const auto leftOutBy = [&](const auto &copyTo) {
        const auto row = context().insert<EntityTask>();
        copyTo(*row);
        return differences(*from, *row);
    };
    Names own = {"startDate",      "dueDate",        "dueSomeDay", "creationDate",          "expirationDate",
                 "position",       "rowIndex",       "alert",      "secondAlert",           "repeat",
                 "endRepeat",      "repeatInfoUser", "remindID",   "wasCreatedOffCalendar", "tags",
                 "delegatedSince", "lastAsked"};
    const auto with = [&own](std::initializer_list<std::string> more) {
        Names names = own;
        names.insert(names.end(), more);
        return UnorderedElementsAreArray(names);
    };
    // An edit goes to rows that are of the series already.
    EXPECT_THAT(leftOutBy([&](EntityTask &row) { series::copyEdit(*from, row, {}); }), with({"calendarID"}));
    // Rows that the calendar has just given have their texts from it.
    EXPECT_THAT(leftOutBy([&](EntityTask &row) { series::SharedFields(*from).writeTo(row); }),
                with({"title", "details"}));
}

} // namespace

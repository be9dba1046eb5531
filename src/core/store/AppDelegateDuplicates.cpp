#include "calendarsync/CalendarEvent.h"
#include "cloud/Replication.h"
#include "foundation/Log.h"
#include "records/dates/MTDates.h"
#include "store/AppDelegate.h"

#include <set>

// Rows that exist twice, since two devices made them before they met.

namespace {

/// The children of several rows in one set, for one to-many relationship.
class UnionOfChildren
{
public:
    explicit UnionOfChildren(std::string relationshipName)
        : relationship(std::move(relationshipName))
    {}

    void add(const ManagedObject &row)
    {
        for (const ObjectPtr &child : row.relatedObjects(relationship))
            children.insert(child);
    }
    void giveTo(ManagedObject &survivor) const
    {
        survivor.setRelatedObjects(relationship, {children.begin(), children.end()});
    }

private:
    std::string relationship;
    std::set<ObjectPtr> children;
};

std::int32_t indexOf(const EntityCategory &category)
{
    return static_cast<std::int32_t>(category.index().value_or(0));
}

void keepSmallerIndex(EntityCategory &survivor, const EntityCategory &row, const EntityCategory &other)
{
    survivor.setIndex(std::min(indexOf(row), indexOf(other)));
}

template <typename Entity>
void keepSmallerIndex(Entity &, const Entity &, const Entity &)
{}

/// Joins the rows of one title into the newest one; on a tie the given row stays. Gives the one that stays;
/// null if there are no others.
template <typename Entity>
ObjectPtr removeSeededDuplicates(ManagedObjectContext &context, const std::shared_ptr<Entity> &row,
                                 std::initializer_list<const char *> relationships)
{
    if (!row)
        return nullptr;
    std::vector<std::shared_ptr<Entity>> others;
    for (const auto &one :
         context.fetch<Entity>(Entity::fetchRequest().where(Predicate::format("title = %@", row->title())))) {
        if (one && one != row)
            others.push_back(one);
    }
    if (others.empty())
        return nullptr;
    std::vector<UnionOfChildren> unions(relationships.begin(), relationships.end());
    const auto addChildren = [&unions](const Entity &from) {
        for (UnionOfChildren &one : unions)
            one.add(from);
    };
    addChildren(*row);
    std::shared_ptr<Entity> survivor = row;
    for (const auto &other : others) {
        addChildren(*other);
        // It is always the given row that is compared, never the survivor so far. One that lost already takes
        // no children any more: they stay with the row that it lost to.
        const bool isRowNewer = !(row->creationDate() < other->creationDate());
        if (!isRowNewer)
            survivor = other;
        else if (!row->isDeleted())
            survivor = row;
        keepSmallerIndex(*survivor, *row, *other);
        context.deleteObject(isRowNewer ? other : row);
    }
    for (const UnionOfChildren &one : unions)
        one.giveTo(*survivor);
    return survivor;
}

/// The day or moment that a task's copies must share.
struct Bounds
{
    Date start = Date::fromUnixSeconds(0);
    Date end = Date::fromUnixSeconds(0);

    explicit Bounds(OptionalDate date)
    {
        if (!date)
            return;
        start = MTDates::startOfCurrentDay(*date);
        end = MTDates::endOfCurrentDay(*date);
    }
};

Predicate sameDates(const EntityTask &task)
{
    const Bounds start(task.startDate());
    const Bounds due(task.dueDate());
    switch (task.type().value_or(TaskType::ToDo)) {
    case TaskType::Appointment:
        return Predicate::format("title = %@ && startDate = %@ && dueDate = %@", task.title(),
                                 task.startDate(), task.dueDate());
    case TaskType::EmailCall:
        return Predicate::format("title = %@ && dueDate = %@", task.title(), task.dueDate());
    default:
        return Predicate::format(
            "title = %@ && (%@ <= startDate && startDate <= %@) && (%@ <= dueDate && dueDate <= %@)",
            task.title(), start.start, start.end, due.start, due.end);
    }
}

Predicate duplicatesOf(const EntityTask &task)
{
    if (task.calendarID().isNull())
        return sameDates(task);
    return Predicate::format("calendarID = %@", task.calendarID()) && sameDates(task);
}

/// A row without a date of creation loses against every other.
void giveLateCreationDate(EntityTask &task)
{
    if (!task.creationDate())
        task.setCreationDate(MTDates::dateFromYear(9999, 1, 1));
}

/// Whether the task itself stays rather than its duplicate: one with a category before one without, then the
/// older one.
bool staysBefore(const EntityTask &task, EntityTask &duplicate)
{
    const bool hasCategory = task.category() != nullptr;
    if (hasCategory != (duplicate.category() != nullptr))
        return hasCategory;
    giveLateCreationDate(duplicate);
    if (task.creationDate() == duplicate.creationDate())
        return hasCategory;
    return *task.creationDate() < *duplicate.creationDate();
}

/// The notes of both, where each says something else.
void joinDetails(EntityTask &survivor, const EntityTask &twin)
{
    const QString own = survivor.details();
    const QString other = twin.details();
    if (own.isEmpty() || other.isEmpty() || own.contains(other))
        return;
    survivor.setDetails(other.contains(own) ? other : own + u'\n' + other);
}

/// What the user entered in the twin only goes on in the task that stays.
void takeOverFrom(EntityTask &survivor, const EntityTask &twin)
{
    const auto isEmpty = [](const Value &value) {
        const auto *text = std::get_if<QString>(&value);
        return isAbsent(value) || (text && text->isEmpty());
    };
    joinDetails(survivor, twin);
    const EntityDescription &entity = survivor.entity();
    for (int column = 0; column < entity.columnCount(); ++column) {
        if (!isEmpty(survivor.value(column)) || isEmpty(twin.value(column)))
            continue;
        if (entity.isAttribute(column))
            survivor.setValue(column, twin.value(column));
        else
            survivor.setRelated(column, twin.related(column));
    }
    std::vector<std::shared_ptr<EntityTags>> tags = survivor.tags();
    for (const auto &tag : twin.tags()) {
        if (std::ranges::find(tags, tag) == tags.end())
            tags.push_back(tag);
    }
    survivor.setTags(tags);
}

void makeCalendarItem(EntityTask &task)
{
    const bool isOpen = task.status() != TaskStatus::Done;
    if (task.calendarID().isEmpty() && task.dueDate() && isOpen)
        CalendarEvent::initEventCalendarFromTask(task, Span::ThisTask, std::nullopt, false);
}

} // namespace

void AppDelegate::keepInPlaceOfDoubles(const ObjectPtr &survivor)
{
    if (exchange && survivor && !survivor->isDeleted())
        exchange->keep(*survivor);
}

void AppDelegate::deleteDuplicateCategoryWith(const CategoryPtr &category)
{
    keepInPlaceOfDoubles(removeSeededDuplicates(managedObjectContext(), category, {"task", "project"}));
}

void AppDelegate::deleteDuplicateCategoryContactWith(const std::shared_ptr<EntityContactCategory> &category)
{
    keepInPlaceOfDoubles(
        removeSeededDuplicates(managedObjectContext(), category, {"contact", "contactGroup"}));
}

void AppDelegate::deleteDuplicatePhoneTypeWith(const std::shared_ptr<EntityPhoneType> &type)
{
    keepInPlaceOfDoubles(removeSeededDuplicates(managedObjectContext(), type, {"phone"}));
}

void AppDelegate::deleteDuplicateEmailTypeWith(const std::shared_ptr<EntityEmailType> &type)
{
    keepInPlaceOfDoubles(removeSeededDuplicates(managedObjectContext(), type, {"email"}));
}

void AppDelegate::deleteDuplicateAddressTypeWith(const std::shared_ptr<EntityAddressType> &type)
{
    keepInPlaceOfDoubles(removeSeededDuplicates(managedObjectContext(), type, {"address"}));
}

void AppDelegate::deleteDuplicateUrlTypeWith(const std::shared_ptr<EntityURLType> &type)
{
    keepInPlaceOfDoubles(removeSeededDuplicates(managedObjectContext(), type, {"url"}));
}

void AppDelegate::deleteDuplicateTaskTypeWith(const TaskPtr &task)
{
    if (!task)
        return;
    Log::line(QStringLiteral("didImportStore: %1").arg(task->title()));
    const auto found =
        managedObjectContext().fetch<EntityTask>(EntityTask::fetchRequest().where(duplicatesOf(*task)));
    Log::line(QStringLiteral("Dup:%1").arg(found.size()));
    std::vector<TaskPtr> duplicates;
    for (const TaskPtr &one : found) {
        if (one && one != task)
            duplicates.push_back(one);
    }
    if (duplicates.empty())
        return;
    giveLateCreationDate(*task);
    TaskPtr survivor = task;
    for (const TaskPtr &duplicate : duplicates) {
        const bool stays = staysBefore(*task, *duplicate);
        if (!stays)
            survivor = duplicate;
        else if (!task->isDeleted())
            survivor = task;
        const TaskPtr deleted = stays ? duplicate : task;
        takeOverFrom(stays ? *task : *duplicate, *deleted);
        Log::line(QStringLiteral("deleted: %1").arg(deleted->title()));
        managedObjectContext().deleteObject(deleted);
    }
    keepInPlaceOfDoubles(survivor);
    makeCalendarItem(*survivor);
}

/// Of rows with one title and one moment of creation every device must keep the same one.
template <typename Entity>
static std::shared_ptr<Entity> firstOfEqual(ManagedObjectContext &context, const std::shared_ptr<Entity> &row)
{
    std::shared_ptr<Entity> first = row;
    const auto equal = context.fetch<Entity>(Entity::fetchRequest().where(
        Predicate::format("title = %@ && creationDate = %@", row->title(), row->creationDate())));
    for (const auto &one : equal) {
        if (one && one->identifier() < first->identifier())
            first = one;
    }
    return first;
}

/// The same of tasks, by all that makes them doubles.
static TaskPtr firstOfEqualTasks(ManagedObjectContext &context, const TaskPtr &task)
{
    TaskPtr first = task;
    for (const TaskPtr &one :
         context.fetch<EntityTask>(EntityTask::fetchRequest().where(duplicatesOf(*task)))) {
        const bool isEqual = one && one->creationDate() == task->creationDate() &&
                             (one->category() == nullptr) == (task->category() == nullptr);
        if (isEqual && one->identifier() < first->identifier())
            first = one;
    }
    return first;
}

void AppDelegate::removeDuplicatesOf(const ObjectPtr &object)
{
    if (object->isDeleted() || !object->context())
        return;
    ManagedObjectContext &context = managedObjectContext();
    if (const auto task = std::dynamic_pointer_cast<EntityTask>(object))
        deleteDuplicateTaskTypeWith(firstOfEqualTasks(context, task));
    else if (const auto category = std::dynamic_pointer_cast<EntityCategory>(object))
        deleteDuplicateCategoryWith(firstOfEqual(context, category));
    else if (const auto contactCategory = std::dynamic_pointer_cast<EntityContactCategory>(object))
        deleteDuplicateCategoryContactWith(firstOfEqual(context, contactCategory));
    else if (const auto urlType = std::dynamic_pointer_cast<EntityURLType>(object))
        deleteDuplicateUrlTypeWith(firstOfEqual(context, urlType));
    else if (const auto phoneType = std::dynamic_pointer_cast<EntityPhoneType>(object))
        deleteDuplicatePhoneTypeWith(firstOfEqual(context, phoneType));
    else if (const auto emailType = std::dynamic_pointer_cast<EntityEmailType>(object))
        deleteDuplicateEmailTypeWith(firstOfEqual(context, emailType));
    else if (const auto addressType = std::dynamic_pointer_cast<EntityAddressType>(object))
        deleteDuplicateAddressTypeWith(firstOfEqual(context, addressType));
}

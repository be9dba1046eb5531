#include "records/CurrentTasks.h"

#include "calendarsync/RecordsTransaction.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"
#include "store/queries/DBWorker.h"
#include "store/queries/ListDefinitions.h"

#include <algorithm>
#include <unordered_map>

using namespace Qt::Literals::StringLiterals;

CurrentTasks::CurrentTasks(ObjectPtr linkedTo)
    : object(std::move(linkedTo))
{
    getAllData();
}

/// The column in which a task names the object.
static std::string columnOf(const ManagedObject &object)
{
    if (object.entity().name() == EntityProject::entityName)
        return "project";
    return object.entity().name() == EntityContacts::entityName ? "delegateToUser" : "company";
}

std::vector<Predicate> CurrentTasks::predicatesFor(const ProjectPtr &project)
{
    std::vector<Predicate> all = {Predicate::format("status <> %d", TaskStatus::Done),
                                  Predicate::format("project = nil or project == %@", project)};
    const OptionalDate start =
        project->startDate() ? OptionalDate(MVDate::getStartOfDay(*project->startDate())) : std::nullopt;
    const OptionalDate due =
        project->dueDate() ? OptionalDate(MVDate::getEndOfDay(*project->dueDate())) : std::nullopt;
    if (start && due)
        all.push_back(Predicate::format("(startDate == nil or (%@ <= startDate and startDate <= %@)) and "
                                        "((%@ <= dueDate and dueDate <= %@) or dueDate == nil)",
                                        start, due, start, due));
    else if (due)
        all.push_back(Predicate::format(
            "(dueDate == nil or dueDate <= %@) and (startDate <= %@ or startDate == nil)", due, due));
    else if (start)
        all.push_back(Predicate::format(
            "(startDate == nil or startDate >= %@) and (dueDate >= %@ or dueDate == nil)", start, start));
    return all;
}

static QString nameOfHolder(const ObjectPtr &holder)
{
    if (const auto person = std::dynamic_pointer_cast<EntityContacts>(holder))
        return person->fullName();
    const auto company = std::dynamic_pointer_cast<EntityCompany>(holder);
    return company ? company->title() : QString();
}

void CurrentTasks::getAllData()
{
    std::vector<Predicate> all = {Predicate::format("title <> nil and title <> %@", u""_s),
                                  tasklists::visibleTasks()};
    if (const auto project = std::dynamic_pointer_cast<EntityProject>(object)) {
        for (Predicate &one : predicatesFor(project))
            all.push_back(std::move(one));
    }
    std::vector<MarkedRows::Entry> found;
    std::unordered_map<std::string, std::vector<std::size_t>> placesOfOthers;
    const std::string own = object->identifier().toStdString();
    const FetchRequest request = EntityTask::fetchRequest().where(Predicate::allOf(all));
    mainContext().visit(request, {"title", columnOf(*object)}, [&](const RowReader &row) {
        if (row.utf8(1) == own)
            linked.insert(row.rowId());
        else if (!row.isNull(1))
            placesOfOthers[std::string(row.utf8(1))].push_back(found.size());
        found.push_back({row.rowId(), row.text(0)});
    });
    // A mark takes the task from somebody else, which is to be seen before.
    for (const auto &[holder, places] : placesOfOthers) {
        const QString name =
            nameOfHolder(mainContext().object(object->entity().name(), QString::fromStdString(holder)));
        for (const std::size_t place : places)
            found[place].detail = name;
    }
    tasks.setEntries(std::move(found));
    tasks.setMarked(linked);
}

bool CurrentTasks::isLinked(const EntityTask &task) const
{
    return task.project() == object || task.delegateToUser() == object || task.company() == object;
}

void CurrentTasks::link(EntityTask &task, bool isWanted) const
{
    if (isLinked(task) == isWanted)
        return;
    if (const auto project = std::dynamic_pointer_cast<EntityProject>(object))
        task.setProject(isWanted ? project : nullptr);
    else if (const auto contact = std::dynamic_pointer_cast<EntityContacts>(object))
        task.setDelegateToUser(isWanted ? contact : nullptr);
    else if (const auto company = std::dynamic_pointer_cast<EntityCompany>(object))
        task.setCompany(isWanted ? company : nullptr);
}

bool CurrentTasks::save()
{
    // Only what changed is written, since what is found of each task is written with it.
    std::vector<RowId> changed;
    std::ranges::set_symmetric_difference(tasks.marked(), linked, std::back_inserter(changed));
    if (changed.empty() || object->isDeleted() || !object->context())
        return true;
    RecordsTransaction transaction(u"Add Tasks"_s);
    const ObjectList<EntityTask> loaded(mainContext(), organiserModel().requireEntity(EntityTask::entityName),
                                        changed);
    for (std::size_t place = 0; place < changed.size(); ++place) {
        // It may have gone meanwhile.
        if (const TaskPtr task = loaded.at(static_cast<int>(place)))
            link(*task, tasks.marked().contains(changed[place]));
    }
    const bool isSaved = DBWorker::tellOfFailure(transaction.commit());
    linked = tasks.marked();
    return isSaved;
}

#include "records/CurrentTasks.h"

#include "calendarsync/RecordsTransaction.h"
#include "foundation/TextFolding.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"
#include "store/queries/DBWorker.h"
#include "store/queries/RecordRows.h"

#include <algorithm>
#include <tuple>

using namespace Qt::Literals::StringLiterals;

CurrentTasks::CurrentTasks(ObjectPtr linkedTo)
    : object(std::move(linkedTo))
{
    getAllData();
    marked = linked;
    groupTasks({});
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

void CurrentTasks::getAllData()
{
    std::vector<Predicate> all = {Predicate::format("title <> nil and title <> %@", u""_s)};
    if (const auto project = std::dynamic_pointer_cast<EntityProject>(object)) {
        for (Predicate &one : predicatesFor(project))
            all.push_back(std::move(one));
    }
    // A key for each title is quicker than a comparison of titles for each step of the sorting.
    std::vector<std::pair<QByteArray, Task>> found;
    const std::string own = object->identifier().toStdString();
    const FetchRequest request = EntityTask::fetchRequest().where(Predicate::allOf(all));
    mainContext().visit(request, {"title", columnOf(*object)}, [&](const RowReader &row) {
        const QString title = row.text(0);
        found.push_back({collationSortKey(title), {row.rowId(), title, {}}});
        if (row.utf8(1) == own)
            linked.insert(row.rowId());
    });
    std::ranges::sort(found, [](const auto &one, const auto &other) {
        return std::tie(one.first, one.second.row) < std::tie(other.first, other.second.row);
    });
    tasks.reserve(found.size());
    for (auto &[key, task] : found)
        tasks.push_back(std::move(task));
}

/// Titles that begin with no letter come together, whatever stands between them in the order.
void CurrentTasks::groupTasks(const QString &wanted)
{
    shown.clear();
    std::vector<const Task *> found;
    for (const Task &task : tasks) {
        if (wanted.isEmpty() || task.folded.contains(wanted))
            found.push_back(&task);
    }
    std::vector<std::pair<QString, const Task *>> grouped;
    grouped.reserve(found.size());
    for (const Task *task : found)
        grouped.emplace_back(RecordRows::letterOf(task->title), task);
    std::ranges::stable_partition(grouped, [](const auto &one) { return one.first == u"#"; });
    QString letter;
    for (const auto &[first, task] : grouped) {
        if (first != letter) {
            letter = first;
            shown.push_back({0, letter});
        }
        shown.push_back({task->row, task->title});
    }
}

void CurrentTasks::search(const QString &text)
{
    if (!tasks.empty() && tasks.front().folded.isNull()) {
        for (Task &task : tasks)
            task.folded = foldedForSearch(task.title);
    }
    groupTasks(foldedForSearch(text));
}

void CurrentTasks::toggle(int row)
{
    const RowId task = shown.at(static_cast<std::size_t>(row)).task;
    if (task != 0 && marked.erase(task) == 0)
        marked.insert(task);
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
    std::ranges::set_symmetric_difference(marked, linked, std::back_inserter(changed));
    if (changed.empty() || object->isDeleted() || !object->context())
        return true;
    RecordsTransaction transaction(u"Add Tasks"_s);
    const ObjectList<EntityTask> loaded(mainContext(), organiserModel().requireEntity(EntityTask::entityName),
                                        changed);
    for (std::size_t place = 0; place < changed.size(); ++place) {
        // It may have gone meanwhile.
        if (const TaskPtr task = loaded.at(static_cast<int>(place)))
            link(*task, marked.contains(changed[place]));
    }
    const bool isSaved = DBWorker::tellOfFailure(transaction.commit());
    linked = marked;
    return isSaved;
}

#pragma once

#include "records/MarkedRows.h"
#include "store/entities/Entities.h"

#include <set>
#include <vector>

/// The tasks that can be linked to a project, a contact or a company, by title under their first letters.
/// Those that are linked begin marked; the marks are the user's, and take effect together. No task is loaded
/// before that. Main thread only.
class CurrentTasks
{
public:
    /// \param object a project, a contact or a company. To a project, open tasks are offered that belong to
    /// no other and lie within its dates.
    explicit CurrentTasks(ObjectPtr object);

    /// The tasks by title and what is marked of them.
    MarkedRows &list() { return tasks; }
    const MarkedRows &list() const { return tasks; }

    /// Links the marked tasks and unlinks the others, in one step that can be taken back. A linked task that
    /// was not offered stays. False if it did not reach the disk, which the user is told.
    bool save();

    /// The entity of tasks with what a project asks of them.
    static std::vector<Predicate> predicatesFor(const ProjectPtr &project);

private:
    void getAllData();
    bool isLinked(const EntityTask &task) const;
    void link(EntityTask &task, bool isWanted) const;

    ObjectPtr object;
    MarkedRows tasks;
    std::set<RowId> linked;
};

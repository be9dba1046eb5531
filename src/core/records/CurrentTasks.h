#pragma once

#include "store/entities/Entities.h"

#include <QString>

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

    /// What is shown: titles, and the letters above them.
    struct Row
    {
        /// 0 for a letter.
        RowId task = 0;
        QString text;
        bool isHeading() const { return task == 0; }
    };
    const std::vector<Row> &rows() const { return shown; }
    bool isMarked(int row) const { return marked.contains(shown[static_cast<std::size_t>(row)].task); }
    std::size_t markedCount() const { return marked.size(); }

    /// Shows what holds the text, case and diacritics ignored; an empty text shows everything.
    void search(const QString &text);
    /// A press on a shown row; a letter is left alone.
    void toggle(int row);

    /// Links the marked tasks and unlinks the others, in one step that can be taken back. A linked task that
    /// was not offered stays. False if it did not reach the disk, which the user is told.
    bool save();

    /// The entity of tasks with what a project asks of them.
    static std::vector<Predicate> predicatesFor(const ProjectPtr &project);

private:
    struct Task
    {
        RowId row;
        QString title;
        QString folded;
    };
    void getAllData();
    void groupTasks(const QString &wanted);
    bool isLinked(const EntityTask &task) const;
    void link(EntityTask &task, bool isWanted) const;

    ObjectPtr object;
    /// By title.
    std::vector<Task> tasks;
    std::vector<Row> shown;
    std::set<RowId> linked;
    std::set<RowId> marked;
};

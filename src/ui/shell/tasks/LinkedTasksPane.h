#pragma once

#include "records/RecordPane.h"

#include <functional>

class LinkedTasksView;

/// The pane about one record that tasks are linked to: its form, and its tasks below.
class LinkedTasksPane : public RecordPane
{
    Q_OBJECT
public:
    /// What the pane needs to know of the kind of its record.
    struct Linked
    {
        /// The tasks of a record that is there, in any order.
        std::function<std::vector<TaskPtr>(const ManagedObject &record)> tasks;
        /// With what a new task of it begins.
        std::function<NewTaskRequest(const ObjectPtr &record)> newTask;
        /// Whether the rows say to which project a task belongs.
        bool showsProject = true;
        /// Whether the rows say since when the record has them.
        bool tellsWaiting = false;
        /// Makes what stands between the form and the tasks of a pane; empty for nothing.
        std::function<QWidget *(RecordPane &pane)> above = {};
    };
    LinkedTasksPane(const QString &name, std::unique_ptr<FormModel> form, FormView *view,
                    const Linked &linked, QWidget *parent = nullptr);

    LinkedTasksView *tasksView() const { return tasks; }

private:
    void addCurrentTasks();

    LinkedTasksView *tasks;
};

#pragma once

#include "store/entities/Entities.h"

#include <vector>

/// The tasks that are selected, so that one selected task is marked in all views. Each change posts
/// "ChangeSelectedTask".
class SelectedTaskController
{
public:
    static SelectedTaskController &sharedCenter();

    /// A task that is there already moves to the end.
    void addTask(const TaskPtr &task);
    void addTasks(const std::vector<TaskPtr> &added);
    void removeTask(const TaskPtr &task);
    void removeTasks(const std::vector<TaskPtr> &removed);
    void removeAllTasks();
    bool containsTask(const TaskPtr &task) const;
    const std::vector<TaskPtr> &selectedTasks() const { return tasks; }

private:
    std::vector<TaskPtr> tasks;
};

#pragma once

#include "foundation/Date.h"
#include "store/entities/Entities.h"

#include <functional>
#include <vector>

class MVTask;

/// What an edit of one occurrence of a series reaches. The numbers are those of the calendar store.
enum class Span { ThisTask = 0, FutureTasks = 1 };

/// The rules that decide whether a task may be stored, and what storing or deleting it does.
class TaskManager
{
public:
    TaskManager() = delete;

    /// Stores a working copy. True: it was handled; false: a message (or a failed commit) stopped it.
    static bool saveTaskTemp(MVTask &task, bool autoSave);
    /// Deletes one task and what hangs on it, without a question and without saving.
    static void deleteTask(const TaskPtr &task);
    /// Deletes tasks and projects after asking once; `compliteBlock` runs only if something was deleted.
    static void deleteTasks(const std::vector<ObjectPtr> &tasks, const std::function<void()> &compliteBlock);

    /// False, with a message, for an appointment whose two dates fall into the same minute.
    static bool dateVerefications(OptionalDate startDate, OptionalDate dueDate, std::optional<int> taskType);
    /// A start or due date was picked for a copy.
    static void saveStartDate(OptionalDate date, MVTask &task);
    static void saveDueDate(OptionalDate date, MVTask &task);
};

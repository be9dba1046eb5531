#pragma once

#include "foundation/Date.h"
#include "records/PaletteColor.h"
#include "records/copies/SaveEnd.h"
#include "store/entities/Entities.h"
#include "store/entities/TaskValues.h"
#include "store/state/StepBlock.h"

#include <functional>
#include <optional>
#include <vector>

struct EKCalendar;
class MVTask;
class RecordsTransaction;

/// The rules that decide whether a task may be stored, and what storing or deleting it does. Stateless; main
/// thread only.
class TaskManager
{
public:
    TaskManager() = delete;

    /// Validates and stores a working copy; `autoSave` commits. True: it was handled; when the user gave up
    /// the question about a series, the copy shows what is stored. False: a message or a failed commit
    /// stopped it.
    static bool saveTaskTemp(MVTask &task, bool autoSave);
    /// Validates, stores and commits what was typed in a form. Where it is given up or refused by the rules,
    /// the copy keeps it.
    static SaveEnd saveTaskOfForm(MVTask &task);
    /// Validates and stores a working copy as a part of a transaction, which commits. The copy keeps what it
    /// holds where that is given up.
    static SaveEnd saveTaskTemp(RecordsTransaction &transaction, MVTask &task);
    /// Commits the transaction in which a copy was saved, which then holds what the store holds. False if it
    /// did not reach the disk.
    static bool commit(RecordsTransaction &transaction, MVTask &task);
    /// Stores the copy of one occurrence, or of the first of the rest of a series, as a part of a
    /// transaction. \param date that of its row before the edit.
    static void saveMemberOfSeries(RecordsTransaction &transaction, MVTask &task, OptionalDate date,
                                   Span span);
    /// The calendar side of a save of one occurrence or of the rest of a series.
    static void saveWithDate(RecordsTransaction &transaction, OptionalDate date, const TaskPtr &task,
                             Span span, bool wasRepeat);
    /// Deletes one task and what hangs on it, without a question.
    static void deleteTask(RecordsTransaction &transaction, const TaskPtr &task);
    /// Deletes tasks and projects after asking once; `compliteBlock` runs only if something was deleted.
    /// `step` is called after each task.
    static void deleteTasks(const std::vector<ObjectPtr> &tasks, const std::function<void()> &compliteBlock,
                            const StepBlock &step = {});

    /// False, with a message, for an Appointment whose two dates fall into the same minute.
    static bool dateVerefications(OptionalDate startDate, OptionalDate dueDate,
                                  std::optional<TaskType> taskType);
    /// True, with a message, if a task's dates leave those of its project.
    static bool incorrectTaskTimeMessageProjectStartDate(OptionalDate projectStartDate,
                                                         OptionalDate projectDueDate,
                                                         OptionalDate taskStartDate,
                                                         OptionalDate taskDueDate);
    /// A start or due date was picked for a copy; alerts that would lie behind their base date move or go.
    static void saveStartDate(OptionalDate date, MVTask &task);
    static void saveDueDate(OptionalDate date, MVTask &task);

    /// What a copy keeps of its calendar besides the name: title and colour.
    static void takeValues(MVTask &task, const EKCalendar &calendar);

    /// The colour of a priority; absent for a number that has no name.
    static std::optional<PaletteColor> priorityColor(Priority priority);
};

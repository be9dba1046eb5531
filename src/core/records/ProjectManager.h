#pragma once

#include "foundation/Date.h"
#include "store/entities/Entities.h"

#include <array>
#include <vector>

class MVProject;

/// The rules that decide whether a project may be stored. Stateless; main thread only.
class ProjectManager
{
public:
    ProjectManager() = delete;

    /// Validates a working copy, stores and commits it, and tells who shows projects. False if a message or a
    /// failed commit stopped it; a message leaves the row as it was.
    static bool saveProjectTemp(MVProject &project);

    /// What a project is called in the store for want of a title.
    static QString titleForWant();
    /// The title that is shown: the one a project got for want of a better is in the language of the user.
    static QString shownTitle(const EntityProject &project);

    /// The earliest and the latest date of the tasks that are not done; each absent if there is none. The
    /// order of the tasks counts where some have one date only.
    static std::array<OptionalDate, 2> findMaxAndMinDates(const std::vector<TaskPtr> &tasks);
};

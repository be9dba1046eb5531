#pragma once

#include "store/entities/Entities.h"

#include <functional>

/// Joins the passes over the calendars that single tasks ask for into one at its end, since each costs as
/// much as a pass for all tasks. For work on many tasks; groups may be nested. Main thread only.
class PassGroup
{
public:
    PassGroup();
    /// Runs the pass, if one was asked for.
    ~PassGroup();
    PassGroup(const PassGroup &) = delete;
    PassGroup &operator=(const PassGroup &) = delete;

    /// A pass that takes away no other row than that of the task, and after it what follows from it, unless
    /// the task has gone: at the end of the group, or at once where there is none.
    static void passFor(const TaskPtr &task, std::function<void()> afterwards = {});
};

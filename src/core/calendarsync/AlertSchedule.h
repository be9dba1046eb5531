#pragma once

#include "objectstore/StoreChanges.h"

/// Keeps the messages that are to appear for the alerts of tasks. What is due follows from the store; the
/// list of scheduled notifications is a copy of it.
///
/// A task rings here unless the calendars do it: with access, where their service rings by itself, for the
/// tasks that have an event there. Done tasks do not ring.
namespace AlertSchedule {

/// After a commit: the tasks that changed.
void follow(const StoreChanges &changes);
/// All tasks anew, after something that decides who rings has changed. What is due by now still appears.
void rebuild();
/// Schedules what should have appeared since the last `noteRung` and stands in no list: the list can be lost,
/// and another program can write tasks while this one does not run. Nothing where it was never noted.
void catchUp();
/// Everything up to now has appeared.
void noteRung();

} // namespace AlertSchedule

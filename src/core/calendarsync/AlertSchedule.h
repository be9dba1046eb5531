#pragma once

#include "objectstore/StoreChanges.h"
#include "usernotifications/UserNotification.h"

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
/// Whether a message that is due is still meant: its task is there, is not done, has an alert at that time,
/// and nobody else rings it. In the sample store, which knows nothing of the user's own tasks, always.
bool isMeant(const UserNotification &notification);
/// All tasks anew if the desktop's service that rings the calendars' alarms has come or gone.
void followService();

} // namespace AlertSchedule

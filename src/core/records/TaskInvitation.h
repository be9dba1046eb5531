#pragma once

#include "store/entities/Entities.h"

#include <QString>

class MVTask;

/// Who is invited to the event of a task, as far as an editor shows it.
struct TaskInvitation
{
    bool hasAttendees = false;
    /// The organiser among the user's own contacts; null for a stranger.
    ContactPtr entityContactOrganizer;
    /// The name of a stranger, or the address where there is no name.
    QString stringContactOrganizer;

    /// The name to show; empty without an organiser.
    QString organizerName() const;

    /// Looked up in the calendar of the task; nothing without access to it.
    static TaskInvitation of(const MVTask &task);
};

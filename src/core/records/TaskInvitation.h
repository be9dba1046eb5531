#pragma once

#include "contacts/CNContact.h"
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
    /// The mail address of a stranger, by which an address book may know them; empty without one.
    QString mailOfStranger;

    /// The name to show; empty without an organiser.
    QString organizerName() const;

    /// Looked up in the calendar of the task; nothing without access to it. The organiser is known by a mail
    /// address or by name.
    static TaskInvitation of(const MVTask &task);
    /// Somebody whom an address book has: one of the user's own contacts of that name, or a stranger with it.
    /// Whether anything is another than before.
    bool recognize(const CNContact &card);
};

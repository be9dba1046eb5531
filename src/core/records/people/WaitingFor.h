#pragma once

#include "store/entities/Entities.h"

#include <QString>

#include <vector>

/// What others were given to do and have not done yet: who has it since when, and when they were asked about
/// it. Stateless; main thread only.
class WaitingFor
{
public:
    WaitingFor() = delete;

    /// The rows of all open tasks that are delegated and whose calendar can be seen, those that wait longest
    /// first.
    static std::vector<RowId> rows();
    /// The open tasks that a contact has, those that wait longest first.
    static std::vector<TaskPtr> tasksOf(const EntityContacts &contact);

    /// Since when the delegate has the task: at least since it was made.
    static OptionalDate since(const EntityTask &task);
    /// Since when the delegate has the task and when they were asked: "since October 3 (50 days), asked
    /// November 20".
    static QString timesInWords(const EntityTask &task);
    /// The same with who that is before it.
    static QString inWords(const EntityTask &task);
    /// The same of everything that a contact has: how much that is, since when, and when they were asked.
    /// Empty for nothing.
    static QString inWords(const EntityContacts &contact);

    /// A mail draft to the contact that names the tasks, as a "mailto:" address (RFC 6068).
    static QString askingMail(const EntityContacts &contact, const std::vector<TaskPtr> &tasks);
    /// Notes that their delegates were asked about tasks just now, in one step that can be taken back. False
    /// if it did not reach the disk, which the user is told.
    static bool noteAsking(const std::vector<TaskPtr> &tasks);
};

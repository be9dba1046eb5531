#pragma once

#include "calendarsync/RecordsTransaction.h"
#include "records/exchange/ImportedTask.h"
#include "records/exchange/TaskImport.h"
#include "store/entities/Entities.h"

#include <QSet>

/// Puts what files hold into the store, one object after the other, as parts of one transaction. Main thread
/// only.
class RecordImporter
{
public:
    explicit RecordImporter(RecordsTransaction &openTransaction);

    /// What an iCalendar file has.
    void take(const CalendarFile::Object &object);

    /// Makes the row of a task, and those of its series. Null, and the account says why, if a rule forbids
    /// it.
    TaskPtr add(const QString &uid, const ImportedTask &task);
    /// The row says what the file says from now on. False, and the account says why, if a rule forbids it.
    bool follow(const TaskPtr &row, const ImportedTask &task);
    /// Makes a project, or completes the one of its title that came as a name only.
    ProjectPtr addProject(const QString &identifier, const ImportedTask &task, const QStringList &people);
    static void fill(EntityProject &project, const ImportedTask &task, const QStringList &people);
    void addNote(const QString &identifier, const ImportedTask &task);
    /// To be called when all files have been taken: of notes that have come before under other identifiers,
    /// or with the card of somebody, one stays.
    void finish();
    /// The project that a task is to belong to, made if there is none of that name; null for none.
    ProjectPtr projectOf(const ImportedTask &task);

    RecordsTransaction &transaction;
    TaskImportAccount account;

private:
    void takeTask(const CalendarFile::Object &object);
    void takeProject(const CalendarFile::Object &object);
    void takeNote(const CalendarFile::Object &object);
    void takeOccurrences(const TaskPtr &row, const ImportedTask &task);
    void edit(const TaskPtr &row, const ImportedTask &task);

    void dropFormerNotesOf(const EntityContacts &person);
    void dropFormerNotesOfNobody(const std::vector<std::shared_ptr<EntityNote>> &fromFile);
    void drop(const std::shared_ptr<EntityNote> &note, std::size_t insteadOf);

    /// Those that came in with this import.
    QSet<QString> newProjects;
    QSet<QString> newNotes;
    /// The last place in the Inbox before it.
    int lastPosition;
};

#pragma once

#include "objectstore/ChangeHistory.h"
#include "objectstore/StoreChanges.h"

#include <vector>

/// What was changed in a record, when and by whom, in words; and the way back to any of the former values.
/// Main thread only.
class RecordHistory
{
public:
    /// One value that changed. An absent one says so in words.
    struct Line
    {
        QString label;
        QString before;
        QString after;
        /// Whether the former value can be put back.
        bool canRestore = false;
    };
    /// One save.
    struct Entry
    {
        Date when;
        /// Who, and what that was called if it has a name.
        QString who;
        /// "Created" or "Deleted" for a save that did that to the record; else empty.
        QString what;
        std::vector<Line> lines;
    };

    explicit RecordHistory(ObjectPtr changed);

    /// What the record is called.
    QString title() const;
    /// The newest first. Saves that changed nothing a user knows of are left out.
    const std::vector<Entry> &entries() const { return shown; }
    /// Whether a commit can have added to it.
    bool isConcernedBy(const StoreChanges &changes) const;
    /// Reads everything anew.
    void reload();
    /// Puts the value that a line had before back into the record, in one step that can be taken back; of a
    /// task by its rules, together with the other dates of that save. False if the rules or the store stopped
    /// it, which the user is told.
    bool restore(std::size_t entry, std::size_t line);

private:
    /// Where the change behind a line stands.
    struct Place
    {
        std::size_t save;
        std::size_t row;
        std::size_t field;
    };
    void addLines(std::size_t number, Entry &entry, std::vector<Place> &places) const;
    bool isRestorable(const RowChange &row, const RowChange::Field &field) const;
    bool hasPart(const RowChange &row, const RowChange::Field &field) const;
    bool restoreProject(const RowChange &row, const RowChange::Field &field);
    bool restoreTask(const RowChange &row, const RowChange::Field &field);
    bool restoreValue(const RowChange &row, const RowChange::Field &field);
    void bringBack(const RowChange &row);

    ObjectPtr record;
    std::vector<RecordedSave> saves;
    std::vector<Entry> shown;
    std::vector<std::vector<Place>> placesOfLines;
};

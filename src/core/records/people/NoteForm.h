#pragma once

#include "records/people/MVNote.h"
#include "records/people/MissingField.h"

/// A new note as its window edits it.
class NoteForm
{
public:
    MVNote values;

    /// Stores the note as made now, commits, and tells the lists. Without a title nothing is done and the
    /// answer says where the focus goes. After a save that failed, the next one stores the same note.
    MissingField clickButtonSave();
    /// The stored row; null until it was saved.
    const std::shared_ptr<EntityNote> &note() const { return row; }

private:
    std::shared_ptr<EntityNote> row;
};

#pragma once

struct RecordKind;

/// Notes: a title over a text, of whom it is about.
namespace NoteKind {

RecordKind description();

} // namespace NoteKind

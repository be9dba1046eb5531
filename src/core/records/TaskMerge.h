#pragma once

class MVTask;

/// Keeps a task that is being edited in step with its row, which the calendar, another device or another
/// window may change meanwhile. Stateless.
namespace TaskMerge {

/// Brings into `edited` what has changed from `base`, the values that the edit began with, to `present`,
/// those of the row now. Values that depend on each other, as the dates of a task, go together; where the
/// edit has changed any of them, what the user entered stays. True if `edited` is another task after it.
bool follow(MVTask &edited, const MVTask &base, const MVTask &present);

} // namespace TaskMerge

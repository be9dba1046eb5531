#pragma once

#include <QStringList>

/// The pictures that a contact or a company has let go of. Undo brings their names back, so that their files
/// stay for as long as a step that can be taken back may name them. Main thread only.
namespace LoosePictures {

/// Records were saved without pictures that they had, or were deleted. The names are kept in the settings
/// until `sweep` looks at the files; nothing is removed now. An empty name does nothing, nor does anything in
/// the sample, which is thrown away whole.
void add(const QStringList &names);

/// Removes the files that were let go of so long ago that no undo reaches back there, unless a contact or a
/// company holds them again.
void sweep();

} // namespace LoosePictures

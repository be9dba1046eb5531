#pragma once

/// The grouping that the user chose for a list, kept in the settings under the list's number.
namespace GroupingSetting {

/// The index of the grouping; -1 for none.
int read(int groupedType);
void write(int groupedType, int index);

} // namespace GroupingSetting

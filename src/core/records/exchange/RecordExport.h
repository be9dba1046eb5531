#pragma once

#include "foundation/Error.h"
#include "objectstore/ManagedObject.h"
#include "records/exchange/ExportFormat.h"
#include "store/state/StepBlock.h"

#include <string_view>
#include <vector>

class QIODevice;

/// Records as a file for other programs. Main thread only.
namespace RecordExport {

/// Writes the records of an entity in their order, each held in memory only while it is written; a record
/// that is gone is left out. `step` is called after each; where it wants no more, what is written stays.
/// The error says why the device took no more, or that there is no such file of these records.
OptionalError write(QIODevice &device, ExportFormat format, std::string_view entity,
                    const std::vector<RowId> &rows, const StepBlock &step = {});

/// What such a file cannot hold of these records, in the user's language; empty for nothing.
QString wordsOnWhatIsLeftOut(ExportFormat format, std::string_view entity, const std::vector<RowId> &rows);

} // namespace RecordExport

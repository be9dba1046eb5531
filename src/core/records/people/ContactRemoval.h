#pragma once

#include "objectstore/ManagedObject.h"
#include "store/state/StepBlock.h"

#include <functional>
#include <vector>

/// Deleting contacts. Main thread only.
namespace ContactRemoval {

/// The same as `RecordRemoval::remove`; with a contact goes the file of the picture that nobody else has.
void remove(const std::vector<ObjectPtr> &contacts, const std::function<void()> &removed,
            const StepBlock &step = {});

} // namespace ContactRemoval

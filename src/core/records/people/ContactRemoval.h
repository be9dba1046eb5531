#pragma once

#include "objectstore/ManagedObject.h"
#include "store/state/StepBlock.h"

#include <functional>
#include <vector>

/// Deleting contacts and companies. Main thread only.
namespace ContactRemoval {

/// The same as `RecordRemoval::remove`; the pictures that nobody else has go later (`LoosePictures`).
void remove(const std::vector<ObjectPtr> &records, const std::function<void()> &removed,
            const StepBlock &step = {});

} // namespace ContactRemoval

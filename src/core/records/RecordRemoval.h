#pragma once

#include "objectstore/ManagedObject.h"
#include "store/state/StepBlock.h"

#include <functional>
#include <vector>

/// Deleting records of any kind, as all lists do it. Main thread only.
namespace RecordRemoval {

/// Asks whether one or several selected items are to be deleted.
bool isWanted(std::size_t count);
/// Asks, and deletes records with what the model says goes with them, as one step that can be taken back.
/// `removed` is called once it is done, `step` after each record.
void remove(const std::vector<ObjectPtr> &records, const std::function<void()> &removed,
            const StepBlock &step = {});

} // namespace RecordRemoval

#pragma once

#include "objectstore/ManagedObject.h"
#include "store/state/StepBlock.h"

#include <functional>
#include <vector>

/// Deleting records of any kind, as all lists do it. Main thread only.
namespace RecordRemoval {

/// What a record is called, cut where it is long; empty if it has no name.
QString titleOf(const ObjectPtr &record);
/// How many records there are and what they are called: "5 tasks: “Milk”, “Bread”, “Eggs” and 2 more".
QString inWords(const std::vector<ObjectPtr> &records);
/// Asks whether one or several selected items are to be deleted, and says which.
bool isWanted(const std::vector<ObjectPtr> &records);
/// Asks, and deletes records with what the model says goes with them, as one step that can be taken back.
/// `removed` is called once it is done, `step` after each record.
void remove(const std::vector<ObjectPtr> &records, const std::function<void()> &removed,
            const StepBlock &step = {});

} // namespace RecordRemoval

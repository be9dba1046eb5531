#pragma once

#include "store/entities/Entities.h"

#include <vector>

class QMimeData;

/// Records that are dragged out of a list of the program. Other programs get their titles as text.
namespace DraggedRecords {

QMimeData *of(const std::vector<ObjectPtr> &records);
/// The tasks among what is dragged that are there still.
std::vector<TaskPtr> tasksIn(const QMimeData &data);

} // namespace DraggedRecords

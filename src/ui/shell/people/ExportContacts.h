#pragma once

#include "objectstore/ManagedObject.h"

#include <string_view>
#include <vector>

class QWidget;

/// People and companies as a file of vCards.
namespace ExportContacts {

/// Whether records of an entity can be exported.
bool canExport(std::string_view entity);
/// Asks whether the selected records or all are meant, where that is not the same, and for a file, and writes
/// them there. The user is told if it cannot be written; then a file that was there stays as it was.
void run(const std::vector<ObjectPtr> &selected, const std::vector<ObjectPtr> &all, QWidget &window);

} // namespace ExportContacts

#pragma once

#include "objectstore/ManagedObject.h"
#include "records/exchange/ExportFormat.h"

#include <QString>

#include <memory>
#include <string_view>
#include <vector>

class QMimeData;
class QWidget;

/// The records of a list as a file for other programs.
namespace ExportRecords {

/// What a list has to export.
struct Offer
{
    /// That of all its records.
    std::string_view entity = {};
    /// The first is the one that is proposed; a list without any cannot be exported.
    std::vector<ExportFormat> formats = {};
    /// What the file is called at first, without its suffix.
    QString name = {};
    /// In the order of the list.
    std::vector<RowId> selected = {};
    std::vector<RowId> all = {};
};

/// Asks whether the selected records or all are meant, where that is not the same, and for a file, whose
/// name decides the format, and writes them there. The user is told if it cannot be written; then a file
/// that was there stays as it was.
void run(const Offer &offer, QWidget &window);

/// The selected records, or all where none are, as a table for the clipboard: with tabs as text, which
/// spreadsheets take, and with commas as "text/csv". Null if the user gives it up.
std::unique_ptr<QMimeData> table(const Offer &offer);

} // namespace ExportRecords

#pragma once

#include "store/queries/ListType.h"

#include <QString>

#include <optional>

class FormModel;
class QPrinter;
class RecordListModel;

/// Lists and records as they stand on paper, in HTML.
namespace PaperText {

/// The rows of a list under their headers: tasks with their check box, date, category and project, records of
/// other kinds with what tells most of them.
QString ofList(const QString &title, const RecordListModel &rows, std::optional<ListType> list);
/// What a record is called and what its rows say, those without a value left out.
QString ofRecord(FormModel &record);

/// Writes such a text on the pages of a printer.
void print(const QString &html, QPrinter &printer);

} // namespace PaperText

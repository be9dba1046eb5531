#pragma once

#include "store/queries/ListType.h"

#include <QString>

#include <optional>
#include <vector>

class FormModel;
class QPrinter;
class RecordListModel;

/// Lists and records as they stand on paper, in HTML.
namespace PaperText {

/// The rows of a list under their headers: tasks with their check box, date, category and project, records of
/// other kinds with what tells most of them.
QString ofList(const QString &title, const RecordListModel &rows, std::optional<ListType> list);
/// A row of a list that is none of records alone.
struct Line
{
    bool isHeading = false;
    /// Absent for what cannot be ticked.
    std::optional<bool> isTicked = {};
    QString text;
    QString detail = {};
};
/// Such a list under a title of its own.
QString ofLines(const QString &title, const std::vector<Line> &lines);
/// What a record is called and what its rows say, those without a value left out.
QString ofRecord(FormModel &record);

/// Writes such a text on the pages of a printer.
void print(const QString &html, QPrinter &printer);

} // namespace PaperText

#include "foundation/Csv.h"
#include "fuzz/Targets.h"
#include "records/exchange/RecordTable.h"
#include "records/exchange/TableCells.h"

#include <QBuffer>

namespace {

RecordTable tableIn(QByteArray bytes)
{
    QBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    return RecordTable::read(device);
}

ImportedRow rowOf(const RecordTable &table, const QHash<QString, QString> &cells)
{
    return table.kind() == RecordTable::Kind::Projects ? tablecells::projectOf(cells)
           : table.kind() == RecordTable::Kind::Notes  ? tablecells::noteOf(cells)
                                                       : tablecells::taskOf(cells, true);
}

/// Those of known columns: what stands in others is no column of a table that is written.
QHash<QString, QString> cellsOf(const RecordTable &table, const RecordTable::Row &row)
{
    auto cells = table.cells(row);
    cells.remove(tablecells::wordsOfUnknown);
    return cells;
}

} // namespace

QString contradictionInTable(const QByteArray &bytes)
{
    const RecordTable table = tableIn(bytes);
    if (table.rows().empty())
        return {};
    QStringList titles = cellsOf(table, table.rows().front()).keys();
    titles.sort();
    QByteArray text = Csv::byteOrderMark + Csv::line(titles);
    std::vector<QHash<QString, QString>> wanted;
    for (const RecordTable::Row &row : table.rows()) {
        auto cells = cellsOf(table, row);
        QStringList fields;
        for (const QString &title : titles) {
            // Line ends have one form when they are read.
            cells[title].remove(u'\r');
            fields << cells[title];
        }
        if (fields.join(QString()).isEmpty())
            continue;
        const ImportedRow read = rowOf(table, cells);
        if (read.task.start && read.task.due && *read.task.due < *read.task.start)
            return QStringLiteral("it ends before it begins");
        if (!tablecells::isSame(read, rowOf(table, cells)))
            return QStringLiteral("the same words say something else");
        text += Csv::line(fields);
        wanted.push_back(cells);
    }
    const RecordTable again = tableIn(text);
    if (wanted.empty())
        return {};
    if (again.kind() != table.kind() || again.rows().size() != wanted.size())
        return QStringLiteral("another table: ") + QString::fromUtf8(text);
    for (std::size_t place = 0; place < wanted.size(); ++place)
        if (cellsOf(again, again.rows()[place]) != wanted[place])
            return QStringLiteral("another row: ") + QString::fromUtf8(text);
    return {};
}

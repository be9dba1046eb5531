#pragma once

#include "records/exchange/RecordImporter.h"
#include "records/exchange/RecordTable.h"
#include "records/exchange/TableCells.h"

#include <map>

/// Puts the rows of a table into the store. Main thread only.
class TableImporter
{
public:
    TableImporter(RecordImporter &importer, const RecordTable &source);

    /// Takes a row. The rows of a series are taken together, with the first of them.
    void take(const RecordTable::Row &row);
    /// To be called when all files have been taken: tells of tasks that projects name and do not have.
    void finish();

private:
    struct Line
    {
        qint64 number;
        QHash<QString, QString> cells;
        ImportedRow content;
    };

    Line lineOf(const RecordTable::Row &row) const;
    ImportedRow read(const QHash<QString, QString> &cells) const;
    QString uidOf(const Line &line) const;
    void tellUnread(const Line &line);
    /// What a stored record and a row with the same identifier would say together.
    ImportedRow laidOver(const ManagedObject &record, const Line &line) const;
    bool isSame(const ManagedObject &record, const Line &line, const ImportedRow &said) const;

    void takeTask(const Line &line);
    void takeProject(const Line &line);
    void takeNote(const Line &line);
    void follow(const TaskPtr &row, const Line &line);
    void takeSeries(const QString &series);
    void compareSeries(const TaskPtr &anchor, const std::vector<Line> &lines);
    void addSeries(std::vector<Line> lines);
    TaskPtr rowOfSeries(const QString &series, const std::vector<Line> &lines) const;
    static int takeTags(const TaskPtr &anchor, const std::vector<Line> &lines);

    RecordImporter &records;
    const RecordTable &table;
    /// Without identifiers somebody else has made the table.
    bool isOwn;
    /// The rows of each series that has several.
    QHash<QString, std::vector<const RecordTable::Row *>> series;
    QHash<ProjectPtr, QStringList> namedTasks;
};

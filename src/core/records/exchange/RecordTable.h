#pragma once

#include "foundation/Csv.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <string_view>
#include <vector>

class QIODevice;

/// A table (`Csv`) of tasks, projects or notes: those that `RecordWriter` makes, and those of spreadsheets
/// and other programs. What it holds is told by its titles, which may stand in any order.
class RecordTable
{
public:
    enum class Kind {
        Tasks,
        Projects,
        Notes,
        /// Contacts or companies, which `ContactTable` reads.
        People,
        /// None of them.
        Other,
    };
    struct Row
    {
        QStringList fields;
        /// The number of the line that it begins in, from 1 on.
        qint64 line;
    };
    /// Why a row could not be read.
    enum class Fault { CutOff, TooLarge };
    struct Problem
    {
        Fault fault;
        qint64 line;
    };

    /// More than this is no record.
    static constexpr qsizetype mostCharacters = 2 * 1024 * 1024;
    /// So many are read from one file; what follows is left out, and `isTooLong` says so.
    static constexpr std::size_t mostRows = 200'000;

    /// What a table with such titles holds, in any language of the program or in words of others.
    static Kind kindOf(const QStringList &titles);
    /// The same of a device that is open for reading; reads no more than the titles.
    static Kind kindOf(QIODevice &device);
    /// The titles of a table of which nothing has been read yet; absent for an empty one.
    static std::optional<CsvReader::Record> titlesIn(CsvReader &reader);
    /// Reads all of a device that is open for reading.
    static RecordTable read(QIODevice &device);

    Kind kind() const { return tableKind; }
    /// The entity of the records of the table.
    std::string_view entity() const { return entityOf(tableKind); }
    const std::vector<Row> &rows() const { return found; }
    /// What stands in a row, by the titles of `recordcolumns`. A column that the table has is there even if
    /// the field is empty. What stands in other columns is `tablecells::wordsOfUnknown`.
    QHash<QString, QString> cells(const Row &row) const;
    bool has(const QString &column) const { return columns.contains(column); }

    const std::vector<Problem> &problems() const { return faults; }
    /// The titles of columns that mean nothing here but hold something; of those without a title, the number
    /// of the last one.
    QStringList unknownTitles() const;
    bool isTooLong() const { return hasMore; }

private:
    static std::string_view entityOf(Kind kind);
    static QStringList columnsOf(Kind kind, const QStringList &titles);
    QString titleAt(qsizetype place) const;

    Kind tableKind = Kind::Other;
    QStringList titlesOfFile;
    /// What each field of a row is, by the titles of `recordcolumns`; empty for none of them.
    QStringList columns;
    std::vector<bool> isFilled;
    /// Of the row with the most.
    qsizetype mostFields = 0;
    std::vector<Row> found;
    std::vector<Problem> faults;
    bool hasMore = false;
};

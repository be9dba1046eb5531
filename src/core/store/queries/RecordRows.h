#pragma once

#include "objectstore/ObjectList.h"
#include "store/queries/RowsWatcher.h"

#include <QString>

#include <set>
#include <string_view>
#include <vector>

/// A record as a list places it.
struct ListedRecord
{
    RowId row = 0;
    /// What it stands under, for example the letter that its name begins with; empty in a list without
    /// headings.
    QString heading = {};
    bool operator==(const ListedRecord &) const = default;
};

/// The rows of a list of records of one entity: records, under headings where they have some. A record is
/// loaded when its row is looked at.
class RecordRows
{
public:
    explicit RecordRows(std::string_view entityName)
        : entity(entityName)
    {}

    /// Puts other rows in place of all.
    void set(std::vector<ListedRecord> records);
    /// Makes the rows those of the wanted records step by step: records leave, come, or go to another place,
    /// headings with them, and no other row is touched.
    /// \param changed the records that changed; they may be gone.
    /// \param held those of them whose rows stand as they are, also where the list has them no more.
    void follow(const std::vector<ListedRecord> &wanted, const std::set<RowId> &changed,
                const std::set<RowId> &held, RowsWatcher &watcher);

    int size() const { return static_cast<int>(rows.size()); }
    bool isHeading(int row) const { return rows[static_cast<std::size_t>(row)].row == 0; }
    /// The words of the heading at a row, or of the one that a record stands under.
    const QString &headingAt(int row) const { return rows[static_cast<std::size_t>(row)].heading; }
    /// The record at a row; null if the row is a heading, or its record is gone.
    ObjectPtr recordAt(int row) const;
    /// What the store calls the record at a row, without loading it; 0 for a heading.
    RowId identifierAt(int row) const { return rows[static_cast<std::size_t>(row)].row; }
    /// The row of a record, or -1.
    int rowOf(const ManagedObject &record) const;

    /// The heading of a record by what it is called: the letter that the text begins with, without its
    /// accent, as a capital; "#" if it begins with no letter.
    static QString letterOf(const QString &text);

private:
    static std::vector<ListedRecord> withHeadings(const std::vector<ListedRecord> &records);
    bool isSteady(const std::vector<ListedRecord> &wanted, const std::set<RowId> &changed) const;
    void followChanged(const std::vector<ListedRecord> &wanted, const std::set<RowId> &changed,
                       RowsWatcher &watcher);
    void removeLeavers(const std::set<RowId> &staying, RowsWatcher &watcher);
    void placeRecord(const ListedRecord &record, RowId before, RowsWatcher &watcher);
    void settleHeadings(RowsWatcher &watcher);
    void erase(int row, RowsWatcher &watcher);
    void insert(int row, const ListedRecord &inserted, RowsWatcher &watcher);
    int find(RowId record) const;

    std::string_view entity;
    /// A heading is a row of record 0.
    std::vector<ListedRecord> rows;
    /// The records of all rows, once one was asked for.
    mutable ObjectListBase loaded;
    mutable bool isLoadedOld = true;
};

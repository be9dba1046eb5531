#pragma once

#include "objectstore/ManagedObjectModel.h"
#include "objectstore/Sqlite.h"

#include <optional>

/// The index behind "contains, case and diacritics ignored" on one text attribute of an entity: an FTS5 table
/// of the trigrams of the folded texts.
///
/// It only proposes rows, and a query tests each of them, so that it may know too much but never too little.
/// Rows that were written since it was last brought up to date stand in a list beside it, and are always
/// proposed. Where other programs write, triggers keep that list; a context, on whose connection triggers are
/// switched off, adds its rows by `note`.
class SubstringIndex
{
public:
    /// \param entity one with a substring attribute.
    explicit SubstringIndex(const EntityDescription &entity);

    /// The index of an entity, or nothing if it has none.
    static std::optional<SubstringIndex> of(const EntityDescription &entity);

    /// Statements that make what is missing, with every present row on the list.
    QByteArray create(sqlite::Database &database) const;
    /// Statements that empty the index and put every row on the list.
    QByteArray startAnew() const;

    /// Puts a row that was written on the list. False on an error.
    bool note(sqlite::Database &database, RowId row) const;
    bool note(sqlite::Database &database, const QString &identifier) const;

    /// Takes rows of the list into the index, at most so many; gives how many that were. The caller holds the
    /// transaction.
    Result<int> takeIn(sqlite::Database &database, int limit) const;
    bool hasWaitingRows(sqlite::Database &database) const;

    /// What an FTS5 query must match for a text to be able to contain the folded part; absent if the part has
    /// fewer than three characters, for which every row must be tested.
    static std::optional<QString> matchFor(const QString &foldedPart);
    /// A subquery of the numbers of all rows that may pass; its one binding is the text of `matchFor`.
    QByteArray proposedRows() const;

private:
    QByteArray table;
    QByteArray attribute;
    QByteArray trigrams;
    QByteArray waiting;
};

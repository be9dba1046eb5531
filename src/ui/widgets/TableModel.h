#pragma once

#include <QAbstractListModel>

#include <optional>

/// What a row of a list is, apart from what it shows.
enum class RowKind { Item, Header, Separator };

/// The rows of a `TableViewExtended`: items under headers with gaps between.
class TableModel : public QAbstractListModel
{
    Q_OBJECT
public:
    using QAbstractListModel::QAbstractListModel;

    /// What a row is, without loading it.
    virtual RowKind kindOf(int row) const = 0;
    /// The height of a row that has one of its own, in pixels; absent for one as high as all of its kind.
    virtual std::optional<int> heightOf(int row) const;
    /// Only items can be selected.
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// What a row is called as long as it exists, wherever it goes; never 0. Models whose rows go elsewhere
    /// say so themselves.
    virtual quint64 stableIdAt(int row) const { return static_cast<quint64>(row) + 1; }
    /// How many items there are, in words.
    virtual QString countInWords(int items) const;

    bool isItem(int row) const { return row >= 0 && row < rowCount() && kindOf(row) == RowKind::Item; }
    /// The next item from `row` on in a direction (1 or -1), `row` itself included, or -1.
    int nearestItem(int row, int direction) const;
};

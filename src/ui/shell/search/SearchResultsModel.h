#pragma once

#include "records/SearchViewController.h"
#include "widgets/TableModel.h"

/// What a search found, as a view takes it: headings with the records under them.
class SearchResultsModel : public TableModel
{
    Q_OBJECT
public:
    explicit SearchResultsModel(QObject *parent = nullptr);

    /// Searches in the background; the former results stand until `changed` is emitted.
    void search(const QString &text);
    bool isSearching() const { return results.isSearching(); }
    const SearchViewController &found() const { return results; }
    /// The record of a row, or null.
    ObjectPtr recordAt(int row) const;
    /// The row of a record, or -1.
    int rowOf(const ObjectPtr &record) const;

    RowKind kindOf(int row) const override;
    quint64 stableIdAt(int row) const override;
    QString countInWords(int items) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

Q_SIGNALS:
    void changed();

private:
    SearchViewController results;
    /// How many rows the views know of.
    int shownRows = 0;
};

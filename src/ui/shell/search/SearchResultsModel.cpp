#include "shell/search/SearchResultsModel.h"

#include "foundation/Localization.h"

using namespace Qt::Literals::StringLiterals;

SearchResultsModel::SearchResultsModel(QObject *parent)
    : TableModel(parent)
{}

void SearchResultsModel::search(const QString &text)
{
    results.changeFileterStringLater(text, [this] {
        beginResetModel();
        shownRows = static_cast<int>(results.rows().size());
        endResetModel();
        Q_EMIT changed();
    });
}

ObjectPtr SearchResultsModel::recordAt(int row) const
{
    return row >= 0 && row < shownRows ? results.rows()[static_cast<std::size_t>(row)].record() : nullptr;
}

int SearchResultsModel::rowOf(const ObjectPtr &record) const
{
    for (int row = 0; record && row < shownRows; ++row) {
        if (recordAt(row) == record)
            return row;
    }
    return -1;
}

RowKind SearchResultsModel::kindOf(int row) const
{
    return results.rows()[static_cast<std::size_t>(row)].isHeading() ? RowKind::Header : RowKind::Item;
}

/// Records of different entities can have the same number.
quint64 SearchResultsModel::stableIdAt(int row) const
{
    const ObjectPtr record = recordAt(row);
    if (!record)
        return qHash(results.rows()[static_cast<std::size_t>(row)].heading) | 1;
    return qHashMulti(1, record->entity().name(), record->rowId()) | 1;
}

QString SearchResultsModel::countInWords(int items) const
{
    if (items == 0)
        return localized(u"Nothing found"_s);
    return localizedCount(u"%1 results"_s, items);
}

int SearchResultsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : shownRows;
}

QVariant SearchResultsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::AccessibleTextRole))
        return {};
    const auto &row = results.rows()[static_cast<std::size_t>(index.row())];
    return row.isHeading() ? row.heading : row.name;
}

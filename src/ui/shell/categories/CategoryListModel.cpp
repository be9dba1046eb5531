#include "shell/categories/CategoryListModel.h"

#include "foundation/Localization.h"
#include "store/entities/EntityCategory.h"
#include "widgets/Theme.h"

using namespace Qt::Literals::StringLiterals;

static QColor colorFrom(double red, double green, double blue)
{
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue));
}

void CategoryListModel::reload(const std::optional<CategoryColor> &newCategory)
{
    beginResetModel();
    newColor = newCategory;
    dataAllCategory = fetchRows();
    endResetModel();
}

std::vector<CategoryListModel::Row> CategoryListModel::fetchRows()
{
    std::vector<Row> rows;
    for (const CategoryPtr &category : Categories::rows())
        rows.push_back({category, Categories::openTaskCount(category)});
    return rows;
}

void CategoryListModel::update()
{
    const std::vector<Row> fresh = fetchRows();
    for (int row = rowCount(); row-- > 0;) {
        if (std::ranges::find(fresh, categoryAt(row), &Row::category) != fresh.end())
            continue;
        beginRemoveRows({}, row, row);
        dataAllCategory.erase(dataAllCategory.begin() + row);
        endRemoveRows();
    }
    for (int row = 0; row < static_cast<int>(fresh.size()); ++row) {
        const Row &wanted = fresh[static_cast<std::size_t>(row)];
        const int former = rowOf(wanted.category);
        if (former < 0) {
            beginInsertRows({}, row, row);
            dataAllCategory.insert(dataAllCategory.begin() + row, wanted);
            endInsertRows();
        } else if (former > row) {
            beginMoveRows({}, former, former, {}, row);
            const auto first = dataAllCategory.begin() + row;
            std::rotate(first, dataAllCategory.begin() + former, dataAllCategory.begin() + former + 1);
            endMoveRows();
        }
        dataAllCategory[static_cast<std::size_t>(row)] = wanted;
    }
    if (!fresh.empty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

quint64 CategoryListModel::stableIdAt(int row) const
{
    constexpr int kindsOfRows = 3;
    const CategoryPtr category = categoryAt(row);
    if (category)
        return static_cast<quint64>(category->rowId()) * kindsOfRows;
    return row == newRow() ? 1 : 2;
}

QString CategoryListModel::countInWords(int items) const
{
    return items == 1 ? localized(u"1 category"_s) : localized(u"%1 categories"_s).arg(items);
}

/// What a screen reader says of a row.
static QString spoken(const QString &title, int openTasks, bool isDefault)
{
    QStringList parts = {title};
    if (openTasks > 0)
        parts << (openTasks == 1 ? localized(u"1 open task"_s)
                                 : localized(u"%1 open tasks"_s).arg(openTasks));
    if (isDefault)
        parts << localized(u"default"_s);
    return parts.join(u", "_s);
}

int CategoryListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(dataAllCategory.size()) + (newColor ? 1 : 0);
}

CategoryPtr CategoryListModel::categoryAt(int row) const
{
    if (row < 0 || row >= static_cast<int>(dataAllCategory.size()))
        return nullptr;
    return dataAllCategory[static_cast<std::size_t>(row)].category;
}

int CategoryListModel::rowOf(const CategoryPtr &category) const
{
    const auto found = std::ranges::find(dataAllCategory, category, &Row::category);
    return found == dataAllCategory.end() ? -1 : static_cast<int>(found - dataAllCategory.begin());
}

bool CategoryListModel::isTitleEditable(int row) const
{
    const CategoryPtr category = categoryAt(row);
    return row == newRow() || (category && !Categories::isBuiltIn(*category));
}

QColor CategoryListModel::colorOf(int row) const
{
    if (row == newRow())
        return colorFrom(newColor->r, newColor->g, newColor->b);
    const CategoryPtr category = categoryAt(row);
    if (!category || !category->colorR())
        return Theme::disabledText;
    return colorFrom(*category->colorR(), category->colorG().value_or(0), category->colorB().value_or(0));
}

QVariant CategoryListModel::data(const QModelIndex &index, int role) const
{
    const int row = index.row();
    const bool isNew = row == newRow();
    const int count = isNew ? 0 : dataAllCategory[static_cast<std::size_t>(row)].openTasks;
    const QString title = isNew ? QString() : Categories::shownTitle(categoryAt(row));
    const CategoryPtr category = categoryAt(row);
    switch (role) {
    case Qt::DisplayRole:
        return title;
    case Qt::AccessibleTextRole:
        return spoken(isNew ? localized(u"New Category"_s) : title, count,
                      category && category->defaultCategory().value_or(false));
    case ColorRole:
        return colorOf(row);
    case CountRole:
        return count;
    case IsDefaultRole:
        return category && category->defaultCategory().value_or(false);
    default:
        return {};
    }
}

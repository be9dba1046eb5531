#include "shell/categories/CategoryListModel.h"

#include "foundation/Localization.h"
#include "widgets/Theme.h"

using namespace Qt::Literals::StringLiterals;

static QColor colorFrom(double red, double green, double blue)
{
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue));
}

// Rows

std::vector<ListedRecord> CategoryListModel::listed()
{
    std::vector<ListedRecord> records;
    hasNone = false;
    for (const CategoryPtr &category : Categories::rows()) {
        const RowId row = category ? category->rowId() : 0;
        openTasks[row] = Categories::openTaskCount(category);
        hasNone = hasNone || row == 0;
        if (row != 0)
            records.push_back({row});
    }
    return records;
}

void CategoryListModel::fetch()
{
    beginResetModel();
    rows.set(listed());
    newColor.reset();
    endResetModel();
}

/// Which categories changed is not asked: they are few, and their tasks count, too.
void CategoryListModel::update(const std::set<RowId> &, const std::set<RowId> &held)
{
    const std::vector<ListedRecord> records = listed();
    std::set<RowId> all;
    for (const ListedRecord &record : records)
        all.insert(record.row);
    rows.follow(records, all, held, *this);
    if (hasNone)
        rowChanged(rows.size());
}

void CategoryListModel::beginNew(const CategoryColor &color)
{
    beginInsertRows({}, rowCount(), rowCount());
    newColor = color;
    endInsertRows();
}

CategoryPtr CategoryListModel::endNew()
{
    if (newColor) {
        beginRemoveRows({}, newRow(), newRow());
        newColor.reset();
        endRemoveRows();
    }
    return std::exchange(made, nullptr);
}

int CategoryListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : rows.size() + (hasNone ? 1 : 0) + (newColor ? 1 : 0);
}

CategoryPtr CategoryListModel::categoryAt(int row) const
{
    const bool isCategory = row >= 0 && row < rows.size();
    return isCategory ? std::static_pointer_cast<EntityCategory>(rows.recordAt(row)) : nullptr;
}

/// "None" is the row of no category.
int CategoryListModel::rowOf(const ObjectPtr &record) const
{
    if (record)
        return rows.rowOf(*record);
    return hasNone ? rows.size() : -1;
}

quint64 CategoryListModel::stableIdAt(int row) const
{
    constexpr int kindsOfRows = 3;
    if (const RowId category = identifierAt(row); category != 0)
        return static_cast<quint64>(category) * kindsOfRows;
    return row == newRow() ? 1 : 2;
}

QString CategoryListModel::countInWords(int items) const
{
    return localizedCount(u"%1 categories"_s, items);
}

/// What a screen reader says of a row.
static QString spoken(const QString &title, int openTasks, bool isDefault)
{
    QStringList parts = {title};
    if (openTasks > 0)
        parts << localizedCount(u"%1 open tasks"_s, openTasks);
    if (isDefault)
        parts << localized(u"default"_s);
    return parts.join(u", "_s);
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
    const CategoryPtr category = categoryAt(row);
    const int count = isNew ? 0 : openTasks.value(identifierAt(row));
    const QString title = isNew ? QString() : Categories::shownTitle(category);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
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

// Titles

Qt::ItemFlags CategoryListModel::flags(const QModelIndex &index) const
{
    const CategoryPtr category = categoryAt(index.row());
    const bool isOwn = category && !Categories::isBuiltIn(*category);
    const bool isEditable = index.isValid() && (isOwn || index.row() == newRow());
    return RecordListModel::flags(index).setFlag(Qt::ItemIsEditable, isEditable);
}

bool CategoryListModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !flags(index).testFlag(Qt::ItemIsEditable))
        return false;
    const QString title = value.toString().trimmed();
    if (index.row() != newRow())
        return Categories::rename(categoryAt(index.row()), title);
    made = Categories::add(title, *newColor);
    return made != nullptr;
}

#include "shell/home/HomeListModel.h"

#include "foundation/Calendar.h"
#include "foundation/Localization.h"
#include "store/queries/DBWorker.h"
#include "widgets/Theme.h"

#include <QFontMetrics>

using namespace Qt::Literals::StringLiterals;

constexpr int dayHeight = 30;
constexpr int noticeHeight = 53;
constexpr int rowHeight = 60;
constexpr int rowHeightWithProject = 85;

static int lineHeight(Theme::FontRole role)
{
    return QFontMetrics(Theme::font(role)).height();
}

/// What a title and some lines below it need.
static int heightOfLines(int details)
{
    constexpr int gap = 3;
    return lineHeight(Theme::FontRole::Body) + details * (gap + lineHeight(Theme::FontRole::Small)) +
           Theme::unit;
}

HomeListModel::HomeListModel(List shownList, QObject *parent)
    : TableModel(parent)
    , list(shownList)
{}

void HomeListModel::fetch()
{
    HomeRows wanted = list == List::Overdue ? DBWorker::getOverdueBlockData() : DBWorker::getWeekBlockData();
    if (rows.size() > 0)
        return rows.follow(wanted, *this);
    beginResetModel();
    rows = std::move(wanted);
    endResetModel();
}

ObjectPtr HomeListModel::recordAt(int row) const
{
    return row >= 0 && row < rows.size() ? rows.recordAt(row) : nullptr;
}

int HomeListModel::rowOf(const ObjectPtr &record) const
{
    return record ? rows.rowOf(*record) : -1;
}

std::set<int> HomeListModel::rowsOfKeys(const std::set<quint64> &keys) const
{
    std::set<int> found;
    for (int row = 0; !keys.empty() && row < rows.size(); ++row) {
        if (keys.contains(rows.keyAt(row)))
            found.insert(found.end(), row);
    }
    return found;
}

RowKind HomeListModel::kindOf(int row) const
{
    const HomeRows::Kind kind = rows.placeAt(row).kind;
    return kind == HomeRows::Kind::Task || kind == HomeRows::Kind::Project ? RowKind::Item : RowKind::Header;
}

std::optional<int> HomeListModel::heightOf(int row) const
{
    const HomeRows::Place &place = rows.placeAt(row);
    switch (place.kind) {
    case HomeRows::Kind::Day:
        return std::max(dayHeight, lineHeight(Theme::FontRole::SmallStrong) + Theme::unit);
    case HomeRows::Kind::Notice:
        return std::max(noticeHeight, lineHeight(Theme::FontRole::Body) + Theme::unit);
    case HomeRows::Kind::Task:
        return place.hasProject ? std::max(rowHeightWithProject, heightOfLines(2))
                                : std::max(rowHeight, heightOfLines(1));
    case HomeRows::Kind::Project:
        break;
    }
    return std::max(rowHeight, heightOfLines(1));
}

QString HomeListModel::countInWords(int items) const
{
    if (items == 0)
        return localized(u"No events"_s);
    if (!isTickable())
        return TableModel::countInWords(items);
    return localizedCount(u"%1 tasks"_s, items);
}

int HomeListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : rows.size();
}

HomeRowContent HomeListModel::contentOf(const ObjectPtr &record) const
{
    if (const auto project = std::dynamic_pointer_cast<EntityProject>(record))
        return HomeRowContent::ofWeek(*project);
    const auto task = std::static_pointer_cast<EntityTask>(record);
    return isTickable() ? HomeRowContent::ofOverdue(*task) : HomeRowContent::ofWeek(*task);
}

QVariant HomeListModel::recordData(const ObjectPtr &record, int role) const
{
    // It may be deleted since the list was fetched.
    if (!record)
        return {};
    const HomeRowContent content = contentOf(record);
    switch (role) {
    case Qt::DisplayRole:
        return content.title;
    case ContentRole:
        return QVariant::fromValue(content);
    case Qt::AccessibleTextRole:
        return content.spoken();
    case Qt::CheckStateRole:
        return content.hasCheckBox ? QVariant(content.isDone ? Qt::Checked : Qt::Unchecked) : QVariant();
    default:
        return {};
    }
}

QVariant HomeListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    if (isItem(index.row()))
        return recordData(rows.recordAt(index.row()), role);
    const OptionalDate day = rows.placeAt(index.row()).day;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return day ? HomeRowContent::dayTitle(*day) : localized(u"No events"_s);
    case IsTodayRole:
        return day && Calendar::current().isDateInToday(*day);
    case IsNoticeRole:
        return !day;
    default:
        return {};
    }
}

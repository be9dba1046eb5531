#include "shell/SidebarModel.h"

#include "filters/ContactGroups.h"
#include "foundation/Localization.h"
#include "records/TaskPlacement.h"
#include "shell/Actions.h"
#include "shell/Screens.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::array dataKeyArray = {SidebarItem::Home, SidebarItem::Projects, SidebarItem::Contacts,
                                     SidebarItem::Tasks, SidebarItem::Calendar};
constexpr int contactsRow = 2;
constexpr int tasksRow = 3;

/// A child's index holds the number of its top row plus one; a top row's holds 0.
quintptr parentTag(int topRow)
{
    return static_cast<quintptr>(topRow) + 1;
}

} // namespace

SidebarModel::SidebarModel(QObject *parent)
    : QAbstractItemModel(parent)
{
    for (const SidebarItem item :
         {SidebarItem::Inbox, SidebarItem::Today, SidebarItem::Scheduled, SidebarItem::Someday,
          SidebarItem::Categories, SidebarItem::Delegated, SidebarItem::NotDone, SidebarItem::Done})
        taskRows.push_back({item, nullptr, {}});
    contactRows = {{SidebarItem::People, nullptr, {}}, {SidebarItem::Companies, nullptr, {}}};
}

void SidebarModel::loadContactsGroup()
{
    beginResetModel();
    contactRows.resize(2);
    for (const auto &groups : {DBWorker::allContactPrivateGroup(), DBWorker::allContactPrivateList()}) {
        for (const auto &group : groups)
            contactRows.push_back({SidebarItem::ContactGroup, group, {}});
    }
    endResetModel();
}

void SidebarModel::forgetGroups()
{
    beginResetModel();
    contactRows.resize(2);
    endResetModel();
}

bool SidebarModel::refreshGroups()
{
    std::size_t row = 2;
    for (const auto &groups : {DBWorker::allContactPrivateGroup(), DBWorker::allContactPrivateList()})
        for (const auto &group : groups)
            if (row >= contactRows.size() || contactRows[row++].group != group)
                return false;
    if (row != contactRows.size())
        return false;
    const QModelIndex top = index(contactsRow, 0);
    Q_EMIT dataChanged(index(0, 0, top), index(rowCount(top) - 1, 0, top));
    return true;
}

void SidebarModel::setBadges(const TaskBadges &badges)
{
    const std::array numbers = {badges.inbox,      badges.today,     badges.scheduled, badges.someday,
                                badges.categories, badges.delegated, badges.notDone,   badges.done};
    for (std::size_t row = 0; row < numbers.size(); ++row)
        taskRows[row].badge = numbers[row];
    const QModelIndex top = index(tasksRow, 0);
    Q_EMIT dataChanged(index(0, 0, top), index(rowCount(top) - 1, 0, top), {BadgeLeftRole, BadgeRightRole});
}

const std::vector<SidebarModel::Child> &SidebarModel::childrenOf(int topRow) const
{
    static const std::vector<Child> none;
    if (topRow == contactsRow)
        return contactRows;
    return topRow == tasksRow ? taskRows : none;
}

const SidebarModel::Child *SidebarModel::childAt(const QModelIndex &index) const
{
    if (!index.isValid() || index.internalId() == 0)
        return nullptr;
    return &childrenOf(static_cast<int>(index.internalId()) - 1)[static_cast<std::size_t>(index.row())];
}

SidebarItem SidebarModel::itemAt(const QModelIndex &index) const
{
    const Child *child = childAt(index);
    return child ? child->item : dataKeyArray[static_cast<std::size_t>(std::max(index.row(), 0))];
}

std::shared_ptr<EntityContactGroup> SidebarModel::groupAt(const QModelIndex &index) const
{
    const Child *child = childAt(index);
    return child ? child->group : nullptr;
}

QModelIndex SidebarModel::indexOf(SidebarItem item) const
{
    for (int top = 0; top < rowCount(); ++top) {
        if (dataKeyArray[static_cast<std::size_t>(top)] == item)
            return index(top, 0);
        const auto &children = childrenOf(top);
        const auto found = std::ranges::find(children, item, &Child::item);
        if (found != children.end() && item != SidebarItem::ContactGroup)
            return index(static_cast<int>(found - children.begin()), 0, index(top, 0));
    }
    return {};
}

QModelIndex SidebarModel::indexOfGroup(const EntityContactGroup &group) const
{
    const auto isGroup = [&](const Child &child) { return child.group.get() == &group; };
    const auto found = std::ranges::find_if(contactRows, isGroup);
    if (found == contactRows.end())
        return {};
    return index(static_cast<int>(found - contactRows.begin()), 0, index(contactsRow, 0));
}

QString SidebarModel::titleOf(SidebarItem item)
{
    return localized(QString::fromUtf16(Screens::of(item).title));
}

std::optional<SidebarItem> SidebarModel::itemOf(ListType list)
{
    const auto number = static_cast<std::size_t>(list);
    constexpr std::array items = {SidebarItem::Inbox,   SidebarItem::Today,      SidebarItem::Scheduled,
                                  SidebarItem::Someday, SidebarItem::Categories, SidebarItem::Delegated,
                                  SidebarItem::NotDone, SidebarItem::Done};
    return number < items.size() ? std::optional(items[number]) : std::nullopt;
}

std::optional<SidebarItem> SidebarModel::itemShowing(const ObjectPtr &record)
{
    if (const auto task = std::dynamic_pointer_cast<EntityTask>(record))
        return itemOf(TaskPlacement::searchList(*task));
    const ScreenDescription *screen = record ? Screens::showing(record->entity().name()) : nullptr;
    return screen ? std::optional(screen->item) : std::nullopt;
}

QModelIndex SidebarModel::index(int row, int column, const QModelIndex &parent) const
{
    if (column != 0 || row < 0 || row >= rowCount(parent))
        return {};
    return createIndex(row, column, parent.isValid() ? parentTag(parent.row()) : quintptr(0));
}

QModelIndex SidebarModel::parent(const QModelIndex &child) const
{
    if (!child.isValid() || child.internalId() == 0)
        return {};
    return createIndex(static_cast<int>(child.internalId()) - 1, 0, quintptr(0));
}

int SidebarModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return static_cast<int>(dataKeyArray.size());
    return parent.internalId() == 0 ? static_cast<int>(childrenOf(parent.row()).size()) : 0;
}

QString SidebarModel::titleAt(const QModelIndex &index) const
{
    const auto group = groupAt(index);
    return group ? group->title() : titleOf(itemAt(index));
}

Badge SidebarModel::badgeAt(const QModelIndex &index) const
{
    const Child *child = childAt(index);
    return child ? child->badge : Badge{};
}

quint64 SidebarModel::stableIdOf(const QModelIndex &index) const
{
    constexpr int bitsOfRow = 48;
    const auto group = groupAt(index);
    const quint64 item = static_cast<quint64>(itemAt(index)) + 1;
    return (item << bitsOfRow) + (group ? static_cast<quint64>(group->rowId()) : 0);
}

QString SidebarModel::badgesInWords(const QModelIndex &index) const
{
    const Badge badge = badgeAt(index);
    QStringList words;
    if (badge.right != 0)
        words << QString::number(badge.right);
    if (badge.left != 0)
        words << u"%1 %2"_s.arg(badge.left).arg(localized(u"overdue"_s));
    return words.join(u", "_s);
}

QString SidebarModel::tipAt(const QModelIndex &index) const
{
    const auto command = std::ranges::find_if(Actions::table(), [&](const ActionDescription &description) {
        return description.list == itemAt(index);
    });
    const QString title = titleAt(index).toHtmlEscaped();
    if (groupAt(index) || command == Actions::table().end())
        return u"<span>%1</span>"_s.arg(title);
    return u"<span>%1 (%2)</span>"_s.arg(
        title, Actions::shortcutOf(command->id).toString(QKeySequence::NativeText).toHtmlEscaped());
}

QVariant SidebarModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const auto group = groupAt(index);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return titleAt(index);
    case Qt::ToolTipRole:
        return tipAt(index);
    case Qt::AccessibleDescriptionRole:
        return badgesInWords(index);
    case StableIdRole:
        return stableIdOf(index);
    case IconRole:
        if (group && group->useGeneralFilter().value_or(true))
            return u"filter"_s;
        return QString::fromUtf16(Screens::of(itemAt(index)).icon);
    case ItemRole:
        return static_cast<int>(itemAt(index));
    case IsTopLevelRole:
        return isTopLevel(index);
    case BadgeLeftRole:
        return badgeAt(index).left;
    case BadgeRightRole:
        return badgeAt(index).right;
    default:
        return {};
    }
}

bool SidebarModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const auto group = groupAt(index);
    if (role != Qt::EditRole || !group || !ContactGroups::rename(*group, value.toString()))
        return false;
    Q_EMIT dataChanged(index, index);
    Q_EMIT groupRenamed(group);
    return true;
}

Qt::ItemFlags SidebarModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    if (groupAt(index))
        return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
    const bool isHeading = isTopLevel(index) && rowCount(index) > 0;
    return isHeading ? Qt::ItemIsEnabled : Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

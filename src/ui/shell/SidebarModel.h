#pragma once

#include "shell/SidebarItem.h"
#include "store/entities/Entities.h"
#include "store/queries/DBWorker.h"
#include "store/queries/ListType.h"

#include <QAbstractItemModel>

#include <array>
#include <vector>

/// The rows of the sidebar: five on top, those of "Contacts" and "Tasks" below theirs.
class SidebarModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum Role {
        IconRole = Qt::UserRole,
        ItemRole,
        IsTopLevelRole,
        BadgeLeftRole,
        BadgeRightRole,
        StableIdRole
    };

    explicit SidebarModel(QObject *parent = nullptr);

    /// Takes the contact groups anew, first the groups, then the lists.
    void loadContactsGroup();
    /// Takes the rows of the groups out.
    void forgetGroups();
    /// Whether the rows of the groups are those of the store; their titles are shown anew.
    bool refreshGroups();
    /// The numbers beside the rows of "Tasks".
    void setBadges(const TaskBadges &badges);

    SidebarItem itemAt(const QModelIndex &index) const;
    /// What a row is called as long as it exists, wherever it goes; never 0.
    quint64 stableIdOf(const QModelIndex &index) const;
    /// The group that a row stands for, or null.
    std::shared_ptr<EntityContactGroup> groupAt(const QModelIndex &index) const;
    /// The row of an item; an invalid index for `ContactGroup`, of which there may be many.
    QModelIndex indexOf(SidebarItem item) const;
    QModelIndex indexOfGroup(const EntityContactGroup &group) const;
    bool isTopLevel(const QModelIndex &index) const { return index.isValid() && !index.parent().isValid(); }
    static QString titleOf(SidebarItem item);
    /// The row whose screen shows a record that was searched for; absent where there is none.
    static std::optional<SidebarItem> itemShowing(const ObjectPtr &record);
    /// The row of a task list; absent for a list that has no row.
    static std::optional<SidebarItem> itemOf(ListType list);

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &) const override { return 1; }
    QVariant data(const QModelIndex &index, int role) const override;
    /// Only the titles of groups can be changed.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

Q_SIGNALS:
    void groupRenamed(const std::shared_ptr<EntityContactGroup> &group);

private:
    struct Child
    {
        SidebarItem item;
        std::shared_ptr<EntityContactGroup> group;
        Badge badge;
    };
    const std::vector<Child> &childrenOf(int topRow) const;
    const Child *childAt(const QModelIndex &index) const;
    QString titleAt(const QModelIndex &index) const;
    /// The title, which may be cut on the screen, and the keys that lead there.
    QString tipAt(const QModelIndex &index) const;
    QString badgesInWords(const QModelIndex &index) const;
    Badge badgeAt(const QModelIndex &index) const;

    std::vector<Child> contactRows;
    std::vector<Child> taskRows;
};

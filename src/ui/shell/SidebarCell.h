#pragma once

#include <QStyledItemDelegate>

/// Paints a row of the sidebar: icon, title, the arrow of a heading, the badge.
class SidebarCell : public QStyledItemDelegate
{
    Q_OBJECT
public:
    static constexpr int topRowHeight = 45;
    static constexpr int childRowHeight = 33;

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;
};

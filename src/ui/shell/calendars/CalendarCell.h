#pragma once

#include <QAbstractItemDelegate>

/// Paints the rows of the calendar chooser: `TableCalendarsHeader` for an account, `TableCalendarsCell` for a
/// calendar with its colour, wider for the default one, and a check mark if it is chosen.
class CalendarCell : public QAbstractItemDelegate
{
    Q_OBJECT
public:
    using QAbstractItemDelegate::QAbstractItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};

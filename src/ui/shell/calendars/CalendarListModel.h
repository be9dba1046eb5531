#pragma once

#include "calendarsync/CalendarChooser.h"

#include <QAbstractListModel>

/// The calendars of the chooser under the headings of their accounts.
class CalendarListModel : public QAbstractListModel
{
    Q_OBJECT
public:
    enum Role { ColorRole = Qt::UserRole, IsHeadingRole, IsDefaultRole, IsSelectedRole, IdentifierRole };

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// Shows the calendars and the choice as they are now; a reset, if they are others.
    void reload();
    void toggle(const QModelIndex &index);
    void setDefault(const QModelIndex &index);
    bool canBeDefault(const QModelIndex &index) const { return chooser.canBeDefault(index.row()); }
    CalendarChooser::Emptiness emptiness() const { return chooser.emptiness(); }
    /// Makes a calendar of the program's own. False if that is not possible.
    bool makeCalendar();

private:
    QString spokenText(int row) const;
    void changed();

    CalendarChooser chooser;
};

#include "shell/calendars/CalendarListModel.h"

#include "calendarsync/CalendarEvent.h"
#include "foundation/Localization.h"

#include <QColor>

using namespace Qt::Literals::StringLiterals;

int CalendarListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(chooser.rows().size());
}

/// What a screen reader says of a row.
QString CalendarListModel::spokenText(int row) const
{
    QStringList words = {chooser.titleAt(row)};
    if (chooser.isDefault(row))
        words.append(localized(u"default calendar"_s));
    return words.join(u", "_s);
}

QVariant CalendarListModel::data(const QModelIndex &index, int role) const
{
    const int row = index.row();
    const EKCalendar *calendar = chooser.calendarAt(row);
    switch (role) {
    case Qt::DisplayRole:
        return chooser.titleAt(row);
    case Qt::ToolTipRole:
        // A tip guesses whether its text is markup.
        return Qt::convertFromPlainText(chooser.titleAt(row));
    case Qt::AccessibleTextRole:
        return spokenText(row);
    case Qt::CheckStateRole:
        return calendar ? QVariant(chooser.isSelected(row) ? Qt::Checked : Qt::Unchecked) : QVariant();
    case IsHeadingRole:
        return calendar == nullptr;
    case IsDefaultRole:
        return chooser.isDefault(row);
    case IsSelectedRole:
        return chooser.isSelected(row);
    case IdentifierRole:
        return calendar ? calendar->calendarIdentifier : QVariant();
    case ColorRole: {
        if (!calendar)
            return {};
        const EKColor color = CalendarEvent::getColorOfCalendar(*calendar);
        return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                                static_cast<float>(color.blue));
    }
    default:
        return {};
    }
}

/// A heading cannot be picked.
Qt::ItemFlags CalendarListModel::flags(const QModelIndex &index) const
{
    return chooser.calendarAt(index.row()) ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

void CalendarListModel::changed()
{
    Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

void CalendarListModel::reload()
{
    CalendarChooser present = chooser;
    if (!present.reload())
        return;
    beginResetModel();
    chooser = std::move(present);
    endResetModel();
}

void CalendarListModel::toggle(const QModelIndex &index)
{
    if (chooser.toggle(index.row()))
        changed();
}

void CalendarListModel::setDefault(const QModelIndex &index)
{
    if (chooser.setDefault(index.row()))
        changed();
}

bool CalendarListModel::makeCalendar()
{
    beginResetModel();
    const bool isMade = chooser.makeCalendar();
    endResetModel();
    return isMade;
}

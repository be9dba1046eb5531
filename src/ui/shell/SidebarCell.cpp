#include "shell/SidebarCell.h"

#include "foundation/Localization.h"
#include "shell/SidebarModel.h"
#include "widgets/BadgePainter.h"
#include "widgets/Direction.h"
#include "widgets/Icons.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"

#include <QLineEdit>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

constexpr int topIconLeft = 18;
constexpr int childIconLeft = 34;
/// In a narrow sidebar the names get the room of the indent.
constexpr int narrowRow = 200;
constexpr int narrowChildIconLeft = topIconLeft;
constexpr int narrowTextGap = 8;
constexpr int topIconSize = 20;
constexpr int childIconSize = 18;
constexpr int textGap = 11;
constexpr int arrowSize = 14;
constexpr int arrowMargin = 16;
constexpr int plateMargin = 8;
constexpr int plateRadius = 7;

static int childLeft(const QRect &row)
{
    return row.width() < narrowRow ? narrowChildIconLeft : childIconLeft;
}

static int gapIn(const QRect &row)
{
    return row.width() < narrowRow ? narrowTextGap : textGap;
}

static void paintPlate(QPainter &painter, const QStyleOptionViewItem &option)
{
    const QRectF plate = QRectF(option.rect).adjusted(plateMargin, 1, -plateMargin, -1);
    painter.setPen(Qt::NoPen);
    if (option.state.testFlag(QStyle::State_Selected))
        painter.setBrush(Theme::sidebarSelection);
    else if (option.state.testFlag(QStyle::State_MouseOver))
        painter.setBrush(Theme::sidebarHover);
    else
        painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(plate, plateRadius, plateRadius);
    if (!option.state.testFlag(QStyle::State_HasFocus))
        return;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Theme::sidebarFocus, 2));
    painter.drawRoundedRect(plate.adjusted(1, 1, -1, -1), plateRadius - 1, plateRadius - 1);
}

static QColor textColour(const QStyleOptionViewItem &option, bool isTop)
{
    if (option.state.testFlag(QStyle::State_Selected))
        return Theme::textOnVeil;
    return isTop ? Theme::sidebarText : Theme::sidebarText.darker(108);
}

static void paintArrow(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    if (!index.model()->hasChildren(index))
        return;
    const QRect atEnd(option.rect.right() - arrowMargin - arrowSize, option.rect.top(), arrowSize,
                      option.rect.height());
    const bool isRightToLeft = option.direction == Qt::RightToLeft;
    const QString closed = isRightToLeft ? u"chevron-left"_s : u"chevron-right"_s;
    Icons::paint(painter, QStyle::visualRect(option.direction, option.rect, atEnd),
                 option.state.testFlag(QStyle::State_Open) ? u"chevron-down"_s : closed, Theme::sidebarQuiet,
                 arrowSize);
}

void SidebarCell::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const bool isTop = index.data(SidebarModel::IsTopLevelRole).toBool();
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const auto placed = [&](const QRect &rect) {
        return QStyle::visualRect(option.direction, option.rect, rect);
    };
    const int size = isTop ? topIconSize : childIconSize;
    const QRect icon(isTop ? topIconLeft : childLeft(option.rect), option.rect.top(), size,
                     option.rect.height());
    const BadgePainter badge(index.data(SidebarModel::BadgeLeftRole).toInt(),
                             index.data(SidebarModel::BadgeRightRole).toInt(),
                             Theme::font(Theme::FontRole::SmallStrong));
    const int textLeft = icon.right() + 1 + gapIn(option.rect);
    const QRect text(textLeft, option.rect.top(),
                     option.rect.right() - textLeft - badge.width() - narrowTextGap / 2,
                     option.rect.height());

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    paintPlate(*painter, option);
    Icons::paint(*painter, placed(icon), index.data(SidebarModel::IconRole).toString(),
                 isSelected ? Theme::sidebarAccent : Theme::sidebarQuiet, size);
    painter->setFont(Theme::font(isTop ? Theme::FontRole::SidebarTop : Theme::FontRole::SidebarChild));
    painter->setPen(textColour(option, isTop));
    Direction::drawLine(*painter, placed(text), option.direction, index.data().toString());
    paintArrow(*painter, option, index);
    badge.paint(*painter, option.rect, option.direction);
    painter->restore();
}

QSize SidebarCell::sizeHint(const QStyleOptionViewItem &, const QModelIndex &index) const
{
    return {0, index.data(SidebarModel::IsTopLevelRole).toBool() ? topRowHeight : childRowHeight};
}

QWidget *SidebarCell::createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &) const
{
    auto *field = new QLineEdit(parent);
    field->setObjectName(u"fieldGroupTitle"_s);
    field->setAccessibleName(localized(u"Name of the group"_s));
    return field;
}

/// Over the title, so that the icon stays in sight.
void SidebarCell::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                       const QModelIndex &) const
{
    constexpr int paddingOfField = 6;
    const int left = childLeft(option.rect) + childIconSize + gapIn(option.rect) - paddingOfField;
    const QRect place(left, option.rect.top() + 1, option.rect.right() - left - plateMargin,
                      option.rect.height() - 2);
    editor->setGeometry(QStyle::visualRect(option.direction, option.rect, place));
}

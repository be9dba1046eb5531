#include "shell/calendars/CalendarCell.h"

#include "foundation/Localization.h"
#include "shell/calendars/CalendarListModel.h"
#include "widgets/Direction.h"
#include "widgets/Icons.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int rowHeight = 36;
constexpr int headingHeight = 40;
constexpr int lineInset = 2 * Theme::unit;
constexpr int dotHeight = 11;
constexpr int widthOfDefault = 19;
constexpr int widthOfOthers = 11;
constexpr int checkSize = 20;

void write(QPainter &painter, const QRect &where, Qt::LayoutDirection direction, Qt::Alignment vertical,
           const QFont &font, const QColor &color, const QString &text)
{
    painter.setFont(font);
    painter.setPen(color);
    Direction::drawLine(painter, where, direction, text, vertical);
}

void paintHeading(QPainter &painter, const QStyleOptionViewItem &option, const QString &title)
{
    write(painter, option.rect.adjusted(lineInset, 0, -lineInset, -Theme::unit), option.direction,
          Qt::AlignBottom, Theme::font(Theme::FontRole::SmallStrong), Theme::secondaryText, title);
}

void paintCalendar(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index)
{
    const QRect row = option.rect.adjusted(Theme::unit / 2, 1, -Theme::unit / 2, -1);
    painter.setPen(Qt::NoPen);
    if (option.state & QStyle::State_MouseOver) {
        painter.setBrush(Theme::inactiveSelection);
        painter.drawRoundedRect(row, Theme::controlRadius, Theme::controlRadius);
    }
    const auto placed = [&](const QRect &rect) {
        return QStyle::visualRect(option.direction, option.rect, rect);
    };
    const QRect line = option.rect.adjusted(lineInset, 0, -lineInset, 0);
    const int dotWidth =
        index.data(CalendarListModel::IsDefaultRole).toBool() ? widthOfDefault : widthOfOthers;
    QRect dot(line.left() + (widthOfDefault - dotWidth) / 2, 0, dotWidth, dotHeight);
    dot.moveTop(line.center().y() - dotHeight / 2);
    painter.setBrush(index.data(CalendarListModel::ColorRole).value<QColor>());
    painter.drawRoundedRect(placed(dot), dotHeight / 2.0, dotHeight / 2.0);
    const QRect check(line.right() - checkSize + 1, line.top(), checkSize, line.height());
    QRect title(line.left() + widthOfDefault + Theme::unit + 4, line.top(),
                line.width() - widthOfDefault - 2 * Theme::unit - checkSize - 4, line.height());
    if (index.data(CalendarListModel::IsDefaultRole).toBool()) {
        const QFont small = Theme::font(Theme::FontRole::Small);
        const QString word = localized(u"Default"_s);
        const int wordWidth = QFontMetrics(small).horizontalAdvance(word) + 1;
        title.setWidth(title.width() - wordWidth - Theme::unit);
        const QRect place(title.right() + Theme::unit, line.top(), wordWidth, line.height());
        write(painter, placed(place), option.direction, Qt::AlignVCenter, small, Theme::secondaryText, word);
    }
    const bool isSelected = index.data(CalendarListModel::IsSelectedRole).toBool();
    write(painter, placed(title), option.direction, Qt::AlignVCenter,
          Theme::font(isSelected ? Theme::FontRole::BodyStrong : Theme::FontRole::Body), Theme::text,
          index.data().toString());
    // An empty circle says that the calendar can be chosen.
    Icons::paint(painter, placed(check), isSelected ? u"check-done"_s : u"check-open"_s,
                 isSelected ? Theme::accent : Theme::checkBox, checkSize);
    if (isSelected)
        Icons::paint(painter, placed(check), u"check-mark"_s, Theme::textOnAccent, checkSize);
    if (option.state & QStyle::State_HasFocus)
        MorvaneStyle::drawFocusRing(painter, row, Theme::controlRadius, Theme::focusRing);
}

} // namespace

void CalendarCell::paint(QPainter *painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index) const
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (index.data(CalendarListModel::IsHeadingRole).toBool())
        paintHeading(*painter, option, index.data().toString());
    else
        paintCalendar(*painter, option, index);
    painter->restore();
}

QSize CalendarCell::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const bool isHeading = index.data(CalendarListModel::IsHeadingRole).toBool();
    const int text = QFontMetrics(Theme::font(Theme::FontRole::Body)).height() + Theme::unit;
    return {option.rect.width(), std::max(text, isHeading ? headingHeight : rowHeight)};
}

#include "shell/start/StartWindowItem.h"

#include "widgets/Icons.h"
#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int itemIconSize = 28;
constexpr int itemPadding = 2 * Theme::unit;
constexpr int itemTextGap = 2;
constexpr QColor pressedGround(230, 230, 230, 51);

QFont titleFont()
{
    return Theme::font(Theme::FontRole::BodyStrong);
}

QFont lineFont()
{
    return Theme::font(Theme::FontRole::Small);
}

} // namespace

StartWindowItem::StartWindowItem(const QString &icon, const QString &title, const QString &detail,
                                 QWidget *parent)
    : QAbstractButton(parent)
    , iconName(icon)
    , line(detail)
{
    setText(title);
    setAccessibleName(title);
    setAccessibleDescription(detail);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize StartWindowItem::sizeHint() const
{
    const QFontMetrics title(titleFont());
    const QFontMetrics detail(lineFont());
    const int words = std::max(title.horizontalAdvance(text()), detail.horizontalAdvance(line));
    return {3 * itemPadding + itemIconSize + words,
            2 * itemPadding + title.height() + itemTextGap + detail.height()};
}

void StartWindowItem::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF ground = QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5);
    if (isDown() || underMouse()) {
        painter.setBrush(isDown() ? pressedGround : QColor(Theme::sidebarHover));
        painter.drawRoundedRect(ground, Theme::controlRadius, Theme::controlRadius);
    }
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Theme::sidebarFocus, 2));
        painter.drawRoundedRect(ground, Theme::controlRadius, Theme::controlRadius);
    }
    const auto placed = [this](const QRect &where) {
        return QStyle::visualRect(layoutDirection(), rect(), where);
    };
    const QRect icon(itemPadding, (height() - itemIconSize) / 2, itemIconSize, itemIconSize);
    Icons::paint(painter, placed(icon), iconName, Theme::startText, itemIconSize);
    const int left = icon.right() + itemPadding;
    const QFontMetrics title(titleFont());
    const QRect upper(left, itemPadding, width() - left - itemPadding, title.height());
    const QRect lower(left, upper.bottom() + 1 + itemTextGap, upper.width(), height());
    painter.setPen(Theme::textOnVeil);
    painter.setFont(titleFont());
    painter.drawText(placed(upper), Qt::AlignLeading | Qt::AlignTop, text());
    painter.setPen(Theme::startText);
    painter.setFont(lineFont());
    painter.drawText(placed(lower), Qt::AlignLeading | Qt::AlignTop, line);
}

void StartWindowItem::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else if (event->key() == Qt::Key_Down)
        focusNextPrevChild(true);
    else if (event->key() == Qt::Key_Up)
        focusNextPrevChild(false);
    else
        QAbstractButton::keyPressEvent(event);
}

void StartWindowItem::enterEvent(QEnterEvent *event)
{
    QAbstractButton::enterEvent(event);
    update();
}

void StartWindowItem::leaveEvent(QEvent *event)
{
    QAbstractButton::leaveEvent(event);
    update();
}

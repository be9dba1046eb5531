#include "calendarviews/DaysControllerButton.h"

#include "foundation/Localization.h"
#include "widgets/Accessibility.h"
#include "widgets/Appearance.h"
#include "widgets/Icons.h"
#include "widgets/KeyTip.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Shapes.h"
#include "widgets/Theme.h"

#include <QAccessibleActionInterface>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

constexpr int partCount = 3;
constexpr int arrowWidth = 32;
constexpr int wordMargin = 14;

DaysControllerButton::DaysControllerButton(QWidget *parent)
    : QWidget(parent)
{
    AccessibleParts parts{
        .count = [] { return partCount; },
        .part =
            [this](quint64 key) {
                const int part = static_cast<int>(key) - 1;
                AccessiblePart told{.name = nameOf(part), .role = QAccessible::Button, .place = rectOf(part)};
                told.state.focusable = true;
                told.state.focused = hasFocus() && focused == part;
                told.actions = {
                    {QAccessibleActionInterface::pressAction(), [this, part] { Q_EMIT pressed(part - 1); }}};
                return told;
            }};
    parts.focused = [this] { return hasFocus() ? static_cast<quint64>(focused) + 1 : 0; };
    Accessibility::describe(*this, {.role = QAccessible::Grouping,
                                    .name = [] { return localized(u"Go to"_s); },
                                    .parts = std::move(parts)});
    Appearance::setFont(*this, Theme::FontRole::Body);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QString DaysControllerButton::nameOf(int part) const
{
    return part == 0 ? localized(u"Previous"_s) : part == 1 ? localized(u"Today"_s) : localized(u"Next"_s);
}

QSize DaysControllerButton::sizeHint() const
{
    const int word = fontMetrics().horizontalAdvance(nameOf(1)) + 2 * wordMargin;
    return {2 * arrowWidth + word, std::max(Theme::controlHeight, fontMetrics().height() + Theme::unit)};
}

QRect DaysControllerButton::rectOf(int part) const
{
    const int word = width() - 2 * arrowWidth;
    const int left = part == 0 ? 0 : part == 1 ? arrowWidth : arrowWidth + word;
    return QStyle::visualRect(layoutDirection(), rect(), {left, 0, part == 1 ? word : arrowWidth, height()});
}

int DaysControllerButton::partAt(QPoint point) const
{
    for (int part = 0; part < partCount; ++part) {
        if (rectOf(part).contains(point))
            return part;
    }
    return -1;
}

void DaysControllerButton::paintPart(QPainter &painter, int part) const
{
    const QRect place = rectOf(part);
    if (part == 1) {
        painter.setPen(Theme::text);
        painter.drawText(place, Qt::AlignCenter, nameOf(part));
        return;
    }
    constexpr int iconSize = 18;
    const bool pointsRight = (part == 2) != isRightToLeft();
    Icons::paint(painter, place, pointsRight ? u"chevron-right"_s : u"chevron-left"_s, Theme::text, iconSize);
}

bool DaysControllerButton::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip || partTips.isEmpty())
        return QWidget::event(event);
    const auto &wish = static_cast<const QHelpEvent &>(*event);
    const int part = partAt(wish.pos());
    keytip::show(wish, *this, rectOf(part), partTips.value(part));
    return true;
}

/// The line beside a part that is pressed is not drawn.
void DaysControllerButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF bounds = Shapes::bounds(rect());
    Shapes::drawRounded(&painter, bounds, Theme::control, Theme::controlBorder);
    const int lit = held >= 0 ? held : hovered;
    if (lit >= 0) {
        painter.save();
        QPainterPath inside;
        inside.addRoundedRect(bounds.adjusted(1, 1, -1, -1), Theme::controlRadius - 1,
                              Theme::controlRadius - 1);
        painter.setClipPath(inside);
        painter.fillRect(rectOf(lit), QColor(held >= 0 ? Theme::controlPressed : Theme::hover));
        painter.restore();
    }
    for (int part = 0; part < partCount; ++part)
        paintPart(painter, part);
    for (const int before : {1, 2}) {
        if (held == before || held == before - 1)
            continue;
        const QRect next = rectOf(before);
        const int edge = isRightToLeft() ? next.right() : next.left();
        painter.fillRect(QRect(edge, 7, 1, height() - 14), QColor(Theme::edge));
    }
    if (hasFocus())
        MorvaneStyle::drawFocusRing(painter, QRectF(rectOf(focused)).adjusted(2, 2, -2, -2),
                                    Theme::controlRadius - 2, Theme::focusRing);
}

void DaysControllerButton::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    held = partAt(event->position().toPoint());
    update();
}

void DaysControllerButton::mouseReleaseEvent(QMouseEvent *event)
{
    const int part = partAt(event->position().toPoint());
    const bool isClick = event->button() == Qt::LeftButton && part >= 0 && part == held;
    held = -1;
    update();
    if (isClick)
        Q_EMIT pressed(part - 1);
}

void DaysControllerButton::mouseMoveEvent(QMouseEvent *event)
{
    hovered = partAt(event->position().toPoint());
    update();
}

void DaysControllerButton::leaveEvent(QEvent *)
{
    hovered = -1;
    update();
}

void DaysControllerButton::keyPressEvent(QKeyEvent *event)
{
    const int forward = isRightToLeft() ? -1 : 1;
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        focused = std::clamp(focused + (event->key() == Qt::Key_Left ? -forward : forward), 0, partCount - 1);
        Accessibility::focusMoved(*this);
        return update();
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return Q_EMIT pressed(focused - 1);
    default:
        QWidget::keyPressEvent(event);
    }
}

void DaysControllerButton::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    Accessibility::focusMoved(*this);
}

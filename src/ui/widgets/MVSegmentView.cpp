#include "widgets/MVSegmentView.h"

#include "widgets/Accessibility.h"
#include "widgets/Appearance.h"
#include "widgets/KeyTip.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"

#include <QAccessibleActionInterface>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>

using namespace Qt::Literals::StringLiterals;

constexpr int sidePadding = 14;

MVSegmentView::MVSegmentView(const QStringList &titles, QWidget *parent)
    : QWidget(parent)
    , words(titles)
{
    describe();
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    Appearance::setFont(*this, Theme::FontRole::Small);
}

void MVSegmentView::describe()
{
    const auto segment = [this](quint64 key) {
        const int index = static_cast<int>(key) - 1;
        AccessiblePart part{
            .name = words.at(index), .role = QAccessible::RadioButton, .place = rectOf(index)};
        part.state.checkable = true;
        part.state.checked = index == selected;
        part.state.focusable = true;
        part.state.focused = hasFocus() && index == focused;
        part.actions = {
            {QAccessibleActionInterface::pressAction(), [this, index] { choose(index); }, u"Space"_s},
            {QAccessibleActionInterface::setFocusAction(), [this, index] {
                 setFocus();
                 moveFocus(index - focused);
             }}};
        return part;
    };
    Accessibility::describe(*this, {.role = QAccessible::Grouping,
                                    .parts = {.count = [this] { return static_cast<int>(words.size()); },
                                              .part = segment,
                                              .focused = [this]() -> quint64 {
                                                  return hasFocus() ? static_cast<quint64>(focused) + 1 : 0;
                                              }}});
}

void MVSegmentView::setSelectedIndex(int index)
{
    selected = index;
    focused = std::max(index, 0);
    Accessibility::partsChanged(*this);
    update();
}

QSize MVSegmentView::sizeHint() const
{
    int width = 0;
    for (const QString &word : words)
        width += fontMetrics().horizontalAdvance(word) + 2 * sidePadding;
    return {width + 1, std::max(Theme::controlHeight - 2, fontMetrics().height() + 12)};
}

QRect MVSegmentView::rectOf(int index) const
{
    int left = 0;
    for (int i = 0; i < index; ++i)
        left += fontMetrics().horizontalAdvance(words.at(i)) + 2 * sidePadding;
    const QRect rect(left, 0, fontMetrics().horizontalAdvance(words.at(index)) + 2 * sidePadding, height());
    return isRightToLeft() ? QRect(width() - 1 - rect.x() - rect.width(), 0, rect.width(), height()) : rect;
}

int MVSegmentView::indexAt(const QPoint &point) const
{
    for (int index = 0; index < words.size(); ++index) {
        if (rectOf(index).contains(point))
            return index;
    }
    return -1;
}

void MVSegmentView::choose(int index)
{
    if (index < 0 || (index == selected && !canBeNone))
        return;
    setSelectedIndex(index == selected ? -1 : index);
    focused = index;
    Q_EMIT selectedIndexChanged(selected);
}

bool MVSegmentView::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip || partTips.isEmpty())
        return QWidget::event(event);
    const auto &wish = static_cast<const QHelpEvent &>(*event);
    const int part = indexAt(wish.pos());
    keytip::show(wish, *this, rectOf(part), partTips.value(part));
    return true;
}

void MVSegmentView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath shape;
    shape.addRoundedRect(frame, Theme::controlRadius, Theme::controlRadius);
    painter.fillPath(shape, Theme::control);
    painter.setClipPath(shape);
    for (int index = 0; index < words.size(); ++index) {
        const QRect place = rectOf(index);
        if (index == selected || index == hovered)
            painter.fillRect(place, QColor(index == selected ? Theme::selection : Theme::hover));
        painter.setPen(index == selected ? Theme::selectedText : Theme::secondaryText);
        painter.drawText(place, Qt::AlignCenter, words.at(index));
        painter.setPen(Theme::controlBorder);
        if (index > 0)
            painter.drawLine(isRightToLeft() ? place.topRight() : place.topLeft(),
                             isRightToLeft() ? place.bottomRight() : place.bottomLeft());
    }
    painter.setClipping(false);
    painter.strokePath(shape, QPen(Theme::controlBorder));
    if (hasFocus())
        MorvaneStyle::drawFocusRing(painter, rectOf(focused), Theme::controlRadius, Theme::focusRing);
}

void MVSegmentView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        choose(indexAt(event->position().toPoint()));
}

void MVSegmentView::mouseMoveEvent(QMouseEvent *event)
{
    hovered = indexAt(event->position().toPoint());
    update();
}

void MVSegmentView::leaveEvent(QEvent *)
{
    hovered = -1;
    update();
}

void MVSegmentView::moveFocus(int step)
{
    focused = std::clamp(focused + step, 0, static_cast<int>(words.size()) - 1);
    Accessibility::focusMoved(*this);
    update();
}

void MVSegmentView::keyPressEvent(QKeyEvent *event)
{
    const int forward = isRightToLeft() ? -1 : 1;
    switch (event->key()) {
    case Qt::Key_Left:
        return moveFocus(-forward);
    case Qt::Key_Right:
        return moveFocus(forward);
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return choose(focused);
    default:
        QWidget::keyPressEvent(event);
    }
}

void MVSegmentView::focusInEvent(QFocusEvent *event)
{
    focused = std::max(selected, 0);
    QWidget::focusInEvent(event);
    // Qt tells of the whole row only after this.
    QMetaObject::invokeMethod(
        this, [this] { Accessibility::focusMoved(*this); }, Qt::QueuedConnection);
}

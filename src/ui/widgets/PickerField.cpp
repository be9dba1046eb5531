#include "widgets/PickerField.h"

#include "foundation/Localization.h"
#include "widgets/Accessibility.h"
#include "widgets/ClearKey.h"
#include "widgets/Icons.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"

#include <QAccessibleActionInterface>
#include <QKeyEvent>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

constexpr int iconRoomWidth = 32;
constexpr int pickerIconSize = 16;
constexpr int pickerWidth = 200;
constexpr int leastPickerWidth = 96;

PickerField::PickerField(const QString &iconName, QWidget *parent)
    : QWidget(parent)
    , icon(iconName)
{
    describe();
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
}

/// The value is a part of the name: nothing else of a button is read.
void PickerField::describe()
{
    const auto actions = [this] {
        std::vector<AccessibleAction> possible = {
            {QAccessibleActionInterface::pressAction(), [this] { Q_EMIT pressed(); }, u"Space"_s}};
        if (canClear())
            possible.push_back({localized(u"Delete"_s), [this] { Q_EMIT cleared(); }, u"Delete"_s});
        return possible;
    };
    const auto name = [this] {
        return accessibleName().isEmpty() ? text() : accessibleName() + u", "_s + text();
    };
    Accessibility::describe(*this, {.role = QAccessible::Button, .name = name, .actions = actions});
}

QSize PickerField::sizeHint() const
{
    return {pickerWidth, std::max(Theme::controlHeight, fontMetrics().height() + 10)};
}

QSize PickerField::minimumSizeHint() const
{
    return {leastPickerWidth, sizeHint().height()};
}

void PickerField::setClearable(bool clearable)
{
    isClearable = clearable;
    update();
}

void PickerField::setValue(const QString &words, const QString &wordsForNone)
{
    const QString former = text();
    value = words;
    placeholder = wordsForNone;
    if (text() != former)
        Accessibility::nameChanged(*this);
    update();
}

QRect PickerField::crossRect() const
{
    const QRect atEnd(width() - iconRoomWidth, 0, iconRoomWidth, height());
    return canClear() ? QStyle::visualRect(layoutDirection(), rect(), atEnd) : QRect();
}

void PickerField::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Theme::controlBorder);
    painter.setBrush(underMouse() ? Theme::hover : Theme::control);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::controlRadius,
                            Theme::controlRadius);
    const auto placed = [this](const QRect &rect) {
        return QStyle::visualRect(layoutDirection(), this->rect(), rect);
    };
    Icons::paint(painter, placed(QRect(0, 0, iconRoomWidth, height())), icon,
                 hasValue() ? Theme::accent : Theme::secondaryText, pickerIconSize);
    painter.setPen(hasValue() ? Theme::text : Theme::placeholderText);
    const QRect place(iconRoomWidth, 0,
                      width() - (isClearable ? 2 * iconRoomWidth : iconRoomWidth + Theme::unit), height());
    painter.drawText(placed(place),
                     QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter),
                     fontMetrics().elidedText(text(), Qt::ElideRight, place.width()));
    if (canClear())
        Icons::paint(painter, crossRect(), u"clear"_s, Theme::secondaryText, pickerIconSize);
    if (hasFocus())
        MorvaneStyle::drawFocusRing(painter, rect(), Theme::controlRadius, Theme::focusRing);
}

void PickerField::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (crossRect().contains(event->position().toPoint()))
        Q_EMIT cleared();
    else
        Q_EMIT pressed();
}

/// The Delete key belongs to the field although a menu has it too.
bool PickerField::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && ClearKey::is(static_cast<QKeyEvent &>(*event)))
        event->accept();
    return QWidget::event(event);
}

void PickerField::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Down)
        Q_EMIT pressed();
    else if (!ClearKey::is(*event))
        QWidget::keyPressEvent(event);
    else if (canClear())
        Q_EMIT cleared();
}

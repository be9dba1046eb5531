#include "filters/StripButton.h"

#include "widgets/Appearance.h"
#include "widgets/Icons.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

constexpr int iconSide = 18;
constexpr int fieldPadding = 8;
constexpr int iconGap = 6;

StripButton::StripButton(QString icon, QString onIcon, QWidget *parent)
    : QAbstractButton(parent)
    , iconOff(std::move(icon))
    , iconOn(std::move(onIcon))
{
    Appearance::setFont(*this, Theme::FontRole::Small);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

void StripButton::setLook(Look shownLook, const QString &words)
{
    look = shownLook;
    setText(words);
    setAccessibleName(words);
    updateGeometry();
    update();
}

QSize StripButton::sizeHint() const
{
    return {2 * fieldPadding + iconSide + iconGap + fontMetrics().horizontalAdvance(text()) + 1,
            std::max(Theme::controlHeight, fontMetrics().height() + Theme::unit)};
}

QSize StripButton::minimumSizeHint() const
{
    return {2 * fieldPadding + iconSide, sizeHint().height()};
}

QColor StripButton::ink() const
{
    switch (look) {
    case Look::Resting:
        return Theme::filterInactive;
    case Look::On:
        return Theme::selectedText;
    case Look::Off:
        break;
    }
    return Theme::filterOff;
}

void StripButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isHeld = isDown() || isOpen();
    if (isEnabled() && (isHeld || underMouse())) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(isHeld ? Theme::inactiveSelection : Theme::controlPressed);
        painter.drawRoundedRect(rect(), Theme::controlRadius, Theme::controlRadius);
    }
    const auto placed = [this](const QRect &where) {
        return QStyle::visualRect(layoutDirection(), rect(), where);
    };
    const int iconLeft = width() - fieldPadding - iconSide;
    Icons::paint(painter, placed({iconLeft, 0, iconSide, height()}), look == Look::On ? iconOn : iconOff,
                 ink(), iconSide);
    painter.setPen(ink());
    const QRect words(fieldPadding, 0, iconLeft - iconGap - fieldPadding, height());
    if (words.width() > 0)
        painter.drawText(placed(words),
                         QStyle::visualAlignment(layoutDirection(), Qt::AlignRight | Qt::AlignVCenter),
                         fontMetrics().elidedText(text(), Qt::ElideRight, words.width()));
    if (hasFocus())
        MorvaneStyle::drawFocusRing(painter, rect(), Theme::controlRadius, Theme::focusRing);
}

void StripButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Down)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

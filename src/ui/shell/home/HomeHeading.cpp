#include "shell/home/HomeHeading.h"

#include "widgets/Accessibility.h"
#include "widgets/Appearance.h"
#include "widgets/Direction.h"

#include <QPainter>

HomeHeading::HomeHeading(Theme::FontRole fontRole, Theme::Role textColour, QWidget *parent)
    : QWidget(parent)
    , colour(textColour)
{
    Accessibility::describe(*this, {.role = QAccessible::Heading});
    Appearance::setFont(*this, fontRole);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void HomeHeading::setText(const QString &text)
{
    words = text;
    setAccessibleName(text);
    updateGeometry();
    update();
}

QSize HomeHeading::sizeHint() const
{
    const QMargins margins = contentsMargins();
    return {fontMetrics().horizontalAdvance(words) + 1 + margins.left() + margins.right(),
            fontMetrics().height()};
}

void HomeHeading::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(colour);
    Direction::drawLine(painter, contentsRect(), layoutDirection(), words);
}

#include "calendarviews/CalendarSlide.h"

#include "widgets/Animations.h"

#include <QPainter>

CalendarSlide::CalendarSlide(const QPixmap &oldPicture, const QPixmap &newPicture, bool fromRight,
                             const QRect &place, QWidget *parent)
    : QWidget(parent)
    , before(oldPicture)
    , after(newPicture)
    , comesFromRight(fromRight)
{
    setGeometry(place);
    setAttribute(Qt::WA_OpaquePaintEvent);
    animation.setStartValue(0.0);
    animation.setEndValue(1.0);
    animation.setEasingCurve(QEasingCurve::InOutQuad);
    animation.setDuration(Animations::duration(Animations::calendarSlide));
    connect(&animation, &QVariantAnimation::valueChanged, this, [this] { update(); });
    connect(&animation, &QVariantAnimation::finished, this, &CalendarSlide::finish);
    show();
    raise();
    animation.start();
}

void CalendarSlide::finish()
{
    hide();
    deleteLater();
}

void CalendarSlide::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const int gone = static_cast<int>(animation.currentValue().toDouble() * width());
    const int side = comesFromRight ? 1 : -1;
    painter.drawPixmap(-side * gone, 0, before);
    painter.drawPixmap(side * (width() - gone), 0, after);
}

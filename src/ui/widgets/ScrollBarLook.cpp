#include "widgets/ScrollBarLook.h"

#include "widgets/Theme.h"

#include <QPainter>
#include <QStyleOption>

void ScrollBarLook::draw(const QStyleOptionComplex *option, QPainter *painter, const QRect &handle)
{
    if (!handle.isValid())
        return;
    const bool isHot = option->state.testFlag(QStyle::State_MouseOver) || option->activeSubControls != 0;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    constexpr int middle = 128;
    if (option->palette.color(QPalette::Window).lightness() < middle)
        painter->setBrush(isHot ? Theme::scrollHandleOnDarkHover : Theme::scrollHandleOnDark);
    else
        painter->setBrush(isHot ? Theme::scrollHandleHover : Theme::scrollHandle);
    const QRectF thin = QRectF(handle).adjusted(2, 2, -2, -2);
    const qreal radius = std::min(thin.width(), thin.height()) / 2;
    painter->drawRoundedRect(thin, radius, radius);
    painter->restore();
}

QRect ScrollBarLook::partOf(const QStyleOptionSlider &bar, QStyle::SubControl part)
{
    const bool isHorizontal = bar.orientation == Qt::Horizontal;
    const int length = isHorizontal ? bar.rect.width() : bar.rect.height();
    const qint64 range = qint64(bar.maximum) - bar.minimum;
    if (range <= 0)
        return part == QStyle::SC_ScrollBarGroove ? bar.rect : QRect();
    const auto proportional = static_cast<int>(qint64(bar.pageStep) * length / (range + bar.pageStep));
    const int handle = std::min(std::max(proportional, handleMinimum), length);
    const int start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                      length - handle, bar.upsideDown);
    const auto slice = [&](int from, int to) {
        return isHorizontal ? QRect(from, 0, to - from, bar.rect.height())
                            : QRect(0, from, bar.rect.width(), to - from);
    };
    switch (part) {
    case QStyle::SC_ScrollBarGroove:
        return bar.rect;
    case QStyle::SC_ScrollBarSlider:
        return slice(start, start + handle);
    case QStyle::SC_ScrollBarSubPage:
        return slice(0, start);
    case QStyle::SC_ScrollBarAddPage:
        return slice(start + handle, length);
    default:
        return {};
    }
}

#include "widgets/CategoryIcon.h"

#include "store/entities/EntityCategory.h"
#include "widgets/Theme.h"

#include <QPainter>

constexpr int categoryIconSize = 16;
constexpr int categoryDotSize = 10;
constexpr int sharpness = 3;

QIcon CategoryIcon::circle(const QColor &colour)
{
    if (!colour.isValid())
        return {};
    QPixmap pixmap(categoryIconSize * sharpness, categoryIconSize * sharpness);
    pixmap.setDevicePixelRatio(sharpness);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Theme::dotEdge(colour));
    painter.setBrush(colour);
    constexpr double margin = (categoryIconSize - categoryDotSize + 1) / 2.0;
    painter.drawEllipse(QRectF(margin, margin, categoryDotSize - 1, categoryDotSize - 1));
    return QIcon(pixmap);
}

static float component(std::optional<double> stored, double otherwise)
{
    return static_cast<float>(stored.value_or(otherwise));
}

QColor CategoryIcon::colorOf(const EntityCategory &category)
{
    return QColor::fromRgbF(component(category.colorR(), 0), component(category.colorG(), 0),
                            component(category.colorB(), 0), component(category.colorA(), 1));
}

QIcon CategoryIcon::of(const EntityCategory &category)
{
    return circle(colorOf(category));
}

#include "widgets/Icons.h"

#include "widgets/Theme.h"

#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <QtMath>

using namespace Qt::Literals::StringLiterals;

static QString fileOf(const QString &name)
{
    return u":/icons/"_s + name + u".svg"_s;
}

static QPixmap tinted(QPixmap pixmap, const QColor &colour)
{
    QPainter painter(&pixmap);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), colour);
    return pixmap;
}

static QPixmap rendered(const QString &name, int pixels)
{
    QSvgRenderer renderer(fileOf(name));
    if (!renderer.isValid())
        return {};
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer.render(&painter, QRectF(0, 0, pixels, pixels));
    return pixmap;
}

QPixmap Icons::pixmap(const QString &name, const QColor &colour, int size, qreal devicePixelRatio)
{
    const int pixels = qCeil(size * devicePixelRatio);
    const QString key = u"icon/%1/%2/%3"_s.arg(name).arg(colour.rgba()).arg(pixels);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = rendered(name, pixels);
        if (!pixmap.isNull())
            pixmap = tinted(pixmap, colour);
        QPixmapCache::insert(key, pixmap);
    }
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

void Icons::paint(QPainter &painter, const QRect &where, const QString &name, const QColor &colour, int size)
{
    const QRectF place(where.x() + (where.width() - size) / 2, where.y() + (where.height() - size) / 2, size,
                       size);
    painter.drawPixmap(place.topLeft(), pixmap(name, colour, size, painter.device()->devicePixelRatio()));
}

namespace {

/// Draws an icon of the set only when and as large as a menu or button asks for it.
class TintedIconEngine : public QIconEngine
{
public:
    TintedIconEngine(QString iconName, Theme::Role iconColour)
        : name(std::move(iconName))
        , colour(iconColour)
    {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        Icons::paint(*painter, rect, name, colourOf(mode), std::min(rect.width(), rect.height()));
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State) override
    {
        return Icons::pixmap(name, colourOf(mode), std::min(size.width(), size.height()), 1);
    }
    QIconEngine *clone() const override { return new TintedIconEngine(*this); }

private:
    QColor colourOf(QIcon::Mode mode) const { return mode == QIcon::Disabled ? Theme::disabledText : colour; }

    QString name;
    Theme::Role colour;
};

} // namespace

QIcon Icons::icon(const QString &name, Theme::Role colour)
{
    return QIcon(new TintedIconEngine(name, colour));
}

QIcon Icons::application()
{
    QIcon icon;
    for (const int size : {32, 64})
        icon.addPixmap(rendered(u"com.halvern.morvane"_s, size));
    return icon;
}

#include "shell/maps/MapView.h"

#include "foundation/Localization.h"
#include "widgets/Accessibility.h"
#include "widgets/Icons.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QtMath>

using namespace Qt::Literals::StringLiterals;
using MapProjection::tileSize;

constexpr int pinSize = 28;
constexpr int pinStep = 10;

MapView::MapView(const QString &tileUrl, QWidget *parent)
    : QWidget(parent)
    , source(tileUrl)
{
    describe();
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(localized(u"Map"_s));
    setMouseTracking(true);
    connect(&source, &TileSource::changed, this, qOverload<>(&QWidget::update));
}

/// Who does not see the map hears where the pin is, and moves it by name.
void MapView::describe()
{
    const auto actions = [this]() -> std::vector<AccessibleAction> {
        const QPointF middle(width() / 2.0, height() / 2.0);
        return {{localized(u"Zoom in"_s), [=, this] { zoomAround(middle, 1); }, u"+"_s},
                {localized(u"Zoom out"_s), [=, this] { zoomAround(middle, -1); }, u"-"_s},
                {localized(u"Move the pin north"_s),
                 [this] {
                     movePinBy({0, -pinStep});
                 },
                 u"Up"_s},
                {localized(u"Move the pin south"_s),
                 [this] {
                     movePinBy({0, pinStep});
                 },
                 u"Down"_s},
                {localized(u"Move the pin west"_s),
                 [this] {
                     movePinBy({-pinStep, 0});
                 },
                 u"Left"_s},
                {localized(u"Move the pin east"_s),
                 [this] {
                     movePinBy({pinStep, 0});
                 },
                 u"Right"_s}};
    };
    const auto place = [this] { return placeInWords(); };
    Accessibility::describe(*this, {.role = QAccessible::Canvas, .description = place, .actions = actions});
}

QString MapView::placeInWords() const
{
    return localized(u"Latitude %1, longitude %2, zoom %3"_s)
        .arg(pinPlace.latitude, 0, 'f', 4)
        .arg(pinPlace.longitude, 0, 'f', 4)
        .arg(level);
}

void MapView::showPin(const MapPlace &place, int newZoom)
{
    if (newZoom > 0)
        level = std::clamp(newZoom, MapProjection::leastZoom, MapProjection::mostZoom);
    pinPlace = place;
    centre = place;
    update();
}

// Places

/// The world's pixel at the view's upper left corner.
QPointF MapView::origin() const
{
    return MapProjection::toPixels(centre, level) - QPointF(width(), height()) / 2;
}

QPointF MapView::pinPoint() const
{
    return MapProjection::toPixels(pinPlace, level) - origin();
}

QRectF MapView::pinRect() const
{
    const QPointF point = pinPoint();
    return {point.x() - pinSize / 2.0, point.y() - pinSize, pinSize, pinSize};
}

void MapView::moveMapBy(const QPointF &pixels)
{
    centre = MapProjection::toPlace(MapProjection::toPixels(centre, level) - pixels, level);
    update();
}

void MapView::movePinTo(const QPointF &point)
{
    pinPlace = MapProjection::toPlace(origin() + point, level);
    update();
}

void MapView::movePinBy(const QPointF &step)
{
    movePinTo(pinPoint() + step);
    Accessibility::announce(*this, placeInWords());
    Q_EMIT pinMoved(pinPlace);
}

/// What is under the mouse stays there.
void MapView::zoomAround(const QPointF &point, int steps)
{
    const MapPlace under = MapProjection::toPlace(origin() + point, level);
    level = std::clamp(level + steps, MapProjection::leastZoom, MapProjection::mostZoom);
    const QPointF middle(width() / 2.0, height() / 2.0);
    centre = MapProjection::toPlace(MapProjection::toPixels(under, level) - point + middle, level);
    Accessibility::announce(*this, placeInWords());
    update();
}

// Painting

void MapView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    QPainterPath shape;
    shape.addRoundedRect(rect(), Theme::controlRadius, Theme::controlRadius);
    painter.save();
    painter.setClipPath(shape);
    painter.fillRect(rect(), QColor(Theme::divider));
    paintTiles(painter);
    paintPin(painter);
    paintNotes(painter);
    painter.restore();
    if (hasFocus())
        MorvaneStyle::drawFocusRing(painter, rect(), Theme::controlRadius, Theme::focusRing);
}

void MapView::paintTiles(QPainter &painter)
{
    const QPointF corner = origin();
    const int rows = 1 << level;
    const int firstColumn = qFloor(corner.x() / tileSize);
    const int firstRow = std::max(0, qFloor(corner.y() / tileSize));
    for (int row = firstRow; row < rows && row * tileSize < corner.y() + height(); ++row) {
        for (int column = firstColumn; column * tileSize < corner.x() + width(); ++column) {
            const QPixmap picture = source.tile({level, MapProjection::wrappedColumn(column, level), row});
            const QRectF place(column * tileSize - corner.x(), row * tileSize - corner.y(), tileSize,
                               tileSize);
            if (!picture.isNull())
                painter.drawPixmap(place, picture, picture.rect());
        }
    }
}

void MapView::paintPin(QPainter &painter) const
{
    const QRectF place = pinRect();
    QPainterPath drop;
    const QPointF point = pinPoint();
    drop.moveTo(point);
    drop.cubicTo(place.left() - 2, place.center().y(), place.left() + 2, place.top(), point.x(), place.top());
    drop.cubicTo(place.right() - 2, place.top(), place.right() + 2, place.center().y(), point.x(), point.y());
    painter.setPen(QPen(Theme::card, 2));
    painter.setBrush(drag == Drag::Pin ? Theme::accentPressed : Theme::accent);
    painter.drawPath(drop);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::card);
    painter.drawEllipse(QPointF(point.x(), place.top() + pinSize * 0.38), pinSize / 7.0, pinSize / 7.0);
}

void MapView::paintNotes(QPainter &painter) const
{
    painter.setFont(Theme::font(Theme::FontRole::Small));
    painter.setPen(Theme::secondaryText);
    const QRect inner = rect().adjusted(Theme::unit, Theme::unit / 2, -Theme::unit, -Theme::unit / 2);
    painter.drawText(inner, Qt::AlignRight | Qt::AlignBottom, source.host());
    if (source.isOutOfReach())
        painter.drawText(inner, Qt::AlignHCenter | Qt::AlignTop, localized(u"The map cannot be loaded."_s));
}

// Mouse and keys

void MapView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    drag = pinRect().contains(event->position()) ? Drag::Pin : Drag::Map;
    dragPoint = event->position();
    update();
}

void MapView::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF moved = event->position() - dragPoint;
    if (drag == Drag::Map)
        moveMapBy(moved);
    else if (drag == Drag::Pin)
        movePinTo(pinPoint() + moved);
    else
        setCursor(pinRect().contains(event->position()) ? Qt::PointingHandCursor : Qt::OpenHandCursor);
    dragPoint = event->position();
}

void MapView::mouseReleaseEvent(QMouseEvent *)
{
    const bool wasPin = std::exchange(drag, Drag::None) == Drag::Pin;
    update();
    if (wasPin)
        Q_EMIT pinMoved(pinPlace);
}

void MapView::mouseDoubleClickEvent(QMouseEvent *event)
{
    movePinTo(event->position());
    Q_EMIT pinMoved(pinPlace);
}

void MapView::wheelEvent(QWheelEvent *event)
{
    if (event->angleDelta().y() != 0)
        zoomAround(event->position(), event->angleDelta().y() > 0 ? 1 : -1);
    event->accept();
}

void MapView::keyPressEvent(QKeyEvent *event)
{
    const QPointF middle(width() / 2.0, height() / 2.0);
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return zoomAround(middle, 1);
    case Qt::Key_Minus:
        return zoomAround(middle, -1);
    case Qt::Key_Left:
        return movePinBy({-pinStep, 0});
    case Qt::Key_Right:
        return movePinBy({pinStep, 0});
    case Qt::Key_Up:
        return movePinBy({0, -pinStep});
    case Qt::Key_Down:
        return movePinBy({0, pinStep});
    default:
        QWidget::keyPressEvent(event);
    }
}

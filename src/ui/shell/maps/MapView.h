#pragma once

#include "shell/maps/MapProjection.h"
#include "shell/maps/TileSource.h"

#include <QWidget>

/// A map with one pin. Dragging moves the map or the pin, a double click sets the pin, the wheel and the plus
/// and minus keys zoom, the arrows move the pin.
class MapView : public QWidget
{
    Q_OBJECT
public:
    explicit MapView(const QString &tileUrl, QWidget *parent = nullptr);

    bool isConfigured() const { return source.isConfigured(); }
    MapPlace pin() const { return pinPlace; }
    /// Sets the pin and brings it into the middle; a zoom of 0 keeps the present one.
    void showPin(const MapPlace &place, int newZoom = 0);
    int zoom() const { return level; }
    /// Where the point of the pin stands in the view.
    QPointF pinPoint() const;

Q_SIGNALS:
    /// The user has put the pin somewhere else.
    void pinMoved(const MapPlace &place);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    enum class Drag { None, Map, Pin };

    void describe();
    /// Where the pin is, and how near the map is seen.
    QString placeInWords() const;
    QPointF origin() const;
    QRectF pinRect() const;
    void paintTiles(QPainter &painter);
    void paintPin(QPainter &painter) const;
    void paintNotes(QPainter &painter) const;
    void moveMapBy(const QPointF &pixels);
    void movePinTo(const QPointF &point);
    void movePinBy(const QPointF &step);
    void zoomAround(const QPointF &point, int steps);

    TileSource source;
    MapPlace centre;
    MapPlace pinPlace;
    int level = MapProjection::leastZoom;
    Drag drag = Drag::None;
    QPointF dragPoint;
};

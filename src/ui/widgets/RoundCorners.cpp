#include "widgets/RoundCorners.h"

#include "widgets/Theme.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

/// Whether a compositor stands behind the name by which such programs are known on X11.
static bool isOwned(xcb_connection_t *connection, const QByteArray &name)
{
    const auto freed = [](auto *reply) { std::free(reply); };
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(freed)> atom(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 1, name.size(), name.constData()), nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE)
        return false;
    const std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(freed)> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
    return owner && owner->owner != XCB_NONE;
}

/// Whether the screen blends windows into each other: always, but for X11 without a compositor.
static bool isBlended()
{
    const auto *x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    return !x11 || !x11->connection() || isOwned(x11->connection(), "_NET_WM_CM_S0");
}

static QPainterPath rounded(const QRectF &rect, qreal radius)
{
    QPainterPath path;
    path.addRoundedRect(rect, radius, radius);
    return path;
}

/// The pixels that a rounded rectangle touches, alike at all four corners.
static QRegion touched(const QSize &size, int radius)
{
    QRegion region(0, radius, size.width(), size.height() - 2 * radius);
    for (int row = 0; row < radius; ++row) {
        const double up = radius - row - 0.5;
        const int inset = static_cast<int>(radius - std::sqrt(radius * radius - up * up));
        for (const int top : {row, size.height() - 1 - row})
            region += QRect(inset, top, size.width() - 2 * inset, 1);
    }
    return region;
}

namespace {

/// Cuts the corners off whenever the window has got a size.
class CornerCutter : public QObject
{
public:
    CornerCutter(QWidget &cutWindow, int cornerRadius)
        : QObject(&cutWindow)
        , radius(cornerRadius)
    {
        cutWindow.installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Resize || event->type() == QEvent::Show) {
            auto *window = static_cast<QWidget *>(watched);
            window->setMask(touched(window->size(), radius));
        }
        return QObject::eventFilter(watched, event);
    }

private:
    int radius;
};

} // namespace

void RoundCorners::give(QWidget &window, int radius)
{
    if (isBlended())
        window.setAttribute(Qt::WA_TranslucentBackground);
    else
        new CornerCutter(window, radius);
}

/// The edge is drawn as a ground that the white leaves free, so that a cut corner ends in the colour of the
/// edge.
void RoundCorners::drawPanel(QPainter &painter, const QWidget &window, int radius)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF whole(window.rect());
    if (window.testAttribute(Qt::WA_TranslucentBackground))
        painter.fillPath(rounded(whole, radius), Theme::edge);
    else
        painter.fillRect(whole, QColor(Theme::edge));
    painter.fillPath(rounded(whole.adjusted(1, 1, -1, -1), radius - 1), Theme::card);
    painter.restore();
}

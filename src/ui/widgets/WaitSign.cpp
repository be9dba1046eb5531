#include "widgets/WaitSign.h"

#include "foundation/Localization.h"
#include "widgets/BusyCursor.h"
#include "widgets/Theme.h"

#include <QApplication>
#include <QBackingStore>
#include <QPainter>
#include <QThread>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include <optional>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

constexpr auto patience = 100ms;
constexpr int signMargin = 2 * Theme::unit;

static std::optional<BusyCursor> &busyCursor()
{
    static std::optional<BusyCursor> cursor;
    return cursor;
}

static void draw(QPainter &painter, const QRect &place, const QString &words)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Theme::cardBorder);
    painter.setBrush(Theme::card);
    painter.drawRoundedRect(QRectF(place).adjusted(0.5, 0.5, -0.5, -0.5), Theme::unit, Theme::unit);
    painter.setPen(Theme::text);
    painter.setFont(Theme::font(Theme::FontRole::BodyStrong));
    painter.drawText(place, Qt::AlignCenter, words);
}

/// Where it stands in a window.
static QRect placeIn(const QWidget &window, const QString &words)
{
    const QFontMetrics metrics(Theme::font(Theme::FontRole::BodyStrong));
    QRect place({}, metrics.size(Qt::TextSingleLine, words) + QSize(2 * signMargin, 2 * signMargin));
    place.moveCenter({window.width() / 2, window.height() / 3});
    return place;
}

static void show(std::chrono::milliseconds waited, const QString &key)
{
    const bool isOnScreen = qApp && QThread::currentThread() == qApp->thread();
    QWidget *const window = isOnScreen ? QApplication::activeWindow() : nullptr;
    QBackingStore *const picture = window ? window->backingStore() : nullptr;
    if (waited < patience || WaitSign::isShown() || !picture || !window->windowHandle()->isExposed())
        return;
    busyCursor().emplace();
    const QString words = localized(key);
    const QRect place = placeIn(*window, words);
    picture->beginPaint(place);
    {
        QPainter painter(picture->paintDevice());
        draw(painter, place, words);
    }
    picture->endPaint();
    picture->flush(place, window->windowHandle());
    QTimer::singleShot(0, window, [window, place] { window->update(place); });
    QTimer::singleShot(0, qApp, [] { busyCursor().reset(); });
}

void WaitSign::showForStore(std::chrono::milliseconds waited)
{
    show(waited, u"Another program is using your data …"_s);
}

void WaitSign::showForCalendars(std::chrono::milliseconds waited)
{
    show(waited, u"Waiting for your calendars …"_s);
}

bool WaitSign::isShown()
{
    return busyCursor().has_value();
}

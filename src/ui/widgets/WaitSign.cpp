#include "widgets/WaitSign.h"

#include "foundation/Localization.h"
#include "widgets/BusyCursor.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"

#include <QApplication>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QThread>
#include <QTimer>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto patience = 100ms;
constexpr int signMargin = 2 * Theme::unit;

class Sign : public QWidget
{
public:
    explicit Sign(QWidget &window)
        : QWidget(&window)
    {
        setObjectName(u"waitSign"_s);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        QLabel *const words = makeTextLabel(localized(u"Another program is using your data …"_s),
                                            Theme::FontRole::BodyStrong, Theme::text);
        words->setParent(this);
        words->setWordWrap(false);
        words->move(signMargin, signMargin);
        words->adjustSize();
        resize(words->size() + QSize(2 * signMargin, 2 * signMargin));
        move((window.width() - width()) / 2, (window.height() - height()) / 3);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Theme::cardBorder);
        painter.setBrush(Theme::card);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::unit, Theme::unit);
    }

private:
    BusyCursor busy;
};

} // namespace

void WaitSign::show(std::chrono::milliseconds waited)
{
    static QPointer<Sign> sign;
    const bool isOnScreen = qApp && QThread::currentThread() == qApp->thread();
    QWidget *const window = isOnScreen ? QApplication::activeWindow() : nullptr;
    if (waited < patience || !window || sign)
        return;
    sign = new Sign(*window);
    QTimer::singleShot(0, sign, [] { delete sign; });
    sign->show();
    sign->repaint();
}

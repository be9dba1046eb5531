#include "shell/SidebarNotice.h"

#include "cloud/DeviceHealth.h"
#include "foundation/Localization.h"
#include "shell/devices/DevicesWindow.h"
#include "store/AppDelegate.h"
#include "store/StartWindowController.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"
#include "widgets/Accessibility.h"
#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QTextLayout>
#include <QtMath>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int margin = 2 * Theme::unit;
constexpr int gap = Theme::unit / 2;
constexpr int dotSize = 8;
/// What comes and goes within this time is not told of.
constexpr auto aMoment = std::chrono::milliseconds(300);

QFont titleFont()
{
    return Theme::font(Theme::FontRole::SmallStrong);
}

QFont sentenceFont()
{
    return Theme::font(Theme::FontRole::Small);
}

/// Words in lines of a width. A word breaks only where it is wider than that, such as the name of a folder.
class WrappedText
{
public:
    WrappedText(const QString &words, const QFont &font, int width, Qt::LayoutDirection direction)
        : layout(words, font)
    {
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        option.setTextDirection(direction);
        layout.setTextOption(option);
        layout.beginLayout();
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(std::max(1, width));
            line.setPosition({0, height});
            height += line.height();
        }
        layout.endLayout();
    }
    int heightOfAll() const { return qCeil(height); }
    void draw(QPainter &painter, const QPoint &place) const { layout.draw(&painter, place); }

private:
    QTextLayout layout;
    qreal height = 0;
};

} // namespace

SidebarNotice::SidebarNotice(Kind ofWhat, const QString &title, QWidget *parent)
    : QAbstractButton(parent)
    , kind(ofWhat)
{
    setText(title);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void SidebarNotice::setSentence(const QString &words)
{
    if (words == detail)
        return;
    detail = words;
    setAccessibleName(text());
    setAccessibleDescription(detail);
    updateGeometry();
    update();
}

int SidebarNotice::heightForWidth(int width) const
{
    const int room = width - 2 * margin;
    const int mark = kind == Kind::Warning ? dotSize + Theme::unit : 0;
    return 2 * margin + WrappedText(text(), titleFont(), room - mark, layoutDirection()).heightOfAll() + gap +
           WrappedText(detail, sentenceFont(), room, layoutDirection()).heightOfAll();
}

QSize SidebarNotice::sizeHint() const
{
    return {width(), heightForWidth(width())};
}

void SidebarNotice::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(QRect(margin, 0, width() - 2 * margin, 1), QColor(Theme::sidebarSelection));
    const QRectF ground = QRectF(rect()).adjusted(Theme::unit, Theme::unit, -Theme::unit, -Theme::unit);
    if (isDown() || underMouse()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(isDown() ? Theme::sidebarSelection : Theme::sidebarHover));
        painter.drawRoundedRect(ground, Theme::controlRadius, Theme::controlRadius);
    }
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Theme::sidebarFocus, 2));
        painter.drawRoundedRect(ground, Theme::controlRadius, Theme::controlRadius);
    }
    const auto placed = [this](const QRect &where) {
        return QStyle::visualRect(layoutDirection(), rect(), where);
    };
    const int mark = kind == Kind::Warning ? dotSize + Theme::unit : 0;
    const int room = width() - 2 * margin;
    const WrappedText title(text(), titleFont(), room - mark, layoutDirection());
    const WrappedText lines(detail, sentenceFont(), room, layoutDirection());
    if (mark > 0) {
        const int line = QFontMetrics(titleFont()).height();
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(Theme::sidebarWarning));
        painter.drawEllipse(placed({margin, margin + (line - dotSize) / 2, dotSize, dotSize}));
    }
    const int titleLeft = layoutDirection() == Qt::LeftToRight ? margin + mark : margin;
    painter.setPen(Theme::sidebarText);
    title.draw(painter, {titleLeft, margin});
    painter.setPen(Theme::sidebarQuiet);
    lines.draw(painter, {margin, margin + title.heightOfAll() + gap});
}

void SidebarNotice::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void SidebarNotice::enterEvent(QEnterEvent *event)
{
    QAbstractButton::enterEvent(event);
    update();
}

void SidebarNotice::leaveEvent(QEvent *event)
{
    QAbstractButton::leaveEvent(event);
    update();
}

SampleNotice::SampleNotice(QWidget *parent)
    : SidebarNotice(Kind::Calm, localized(u"Sample"_s), parent)
{
    setObjectName(u"sampleNotice"_s);
    setSentence(localized(u"These are examples. Press here for your own records."_s));
    connect(this, &QAbstractButton::clicked, this, [] { StartWindowController::openStarted(); });
    refresh();
}

void SampleNotice::refresh()
{
    setVisible(DBWorker::isSample());
}

SharingNotice::SharingNotice(QWidget *parent)
    : SidebarNotice(Kind::Warning, localized(u"Sharing has stopped"_s), parent)
{
    setObjectName(u"sharingNotice"_s);
    looking.setSingleShot(true);
    looking.setInterval(aMoment);
    connect(&looking, &QTimer::timeout, this, &SharingNotice::refresh);
    connect(this, &QAbstractButton::clicked, this, [this] { DevicesWindow::open(window()); });
    observation = NotificationCenter::defaultCenter().addObserver(notifications::sharingChanged, [this] {
        if (!looking.isActive())
            looking.start();
    });
    refresh();
}

void SharingNotice::refresh()
{
    AppDelegate *delegate = AppDelegate::shared();
    const DeviceHealth health = DeviceHealth::of(delegate ? delegate->replication() : nullptr);
    if (health.isCutOff)
        setSentence(health.summary.section(u'\n', 0, 0));
    const bool isNews = health.isCutOff && isHidden();
    setVisible(health.isCutOff);
    if (isNews)
        Accessibility::announce(*this, text() + u". "_s + sentence());
}

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

int heightIn(int width, const QFont &font, const QString &words)
{
    return QFontMetrics(font)
        .boundingRect(QRect(0, 0, std::max(1, width), 1000), Qt::TextWordWrap | Qt::TextWrapAnywhere, words)
        .height();
}

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
    return 2 * margin + heightIn(room - mark, titleFont(), text()) + gap +
           heightIn(room, sentenceFont(), detail);
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
    const int titleHeight = heightIn(room - mark, titleFont(), text());
    if (mark > 0) {
        const int line = QFontMetrics(titleFont()).height();
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(Theme::sidebarWarning));
        painter.drawEllipse(placed({margin, margin + (line - dotSize) / 2, dotSize, dotSize}));
    }
    constexpr int wrapped = Qt::AlignLeading | Qt::TextWordWrap | Qt::TextWrapAnywhere;
    painter.setPen(Theme::sidebarText);
    painter.setFont(titleFont());
    painter.drawText(placed({margin + mark, margin, room - mark, titleHeight}), wrapped, text());
    painter.setPen(Theme::sidebarQuiet);
    painter.setFont(sentenceFont());
    const int top = margin + titleHeight + gap;
    painter.drawText(placed({margin, top, room, height() - top}), wrapped, detail);
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

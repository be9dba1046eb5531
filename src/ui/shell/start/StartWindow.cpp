#include "shell/start/StartWindow.h"

#include "foundation/Localization.h"
#include "foundation/Region.h"
#include "shell/start/StartWindowItem.h"
#include "store/AppDelegate.h"
#include "widgets/Icons.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int startMargin = 4 * Theme::unit;
constexpr int startIconSize = 96;
constexpr int pictureWidth = 480;

/// The picture of the program with the words of the user's language, where there is one.
QPixmap screenshot()
{
    const QString language = languageOfWords();
    for (const QString &name :
         {u":/start/start_screenshot(%1).png"_s.arg(language), u":/start/start_screenshot.png"_s}) {
        const QPixmap picture(name);
        if (!picture.isNull())
            return picture;
    }
    return {};
}

/// The picture at the width of its place, sharp on a fine screen.
class PictureLabel : public QLabel
{
public:
    explicit PictureLabel(const QPixmap &shown)
        : picture(shown)
    {
        setAlignment(Qt::AlignHCenter | Qt::AlignBottom);
        setFixedWidth(pictureWidth);
        if (!picture.isNull())
            setFixedHeight(pictureWidth * picture.height() / picture.width());
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawPixmap(rect(), picture);
        painter.setPen(Theme::edge);
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }

private:
    QPixmap picture;
};

} // namespace

StartWindow::StartWindow()
    : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                           Qt::WindowCloseButtonHint)
    , started(new StartWindowItem(u"home"_s, localized(u"Get Started"_s),
                                  localized(u"Start using app with your data"_s)))
    , sample(new StartWindowItem(u"project"_s, localized(u"Sample"_s),
                                 localized(u"Get prefilled app with test data"_s)))
    , guide(new StartWindowItem(u"info"_s, localized(u"User Guide"_s),
                                localized(u"Get The online User manual"_s)))
    , leftView(makeLeftView())
{
    setObjectName(u"StartWindow"_s);
    setWindowTitle(localized(u"Welcome to Morvane"_s));
    setAttribute(Qt::WA_TranslucentBackground);
    started->setObjectName(u"itemGetStarted"_s);
    sample->setObjectName(u"itemSample"_s);
    guide->setObjectName(u"itemUserGuide"_s);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->setSpacing(0);
    row->setSizeConstraint(QLayout::SetFixedSize);
    row->addWidget(leftView);
    row->addWidget(makeRightView());
    started->setFocus();
}

static QLabel *makeStartLabel(const char *name, const QString &text, Theme::FontRole role, Theme::Role colour)
{
    QLabel *label = makeTextLabel(text, role, colour);
    label->setObjectName(QString::fromLatin1(name));
    label->setAlignment(Qt::AlignHCenter);
    return label;
}

QWidget *StartWindow::makeLeftView()
{
    auto *view = new QWidget;
    auto *column = new QVBoxLayout(view);
    column->setContentsMargins(2 * Theme::unit, startMargin, 2 * Theme::unit, startMargin);
    column->setSpacing(Theme::unit);
    auto *icon = new QLabel;
    icon->setPixmap(Icons::application().pixmap(startIconSize));
    icon->setAlignment(Qt::AlignHCenter);
    icon->setObjectName(u"iconImageView"_s);
    column->addStretch(1);
    column->addWidget(icon);
    column->addWidget(makeStartLabel("leftTitle", localized(u"Morvane for Mac"_s), Theme::FontRole::Large,
                                     Theme::startText));
    column->addWidget(makeStartLabel("leftVersion",
                                     u"%1 %2"_s.arg(localized(u"Version"_s), AppDelegate::version()),
                                     Theme::FontRole::Small, Theme::startText));
    column->addSpacing(startMargin);
    for (StartWindowItem *item : {started, sample, guide})
        column->addWidget(item);
    column->addStretch(1);
    return view;
}

QWidget *StartWindow::makeRightView()
{
    auto *view = new QWidget;
    auto *column = new QVBoxLayout(view);
    column->setContentsMargins(startMargin, startMargin, startMargin, startMargin);
    column->setSpacing(2 * Theme::unit);
    QLabel *title = makeStartLabel("rightTitle", localized(u"Welcome to Morvane"_s), Theme::FontRole::Large,
                                   Theme::startRightText);
    QLabel *detail = makeStartLabel("rightDetail",
                                    localized(u"Keep your affairs in one place: tasks, projects, contacts, "
                                              "appointmens - all you need at your fingertips"_s),
                                    Theme::FontRole::Body, Theme::startRightText);
    for (QLabel *label : {title, detail})
        label->setFixedWidth(pictureWidth);
    auto *picture = new PictureLabel(screenshot());
    picture->setObjectName(u"imageViewScreen"_s);
    picture->setAccessibleName(localized(u"The main window"_s));
    column->addStretch(1);
    column->addWidget(title);
    column->addWidget(detail);
    column->addWidget(picture);
    column->addStretch(1);
    return view;
}

void StartWindow::showWindow(const QWidget *behind)
{
    if (!isVisible()) {
        adjustSize();
        const QRect free = (behind ? behind->screen() : screen())->availableGeometry();
        move(free.center() - rect().center());
        // Return does not choose what was chosen the last time.
        started->setFocus();
    }
    winId();
    windowHandle()->setTransientParent(behind ? behind->windowHandle() : nullptr);
    show();
    raise();
    activateWindow();
}

void StartWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(rect(), QColor(Theme::card));
    painter.fillRect(leftView->geometry(), QColor(Theme::sidebar));
}

void StartWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

#include "shell/MainWindow.h"

#include "foundation/Localization.h"
#include "records/ImportTasks.h"
#include "shell/OutlineViewExtended.h"
#include "shell/RightToolBar.h"
#include "widgets/SplitPanes.h"
#include "widgets/Theme.h"

#include <QCloseEvent>
#include <QDropEvent>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

constexpr int sidebarMinimum = 170;
constexpr int sidebarMaximum = 240;
constexpr QSize firstSize(1080, 700);
constexpr QSize leastSize(680, 420);

/// A pane in one colour.
class ColouredPane : public QWidget
{
public:
    explicit ColouredPane(Theme::Role paneColour)
        : colour(paneColour)
    {
        // What is below is not painted in vain.
        setAttribute(Qt::WA_OpaquePaintEvent);
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QPainter(this).fillRect(event->rect(), Theme::mixed(colour, Theme::content));
    }

private:
    Theme::Role colour;
};

MainWindow::MainWindow()
    : split(new SplitPanes(this))
    , outline(new OutlineViewExtended(this))
    , toolBar(new RightToolBar(this))
    , content(new ColouredPane(Theme::content))
{
    setObjectName(u"MainWindow"_s);
    setWindowTitle(u"Morvane"_s);
    setMinimumSize(leastSize);
    resize(firstSize.boundedTo(screen()->availableSize()));
    split->setPanes(makeSidebar(), makeRightSide());
    split->setLeftBounds(sidebarMinimum, sidebarMaximum);
    split->setSizes({sidebarMaximum, firstSize.width() - sidebarMaximum});
    setCentralWidget(split);
    setAcceptDrops(true);
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (!ImportTasks::filesIn(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    Q_EMIT filesDropped(ImportTasks::filesIn(*event->mimeData()));
}

QWidget *MainWindow::makeSidebar()
{
    auto *pane = new ColouredPane(Theme::sidebar);
    auto *column = new QVBoxLayout(pane);
    column->setContentsMargins(0, Theme::unit, 0, Theme::unit);
    column->addWidget(outline);
    outline->setObjectName(u"outlineViewListItem"_s);
    outline->setAccessibleName(localized(u"Lists"_s));
    return pane;
}

void MainWindow::addToSidebarFoot(QWidget *foot)
{
    outline->parentWidget()->layout()->addWidget(foot);
}

QWidget *MainWindow::makeRightSide()
{
    auto *pane = new QWidget;
    auto *column = new QVBoxLayout(pane);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(toolBar);
    column->addWidget(content, 1);
    content->setObjectName(u"rightContentView"_s);
    auto *filling = new QVBoxLayout(content);
    filling->setContentsMargins({});
    return pane;
}

void MainWindow::paintEvent(QPaintEvent *event)
{
    QMainWindow::paintEvent(event);
    if (!std::exchange(wasPainted, true))
        QTimer::singleShot(0, this, &MainWindow::firstPainted);
}

void MainWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        Q_EMIT didBecomeKey();
    else if (event->type() == QEvent::WindowStateChange)
        Q_EMIT stateChanged();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->setAccepted(!closeQuestion || closeQuestion());
    if (event->isAccepted())
        Q_EMIT closed();
}

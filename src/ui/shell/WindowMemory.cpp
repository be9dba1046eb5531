#include "shell/WindowMemory.h"

#include "foundation/UserDefaults.h"
#include "shell/MainWindow.h"
#include "shell/OutlineViewExtended.h"
#include "shell/SidebarModel.h"
#include "widgets/SplitPanes.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QSplitter>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString placesKey = u"windowPlaces"_s;
const QString sidebarWidthKey = u"sidebarWidth"_s;
const QString openHeadingsKey = u"sidebarOpen"_s;

/// The monitors as they stand now: a window has a place of its own for each arrangement.
QString arrangement()
{
    QStringList screens;
    for (const QScreen *screen : QGuiApplication::screens()) {
        const QRect place = screen->geometry();
        screens << u"%1 %2x%3+%4+%5"_s.arg(screen->name())
                       .arg(place.width())
                       .arg(place.height())
                       .arg(place.x())
                       .arg(place.y());
    }
    screens.sort();
    return screens.join(u'|');
}

} // namespace

WindowMemory::WindowMemory(MainWindow &remembered, const SidebarModel &rows)
    : window(remembered)
    , sidebar(rows)
{
    constexpr auto untilPlaced = std::chrono::seconds(1);
    constexpr auto untilStill = std::chrono::milliseconds(400);
    settled.setSingleShot(true);
    settled.setInterval(untilPlaced);
    connect(&settled, &QTimer::timeout, this, [this] { given = window.geometry(); });
    changed.setSingleShot(true);
    changed.setInterval(untilStill);
    connect(&changed, &QTimer::timeout, this, &WindowMemory::keepPlace);
    restore();
    window.installEventFilter(this);
    connect(window.splitViewMain(), &QSplitter::splitterMoved, this, [this] {
        UserDefaults::standard().setObject(sidebarWidthKey, window.splitViewMain()->sizes().constFirst());
    });
    OutlineViewExtended &outline = *window.outlineViewListItem();
    // Rows that are made anew open one by one.
    headings.setSingleShot(true);
    headings.setInterval(untilStill);
    connect(&headings, &QTimer::timeout, this, &WindowMemory::keepHeadings);
    connect(&outline, &QTreeView::expanded, this, [this] { headings.start(); });
    connect(&outline, &QTreeView::collapsed, this, [this] { headings.start(); });
}

void WindowMemory::restore()
{
    const UserDefaults &defaults = UserDefaults::standard();
    const QByteArray place =
        QByteArray::fromBase64(defaults.object(placesKey).toMap().value(arrangement()).toString().toLatin1());
    if (!place.isEmpty())
        window.restoreGeometry(place);
    if (const qint64 width = defaults.integer(sidebarWidthKey); width > 0)
        window.splitViewMain()->setLeftWidth(static_cast<int>(width));
    restoreHeadings();
}

void WindowMemory::restoreHeadings()
{
    if (!UserDefaults::standard().contains(openHeadingsKey))
        return;
    const QStringList open = UserDefaults::standard().string(openHeadingsKey).split(u' ', Qt::SkipEmptyParts);
    for (int row = 0; row < sidebar.rowCount(); ++row) {
        const QModelIndex heading = sidebar.index(row, 0);
        if (sidebar.hasChildren(heading))
            window.outlineViewListItem()->setExpanded(
                heading, open.contains(QString::number(static_cast<int>(sidebar.itemAt(heading)))));
    }
}

void WindowMemory::keepHeadings()
{
    QStringList open;
    for (int row = 0; row < sidebar.rowCount(); ++row) {
        const QModelIndex heading = sidebar.index(row, 0);
        if (sidebar.hasChildren(heading) && window.outlineViewListItem()->isExpanded(heading))
            open << QString::number(static_cast<int>(sidebar.itemAt(heading)));
    }
    UserDefaults::standard().setObject(openHeadingsKey, open.join(u' '));
}

bool WindowMemory::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &window) {
        if (event->type() == QEvent::Show)
            settled.start();
        else if (event->type() == QEvent::Move || event->type() == QEvent::Resize ||
                 event->type() == QEvent::WindowStateChange)
            changed.start();
    }
    return QObject::eventFilter(watched, event);
}

/// Only what the user did, once the desktop has put the window somewhere.
void WindowMemory::keepPlace()
{
    if (given.isNull() || !window.isVisible() || window.isMinimized() || window.geometry() == given)
        return;
    UserDefaults &defaults = UserDefaults::standard();
    QVariantMap places = defaults.object(placesKey).toMap();
    places.insert(arrangement(), QString::fromLatin1(window.saveGeometry().toBase64()));
    defaults.setObject(placesKey, places);
}

#include "widgets/RepeatCalendar.h"

#include "widgets/Theme.h"

#include <QKeyEvent>

#include <algorithm>

constexpr int weekLength = 7;
constexpr int monthColumns = 4;
constexpr int months = 12;

RepeatCalendar::RepeatCalendar(int width, QWidget *parent)
    : QWidget(parent)
    , gridWidth(width)
{}

int RepeatCalendar::columnCount() const
{
    return itemsCount() == months ? monthColumns : weekLength;
}

int RepeatCalendar::rowCount() const
{
    return (itemsCount() + columnCount() - 1) / columnCount();
}

QSize RepeatCalendar::cellSize() const
{
    return {gridWidth / columnCount(), std::max(Theme::controlHeight, fontMetrics().height() + 12)};
}

void RepeatCalendar::setItems(const std::vector<RepeatCalendarCell> &cells)
{
    qDeleteAll(cellItems);
    cellItems.clear();
    for (const RepeatCalendarCell &cell : cells) {
        auto *item = new RepeatCalendarItem(cell.number, cell.title, this);
        item->setAccessibleName(cell.accessibleName);
        item->setChecked(cell.isSelected);
        connect(item, &QAbstractButton::toggled, this,
                [this, item](bool selected) { Q_EMIT selectedChange(item->number(), selected); });
        item->installEventFilter(this);
        if (!cellItems.empty())
            setTabOrder(cellItems.back(), item);
        cellItems.push_back(item);
        item->show();
    }
    place();
    const auto selected = std::ranges::find_if(cellItems, [](const auto *item) { return item->selected(); });
    if (!cellItems.empty())
        setTabStop(selected == cellItems.end() ? cellItems.front() : *selected);
}

void RepeatCalendar::setSelectedItems(const std::function<bool(int number)> &isSelected)
{
    const QSignalBlocker quiet(this);
    for (RepeatCalendarItem *item : cellItems)
        item->setChecked(isSelected(item->number()));
}

void RepeatCalendar::setTabStop(const RepeatCalendarItem *stop)
{
    for (RepeatCalendarItem *item : cellItems)
        item->setFocusPolicy(item == stop ? Qt::StrongFocus : Qt::ClickFocus);
}

bool RepeatCalendar::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn)
        setTabStop(qobject_cast<RepeatCalendarItem *>(watched));
    return QWidget::eventFilter(watched, event);
}

void RepeatCalendar::place()
{
    const QSize size = cellSize();
    setFixedSize(gridWidth, rowCount() * size.height());
    for (int index = 0; index < itemsCount(); ++index) {
        const int column = index % columnCount();
        const int row = index / columnCount();
        Qt::Edges edges;
        edges.setFlag(Qt::LeftEdge, column == 0);
        edges.setFlag(Qt::RightEdge, column == columnCount() - 1);
        edges.setFlag(Qt::TopEdge, row == 0);
        edges.setFlag(Qt::BottomEdge, row == rowCount() - 1);
        const int shownColumn = isRightToLeft() ? columnCount() - 1 - column : column;
        RepeatCalendarItem *item = cellItems[static_cast<std::size_t>(index)];
        item->setEdges(edges);
        item->setGeometry(shownColumn * size.width(), row * size.height(), size.width(), size.height());
    }
}

std::vector<int> RepeatCalendar::selectedItems() const
{
    std::vector<int> numbers;
    for (const RepeatCalendarItem *item : cellItems) {
        if (item->selected())
            numbers.push_back(item->number());
    }
    return numbers;
}

/// Keys come here from the cell that has the focus.
void RepeatCalendar::keyPressEvent(QKeyEvent *event)
{
    const auto focused = std::ranges::find_if(cellItems, [](const auto *item) { return item->hasFocus(); });
    if (!cellItems.empty() && (event->key() == Qt::Key_Home || event->key() == Qt::Key_End))
        return (event->key() == Qt::Key_Home ? cellItems.front() : cellItems.back())
            ->setFocus(Qt::TabFocusReason);
    const int along = isRightToLeft() ? -1 : 1;
    int step = 0;
    if (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right)
        step = event->key() == Qt::Key_Right ? along : -along;
    else if (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down)
        step = event->key() == Qt::Key_Down ? columnCount() : -columnCount();
    if (step == 0 || focused == cellItems.end())
        return QWidget::keyPressEvent(event);
    const auto target = static_cast<int>(focused - cellItems.begin()) + step;
    if (target >= 0 && target < itemsCount())
        cellItems[static_cast<std::size_t>(target)]->setFocus(Qt::TabFocusReason);
}

#include "widgets/TableViewExtended.h"

#include "widgets/AccessibleTable.h"
#include "widgets/Appearance.h"
#include "widgets/TableCell.h"
#include "widgets/Theme.h"

#include <QMetaMethod>
#include <QPainter>
#include <QScrollBar>

TableViewExtended::TableViewExtended(QWidget *parent)
    : QAbstractItemView(parent)
    , accessible(new AccessibleTable(*this))
    , heights(wantedHeights.shown())
{
    setFrameShape(NoFrame);
    setSelectionMode(ExtendedSelection);
    setSelectionBehavior(SelectRows);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setTabKeyNavigation(false);
    viewport()->setMouseTracking(true);
    viewport()->setAutoFillBackground(false);
    autoScrollTimer.setInterval(30);
    connect(&Appearance::shared(), &Appearance::changed, this, &TableViewExtended::showHeights);
    connect(&autoScrollTimer, &QTimer::timeout, this, &TableViewExtended::autoScroll);
}

void TableViewExtended::setModel(QAbstractItemModel *newModel)
{
    for (const QMetaObject::Connection &connection : modelConnections)
        disconnect(connection);
    rowsModel = qobject_cast<TableModel *>(newModel);
    QAbstractItemView::setModel(newModel);
    if (rowsModel)
        modelConnections = {
            connect(rowsModel, &TableModel::rowsRemoved, this, &TableViewExtended::rowsStandElsewhere),
            connect(rowsModel, &TableModel::rowsMoved, this, &TableViewExtended::rowsStandElsewhere)};
    accessible->follow(rowsModel);
}

bool TableViewExtended::hasMenu() const
{
    return isSignalConnected(QMetaMethod::fromSignal(&TableViewExtended::menuRequested));
}

void TableViewExtended::showRowsAnew()
{
    viewport()->update();
    accessible->rowsChanged();
}

void TableViewExtended::tellCurrentRow()
{
    accessible->tellCurrentRow();
}

void TableViewExtended::tellCount()
{
    accessible->tellCount();
}

void TableViewExtended::setRowHeights(const RowHeights &newHeights)
{
    wantedHeights = newHeights;
    heights = wantedHeights.shown();
    rebuildGeometry();
}

RowHeights RowHeights::shown() const
{
    // Above and below the words.
    constexpr int room = 10;
    constexpr int betweenLines = 2;
    const int line = QFontMetrics(Theme::font(Theme::FontRole::Body)).height();
    const int smallLine = QFontMetrics(Theme::font(Theme::FontRole::Small)).height();
    RowHeights all = *this;
    const bool isCompact = compactItem > 0 && Appearance::shared().isCompact();
    if (isCompact)
        all.item = compactItem;
    const int secondLine = isCompact || lines < 2 ? 0 : betweenLines + smallLine;
    all.item = std::max(all.item, line + secondLine + room);
    all.header = std::max(header, line + room);
    return all;
}

/// The text became larger, or the user wants rows lower; what was in sight stays.
void TableViewExtended::showHeights()
{
    const auto sights = rowsInSight();
    heights = wantedHeights.shown();
    rebuildGeometry();
    keepInSight(sights);
}

std::set<int> TableViewExtended::selectedRows() const
{
    std::set<int> rows;
    if (!selectionModel())
        return rows;
    for (const QItemSelectionRange &range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            if (rowsModel->isItem(row))
                rows.insert(row);
        }
    }
    return rows;
}

int TableViewExtended::selectedCount() const
{
    int count = 0;
    for (const QItemSelectionRange &range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            count += rowsModel->isItem(row) ? 1 : 0;
    }
    return count;
}

int TableViewExtended::firstSelectedRow() const
{
    int least = -1;
    for (const QItemSelectionRange &range : selectionModel()->selection()) {
        const int first = rowsModel->nearestItem(range.top(), 1);
        if (first >= 0 && first <= range.bottom() && (least < 0 || first < least))
            least = first;
    }
    return least;
}

void TableViewExtended::selectRows(const std::set<int> &rows)
{
    QItemSelection selection;
    // Neighbours go together: the view asks each range about each row.
    for (auto row = rows.begin(); row != rows.end();) {
        const int first = *row++;
        int last = first;
        if (!rowsModel->isItem(first))
            continue;
        for (; row != rows.end() && *row == last + 1 && rowsModel->isItem(*row); ++row)
            ++last;
        selection.select(rowsModel->index(first), rowsModel->index(last));
    }
    if (!rows.empty())
        selectionModel()->setCurrentIndex(rowsModel->index(*rows.begin()), QItemSelectionModel::NoUpdate);
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

// Geometry

const RowGeometry &TableViewExtended::rowGeometry() const
{
    if (!std::exchange(isGeometryOld, false))
        return geometry;
    const auto heightOf = [this](int row) {
        if (const auto own = rowsModel->heightOf(row))
            return *own;
        switch (rowsModel->kindOf(row)) {
        case RowKind::Header:
            return heights.header;
        case RowKind::Separator:
            return heights.separator;
        case RowKind::Item:
            break;
        }
        return heights.item;
    };
    geometry = rowsModel ? RowGeometry(rowsModel->rowCount(), heightOf) : RowGeometry();
    return geometry;
}

void TableViewExtended::rebuildGeometry()
{
    isGeometryOld = true;
    updateGeometries();
    viewport()->update();
}

/// Several changes in a row share one measuring.
void TableViewExtended::rowsStandElsewhere()
{
    isGeometryOld = true;
    cancelDrag();
    setHoverRow(-1);
    scheduleDelayedItemsLayout();
}

std::vector<TableViewExtended::Sight> TableViewExtended::rowsInSight() const
{
    std::vector<Sight> sights;
    if (verticalOffset() == 0)
        return sights;
    const int bottom = verticalOffset() + viewport()->height();
    int row = rowGeometry().rowAt(verticalOffset());
    for (; row >= 0 && row < rowGeometry().count() && rowGeometry().top(row) < bottom; ++row)
        sights.push_back({rowsModel->index(row), rowGeometry().top(row) - verticalOffset()});
    return sights;
}

void TableViewExtended::keepInSight(const std::vector<Sight> &sights)
{
    executeDelayedItemsLayout();
    const auto there = std::ranges::find_if(sights, [](const Sight &sight) { return sight.row.isValid(); });
    if (sights.empty())
        verticalScrollBar()->setValue(0);
    else if (there != sights.end())
        verticalScrollBar()->setValue(rowGeometry().top(there->row.row()) - there->y);
}

void TableViewExtended::reset()
{
    cancelDrag();
    setHoverRow(-1);
    QAbstractItemView::reset();
    rebuildGeometry();
}

void TableViewExtended::rowsInserted(const QModelIndex &parent, int start, int end)
{
    QAbstractItemView::rowsInserted(parent, start, end);
    rowsStandElsewhere();
}

void TableViewExtended::updateGeometries()
{
    const int page = viewport()->height();
    verticalScrollBar()->setPageStep(page);
    verticalScrollBar()->setSingleStep(heights.item / 2);
    verticalScrollBar()->setRange(0, std::max(0, wholeHeight() - page));
    QAbstractItemView::updateGeometries();
}

void TableViewExtended::resizeEvent(QResizeEvent *event)
{
    QAbstractItemView::resizeEvent(event);
    updateGeometries();
}

int TableViewExtended::verticalOffset() const
{
    return verticalScrollBar()->value();
}

QRect TableViewExtended::rectOfRow(int row) const
{
    return {0, rowGeometry().top(row) - verticalOffset(), viewport()->width(), rowGeometry().heightOf(row)};
}

QRect TableViewExtended::visualRect(const QModelIndex &index) const
{
    return index.isValid() ? rectOfRow(index.row()) : QRect();
}

QModelIndex TableViewExtended::indexAt(const QPoint &point) const
{
    const int row = rowGeometry().rowAt(point.y() + verticalOffset());
    return row < 0 ? QModelIndex() : rowsModel->index(row);
}

void TableViewExtended::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    if (!index.isValid())
        return;
    const int top = rowGeometry().top(index.row());
    const int bottom = top + rowGeometry().heightOf(index.row());
    const int page = viewport()->height();
    QScrollBar &bar = *verticalScrollBar();
    if (hint == PositionAtTop)
        bar.setValue(top);
    else if (hint == PositionAtCenter)
        bar.setValue((top + bottom - page) / 2);
    else if (top < bar.value())
        bar.setValue(index.row() == 0 ? 0 : top - Theme::unit);
    else if (bottom > bar.value() + page)
        bar.setValue(bottom + Theme::unit - page);
    Q_EMIT scrolledTo(index.row());
}

int TableViewExtended::wholeHeight() const
{
    return rowGeometry().totalHeight() + heights.below;
}

// Selection

void TableViewExtended::setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command)
{
    const int last = rowGeometry().count() - 1;
    const int from = std::min(rect.top(), rect.bottom()) + verticalOffset();
    const int to = std::max(rect.top(), rect.bottom()) + verticalOffset();
    if (last < 0 || to < 0 || from >= rowGeometry().totalHeight()) {
        selectionModel()->select(QItemSelection(), command);
        return;
    }
    const int first = rowGeometry().rowAt(std::max(from, 0));
    const int end = to >= rowGeometry().totalHeight() ? last : rowGeometry().rowAt(to);
    selectionModel()->select(QItemSelection(rowsModel->index(first), rowsModel->index(end)), command);
}

QRegion TableViewExtended::visualRegionForSelection(const QItemSelection &selection) const
{
    QRegion region;
    for (const QItemSelectionRange &range : selection)
        region += rectOfRow(range.top()).united(rectOfRow(range.bottom())).intersected(viewport()->rect());
    return region;
}

void TableViewExtended::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    QAbstractItemView::selectionChanged(selected, deselected);
    Q_EMIT rowSelectionChanged();
}

void TableViewExtended::selectAll()
{
    const int last = rowGeometry().count() - 1;
    if (last >= 0)
        selectionModel()->select(QItemSelection(rowsModel->index(0), rowsModel->index(last)),
                                 QItemSelectionModel::ClearAndSelect);
}

// Painting

void TableViewExtended::paintRow(QPainter &painter, QStyleOptionViewItem &option, int row) const
{
    const QModelIndex index = rowsModel->index(row);
    const bool isCurrent = hasFocus() && index == currentIndex();
    option.rect = rectOfRow(row);
    option.state.setFlag(QStyle::State_Selected, selectionModel()->isSelected(index));
    option.state.setFlag(QStyle::State_MouseOver, row == hoverRow && !drag.isActive());
    option.state.setFlag(QStyle::State_HasFocus, isCurrent);
    itemDelegateForIndex(index)->paint(&painter, option, index);
}

void TableViewExtended::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    if (!rowsModel || rowGeometry().count() == 0)
        return;
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.state.setFlag(QStyle::State_Active, hasFocus());
    const int bottom = event->rect().bottom() + verticalOffset();
    int row = rowGeometry().rowAt(std::max(event->rect().top() + verticalOffset(), 0));
    for (; row >= 0 && row < rowGeometry().count() && rowGeometry().top(row) <= bottom; ++row)
        paintRow(painter, option, row);
    paintInsertionMark(painter);
}

void TableViewExtended::paintInsertionMark(QPainter &painter) const
{
    if (!drag.isActive() || drag.target() < 0)
        return;
    constexpr int knob = 4;
    const int y = std::max(rowGeometry().top(drag.target()) - verticalOffset(), knob);
    const int left = Theme::contentMargin;
    const int right = viewport()->width() - Theme::contentMargin;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Theme::accent, 2));
    painter.setBrush(Theme::card);
    painter.drawLine(left + knob, y, right, y);
    painter.drawEllipse(QPoint(left, y), knob, knob);
}

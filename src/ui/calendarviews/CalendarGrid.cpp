#include "calendarviews/CalendarGrid.h"

#include "calendarviews/SelectedTaskController.h"
#include "foundation/Localization.h"
#include "records/DraggedRecords.h"
#include "records/RepeatBan.h"
#include "records/ShellAlerts.h"
#include "records/TaskManager.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"
#include "widgets/Accessibility.h"
#include "widgets/Direction.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QHelpEvent>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QToolTip>

using namespace Qt::Literals::StringLiterals;

// What lies where, and the mouse. Keys, dragging and speech have files of their own.

constexpr int hoverPatience = 350;

CalendarGrid::CalendarGrid(QWidget *parent)
    : QWidget(parent)
{
    describe();
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAcceptDrops(true);
    hoverTimer.setSingleShot(true);
    hoverTimer.setInterval(hoverPatience);
    connect(&hoverTimer, &QTimer::timeout, this, [this] {
        const Placed *under = placedAt(logical(mapFromGlobal(QCursor::pos())));
        hovered = under && !held ? eventOf(*under).task()->rowId() : 0;
        update();
    });
    observations.push_back(
        NotificationCenter::defaultCenter().addObserver(notifications::changeSelectedTask, [this] {
            Accessibility::partsChanged(*this);
            update();
        }));
}

CalendarGrid::~CalendarGrid() = default;

// Items and places

void CalendarGrid::reload()
{
    if (held && !isStillTheSame(*held))
        endDrag(false);
    const QRectF formerPlace = frameOf(spot);
    const int formerColumn = columnCount() > 0 && slotRows() > 0 ? columnOf(spot) : 0;
    draggedPlaces.clear();
    shownEvents.clear();
    for (std::shared_ptr<MVTask> &task : fetch())
        shownEvents.emplace_back(std::move(task));
    relayout();
    keepSpot(formerColumn, formerPlace.top());
    Accessibility::partsReplaced(*this);
    Q_EMIT reloaded();
}

void CalendarGrid::relayout()
{
    still = {};
    places = layout();
    followHeld();
    if (held && held->isActive)
        draggedPlaces = layoutOfDrag(*held);
    update();
}

/// What is held has another number among the items when others came or went.
void CalendarGrid::followHeld()
{
    if (!held)
        return;
    const auto isHeld = [this](const Placed &one) {
        return eventOf(one).task() == held->task && one.segment == held->from.segment;
    };
    const auto found = std::ranges::find_if(places, isHeld);
    if (found == places.end())
        return endDrag(false);
    held->from = *found;
}

QRectF CalendarGrid::visual(const QRectF &place) const
{
    return isRightToLeft() ? QRectF(width() - place.right(), place.y(), place.width(), place.height())
                           : place;
}

QPointF CalendarGrid::logical(QPointF point) const
{
    return isRightToLeft() ? QPointF(width() - point.x(), point.y()) : point;
}

/// What is dragged comes last, then what the mouse rests on, then what was pressed. What covers another one
/// wholly leaves a strip of it to be seen and taken.
std::vector<CalendarGrid::Shown> CalendarGrid::paintingOrder() const
{
    constexpr double strip = 8;
    constexpr double mostStrips = 4;
    const RowId dragged = held && held->isActive ? held->task->rowId() : 0;
    std::vector<Shown> order;
    order.reserve(places.size() + draggedPlaces.size());
    for (const Placed &one : places) {
        if (dragged == 0 || eventOf(one).task()->rowId() != dragged)
            order.push_back({&one, one.frame});
    }
    const auto rank = [this](const Shown &one) {
        const RowId row = eventOf(*one.item).task()->rowId();
        return row == hovered ? 2 : row == raised ? 1 : 0;
    };
    if (raised != 0 || hovered != 0)
        std::ranges::stable_sort(order, {}, rank);
    for (auto upper = order.begin(); upper != order.end(); ++upper) {
        const QRectF inner = upper->item->frame.adjusted(1, 1, -1, -1);
        double strips = 0;
        for (auto lower = order.begin(); lower != upper; ++lower) {
            if (!lower->item->frame.intersects(inner))
                continue;
            upper->isOverOther = true;
            strips += upper->item->frame.contains(lower->item->frame);
        }
        upper->frame.setLeft(upper->frame.left() + strip * std::min(strips, mostStrips));
    }
    if (dragged != 0) {
        for (const Placed &one : draggedPlaces)
            order.push_back({&one, one.frame, true});
    }
    return order;
}

const CalendarGrid::Placed *CalendarGrid::placedAt(QPointF point) const
{
    const std::vector<Shown> order = paintingOrder();
    const auto found = std::find_if(order.rbegin(), order.rend(),
                                    [point](const Shown &one) { return one.frame.contains(point); });
    return found == order.rend() ? nullptr : found->item;
}

const CalendarGrid::Placed *CalendarGrid::placedOf(RowId row) const
{
    const auto found =
        std::ranges::find_if(places, [&](const Placed &one) { return eventOf(one).task()->rowId() == row; });
    return found == places.end() ? nullptr : &*found;
}

void CalendarGrid::raise(const TaskPtr &task)
{
    raised = task->rowId();
    update();
}

void CalendarGrid::select(const TaskPtr &task)
{
    SelectedTaskController &selection = SelectedTaskController::sharedCenter();
    if (selection.selectedTasks() != std::vector{task}) {
        selection.removeAllTasks();
        selection.addTask(task);
    }
    Q_EMIT eventViewSelectedItem();
}

TaskPtr CalendarGrid::currentTask() const
{
    if (hasFocus() && spot.isOnItem()) {
        if (const Placed *place = placedOf(spot.row))
            return eventOf(*place).task();
    }
    const std::vector<TaskPtr> &selected = SelectedTaskController::sharedCenter().selectedTasks();
    if (selected.size() != 1 || !placedOf(selected.front()->rowId()))
        return nullptr;
    return selected.front();
}

// Painting

void CalendarGrid::paintItems(QPainter &painter, const std::vector<Shown> &items, const QRect &clip)
{
    const SelectedTaskController &selection = SelectedTaskController::sharedCenter();
    const QRectF visible = visibleRegion().boundingRect();
    for (const Shown &one : items) {
        const QRectF frame = visual(one.frame);
        if (!frame.adjusted(-3, -3, 3, 3).intersects(clip))
            continue;
        const EventCalendarView &item = eventOf(*one.item);
        item.paint(painter, frame,
                   {.isSelected = selection.containsTask(item.task()),
                    .isOverOther = one.isOverOther,
                    .direction = layoutDirection(),
                    .visible = visible});
    }
}

/// What stays where it is during a drag is painted once.
void CalendarGrid::paintDrag(QPainter &painter, const QRect &clip)
{
    const QRect visible = visibleRegion().boundingRect();
    if (still.isNull() || stillPlace != visible) {
        stillPlace = visible;
        still = QPixmap(visible.size() * devicePixelRatio());
        still.setDevicePixelRatio(devicePixelRatio());
        still.fill(Theme::card);
        QPainter stillPainter(&still);
        stillPainter.translate(-visible.topLeft());
        paintGrid(stillPainter, visible);
        std::vector<Shown> others = paintingOrder();
        others.erase(others.end() - static_cast<std::ptrdiff_t>(draggedPlaces.size()), others.end());
        paintItems(stillPainter, others, visible);
    }
    painter.drawPixmap(visible.topLeft(), still);
    std::vector<Shown> moved;
    for (const Placed &one : draggedPlaces)
        moved.push_back({&one, one.frame, true});
    paintItems(painter, moved, clip);
}

void CalendarGrid::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    if (held && held->isActive) {
        paintDrag(painter, event->rect());
    } else {
        still = {};
        paintGrid(painter, event->rect());
        paintItems(painter, paintingOrder(), event->rect());
    }
    painter.setRenderHint(QPainter::Antialiasing);
    if (hasFocus() && showsSpot && !isDragging()) {
        const QRectF frame = visual(frameOf(spot));
        if (spot.isOnItem()) {
            painter.setPen(QPen(Theme::card, 3));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(frame.adjusted(-1, -1, 1, 1), 4, 4);
        }
        const double out = spot.isOnItem() ? 1.5 : -1;
        MorvaneStyle::drawFocusRing(painter, frame.adjusted(-out, -out, out, out), 4, Theme::focusRing);
    }
    if (dropPlace && !dropPlace->isEmpty()) {
        painter.setPen(QPen(Theme::accent, 1.5));
        painter.setBrush(Theme::selection);
        painter.drawRoundedRect(visual(*dropPlace).adjusted(2, 2, -2, -2), 4, 4);
    }
    paintOver(painter);
}

void CalendarGrid::drawBeside(QPainter &painter, const QRectF &place, const QFont &font,
                              const QString &words) const
{
    QFont fitting = font;
    const double room = place.width() - 2;
    const double needed = QFontMetricsF(font).horizontalAdvance(words);
    if (needed > room)
        fitting.setPointSizeF(font.pointSizeF() * room / needed);
    painter.setFont(fitting);
    Direction::drawWords(painter, place, Qt::AlignVCenter | trailingEdge(), words);
}

void CalendarGrid::paintForPaper(QPainter &painter)
{
    isOnPaper = true;
    paintGrid(painter, rect());
    for (const Placed &one : places)
        eventOf(one).paint(painter, visual(one.frame), {.isSelected = true, .direction = layoutDirection()});
    paintOver(painter);
    isOnPaper = false;
}

void CalendarGrid::resizeEvent(QResizeEvent *)
{
    relayout();
}

// The mouse

void CalendarGrid::mousePressEvent(QMouseEvent *event)
{
    const QPointF point = logical(event->position());
    if (event->button() == Qt::RightButton) {
        rightPressedAt = point;
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    const QPointer<CalendarGrid> self = this;
    finishKeyMove();
    if (!self)
        return;
    showsSpot = false;
    takenBy.reset();
    if (const Placed *item = placedAt(point))
        return pressItem(*item, point, event->modifiers());
    SelectedTaskController::sharedCenter().removeAllTasks();
    raised = 0;
    if (pressElse(point))
        return;
    for (int slot = 0; slot < slotRows() * columnCount(); ++slot) {
        if (slotFrame(slot).contains(point))
            spot = {.slot = slot};
    }
    markFrom(point);
    update();
}

void CalendarGrid::pressItem(const Placed &item, QPointF point, Qt::KeyboardModifiers)
{
    const TaskPtr task = eventOf(item).task();
    spot = {.row = task->rowId(), .segment = item.segment};
    select(task);
    raise(task);
    const TaskDates dates = TaskDates::of(*eventOf(item).event());
    held = Drag{.task = task,
                .zone = zoneAt(item, point),
                .pressedAt = point,
                .from = item,
                .before = dates,
                .dates = dates};
    Accessibility::focusMoved(*this);
}

void CalendarGrid::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const QPointF point = logical(event->position());
    held.reset();
    markCancelled();
    if (const Placed *item = placedAt(point))
        Q_EMIT opened(eventOf(*item).task());
    else if (!pressElse(point))
        createAt(point);
}

void CalendarGrid::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF point = logical(event->position());
    if (!event->buttons().testFlag(Qt::LeftButton))
        return hover(point);
    const QPointer<CalendarGrid> self = this;
    if (held && !held->isByKeys)
        dragTo(point, event->modifiers());
    else if (isMarking())
        markTo(point, event->modifiers().testFlag(Qt::AltModifier));
    if (self && ((held && held->isActive) || isMarking()))
        Q_EMIT draggedAt(event->position().toPoint());
}

void CalendarGrid::continueDrag()
{
    const QPointF point = logical(mapFromGlobal(QCursor::pos()));
    if (held && held->isActive && !held->isByKeys)
        dragTo(point, QApplication::keyboardModifiers());
    else if (isMarking())
        markTo(point, QApplication::keyboardModifiers().testFlag(Qt::AltModifier));
}

void CalendarGrid::hover(QPointF point)
{
    const Placed *item = placedAt(point);
    const bool isMovable = item && movesItems() && CalendarDrag::isMovable(*eventOf(*item).event());
    const Zone zone = isMovable ? zoneAt(*item, point) : Zone::Inside;
    const bool isEdge = zone == Zone::Start || zone == Zone::Due;
    setCursor(isEdge ? cursorOf(zone) : Qt::ArrowCursor);
    const RowId under = item ? eventOf(*item).task()->rowId() : 0;
    if (under != hovered)
        hoverTimer.start();
}

void CalendarGrid::leaveEvent(QEvent *)
{
    hoverTimer.stop();
    hovered = 0;
    update();
}

void CalendarGrid::mouseReleaseEvent(QMouseEvent *event)
{
    const QPointF point = logical(event->position());
    if (event->button() == Qt::RightButton && rightPressedAt) {
        const bool isClick = (*rightPressedAt - point).manhattanLength() < dragDistance;
        rightPressedAt.reset();
        const Placed *item = placedAt(point);
        if (!isClick || isDragging() || isMarking())
            return;
        if (!item)
            return createAt(point);
        const TaskPtr task = eventOf(*item).task();
        spot = {.row = task->rowId(), .segment = item->segment};
        select(task);
        raise(task);
        Q_EMIT menuWanted(task, event->globalPosition().toPoint());
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    if (held && !held->isByKeys)
        endDrag(true);
    else if (isMarking())
        markEnds();
}

bool CalendarGrid::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        auto *help = static_cast<QHelpEvent *>(event);
        if (const Placed *item = placedAt(logical(help->pos()))) {
            const EventCalendarView &shown = eventOf(*item);
            const QString text = u"<b>%1</b><br>%2<br>%3"_s.arg(firstPart(shown.title()).toHtmlEscaped(),
                                                                shown.spokenTime().toHtmlEscaped(),
                                                                shown.placeText().toHtmlEscaped());
            QToolTip::showText(help->globalPos(), text, this, visual(item->frame).toAlignedRect());
        } else {
            QToolTip::hideText();
        }
        return true;
    }
    return QWidget::event(event);
}

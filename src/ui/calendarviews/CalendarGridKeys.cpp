#include "calendarviews/CalendarGrid.h"

#include "calendarviews/SelectedTaskController.h"
#include "foundation/Localization.h"
#include "records/ShellAlerts.h"
#include "store/entities/MainContext.h"
#include "widgets/Accessibility.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QPointer>
#include <QToolTip>

using namespace Qt::Literals::StringLiterals;

// A calendar by the keyboard: from item to item and slot to slot, and items moved.

/// The items and free slots of a column, from top to bottom.
std::vector<CalendarGrid::Stop> CalendarGrid::stopsOf(int column) const
{
    std::vector<Stop> stops;
    const QRectF first = slotFrame(column);
    const double middle = first.center().x();
    for (const Placed &item : places) {
        const bool isHere = item.frame.left() <= middle ? item.frame.right() > middle - first.width() / 2 + 3
                                                        : item.frame.left() < first.right() - 3;
        if (isHere)
            stops.push_back({item.frame, {.row = eventOf(item).task()->rowId(), .segment = item.segment}});
    }
    const std::vector<Stop> items = stops;
    for (int slot = column; slot < slotRows() * columnCount(); slot += columnCount()) {
        const QRectF frame = slotFrame(slot);
        const auto covers = [&frame](const Stop &item) {
            return item.frame.top() < frame.bottom() - 1 && item.frame.bottom() > frame.top() + 1;
        };
        if (staysReachable() || std::ranges::none_of(items, covers))
            stops.push_back({frame, {.slot = slot}});
    }
    std::ranges::stable_sort(stops, [](const Stop &one, const Stop &other) {
        return std::pair(one.frame.top(), one.frame.left()) <
               std::pair(other.frame.top(), other.frame.left());
    });
    return stops;
}

const CalendarGrid::Placed *CalendarGrid::placedOf(const Spot &where) const
{
    for (const Placed &item : places) {
        if (eventOf(item).task()->rowId() == where.row && item.segment == where.segment)
            return &item;
    }
    return placedOf(where.row);
}

QRectF CalendarGrid::frameOf(const Spot &where) const
{
    if (where.isOnItem()) {
        const Placed *item = placedOf(where);
        return item ? item->frame : QRectF();
    }
    return slotFrame(where.slot);
}

int CalendarGrid::columnOf(const Spot &where) const
{
    if (!where.isOnItem())
        return where.slot % columnCount();
    const double left = frameOf(where).left();
    int column = 0;
    while (column + 1 < columnCount() && slotFrame(column + 1).left() <= left + 1)
        ++column;
    return column;
}

double CalendarGrid::currentHeight() const
{
    return frameOf(spot).top();
}

void CalendarGrid::goTo(const Spot &where)
{
    spot = where;
    showsSpot = true;
    if (const Placed *item = spot.isOnItem() ? placedOf(spot) : nullptr) {
        raised = spot.row;
        select(eventOf(*item).task());
    } else {
        SelectedTaskController::sharedCenter().removeAllTasks();
    }
    Q_EMIT wantsVisible(visual(frameOf(spot)).toAlignedRect());
    Accessibility::focusMoved(*this);
    update();
}

bool CalendarGrid::goToTask(const TaskPtr &task)
{
    const Placed *item = task ? placedOf(task->rowId()) : nullptr;
    if (!item)
        return false;
    goTo({.row = task->rowId(), .segment = item->segment});
    return true;
}

void CalendarGrid::enterColumn(int column, double y)
{
    const std::vector<Stop> stops = stopsOf(std::clamp(column, 0, columnCount() - 1));
    if (stops.empty())
        return;
    const auto distance = [y](const Stop &stop) { return std::abs(stop.frame.top() - y); };
    goTo(std::ranges::min_element(stops, {}, distance)->spot);
}

/// What it stood on may be gone: then it is on what is nearest to that place.
void CalendarGrid::keepSpot(int formerColumn, double formerTop)
{
    if (spot.isOnItem() && !placedOf(spot.row)) {
        const std::vector<Stop> stops = stopsOf(formerColumn);
        const auto distance = [formerTop](const Stop &stop) {
            return std::abs(stop.frame.top() - formerTop);
        };
        spot = stops.empty() ? Spot() : std::ranges::min_element(stops, {}, distance)->spot;
    }
    spot.slot = std::min(spot.slot, std::max(0, slotRows() * columnCount() - 1));
    if (raised != 0 && !placedOf(raised))
        raised = 0;
}

void CalendarGrid::goUpOrDown(int step)
{
    const std::vector<Stop> stops = stopsOf(columnOf(spot));
    auto place = std::ranges::find(stops, spot, &Stop::spot);
    if (place == stops.end()) {
        // An item came to lie on the slot.
        place = std::ranges::find_if(
            stops, [this](const Stop &stop) { return stop.frame.bottom() > frameOf(spot).top(); });
        return place == stops.end() ? void() : goTo(place->spot);
    }
    if (step < 0 && place == stops.begin())
        return Q_EMIT leftUpwards();
    if (step > 0 && place + 1 == stops.end())
        return Q_EMIT leftDownwards();
    goTo((place + step)->spot);
}

int CalendarGrid::slotOf(const Spot &where) const
{
    if (!where.isOnItem())
        return where.slot;
    const double top = frameOf(where).top();
    int slot = columnOf(where);
    while (slot + columnCount() < slotRows() * columnCount() && slotFrame(slot + columnCount()).top() <= top)
        slot += columnCount();
    return slot;
}

void CalendarGrid::goSideways(int columns)
{
    const int column = columnOf(spot) + columns;
    const int slot = currentSlot() + columns;
    if (column < 0 || column >= columnCount()) {
        if (areRowsConsecutive() && slot >= 0 && slot < slotRows() * columnCount())
            return goToSlot(slot);
        return Q_EMIT leftByKeys(columns);
    }
    enterColumn(column, frameOf(spot).top());
}

// Moving an item

static bool isArrow(int key)
{
    return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down;
}

bool CalendarGrid::moveByKey(QKeyEvent *event)
{
    const Placed *item = spot.isOnItem() ? placedOf(spot) : nullptr;
    if (!item || !isArrow(event->key()))
        return false;
    const std::shared_ptr<MVTask> shown = eventOf(*item).event();
    if (!held) {
        if (!CalendarDrag::isMovable(*shown)) {
            refuse(*shown);
            return true;
        }
        const TaskDates dates = TaskDates::of(*shown);
        held = Drag{.task = shown->task(), .from = *item, .before = dates, .dates = dates};
        held->isActive = true;
        held->isByKeys = true;
    }
    MVTask moved(held->task);
    held->dates.putInto(moved);
    int key = event->key();
    if (isRightToLeft() && (key == Qt::Key_Left || key == Qt::Key_Right))
        key = key == Qt::Key_Left ? Qt::Key_Right : Qt::Key_Left;
    if (const auto dates = datesAfterKey(moved, key, event->modifiers().testFlag(Qt::ShiftModifier))) {
        held->dates = *dates;
        showDrag();
        tellOfMove(*dates);
    }
    return true;
}

void CalendarGrid::tellOfMove(const TaskDates &dates)
{
    MVTask moved(held->task);
    dates.putInto(moved);
    const QString words = EventCalendarView(std::make_shared<MVTask>(moved)).spokenTime();
    const QRectF frame = visual(draggedPlaces.empty() ? held->from.frame : draggedPlaces.front().frame);
    Q_EMIT wantsVisible(frame.toAlignedRect());
    QToolTip::showText(mapToGlobal(frame.bottomLeft().toPoint()), words, this);
    Accessibility::announce(*this, words);
}

void CalendarGrid::finishKeyMove()
{
    if (held && held->isByKeys) {
        QToolTip::hideText();
        endDrag(true);
    }
}

/// The move that was saved last is undone, if nothing else happened since.
bool CalendarGrid::takeBack()
{
    if (!takenBy)
        return false;
    const Drag taken = *takenBy;
    takenBy.reset();
    ShellAlerts::presentError(mainContext().undo());
    reload();
    if (!goToTask(taken.task) && taken.before.due)
        Q_EMIT wentTo(taken.before.start ? *taken.before.start : *taken.before.due, taken.task);
    Accessibility::announce(*this, localized(u"Taken back"_s));
    return true;
}

// Keys

void CalendarGrid::keyPressEvent(QKeyEvent *event)
{
    const bool isMove = event->modifiers().testFlag(Qt::AltModifier);
    if (event->key() == Qt::Key_Alt || event->key() == Qt::Key_Shift)
        return QWidget::keyPressEvent(event);
    if (event->key() == Qt::Key_Escape) {
        const bool hadDrag = isDragging() || isMarking();
        if (hadDrag) {
            QToolTip::hideText();
            cancelDrag();
            Accessibility::announce(*this, localized(u"Taken back"_s));
        }
        if (hadDrag || takeBack())
            return;
        return QWidget::keyPressEvent(event);
    }
    if (isMove && moveByKey(event))
        return;
    const QPointer<CalendarGrid> self = this;
    finishKeyMove();
    if (!self)
        return;
    takenBy.reset();
    // The mouse has the item just now.
    if (isDragging() || isMarking())
        return;
    act(event);
}

void CalendarGrid::act(QKeyEvent *event)
{
    const int forward = isRightToLeft() ? -1 : 1;
    const bool isPlain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    if (!isPlain)
        return QWidget::keyPressEvent(event);
    switch (event->key()) {
    case Qt::Key_Up:
        return goUpOrDown(-1);
    case Qt::Key_Down:
        return goUpOrDown(1);
    case Qt::Key_Left:
        return goSideways(-forward);
    case Qt::Key_Right:
        return goSideways(forward);
    case Qt::Key_Home:
        return enterColumn(columnOf(spot), 0);
    case Qt::Key_End:
        return enterColumn(columnOf(spot), height());
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
        if (const Placed *item = spot.isOnItem() ? placedOf(spot) : nullptr)
            return Q_EMIT opened(eventOf(*item).task());
        return openSlot(spot.slot);
    case Qt::Key_N:
        return event->modifiers().testFlag(Qt::ShiftModifier) ? createWholeDay(currentSlot())
                                                              : createInSlot(currentSlot());
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        if (const TaskPtr task = currentTask())
            Q_EMIT removeRequested(task);
        return;
    case Qt::Key_Space:
        if (const TaskPtr task = currentTask())
            Q_EMIT toggled(task);
        return;
    case Qt::Key_PageUp:
        return Q_EMIT pageWanted(-1);
    case Qt::Key_PageDown:
        return Q_EMIT pageWanted(1);
    case Qt::Key_T:
        return Q_EMIT todayWanted();
    default:
        QWidget::keyPressEvent(event);
    }
}

void CalendarGrid::keyReleaseEvent(QKeyEvent *event)
{
    // With Shift held down the key has another name on some keyboards.
    const bool isAlt = event->key() == Qt::Key_Alt || event->key() == Qt::Key_Meta;
    QWidget::keyReleaseEvent(event);
    if (isAlt && !event->isAutoRepeat())
        finishKeyMove();
}

void CalendarGrid::contextMenuEvent(QContextMenuEvent *event)
{
    const Placed *item = spot.isOnItem() ? placedOf(spot) : nullptr;
    if (event->reason() != QContextMenuEvent::Keyboard || !item)
        return event->accept();
    select(eventOf(*item).task());
    const QPoint place = visual(item->frame).center().toPoint();
    Q_EMIT menuWanted(eventOf(*item).task(), mapToGlobal(place));
}

void CalendarGrid::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    const Qt::FocusReason reason = event->reason();
    if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
        reason == Qt::ShortcutFocusReason) {
        const TaskPtr selected = currentTask();
        if (!selected || !goToTask(selected))
            goTo(spot.isOnItem() || spot.slot > 0 ? spot : Spot{.slot = firstSlot()});
    }
    QMetaObject::invokeMethod(
        this, [this] { Accessibility::focusMoved(*this); }, Qt::QueuedConnection);
}

void CalendarGrid::focusOutEvent(QFocusEvent *event)
{
    takenBy.reset();
    QWidget::focusOutEvent(event);
    update();
    Q_EMIT focusLeft();
    finishKeyMove();
}

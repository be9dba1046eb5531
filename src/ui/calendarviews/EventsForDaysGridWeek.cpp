#include "calendarviews/EventsForDaysGridWeek.h"

#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "records/NewTaskRequest.h"
#include "records/dates/MVDate.h"
#include "store/queries/DBWorker.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

EventsForDaysGridWeek::EventsForDaysGridWeek(int shownDays, QWidget *parent)
    : CalendarGrid(parent)
    , days(shownDays)
    , day(MVDate::getStartOfDay(Clock::now()))
    , weekStart(day)
    , weekEnd(day)
{}

void EventsForDaysGridWeek::setDays(Date firstDay, const DayGridMetrics &newMetrics)
{
    day = MVDate::getStartOfDay(firstDay);
    weekStart = day;
    weekEnd = MVDate::getEndOfDay(dayOf(days - 1));
    metrics = newMetrics;
    cancelDrag();
    reload();
}

// Items

std::vector<std::shared_ptr<MVTask>> EventsForDaysGridWeek::fetch()
{
    items.clear();
    if (days > 1) {
        items = CalendarManager::dataBaseGetItemsWithStartWeek(weekStart, weekEnd);
    } else {
        for (const auto &task : MVTask::copiesOf(DBWorker::calendarDayAllDayTasks(day))) {
            CalendarForDaysItem &item = items.emplace_back(task);
            item.row = static_cast<qint64>(items.size());
            item.column = 0;
            item.duration = 1;
        }
    }
    std::vector<std::shared_ptr<MVTask>> copies;
    copies.reserve(items.size());
    for (const CalendarForDaysItem &item : items)
        copies.push_back(item.obj());
    return copies;
}

qint64 EventsForDaysGridWeek::laneCount() const
{
    return items.empty() ? 0 : std::ranges::max(items, {}, &CalendarForDaysItem::row).row;
}

int EventsForDaysGridWeek::countIn(int column) const
{
    return static_cast<int>(std::ranges::count_if(items, [column](const CalendarForDaysItem &item) {
        return item.column <= column && column < item.column + item.duration;
    }));
}

/// What goes on beyond the last day ends at the edge.
std::vector<CalendarGrid::Placed> EventsForDaysGridWeek::layout()
{
    std::vector<Placed> placedItems;
    placedItems.reserve(items.size());
    for (size_t number = 0; number < items.size(); ++number) {
        const CalendarForDaysItem &item = items[number];
        const qint64 shown = std::min(item.duration, days - item.column);
        placedItems.push_back({.event = static_cast<int>(number),
                               .frame = inDocument(lanes().frame(item.row, item.column, shown)),
                               .isResizable = days > 1});
    }
    return placedItems;
}

// Dragging

int EventsForDaysGridWeek::columnAt(QPointF point) const
{
    const double right = width() - metrics.gridIndent - 1;
    return std::max(0, columns().columnAt(std::clamp(point.x() - metrics.gridIndent, 0.0, right)));
}

CalendarGrid::Zone EventsForDaysGridWeek::zoneAt(const Placed &item, QPointF point) const
{
    if (!item.isResizable)
        return Zone::Inside;
    if (point.x() > item.frame.right() - reach)
        return Zone::Due;
    return point.x() < item.frame.left() + reach ? Zone::Start : Zone::Inside;
}

std::optional<TaskDates> EventsForDaysGridWeek::datesAt(const Drag &drag, QPointF point, bool)
{
    if (point.y() < 0 || point.y() > height())
        return std::nullopt;
    const MVTask task(drag.task);
    const int moved = columnAt(point) - columnAt(drag.pressedAt);
    if (moved == 0)
        return drag.before;
    if (drag.zone == Zone::Inside)
        return CalendarDrag::movedByDays(task, moved);
    const auto edge = drag.zone == Zone::Due ? CalendarDrag::Edge::Due : CalendarDrag::Edge::Start;
    return CalendarDrag::resizedByDays(task, edge, moved);
}

std::vector<CalendarGrid::Placed> EventsForDaysGridWeek::layoutOfDrag(const Drag &drag)
{
    if (!drag.dates.start || !drag.dates.due || *drag.dates.due < weekStart || *drag.dates.start > weekEnd)
        return {};
    const auto copy = std::make_shared<MVTask>(drag.task);
    drag.dates.putInto(*copy);
    CalendarForDaysItem item(copy);
    CalendarManager::settingEventItem(item, weekStart, weekEnd,
                                      CalendarManager::columnWithDate(*copy->startDate, weekStart),
                                      CalendarManager::columnWithDate(*copy->dueDate, weekStart));
    const qint64 lane = items[static_cast<size_t>(drag.from.event)].row;
    const qint64 shown = std::min(item.duration, days - item.column);
    return {{.event = drag.from.event,
             .frame = inDocument(lanes().frame(lane, item.column, shown)),
             .isResizable = true}};
}

bool EventsForDaysGridWeek::planAt(MVTask &task, QPointF point) const
{
    CalendarDrag::planOn(task, dayOf(columnAt(point)));
    return true;
}

std::optional<TaskDates> EventsForDaysGridWeek::datesAfterKey(const MVTask &task, int key, bool resizes)
{
    if (key != Qt::Key_Left && key != Qt::Key_Right)
        return std::nullopt;
    const int step = key == Qt::Key_Left ? -1 : 1;
    if (resizes)
        return CalendarDrag::resizedByDays(task, CalendarDrag::Edge::Due, step);
    return CalendarDrag::movedByDays(task, step);
}

// Making something new

MarkedSpan EventsForDaysGridWeek::spanOf(int firstColumn, int lastColumn) const
{
    return {MVDate::getStartOfDay(dayOf(firstColumn)), MVDate::getEndOfDay(dayOf(lastColumn))};
}

void EventsForDaysGridWeek::markFrom(QPointF point)
{
    const int column = columnAt(point);
    if (days > 1)
        band = Band{lanes().laneAt(point.y()), column, column};
}

void EventsForDaysGridWeek::markTo(QPointF point, bool)
{
    band->resizedColumn = columnAt(point);
    update();
}

/// One day is what a double click makes.
void EventsForDaysGridWeek::markEnds()
{
    const auto [first, last] = std::minmax(band->activeColumn, band->resizedColumn);
    const MarkedSpan span = spanOf(first, last);
    const bool isLongEnough = first != last;
    band.reset();
    update();
    if (isLongEnough)
        Q_EMIT marked(span);
}

void EventsForDaysGridWeek::createAt(QPointF point)
{
    if (point.x() >= metrics.gridIndent)
        createInSlot(columnAt(point));
}

// Days

QRectF EventsForDaysGridWeek::slotFrame(int slot) const
{
    return {metrics.gridIndent + columns().positionOf(slot), 0, columns().columnWidth(), double(height())};
}

QString EventsForDaysGridWeek::slotName(int slot) const
{
    QStringList words{EventCalendarView::dayName(dayOf(slot))};
    for (const CalendarForDaysItem &item : items) {
        if (item.column <= slot && slot < item.column + item.duration)
            words << firstPart(item.title);
    }
    return words.join(u"; "_s);
}

QStringList EventsForDaysGridWeek::columnNames() const
{
    QStringList names;
    for (int column = 0; column < days; ++column)
        names << EventCalendarView::dayTitle(dayOf(column), countIn(column));
    return names;
}

void EventsForDaysGridWeek::createInSlot(int slot)
{
    Q_EMIT marked(spanOf(slot, slot));
}

QString EventsForDaysGridWeek::gridName() const
{
    return localized(u"All day"_s);
}

// Painting

void EventsForDaysGridWeek::paintGrid(QPainter &painter, const QRect &)
{
    painter.fillRect(rect(), QColor(Theme::card));
    for (int column = 0; column < days; ++column) {
        const QRectF cell = visual(slotFrame(column));
        const double edge = isRightToLeft() ? cell.right() - 1 : cell.left();
        painter.fillRect(QRectF(std::floor(edge), 0, 1, height()), QColor(Theme::cardBorder));
    }
    if (items.empty())
        return;
    painter.setPen(Theme::secondaryText);
    drawBeside(painter, visual({2, 2, metrics.gridIndent - 6, double(metrics.eventHeight())}),
               Theme::font(Theme::FontRole::SmallStrong), localized(u"All day"_s));
}

void EventsForDaysGridWeek::paintOver(QPainter &painter)
{
    if (!band || isPaintedForPaper() || band->activeColumn == band->resizedColumn)
        return;
    const auto [first, last] = std::minmax(band->activeColumn, band->resizedColumn);
    QRectF place = inDocument(lanes().frame(band->lane, first, last - first + 1));
    painter.setPen(Qt::NoPen);
    painter.setBrush(EventCalendarView::colourOfNew());
    painter.drawRoundedRect(visual(place), 3, 3);
}

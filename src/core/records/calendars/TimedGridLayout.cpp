#include "records/calendars/TimedGridLayout.h"

#include "records/calendars/Truncation.h"
#include "records/dates/MVDate.h"

#include <unordered_set>

std::vector<TimedItem> TimedItem::ofDays(const std::vector<TaskList> &days)
{
    std::vector<TimedItem> items;
    std::unordered_set<const EntityTask *> known;
    for (const TaskList &tasks : days)
        for (const TaskPtr &task : tasks)
            if (task && known.insert(task.get()).second)
                items.push_back(
                    {task, task->type() == TaskType::EmailCall, task->startDate(), task->dueDate()});
    return items;
}

TimedGridLayout::TimedGridLayout(Date firstDay, DayColumns columns, const DayGridMetrics &metrics,
                                 const std::vector<TimedItem> &items)
    : day(firstDay)
    , grid(columns)
    , sizes(metrics)
{
    for (size_t number = 0; number < items.size(); ++number) {
        if (auto placedItem = place(items[number])) {
            placedItem->item = static_cast<int>(number);
            frames.push_back(*placedItem);
        }
    }
    shareColumns(items);
}

std::optional<int> TimedGridLayout::columnOf(Date start) const
{
    if (grid.count == 1)
        return 0;
    const int column = CalendarManager::columnWithDate(start, day);
    return column >= 0 && column < grid.count ? std::optional(column) : std::nullopt;
}

std::optional<TimedGridLayout::Placed> TimedGridLayout::place(const TimedItem &item) const
{
    const OptionalDate start = item.startDate ? item.startDate : item.dueDate;
    const std::optional<int> column = start && item.dueDate ? columnOf(*start) : std::nullopt;
    if (!column)
        return std::nullopt;
    const auto pixel = [this](Date date) {
        return CalendarManager::convertTimeToPixel(date, sizes.rowHeight);
    };
    const int due = pixel(*item.dueDate);
    const int top = item.isEmailCall ? due : pixel(*start);
    const int height = item.isEmailCall ? sizes.eventHeight() : std::max(due - top, sizes.eventHeight());
    const QRectF frame(grid.positionOf(*column) + DayGridMetrics::indentX, top,
                       grid.columnWidth() - 2 * DayGridMetrics::indentX - 1, height);
    return Placed{0, *column, frame, !item.isEmailCall};
}

void TimedGridLayout::shareColumns(const std::vector<TimedItem> &items)
{
    constexpr double indent = DayGridMetrics::indentX;
    const double half = grid.columnWidth() * 0.5;
    const auto itemOf = [&items](const Placed &one) -> const TimedItem & {
        return items[static_cast<size_t>(one.item)];
    };
    for (Placed &appointment : frames) {
        if (itemOf(appointment).isEmailCall || !itemOf(appointment).startDate)
            continue;
        for (Placed &call : frames) {
            if (!itemOf(call).isEmailCall || call.column != appointment.column ||
                !CalendarManager::isCrossRect(appointment.frame, call.frame))
                continue;
            appointment.frame.setWidth(half - 2 * indent);
            call.frame.moveLeft(appointment.frame.right() + 2 * indent + 1);
            call.frame.setWidth(half - 4 * indent);
        }
    }
}

std::optional<int> TimedGridLayout::itemAt(QPointF point) const
{
    const auto topmost = std::find_if(frames.rbegin(), frames.rend(),
                                      [point](const Placed &one) { return one.frame.contains(point); });
    return topmost == frames.rend() ? std::nullopt : std::optional(topmost->item);
}

OptionalDate TimedGridLayout::momentAt(QPointF point, CalendarManager::DragStep step) const
{
    const int column = grid.columnAt(point.x());
    if (column < 0)
        return std::nullopt;
    return CalendarManager::dragTime(CalendarManager::dateWithColumn(column, day), point.y(), sizes.rowHeight,
                                     step);
}

TimedGridLayout::Hidden TimedGridLayout::hiddenIn(int column, double visibleTop, double visibleBottom) const
{
    const Placed *above = nullptr;
    const Placed *below = nullptr;
    for (const Placed &one : frames) {
        if (one.column != column)
            continue;
        if (one.frame.bottom() < visibleTop && (!above || one.frame.bottom() > above->frame.bottom()))
            above = &one;
        if (one.frame.top() > visibleBottom && (!below || one.frame.top() < below->frame.top()))
            below = &one;
    }
    const auto itemOf = [](const Placed *one) { return one ? std::optional(one->item) : std::nullopt; };
    return {itemOf(above), itemOf(below)};
}

QRectF TimedGridLayout::markerOf(int column) const
{
    constexpr double height = 5;
    return {sizes.gridIndent + grid.positionOf(column) + 1, 0, grid.columnWidth() - 3, height};
}

std::vector<TimedGridLayout::HourLabel> TimedGridLayout::hourLabels(double textHeight) const
{
    constexpr int rowsInHour = 2;
    std::vector<HourLabel> labels;
    for (int row = rowsInHour; row < CalendarManager::rowCount; row += rowsInHour)
        labels.push_back(
            {row / rowsInHour,
             {0, row * sizes.heightOfRow() - 0.5 * textHeight - 2, sizes.gridIndent - 4, textHeight + 2}});
    return labels;
}

std::optional<QRectF> TimedGridLayout::currentTimeLine(Date now) const
{
    constexpr double left = 11;
    constexpr double height = 5;
    const Date lastDay = CalendarManager::dateWithColumn(grid.count - 1, day);
    if (now < MVDate::getStartOfDay(day) || now > MVDate::getEndOfDay(lastDay))
        return std::nullopt;
    const int pixel = CalendarManager::convertTimeToPixel(now, sizes.rowHeight);
    return QRectF(left, truncated<int>(pixel - 0.5 * height), grid.width, height);
}

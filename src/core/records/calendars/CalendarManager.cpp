#include "records/calendars/CalendarManager.h"

#include "foundation/Calendar.h"
#include "records/calendars/Truncation.h"
#include "records/copies/MVTask.h"
#include "records/dates/MVDate.h"

#include <tuple>

// Moments and pixels, days and columns, lanes. What reads tasks is in CalendarManagerFeeds.cpp.

namespace {

double heightOfHour(double rowHeight)
{
    return 2 * (rowHeight > 0 ? rowHeight : CalendarManager::defaultRowHeight);
}

int daysBetween(Date start, Date end)
{
    return MVDate::durationEvent(MVDate::getStartOfDay(start), MVDate::getStartOfDay(end));
}

int columnOfDays(int days)
{
    return days >= 0 && days < CalendarManager::daysInWeek ? days : -1;
}

/// From the first moment of a day to the last one of another.
int daysCovered(Date first, Date last)
{
    return MVDate::durationEvent(MVDate::getStartOfDay(first), MVDate::getEndOfDay(last));
}

/// Whether two stretches have at least that length in common; with 0 they may touch.
bool isShared(double length, double start, double size, double otherStart, double otherSize)
{
    return static_cast<float>(start) <= static_cast<float>(otherStart + otherSize - length) &&
           static_cast<float>(otherStart) <= static_cast<float>(start + size - length);
}

bool clashes(const CalendarForDaysItem &item, const CalendarForDaysItem &placed)
{
    const qint64 end = item.column + item.duration;
    const qint64 placedEnd = placed.column + placed.duration;
    return (item.column >= placed.column && item.column < placedEnd) ||
           (end > placed.column && end <= placedEnd);
}

/// The items of each lane, the first lane first.
using Lanes = std::vector<std::vector<const CalendarForDaysItem *>>;

qint64 firstFreeLane(const CalendarForDaysItem &item, const Lanes &lanes)
{
    const auto isFree = [&item](const std::vector<const CalendarForDaysItem *> &lane) {
        return std::none_of(lane.begin(), lane.end(),
                            [&item](const CalendarForDaysItem *placed) { return clashes(item, *placed); });
    };
    return std::find_if(lanes.begin(), lanes.end(), isFree) - lanes.begin() + 1;
}

void putInto(Lanes &lanes, const CalendarForDaysItem &item)
{
    if (item.row < 1)
        return;
    if (lanes.size() < static_cast<size_t>(item.row))
        lanes.resize(static_cast<size_t>(item.row));
    lanes[static_cast<size_t>(item.row - 1)].push_back(&item);
}

/// The longest first, then by title.
bool isLongerThan(const CalendarForDaysItem &one, const CalendarForDaysItem &other)
{
    if (one.workSeconds != other.workSeconds)
        return one.workSeconds > other.workSeconds;
    return std::tie(one.title, one.column) < std::tie(other.title, other.column);
}

} // namespace

int CalendarManager::convertTimeToPixel(Date date, double rowHeight)
{
    constexpr double minutesInHour = 60;
    const DateComponents fields = Calendar::current().shortComponents(date);
    const double hour = heightOfHour(rowHeight);
    return truncated<int>(*fields.hour * hour + *fields.minute / minutesInHour * hour);
}

Date CalendarManager::convertPixelToTime(Date day, double position, double rowHeight)
{
    // No mouse goes further than some thousand days; beyond that no calendar counts.
    constexpr double farthest = 1e8;
    constexpr qint64 minutesInHour = 60;
    const double height = heightOfHour(rowHeight);
    const double inReach = std::isnan(position) ? 0 : std::clamp(position, -farthest, farthest);
    const auto hour = truncated<int>(inReach / height);
    const auto rest = truncated<qint64>(inReach - hour * height);
    const auto minute = truncated<int>(static_cast<double>(rest * minutesInHour) / height);
    return MVDate::setTimeWithCurrentDate(day, hour, minute, 1);
}

Date CalendarManager::dragTime(Date day, double position, double rowHeight, DragStep step)
{
    constexpr int lastHour = 23;
    constexpr int lastQuarter = 45;
    const Date minute = convertPixelToTime(day, position, rowHeight);
    if (step == DragStep::Minute)
        return minute;
    return std::clamp(MVDate::dateNearest15Minute(minute), MVDate::getStartOfDay(day),
                      MVDate::setTimeWithCurrentDate(day, lastHour, lastQuarter, 0));
}

bool CalendarManager::isCrossRect(const QRectF &one, const QRectF &withRect)
{
    return isShared(0, one.x(), one.width(), withRect.x(), withRect.width()) &&
           isShared(1, one.y(), one.height(), withRect.y(), withRect.height());
}

double CalendarManager::columnWidth(const QRectF &rect)
{
    return rect.width() / daysInWeek;
}

int CalendarManager::columnWithPosition(int x, const QRectF &rect)
{
    return truncated<int>(x / columnWidth(rect));
}

double CalendarManager::positionXWithColumn(int column, const QRectF &rect)
{
    return columnWidth(rect) * column;
}

int CalendarManager::columnWithDate(Date date, Date startWeek)
{
    return columnOfDays(daysBetween(startWeek, date));
}

Date CalendarManager::dateWithColumn(int column, Date startWeek)
{
    return MVDate::addDay(column, startWeek);
}

int CalendarManager::monthColumnWithDate(Date date, Date month)
{
    return columnOfDays(daysBetween(month, date) - 1);
}

void CalendarManager::settingEventItem(CalendarForDaysItem &item, Date startDate, Date endDate,
                                       int startColumn, int endColumn)
{
    const MVTask &task = *item.obj();
    const bool beginsHere = startColumn >= 0;
    const bool endsBeyond = beginsHere && endColumn < 0;
    item.startDate = beginsHere ? task.startDate : startDate;
    item.column = beginsHere ? startColumn : 0;
    const OptionalDate last = endsBeyond ? endDate : task.dueDate;
    item.duration = item.startDate && last ? daysCovered(*item.startDate, *last) : 1;
}

CalendarForDaysItems &CalendarManager::sortedEvents(CalendarForDaysItems &items)
{
    std::stable_sort(items.begin(), items.end(), isLongerThan);
    Lanes lanes;
    for (CalendarForDaysItem &item : items) {
        item.row = firstFreeLane(item, lanes);
        putInto(lanes, item);
    }
    std::stable_sort(items.begin(), items.end(),
                     [](const CalendarForDaysItem &one, const CalendarForDaysItem &other) {
                         return one.row != other.row ? one.row < other.row : isLongerThan(one, other);
                     });
    return items;
}

qint64 CalendarManager::notBusyRow(const CalendarForDaysItem &item, const CalendarForDaysItems &events)
{
    Lanes lanes;
    for (const CalendarForDaysItem &event : events)
        putInto(lanes, event);
    return firstFreeLane(item, lanes);
}

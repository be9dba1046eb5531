#include "records/calendars/CalendarManager.h"
#include "records/copies/MVTask.h"
#include "store/queries/DBWorker.h"

// The tasks of a week and of a month as items.

namespace {

CalendarForDaysItem weekItem(const std::shared_ptr<MVTask> &task, Date startWeek, Date endWeek)
{
    CalendarForDaysItem item(task);
    CalendarManager::settingEventItem(item, startWeek, endWeek,
                                      CalendarManager::columnWithDate(*item.obj()->startDate, startWeek),
                                      CalendarManager::columnWithDate(*item.obj()->dueDate, startWeek));
    return item;
}

CalendarForDaysItem monthItem(const std::shared_ptr<MVTask> &task, Date start, Date end,
                              const CalendarMonthRow &row)
{
    CalendarForDaysItem item(task);
    const MVTask &copy = *item.obj();
    if (item.startDueDate) {
        item.column = CalendarMonthColumn::getColumnNumberWithDate(*copy.dueDate, row);
        item.startDate = copy.dueDate;
        return item;
    }
    CalendarManager::settingEventItem(item, start, end,
                                      CalendarMonthColumn::getColumnNumberWithDate(*copy.startDate, row),
                                      CalendarMonthColumn::getColumnNumberWithDate(*copy.dueDate, row));
    return item;
}

CalendarForDaysItems monthItems(const TaskList &tasks, Date start, Date end, const CalendarMonthRow &row)
{
    CalendarForDaysItems items;
    for (const std::shared_ptr<MVTask> &task : MVTask::copiesOf(tasks))
        items.push_back(monthItem(task, start, end, row));
    CalendarManager::sortedEvents(items);
    return items;
}

} // namespace

CalendarForDaysItems CalendarManager::dataBaseGetItemsWithStartWeek(Date startWeek, Date endWeek)
{
    CalendarForDaysItems items;
    for (const auto &task : MVTask::copiesOf(DBWorker::calendarAllDayTasks(startWeek, daysInWeek)))
        items.push_back(weekItem(task, startWeek, endWeek));
    sortedEvents(items);
    return items;
}

CalendarForDaysItems CalendarManager::dataBaseGetItemsWithStartMonth(Date startMonth, Date endMonth,
                                                                     const CalendarMonthRow &row)
{
    return monthItems(DBWorker::calendarMonthTasks(startMonth, endMonth), startMonth, endMonth, row);
}

std::vector<CalendarForDaysItems> CalendarManager::dataBaseGetItems(const std::vector<CalendarMonthRow> &rows)
{
    std::vector<DaySpan> spans;
    spans.reserve(rows.size());
    for (const CalendarMonthRow &row : rows)
        spans.push_back({row.startDate, row.endDate});
    const std::vector<TaskList> tasks = DBWorker::calendarMonthTasks(spans);
    std::vector<CalendarForDaysItems> items;
    items.reserve(rows.size());
    for (size_t row = 0; row < rows.size(); ++row)
        items.push_back(monthItems(tasks[row], rows[row].startDate, rows[row].endDate, rows[row]));
    return items;
}

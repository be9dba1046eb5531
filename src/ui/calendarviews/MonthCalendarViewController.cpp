#include "calendarviews/MonthCalendarViewController.h"

#include "calendarviews/DaysLineWeek.h"
#include "calendarviews/EventsGridMonth.h"
#include "foundation/Clock.h"
#include "foundation/DateFormatter.h"
#include "records/NewTaskRequest.h"
#include "records/dates/MVDate.h"
#include "store/state/NotificationNames.h"

using namespace Qt::Literals::StringLiterals;

MonthCalendarViewController::MonthCalendarViewController(QWidget *parent)
    : CalendarPage(parent)
    , header(new DaysLineWeek(this))
    , grid(new EventsGridMonth(this))
{
    setObjectName(u"MonthCalendarViewController"_s);
    header->setObjectName(u"headerView"_s);
    header->setAttribute(Qt::WA_TransparentForMouseEvents);
    grid->setObjectName(u"calendareView"_s);
    setFocusProxy(grid);
    connectGrid(grid);
    connect(grid, &CalendarGrid::marked, this, [](const MarkedSpan &span) {
        NotificationCenter::defaultCenter().post(notifications::allDayCalendarCreateTask, span);
    });
    connect(grid, &EventsGridMonth::dayWanted, this, &CalendarPage::dayWanted);
    connect(grid, &CalendarGrid::leftUpwards, this, [this] { Q_EMIT pageWanted(-1); });
    connect(grid, &CalendarGrid::leftDownwards, this, [this] { Q_EMIT pageWanted(1); });
}

void MonthCalendarViewController::setDate(Date date)
{
    grid->setMonth(date);
    std::vector<DaysLineWeek::Day> days;
    const CalendarMonthRow &first = grid->weeks().front();
    for (int column = 0; column < CalendarManager::daysInWeek; ++column) {
        const Date day = first.dateOfColumn(column);
        days.push_back({day, DateFormatter::string(day, u"EEEE"_s)});
    }
    header->setDays(std::move(days), 0, 0);
}

void MonthCalendarViewController::refreshCalendar()
{
    grid->reload();
}

std::vector<CalendarGrid *> MonthCalendarViewController::grids() const
{
    return {grid};
}

CalendarGrid *MonthCalendarViewController::mainGrid() const
{
    return grid;
}

/// Up to midnight, but not longer than a suspended computer can be asleep without being noticed.
int MonthCalendarViewController::clockInterval() const
{
    constexpr int longest = 10 * 60 * 1000;
    return longest;
}

void MonthCalendarViewController::resizeEvent(QResizeEvent *event)
{
    CalendarPage::resizeEvent(event);
    const int line = DaysLineWeek::neededHeight();
    header->setGeometry(0, 0, width(), line);
    grid->setGeometry(0, line, width(), height() - line);
}

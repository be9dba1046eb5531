#include "calendarviews/MonthCalendarViewController.h"

#include "calendarviews/DaysLineWeek.h"
#include "calendarviews/EventsGridMonth.h"
#include "foundation/Clock.h"
#include "foundation/DateFormatter.h"
#include "records/NewTaskRequest.h"
#include "records/dates/MVDate.h"
#include "store/state/NotificationNames.h"

#include <QPainter>

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

std::unique_ptr<CalendarPage> MonthCalendarViewController::copyForPaper() const
{
    auto copy = std::make_unique<MonthCalendarViewController>();
    copy->setLayoutDirection(layoutDirection());
    copy->showDate(date());
    return copy;
}

void MonthCalendarViewController::fitToPaper(double ratio)
{
    constexpr int usualWidth = 1050;
    resize(usualWidth, static_cast<int>(usualWidth / ratio));
    const int line = DaysLineWeek::neededHeight();
    header->resize(width(), line);
    grid->resize(width(), height() - line);
    grid->relayout();
}

void MonthCalendarViewController::paintForPaper(QPainter &painter)
{
    painter.save();
    header->render(&painter, {}, {}, DrawChildren);
    painter.translate(0, header->height());
    painter.setClipRect(grid->rect());
    grid->paintForPaper(painter);
    painter.restore();
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

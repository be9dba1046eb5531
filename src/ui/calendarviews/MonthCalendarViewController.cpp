#include "calendarviews/MonthCalendarViewController.h"

#include "calendarviews/DaysLineWeek.h"
#include "calendarviews/EventsGridMonth.h"
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
    header->setQuiet();
    grid->setObjectName(u"calendareView"_s);
    setFocusProxy(grid);
    connectGrid(grid);
    connect(grid, &CalendarGrid::marked, this, [](const MarkedSpan &span) {
        NotificationCenter::defaultCenter().post(notifications::allDayCalendarCreateTask, span);
    });
    connect(grid, &EventsGridMonth::dayWanted, this, &CalendarPage::dayWanted);
    connect(grid, &EventsGridMonth::birthdaysPressed, this, &MonthCalendarViewController::pressBirthdays);
    constexpr int week = CalendarManager::daysInWeek;
    connect(grid, &CalendarGrid::leftUpwards, this, [this] { goOnByKeys(grid, -week); });
    connect(grid, &CalendarGrid::leftDownwards, this, [this] { goOnByKeys(grid, week); });
}

void MonthCalendarViewController::setDate(Date date)
{
    grid->setMonth(date);
    showBirthdays();
    std::vector<DaysLineWeek::Day> days;
    const CalendarMonthRow &first = grid->weeks().front();
    for (int column = 0; column < CalendarManager::daysInWeek; ++column) {
        const Date day = first.dateOfColumn(column);
        days.push_back({.date = day, .words = DateFormatter::string(day, u"EEEE"_s)});
    }
    header->setDays(std::move(days), 0, 0);
    placeParts();
}

void MonthCalendarViewController::refreshCalendar()
{
    grid->reload();
    showBirthdays();
}

void MonthCalendarViewController::showBirthdays()
{
    const int days = static_cast<int>(grid->weeks().size()) * CalendarManager::daysInWeek;
    birthdays.show(grid->weeks().front().dateOfColumn(0), days);
    grid->setBirthdays(birthdays.days());
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

/// The day that follows may stand in the middle of what comes.
void MonthCalendarViewController::goOnByKeys(CalendarGrid *, int days)
{
    const Date wanted = MVDate::addDay(days, grid->currentDay());
    const Date before = date();
    Q_EMIT besideWanted(days < 0 ? -1 : 1);
    if (date() != before)
        grid->goToDay(wanted);
}

void MonthCalendarViewController::placeParts()
{
    const int line = DaysLineWeek::neededHeight();
    header->setGeometry(0, 0, width(), line);
    grid->setGeometry(0, line, width(), height() - line);
}

void MonthCalendarViewController::resizeEvent(QResizeEvent *event)
{
    CalendarPage::resizeEvent(event);
    placeParts();
}

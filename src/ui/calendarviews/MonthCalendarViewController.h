#pragma once

#include "calendarviews/CalendarPage.h"

class DaysLineWeek;
class EventsGridMonth;

/// A month: the names of its weekdays above its weeks.
class MonthCalendarViewController : public CalendarPage
{
    Q_OBJECT
public:
    explicit MonthCalendarViewController(QWidget *parent = nullptr);

    void refreshCalendar() override;
    std::vector<CalendarGrid *> grids() const override;
    CalendarGrid *mainGrid() const override;
    std::unique_ptr<CalendarPage> copyForPaper() const override;
    void fitToPaper(double ratio) override;
    void paintForPaper(QPainter &painter) override;
    EventsGridMonth *weeks() const { return grid; }

protected:
    void setDate(Date date) override;
    void goOnByKeys(CalendarGrid *, int days) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void placeParts();
    void showBirthdays();

    DaysLineWeek *header;
    EventsGridMonth *grid;
};

#pragma once

#include "calendarviews/CalendarPage.h"
#include "records/calendars/DayGridMetrics.h"

class BirthdaysLine;
class DaysLineWeek;
class EventGridWeek;
class EventsForDaysGridWeek;
class QScrollArea;
class QToolButton;

/// Days side by side: whole-day ToDos above, the hours below.
class DaysCalendarView : public CalendarPage
{
    Q_OBJECT
public:
    void refreshCalendar() override;
    std::vector<CalendarGrid *> grids() const override;
    CalendarGrid *mainGrid() const override;
    EventGridWeek *hours() const { return timed; }
    EventsForDaysGridWeek *wholeDays() const { return lanes; }
    bool hasClash() const override;
    /// Scrolls the hours by a page.
    void scrollPage(int step);
    /// A new task for the whole of the day that is shown.
    void newAllDayEvent();

    std::unique_ptr<CalendarPage> copyForPaper() const override;
    void fitToPaper(double ratio) override;
    void paintForPaper(QPainter &painter) override;

    /// The sizes that fit the text of the program.
    static DayGridMetrics metricsOfText();

protected:
    DaysCalendarView(int days, QWidget *parent);

    virtual Date firstDayOf(Date date) const = 0;
    void setDate(Date date) override;
    QRect slidingArea() const override;
    void timePassed() override;
    bool showsMoment() const override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void connectParts();
    /// The hours that paper shows, as a stretch of the whole height.
    std::pair<int, int> hoursOnPaper() const;
    void setSizeScrollViews();
    void goToLanes();
    void countItems();
    void scrollToFirst();
    void visibleSpanChanged();
    void scrollOn(const QPoint &point);
    void autoscroll();
    void describeDays(int trailing);
    void describeBirthdays(int trailing);

    int dayCount;
    DayGridMetrics metrics;
    DaysLineWeek *header = nullptr;
    BirthdaysLine *birthdaysLine;
    /// Says where whole-day tasks go while a single day has none.
    QToolButton *allDayLabel = nullptr;
    EventsForDaysGridWeek *lanes;
    EventGridWeek *timed;
    QScrollArea *laneScroll;
    QScrollArea *timedScroll;
    QTimer autoscrollTimer;
    bool wasScrolled = false;
    /// The keyboard is among the whole days although there is nothing.
    bool isLaneWanted = false;
    QRect separator;
};

class WeekCalendarViewController : public DaysCalendarView
{
    Q_OBJECT
public:
    explicit WeekCalendarViewController(QWidget *parent = nullptr);

protected:
    Date firstDayOf(Date date) const override;
};

class DayCalendarViewController : public DaysCalendarView
{
    Q_OBJECT
public:
    explicit DayCalendarViewController(QWidget *parent = nullptr);

protected:
    Date firstDayOf(Date date) const override;
};

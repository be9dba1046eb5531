#pragma once

#include "calendarviews/BirthdayDays.h"
#include "foundation/NotificationCenter.h"
#include "store/entities/Entities.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <vector>

class CalendarGrid;
class CalendarSlide;
struct StoreChanges;

/// A day, a week or a month on the screen, which follows the store, the clock and the zone of the computer.
class CalendarPage : public QWidget
{
    Q_OBJECT
public:
    explicit CalendarPage(QWidget *parent = nullptr);
    ~CalendarPage() override;

    Date date() const { return shownDate; }
    /// Shows the day, week or month of a date at once. A slide that runs ends there.
    void showDate(Date date);
    /// Slides it in: from the trailing side for 1, from the leading side for -1.
    void slideTo(Date date, int direction);
    /// Reads everything anew.
    virtual void refreshCalendar() = 0;
    /// Whether the one day that is shown has appointments at the same time; a page of several marks them
    /// itself.
    virtual bool hasClash() const { return false; }

    /// The task that the keyboard is on, or that is selected here; null for none.
    TaskPtr currentTask() const;
    bool goToTask(const TaskPtr &task);
    virtual std::vector<CalendarGrid *> grids() const = 0;
    /// The grid that takes the keyboard.
    virtual CalendarGrid *mainGrid() const = 0;

    /// Another page of the same kind at the same date, that nobody sees.
    virtual std::unique_ptr<CalendarPage> copyForPaper() const = 0;
    /// Gives itself the size at which it has the shape of a page of paper (width by height).
    virtual void fitToPaper(double ratio) = 0;
    /// Paints itself from its upper left corner, whole, without what the mouse and the keyboard do.
    virtual void paintForPaper(QPainter &painter) = 0;

Q_SIGNALS:
    void eventViewSelectedItem();
    void opened(const TaskPtr &task);
    void menuWanted(const TaskPtr &task, const QPoint &globalPosition);
    void removeRequested(const TaskPtr &task);
    void toggled(const TaskPtr &task);
    /// The next or previous day, week or month, or the present one.
    void pageWanted(int step);
    /// The keys lead to the day before the first one or after the last one.
    void besideWanted(int step);
    /// What is selected in the calendars is something else, or nothing.
    void selectionChanged();
    /// Everything was read anew, perhaps for another zone or day.
    void shownAnew();
    void todayWanted();
    /// The day view of a date.
    void dayWanted(Date day);
    /// Who has birthday is to be shown.
    void personWanted(const ObjectPtr &contact);
    /// A task was moved to where it is not shown.
    void wentTo(Date date, const TaskPtr &task);

protected:
    virtual void setDate(Date date) = 0;
    /// The birthdays of the days that are shown.
    BirthdayDays birthdays;
    /// Has one of them shown; of several the user chooses, in a menu at that place of the screen.
    void pressBirthdays(const BirthdayDays::List &pressed, const QPoint &globalPosition);
    /// What moves in a slide.
    virtual QRect slidingArea() const { return rect(); }
    /// The present moment has gone on.
    virtual void timePassed() {}
    /// Whether the present moment is shown, not only the present day.
    virtual bool showsMoment() const { return false; }

    /// The keys go on at the other side of what comes.
    virtual void goOnByKeys(CalendarGrid *grid, int columns);
    /// Has the page answer for what happens in a grid of it.
    void connectGrid(CalendarGrid *grid);

    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    QPixmap picture(const QRect &area);
    void storeChanged(const StoreChanges &changes);
    void birthdaysChanged();
    void showPerson(RowId row);
    void refreshSoon() { refresh.start(0); }
    void clockTicked();
    void startClock();
    void refreshNow();

    Date shownDate;
    Date today;
    QByteArray zone;
    QTimer refresh;
    QTimer clock;
    /// Something changed while nobody saw it; of the look of the page, so that it is built anew.
    bool isOld = false;
    bool isLookOld = false;
    QPointer<CalendarSlide> slide;
    std::vector<Observation> observations;
};

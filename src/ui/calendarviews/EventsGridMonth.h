#pragma once

#include "calendarviews/BirthdayDays.h"
#include "calendarviews/CalendarGrid.h"
#include "records/calendars/CalendarMonthRow.h"
#include "records/calendars/MonthGridLayout.h"

/// The weeks of a month: all kinds of tasks as bars of one line across their days, as many as fit, and the
/// number of the others.
class EventsGridMonth : public CalendarGrid
{
    Q_OBJECT
public:
    explicit EventsGridMonth(QWidget *parent = nullptr);

    void setMonth(Date date);
    const MonthGridLayout &layoutOfItems() const { return grid; }
    const std::vector<CalendarMonthRow> &weeks() const { return rows; }
    /// The day that the keyboard is on.
    Date currentDay() const { return dateOf(cellOf(currentSlot())); }
    /// The birthdays of each day that is shown, from the first on. They stand beside the number of their day
    /// and are no items: nothing of the layout counts them.
    void setBirthdays(std::vector<BirthdayDays::List> days);
    /// Where those of a day stand, in logical coordinates.
    QRectF birthdaysFrame(int slot) const;
    /// Puts the keyboard onto a day; nothing if it is not shown.
    void goToDay(Date day);

Q_SIGNALS:
    /// The user wants to see a day with all that is hidden of it.
    void dayWanted(Date day);
    /// The birthdays of a day were pressed.
    void birthdaysPressed(const BirthdayDays::List &birthdays, const QPoint &globalPosition);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    bool event(QEvent *event) override;
    std::vector<std::shared_ptr<MVTask>> fetch() override;
    std::vector<Placed> layout() override;
    void paintGrid(QPainter &painter, const QRect &clip) override;

    Zone zoneAt(const Placed &, QPointF) const override { return Zone::Inside; }
    Qt::CursorShape cursorOf(Zone) const override { return Qt::ArrowCursor; }
    std::optional<TaskDates> datesAt(const Drag &drag, QPointF point, bool isExact) override;
    std::vector<Placed> layoutOfDrag(const Drag &drag) override;
    bool planAt(MVTask &task, QPointF point) const override;
    std::optional<TaskDates> datesAfterKey(const MVTask &task, int key, bool resizes) override;
    void createAt(QPointF point) override;
    bool pressElse(QPointF point) override;

    int columnCount() const override { return CalendarManager::daysInWeek; }
    int slotRows() const override { return static_cast<int>(rows.size()); }
    QRectF slotFrame(int slot) const override;
    QString slotName(int slot) const override;
    QStringList columnNames() const override;
    bool staysReachable() const override { return true; }
    void createInSlot(int slot) override;
    void openSlot(int slot) override;
    bool areRowsConsecutive() const override { return true; }
    int firstSlot() const override;
    QString gridName() const override;

private:
    using Cell = MonthGridLayout::Cell;

    Cell cellOf(int slot) const { return {slot / columnCount(), slot % columnCount()}; }
    Date dateOf(Cell cell) const;
    Cell nearestCell(QPointF point) const;
    CalendarForDaysItem segmentOf(const std::shared_ptr<MVTask> &copy, const CalendarMonthRow &row) const;
    bool touches(const MVTask &task, const CalendarMonthRow &row) const;
    void findClashes();
    QString numberOf(Date date) const;
    double widthOfNumber(Date date) const;
    /// The slot whose birthdays are at a point; -1 for none.
    int birthdaysAt(QPointF point) const;
    void pressBirthdaysOf(int slot);
    void paintCell(QPainter &painter, Cell cell) const;
    void paintNumber(QPainter &painter, Cell cell) const;
    void paintMore(QPainter &painter, Cell cell) const;

    Date month;
    std::vector<CalendarMonthRow> rows;
    std::vector<CalendarForDaysItems> items;
    /// Where the items of each row begin among all.
    std::vector<int> firstOfRow;
    /// The days of which two appointments are at the same time, by slot.
    std::vector<bool> clashing;
    /// By slot.
    std::vector<BirthdayDays::List> birthdays;
    MonthGridMetrics metrics;
    MonthGridLayout grid;
};

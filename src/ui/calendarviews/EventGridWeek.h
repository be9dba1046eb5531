#pragma once

#include "calendarviews/CalendarGrid.h"
#include "records/calendars/TimedGridLayout.h"

/// The hours of one day or of several: Appointments, mails and calls where their time is, with the labels of
/// the hours beside them.
class EventGridWeek : public CalendarGrid
{
    Q_OBJECT
public:
    explicit EventGridWeek(int days, QWidget *parent = nullptr);

    void setDays(Date firstDay, const DayGridMetrics &metrics);
    const TimedGridLayout &layoutOfItems() const { return grid; }
    /// What of the height can be seen: strips at its ends point to what cannot.
    void setVisibleSpan(int top, int bottom);
    /// The present moment has gone on.
    void updateCurrentTime();
    /// The first thing that the user should see: now, the first item, or the morning.
    int firstHeight() const;
    /// The days of which two appointments are at the same time, by their columns.
    const std::vector<bool> &clashes() const { return clashingColumns; }
    /// How many items stand on a day.
    int countIn(int column) const;
    /// How many others the days have that stand elsewhere.
    void setWholeDayCounts(std::vector<int> counts) { wholeDayCounts = std::move(counts); }

Q_SIGNALS:
    void wholeDayMarked(Date day);

protected:
    std::vector<std::shared_ptr<MVTask>> fetch() override;
    std::vector<Placed> layout() override;
    void paintGrid(QPainter &painter, const QRect &clip) override;
    void paintOver(QPainter &painter) override;

    Zone zoneAt(const Placed &item, QPointF point) const override;
    Qt::CursorShape cursorOf(Zone) const override { return Qt::SizeVerCursor; }
    std::optional<TaskDates> datesAt(const Drag &drag, QPointF point, bool isExact) override;
    std::vector<Placed> layoutOfDrag(const Drag &drag) override;
    std::optional<TaskDates> datesAfterKey(const MVTask &task, int key, bool resizes) override;
    OptionalDate momentOf(const Drag &drag) const override;
    bool planAt(MVTask &task, QPointF point) const override;
    QRectF dropFrame(QPointF point) const override;

    void markFrom(QPointF point) override;
    void markTo(QPointF point, bool isExact) override;
    void markEnds() override;
    void markCancelled() override { band.reset(); }
    bool isMarking() const override { return band.has_value(); }
    void createAt(QPointF point) override;
    bool pressElse(QPointF point) override;

    int columnCount() const override { return days; }
    int slotRows() const override { return CalendarManager::rowCount; }
    QRectF slotFrame(int slot) const override;
    QString slotName(int slot) const override;
    QStringList columnNames() const override;
    void createInSlot(int slot) override;
    void createWholeDay(int slot) override;
    int firstSlot() const override;
    QString gridName() const override;

private:
    /// What is being marked for a new task.
    struct Band
    {
        int column = 0;
        double pressed = 0;
        double current = 0;
        CalendarManager::DragStep step = CalendarManager::DragStep::Quarter;

        /// A press that hardly moves marks nothing.
        bool isLongEnough() const { return std::abs(current - pressed) >= dragDistance; }
    };

    QPointF inGrid(QPointF point) const { return point - QPointF(metrics.gridIndent, 0); }
    Date dayOf(int column) const { return CalendarManager::dateWithColumn(column, day); }
    Placed fromGrid(const TimedGridLayout::Placed &one) const;
    Date momentAt(int column, double y, CalendarManager::DragStep step) const;
    MarkedSpan spanOf(const Band &marked) const;
    void findClashes();
    void paintColumn(QPainter &painter, int column) const;
    void paintHours(QPainter &painter, const QRect &clip) const;
    void paintCurrentTime(QPainter &painter) const;
    void paintBand(QPainter &painter) const;
    void paintMoment(QPainter &painter) const;
    void paintMarkers(QPainter &painter) const;
    QRectF markerOf(int column, bool isBelow) const;
    DayColumns columns() const { return {days, width() - metrics.gridIndent}; }

    int days;
    Date day;
    DayGridMetrics metrics;
    std::vector<TimedItem> items;
    TimedGridLayout grid;
    std::vector<bool> clashingColumns;
    std::vector<int> wholeDayCounts;
    std::optional<Band> band;
    OptionalDate moment;
    int visibleTop = 0;
    int visibleBottom = 0;
};

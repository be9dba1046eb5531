#pragma once

#include "calendarviews/CalendarGrid.h"
#include "records/calendars/AllDayLanes.h"
#include "records/calendars/CalendarForDaysItem.h"

/// The ToDos of one day, as a list, or of several, as bars in lanes across their days. They are moved only
/// where there are several.
class EventsForDaysGridWeek : public CalendarGrid
{
    Q_OBJECT
public:
    explicit EventsForDaysGridWeek(int days, QWidget *parent = nullptr);

    void setDays(Date firstDay, const DayGridMetrics &metrics);
    /// How high the lanes are, and how much of that is shown before they scroll.
    double documentHeight() const { return lanes().documentHeight(laneCount()); }
    double areaHeight() const { return lanes().areaHeight(laneCount()); }
    qint64 laneCount() const;
    /// How many bars cover a day.
    int countIn(int column) const;

protected:
    std::vector<std::shared_ptr<MVTask>> fetch() override;
    std::vector<Placed> layout() override;
    void paintGrid(QPainter &painter, const QRect &clip) override;
    void paintOver(QPainter &painter) override;

    Zone zoneAt(const Placed &item, QPointF point) const override;
    Qt::CursorShape cursorOf(Zone) const override { return Qt::SizeHorCursor; }
    bool movesItems() const override { return days > 1; }
    std::optional<TaskDates> datesAt(const Drag &drag, QPointF point, bool isExact) override;
    std::vector<Placed> layoutOfDrag(const Drag &drag) override;
    bool planAt(MVTask &task, QPointF point) const override;
    std::optional<TaskDates> datesAfterKey(const MVTask &task, int key, bool resizes) override;

    void markFrom(QPointF point) override;
    void markTo(QPointF point, bool isExact) override;
    void markEnds() override;
    void markCancelled() override { band.reset(); }
    bool isMarking() const override { return band.has_value(); }
    void createAt(QPointF point) override;

    int columnCount() const override { return days; }
    int slotRows() const override { return 1; }
    QRectF slotFrame(int slot) const override;
    QString slotName(int slot) const override;
    QStringList columnNames() const override;
    bool staysReachable() const override { return true; }
    void createInSlot(int slot) override;
    QString gridName() const override;

private:
    struct Band
    {
        int lane = 1;
        int activeColumn = 0;
        int resizedColumn = 0;
    };

    AllDayLanes lanes() const { return {columns(), metrics}; }
    DayColumns columns() const { return {days, width() - metrics.gridIndent}; }
    /// The column at a point, or the one nearest to it.
    int columnAt(QPointF point) const;
    Date dayOf(int column) const { return CalendarManager::dateWithColumn(column, day); }
    QRectF inDocument(const QRectF &frame) const { return frame.translated(metrics.gridIndent, 0); }
    MarkedSpan spanOf(int firstColumn, int lastColumn) const;

    int days;
    Date day;
    Date weekStart;
    Date weekEnd;
    DayGridMetrics metrics;
    CalendarForDaysItems items;
    std::optional<Band> band;
};

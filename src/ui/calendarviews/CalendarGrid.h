#pragma once

#include "calendarviews/EventCalendarView.h"
#include "foundation/NotificationCenter.h"
#include "records/CalendarDrag.h"

#include <QPixmap>
#include <QTimer>
#include <QWidget>

#include <optional>
#include <vector>

struct MarkedSpan;

/// The part of a calendar that items stand on: hours, whole days or a month. It knows what is alike in all of
/// them: how items are selected, opened, dragged and moved by keys, and how they are told to a screen reader.
/// Where they stand and what a drag means is up to each.
///
/// Places are logical: counted from the leading edge, whatever the direction of the language.
class CalendarGrid : public QWidget
{
    Q_OBJECT
public:
    explicit CalendarGrid(QWidget *parent = nullptr);
    ~CalendarGrid() override;

    /// Reads the store anew. A drag ends if what is dragged is no longer what it was.
    void reload();
    /// Puts everything in its place anew.
    void relayout();

    /// An item and one of the places where it stands.
    struct Placed
    {
        int event = 0;
        QRectF frame = {};
        bool isResizable = false;
        /// Which of its bars it is, where it has several: the row of a month.
        int segment = 0;
    };
    const std::vector<EventCalendarView> &events() const { return shownEvents; }
    const std::vector<Placed> &placed() const { return places; }
    /// The place on the screen of a logical one, and back.
    QRectF visual(const QRectF &place) const;
    QPointF logical(QPointF point) const;

    bool isDragging() const { return held.has_value(); }
    /// The mouse stands still while what is under it scrolls.
    void continueDrag();
    /// Gives up what is being dragged or marked.
    void cancelDrag();
    /// Saves what the keys have moved so far.
    void finishKeyMove();

    /// The task that has the keyboard, or is selected; null for none.
    TaskPtr currentTask() const;
    /// Puts the keyboard on a task, and selects it. False if it is not shown.
    bool goToTask(const TaskPtr &task);
    /// Puts the keyboard onto a column, as near as possible to a height.
    void enterColumn(int column, double y);
    /// Where the keyboard stands at present, for whoever goes on beside it.
    double currentHeight() const;
    int currentColumn() const { return columnOf(spot); }

    /// Paints everything for paper: without what the mouse and the keyboard do.
    void paintForPaper(QPainter &painter);

Q_SIGNALS:
    /// An item was pressed.
    void eventViewSelectedItem();
    void opened(const TaskPtr &task);
    void menuWanted(const TaskPtr &task, const QPoint &globalPosition);
    void removeRequested(const TaskPtr &task);
    /// It is to be done, or no longer.
    void toggled(const TaskPtr &task);
    /// Another day, week or month, or the present one.
    void pageWanted(int step);
    void todayWanted();
    /// The keys have moved a task to where it is not shown.
    void wentTo(Date date, const TaskPtr &task);
    /// Something for a new task was marked.
    void marked(const MarkedSpan &span);
    /// The keys lead out of the grid: to the day before or after, a page on, or up and down.
    void leftByKeys(int columns);
    void leftUpwards();
    /// The keyboard has gone elsewhere.
    void focusLeft();
    void leftDownwards();
    /// A moment is being dragged to, or no longer.
    void momentShown(OptionalDate moment);
    /// The mouse is at a place while something is dragged: what scrolls may follow.
    void draggedAt(const QPoint &point);
    /// The keyboard is at a place.
    void wantsVisible(const QRect &place);
    /// The items may have become more or less.
    void reloaded();

protected:
    // What each grid says.
    /// The tasks that are shown, in the order in which they lie on each other.
    virtual std::vector<std::shared_ptr<MVTask>> fetch() = 0;
    /// Where they stand.
    virtual std::vector<Placed> layout() = 0;
    virtual void paintGrid(QPainter &painter, const QRect &clip) = 0;
    virtual void paintOver(QPainter &painter) { Q_UNUSED(painter) }

    /// How far the mouse goes before that is a drag: a quarter of an hour is not much more.
    static constexpr int dragDistance = 4;
    /// How near to an edge of an item it is taken by.
    static constexpr double reach = 4;
    /// With none nothing happens.
    enum class Zone { Inside, Start, Due, None };
    struct Drag
    {
        TaskPtr task;
        Zone zone = Zone::Inside;
        /// Where the mouse went down.
        QPointF pressedAt = {};
        /// The place that was pressed.
        Placed from = {};
        TaskDates before = {};
        TaskDates dates = {};
        bool isActive = false;
        bool isByKeys = false;
    };
    const std::optional<Drag> &currentDrag() const { return held; }
    /// Which edge of an item is within reach at a point.
    virtual Zone zoneAt(const Placed &item, QPointF point) const = 0;
    virtual Qt::CursorShape cursorOf(Zone zone) const = 0;
    /// Whether the items of this grid can be moved by dragging at all.
    virtual bool movesItems() const { return true; }
    /// The dates that a drag to a point means; absent for a place where nothing changes.
    virtual std::optional<TaskDates> datesAt(const Drag &drag, QPointF point, bool isExact) = 0;
    /// Where the dragged item stands meanwhile.
    virtual std::vector<Placed> layoutOfDrag(const Drag &drag) = 0;
    /// The dates after a key; absent where the key means nothing.
    virtual std::optional<TaskDates> datesAfterKey(const MVTask &task, int key, bool resizes) = 0;
    /// Which moment is worth showing during a drag.
    virtual OptionalDate momentOf(const Drag &drag) const
    {
        Q_UNUSED(drag)
        return std::nullopt;
    }

    /// Plans a task from elsewhere for a place. False where nothing can be planned.
    virtual bool planAt(MVTask &task, QPointF point) const = 0;

    /// What of the grid that would take.
    virtual QRectF dropFrame(QPointF point) const;

    // Marking what is to be made.
    virtual void markFrom(QPointF point) { Q_UNUSED(point) }
    virtual void markTo(QPointF point, bool isExact)
    {
        Q_UNUSED(point)
        Q_UNUSED(isExact)
    }
    virtual void markEnds() {}
    virtual void markCancelled() {}
    virtual bool isMarking() const { return false; }
    virtual void createAt(QPointF point) { Q_UNUSED(point) }
    /// Something that is neither an item nor empty was pressed.
    virtual bool pressElse(QPointF point)
    {
        Q_UNUSED(point)
        return false;
    }

    // The slots between the items, for the keyboard and for a screen reader: rows of `columnCount` cells.
    virtual int columnCount() const = 0;
    virtual int slotRows() const = 0;
    virtual QRectF slotFrame(int slot) const = 0;
    virtual QString slotName(int slot) const = 0;
    virtual QStringList columnNames() const = 0;
    /// Whether a slot can be reached although an item stands in it.
    virtual bool staysReachable() const { return false; }
    virtual void createInSlot(int slot) = 0;
    /// Where the keyboard comes in.
    virtual int firstSlot() const { return 0; }
    virtual void openSlot(int slot) { createInSlot(slot); }
    /// A task for the whole day of a slot is wanted.
    virtual void createWholeDay(int slot) { createInSlot(slot); }
    /// Whether the days of a row go on in the next one.
    virtual bool areRowsConsecutive() const { return false; }
    /// The slot that the keyboard is on, or in which the item is that it is on.
    int currentSlot() const { return slotOf(spot); }
    void goToSlot(int slot) { goTo({.slot = slot}); }
    /// How the items of a column are told: the table's own name.
    virtual QString gridName() const = 0;

    const EventCalendarView &eventOf(const Placed &item) const
    {
        return shownEvents[static_cast<size_t>(item.event)];
    }
    Qt::Alignment leadingEdge() const { return isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft; }
    Qt::Alignment trailingEdge() const { return isRightToLeft() ? Qt::AlignLeft : Qt::AlignRight; }
    /// Writes beside the columns, in a font that is made smaller where the words would not fit.
    void drawBeside(QPainter &painter, const QRectF &place, const QFont &font, const QString &words) const;
    bool isPaintedForPaper() const { return isOnPaper; }

    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    bool event(QEvent *event) override;

private:
    /// Where the keyboard is: on an item, or on a slot.
    struct Spot
    {
        RowId row = 0;
        int segment = 0;
        int slot = 0;
        bool isOnItem() const { return row != 0; }
        bool operator==(const Spot &) const = default;
    };
    struct Stop
    {
        QRectF frame;
        Spot spot;
    };

    // Items.
    const Placed *placedAt(QPointF point) const;
    const Placed *placedOf(const Spot &spot) const;
    const Placed *placedOf(RowId row) const;
    void raise(const TaskPtr &task);
    void followHeld();
    void tell(const QString &sentence);
    /// An item and what of its place it takes on the screen.
    struct Shown
    {
        const Placed *item;
        QRectF frame;
        bool isOverOther = false;
    };
    /// From the lowest to the topmost.
    std::vector<Shown> paintingOrder() const;
    void paintItems(QPainter &painter, const std::vector<Shown> &items, const QRect &clip);
    void paintDrag(QPainter &painter, const QRect &clip);
    void select(const TaskPtr &task);
    void hover(QPointF point);

    // Tasks from elsewhere.
    void showDropAt(QPointF point);
    void plan(const std::vector<TaskPtr> &tasks, QPointF point);

    // Dragging.
    void pressItem(const Placed &item, QPointF point, Qt::KeyboardModifiers modifiers);
    bool startDrag();
    void dragTo(QPointF point, Qt::KeyboardModifiers modifiers);
    void showDrag();
    void endDrag(bool saves);
    void save(const Drag &finished);
    void refuse(const MVTask &task);
    bool isStillTheSame(const Drag &dragged) const;

    // Keys.
    std::vector<Stop> stopsOf(int column) const;
    int columnOf(const Spot &spot) const;
    QRectF frameOf(const Spot &spot) const;
    void goTo(const Spot &spot);
    void goUpOrDown(int step);
    void goSideways(int columns);
    bool moveByKey(QKeyEvent *event);
    bool takeBack();
    void act(QKeyEvent *event);
    void keepSpot(int formerColumn, double formerTop);
    int slotOf(const Spot &where) const;

    // What assistive technology is told.
    void describe();
    QString nameOf(const EventCalendarView &event) const;
    quint64 keyOf(const Placed &item) const;
    quint64 keyOf(const Spot &spot) const;
    void tellOfMove(const TaskDates &dates);

    std::vector<EventCalendarView> shownEvents;
    std::vector<Placed> places;
    std::vector<Placed> draggedPlaces;
    std::optional<Drag> held;
    /// What does not move during a drag, and what of the grid it shows.
    QPixmap still;
    QRect stillPlace;
    std::optional<QPointF> rightPressedAt;
    /// Where what comes from elsewhere would fall.
    std::optional<QRectF> dropPlace;
    Spot spot;
    bool showsSpot = false;
    bool isOnPaper = false;
    /// The last move by keys, which Escape can take back until another key is pressed.
    std::optional<Drag> takenBy;
    /// What lies on top, whatever the order.
    RowId raised = 0;
    RowId hovered = 0;
    QTimer hoverTimer;
    std::vector<Observation> observations;
};

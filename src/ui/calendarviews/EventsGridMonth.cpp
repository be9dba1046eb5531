#include "calendarviews/EventsGridMonth.h"

#include "calendarviews/BirthdaysLine.h"
#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/NewTaskRequest.h"
#include "records/calendars/CalendarClashes.h"
#include "records/dates/MVDate.h"
#include "widgets/Direction.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QRegularExpression>
#include <QToolTip>

using namespace Qt::Literals::StringLiterals;

constexpr double numberRight = 9;
constexpr double numberTop = 7;

static QFont numberFont()
{
    return Theme::font(Theme::FontRole::Body);
}

EventsGridMonth::EventsGridMonth(QWidget *parent)
    : CalendarGrid(parent)
    , month(Clock::now())
    , grid({1, 1}, {}, {})
{}

void EventsGridMonth::setMonth(Date date)
{
    month = date;
    cancelDrag();
    rows = CalendarMonthRow::rowsOfMonth(month);
    reload();
}

// Items

std::vector<std::shared_ptr<MVTask>> EventsGridMonth::fetch()
{
    items = CalendarManager::dataBaseGetItems(rows);
    firstOfRow.clear();
    std::vector<std::shared_ptr<MVTask>> copies;
    for (const CalendarForDaysItems &row : items) {
        firstOfRow.push_back(static_cast<int>(copies.size()));
        for (const CalendarForDaysItem &item : row)
            copies.push_back(item.obj());
    }
    findClashes();
    return copies;
}

void EventsGridMonth::findClashes()
{
    std::vector<DateInterval> appointments;
    for (const CalendarForDaysItems &row : items) {
        for (const CalendarForDaysItem &item : row) {
            const MVTask &task = *item.obj();
            if (task.isAppointment() && task.status != TaskStatus::Done && task.startDate && task.dueDate)
                appointments.push_back({*task.startDate, *task.dueDate});
        }
    }
    std::vector<Date> days;
    for (int slot = 0; slot < slotRows() * columnCount(); ++slot)
        days.push_back(dateOf(cellOf(slot)));
    clashing = CalendarClashes::daysOf(std::move(appointments), days);
}

void EventsGridMonth::goToDay(Date day)
{
    for (int slot = 0; slot < slotRows() * columnCount(); ++slot) {
        if (Calendar::current().isSameDay(dateOf(cellOf(slot)), day))
            return goToSlot(slot);
    }
}

std::vector<CalendarGrid::Placed> EventsGridMonth::layout()
{
    metrics = MonthGridMetrics::forText(EventCalendarView::textHeight());
    grid = MonthGridLayout(size(), metrics, items);
    std::vector<Placed> placedItems;
    for (const MonthGridLayout::Bar &bar : grid.bars()) {
        if (!bar.isVisible)
            continue;
        Placed &one = placedItems.emplace_back();
        one.event = firstOfRow[static_cast<size_t>(bar.row)] + bar.item;
        one.frame = bar.frame;
        one.frame.setRight(std::min<double>(one.frame.right(), width() - 2));
        one.segment = bar.row;
    }
    return placedItems;
}

Date EventsGridMonth::dateOf(Cell cell) const
{
    return rows[static_cast<size_t>(cell.row)].dateOfColumn(cell.column);
}

// Dragging

EventsGridMonth::Cell EventsGridMonth::nearestCell(QPointF point) const
{
    const QPointF inside(std::clamp(point.x(), 0.0, width() - 1.0),
                         std::clamp(point.y(), 0.0, height() - 5.0));
    return grid.cellAt(inside).value_or(Cell{});
}

std::optional<TaskDates> EventsGridMonth::datesAt(const Drag &drag, QPointF point, bool)
{
    if (point.x() < 0 || point.x() >= width())
        point.setX(nearestCell(point).column < 1 ? 0 : width() - 1);
    const Cell from = nearestCell(drag.pressedAt);
    const Cell to = nearestCell(point);
    const int moved = (to.row - from.row) * columnCount() + to.column - from.column;
    return moved == 0 ? drag.before : CalendarDrag::shiftedByDays(MVTask(drag.task), moved);
}

/// A mail or call on its day; a ToDo wherever it overlaps; an Appointment where it lies inside of the row.
bool EventsGridMonth::touches(const MVTask &task, const CalendarMonthRow &row) const
{
    if (!task.dueDate)
        return false;
    const Date start = task.startDate && !task.isEmailCall() ? *task.startDate : *task.dueDate;
    if (task.isAppointment() && start >= row.startDate && *task.dueDate <= row.endDate)
        return true;
    return !(row.endDate < start) && !(*task.dueDate < row.startDate);
}

CalendarForDaysItem EventsGridMonth::segmentOf(const std::shared_ptr<MVTask> &copy,
                                               const CalendarMonthRow &row) const
{
    CalendarForDaysItem item(copy);
    if (item.startDueDate) {
        item.column = CalendarMonthColumn::getColumnNumberWithDate(*copy->dueDate, row);
        item.duration = 1;
        return item;
    }
    const Date start = copy->startDate ? *copy->startDate : *copy->dueDate;
    CalendarManager::settingEventItem(item, row.startDate, row.endDate,
                                      CalendarMonthColumn::getColumnNumberWithDate(start, row),
                                      CalendarMonthColumn::getColumnNumberWithDate(*copy->dueDate, row));
    return item;
}

/// In the lane where it was pressed, in every row that it touches.
std::vector<CalendarGrid::Placed> EventsGridMonth::layoutOfDrag(const Drag &drag)
{
    const auto copy = std::make_shared<MVTask>(drag.task);
    drag.dates.putInto(*copy);
    const auto row = static_cast<size_t>(drag.from.segment);
    const auto inRow = static_cast<size_t>(drag.from.event - firstOfRow[row]);
    const qint64 lane = items[row][inRow].row;
    std::vector<Placed> bars;
    for (const CalendarMonthRow &week : rows) {
        if (!touches(*copy, week))
            continue;
        const CalendarForDaysItem item = segmentOf(copy, week);
        const qint64 column = std::clamp<qint64>(item.column, 0, columnCount() - 1);
        const qint64 days = std::min<qint64>(std::max<qint64>(item.duration, 1), columnCount() - column);
        const QRectF cell = grid.cellFrame({week.row, static_cast<int>(column)});
        const double top = cell.top() + metrics.dayLabelBottom +
                           static_cast<double>(lane - 1) * (metrics.eventHeight + 1) + 4;
        bars.push_back({.event = drag.from.event,
                        .frame = {cell.left() + 1, top, cell.width() * static_cast<double>(days) - 3,
                                  static_cast<double>(metrics.eventHeight)},
                        .segment = week.row});
    }
    return bars;
}

bool EventsGridMonth::planAt(MVTask &task, QPointF point) const
{
    CalendarDrag::planOn(task, dateOf(nearestCell(point)));
    return true;
}

std::optional<TaskDates> EventsGridMonth::datesAfterKey(const MVTask &task, int key, bool resizes)
{
    constexpr Seconds least{15 * 60};
    const int week = columnCount();
    const int days = key == Qt::Key_Left ? -1 : key == Qt::Key_Right ? 1 : key == Qt::Key_Up ? -week : week;
    if (!resizes)
        return CalendarDrag::shiftedByDays(task, days);
    if (task.isToDo())
        return CalendarDrag::resizedByDays(task, CalendarDrag::Edge::Due, days);
    if (task.isEmailCall())
        return std::nullopt;
    return CalendarDrag::resizedTo(task, CalendarDrag::Edge::Due,
                                   *CalendarDrag::shiftedByDays(task, days).due, least);
}

// Making something new, and going to a day

void EventsGridMonth::createAt(QPointF point)
{
    if (const auto cell = grid.cellAt(point))
        createInSlot(cell->row * columnCount() + cell->column);
}

void EventsGridMonth::createInSlot(int slot)
{
    const Date date = dateOf(cellOf(slot));
    Q_EMIT marked({MVDate::getStartOfDay(date), MVDate::getEndOfDay(date)});
}

void EventsGridMonth::openSlot(int slot)
{
    Q_EMIT dayWanted(dateOf(cellOf(slot)));
}

/// The number of hidden bars leads to their day.
bool EventsGridMonth::pressElse(QPointF point)
{
    if (const int slot = birthdaysAt(point); slot >= 0) {
        pressBirthdaysOf(slot);
        return true;
    }
    const auto cell = grid.cellAt(point);
    if (!cell || grid.hiddenIn(*cell) < 1 || !grid.moreLabelFrame(*cell).contains(point))
        return false;
    Q_EMIT dayWanted(dateOf(*cell));
    return true;
}

// Birthdays

void EventsGridMonth::setBirthdays(std::vector<BirthdayDays::List> days)
{
    birthdays = std::move(days);
    update();
}

QRectF EventsGridMonth::birthdaysFrame(int slot) const
{
    // The number of the week, and the mark of a clash or the disc of today.
    constexpr double weekWidth = 24;
    const double markWidth = clashing[static_cast<size_t>(slot)] ? 20 : 6;
    const Cell cell = cellOf(slot);
    const QRectF frame = grid.cellFrame(cell);
    const double left = frame.left() + (cell.column == 0 ? weekWidth : 2);
    const double right = frame.right() - numberRight - widthOfNumber(dateOf(cell)) - markWidth;
    return {left, frame.top() + numberTop, std::max(0.0, right - left), metrics.dayLabelBottom - numberTop};
}

int EventsGridMonth::birthdaysAt(QPointF point) const
{
    const auto cell = grid.cellAt(point);
    const int slot = cell ? cell->row * columnCount() + cell->column : -1;
    const bool isThere = slot >= 0 && slot < static_cast<int>(birthdays.size()) &&
                         !birthdays[static_cast<size_t>(slot)].empty();
    return isThere && birthdaysFrame(slot).contains(point) ? slot : -1;
}

void EventsGridMonth::pressBirthdaysOf(int slot)
{
    // The press may bring another month.
    const BirthdayDays::List pressed = slot < static_cast<int>(birthdays.size())
                                           ? birthdays[static_cast<size_t>(slot)]
                                           : BirthdayDays::List();
    if (!pressed.empty())
        Q_EMIT birthdaysPressed(pressed, mapToGlobal(visual(birthdaysFrame(slot)).bottomLeft().toPoint()));
}

/// B is for birthdays.
void EventsGridMonth::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_B && event->modifiers() == Qt::NoModifier && !isDragging())
        return pressBirthdaysOf(currentSlot());
    CalendarGrid::keyPressEvent(event);
}

bool EventsGridMonth::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto *help = static_cast<QHelpEvent *>(event);
        if (const int slot = birthdaysAt(logical(help->pos())); slot >= 0) {
            const QString sentence = BirthdayDays::sentenceOf(birthdays[static_cast<size_t>(slot)]);
            QToolTip::showText(help->globalPos(), sentence.toHtmlEscaped(), this,
                               visual(birthdaysFrame(slot)).toAlignedRect());
            return true;
        }
    }
    return CalendarGrid::event(event);
}

// Days

QRectF EventsGridMonth::slotFrame(int slot) const
{
    return grid.cellFrame(cellOf(slot));
}

QString EventsGridMonth::slotName(int slot) const
{
    constexpr qsizetype mostTold = 12;
    const Cell cell = cellOf(slot);
    QStringList words;
    for (const CalendarForDaysItem &item : items[static_cast<size_t>(cell.row)]) {
        if (item.column > cell.column || cell.column >= item.column + std::max<qint64>(item.duration, 1))
            continue;
        const EventCalendarView event(item.obj());
        words << QStringList{firstPart(event.title()), event.timeText(), event.placeText()}
                     .filter(QRegularExpression(u"."_s))
                     .join(u", "_s);
    }
    const qsizetype count = words.size();
    const Date date = dateOf(cell);
    QString name = EventCalendarView::dayTitle(date, static_cast<int>(count));
    if (clashing[static_cast<size_t>(slot)])
        name += u", "_s + localized(u"Appointments at the same time"_s);
    if (static_cast<size_t>(slot) < birthdays.size() && !birthdays[static_cast<size_t>(slot)].empty())
        name += u", "_s + BirthdayDays::sentenceOf(birthdays[static_cast<size_t>(slot)]);
    return QStringList(QStringList{name} + words.mid(0, mostTold)).join(u"; "_s);
}

QStringList EventsGridMonth::columnNames() const
{
    QStringList names;
    for (int column = 0; !rows.empty() && column < columnCount(); ++column)
        names << DateFormatter::string(rows.front().dateOfColumn(column), u"EEEE"_s);
    return names;
}

int EventsGridMonth::firstSlot() const
{
    const Calendar calendar = Calendar::current();
    for (int slot = 0; slot < slotRows() * columnCount(); ++slot) {
        if (calendar.isDateInToday(dateOf(cellOf(slot))))
            return slot;
    }
    return 0;
}

QString EventsGridMonth::gridName() const
{
    return DateFormatter::string(month, DateFormatter::patternFromTemplate(u"MMMMy"_s));
}

// Painting

void EventsGridMonth::paintCell(QPainter &painter, Cell cell) const
{
    QColor today = Theme::accent;
    today.setAlpha(12);
    const Calendar calendar = Calendar::current();
    const Date date = dateOf(cell);
    const QRectF frame = visual(grid.cellFrame(cell));
    painter.fillRect(frame, QColor(MVDate::orWeekend(date) ? Theme::quietDay : Theme::card));
    if (!isPaintedForPaper() && calendar.isDateInToday(date))
        painter.fillRect(frame, today);
    painter.fillRect(QRectF(frame.left(), std::floor(frame.bottom()) - 1, frame.width(), 1),
                     QColor(Theme::cardBorder));
    const double edge = isRightToLeft() ? frame.left() : frame.right();
    painter.fillRect(QRectF(std::floor(edge) - (isRightToLeft() ? 0 : 1), frame.top(), 1, frame.height()),
                     QColor(Theme::cardBorder));
    if (cell.column == 0) {
        painter.setFont(Theme::font(Theme::FontRole::SmallStrong));
        painter.setPen(Theme::placeholderText);
        Direction::drawWords(painter, frame.adjusted(7, numberTop, -7, 0), Qt::AlignTop | leadingEdge(),
                             QString::number(calendar.weekOfYear(date)));
    }
    paintNumber(painter, cell);
    const int slot = cell.row * columnCount() + cell.column;
    if (static_cast<size_t>(slot) < birthdays.size() && !birthdays[static_cast<size_t>(slot)].empty())
        BirthdaysLine::paintBirthdays(painter, visual(birthdaysFrame(slot)),
                                      birthdays[static_cast<size_t>(slot)], isRightToLeft());
    paintMore(painter, cell);
}

QString EventsGridMonth::numberOf(Date date) const
{
    return DateFormatter::string(date, Calendar::current().day(date) == 1 ? u"MMM d"_s : u"d"_s);
}

double EventsGridMonth::widthOfNumber(Date date) const
{
    return QFontMetricsF(numberFont()).horizontalAdvance(numberOf(date));
}

void EventsGridMonth::paintNumber(QPainter &painter, Cell cell) const
{
    constexpr double discMargin = 4;
    const Date date = dateOf(cell);
    const Calendar calendar = Calendar::current();
    const bool isToday = !isPaintedForPaper() && calendar.isDateInToday(date);
    QFont font = numberFont();
    if (isToday)
        font.setWeight(QFont::DemiBold);
    const QString text = numberOf(date);
    const QFontMetricsF size(font);
    const double textWidth = size.horizontalAdvance(text);
    const QRectF frame = grid.cellFrame(cell);
    const QRectF place = visual({frame.right() - numberRight - textWidth, frame.top() + numberTop, textWidth,
                                 metrics.dayLabelBottom - numberTop});
    if (isToday) {
        const double diameter = size.height() + 2;
        QRectF disc(0, 0, std::max(diameter, textWidth + 2 * discMargin), diameter);
        disc.moveCenter(place.center());
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::accent);
        painter.drawRoundedRect(disc, diameter / 2, diameter / 2);
    }
    painter.setFont(font);
    painter.setPen(isToday                                         ? Theme::textOnAccent
                   : calendar.month(date) != calendar.month(month) ? Theme::placeholderText
                                                                   : Theme::text);
    Direction::drawWords(painter, place, Qt::AlignCenter, text);
    if (clashing[static_cast<size_t>(cell.row * columnCount() + cell.column)]) {
        constexpr double dot = 5;
        QRectF mark(frame.right() - numberRight - textWidth - 14, 0, dot, dot);
        mark = visual(mark);
        mark.moveTop(place.center().y() - dot / 2);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::priorityMedium);
        painter.drawEllipse(mark);
    }
}

void EventsGridMonth::paintMore(QPainter &painter, Cell cell) const
{
    const int hidden = grid.hiddenIn(cell);
    if (hidden < 1)
        return;
    painter.setFont(Theme::font(Theme::FontRole::SmallStrong));
    painter.setPen(Theme::secondaryText);
    Direction::drawWords(painter, visual(grid.moreLabelFrame(cell)), leadingEdge() | Qt::AlignVCenter,
                         u"%1 %2"_s.arg(hidden).arg(localized(u"more"_s)));
}

void EventsGridMonth::paintGrid(QPainter &painter, const QRect &clip)
{
    painter.setRenderHint(QPainter::Antialiasing);
    for (int slot = 0; slot < slotRows() * columnCount(); ++slot) {
        if (visual(slotFrame(slot)).intersects(clip))
            paintCell(painter, cellOf(slot));
    }
}

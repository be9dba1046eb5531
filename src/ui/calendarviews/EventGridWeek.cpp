#include "calendarviews/EventGridWeek.h"

#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/Functional.h"
#include "records/NewTaskRequest.h"
#include "records/calendars/CalendarClashes.h"
#include "records/dates/MVDate.h"
#include "widgets/Direction.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;
using DragStep = CalendarManager::DragStep;

constexpr Seconds quarterHour{15 * 60};
constexpr Seconds hour{3600};

namespace {

constexpr int firstHourOfDay = 7;
constexpr int firstHourOfNight = 21;

DragStep stepOf(bool isExact)
{
    return isExact ? DragStep::Minute : DragStep::Quarter;
}

} // namespace

EventGridWeek::EventGridWeek(int shownDays, QWidget *parent)
    : CalendarGrid(parent)
    , days(shownDays)
    , day(MVDate::getStartOfDay(Clock::now()))
    , grid(day, {shownDays, 1}, {}, {})
{
    connect(this, &CalendarGrid::momentShown, this, [this](OptionalDate shown) { moment = shown; });
}

void EventGridWeek::setDays(Date firstDay, const DayGridMetrics &newMetrics)
{
    day = MVDate::getStartOfDay(firstDay);
    metrics = newMetrics;
    setFixedHeight(static_cast<int>(metrics.heightOfDay()));
    cancelDrag();
    reload();
}

void EventGridWeek::setVisibleSpan(int top, int bottom)
{
    visibleTop = top;
    visibleBottom = bottom;
    update();
}

void EventGridWeek::updateCurrentTime()
{
    if (grid.currentTimeLine(Clock::now()))
        update();
}

int EventGridWeek::firstHeight() const
{
    constexpr int morning = 8;
    const double before = 2 * metrics.heightOfRow();
    if (const auto line = grid.currentTimeLine(Clock::now()))
        return static_cast<int>(std::max(0.0, line->top() - 2 * before));
    double top = 2 * morning * metrics.heightOfRow();
    for (const Placed &one : placed())
        top = std::min(top, one.frame.top());
    return static_cast<int>(std::max(0.0, top - metrics.heightOfRow() * 0.5));
}

// Items

std::vector<std::shared_ptr<MVTask>> EventGridWeek::fetch()
{
    items = TimedItem::ofDays(DBWorker::calendarOtherTasks(day, days));
    std::ranges::stable_sort(items, [](const TimedItem &one, const TimedItem &other) {
        const auto start = [](const TimedItem &item) {
            return item.startDate ? item.startDate : item.dueDate;
        };
        return start(one) != start(other) ? start(one) < start(other) : one.dueDate > other.dueDate;
    });
    findClashes();
    std::vector<TaskPtr> tasks;
    std::ranges::transform(items, std::back_inserter(tasks), &TimedItem::task);
    return MVTask::copiesOf(std::move(tasks));
}

void EventGridWeek::findClashes()
{
    std::vector<DateInterval> appointments;
    for (const TimedItem &item : items) {
        const bool isOpen = item.task->status() != TaskStatus::Done;
        if (!item.isEmailCall && isOpen && item.startDate && item.dueDate)
            appointments.push_back({*item.startDate, *item.dueDate});
    }
    std::vector<Date> shown;
    for (int column = 0; column < days; ++column)
        shown.push_back(dayOf(column));
    clashingColumns = CalendarClashes::daysOf(std::move(appointments), shown);
}

int EventGridWeek::countIn(int column) const
{
    return static_cast<int>(std::ranges::count(grid.placed(), column, &TimedGridLayout::Placed::column));
}

CalendarGrid::Placed EventGridWeek::fromGrid(const TimedGridLayout::Placed &one) const
{
    return {.event = one.item,
            .frame = one.frame.translated(metrics.gridIndent, 0),
            .isResizable = one.isResizable};
}

std::vector<CalendarGrid::Placed> EventGridWeek::layout()
{
    grid = TimedGridLayout(day, columns(), metrics, items);
    std::vector<Placed> placedItems;
    placedItems.reserve(grid.placed().size());
    for (const TimedGridLayout::Placed &one : grid.placed())
        placedItems.push_back(fromGrid(one));
    return placedItems;
}

// Dragging

CalendarGrid::Zone EventGridWeek::zoneAt(const Placed &item, QPointF point) const
{
    const bool isAtEnd = point.y() > item.frame.bottom() - reach;
    const bool isAtStart = point.y() < item.frame.top() + reach;
    if (!isAtEnd && !isAtStart)
        return Zone::Inside;
    return !item.isResizable ? Zone::None : isAtEnd ? Zone::Due : Zone::Start;
}

Date EventGridWeek::momentAt(int column, double y, DragStep step) const
{
    const double inside = std::clamp(y, 0.0, metrics.heightOfDay() - 1);
    return Functional::dateWithZeroSeconds(
        CalendarManager::dragTime(dayOf(column), inside, metrics.rowHeight, step));
}

std::optional<TaskDates> EventGridWeek::datesAt(const Drag &drag, QPointF point, bool isExact)
{
    const MVTask task(drag.task);
    const DragStep step = stepOf(isExact);
    const QRectF &frame = drag.from.frame;
    const int ownColumn = std::max(0, columns().columnAt(inGrid(frame.center()).x()));
    const double moved = point.y() - drag.pressedAt.y();
    if (drag.zone != Zone::Inside) {
        const bool isDue = drag.zone == Zone::Due;
        const Date at = momentAt(ownColumn, (isDue ? frame.bottom() : frame.top()) + moved, step);
        return CalendarDrag::resizedTo(task, isDue ? CalendarDrag::Edge::Due : CalendarDrag::Edge::Start, at,
                                       quarterHour);
    }
    const double right = width() - metrics.gridIndent - 1;
    const int column = columns().columnAt(std::clamp(inGrid(point).x(), 0.0, right));
    if (std::abs(moved) < dragDistance)
        return CalendarDrag::shiftedByDays(task, column - ownColumn);
    const double top = std::clamp(frame.top() + moved, 0.0, metrics.heightOfDay() - frame.height() - 1);
    return CalendarDrag::movedTo(task, momentAt(column, top, step));
}

std::vector<CalendarGrid::Placed> EventGridWeek::layoutOfDrag(const Drag &drag)
{
    const MVTask task(drag.task);
    const TimedGridLayout alone(day, columns(), metrics,
                                {{drag.task, task.isEmailCall(), drag.dates.start, drag.dates.due}});
    if (alone.placed().empty())
        return {};
    Placed one = fromGrid(alone.placed().front());
    one.event = drag.from.event;
    return {one};
}

bool EventGridWeek::planAt(MVTask &task, QPointF point) const
{
    const int column = columns().columnAt(inGrid(point).x());
    if (column < 0)
        return false;
    CalendarDrag::planAt(task, momentAt(column, point.y(), DragStep::Quarter));
    return true;
}

QRectF EventGridWeek::dropFrame(QPointF point) const
{
    const int column = columns().columnAt(inGrid(point).x());
    if (column < 0)
        return {};
    const Date at = momentAt(column, point.y(), DragStep::Quarter);
    return {metrics.gridIndent + columns().positionOf(column),
            double(CalendarManager::convertTimeToPixel(at, metrics.rowHeight)), columns().columnWidth(),
            2 * metrics.heightOfRow()};
}

OptionalDate EventGridWeek::momentOf(const Drag &drag) const
{
    return drag.zone == Zone::Due || !drag.dates.start ? drag.dates.due : drag.dates.start;
}

std::optional<TaskDates> EventGridWeek::datesAfterKey(const MVTask &task, int key, bool resizes)
{
    const bool isByDays = key == Qt::Key_Left || key == Qt::Key_Right;
    const int step = key == Qt::Key_Up || key == Qt::Key_Left ? -1 : 1;
    const TaskDates later =
        isByDays ? CalendarDrag::shiftedByDays(task, step)
                 : TaskDates{task.startDate ? *task.startDate + step * quarterHour : OptionalDate(),
                             *task.dueDate + step * quarterHour};
    if (!resizes)
        return isByDays || task.isEmailCall() || !task.startDate
                   ? TaskDates{task.isEmailCall() ? later.due : later.start, later.due}
                   : CalendarDrag::movedTo(task, *later.start);
    if (task.isEmailCall())
        return std::nullopt;
    return CalendarDrag::resizedTo(task, CalendarDrag::Edge::Due, *later.due, quarterHour);
}

// Making something new

void EventGridWeek::markFrom(QPointF point)
{
    const int column = columns().columnAt(inGrid(point).x());
    if (column >= 0)
        band = Band{column, point.y(), point.y()};
}

void EventGridWeek::markTo(QPointF point, bool isExact)
{
    band->current = std::clamp(point.y(), 0.0, metrics.heightOfDay() - 1);
    band->step = stepOf(isExact);
    moment =
        band->isLongEnough() ? OptionalDate(momentAt(band->column, band->current, band->step)) : std::nullopt;
    update();
}

MarkedSpan EventGridWeek::spanOf(const Band &marked) const
{
    const auto [top, bottom] = std::minmax(marked.pressed, marked.current);
    const Date start = momentAt(marked.column, top, marked.step);
    return {start, std::max(momentAt(marked.column, bottom, marked.step), start + quarterHour)};
}

void EventGridWeek::markEnds()
{
    const Band finished = *band;
    band.reset();
    moment.reset();
    update();
    if (finished.isLongEnough())
        Q_EMIT marked(spanOf(finished));
}

void EventGridWeek::createAt(QPointF point)
{
    if (const OptionalDate at = grid.momentAt(inGrid(point), DragStep::Quarter))
        Q_EMIT marked({Functional::dateWithZeroSeconds(*at), Functional::dateWithZeroSeconds(*at) + hour});
}

/// A strip that points to something that cannot be seen leads there.
bool EventGridWeek::pressElse(QPointF point)
{
    for (int column = 0; column < days; ++column) {
        const TimedGridLayout::Hidden hidden = grid.hiddenIn(column, visibleTop, visibleBottom);
        for (const auto &[item, isBelow] : {std::pair(hidden.above, false), std::pair(hidden.below, true)}) {
            if (!item || !markerOf(column, isBelow).contains(point))
                continue;
            for (const Placed &one : placed()) {
                if (one.event == *item)
                    Q_EMIT wantsVisible(visual(one.frame).toAlignedRect());
            }
            return true;
        }
    }
    return false;
}

// Slots

QRectF EventGridWeek::slotFrame(int slot) const
{
    const double height = metrics.heightOfRow();
    return {metrics.gridIndent + columns().positionOf(slot % days), slot / days * height,
            columns().columnWidth(), height};
}

static Date startOfSlot(Date day, int row)
{
    constexpr int minutesOfSlot = 30;
    return MVDate::setTimeWithCurrentDate(day, row / 2, row % 2 * minutesOfSlot, 0);
}

QString EventGridWeek::slotName(int slot) const
{
    const Date start = startOfSlot(dayOf(slot % days), slot / days);
    QStringList words{EventCalendarView::dayName(start) + u", "_s + EventCalendarView::shortTime(start)};
    const QRectF frame = slotFrame(slot);
    for (const Placed &one : placed()) {
        if (one.frame.top() >= frame.top() && one.frame.top() < frame.bottom() &&
            one.frame.left() >= frame.left() - 1 && one.frame.left() < frame.right() - 1)
            words << firstPart(eventOf(one).title());
    }
    return words.join(u"; "_s);
}

QStringList EventGridWeek::columnNames() const
{
    QStringList names;
    for (int column = 0; column < days; ++column) {
        const auto place = static_cast<size_t>(column);
        const int count = countIn(column) + (place < wholeDayCounts.size() ? wholeDayCounts[place] : 0);
        names << EventCalendarView::dayTitle(dayOf(column), count);
    }
    return names;
}

void EventGridWeek::createWholeDay(int slot)
{
    Q_EMIT wholeDayMarked(dayOf(slot % days));
}

void EventGridWeek::createInSlot(int slot)
{
    const Date start = startOfSlot(dayOf(slot % days), slot / days);
    Q_EMIT marked({start, start + hour});
}

int EventGridWeek::firstSlot() const
{
    constexpr int morning = 8;
    const Date now = Clock::now();
    for (int column = 0; column < days; ++column) {
        if (Calendar::current().isSameDay(dayOf(column), now))
            return Calendar::current().hour(now) * 2 * days + column;
    }
    return morning * 2 * days;
}

QString EventGridWeek::gridName() const
{
    return days == 1 ? localized(u"Hours of the day"_s) : localized(u"Hours of the week"_s);
}

// Painting

void EventGridWeek::paintColumn(QPainter &painter, int column) const
{
    QColor today = Theme::accent;
    today.setAlpha(10);
    const double rows = metrics.heightOfRow();
    const QRectF place = visual(
        {metrics.gridIndent + columns().positionOf(column), 0, columns().columnWidth(), double(height())});
    const Date date = dayOf(column);
    const bool isQuiet = MVDate::orWeekend(date);
    const QColor quiet = Theme::quietDay;
    painter.fillRect(place, QColor(isQuiet ? Theme::quietDay : Theme::card));
    if (!isQuiet) {
        const double morning = 2 * firstHourOfDay * rows;
        const double evening = 2 * firstHourOfNight * rows;
        painter.fillRect(QRectF(place.left(), 0, place.width(), morning), quiet);
        painter.fillRect(QRectF(place.left(), evening, place.width(), height() - evening), quiet);
    }
    if (!isPaintedForPaper() && Calendar::current().isDateInToday(date))
        painter.fillRect(place, today);
}

void EventGridWeek::paintHours(QPainter &painter, const QRect &clip) const
{
    painter.setRenderHint(QPainter::Antialiasing, false);
    const QRectF across = visual({metrics.gridIndent, 0, width() - metrics.gridIndent, double(height())});
    for (int row = 1; row < CalendarManager::rowCount; ++row) {
        const int y = static_cast<int>(row * metrics.heightOfRow()) - 1;
        painter.fillRect(QRectF(across.left(), y, across.width(), 1),
                         QColor(row % 2 ? Theme::halfHourLine : Theme::cardBorder));
    }
    for (int column = 0; column < days; ++column) {
        const QRectF cell = visual(slotFrame(column));
        const double edge = isRightToLeft() ? cell.right() - 1 : cell.left();
        painter.fillRect(QRectF(std::floor(edge), 0, 1, height()), QColor(Theme::cardBorder));
    }
    painter.setRenderHint(QPainter::Antialiasing);
    QFont font = Theme::font(Theme::FontRole::SmallStrong);
    font.setWeight(QFont::Normal);
    painter.setPen(Theme::secondaryText);
    const double text = QFontMetricsF(font).height();
    const auto now = isPaintedForPaper() ? std::nullopt : grid.currentTimeLine(Clock::now());
    for (const TimedGridLayout::HourLabel &label : grid.hourLabels(text)) {
        const QRectF place = visual(label.frame);
        // The line of the present moment would strike its hour through.
        const bool isStruck = now && now->intersects(label.frame);
        if (isStruck || !place.intersects(clip))
            continue;
        const Date at = MVDate::setTimeWithCurrentDate(day, label.hour, 0, 0);
        const QString words = EventCalendarView::shortTime(at).toUpper();
        drawBeside(painter, place, font, words);
    }
}

void EventGridWeek::paintGrid(QPainter &painter, const QRect &clip)
{
    painter.fillRect(visual({0, 0, metrics.gridIndent, double(height())}), QColor(Theme::card));
    for (int column = 0; column < days; ++column)
        paintColumn(painter, column);
    paintHours(painter, clip);
}

void EventGridWeek::paintCurrentTime(QPainter &painter) const
{
    const auto line = grid.currentTimeLine(Clock::now());
    if (!line)
        return;
    const QRectF place(line->left(), line->top(), width() - line->left(), line->height());
    const QRectF across = visual(place.adjusted(1, 2, 0, -2));
    const QRectF disc = visual({place.left(), place.top(), place.height(), place.height()});
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(across, QColor(Theme::currentTime));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::currentTime);
    painter.drawEllipse(disc);
}

void EventGridWeek::paintBand(QPainter &painter) const
{
    const MarkedSpan span = spanOf(*band);
    const auto pixel = [this](Date date) {
        return CalendarManager::convertTimeToPixel(date, metrics.rowHeight);
    };
    const double top = pixel(span.start);
    const double height = std::max<double>(metrics.eventHeight(), pixel(span.due) - top);
    const QRectF place = visual({metrics.gridIndent + columns().positionOf(band->column) + 1, top,
                                 columns().columnWidth() - 3, height});
    painter.setPen(Qt::NoPen);
    painter.setBrush(EventCalendarView::colourOfNew());
    painter.drawRoundedRect(place, 3, 3);
    painter.setPen(Theme::textOnColour);
    painter.setFont(Theme::font(Theme::FontRole::Small));
    Direction::drawWords(painter, place.adjusted(7, 0, -7, 0), leadingEdge() | Qt::AlignTop,
                         EventCalendarView::shortTime(span.start) + u" – "_s +
                             EventCalendarView::shortTime(span.due));
}

/// The minutes past the hour beside the line that is dragged.
void EventGridWeek::paintMoment(QPainter &painter) const
{
    const int minute = Calendar::current().minute(*moment);
    if (minute == 0)
        return;
    constexpr double labelHeight = 20;
    const double y = CalendarManager::convertTimeToPixel(*moment, metrics.rowHeight);
    const QRectF place = visual({0, y - labelHeight / 2, metrics.gridIndent, labelHeight});
    painter.fillRect(place, QColor(Theme::card));
    painter.setPen(Theme::minuteLabel);
    drawBeside(painter, place.adjusted(4, 0, -4, 0), Theme::font(Theme::FontRole::SmallStrong),
               u":%1"_s.arg(minute, 2, 10, QLatin1Char('0')));
}

QRectF EventGridWeek::markerOf(int column, bool isBelow) const
{
    QRectF place = grid.markerOf(column);
    place.moveTop(isBelow ? visibleBottom - place.height() : visibleTop);
    return place;
}

void EventGridWeek::paintMarkers(QPainter &painter) const
{
    painter.setPen(Qt::NoPen);
    for (int column = 0; column < days; ++column) {
        const TimedGridLayout::Hidden hidden = grid.hiddenIn(column, visibleTop, visibleBottom);
        for (const auto &[item, isBelow] : {std::pair(hidden.above, false), std::pair(hidden.below, true)}) {
            if (!item)
                continue;
            painter.setBrush(events()[static_cast<size_t>(*item)].selectedBacgraundColor());
            painter.drawRoundedRect(visual(markerOf(column, isBelow)), 2, 2);
        }
    }
}

void EventGridWeek::paintOver(QPainter &painter)
{
    if (isPaintedForPaper())
        return;
    if (band && band->isLongEnough())
        paintBand(painter);
    paintCurrentTime(painter);
    if (moment)
        paintMoment(painter);
    if (visibleBottom > visibleTop)
        paintMarkers(painter);
}

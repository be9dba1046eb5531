#include "widgets/MonthGrid.h"

#include "foundation/Calendar.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "widgets/Accessibility.h"
#include "widgets/Icons.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"

#include <QAccessibleActionInterface>
#include <QKeyEvent>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

constexpr int cellWidth = 38;
constexpr int cellHeight = 32;
constexpr int titleHeight = 36;
constexpr int monthArrowWidth = 32;
constexpr int discSize = 28;
constexpr int monthsOfYear = 12;

MonthGrid::MonthGrid(QWidget *parent)
    : QWidget(parent)
{
    describe();
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize MonthGrid::sizeHint() const
{
    return {MonthPage::columns * cellWidth, titleHeight + (MonthPage::rows + 1) * cellHeight};
}

void MonthGrid::setLimits(OptionalDate minimum, OptionalDate maximum)
{
    least = minimum;
    most = maximum;
    update();
}

void MonthGrid::setShowsYears(bool shows)
{
    showsYears = shows;
    update();
}

void MonthGrid::setDate(Date date)
{
    const bool isOther = !Calendar::current().isSameDay(chosen, date);
    chosen = date;
    page = MonthPage::of(date);
    Accessibility::partsChanged(*this);
    if (isOther)
        Accessibility::focusMoved(*this);
    update();
}

void MonthGrid::showMonth(int monthsAway)
{
    page = MonthPage::of(Calendar::current().dateByAdding(CalendarUnit::Month, monthsAway,
                                                          page.days[MonthPage::columns].start));
    Accessibility::partsReplaced(*this);
    Accessibility::announce(*this, page.title);
    update();
}

// What assistive technology is told

/// A day, whatever page it stands on.
quint64 MonthGrid::keyOf(int index) const
{
    constexpr qint64 beforeAnyDay = qint64(1) << 40;
    const Date start = page.days[static_cast<std::size_t>(index)].start;
    return static_cast<quint64>(static_cast<qint64>(start.referenceSeconds()) + beforeAnyDay);
}

int MonthGrid::indexOfKey(quint64 key) const
{
    for (int index = 0; index < static_cast<int>(page.days.size()); ++index) {
        if (keyOf(index) == key)
            return index;
    }
    return -1;
}

void MonthGrid::describe()
{
    const auto cellOf = [this](quint64 key) {
        const int index = indexOfKey(key);
        const MonthPage::Day &day = page.days[static_cast<std::size_t>(index)];
        const QString pattern = DateFormatter::patternFromTemplate(u"EEEEdMMMM"_s);
        AccessiblePart part{.name = DateFormatter::string(day.start, pattern),
                            .role = QAccessible::Cell,
                            .place = cell(index / MonthPage::columns, index % MonthPage::columns)};
        part.description = day.isToday ? localized(u"Today"_s) : QString();
        part.state.disabled = !isAllowed(day);
        part.state.selectable = true;
        part.state.selected = index == page.indexOf(chosen);
        part.state.focusable = true;
        part.state.focused = hasFocus() && part.state.selected;
        if (part.state.disabled)
            return part;
        const auto press = [this, start = day.start] { choose(start); };
        part.actions = {{QAccessibleActionInterface::pressAction(), press},
                        {QAccessibleActionInterface::setFocusAction(), [this, press] {
                             setFocus();
                             press();
                         }}};
        return part;
    };
    AccessibleParts parts{.count = [this] { return static_cast<int>(page.days.size()); }, .part = cellOf};
    parts.keyAt = [this](int place) { return keyOf(place); };
    parts.placeOf = [this](quint64 key) { return indexOfKey(key); };
    parts.focused = [this]() -> quint64 {
        const int index = hasFocus() ? page.indexOf(chosen) : -1;
        return index < 0 ? 0 : keyOf(index);
    };
    parts.columns = [this] { return page.weekdays; };
    const auto pages = [this]() -> std::vector<AccessibleAction> {
        return {{QAccessibleActionInterface::previousPageAction(), [this] { showMonth(-1); }},
                {QAccessibleActionInterface::nextPageAction(), [this] { showMonth(1); }}};
    };
    Accessibility::describe(*this, {.role = QAccessible::Table,
                                    .description = [this] { return page.title; },
                                    .actions = pages,
                                    .parts = std::move(parts)});
}

/// Qt tells of the whole month only after this.
void MonthGrid::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    QMetaObject::invokeMethod(
        this, [this] { Accessibility::focusMoved(*this); }, Qt::QueuedConnection);
}

// Places

QRect MonthGrid::cell(int row, int column) const
{
    const int shown = isRightToLeft() ? MonthPage::columns - 1 - column : column;
    return {shown * cellWidth, titleHeight + (row + 1) * cellHeight, cellWidth, cellHeight};
}

/// Those for years stand outside of those for months.
QRect MonthGrid::arrow(int direction) const
{
    const int inset = showsYears ? monthArrowWidth : 0;
    const QRect place(direction < 0 ? inset : width() - monthArrowWidth - inset, 0, monthArrowWidth,
                      titleHeight);
    return QStyle::visualRect(layoutDirection(), rect(), place);
}

QRect MonthGrid::yearArrow(int direction) const
{
    if (!showsYears)
        return {};
    const QRect place(direction < 0 ? 0 : width() - monthArrowWidth, 0, monthArrowWidth, titleHeight);
    return QStyle::visualRect(layoutDirection(), rect(), place);
}

int MonthGrid::dayAt(const QPoint &point) const
{
    for (int index = 0; index < static_cast<int>(page.days.size()); ++index) {
        if (cell(index / MonthPage::columns, index % MonthPage::columns).contains(point))
            return index;
    }
    return -1;
}

/// A day can be chosen if any of its moments lies within the limits.
bool MonthGrid::isAllowed(const MonthPage::Day &day) const
{
    const Date end = Calendar::current().startOfNextDay(day.start);
    return (!least || end > *least) && (!most || day.start <= *most);
}

// Choosing

/// The time of day stays.
void MonthGrid::choose(Date day)
{
    const Calendar calendar = Calendar::current();
    DateComponents components = calendar.shortComponents(day);
    const DateComponents time = calendar.shortComponents(chosen);
    components.hour = time.hour;
    components.minute = time.minute;
    components.second = time.second;
    setDate(calendar.dateFromComponents(components));
    Q_EMIT dateChanged(chosen);
}

int MonthGrid::placeInWeek() const
{
    const Calendar calendar = Calendar::current();
    return (calendar.weekday(chosen) - calendar.firstWeekday() + MonthPage::columns) % MonthPage::columns;
}

void MonthGrid::moveBy(int days)
{
    const Date target = Calendar::current().dateByAdding(CalendarUnit::Day, days, chosen);
    if (isAllowed({.start = Calendar::current().startOfDay(target)}))
        choose(target);
}

void MonthGrid::mousePressEvent(QMouseEvent *event)
{
    const QPoint point = event->position().toPoint();
    for (const int direction : {-1, 1}) {
        if (arrow(direction).contains(point))
            return showMonth(direction);
        if (yearArrow(direction).contains(point))
            return showMonth(direction * monthsOfYear);
    }
    const int index = dayAt(point);
    if (index >= 0 && isAllowed(page.days[static_cast<std::size_t>(index)]))
        choose(page.days[static_cast<std::size_t>(index)].start);
}

void MonthGrid::mouseDoubleClickEvent(QMouseEvent *event)
{
    const int index = dayAt(event->position().toPoint());
    if (index < 0)
        return mousePressEvent(event);
    if (isAllowed(page.days[static_cast<std::size_t>(index)]))
        Q_EMIT accepted();
}

void MonthGrid::mouseMoveEvent(QMouseEvent *event)
{
    hovered = dayAt(event->position().toPoint());
    update();
}

void MonthGrid::leaveEvent(QEvent *)
{
    hovered = -1;
    update();
}

void MonthGrid::wheelEvent(QWheelEvent *event)
{
    if (event->angleDelta().y() != 0)
        showMonth(event->angleDelta().y() > 0 ? -1 : 1);
}

void MonthGrid::keyPressEvent(QKeyEvent *event)
{
    const int forward = isRightToLeft() ? -1 : 1;
    const int months = event->modifiers().testFlag(Qt::ShiftModifier) ? monthsOfYear : 1;
    const auto byMonths = [this](int count) {
        const Date target = Calendar::current().dateByAdding(CalendarUnit::Month, count, chosen);
        choose(most ? std::min(target, *most) : target);
    };
    switch (event->key()) {
    case Qt::Key_Left:
        return moveBy(-forward);
    case Qt::Key_Right:
        return moveBy(forward);
    case Qt::Key_Up:
        return moveBy(-MonthPage::columns);
    case Qt::Key_Down:
        return moveBy(MonthPage::columns);
    case Qt::Key_Home:
        return moveBy(-placeInWeek());
    case Qt::Key_End:
        return moveBy(MonthPage::columns - 1 - placeInWeek());
    case Qt::Key_PageUp:
        return byMonths(-months);
    case Qt::Key_PageDown:
        return byMonths(months);
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return Q_EMIT accepted();
    default:
        QWidget::keyPressEvent(event);
    }
}

// Painting

void MonthGrid::paintTitle(QPainter &painter) const
{
    painter.setFont(Theme::font(Theme::FontRole::BodyStrong));
    painter.setPen(Theme::text);
    painter.drawText(QRect(0, 0, width(), titleHeight), Qt::AlignCenter, page.title);
    Icons::paint(painter, arrow(-1), isRightToLeft() ? u"chevron-right"_s : u"chevron-left"_s,
                 Theme::secondaryText, 18);
    Icons::paint(painter, arrow(1), isRightToLeft() ? u"chevron-left"_s : u"chevron-right"_s,
                 Theme::secondaryText, 18);
    if (showsYears) {
        Icons::paint(painter, yearArrow(-1), isRightToLeft() ? u"chevrons-right"_s : u"chevrons-left"_s,
                     Theme::secondaryText, 18);
        Icons::paint(painter, yearArrow(1), isRightToLeft() ? u"chevrons-left"_s : u"chevrons-right"_s,
                     Theme::secondaryText, 18);
    }
    painter.setFont(Theme::font(Theme::FontRole::SmallStrong));
    painter.setPen(Theme::secondaryText);
    for (int column = 0; column < page.weekdays.size(); ++column)
        painter.drawText(cell(-1, column), Qt::AlignCenter, page.weekdays.at(column));
}

void MonthGrid::paintDay(QPainter &painter, int index) const
{
    const MonthPage::Day &day = page.days[static_cast<std::size_t>(index)];
    const QRect place = cell(index / MonthPage::columns, index % MonthPage::columns);
    QRect disc(0, 0, discSize, discSize);
    disc.moveCenter(place.center());
    const bool isChosen = index == page.indexOf(chosen);
    painter.setPen(Qt::NoPen);
    if (isChosen || (index == hovered && isAllowed(day))) {
        painter.setBrush(isChosen ? Theme::accent : Theme::selection);
        painter.drawEllipse(disc);
    }
    painter.setFont(Theme::font(day.isToday ? Theme::FontRole::BodyStrong : Theme::FontRole::Body));
    const QColor colour = day.isToday ? Theme::accent : day.isInMonth ? Theme::text : Theme::secondaryText;
    painter.setPen(isChosen ? Theme::textOnAccent : isAllowed(day) ? colour : Theme::disabledText);
    painter.drawText(place, Qt::AlignCenter, QString::number(day.number));
    if (isChosen && hasFocus())
        MorvaneStyle::drawFocusRing(painter, QRectF(disc).adjusted(-3, -3, 3, 3), discSize, Theme::focusRing);
}

void MonthGrid::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintTitle(painter);
    for (int index = 0; index < static_cast<int>(page.days.size()); ++index)
        paintDay(painter, index);
}

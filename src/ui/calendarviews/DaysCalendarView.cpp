#include "calendarviews/DaysCalendarView.h"

#include "calendarviews/BirthdaysLine.h"
#include "calendarviews/DaysLineWeek.h"
#include "calendarviews/EventGridWeek.h"
#include "calendarviews/EventsForDaysGridWeek.h"
#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/NewTaskRequest.h"
#include "records/calendars/AllDayLanes.h"
#include "records/dates/MVDate.h"
#include "store/state/NotificationNames.h"
#include "widgets/Appearance.h"
#include "widgets/Theme.h"

#include <QCursor>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

constexpr int autoscrollPatience = 30;
constexpr int autoscrollStep = 14;

static QScrollArea *makeScroll(CalendarGrid *grid, QWidget *parent)
{
    auto *scroll = new QScrollArea(parent);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidgetResizable(true);
    scroll->setWidget(grid);
    return scroll;
}

DaysCalendarView::DaysCalendarView(int days, QWidget *parent)
    : CalendarPage(parent)
    , dayCount(days)
    , birthdaysLine(new BirthdaysLine(this))
    , lanes(new EventsForDaysGridWeek(days))
    , timed(new EventGridWeek(days))
    , laneScroll(makeScroll(lanes, this))
    , timedScroll(makeScroll(timed, this))
{
    lanes->setObjectName(u"calendarForDaysDayEventsView"_s);
    timed->setObjectName(u"calendareView"_s);
    timedScroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    if (days > 1) {
        header = new DaysLineWeek(this);
        header->setObjectName(u"headerView"_s);
        setTabOrder(header, birthdaysLine);
    } else {
        allDayLabel = new QToolButton(this);
        allDayLabel->setObjectName(u"allDayLabel"_s);
        allDayLabel->setAutoRaise(true);
        Appearance::setFont(*allDayLabel, Theme::FontRole::SmallStrong);
        allDayLabel->setText(localized(u"All day"_s));
        allDayLabel->setToolTip(localized(u"New task for the whole day"_s));
        connect(allDayLabel, &QToolButton::clicked, this, &DaysCalendarView::newAllDayEvent);
        setTabOrder(allDayLabel, birthdaysLine);
    }
    birthdaysLine->setObjectName(u"birthdaysLine"_s);
    connect(birthdaysLine, &BirthdaysLine::pressed, this, &DaysCalendarView::pressBirthdays);
    setTabOrder(birthdaysLine, lanes);
    setTabOrder(lanes, timed);
    setFocusProxy(timed);
    connectParts();
}

DayGridMetrics DaysCalendarView::metricsOfText()
{
    // The height of a bar in which the usual text stands.
    constexpr double usualLine = 17;
    const double line = EventCalendarView::textHeight();
    return DayGridMetrics::scaled(std::max(1.0, line / usualLine), line);
}

void DaysCalendarView::connectParts()
{
    connectGrid(lanes);
    connectGrid(timed);
    const auto post = [](NotificationName<MarkedSpan> name) {
        return [name](const MarkedSpan &span) { NotificationCenter::defaultCenter().post(name, span); };
    };
    connect(timed, &CalendarGrid::marked, this, post(notifications::dayCalendarCreateTask));
    connect(lanes, &CalendarGrid::marked, this, post(notifications::allDayCalendarCreateTask));
    connect(timed, &CalendarGrid::wantsVisible, this, [this](const QRect &place) {
        constexpr int margin = 30;
        timedScroll->ensureVisible(0, place.bottom(), 0, margin);
        timedScroll->ensureVisible(0, place.top(), 0, margin);
    });
    connect(lanes, &CalendarGrid::wantsVisible, this, [this](const QRect &place) {
        laneScroll->ensureVisible(0, place.bottom(), 0, 4);
        laneScroll->ensureVisible(0, place.top(), 0, 4);
    });
    connect(timed, &CalendarGrid::leftUpwards, this, &DaysCalendarView::goToLanes);
    connect(timed, &EventGridWeek::wholeDayMarked, this, [post](Date day) {
        post(notifications::allDayCalendarCreateTask)({MVDate::getStartOfDay(day), MVDate::getEndOfDay(day)});
    });
    connect(lanes, &CalendarGrid::focusLeft, this, [this] {
        if (std::exchange(isLaneWanted, false))
            setSizeScrollViews();
    });
    connect(lanes, &CalendarGrid::leftDownwards, this, [this] {
        timed->setFocus();
        timed->enterColumn(lanes->currentColumn(), timedScroll->verticalScrollBar()->value());
    });
    connect(timed, &CalendarGrid::draggedAt, this, &DaysCalendarView::scrollOn);
    connect(&autoscrollTimer, &QTimer::timeout, this, &DaysCalendarView::autoscroll);
    autoscrollTimer.setInterval(autoscrollPatience);
    connect(timedScroll->verticalScrollBar(), &QScrollBar::valueChanged, this,
            &DaysCalendarView::visibleSpanChanged);
    if (header) {
        connect(header, &DaysLineWeek::dayPressed, this, &CalendarPage::dayWanted);
        connect(header, &DaysLineWeek::dayMenuWanted, this, [post](Date day) {
            post(notifications::allDayCalendarCreateTask)(
                {MVDate::getStartOfDay(day), MVDate::getEndOfDay(day)});
        });
        connect(timed, &CalendarGrid::reloaded, this, [this] { header->setClashes(timed->clashes()); });
    }
    connect(lanes, &CalendarGrid::reloaded, this, &DaysCalendarView::setSizeScrollViews);
    connect(lanes, &CalendarGrid::reloaded, this, &DaysCalendarView::countItems);
}

void DaysCalendarView::newAllDayEvent()
{
    NotificationCenter::defaultCenter().post(notifications::allDayCalendarCreateTask,
                                             {MVDate::getStartOfDay(date()), MVDate::getEndOfDay(date())});
}

/// Where there is nothing for whole days, an empty lane stands while the keyboard is there.
void DaysCalendarView::goToLanes()
{
    isLaneWanted = lanes->laneCount() == 0;
    setSizeScrollViews();
    lanes->setFocus();
    lanes->enterColumn(timed->currentColumn(), lanes->height());
}

/// The hours are told with the number of everything that a day has.
void DaysCalendarView::countItems()
{
    std::vector<int> counts;
    for (int column = 0; column < dayCount; ++column)
        counts.push_back(lanes->countIn(column));
    timed->setWholeDayCounts(std::move(counts));
}

std::vector<CalendarGrid *> DaysCalendarView::grids() const
{
    return {timed, lanes};
}

CalendarGrid *DaysCalendarView::mainGrid() const
{
    return timed;
}

// Days

void DaysCalendarView::setDate(Date date)
{
    metrics = metricsOfText();
    const Date first = firstDayOf(date);
    lanes->setDays(first, metrics);
    timed->setDays(first, metrics);
    describeDays(timedScroll->verticalScrollBar()->sizeHint().width());
    describeBirthdays(timedScroll->verticalScrollBar()->sizeHint().width());
    setSizeScrollViews();
    if (!wasScrolled && isVisible())
        scrollToFirst();
}

void DaysCalendarView::describeDays(int trailing)
{
    if (!header)
        return;
    const Date first = firstDayOf(date());
    const Calendar calendar = Calendar::current();
    std::vector<DaysLineWeek::Day> days;
    for (int column = 0; column < dayCount; ++column) {
        const Date day = CalendarManager::dateWithColumn(column, first);
        const int count = timed->countIn(column) + lanes->countIn(column);
        days.push_back({.date = day,
                        .words = DateFormatter::string(day, u"dd EE"_s),
                        .spoken = EventCalendarView::dayTitle(day, count),
                        .isToday = calendar.isDateInToday(day)});
    }
    header->setDays(std::move(days), static_cast<int>(metrics.gridIndent), trailing);
    header->setClashes(timed->clashes());
}

void DaysCalendarView::describeBirthdays(int trailing)
{
    const Date first = firstDayOf(date());
    birthdays.show(first, dayCount);
    std::vector<QString> spoken;
    for (int column = 0; column < dayCount; ++column)
        spoken.push_back(DateFormatter::string(CalendarManager::dateWithColumn(column, first),
                                               DateFormatter::Style::Full, DateFormatter::Style::None));
    birthdaysLine->setDays(birthdays.days(), std::move(spoken), static_cast<int>(metrics.gridIndent),
                           trailing);
}

void DaysCalendarView::refreshCalendar()
{
    lanes->reload();
    timed->reload();
    describeDays(timedScroll->verticalScrollBar()->sizeHint().width());
    describeBirthdays(timedScroll->verticalScrollBar()->sizeHint().width());
    setSizeScrollViews();
}

/// A press on empty hours is at the hand's reach only once it is shown where the day begins.
void DaysCalendarView::scrollToFirst()
{
    timedScroll->verticalScrollBar()->setValue(timed->firstHeight());
    wasScrolled = true;
}

// Places

void DaysCalendarView::setSizeScrollViews()
{
    const int bar = timedScroll->verticalScrollBar()->sizeHint().width();
    const bool isLabelled = allDayLabel && lanes->laneCount() == 0 && !isLaneWanted;
    const QSize labelSize = isLabelled ? allDayLabel->sizeHint() : QSize();
    const int dayHeight = header ? DaysLineWeek::neededHeight() : std::max(0, labelSize.height());
    const int headerHeight = dayHeight + birthdaysLine->neededHeight();
    const int emptyLane = isLaneWanted ? AllDayLanes{{}, metrics}.laneHeight() : 0;
    const int area = std::max(emptyLane, static_cast<int>(lanes->areaHeight()));
    const bool scrolls = lanes->documentHeight() > lanes->areaHeight();
    const int line = lanes->laneCount() > 0 ? 2 : dayCount > 1 ? 1 : 0;
    if (header)
        header->setGeometry(0, 0, width(), dayHeight);
    birthdaysLine->setGeometry(0, dayHeight, width(), headerHeight - dayHeight);
    if (allDayLabel) {
        allDayLabel->setVisible(isLabelled);
        allDayLabel->setGeometry(
            QRect(isRightToLeft() ? width() - labelSize.width() : 0, 0, labelSize.width(), dayHeight));
    }
    const int laneWidth = scrolls ? width() : width() - bar;
    laneScroll->setGeometry(isRightToLeft() ? width() - laneWidth : 0, headerHeight, laneWidth, area);
    lanes->setFixedHeight(std::max({1, emptyLane, static_cast<int>(lanes->documentHeight())}));
    laneScroll->setVisible(area > 0);
    separator = QRect(0, headerHeight + area, width(), line);
    const int top = headerHeight + area + line;
    timedScroll->setGeometry(0, top, width(), std::max(0, height() - top));
    visibleSpanChanged();
    update();
}

void DaysCalendarView::resizeEvent(QResizeEvent *event)
{
    CalendarPage::resizeEvent(event);
    setSizeScrollViews();
    if (!wasScrolled && timedScroll->height() > 0 && isVisible())
        scrollToFirst();
}

void DaysCalendarView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(Theme::card));
    painter.fillRect(separator, QColor(Theme::edge));
}

QRect DaysCalendarView::slidingArea() const
{
    const int bar = timedScroll->verticalScrollBar()->width();
    const int indent = static_cast<int>(metrics.gridIndent);
    return isRightToLeft() ? QRect(bar, 0, width() - bar - indent, height())
                           : QRect(indent, 0, width() - bar - indent, height());
}

void DaysCalendarView::visibleSpanChanged()
{
    const int top = timedScroll->verticalScrollBar()->value();
    timed->setVisibleSpan(top, top + timedScroll->viewport()->height());
}

// Paper

std::unique_ptr<CalendarPage> DaysCalendarView::copyForPaper() const
{
    std::unique_ptr<CalendarPage> copy;
    if (dayCount == 1)
        copy = std::make_unique<DayCalendarViewController>();
    else
        copy = std::make_unique<WeekCalendarViewController>();
    copy->setLayoutDirection(layoutDirection());
    copy->showDate(date());
    return copy;
}

/// The working day, and more where there is something.
std::pair<int, int> DaysCalendarView::hoursOnPaper() const
{
    constexpr int firstHour = 7;
    constexpr int lastHour = 20;
    const double hour = 2 * metrics.heightOfRow();
    double top = firstHour * hour;
    double bottom = lastHour * hour;
    for (const CalendarGrid::Placed &one : timed->placed()) {
        top = std::min(top, one.frame.top());
        bottom = std::max(bottom, one.frame.bottom());
    }
    return {static_cast<int>(std::floor(top / hour) * hour),
            static_cast<int>(std::ceil(bottom / hour) * hour)};
}

void DaysCalendarView::fitToPaper(double ratio)
{
    constexpr int least = 640;
    const auto [top, bottom] = hoursOnPaper();
    const double tall = DaysLineWeek::neededHeight() + birthdaysLine->neededHeight() +
                        lanes->documentHeight() + 2 + bottom - top;
    resize(std::max(least, static_cast<int>(tall * ratio)), static_cast<int>(tall));
    lanes->resize(width(), std::max(1, static_cast<int>(lanes->documentHeight())));
    timed->resize(width(), timed->height());
    if (header) {
        describeDays(0);
        header->resize(width(), DaysLineWeek::neededHeight());
    }
    describeBirthdays(0);
    birthdaysLine->resize(width(), birthdaysLine->neededHeight());
    lanes->relayout();
    timed->relayout();
}

void DaysCalendarView::paintForPaper(QPainter &painter)
{
    painter.save();
    if (header) {
        header->render(&painter, {}, {}, DrawChildren);
        painter.translate(0, header->height());
    }
    if (birthdaysLine->neededHeight() > 0) {
        birthdaysLine->render(&painter, {}, {}, DrawChildren);
        painter.translate(0, birthdaysLine->height());
    }
    if (lanes->laneCount() > 0) {
        lanes->paintForPaper(painter);
        painter.translate(0, lanes->height());
        painter.fillRect(0, 0, width(), 1, QColor(Theme::edge));
        painter.translate(0, 2);
    }
    const auto [top, bottom] = hoursOnPaper();
    painter.setClipRect(0, 0, width(), bottom - top);
    painter.translate(0, -top);
    timed->paintForPaper(painter);
    painter.restore();
}

// Time, and dragging beyond the edge

void DaysCalendarView::timePassed()
{
    timed->updateCurrentTime();
    if (!wasScrolled && timedScroll->height() > 0)
        scrollToFirst();
}

bool DaysCalendarView::showsMoment() const
{
    return timed->layoutOfItems().currentTimeLine(Clock::now()).has_value();
}

bool DaysCalendarView::hasClash() const
{
    return dayCount == 1 && !timed->clashes().empty() && timed->clashes().front();
}

void DaysCalendarView::scrollPage(int step)
{
    QScrollBar *bar = timedScroll->verticalScrollBar();
    bar->setValue(bar->value() + step * bar->pageStep());
}

void DaysCalendarView::scrollOn(const QPoint &point)
{
    const int top = timedScroll->verticalScrollBar()->value();
    const bool isOutside = point.y() < top || point.y() > top + timedScroll->viewport()->height();
    if (isOutside && !autoscrollTimer.isActive())
        autoscrollTimer.start();
}

void DaysCalendarView::autoscroll()
{
    const int y = timedScroll->viewport()->mapFromGlobal(QCursor::pos()).y();
    const bool isOutside = y < 0 || y > timedScroll->viewport()->height();
    if (!isOutside || !(QGuiApplication::mouseButtons() & Qt::LeftButton))
        return autoscrollTimer.stop();
    QScrollBar *bar = timedScroll->verticalScrollBar();
    bar->setValue(bar->value() + (y < 0 ? -autoscrollStep : autoscrollStep));
    timed->continueDrag();
}

// The two of them

WeekCalendarViewController::WeekCalendarViewController(QWidget *parent)
    : DaysCalendarView(CalendarManager::daysInWeek, parent)
{
    setObjectName(u"WeekCalendarViewController"_s);
}

Date WeekCalendarViewController::firstDayOf(Date date) const
{
    return MVDate::startOfWeek(MVDate::getStartOfDay(date));
}

DayCalendarViewController::DayCalendarViewController(QWidget *parent)
    : DaysCalendarView(1, parent)
{
    setObjectName(u"DayCalendarViewController"_s);
}

Date DayCalendarViewController::firstDayOf(Date date) const
{
    return MVDate::getStartOfDay(date);
}

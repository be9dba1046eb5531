#include "shell/calendars/CalendarViewController.h"

#include "calendarviews/CalendarGrid.h"
#include "calendarviews/DaysCalendarView.h"
#include "calendarviews/DaysControllerButton.h"
#include "calendarviews/MonthCalendarViewController.h"
#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "foundation/UserDefaults.h"
#include "records/dates/MVDate.h"
#include "shell/calendars/CalendarItemCommands.h"
#include "shell/calendars/CalendarTitle.h"
#include "store/state/SettingsKeys.h"
#include "widgets/Animations.h"
#include "widgets/Appearance.h"
#include "widgets/Direction.h"
#include "widgets/MVSegmentView.h"
#include "widgets/Theme.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPrinter>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

CalendarViewController::CalendarViewController(QWidget *parent)
    : TabsViewController(localized(u"Calendar"_s), parent)
    , shownDate(Clock::now())
    , title(new CalendarTitle)
    , calendarSegment(new MVSegmentView({localized(u"Day"_s), localized(u"Week"_s), localized(u"Month"_s)}))
    , daysCalendarController(new DaysControllerButton)
    , commands(new CalendarItemCommands(*this))
{
    UserDefaults &defaults = UserDefaults::standard();
    shownDate = defaults.date(settings::calendarLastDate).value_or(shownDate);
    type = static_cast<CalendarType>(std::clamp(defaults.object(settings::calendarState).toInt(), 0, 2));
    title->setObjectName(u"labelTitle"_s);
    calendarSegment->setObjectName(u"calendarSegment"_s);
    calendarSegment->setAccessibleName(localized(u"View"_s));
    daysCalendarController->setObjectName(u"daysCalendarController"_s);
    lock.setSingleShot(true);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    auto *row = new QHBoxLayout;
    row->setContentsMargins(Direction::margins(*this, Theme::contentMargin + Theme::unit / 2, Theme::unit,
                                               2 * Theme::unit, Theme::unit));
    row->setSpacing(2 * Theme::unit);
    row->addWidget(title, 1);
    row->addWidget(calendarSegment);
    row->addWidget(daysCalendarController);
    column->addLayout(row);
    addButton(ToolBarButton::NewTask);
    addButton(ToolBarButton::Calendars);
    connect(calendarSegment, &MVSegmentView::selectedIndexChanged, this,
            [this](int index) { showCalendar(static_cast<CalendarType>(index)); });
    connect(daysCalendarController, &DaysControllerButton::pressed, this,
            &CalendarViewController::daysControllerSelectButton);
    showCalendar(type);
}

CalendarViewController::~CalendarViewController() = default;

// Choosing a view

void CalendarViewController::showCalendar(CalendarType wanted)
{
    type = wanted;
    calendarSegment->setSelectedIndex(static_cast<int>(type));
    store();
    makePage();
}

void CalendarViewController::makePage()
{
    const bool hadKeys = page && page->isAncestorOf(QApplication::focusWidget());
    if (page) {
        page->hide();
        page->deleteLater();
    }
    if (type == CalendarType::Day)
        page = new DayCalendarViewController(this);
    else if (type == CalendarType::Week)
        page = new WeekCalendarViewController(this);
    else
        page = new MonthCalendarViewController(this);
    commands->serve(*page);
    connect(page, &CalendarPage::pageWanted, this, &CalendarViewController::daysControllerSelectButton);
    connect(page, &CalendarPage::besideWanted, this, &CalendarViewController::daysControllerSelectButton);
    connect(page, &CalendarPage::shownAnew, this, &CalendarViewController::setTitleDate);
    connect(page, &CalendarPage::selectionChanged, this, &TabsViewController::commandsChanged);
    connect(page, &CalendarPage::todayWanted, this, &CalendarViewController::calendarToday);
    connect(page, &CalendarPage::dayWanted, this, &CalendarViewController::dayWanted);
    connect(page, &CalendarPage::wentTo, this, &CalendarViewController::wentTo);
    layout()->addWidget(page);
    static_cast<QVBoxLayout *>(layout())->setStretchFactor(page, 1);
    page->showDate(shownDate);
    setTitleDate();
    setFocusProxy(page);
    if (hadKeys)
        page->mainGrid()->setFocus();
}

// Dates

void CalendarViewController::setDate(Date date)
{
    shownDate = date;
    store();
    setTitleDate();
}

void CalendarViewController::daysControllerSelectButton(int number)
{
    if (number == 0) {
        lock.stop();
        return calendarGoToDate(Clock::now());
    }
    if (lock.isActive())
        return;
    if (const int slide = Animations::duration(Animations::calendarSlide); slide > 0)
        lock.start(slide);
    const CalendarUnit unit = type == CalendarType::Day    ? CalendarUnit::Day
                              : type == CalendarType::Week ? CalendarUnit::WeekOfYear
                                                           : CalendarUnit::Month;
    shownDate = Calendar::current().dateByAdding(unit, number, shownDate);
    page->slideTo(shownDate, number);
    setDate(shownDate);
}

void CalendarViewController::calendarGoToDate(Date date)
{
    page->showDate(date);
    setDate(date);
}

void CalendarViewController::dayWanted(Date day)
{
    shownDate = day;
    showCalendar(CalendarType::Day);
}

void CalendarViewController::wentTo(Date date, const TaskPtr &task)
{
    calendarGoToDate(date);
    page->goToTask(task);
}

void CalendarViewController::setTitleDate()
{
    title->setMark(page->hasClash() ? localized(u"Appointments at the same time"_s) : QString());
    const auto words = [](Date date, const QString &pattern) { return DateFormatter::string(date, pattern); };
    if (type == CalendarType::Day)
        return title->setWords(words(shownDate, u"dd"_s), words(shownDate, u"LLLL yyyy"_s),
                               words(shownDate, u"EEEE"_s));
    if (type == CalendarType::Month)
        return title->setWords(words(shownDate, u"yyyy"_s), words(shownDate, u"LLLL"_s), {});
    const Date start = MVDate::startOfWeek(shownDate);
    const Calendar calendar = Calendar::current();
    const int first = calendar.weekOfYear(start);
    const int last = calendar.weekOfYear(MVDate::endOfWeek(shownDate));
    QString week = localized(u"Week"_s) + u" %1"_s.arg(first);
    if (last != first)
        week += u", %1"_s.arg(last);
    title->setWords(words(start, u"yyyy"_s), words(start, u"LLLL"_s), week);
}

void CalendarViewController::store() const
{
    UserDefaults &defaults = UserDefaults::standard();
    defaults.setObject(settings::calendarLastDate, QVariant::fromValue(shownDate));
    defaults.setObject(settings::calendarState, static_cast<int>(type));
}

// What the window asks of a screen

void CalendarViewController::reloadData()
{
    page->refreshCalendar();
}

QString CalendarViewController::titleOnPaper() const
{
    using Style = DateFormatter::Style;
    if (type == CalendarType::Day)
        return DateFormatter::string(shownDate, Style::Full, Style::None);
    if (type == CalendarType::Month)
        return DateFormatter::string(shownDate, u"LLLL yyyy"_s);
    return DateFormatter::string(MVDate::startOfWeek(shownDate), Style::Long, Style::None) + u" – "_s +
           DateFormatter::string(MVDate::endOfWeek(shownDate), Style::Long, Style::None);
}

/// On one page, under the words of the title.
void CalendarViewController::print(QPrinter &printer)
{
    constexpr double titleShare = 0.06;
    const PaperColours colours;
    QPainter painter(&printer);
    const QRectF sheet = printer.pageLayout().paintRectPixels(printer.resolution());
    const QRectF head(0, 0, sheet.width(), sheet.height() * titleShare);
    QFont font = Theme::font(Theme::FontRole::Title);
    font.setPixelSize(static_cast<int>(head.height() * 0.5));
    painter.setFont(font);
    painter.drawText(head, Qt::AlignLeading | Qt::AlignVCenter, titleOnPaper());
    painter.translate(0, head.height());
    const std::unique_ptr<CalendarPage> copy = page->copyForPaper();
    copy->fitToPaper(sheet.width() / (sheet.height() - head.height()));
    const double scale =
        std::min(sheet.width() / copy->width(), (sheet.height() - head.height()) / copy->height());
    painter.scale(scale, scale);
    copy->paintForPaper(painter);
}

void CalendarViewController::clearController()
{
    for (CalendarGrid *grid : page->grids())
        grid->finishKeyMove();
    store();
}

/// On the day that is shown.
NewTaskRequest CalendarViewController::newTaskRequest() const
{
    return NewTaskRequest::ofCalendar(
        NewTaskRequest::today(type == CalendarType::Day ? shownDate : Clock::now()), TimePeriod::AllDay);
}

void CalendarViewController::selectItem(const ObjectPtr &record)
{
    const auto task = std::dynamic_pointer_cast<EntityTask>(record);
    const OptionalDate date = !task ? std::nullopt : task->startDate() ? task->startDate() : task->dueDate();
    if (!date)
        return;
    if (!page->goToTask(task)) {
        calendarGoToDate(*date);
        page->goToTask(task);
    }
}

void CalendarViewController::selectRecords(const std::vector<ObjectPtr> &records)
{
    for (const ObjectPtr &record : records) {
        const auto task = std::dynamic_pointer_cast<EntityTask>(record);
        if (task && page->goToTask(task))
            return;
    }
}

TaskPtr CalendarViewController::selectedTask() const
{
    return page->currentTask();
}

void CalendarViewController::removeSelection()
{
    commands->removeSelected(*page);
}

void CalendarViewController::takeKeysBack()
{
    page->mainGrid()->setFocus();
}

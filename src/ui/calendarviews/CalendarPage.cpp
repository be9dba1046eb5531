#include "calendarviews/CalendarPage.h"

#include "calendarviews/CalendarGrid.h"
#include "calendarviews/CalendarSlide.h"
#include "calendarviews/SelectedTaskController.h"
#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/Region.h"
#include "records/dates/MVDate.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"
#include "store/state/NotificationNames.h"
#include "widgets/Animations.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"

#include <QMenu>

#include <utility>

using namespace Qt::Literals::StringLiterals;

CalendarPage::CalendarPage(QWidget *parent)
    : QWidget(parent)
    , shownDate(Clock::now())
    , today(MVDate::getStartOfDay(shownDate))
    , zone(Calendar::currentSettings().zoneIdentifier)
{
    refresh.setSingleShot(true);
    connect(&refresh, &QTimer::timeout, this, [this] { isVisible() ? refreshNow() : void(isOld = true); });
    clock.setSingleShot(true);
    connect(&clock, &QTimer::timeout, this, &CalendarPage::clockTicked);
    NotificationCenter &center = NotificationCenter::defaultCenter();
    observations.push_back(center.addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) { storeChanged(changes); }));
    observations.push_back(center.addObserver(notifications::iCloudChange, [this] { birthdaysChanged(); }));
    observations.push_back(
        center.addObserver(notifications::calendarBirthdays, [this] { birthdaysChanged(); }));
    observations.push_back(
        center.addObserver(notifications::changeSelectedTask, [this] { Q_EMIT selectionChanged(); }));
}

CalendarPage::~CalendarPage() = default;

// Dates

void CalendarPage::showDate(Date date)
{
    if (slide)
        slide->finish();
    shownDate = date;
    setDate(date);
}

void CalendarPage::slideTo(Date date, int direction)
{
    if (slide)
        slide->finish();
    const QRect area = slidingArea();
    if (!isVisible() || Animations::duration(Animations::calendarSlide) == 0 || area.isEmpty())
        return showDate(date);
    const QPixmap before = picture(area);
    showDate(date);
    const QPixmap after = picture(slidingArea());
    slide = new CalendarSlide(before, after, (direction > 0) != isRightToLeft(), area, this);
}

/// Without transparency, which makes writing slow.
QPixmap CalendarPage::picture(const QRect &area)
{
    QImage image(area.size() * devicePixelRatioF(), QImage::Format_RGB32);
    image.setDevicePixelRatio(devicePixelRatioF());
    image.fill(Theme::card);
    render(&image, {}, area, DrawChildren);
    return QPixmap::fromImage(std::move(image));
}

// What happens elsewhere

void CalendarPage::storeChanged(const StoreChanges &changes)
{
    if (changes.concerns(EntityTask::entityName) || changes.concerns(EntityCategory::entityName))
        refreshSoon();
    if (changes.concerns(EntityContacts::entityName))
        birthdaysChanged();
}

void CalendarPage::birthdaysChanged()
{
    birthdays.forget();
    refreshSoon();
}

void CalendarPage::pressBirthdays(const BirthdayDays::List &pressed, const QPoint &globalPosition)
{
    if (pressed.size() == 1)
        return showPerson(pressed.front().contact);
    auto *menu = new QMenu(this);
    menu->setObjectName(u"menuBirthdays"_s);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const Birthdays::Birthday &one : pressed)
        menu->addAction(firstPart(Birthdays::inWords(one)).replace(u'&', u"&&"_s), this,
                        [this, row = one.contact] { showPerson(row); });
    menu->popup(globalPosition);
}

/// They may have gone while the menu stood.
void CalendarPage::showPerson(RowId row)
{
    const ObjectList<EntityContacts> found(mainContext(),
                                           organiserModel().requireEntity(EntityContacts::entityName), {row});
    if (const ContactPtr contact = found.at(0))
        Q_EMIT personWanted(contact);
}

void CalendarPage::refreshNow()
{
    isOld = false;
    if (std::exchange(isLookOld, false))
        showDate(shownDate);
    else
        refreshCalendar();
    Q_EMIT shownAnew();
}

/// A new day is marked otherwise, and in another zone everything stands elsewhere.
void CalendarPage::clockTicked()
{
    const Date day = MVDate::getStartOfDay(Clock::now());
    const QByteArray zoneNow = Calendar::currentSettings().zoneIdentifier;
    if (day != today || zoneNow != zone) {
        today = day;
        zone = zoneNow;
        isLookOld = true;
        refreshNow();
    } else {
        timePassed();
    }
    startClock();
}

/// At midnight, and not so late that a computer that slept shows the wrong day for long.
void CalendarPage::startClock()
{
    constexpr Seconds often{20};
    constexpr Seconds seldom{600};
    const Date now = Clock::now();
    const Seconds toMidnight = Calendar::current().startOfNextDay(now) - now + Seconds(0.01);
    const Seconds next = std::min(showsMoment() ? often : seldom, toMidnight);
    clock.start(std::chrono::ceil<std::chrono::milliseconds>(next));
}

void CalendarPage::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (isOld)
        refreshNow();
    clockTicked();
}

void CalendarPage::hideEvent(QHideEvent *event)
{
    clock.stop();
    QWidget::hideEvent(event);
}

void CalendarPage::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::LayoutDirectionChange) {
        isLookOld = true;
        refreshSoon();
    }
    // The zone is looked up anew when the user comes back to the program.
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        QMetaObject::invokeMethod(
            this, [this] { isVisible() ? clockTicked() : void(); }, Qt::QueuedConnection);
}

// What happens in the grids

void CalendarPage::connectGrid(CalendarGrid *grid)
{
    connect(grid, &CalendarGrid::eventViewSelectedItem, this, &CalendarPage::eventViewSelectedItem);
    connect(grid, &CalendarGrid::opened, this, &CalendarPage::opened);
    connect(grid, &CalendarGrid::menuWanted, this, &CalendarPage::menuWanted);
    connect(grid, &CalendarGrid::removeRequested, this, &CalendarPage::removeRequested);
    connect(grid, &CalendarGrid::toggled, this, &CalendarPage::toggled);
    connect(grid, &CalendarGrid::pageWanted, this, &CalendarPage::pageWanted);
    connect(grid, &CalendarGrid::todayWanted, this, &CalendarPage::todayWanted);
    connect(grid, &CalendarGrid::wentTo, this, &CalendarPage::wentTo);
    connect(grid, &CalendarGrid::leftByKeys, this, [this, grid](int columns) { goOnByKeys(grid, columns); });
}

void CalendarPage::goOnByKeys(CalendarGrid *grid, int columns)
{
    constexpr int lastOfMany = 1000;
    const Date before = shownDate;
    const double height = grid->currentHeight();
    const QPointer<CalendarGrid> self = grid;
    Q_EMIT besideWanted(columns);
    if (self && shownDate != before)
        grid->enterColumn(columns > 0 ? 0 : lastOfMany, height);
}

TaskPtr CalendarPage::currentTask() const
{
    for (const CalendarGrid *grid : grids()) {
        if (const TaskPtr task = grid->currentTask())
            return task;
    }
    return nullptr;
}

bool CalendarPage::goToTask(const TaskPtr &task)
{
    for (CalendarGrid *grid : grids()) {
        if (grid->goToTask(task)) {
            grid->setFocus();
            return true;
        }
    }
    return false;
}

void CalendarPage::mousePressEvent(QMouseEvent *)
{
    SelectedTaskController::sharedCenter().removeAllTasks();
}

// Day, week and month on the screen: what is pressed, dragged and typed there, and what the store holds
// afterwards. The frozen day is Saturday 2026-11-21.

#include "calendarviews/DaysCalendarView.h"
#include "calendarviews/DaysControllerButton.h"
#include "calendarviews/EventGridWeek.h"
#include "calendarviews/EventsForDaysGridWeek.h"
#include "calendarviews/EventsGridMonth.h"
#include "calendarviews/MonthCalendarViewController.h"
#include "calendarviews/SelectedTaskController.h"
#include "records/DetailStack.h"
#include "records/DraggedRecords.h"
#include "shell/calendars/CalendarViewController.h"
#include "shell/calendars/GoToDateWindowController.h"
#include "support/OtherProgram.h"
#include "ui/support/Reader.h"
#include "ui/support/ShellTest.h"
#include "widgets/Animations.h"
#include "widgets/MVSegmentView.h"

#include <QDateEdit>
#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QPrinter>
#include <QPushButton>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;
using Type = CalendarViewController::CalendarType;

class CalendarViewsTest : public ShellTest
{
protected:
    TaskPtr appointment(const QString &title, Date start, Date due)
    {
        return add(title, [=](MVTask &task) {
            task.type = TaskType::Appointment;
            task.startDate = start;
            task.dueDate = due;
        });
    }
    TaskPtr call(const QString &title, Date at)
    {
        return add(title, [=](MVTask &task) {
            task.type = TaskType::EmailCall;
            task.startDate = at;
            task.dueDate = at;
        });
    }
    TaskPtr toDo(const QString &title, int firstDay, int lastDay)
    {
        return add(title, [=](MVTask &task) {
            task.startDate = localDate(2026, 11, firstDay, 0, 0);
            task.dueDate = localDate(2026, 11, lastDay, 23, 59) + Seconds(59);
        });
    }
    static Date at(int day, int hour, int minute = 0) { return localDate(2026, 11, day, hour, minute); }

    void show(Type type)
    {
        window().resize(1280, 900);
        run(ActionId::ShowCalendar);
        calendar().showCalendar(type);
        settle();
    }
    CalendarViewController &calendar()
    {
        return static_cast<CalendarViewController &>(*controller().currentScreen());
    }
    CalendarGrid &grid() { return *calendar().calendarPage()->mainGrid(); }
    EventGridWeek &hours() { return static_cast<EventGridWeek &>(grid()); }
    EventsForDaysGridWeek &lanes()
    {
        return *static_cast<DaysCalendarView *>(calendar().calendarPage())->wholeDays();
    }
    QRectF frame(CalendarGrid &of, const TaskPtr &task)
    {
        for (const CalendarGrid::Placed &one : of.placed()) {
            if (of.events()[static_cast<size_t>(one.event)].task() == task)
                return one.frame;
        }
        return {};
    }
    static void press(QWidget &on, QPointF from)
    {
        QTest::mousePress(&on, Qt::LeftButton, {}, from.toPoint());
    }
    static void moveTo(QWidget &on, QPointF to, Qt::KeyboardModifiers modifiers = {})
    {
        QMouseEvent move(QEvent::MouseMove, to, on.mapToGlobal(to), Qt::NoButton, Qt::LeftButton, modifiers);
        QApplication::sendEvent(&on, &move);
    }
    void dragFrom(QWidget &on, QPointF from, QPointF to, Qt::KeyboardModifiers modifiers = {})
    {
        press(on, from);
        moveTo(on, (from + to) / 2, modifiers);
        moveTo(on, to, modifiers);
        QTest::mouseRelease(&on, Qt::LeftButton, {}, to.toPoint());
        settle();
    }
    static double column(CalendarGrid &of) { return (of.width() - 50) / 7.0; }
    void press(Qt::Key pressed, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&grid(), pressed, modifiers);
    }
    /// A key while Alt is held down, which it stays.
    void heldAlt(Qt::Key pressed, Qt::KeyboardModifiers modifiers = {})
    {
        QKeyEvent event(QEvent::KeyPress, pressed, modifiers | Qt::AltModifier);
        QApplication::sendEvent(&grid(), &event);
    }
    void releaseAlt()
    {
        QTest::keyRelease(&grid(), Qt::Key_Alt);
        settle();
    }
    void pressWithAlt(Qt::Key pressed, Qt::KeyboardModifiers modifiers = {})
    {
        heldAlt(pressed, modifiers);
        releaseAlt();
    }
};

TEST_F(CalendarViewsTest, AnAppointmentIsMovedAndResizedInStepsOfAQuarter)
{
    const TaskPtr task = appointment(u"Dentist"_s, at(17, 9, 45), at(17, 10, 30));
    MVTask copy(task);
    copy.alert = at(17, 9, 30);
    copy.save();
    ASSERT_FALSE(DBWorker::saveContext());
    show(Type::Week);
    const QRectF before = frame(hours(), task);
    EXPECT_NEAR(before.left(), 50 + 2 * column(hours()) + 1, 0.01);
    EXPECT_EQ(before.top(), 682);
    EXPECT_EQ(before.height(), 53);
    const QPointF grip = before.center();
    dragFrom(hours(), grip, grip + QPointF(2 * column(hours()), 75));
    EXPECT_EQ(task->startDate(), at(19, 10, 45));
    EXPECT_EQ(task->dueDate(), at(19, 11, 30));
    EXPECT_EQ(task->alert(), at(19, 10, 30));

    const QRectF moved = frame(hours(), task);
    dragFrom(hours(), {moved.center().x(), moved.bottom() - 2}, {moved.center().x(), moved.bottom() + 40});
    EXPECT_EQ(task->startDate(), at(19, 10, 45));
    EXPECT_EQ(task->dueDate(), at(19, 12, 0));
    // Single minutes on demand, and never shorter than a quarter of an hour.
    const QRectF longer = frame(hours(), task);
    dragFrom(hours(), {longer.center().x(), longer.top() + 2}, {longer.center().x(), longer.top() + 9},
             Qt::AltModifier);
    EXPECT_EQ(task->startDate(), at(19, 10, 50));
    dragFrom(hours(), {longer.center().x(), longer.bottom() - 2}, {longer.center().x(), 100});
    EXPECT_EQ(task->dueDate(), at(19, 11, 5));

    for (int step = 0; step < 4; ++step)
        run(ActionId::Undo);
    EXPECT_EQ(task->startDate(), at(17, 9, 45));
    EXPECT_EQ(task->alert(), at(17, 9, 30));
    EXPECT_EQ(frame(hours(), task), before);
}

TEST_F(CalendarViewsTest, ACallHasOneMomentAndSharesTheColumnWithAnAppointment)
{
    const TaskPtr meeting = appointment(u"Meeting"_s, at(18, 9, 30), at(18, 11));
    const TaskPtr task = call(u"Call Ann"_s, at(18, 10));
    show(Type::Week);
    const double half = column(hours()) / 2;
    EXPECT_NEAR(frame(hours(), meeting).width(), half - 2, 0.01);
    EXPECT_NEAR(frame(hours(), task).left(), frame(hours(), meeting).right() + 3, 0.01);
    const QRectF place = frame(hours(), task);
    dragFrom(hours(), {place.center().x(), place.bottom() - 1}, {place.center().x(), place.bottom() + 70});
    EXPECT_EQ(task->startDate(), at(18, 10));
    dragFrom(hours(), place.center(), place.center() + QPointF(0, 70));
    EXPECT_EQ(task->startDate(), at(18, 11));
    EXPECT_EQ(task->dueDate(), at(18, 11));
    EXPECT_NEAR(frame(hours(), meeting).width(), 2 * half - 3, 0.01);
}

TEST_F(CalendarViewsTest, WhatMustNotMoveSaysSoOnceOrStays)
{
    const TaskPtr barred = appointment(u"Barred"_s, at(18, 9), at(18, 10));
    barred->setAllowsContentModifications(false);
    const TaskPtr done = appointment(u"Done"_s, at(19, 9), at(19, 10));
    done->setStatus(TaskStatus::Done);
    ASSERT_FALSE(DBWorker::saveContext());
    show(Type::Week);
    ScriptedAlerts alerts({Alert::firstButton});
    for (const TaskPtr &task : {barred, done}) {
        const QPointF grip = frame(hours(), task).center();
        dragFrom(hours(), grip, grip + QPointF(0, 70));
        EXPECT_FALSE(hours().isDragging());
    }
    EXPECT_EQ(alerts.asked().size(), 1U);
    EXPECT_EQ(barred->startDate(), at(18, 9));
    EXPECT_EQ(done->startDate(), at(19, 9));
}

TEST_F(CalendarViewsTest, ADragEndsWhenItsTaskBecomesAnother)
{
    const TaskPtr task = appointment(u"Dentist"_s, at(18, 9), at(18, 10));
    show(Type::Week);
    QPointF grip;
    const TaskPtr other = appointment(u"Before"_s, at(16, 9), at(16, 10));
    const auto begin = [&] {
        grip = frame(hours(), task).center();
        press(hours(), grip);
        moveTo(hours(), grip + QPointF(0, 70));
        ASSERT_TRUE(hours().isDragging());
    };
    begin();
    task->setStartDate(at(18, 8));
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    EXPECT_FALSE(hours().isDragging());
    QTest::mouseRelease(&hours(), Qt::LeftButton, {}, grip.toPoint());
    EXPECT_EQ(task->startDate(), at(18, 8));

    // Another one that goes changes nothing.
    begin();
    context().deleteObject(other);
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    EXPECT_TRUE(hours().isDragging());
    moveTo(hours(), grip + QPointF(0, 140));
    QTest::mouseRelease(&hours(), Qt::LeftButton, {}, (grip + QPointF(0, 140)).toPoint());
    EXPECT_EQ(task->startDate(), at(18, 10));

    begin();
    context().deleteObject(task);
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    EXPECT_FALSE(hours().isDragging());
    QTest::mouseRelease(&hours(), Qt::LeftButton, {}, grip.toPoint());
    EXPECT_TRUE(hours().placed().empty());
}

TEST_F(CalendarViewsTest, EscapeGivesADragUp)
{
    const TaskPtr task = appointment(u"Dentist"_s, at(18, 9), at(18, 10));
    show(Type::Week);
    const QPointF grip = frame(hours(), task).center();
    press(hours(), grip);
    moveTo(hours(), grip + QPointF(0, 70));
    press(Qt::Key_Escape);
    QTest::mouseRelease(&hours(), Qt::LeftButton, {}, (grip + QPointF(0, 70)).toPoint());
    EXPECT_EQ(task->startDate(), at(18, 9));
}

TEST_F(CalendarViewsTest, BarsMoveAndGrowByWholeDays)
{
    const TaskPtr task = toDo(u"Trip"_s, 16, 17);
    show(Type::Week);
    const double day = column(lanes());
    const QRectF place = frame(lanes(), task);
    EXPECT_NEAR(place.left(), 50 + day + 1, 0.01);
    EXPECT_NEAR(place.width(), 2 * day - 3, 0.01);
    EXPECT_EQ(place.top(), 2);
    dragFrom(lanes(), place.center() - QPointF(day / 2, 0), place.center() + QPointF(1.5 * day, 0));
    EXPECT_EQ(task->startDate(), at(18, 0));
    EXPECT_EQ(task->dueDate(), at(19, 23, 59));
    const QRectF moved = frame(lanes(), task);
    dragFrom(lanes(), {moved.left() + 1, moved.center().y()}, {moved.left() + 1 - day, moved.center().y()});
    EXPECT_EQ(task->startDate(), at(17, 0));
    EXPECT_EQ(task->dueDate(), at(19, 23, 59));
    // Below one day it does not shrink.
    const QRectF longer = frame(lanes(), task);
    dragFrom(lanes(), {longer.right() - 1, longer.center().y()}, {longer.left() - day, longer.center().y()});
    EXPECT_EQ(task->startDate(), at(17, 0));
    EXPECT_GE(*task->dueDate(), at(17, 23, 59));
}

TEST_F(CalendarViewsTest, WhatIsMarkedBecomesATask)
{
    toDo(u"Trip"_s, 16, 17);
    show(Type::Week);
    const double day = column(hours());
    const auto created = [&] {
        WindowNewTask *made = newTaskWindow();
        EXPECT_NE(made, nullptr);
        const MVTask copy = made ? made->taskForm()->currentTask() : MVTask();
        if (made)
            made->close();
        settle();
        return copy;
    };
    // Upwards, too.
    dragFrom(hours(), {50 + 1.5 * day, 770}, {50 + 1.5 * day, 700});
    MVTask made = created();
    EXPECT_EQ(made.type, TaskType::Appointment);
    EXPECT_EQ(made.startDate, at(16, 10));
    EXPECT_EQ(made.dueDate, at(16, 11));
    dragFrom(hours(), {50 + 1.5 * day, 700}, {50 + 1.5 * day, 702});
    EXPECT_EQ(newTaskWindow(), nullptr);
    dragFrom(hours(), {50 + 1.5 * day, 700}, {50 + 1.5 * day, 708});
    EXPECT_EQ(created().dueDate, at(16, 10, 15));
    QTest::mouseDClick(&hours(), Qt::LeftButton, {}, QPointF(50 + 3.5 * day, 700).toPoint());
    made = created();
    EXPECT_EQ(made.startDate, at(18, 10));
    EXPECT_EQ(made.dueDate, at(18, 11));
    dragFrom(lanes(), {50 + 3.5 * day, 8}, {50 + 5.2 * day, 8});
    made = created();
    EXPECT_TRUE(made.isToDo());
    EXPECT_EQ(made.startDate, at(18, 0));
    EXPECT_EQ(made.dueDate, at(20, 23, 59) + Seconds(59));
    dragFrom(lanes(), {50 + 3.2 * day, 8}, {50 + 3.8 * day, 8});
    EXPECT_EQ(newTaskWindow(), nullptr);

    show(Type::Month);
    QTest::mouseClick(&grid(), Qt::RightButton, {}, {30, 60});
    made = created();
    EXPECT_TRUE(made.isToDo());
    EXPECT_EQ(made.startDate, at(1, 0));
}

TEST_F(CalendarViewsTest, AMonthMovesItsBarsAcrossRowsAndLeadsToItsDays)
{
    const TaskPtr trip = toDo(u"Trip"_s, 12, 17);
    const TaskPtr meeting = appointment(u"Meeting"_s, at(18, 9, 30), at(18, 11));
    for (int number = 0; number < 30; ++number)
        toDo(u"Crowd %1"_s.arg(number), 24, 24);
    show(Type::Month);
    auto &month = static_cast<EventsGridMonth &>(grid());
    const double day = grid().width() / 7.0;
    const double week = grid().height() / 5.0;
    const QRectF place = frame(grid(), meeting);
    dragFrom(grid(), place.center(), place.center() + QPointF(day, -week));
    EXPECT_EQ(meeting->startDate(), at(12, 9, 30));
    EXPECT_EQ(meeting->dueDate(), at(12, 11));

    // A bar of two rows is dragged by its second one, and shows in both meanwhile.
    const auto barsOf = [&](const TaskPtr &task) {
        return std::ranges::count_if(grid().placed(), [&](const CalendarGrid::Placed &one) {
            return grid().events()[static_cast<size_t>(one.event)].task() == task;
        });
    };
    EXPECT_EQ(barsOf(trip), 2);
    const QPointF second(day * 0.5, frame(grid(), trip).center().y() + week);
    dragFrom(grid(), second, second + QPointF(-day, 2 * week));
    EXPECT_EQ(trip->startDate(), at(12 + 14, 0));
    EXPECT_EQ(trip->dueDate(), localDate(2026, 12, 1, 23, 59));

    const MonthGridLayout::Cell crowded{3, 2};
    EXPECT_GT(month.layoutOfItems().hiddenIn(crowded), 20);
    QTest::mouseClick(&grid(), Qt::LeftButton, {},
                      month.layoutOfItems().moreLabelFrame(crowded).center().toPoint());
    settle();
    EXPECT_EQ(calendar().currentTypeCalendar(), Type::Day);
    EXPECT_EQ(find<MVSegmentView>(calendar(), "calendarSegment").selectedIndex(), 0);
    EXPECT_TRUE(Calendar::current().isSameDay(calendar().currentDate(), at(24, 12)));
    EXPECT_EQ(lanes().placed().size(), 30U);
}

TEST_F(CalendarViewsTest, TheKeysGoFromItemToItemAndMoveThem)
{
    const TaskPtr task = appointment(u"Dentist"_s, at(17, 9), at(17, 10));
    const TaskPtr meeting = appointment(u"Meeting"_s, at(18, 9, 30), at(18, 11));
    show(Type::Week);
    Reader reader;
    grid().setFocus();
    ASSERT_TRUE(grid().goToTask(task));
    press(Qt::Key_Right);
    EXPECT_EQ(grid().currentTask(), nullptr);
    press(Qt::Key_Down);
    EXPECT_EQ(grid().currentTask(), meeting);
    press(Qt::Key_Up);
    press(Qt::Key_Left);
    EXPECT_EQ(grid().currentTask(), task);
    press(Qt::Key_Down);
    EXPECT_EQ(grid().currentTask(), nullptr);
    press(Qt::Key_Up);
    EXPECT_EQ(grid().currentTask(), task);

    reader.heard();
    pressWithAlt(Qt::Key_Down);
    EXPECT_TRUE(reader.heard().filter(u"said"_s).join(u' ').contains(u"9:15"_s));
    EXPECT_EQ(task->startDate(), at(17, 9, 15));
    pressWithAlt(Qt::Key_Right);
    EXPECT_EQ(task->startDate(), at(18, 9, 15));
    EXPECT_EQ(grid().currentTask(), task);
    pressWithAlt(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(task->dueDate(), at(18, 10));
    press(Qt::Key_Escape);
    EXPECT_EQ(task->dueDate(), at(18, 10, 15));
    EXPECT_EQ(grid().currentTask(), task);
    // Several steps while Alt is held are one, which Escape takes back before it is saved.
    for (int step = 0; step < 4; ++step)
        heldAlt(Qt::Key_Down);
    press(Qt::Key_Escape);
    releaseAlt();
    EXPECT_EQ(task->startDate(), at(18, 9, 15));
    for (int step = 0; step < 4; ++step)
        heldAlt(Qt::Key_Down);
    releaseAlt();
    EXPECT_EQ(task->startDate(), at(18, 10, 15));
    run(ActionId::Undo);
    EXPECT_EQ(task->startDate(), at(18, 9, 15));

    press(Qt::Key_Return);
    settle();
    EXPECT_NE(controller().detailStack()->paneOf(task), nullptr);
}

TEST_F(CalendarViewsTest, TheKeysLeadOnIntoTheNextPageAndFollowWhatLeaves)
{
    const TaskPtr task = appointment(u"Dentist"_s, at(21, 9), at(21, 10));
    show(Type::Week);
    grid().setFocus();
    ASSERT_TRUE(grid().goToTask(task));
    pressWithAlt(Qt::Key_Right);
    EXPECT_EQ(task->startDate(), at(22, 9));
    EXPECT_TRUE(Calendar::current().isSameDay(calendar().currentDate(), at(22, 9)));
    EXPECT_EQ(grid().currentTask(), task);
    press(Qt::Key_Left);
    EXPECT_LT(calendar().currentDate(), at(22, 0));
    press(Qt::Key_PageDown);
    press(Qt::Key_PageDown);
    EXPECT_GT(calendar().currentDate(), at(25, 0));
    press(Qt::Key_T);
    EXPECT_TRUE(Calendar::current().isDateInToday(calendar().currentDate()));
    // A slot is where N begins.
    press(Qt::Key_N);
    ASSERT_NE(newTaskWindow(), nullptr);
}

TEST_F(CalendarViewsTest, TheKeysGoThroughAMonthDayByDay)
{
    const TaskPtr trip = toDo(u"Trip"_s, 14, 14);
    show(Type::Month);
    auto &month = static_cast<EventsGridMonth &>(grid());
    const auto isOn = [&](int number, int day) {
        const DateComponents fields = Calendar::current().shortComponents(month.currentDay());
        return fields.month == number && fields.day == day;
    };
    grid().setFocus();
    ASSERT_TRUE(grid().goToTask(trip));
    press(Qt::Key_Right);
    EXPECT_TRUE(isOn(11, 15));
    press(Qt::Key_Up);
    press(Qt::Key_Up);
    EXPECT_TRUE(isOn(11, 1));
    press(Qt::Key_Left);
    EXPECT_TRUE(isOn(10, 31));
    press(Qt::Key_Right);
    EXPECT_TRUE(isOn(11, 1));
    // What goes leaves the keyboard where it was.
    ASSERT_TRUE(grid().goToTask(trip));
    press(Qt::Key_Space);
    settle();
    EXPECT_EQ(trip->status(), TaskStatus::Done);
    EXPECT_TRUE(isOn(11, 14));
}

TEST_F(CalendarViewsTest, WholeDaysAreReachedByKeysWhereThereAreNone)
{
    show(Type::Week);
    ASSERT_EQ(lanes().areaHeight(), 0);
    grid().setFocus();
    grid().enterColumn(2, 0);
    press(Qt::Key_Up);
    ASSERT_TRUE(lanes().hasFocus());
    EXPECT_TRUE(lanes().isVisible());
    QTest::keyClick(&lanes(), Qt::Key_N);
    ASSERT_NE(newTaskWindow(), nullptr);
    EXPECT_EQ(newTaskWindow()->taskForm()->currentTask().startDate, at(17, 0));
    newTaskWindow()->close();
    lanes().setFocus();
    QTest::keyClick(&lanes(), Qt::Key_Down);
    EXPECT_TRUE(hours().hasFocus());
    EXPECT_FALSE(lanes().isVisible());
}

TEST_F(CalendarViewsTest, BothOfTwoAtTheSameTimeAreSeen)
{
    const TaskPtr shorter = appointment(u"Dentist"_s, at(18, 10), at(18, 10, 30));
    const TaskPtr longer = appointment(u"Workshop"_s, at(18, 9), at(18, 12));
    const TaskPtr first = appointment(u"One"_s, at(19, 9), at(19, 10));
    const TaskPtr second = appointment(u"Other"_s, at(19, 9), at(19, 10));
    show(Type::Week);
    const auto pressedAt = [&](QPointF point) {
        QTest::mouseClick(&hours(), Qt::LeftButton, {}, point.toPoint());
        return grid().currentTask();
    };
    EXPECT_EQ(pressedAt(frame(hours(), shorter).center()), shorter);
    EXPECT_EQ(pressedAt(frame(hours(), longer).topLeft() + QPointF(20, 20)), longer);
    const QRectF place = frame(hours(), first);
    const TaskPtr above = pressedAt(place.center());
    const TaskPtr below = pressedAt(place.topLeft() + QPointF(3, 20));
    EXPECT_EQ(std::set({above, below}), std::set({first, second}));
    EXPECT_EQ(hours().clashes(), (std::vector<bool>{false, false, false, true, true, false, false}));
}

TEST_F(CalendarViewsTest, TheFrameTurnsItsPagesAndRemembersWhereItIs)
{
    show(Type::Day);
    QWidget &title = find<QWidget>(calendar(), "labelTitle");
    EXPECT_EQ(title.accessibleName(), u"21, November 2026, Saturday"_s);
    calendar().showCalendar(Type::Week);
    EXPECT_EQ(title.accessibleName(), u"2026, November, Week 47"_s);
    calendar().showCalendar(Type::Month);
    EXPECT_EQ(title.accessibleName(), u"2026, November"_s);
    calendar().calendarGoToDate(localDate(2027, 1, 31, 12, 0));
    run(ActionId::CalendarNext);
    EXPECT_EQ(title.accessibleName(), u"2027, February"_s);
    run(ActionId::CalendarNext);
    EXPECT_TRUE(Calendar::current().isSameDay(calendar().currentDate(), localDate(2027, 3, 28, 12, 0)));
    // From elsewhere the commands bring the calendar up first.
    showList(SidebarItem::Inbox);
    run(ActionId::CalendarGoToDate);
    auto &asked = find<GoToDateWindowController>(window(), "GoToDateWindowController");
    EXPECT_TRUE(Calendar::current().isSameDay(calendar().currentDate(), localDate(2027, 3, 28, 12, 0)));
    find<QDateEdit>(asked, "dateField").setDate(QDate(2030, 5, 4));
    find<QPushButton>(asked, "buttonShow").click();
    settle();
    EXPECT_EQ(find<QWidget>(calendar(), "labelTitle").accessibleName(), u"2030, May"_s);
    showList(SidebarItem::Inbox);
    run(ActionId::ShowCalendar);
    EXPECT_EQ(calendar().currentTypeCalendar(), Type::Month);
    EXPECT_TRUE(Calendar::current().isSameDay(calendar().currentDate(), localDate(2030, 5, 4, 12, 0)));
    run(ActionId::CalendarToday);
    EXPECT_EQ(find<QWidget>(calendar(), "labelTitle").accessibleName(), u"2026, November"_s);
    // While a page slides in, another press does nothing, and the present one comes at once.
    Animations::setEnabled(true);
    auto &turn = find<DaysControllerButton>(calendar(), "daysCalendarController");
    for (int times = 0; times < 2; ++times)
        QTest::mouseClick(&turn, Qt::LeftButton, {}, QPoint(turn.width() - 10, 10));
    EXPECT_EQ(find<QWidget>(calendar(), "labelTitle").accessibleName(), u"2026, December"_s);
    QTest::mouseClick(&turn, Qt::LeftButton, {}, turn.rect().center());
    EXPECT_EQ(find<QWidget>(calendar(), "labelTitle").accessibleName(), u"2026, November"_s);
    Animations::setEnabled(false);
}

TEST_F(CalendarViewsTest, WhatChangesElsewhereIsShown)
{
    const TaskPtr task = appointment(u"Dentist"_s, at(17, 9), at(17, 10));
    show(Type::Week);
    task->setStartDate(at(18, 9));
    task->setDueDate(at(18, 10));
    toDo(u"Trip"_s, 16, 17);
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    EXPECT_NEAR(frame(hours(), task).left(), 50 + 3 * column(hours()) + 1, 0.01);
    EXPECT_EQ(lanes().placed().size(), 1U);
    EXPECT_EQ(lanes().areaHeight(), 21);
}

TEST_F(CalendarViewsTest, AReaderHearsADay)
{
    const TaskPtr task = appointment(u"Dentist"_s, at(17, 9, 45), at(17, 10, 15));
    show(Type::Month);
    Reader reader;
    const QStringList names = Reader::namesIn(grid());
    EXPECT_EQ(names.filter(u"November 17, 1 item; Dentist, 9:45"_s).size(), 1)
        << names.join(u'|').toStdString();
    EXPECT_TRUE(Reader::faultsIn(Reader::of(calendar())).isEmpty())
        << Reader::faultsIn(Reader::of(calendar())).join(u'\n').toStdString();
    show(Type::Week);
    QAccessibleInterface &table = Reader::of(grid());
    ASSERT_NE(table.tableInterface(), nullptr);
    EXPECT_EQ(table.tableInterface()->columnCount(), 7);
    EXPECT_EQ(table.tableInterface()->rowCount(), 48);
    EXPECT_TRUE(table.tableInterface()->columnDescription(2).contains(u"1 item"_s));
    Reader::press(Reader::find(table, QAccessible::ListItem, u"Dentist"_s));
    EXPECT_NE(controller().detailStack()->paneOf(task), nullptr);
}

TEST_F(CalendarViewsTest, ATaskFromAListIsPlannedWhereItFalls)
{
    const TaskPtr idea = add(u"Idea"_s, [](MVTask &task) { task.dueSomeDay = true; });
    const TaskPtr trip = toDo(u"Trip"_s, 2, 4);
    const TaskPtr meeting = appointment(u"Meeting"_s, at(3, 15), at(3, 17));
    show(Type::Week);
    const auto dropOn = [](CalendarGrid &on, const TaskPtr &task, QPointF place) {
        const std::unique_ptr<QMimeData> data(DraggedRecords::of({task}));
        QDragEnterEvent enter(place.toPoint(), Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(&on, &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDragMoveEvent move(place.toPoint(), Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(&on, &move);
        QDropEvent drop(place, Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(&on, &drop);
        settle();
    };
    const double day = column(hours());
    dropOn(hours(), meeting, {50 + 2.5 * day, 700});
    EXPECT_EQ(meeting->startDate(), at(17, 10));
    EXPECT_EQ(meeting->dueDate(), at(17, 12));
    dropOn(hours(), idea, {50 + 3.5 * day, 700});
    EXPECT_EQ(idea->startDate(), at(18, 0));
    EXPECT_EQ(idea->dueDate(), at(18, 23, 59));
    EXPECT_EQ(idea->dueSomeDay(), false);
    EXPECT_EQ(idea->type(), TaskType::ToDo);
    dropOn(lanes(), trip, {50 + 1.5 * day, 8});
    EXPECT_EQ(trip->startDate(), at(16, 0));
    EXPECT_EQ(trip->dueDate(), at(18, 23, 59));
    run(ActionId::Undo);
    EXPECT_EQ(trip->startDate(), at(2, 0));

    // Held over its row, the calendar comes up.
    showList(SidebarItem::Inbox);
    const std::unique_ptr<QMimeData> data(DraggedRecords::of({trip}));
    const QModelIndex row = sidebar().indexOf(SidebarItem::Calendar);
    const QPoint place = outline().visualRect(row).center();
    QDragEnterEvent enter(place, Qt::CopyAction, data.get(), Qt::LeftButton, {});
    QApplication::sendEvent(outline().viewport(), &enter);
    QDragMoveEvent hold(place, Qt::CopyAction, data.get(), Qt::LeftButton, {});
    QApplication::sendEvent(outline().viewport(), &hold);
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return dynamic_cast<CalendarViewController *>(controller().currentScreen()) != nullptr; }));
}

TEST_F(CalendarViewsTest, PaperShowsWhatTheScreenDoes)
{
    appointment(u"Dentist"_s, at(17, 9, 45), at(17, 10, 15));
    toDo(u"Trip"_s, 16, 17);
    for (const Type type : {Type::Day, Type::Week, Type::Month}) {
        show(type);
        calendar().calendarGoToDate(at(17, 12));
        QTemporaryDir folder;
        const QString file = folder.filePath(u"page.pdf"_s);
        QPrinter printer;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(file);
        calendar().print(printer);
        EXPECT_GT(QFileInfo(file).size(), 3000);
        const std::unique_ptr<CalendarPage> copy = calendar().calendarPage()->copyForPaper();
        copy->fitToPaper(1.4);
        QImage paper(copy->size(), QImage::Format_RGB32);
        paper.fill(Qt::white);
        QPainter painter(&paper);
        copy->paintForPaper(painter);
        int ofItems = 0;
        for (int y = 0; y < paper.height(); ++y) {
            for (int x = 0; x < paper.width(); ++x)
                ofItems += paper.pixelColor(x, y) == QColor(78, 107, 145);
        }
        EXPECT_GT(ofItems, 1500) << static_cast<int>(type);
    }
}

TEST_F(CalendarViewsTest, DaysAreReachedWithoutTheMouseAndWholeDaysWithIt)
{
    show(Type::Day);
    auto &allDay = find<QToolButton>(calendar(), "allDayLabel");
    ASSERT_TRUE(allDay.isVisible());
    QTest::mouseClick(&allDay, Qt::LeftButton);
    settle();
    ASSERT_NE(newTaskWindow(), nullptr);
    QTest::keyClicks(QApplication::focusWidget(), u"Stocktaking"_s);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    settle();
    ASSERT_EQ(lanes().laneCount(), 1);
    const TaskPtr task = lanes().events().front().task();
    EXPECT_EQ(task->title(), u"Stocktaking"_s);
    EXPECT_EQ(task->startDate(), at(21, 0));
    EXPECT_FALSE(allDay.isVisible());

    show(Type::Week);
    auto &header = find<QWidget>(calendar(), "headerView");
    header.setFocus(Qt::TabFocusReason);
    QAccessibleInterface *focused = Reader::of(header).focusChild();
    ASSERT_NE(focused, nullptr);
    EXPECT_TRUE(focused->text(QAccessible::Name).contains(u"21"_s));
    QTest::keyClick(&header, Qt::Key_Left);
    QTest::keyClick(&header, Qt::Key_Left);
    QTest::keyClick(&header, Qt::Key_Return);
    EXPECT_EQ(calendar().currentTypeCalendar(), Type::Day);
    EXPECT_EQ(Calendar::current().startOfDay(calendar().currentDate()), at(19, 0));
}

TEST_F(CalendarViewsTest, AbsurdItemsAreShownAndMoved)
{
    const QString endless = QString(u'w').repeated(10'000);
    const TaskPtr years = appointment(endless, at(18, 9), localDate(2029, 11, 18, 9, 0));
    const TaskPtr empty = appointment(u"\u200b"_s, at(18, 9), at(18, 9));
    const TaskPtr backwards = add(u"Backwards"_s);
    backwards->setType(TaskType::Appointment);
    backwards->setStartDate(at(19, 12));
    backwards->setDueDate(at(19, 9));
    const TaskPtr noStart = add(endless);
    noStart->setType(TaskType::Appointment);
    noStart->setDueDate(at(19, 9));
    const TaskPtr longToDo = add(u"Long"_s);
    longToDo->setStartDate(localDate(1, 1, 2, 0, 0));
    longToDo->setDueDate(localDate(9999, 12, 30, 0, 0));
    for (int number = 0; number < 500; ++number) {
        const TaskPtr one = number % 2 ? context().insert<EntityTask>() : backwards;
        one->setTitle(u"Crowd %1"_s.arg(number));
        one->setType(number % 4 == 1 ? TaskType::Appointment : TaskType::EmailCall);
        one->setStartDate(at(20, number % 24, number % 60));
        one->setDueDate(at(20, number % 24, number % 60) + Seconds(60 * (number % 90)));
    }
    ASSERT_FALSE(DBWorker::saveContext());
    const ScriptedAlerts alerts(std::deque<int>(50, Alert::firstButton));
    const std::vector<Date> dates{at(19, 12), localDate(1, 1, 3, 12, 0), localDate(9999, 12, 20, 12, 0),
                                  localDate(2026, 3, 29, 2, 30), localDate(2026, 10, 25, 2, 30)};
    for (const Type type : {Type::Day, Type::Week, Type::Month}) {
        show(type);
        for (const Date date : dates) {
            calendar().calendarGoToDate(date);
            EXPECT_FALSE(window().grab().isNull());
            run(ActionId::CalendarNext);
            run(ActionId::CalendarPrevious);
            for (CalendarGrid *one : calendar().calendarPage()->grids()) {
                if (one->placed().empty())
                    continue;
                const QPointF grip = one->placed().front().frame.center();
                press(*one, grip);
                moveTo(*one, grip + QPointF(60, 40));
                one->cancelDrag();
                one->setFocus();
                one->enterColumn(0, 0);
                for (const Qt::Key pressed : {Qt::Key_Down, Qt::Key_Right, Qt::Key_End, Qt::Key_Home})
                    QTest::keyClick(one, pressed);
            }
        }
    }
    // The hour that the clock skips and the one that it repeats.
    calendar().showCalendar(Type::Day);
    const TaskPtr night =
        appointment(u"Night"_s, localDate(2026, 10, 25, 1, 30), localDate(2026, 10, 25, 23, 15));
    calendar().calendarGoToDate(localDate(2026, 10, 25, 12, 0));
    ASSERT_TRUE(grid().goToTask(night));
    pressWithAlt(Qt::Key_Down);
    EXPECT_EQ(night->startDate(), localDate(2026, 10, 25, 1, 45));
    calendar().calendarGoToDate(localDate(2026, 10, 25, 12, 0));
    EXPECT_TRUE(grid().goToTask(night));
}

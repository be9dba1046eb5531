// The first screen of a start: the day, what is overdue, and the next seven days.

#include "calendarviews/DaysCalendarView.h"
#include "calendarviews/SelectedTaskController.h"
#include "records/DetailStack.h"
#include "shell/home/HomeHeading.h"
#include "shell/home/HomeRowLayout.h"
#include "shell/home/HomeTabViewController.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "shell/tasks/TaskPopupMenu.h"
#include "store/state/NotificationNames.h"
#include "ui/support/Reader.h"
#include "ui/support/ShellTest.h"

#include <QClipboard>
#include <QFileInfo>
#include <QPrinter>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

class HomeTest : public ShellTest
{
protected:
    DayCalendarViewController &dayCalendar()
    {
        return find<DayCalendarViewController>(home(), "DayCalendarViewController");
    }
    void SetUp() override { controller().showList(SidebarItem::Home); }

    HomeTabViewController &home()
    {
        return *qobject_cast<HomeTabViewController *>(controller().currentScreen());
    }
    TableViewExtended &overdue() { return *home().overdueTableView(); }
    TableViewExtended &week() { return *home().weekEventsTableView(); }

    /// The rows in words, joined by "|".
    static QString words(const TableViewExtended &table)
    {
        settle();
        QStringList rows;
        for (int row = 0; row < table.tableModel()->rowCount(); ++row)
            rows << table.tableModel()->index(row).data().toString();
        return rows.join(u'|');
    }
    static HomeRowContent content(const TableViewExtended &table, int row)
    {
        return table.tableModel()->index(row).data(HomeListModel::ContentRole).value<HomeRowContent>();
    }
    static QRect placeOf(const TableViewExtended &table, int row)
    {
        return table.visualRect(table.tableModel()->index(row));
    }
    static void press(TableViewExtended &table, int row, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(table.viewport(), Qt::LeftButton, modifiers, placeOf(table, row).center());
    }
    static void pressCheckBox(TableViewExtended &table, int row)
    {
        QTest::mouseClick(table.viewport(), Qt::LeftButton, {},
                          {HomeRowLayout::margin + 25, placeOf(table, row).center().y()});
    }
    static void open(TableViewExtended &table, int row)
    {
        QTest::mouseDClick(table.viewport(), Qt::LeftButton, {}, placeOf(table, row).center());
    }
    QString openTitle()
    {
        DetailViewController *const pane = controller().detailStack()->top();
        const auto task = pane ? std::dynamic_pointer_cast<EntityTask>(pane->record()) : nullptr;
        return task ? task->title() : QString();
    }

    TaskPtr addOn(const QString &title, TaskType type, OptionalDate start, OptionalDate due,
                  TaskStatus status = TaskStatus::Open)
    {
        return add(title, [&](MVTask &task) {
            task.type = type;
            task.startDate = start;
            task.dueDate = due;
            task.status = status;
        });
    }
    TaskPtr addLate(const QString &title, int day = 20)
    {
        return addOn(title, TaskType::ToDo, localDate(2026, 11, day), localDate(2026, 11, day));
    }
    ProjectPtr addProject(const QString &title, OptionalDate start, OptionalDate due)
    {
        const auto project = context().insert<EntityProject>();
        project->setTitle(title);
        project->setStartDate(start);
        project->setDueDate(due);
        EXPECT_FALSE(DBWorker::saveContext());
        return project;
    }
};

TEST_F(HomeTest, IsTheFirstScreenAndSaysWhatDayItIsAndThatNothingIsThere)
{
    EXPECT_EQ(words(overdue()), u"No events"_s);
    EXPECT_EQ(words(week()), u"No events"_s);
    EXPECT_EQ(find<HomeHeading>(home(), "labelDay").text(), u"21"_s);
    EXPECT_EQ(find<HomeHeading>(home(), "labelWeekday").text(), u"Saturday"_s);
    EXPECT_EQ(find<HomeHeading>(home(), "labelMonth").text(), u"November 2026"_s);
    EXPECT_EQ(placeOf(overdue(), 0).height(), 53);
    press(overdue(), 0);
    open(overdue(), 0);
    EXPECT_TRUE(controller().detailStack()->isEmpty());
    EXPECT_FALSE(home().hasSelection());
}

TEST_F(HomeTest, RowsSayWhenSomethingIsAndWhatItBelongsTo)
{
    const auto project = addProject(u"House"_s, localDate(2026, 11, 1), localDate(2026, 11, 22));
    const auto bill = addLate(u"bill"_s);
    bill->setProject(project);
    addOn(u"call"_s, TaskType::EmailCall, {}, localDate(2026, 11, 18, 15, 30));
    const auto breakfast =
        addOn(u"breakfast"_s, TaskType::Appointment, localDate(2026, 11, 21, 8), localDate(2026, 11, 21, 9));
    breakfast->setProject(project);
    addOn(u"plants"_s, TaskType::ToDo, localDate(2026, 11, 21), localDate(2026, 11, 22), TaskStatus::Done);
    addOn(u"evening"_s, TaskType::Appointment, localDate(2026, 11, 21, 20), localDate(2026, 11, 21, 21));
    EXPECT_FALSE(DBWorker::saveContext());

    ASSERT_EQ(words(overdue()), u"call|bill"_s);
    EXPECT_EQ(content(overdue(), 0).dateLabel.simplified(), u"Nov 18, 2026, 3:30 PM"_s);
    EXPECT_EQ(content(overdue(), 1).dateLabel, u"Yesterday"_s);
    EXPECT_EQ(content(overdue(), 1).project, u"House"_s);
    EXPECT_EQ(placeOf(overdue(), 0).height(), 60);
    EXPECT_EQ(placeOf(overdue(), 1).height(), 85);

    ASSERT_EQ(words(week()), u"SAT, TODAY|plants|breakfast|evening|SUN, TOMORROW|House|plants"_s);
    EXPECT_EQ(placeOf(week(), 0).height(), 30);
    EXPECT_EQ(placeOf(week(), 1).height(), 60);
    EXPECT_EQ(placeOf(week(), 2).height(), 85);
    EXPECT_EQ(placeOf(week(), 5).height(), 60);
    using enum HomeRowContent::DateLook;
    const HomeRowContent done = content(week(), 1);
    EXPECT_TRUE(done.isDone);
    EXPECT_EQ(done.dateLabel, u"All day"_s);
    EXPECT_EQ(done.dateLook, AllDay);
    EXPECT_EQ(content(week(), 2).dateLabel.simplified(), u"8:00 AM"_s);
    EXPECT_EQ(content(week(), 2).dateLook, Late);
    EXPECT_EQ(content(week(), 3).dateLook, Plain);
    EXPECT_EQ(content(week(), 5).dateIcon, HomeRowContent::DateIcon::Project);
    EXPECT_FALSE(content(week(), 1).hasCheckBox);

    breakfast->setStatus(TaskStatus::Done);
    project->setTitle({});
    EXPECT_FALSE(DBWorker::saveContext());
    settle();
    EXPECT_EQ(content(week(), 2).dateLook, Plain) << "what is done is not late";
    EXPECT_EQ(placeOf(overdue(), 1).height(), 60);
    EXPECT_EQ(placeOf(week(), 2).height(), 60);
}

TEST_F(HomeTest, ATickIsSeenForASecondBeforeItsRowLeaves)
{
    addLate(u"a"_s, 18);
    addLate(u"b"_s, 19);
    addLate(u"c"_s, 20);
    ASSERT_EQ(words(overdue()), u"a|b|c"_s);
    press(overdue(), 1);
    pressCheckBox(overdue(), 1);
    EXPECT_EQ(stored(u"b"_s)->status(), TaskStatus::Done);
    EXPECT_EQ(words(overdue()), u"a|b|c"_s);
    EXPECT_TRUE(content(overdue(), 1).isDone);
    EXPECT_TRUE(QTest::qWaitFor([this] { return words(overdue()) == u"a|c"_s; }, 3000));
    EXPECT_EQ(home().selectedTask()->title(), u"c"_s);
    QTest::keyClick(&overdue(), Qt::Key_Space);
    EXPECT_EQ(stored(u"c"_s)->status(), TaskStatus::Done);
    QTest::keyClick(&overdue(), Qt::Key_Space);
    EXPECT_TRUE(QTest::qWaitFor([this] { return words(overdue()) == u"a|c"_s; }, 3000));
    EXPECT_EQ(stored(u"c"_s)->status(), TaskStatus::Open);
    EXPECT_EQ(home().selectedTask()->title(), u"c"_s);
}

TEST_F(HomeTest, ATaskOnACalendarThatCannotBeWrittenHasNoCheckBoxAndStays)
{
    const auto barred = addLate(u"read only"_s);
    barred->setAllowsContentModifications(false);
    barred->setCalendarTitle(u"Holidays"_s);
    EXPECT_FALSE(DBWorker::saveContext());
    settle();
    EXPECT_FALSE(content(overdue(), 0).hasCheckBox);
    pressCheckBox(overdue(), 0);
    EXPECT_EQ(barred->status(), TaskStatus::Open);
    ScriptedAlerts alerts({Alert::firstButton});
    QTest::keyClick(&overdue(), Qt::Key_Delete);
    ASSERT_EQ(alerts.asked().size(), 1U);
    EXPECT_TRUE(alerts.asked().front().message.contains(u"Holidays"_s));
    EXPECT_EQ(words(overdue()), u"read only"_s);
}

TEST_F(HomeTest, OneListIsSelectedInAtATime)
{
    addLate(u"late"_s);
    addOn(u"span"_s, TaskType::ToDo, localDate(2026, 11, 21), localDate(2026, 11, 22));
    ASSERT_EQ(words(week()), u"SAT, TODAY|span|SUN, TOMORROW|span"_s);
    press(overdue(), 0);
    EXPECT_TRUE(SelectedTaskController::sharedCenter().containsTask(stored(u"late"_s)));
    press(week(), 3);
    EXPECT_FALSE(overdue().hasSelectedRows());
    EXPECT_EQ(week().selectedRows(), std::set{3}) << "the other row of the same task is not selected";
    EXPECT_EQ(SelectedTaskController::sharedCenter().selectedTasks(), std::vector{stored(u"span"_s)});
    addLate(u"later"_s);
    settle();
    EXPECT_EQ(week().selectedRows(), std::set{3}) << "nor after the lists were fetched anew";
    press(overdue(), 0);
    EXPECT_FALSE(week().hasSelectedRows());
    const auto meeting =
        addOn(u"meeting"_s, TaskType::Appointment, localDate(2026, 11, 21, 10), localDate(2026, 11, 21, 11));
    settle();
    ASSERT_TRUE(dayCalendar().goToTask(meeting));
    EXPECT_FALSE(overdue().hasSelectedRows());
    EXPECT_EQ(SelectedTaskController::sharedCenter().selectedTasks(), std::vector{meeting});
    EXPECT_EQ(home().selectedTask(), meeting);
    press(overdue(), 0);
    EXPECT_EQ(SelectedTaskController::sharedCenter().selectedTasks(), std::vector{stored(u"late"_s)});
}

TEST_F(HomeTest, TwoPressesOpenATaskOverTheLists)
{
    addLate(u"a"_s, 19);
    addLate(u"b"_s, 20);
    settle();
    open(overdue(), 0);
    settle();
    EXPECT_EQ(openTitle(), u"a"_s);
    const QRect pane = controller().detailStack()->top()->geometry();
    EXPECT_EQ(pane.top(), 0);
    EXPECT_EQ(pane.width(), qRound(window().rightContentView()->width() * 0.6485));
    EXPECT_EQ(home().width() - pane.width(), home().mapFromGlobal(overdue().mapToGlobal(QPoint())).x())
        << "the calendar stays in sight";
    open(overdue(), 1);
    settle();
    EXPECT_EQ(openTitle(), u"b"_s);
    open(overdue(), 0);
    settle();
    EXPECT_EQ(openTitle(), u"a"_s) << "the one below comes up again";
    EXPECT_EQ(controller().detailStack()->shownRecords().size(), 2U);
    EXPECT_EQ(home().selectedTask()->title(), u"a"_s);
}

TEST_F(HomeTest, SeveralAreNotOpenedAtOnceAndAProjectWaitsForItsPane)
{
    addLate(u"a"_s);
    addLate(u"b"_s);
    addProject(u"House"_s, {}, localDate(2026, 11, 23));
    addOn(u"lunch"_s, TaskType::Appointment, localDate(2026, 11, 23, 12), localDate(2026, 11, 23, 13));
    ASSERT_EQ(words(week()), u"MON, NOV 23, 2026|House|lunch"_s);
    ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton, Alert::firstButton});
    press(overdue(), 0);
    press(overdue(), 1, Qt::ControlModifier);
    QTest::keyClick(&overdue(), Qt::Key_Return);
    ASSERT_EQ(alerts.asked().size(), 1U);
    EXPECT_EQ(alerts.asked().back().message, u"Select one task"_s);
    press(week(), 1);
    press(week(), 2, Qt::ShiftModifier);
    open(week(), 1);
    ASSERT_EQ(alerts.asked().size(), 2U);
    EXPECT_EQ(alerts.asked().back().message, u"Select one project"_s);
    press(week(), 1);
    QTest::keyClick(&week(), Qt::Key_Return);
    QTest::keyClick(&week(), Qt::Key_Delete);
    EXPECT_EQ(alerts.asked().size(), 2U);
    EXPECT_EQ(words(week()), u"MON, NOV 23, 2026|House|lunch"_s);
}

TEST_F(HomeTest, DeletingTakesATaskFromAllItsDaysAndItsPane)
{
    addOn(u"span"_s, TaskType::ToDo, localDate(2026, 11, 21), localDate(2026, 11, 23));
    addOn(u"other"_s, TaskType::ToDo, localDate(2026, 11, 23), localDate(2026, 11, 23));
    ASSERT_EQ(words(week()), u"SAT, TODAY|span|SUN, TOMORROW|span|MON, NOV 23, 2026|span|other"_s);
    open(week(), 3);
    EXPECT_EQ(openTitle(), u"span"_s);
    press(week(), 1);
    press(week(), 3, Qt::ControlModifier);
    ScriptedAlerts alerts({Alert::secondButton, Alert::firstButton});
    QTest::keyClick(&week(), Qt::Key_Delete);
    EXPECT_EQ(words(week()).count(u"span"_s), 3);
    QTest::keyClick(&week(), Qt::Key_Delete);
    EXPECT_EQ(alerts.asked().back().message, u"Are you sure you want to delete the selected item?"_s);
    EXPECT_EQ(words(week()), u"MON, NOV 23, 2026|other"_s);
    EXPECT_TRUE(controller().detailStack()->isEmpty());
    EXPECT_EQ(home().selectedTask()->title(), u"other"_s);
    run(ActionId::Undo);
    EXPECT_EQ(words(week()).count(u"span"_s), 3);
}

TEST_F(HomeTest, TheMenuChangesTheSelectedTasks)
{
    addLate(u"a"_s);
    settle();
    QContextMenuEvent event(QContextMenuEvent::Mouse, placeOf(overdue(), 0).center(),
                            overdue().viewport()->mapToGlobal(placeOf(overdue(), 0).center()));
    QCoreApplication::sendEvent(overdue().viewport(), &event);
    auto &menu = find<TaskPopupMenu>(home(), "taskPopupMenu");
    Q_EMIT menu.statusChosen(TaskStatus::Done);
    menu.close();
    EXPECT_EQ(stored(u"a"_s)->status(), TaskStatus::Done);
    EXPECT_EQ(words(overdue()), u"a"_s) << "seen for a moment";
    EXPECT_TRUE(QTest::qWaitFor([this] { return words(overdue()) == u"No events"_s; }, 3000));
}

TEST_F(HomeTest, RowsAreCopiedPrintedAndMarkedAgainByUndo)
{
    const TaskPtr a = addLate(u"a"_s);
    const TaskPtr b = addLate(u"b"_s);
    b->setCategory(DBWorker::allCategories().front());
    b->setDetails(u"why"_s);
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(words(overdue()), u"a|b"_s);
    const HomeRowContent shown = content(overdue(), 1);
    EXPECT_EQ(shown.details.size(), 1u);
    EXPECT_TRUE(shown.hasNote);

    overdue().setFocus();
    overdue().selectRows({0, 1});
    run(ActionId::Copy);
    EXPECT_EQ(QApplication::clipboard()->text(), u"a\nb"_s);
    EXPECT_EQ(home().exportOffer().selected.size(), 2u);
    overdue().selectRow(1);
    run(ActionId::PlanTomorrow);
    EXPECT_TRUE(QTest::qWaitFor([this] { return words(overdue()) == u"a"_s; }));
    overdue().clearSelection();
    EXPECT_FALSE(controller().commands()->action(ActionId::Copy)->isEnabled()) << "there is nothing to copy";
    run(ActionId::Undo);
    EXPECT_EQ(words(overdue()), u"a|b"_s);
    EXPECT_EQ(home().selectedTask(), b);

    QTemporaryDir folder;
    QPrinter printer;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(folder.filePath(u"home.pdf"_s));
    ASSERT_TRUE(controller().commands()->action(ActionId::Print)->isEnabled());
    home().print(printer);
    EXPECT_GT(QFileInfo(folder.filePath(u"home.pdf"_s)).size(), 1000);
}

TEST_F(HomeTest, APaneGoesWithTheLastRowOfItsTask)
{
    const auto a = addLate(u"a"_s);
    settle();
    open(overdue(), 0);
    a->setDueDate(localDate(2026, 11, 21));
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(words(overdue()), u"No events"_s);
    EXPECT_EQ(openTitle(), u"a"_s) << "it has gone to the other list";
    a->setStartDate(localDate(2026, 12, 21));
    a->setDueDate(localDate(2026, 12, 21));
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(words(week()), u"No events"_s);
    EXPECT_TRUE(controller().detailStack()->isEmpty());
}

TEST_F(HomeTest, TheKeysGoFromListToList)
{
    addLate(u"a"_s);
    addLate(u"b"_s);
    addOn(u"c"_s, TaskType::ToDo, localDate(2026, 11, 21), localDate(2026, 11, 21));
    settle();
    controller().goToList(SidebarItem::Home);
    EXPECT_TRUE(overdue().hasFocus());
    EXPECT_EQ(home().selectedTask()->title(), u"a"_s);
    QTest::keyClick(&overdue(), Qt::Key_Down);
    EXPECT_EQ(home().selectedTask()->title(), u"b"_s);
    QTest::keyClick(&overdue(), Qt::Key_Tab);
    EXPECT_TRUE(week().hasFocus());
    EXPECT_EQ(home().selectedTask()->title(), u"c"_s);
    QTest::keyClick(&week(), Qt::Key_Return);
    settle();
    EXPECT_EQ(openTitle(), u"c"_s);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    settle();
    EXPECT_TRUE(week().hasFocus()) << "back to where it was opened";
    QTest::keyClick(&week(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(overdue().hasFocus());
}

TEST_F(HomeTest, AfterMidnightEverythingIsAboutTheNewDay)
{
    addOn(u"today"_s, TaskType::ToDo, localDate(2026, 11, 21), localDate(2026, 11, 21));
    EXPECT_EQ(words(week()), u"SAT, TODAY|today"_s);
    {
        const FrozenClock late(localDate(2026, 11, 21, 23, 59, 59) + Seconds(0.95));
        home().reloadData();
    }
    const FrozenClock next(localDate(2026, 11, 22));
    EXPECT_TRUE(QTest::qWaitFor([this] { return words(overdue()) == u"today"_s; }));
    EXPECT_EQ(words(week()), u"No events"_s);
    EXPECT_EQ(find<HomeHeading>(home(), "labelDay").text(), u"22"_s);
    EXPECT_TRUE(Calendar::current().isSameDay(dayCalendar().date(), localDate(2026, 11, 22)));
}

TEST_F(HomeTest, WhatOthersWriteComesWithoutLosingTheSelection)
{
    addLate(u"b"_s, 19);
    addLate(u"c"_s, 20);
    settle();
    press(overdue(), 1);
    const auto added = addLate(u"a"_s, 18);
    EXPECT_EQ(words(overdue()), u"a|b|c"_s);
    EXPECT_EQ(overdue().selectedRows(), std::set{2});
    context().deleteObject(added);
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(words(overdue()), u"b|c"_s);
    context().deleteObject(stored(u"c"_s));
    EXPECT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(words(overdue()), u"b"_s);
    EXPECT_EQ(home().selectedTask()->title(), u"b"_s) << "its neighbour";
}

TEST_F(HomeTest, AssistiveTechnologyHearsWhatTheRowsShow)
{
    Reader reader;
    const auto late = addOn(u"late"_s, TaskType::ToDo, localDate(2026, 11, 20), localDate(2026, 11, 20));
    late->setProject(addProject(u"House"_s, {}, localDate(2026, 11, 22)));
    addOn(u"breakfast"_s, TaskType::Appointment, localDate(2026, 11, 21, 8), localDate(2026, 11, 21, 9));
    addOn(u"span"_s, TaskType::ToDo, localDate(2026, 11, 21), localDate(2026, 11, 22), TaskStatus::Done);
    settle();
    EXPECT_EQ(Reader::namesIn(overdue()), QStringList{u"late, House, Yesterday"_s});
    QStringList names = Reader::namesIn(week());
    for (QString &name : names)
        name = name.simplified();
    EXPECT_EQ(names,
              (QStringList{u"SAT, TODAY"_s, u"span, All day, Done"_s, u"breakfast, 8:00 AM, overdue"_s,
                           u"SUN, TOMORROW"_s, u"House, Project, All day"_s, u"span, All day, Done"_s}));
    EXPECT_EQ(Reader::of(week()).text(QAccessible::Name), u"Week"_s);
    EXPECT_EQ(Reader::faultsIn(Reader::of(home())), QStringList());
    Reader::act(Reader::find(overdue(), QAccessible::CheckBox, u"late"_s),
                QAccessibleActionInterface::toggleAction());
    EXPECT_EQ(late->status(), TaskStatus::Done);
    EXPECT_TRUE(reader.hears(u"ticked: late, House, Yesterday"_s));
}

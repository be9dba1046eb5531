// Tasks are put on days and into groups in a press or two: by keys, in the bubble of a date, onto the
// sidebar.

#include "records/DraggedRecords.h"
#include "ui/support/ShellTest.h"
#include "widgets/Appearance.h"
#include "widgets/DatePicker.h"
#include "widgets/DatePickerPopover.h"
#include "widgets/LookOfProgram.h"
#include "widgets/MonthGrid.h"

#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>

using namespace Qt::Literals::StringLiterals;

class PlanningTest : public ShellTest
{
protected:
    static Date day(int number) { return localDate(2026, 11, number); }
    void select(const QStringList &titles)
    {
        std::set<int> rows;
        for (const QString &title : titles)
            rows.insert(static_cast<int>(shownTitles().indexOf(title)));
        list().selectRows(rows);
        list().setFocus();
    }
    DatePickerPopover &bubble() { return find<DatePickerPopover>(window(), "datePickerPopover"); }
    void dropOn(SidebarItem item, const std::vector<ObjectPtr> &records)
    {
        const std::unique_ptr<QMimeData> data(DraggedRecords::of(records));
        const QPoint place = outline().visualRect(sidebar().indexOf(item)).center();
        QDragEnterEvent enter(place, Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(outline().viewport(), &enter);
        QDragMoveEvent move(place, Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(outline().viewport(), &move);
        isAccepted = move.isAccepted();
        QDropEvent drop(place, Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(outline().viewport(), &drop);
        settle();
    }

    bool isAccepted = false;
};

TEST_F(PlanningTest, OneKeyPlansAllThatIsSelectedAndUndoMarksItAgain)
{
    addInbox({u"a"_s, u"b"_s, u"c"_s});
    showList(SidebarItem::NotDone);
    select({u"a"_s, u"c"_s});
    run(ActionId::PlanTomorrow);
    EXPECT_EQ(stored(u"a"_s)->startDate(), day(22));
    EXPECT_EQ(stored(u"c"_s)->dueDate(), localDate(2026, 11, 22, 23, 59));
    EXPECT_FALSE(stored(u"b"_s)->startDate());
    select({u"b"_s});
    run(ActionId::Undo);
    EXPECT_FALSE(stored(u"a"_s)->startDate());
    EXPECT_EQ(selectedTitles(), (QStringList{u"a"_s, u"c"_s}));
    run(ActionId::Redo);
    EXPECT_EQ(stored(u"a"_s)->startDate(), day(22));
    EXPECT_EQ(selectedTitles(), (QStringList{u"a"_s, u"c"_s}));
}

TEST_F(PlanningTest, ADateIsTypedInWordsIntoTheBubble)
{
    addInbox({u"a"_s});
    select({u"a"_s});
    run(ActionId::PlanOtherDay);
    // The letters go where words are read, wherever the keys are.
    QTest::keyClicks(bubble().focusWidget(), u"n"_s);
    auto &words = find<QLineEdit>(bubble(), "typedDate");
    auto &meaning = find<QLabel>(bubble(), "meaningOfTypedDate");
    QTest::keyClicks(&words, u"onsense"_s);
    EXPECT_EQ(words.text(), u"nonsense"_s);
    EXPECT_TRUE(meaning.text().contains(u"no date"_s));
    QTest::keyClick(&words, Qt::Key_Return);
    EXPECT_TRUE(bubble().isVisible()) << "it stays until it is understood";
    EXPECT_FALSE(find<QPushButton>(bubble(), "buttonDone").isEnabled());
    words.setText(u"tomorrow 5pm"_s);
    EXPECT_TRUE(meaning.text().contains(u"Only a day"_s)) << "no time is lost in silence";
    words.setText(u"in 2 weeks"_s);
    EXPECT_TRUE(meaning.text().contains(u"December 5"_s)) << qPrintable(meaning.text());
    QTest::keyClick(&words, Qt::Key_Return);
    EXPECT_EQ(stored(u"a"_s)->startDate(), localDate(2026, 12, 5));

    // Home and End are the ends of the week, and Return presses the button that has the keys.
    run(ActionId::PlanOtherDay);
    auto &grid = find<MonthGrid>(bubble(), "");
    QTest::keyClick(&grid, Qt::Key_Home);
    EXPECT_EQ(bubble().chosenDate(), localDate(2026, 11, 29));
    QTest::keyClick(&grid, Qt::Key_End);
    EXPECT_EQ(bubble().chosenDate(), localDate(2026, 12, 5));
    find<QPushButton>(bubble(), "quickDay1").setFocus();
    QTest::keyClick(&bubble(), Qt::Key_Return);
    EXPECT_EQ(stored(u"a"_s)->startDate(), day(22));
}

TEST_F(PlanningTest, TheDueDateOfAToDoCanBeSomeDayByAButtonAndByAWord)
{
    WindowNewTask &form = openNewTask();
    auto &picker = find<DatePicker>(form, "datePickerDueDate");
    const auto isSomeday = [&form] { return form.taskForm()->currentTask().dueSomeDay.value_or(false); };
    const auto open = [&]() -> DatePickerPopover & {
        Q_EMIT picker.pressed();
        return find<DatePickerPopover>(form, "datePickerPopover");
    };
    find<QPushButton>(open(), "quickDay4").click();
    settle();
    EXPECT_TRUE(isSomeday());
    DatePickerPopover &again = open();
    find<QPushButton>(again, "quickDay1").click();
    settle();
    EXPECT_FALSE(isSomeday());
    DatePickerPopover &typed = open();
    auto &words = find<QLineEdit>(typed, "typedDate");
    words.setText(u"someday"_s);
    EXPECT_EQ(find<QLabel>(typed, "meaningOfTypedDate").text(), u"Someday"_s);
    QTest::keyClick(&words, Qt::Key_Return);
    settle();
    EXPECT_TRUE(isSomeday());

    // A start has its day.
    Q_EMIT find<DatePicker>(form, "datePickerStartDate").pressed();
    auto &start = find<DatePickerPopover>(form, "datePickerPopover");
    EXPECT_EQ(start.findChild<QPushButton *>(u"quickDay4"_s), nullptr);
    find<QLineEdit>(start, "typedDate").setText(u"someday"_s);
    EXPECT_FALSE(find<QPushButton>(start, "buttonDone").isEnabled());
    start.close();
    const ScriptedAlerts alerts({Alert::thirdButton});
    form.close();
}

TEST_F(PlanningTest, ACopyIsMadeAndMarkedAndLinesBecomeTasks)
{
    addInbox({u"a"_s, u"b"_s});
    select({u"b"_s});
    run(ActionId::Duplicate);
    EXPECT_EQ(inboxTitles().count(u"b"_s), 2);
    EXPECT_EQ(selectedTitles(), QStringList{u"b"_s});
    EXPECT_EQ(context().undoName(), u"Duplicate Tasks"_s);
    run(ActionId::Undo);
    EXPECT_EQ(inboxTitles().count(u"b"_s), 1);

    QApplication::clipboard()->setText(u"- Milk\r\n- Bread\n\n  [ ] Eggs"_s);
    list().setFocus();
    run(ActionId::Paste);
    EXPECT_EQ(selectedTitles(), (QStringList{u"Milk"_s, u"Bread"_s, u"Eggs"_s}));
    run(ActionId::Copy);
    EXPECT_EQ(QApplication::clipboard()->text(), u"Milk\nBread\nEggs"_s);
    run(ActionId::Undo);
    EXPECT_EQ(inboxTitles(), (QStringList{u"a"_s, u"b"_s}));
}

TEST_F(PlanningTest, TheSidebarTakesTasksThatAreDroppedOnIt)
{
    addInbox({u"a"_s, u"b"_s, u"c"_s});
    dropOn(SidebarItem::Today, {stored(u"a"_s), stored(u"b"_s)});
    EXPECT_TRUE(isAccepted);
    EXPECT_EQ(stored(u"a"_s)->startDate(), day(21));
    EXPECT_EQ(stored(u"b"_s)->startDate(), day(21));
    EXPECT_EQ(shownTitles(), QStringList{u"c"_s}) << "those have left the Inbox";
    dropOn(SidebarItem::Someday, {stored(u"b"_s)});
    EXPECT_EQ(stored(u"b"_s)->dueSomeDay(), true);
    dropOn(SidebarItem::Done, {stored(u"b"_s)});
    EXPECT_EQ(stored(u"b"_s)->status(), TaskStatus::Done);
    dropOn(SidebarItem::Delegated, {stored(u"c"_s)});
    EXPECT_FALSE(isAccepted) << "nobody knows to whom";

    dropOn(SidebarItem::Categories, {stored(u"c"_s)});
    auto &menu = find<QMenu>(outline(), "taskDropMenu");
    for (QAction *action : menu.actions()) {
        if (action->text() == u"Work"_s)
            action->trigger();
    }
    ASSERT_TRUE(stored(u"c"_s)->category());
    EXPECT_EQ(stored(u"c"_s)->category()->title(), u"Work"_s);
    menu.close();

    dropOn(SidebarItem::Scheduled, {stored(u"c"_s)});
    find<QPushButton>(bubble(), "quickDay3").click();
    EXPECT_EQ(stored(u"c"_s)->startDate(), day(23));
}

TEST_F(PlanningTest, RowsTellWhereTasksBelongAndGetLowerWhereTheUserWantsThemSo)
{
    add(u"told"_s, [](MVTask &task) {
        task.details = u"note"_s;
        task.category = DBWorker::allCategories()[0];
    });
    showList(SidebarItem::Inbox);
    const QModelIndex row = list().tableModel()->index(0, 0);
    const QString spoken = row.data(Qt::AccessibleTextRole).toString();
    EXPECT_TRUE(spoken.contains(u"has a note"_s)) << qPrintable(spoken);
    const int usual = list().visualRect(row).height();
    EXPECT_EQ(usual, 51);
    LookOfProgram::choose(LookOfProgram::DensityChoice::Compact);
    EXPECT_EQ(list().visualRect(row).height(), 34);
    Appearance::shared().setTextScale(2);
    EXPECT_GT(list().visualRect(row).height(), 34) << "larger words need more room";
    LookOfProgram::choose(LookOfProgram::DensityChoice::Comfortable);
    Appearance::shared().setTextScale(2);
    EXPECT_GT(list().visualRect(row).height(), usual);
    Appearance::shared().setTextScale(1);
    EXPECT_EQ(list().visualRect(row).height(), usual);
}

// A task is made to repeat, by a preset or by a rule of the user's own.

#include "shell/tasks/RepeatWindow.h"
#include "ui/support/CalendarAccess.h"
#include "ui/support/ShellTest.h"
#include "widgets/RepeatCalendar.h"
#include "widgets/RowItemView.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

using namespace Qt::Literals::StringLiterals;

namespace {

/// A program that may use calendars.
class RepeatTest : public ShellTest
{
protected:
    ~RepeatTest() override
    {
        const ScriptedAlerts alerts({Alert::thirdButton, Alert::thirdButton});
        if (newTaskWindow())
            newTaskWindow()->close();
    }

    /// The form of a new task for today, and its repeat pop-up.
    QComboBox &openForm()
    {
        showList(SidebarItem::Today);
        return find<QComboBox>(openNewTask(), "popUpButtonRepeat");
    }
    static void choose(QComboBox &popUp, int index)
    {
        popUp.setFocus();
        popUp.showPopup();
        QTest::keyClick(popUp.view(), Qt::Key_Home);
        // The separator is passed over.
        for (int step = 0; step < index - (index > RepeatPicker::EveryWeekday ? 1 : 0); ++step)
            QTest::keyClick(popUp.view(), Qt::Key_Down);
        QTest::keyClick(popUp.view(), Qt::Key_Return);
    }
    RepeatWindow *customWindow() { return newTaskWindow()->findChild<RepeatWindow *>(); }
    RepeatWindow &openCustom(QComboBox &popUp)
    {
        choose(popUp, RepeatPicker::EveryWeekday + 2);
        EXPECT_TRUE(QTest::qWaitFor([this] { return customWindow(); }));
        return *customWindow();
    }
    QString repeat() { return newTaskWindow()->taskForm()->currentTask().repeat; }

    const CalendarAccess access;
};

} // namespace

TEST_F(RepeatTest, APresetShowsTheEndOfTheSeriesAndNeverTakesItAway)
{
    QComboBox &popUp = openForm();
    const auto &end = find<RowItemView>(*newTaskWindow(), "rowEndRepeat");
    EXPECT_TRUE(end.isRowHidden());
    choose(popUp, RepeatPicker::EveryTwoWeeks);
    EXPECT_TRUE(repeat().startsWith(u"RRULE:FREQ=WEEKLY;INTERVAL=2;"_s)) << qPrintable(repeat());
    EXPECT_EQ(popUp.currentText(), u"Every 2 Weeks"_s);
    EXPECT_FALSE(end.isRowHidden());
    choose(popUp, RepeatPicker::Never);
    EXPECT_EQ(repeat(), QString());
    EXPECT_TRUE(end.isRowHidden());
}

TEST_F(RepeatTest, ARuleOfOnesOwnIsPutTogetherByTheKeys)
{
    QComboBox &popUp = openForm();
    RepeatWindow &custom = openCustom(popUp);
    auto &frequency = find<QComboBox>(custom, "popUpFrequency");
    QTest::keyClick(&frequency, Qt::Key_Down);
    QTest::keyClick(&frequency, Qt::Key_Tab);
    auto &interval = find<QSpinBox>(custom, "fieldInterval");
    ASSERT_TRUE(interval.hasFocus());
    QTest::keyClick(&interval, Qt::Key_Up);
    QTest::keyClick(&interval, Qt::Key_Tab);
    auto *cell = qobject_cast<RepeatCalendarItem *>(QApplication::focusWidget());
    ASSERT_NE(cell, nullptr);
    EXPECT_EQ(cell->number(), 1);
    QTest::keyClick(cell, Qt::Key_Down);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    // One day alone gives way to the date of the task, and that is seen and said.
    EXPECT_EQ(custom.findChild<RepeatCalendar *>()->selectedItems(), std::vector{21});
    EXPECT_EQ(find<QLabel>(custom, "labelSentence").text(), u"Repeats every 2 months on the 21st"_s);
    EXPECT_TRUE(find<QLabel>(custom, "labelDates").text().contains(u"Jan 21, 2027"_s));
    EXPECT_EQ(find<QLabel>(custom, "labelWarning").text(), u"A single day follows the date of the task."_s);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(repeat().contains(u"FREQ=MONTHLY;INTERVAL=2;"_s)) << qPrintable(repeat());
    EXPECT_TRUE(repeat().endsWith(u"BYMONTHDAY=21"_s));
    EXPECT_EQ(popUp.currentText(), u"Repeats every 2 months on the 21st"_s);
    TaskFormState &form = *newTaskWindow()->taskForm();
    DatePickerState start = form.openPicker(DatePickerState::Type::StartDate);
    form.acceptDate(start, localDate(2026, 11, 21) - Seconds(2 * 86400));
    EXPECT_EQ(popUp.currentText(), u"Repeats every 2 months on the 19th"_s) << "it goes with the date";
}

TEST_F(RepeatTest, TheMouseSelectsDaysAndAShortMonthIsWarnedOf)
{
    QComboBox &popUp = openForm();
    RepeatWindow &custom = openCustom(popUp);
    custom.frequencyChange(2);
    const auto &warning = find<QLabel>(custom, "labelWarning");
    EXPECT_FALSE(warning.isVisible());
    const auto &items = custom.findChild<RepeatCalendar *>()->items();
    for (const int day : {0, 30})
        QTest::mouseClick(items.at(day), Qt::LeftButton);
    EXPECT_TRUE(warning.isVisible());
    EXPECT_EQ(warning.text(), u"In months without a day 31, this date is skipped."_s);
    for (const int day : {0, 30})
        QTest::mouseClick(items.at(day), Qt::LeftButton);
    EXPECT_FALSE(warning.isVisible());
    QTest::mouseClick(&find<QPushButton>(custom, "buttonCancel"), Qt::LeftButton);
    EXPECT_EQ(repeat(), QString());
    EXPECT_EQ(popUp.currentIndex(), 0);
}

TEST_F(RepeatTest, ALongIntervalIsShownAndKept)
{
    QComboBox &popUp = openForm();
    const QString rule = u"RRULE:FREQ=DAILY;INTERVAL=5000"_s;
    newTaskWindow()->taskForm()->setRepeat(rule);
    choose(popUp, RepeatPicker::EveryWeekday + 2);
    ASSERT_TRUE(QTest::qWaitFor([this] { return customWindow(); }));
    auto &interval = find<QSpinBox>(*customWindow(), "fieldInterval");
    EXPECT_EQ(interval.value(), 5000);
    QTest::mouseClick(&find<QPushButton>(*customWindow(), "buttonOK"), Qt::LeftButton);
    EXPECT_TRUE(repeat().contains(u"INTERVAL=5000"_s)) << qPrintable(repeat());
}

TEST_F(RepeatTest, OkWithoutAChoiceLeavesTheRule)
{
    QComboBox &popUp = openForm();
    // Today is a Saturday.
    const QString rule = u"RRULE:FREQ=WEEKLY;BYDAY=MO"_s;
    newTaskWindow()->taskForm()->setRepeat(rule);
    RepeatWindow &custom = openCustom(popUp);
    QTest::mouseClick(&find<QPushButton>(custom, "buttonOK"), Qt::LeftButton);
    EXPECT_EQ(repeat(), rule);
    EXPECT_TRUE(popUp.hasFocus());
}

TEST_F(RepeatTest, ClearingTheDatesTakesTheRowAway)
{
    QComboBox &popUp = openForm();
    choose(popUp, RepeatPicker::EveryDay);
    newTaskWindow()->taskForm()->clearDate(DatePickerState::Type::StartDate);
    EXPECT_TRUE(find<RowItemView>(*newTaskWindow(), "rowRepeat").isRowHidden());
    EXPECT_EQ(repeat(), QString());
    EXPECT_EQ(popUp.currentIndex(), RepeatPicker::Never);
}

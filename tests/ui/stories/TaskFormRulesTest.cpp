// What the user changes in one field of a new task decides what stands in the others, and what is stored.

#include "records/DetailStack.h"
#include "records/DetailViewController.h"
#include "ui/support/CalendarAccess.h"
#include "ui/support/ShellTest.h"
#include "widgets/DatePicker.h"
#include "widgets/PopUpButton.h"
#include "widgets/RowItemView.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QTextEdit>

using namespace Qt::Literals::StringLiterals;

namespace {

class TaskFormRulesTest : public ShellTest
{
protected:
    ~TaskFormRulesTest() override
    {
        const ScriptedAlerts alerts({Alert::thirdButton});
        if (newTaskWindow())
            newTaskWindow()->close();
    }

    void open(const QString &title, SidebarItem list = SidebarItem::Inbox)
    {
        showList(list);
        openNewTask();
        QTest::keyClicks(QApplication::focusWidget(), title);
    }
    bool isShown(const char *row) { return !find<RowItemView>(*newTaskWindow(), row).isRowHidden(); }
    /// Of these rows the ones that are shown.
    QStringList shown(const QStringList &rows)
    {
        QStringList some;
        for (const QString &row : rows) {
            if (isShown(row.toLatin1()))
                some << row;
        }
        return some;
    }
    DatePicker &picker(const char *name) { return find<DatePicker>(*newTaskWindow(), name); }
    QWidget *openBubble(const char *name)
    {
        // What has closed before goes when there is time.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        picker(name).setFocus();
        QTest::keyClick(&picker(name), Qt::Key_Space);
        return QApplication::activePopupWidget();
    }
    /// Takes the date that is offered.
    void pick(const char *name)
    {
        QWidget *bubble = openBubble(name);
        ASSERT_NE(bubble, nullptr) << name;
        QTest::keyClick(bubble->focusWidget(), Qt::Key_Return);
    }
    void clear(const char *name)
    {
        auto &field = find<QWidget>(*newTaskWindow(), name);
        field.setFocus();
        QTest::keyClick(&field, Qt::Key_Delete);
    }
    QComboBox &popUp(const char *name) { return find<QComboBox>(*newTaskWindow(), name); }
    void choose(const char *name, const QString &item)
    {
        QComboBox &control = popUp(name);
        control.setFocus();
        control.showPopup();
        QTest::keyClick(control.view(), Qt::Key_Home);
        for (int step = 0; step < control.count() && control.view()->currentIndex().data() != item; ++step)
            QTest::keyClick(control.view(), Qt::Key_Down);
        QTest::keyClick(control.view(), Qt::Key_Return);
        EXPECT_EQ(control.currentText(), item);
    }
    /// Presses "Save", and gives the task that is stored by it.
    TaskPtr save(const QString &title)
    {
        QTest::mouseClick(&find<QPushButton>(*newTaskWindow(), "buttonSave"), Qt::LeftButton);
        EXPECT_TRUE(QTest::qWaitFor([this] { return !newTaskWindow(); }));
        return stored(title);
    }

    const QStringList dated = {u"rowRepeat"_s, u"rowEndRepeat"_s, u"rowAlert"_s, u"rowSecondAlert"_s};
};

} // namespace

TEST_F(TaskFormRulesTest, WhatHangsOnTheStartOfAToDoComesAndGoesWithIt)
{
    const CalendarAccess access;
    open(u"report"_s);
    EXPECT_EQ(shown(dated), QStringList());
    pick("datePickerStartDate");
    EXPECT_EQ(shown(dated), QStringList({u"rowRepeat"_s, u"rowAlert"_s}));
    pick("datePickerAlert");
    EXPECT_EQ(shown(dated), QStringList({u"rowRepeat"_s, u"rowAlert"_s, u"rowSecondAlert"_s}));
    pick("datePickerSecondAlert");
    choose("popUpButtonRepeat", u"Every Week"_s);
    EXPECT_EQ(shown(dated), dated);
    clear("datePickerStartDate");
    EXPECT_EQ(shown(dated), QStringList());
    const TaskPtr task = save(u"report"_s);
    ASSERT_NE(task, nullptr);
    EXPECT_FALSE(task->startDate() || task->alert() || task->secondAlert());
    EXPECT_EQ(task->repeat(), QString());
    EXPECT_TRUE(task->dueDate()) << "the end that the start has brought stays";
    EXPECT_EQ(task->dueSomeDay(), false);
}

TEST_F(TaskFormRulesTest, AnEmailOrCallHasOneDateOnWhichTheRestHangs)
{
    const CalendarAccess access;
    open(u"call"_s);
    pick("datePickerStartDate");
    choose("popUpButtonType", u"Email/Call"_s);
    EXPECT_FALSE(isShown("rowStartDate"));
    EXPECT_EQ(shown(dated), QStringList()) << "another type begins without dates";
    pick("datePickerDueDate");
    pick("datePickerAlert");
    choose("popUpButtonRepeat", u"Every Day"_s);
    EXPECT_EQ(shown(dated), dated);
    clear("datePickerDueDate");
    EXPECT_EQ(shown(dated), QStringList());
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        QTest::mouseClick(&find<QPushButton>(*newTaskWindow(), "buttonSave"), Qt::LeftButton);
        ASSERT_EQ(alerts.asked().size(), 1U);
        EXPECT_EQ(alerts.asked().front().title, u"Invalid Start Date"_s);
        EXPECT_TRUE(newTaskWindow()->isVisible()) << "what a rule refuses stays open";
    }
    pick("datePickerDueDate");
    const TaskPtr task = save(u"call"_s);
    ASSERT_NE(task, nullptr);
    EXPECT_EQ(task->type(), TaskType::EmailCall);
    EXPECT_TRUE(task->dueDate());
    EXPECT_FALSE(task->startDate() || task->alert());
    EXPECT_EQ(task->repeat(), QString());
}

TEST_F(TaskFormRulesTest, OnlyAToDoIsDueSomeDay)
{
    open(u"dream"_s, SidebarItem::Someday);
    EXPECT_EQ(shown({u"rowStartDate"_s, u"rowAlert"_s, u"rowSecondAlert"_s}), QStringList());
    EXPECT_EQ(picker("datePickerDueDate").text(), u"Someday"_s);
    choose("popUpButtonType", u"Appointment"_s);
    EXPECT_TRUE(isShown("rowStartDate"));
    QWidget *bubble = openBubble("datePickerDueDate");
    ASSERT_NE(bubble, nullptr);
    EXPECT_TRUE(bubble->findChildren<QCheckBox *>().isEmpty());
    bubble->close();
    choose("popUpButtonType", u"ToDo"_s);
    bubble = openBubble("datePickerDueDate");
    ASSERT_NE(bubble, nullptr);
    auto *someday = bubble->findChild<QCheckBox *>();
    ASSERT_NE(someday, nullptr);
    EXPECT_FALSE(someday->isChecked()) << "the other type has taken it back";
    QTest::keyClick(someday, Qt::Key_Space);
    EXPECT_FALSE(isShown("rowStartDate"));
    const TaskPtr task = save(u"dream"_s);
    ASSERT_NE(task, nullptr);
    EXPECT_EQ(task->dueSomeDay(), true);
    EXPECT_FALSE(task->startDate() || task->dueDate());
}

TEST_F(TaskFormRulesTest, SomedayIsTakenBackWhereItWasSaid)
{
    open(u"dream"_s, SidebarItem::Someday);
    QWidget *bubble = openBubble("datePickerDueDate");
    ASSERT_NE(bubble, nullptr);
    QTest::keyClick(bubble->focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(isShown("rowStartDate")) << "a look changes nothing";
    bubble = openBubble("datePickerDueDate");
    QTest::keyClick(bubble->findChild<QCheckBox *>(), Qt::Key_Space);
    EXPECT_TRUE(isShown("rowStartDate"));
    QTest::mouseClick(&find<QPushButton>(*bubble, "buttonDone"), Qt::LeftButton);
    const TaskPtr task = save(u"dream"_s);
    ASSERT_NE(task, nullptr);
    EXPECT_EQ(task->dueSomeDay(), false);
    EXPECT_EQ(task->dueDate(), localDate(2026, 11, 21, 23, 59));
}

TEST_F(TaskFormRulesTest, TheCompanyFollowsTheContactAndBothCanBeTakenBack)
{
    const auto bank = context().insert<EntityCompany>();
    bank->setTitle(u"Bank"_s);
    const auto ann = context().insert<EntityContacts>();
    ann->setFirstName(u"Ann"_s);
    ann->setCompany(bank);
    EXPECT_FALSE(DBWorker::saveContext());
    open(u"ask"_s);
    choose("popUpButtonDelegate", u"Ann"_s);
    EXPECT_EQ(popUp("popUpButtonCompany").currentText(), u"Bank"_s);
    clear("popUpButtonDelegate");
    EXPECT_EQ(popUp("popUpButtonCompany").currentText(), u"None"_s);
    choose("popUpButtonDelegate", u"Ann"_s);
    clear("popUpButtonCompany");
    EXPECT_EQ(popUp("popUpButtonDelegate").currentText(), u"Ann"_s);
    const TaskPtr task = save(u"ask"_s);
    ASSERT_NE(task, nullptr);
    EXPECT_EQ(task->delegateToUser(), ann);
    EXPECT_EQ(task->company(), nullptr);
}

TEST_F(TaskFormRulesTest, ARepetitionIsStoredWithItsEndAndShownAgainInWords)
{
    const CalendarAccess access({u"Home"_s});
    open(u"standup"_s, SidebarItem::Today);
    EXPECT_EQ(popUp("popUpButtonCalendar").itemText(0), u"Choose the calendars to keep in step with"_s);
    EXPECT_EQ(popUp("popUpButtonCalendar").currentText(), u"Home"_s);
    choose("popUpButtonRepeat", u"Every Week"_s);
    pick("datePickerEndRepeat");
    const TaskPtr task = save(u"standup"_s);
    ASSERT_NE(task, nullptr);
    EXPECT_TRUE(task->repeat().contains(u"FREQ=WEEKLY"_s)) << qPrintable(task->repeat());
    EXPECT_TRUE(task->endRepeat());
    EXPECT_EQ(task->calendarTitle(), u"Home"_s);
    EXPECT_FALSE(task->calendarID().isEmpty());
    ASSERT_TRUE(QTest::qWaitFor([this] { return shownTitles().contains(u"standup"_s); }));
    clickRow(static_cast<int>(shownTitles().indexOf(u"standup"_s)));
    key(Qt::Key_Return);
    const QWidget &pane = *controller().detailStack()->top();
    EXPECT_EQ(find<QLabel>(pane, "labelRepeatPreview").text(), u"Every Week"_s);
    EXPECT_FALSE(find<RowItemView>(pane, "rowEndRepeat").isRowHidden());
}

TEST_F(TaskFormRulesTest, TheFormOfAStoredTaskFollowsTheSameRules)
{
    add(u"report"_s, [](MVTask &copy) {
        copy.startDate = localDate(2026, 11, 23);
        copy.dueDate = localDate(2026, 11, 24, 23, 59);
        copy.alert = localDate(2026, 11, 23, 8);
        copy.secondAlert = localDate(2026, 11, 23, 7);
    });
    showList(SidebarItem::Scheduled);
    clickRow(0);
    key(Qt::Key_Return);
    const QWidget &pane = *controller().detailStack()->top();
    EXPECT_FALSE(find<RowItemView>(pane, "rowSecondAlert").isRowHidden());
    auto &edit = find<QPushButton>(pane, "buttonEdit");
    QTest::mouseClick(&edit, Qt::LeftButton);
    auto &start = find<DatePicker>(pane, "datePickerStartDate");
    start.setFocus();
    QTest::keyClick(&start, Qt::Key_Delete);
    for (const char *row : {"rowAlert", "rowSecondAlert"})
        EXPECT_TRUE(find<RowItemView>(pane, row).isRowHidden()) << row;
    EXPECT_TRUE(stored(u"report"_s)->alert()) << "nothing is stored before \"Done\"";
    QTest::mouseClick(&edit, Qt::LeftButton);
    const TaskPtr task = stored(u"report"_s);
    EXPECT_FALSE(task->startDate() || task->alert() || task->secondAlert());
    EXPECT_TRUE(task->dueDate());
}

TEST_F(TaskFormRulesTest, RowsGrowWithTheirTextAndTakeNoRoomWhileHidden)
{
    open(u"list"_s);
    auto &details = find<QTextEdit>(*newTaskWindow(), "textFieldDetails");
    const auto &row = find<RowItemView>(*newTaskWindow(), "rowDetails");
    const auto &below = find<RowItemView>(*newTaskWindow(), "rowContacts");
    const int before = row.height();
    details.setFocus();
    for (int line = 0; line < 12; ++line)
        QTest::keyClick(&details, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return row.height() > before; }));
    EXPECT_EQ(below.y(), row.geometry().bottom() + 1);
    const auto &location = find<RowItemView>(*newTaskWindow(), "rowLocation");
    const auto &due = find<RowItemView>(*newTaskWindow(), "rowEndDate");
    EXPECT_EQ(location.y(), due.geometry().bottom() + 1) << "repeat and alerts stand between them, hidden";
    EXPECT_EQ(due.height(), 40);
}

TEST_F(TaskFormRulesTest, TheCheckBoxAndTheStatusSayTheSame)
{
    open(u"over"_s);
    auto &check = find<QAbstractButton>(*newTaskWindow(), "checkDone");
    QTest::mouseClick(&check, Qt::LeftButton);
    EXPECT_EQ(popUp("popUpButtonStatus").currentText(), u"Done"_s);
    choose("popUpButtonStatus", u"Pending"_s);
    EXPECT_FALSE(check.isChecked());
    QTest::mouseClick(&check, Qt::LeftButton);
    QTest::mouseClick(&check, Qt::LeftButton);
    EXPECT_EQ(popUp("popUpButtonStatus").currentText(), u"Open"_s);
    QTest::mouseClick(&check, Qt::LeftButton);
    const TaskPtr task = save(u"over"_s);
    ASSERT_NE(task, nullptr);
    EXPECT_EQ(task->status(), TaskStatus::Done);
    EXPECT_EQ(task->expirationDate(), Clock::now());
}

TEST_F(TaskFormRulesTest, WithoutCalendarsNothingRepeatsAndTheFormSaysWhy)
{
    open(u"   "_s, SidebarItem::Today);
    EXPECT_EQ(shown(dated), QStringList(u"rowAlert"_s));
    EXPECT_EQ(popUp("popUpButtonCalendar").itemText(0), u"The app does not have access to your calendars"_s);
    EXPECT_FALSE(popUp("popUpButtonCalendar").isEnabled());
    EXPECT_NE(save(QString()), nullptr) << "blanks are a title to the form";
}

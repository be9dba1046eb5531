// What others were given to do, who has birthday, and who belongs together: the strips above and below
// people.

#include "filters/ContactGroups.h"
#include "foundation/Clock.h"
#include "records/DetailStack.h"
#include "records/RecordPane.h"
#include "records/RecordWindow.h"
#include "records/TaskManager.h"
#include "records/people/Birthdays.h"
#include "records/people/WaitingFor.h"
#include "shell/people/CallSheetWindow.h"
#include "shell/people/WaitingForViewController.h"
#include "shell/people/WindowAddContactsGroup.h"
#include "shell/tasks/TaskPopupMenu.h"
#include "store/state/NotificationNames.h"
#include "ui/support/ShellTest.h"
#include "widgets/CheckList.h"
#include "widgets/MVSegmentView.h"
#include "widgets/ToolBarButton.h"
#include "workspace/Workspace.h"

#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;

class ChaseTest : public ShellTest
{
protected:
    ChaseTest()
    {
        Workspace::setUrlOpener([this](const QString &url) {
            opened.append(url);
            return isAnythingOpened;
        });
    }
    ~ChaseTest() override { Workspace::setUrlOpener({}); }

    ContactPtr contact(const QString &name, OptionalDate born = {})
    {
        const auto made = context().insert<EntityContacts>();
        made->setFirstName(name);
        made->setBirthday(born);
        EXPECT_FALSE(DBWorker::saveContext());
        return made;
    }
    TaskPtr give(const QString &title, const ContactPtr &to, int day)
    {
        Clock::setSource([day] { return localDate(2026, 11, day, 9, 15); });
        const TaskPtr task = add(title, [&](MVTask &copy) { copy.delegateToUser = to; });
        Clock::setSource([] { return localDate(2026, 11, 21, 9, 15); });
        return task;
    }
    void go(SidebarItem item)
    {
        controller().goToList(item);
        settle();
    }
    QWidget &current() { return *controller().currentScreen(); }

    QStringList opened;
    bool isAnythingOpened = true;
};

TEST_F(ChaseTest, WhoHasSomethingToDoIsAskedAboutIt)
{
    const ContactPtr ann = contact(u"Ann"_s);
    const auto mail = context().insert<EntityEmail>();
    mail->setMail(u"ann@example.org"_s);
    mail->setContact(ann);
    const TaskPtr later = give(u"Paint the door"_s, ann, 20);
    const TaskPtr first = give(u"Mend the roof & gutter"_s, ann, 2);
    go(SidebarItem::People);
    static_cast<TabsViewController &>(current()).selectItem(ann);
    settle();
    auto &label = find<QLabel>(window(), "labelWaiting");
    EXPECT_EQ(label.text(), u"2 open tasks, since Nov 2, 2026 (19 days), not asked yet"_s);
    auto &button = find<QPushButton>(window(), "buttonAskAgain");
    // Without a program for it nothing was asked.
    isAnythingOpened = false;
    {
        const ScriptedAlerts alerts({Alert::secondButton});
        QTest::mouseClick(&button, Qt::LeftButton);
        settle();
    }
    EXPECT_FALSE(first->lastAsked());
    isAnythingOpened = true;
    opened.clear();
    QTest::mouseClick(&button, Qt::LeftButton);
    settle();
    ASSERT_EQ(opened.size(), 1);
    EXPECT_TRUE(opened[0].startsWith(u"mailto:ann@example.org?subject="_s)) << opened[0].toStdString();
    const QString body = QUrl::fromPercentEncoding(opened[0].section(u"&body="_s, 1).toLatin1());
    EXPECT_TRUE(body.contains(u"- Mend the roof & gutter\r\n- Paint the door\r\n"_s)) << body.toStdString();
    EXPECT_EQ(later->lastAsked(), localDate(2026, 11, 21, 9, 15));
    EXPECT_TRUE(label.text().endsWith(u"asked Nov 21, 2026"_s)) << label.text().toStdString();
    const TaskPtr fresh = give(u"Sweep the yard"_s, ann, 21);
    settle();
    EXPECT_EQ(label.text(), u"3 open tasks, since Nov 2, 2026 (19 days), asked Nov 21, 2026, "
                            "1 of them not asked yet"_s);
    context().deleteObject(fresh);
    ASSERT_FALSE(DBWorker::saveContext());

    // The list has what waits longest first, and loses what is done.
    const TaskPtr other = give(u"Ask the bank"_s, contact(u"Bob"_s), 10);
    go(SidebarItem::WaitingFor);
    auto &list = static_cast<RecordListScreen &>(current());
    const auto titles = [&list] {
        QStringList shown;
        for (int row = 0; row < list.table()->model()->rowCount(); ++row)
            shown << list.table()->model()->index(row, 0).data().toString();
        return shown;
    };
    EXPECT_EQ(titles(), QStringList({first->title(), other->title(), later->title()}));
    MVTask(first).changeStatusType(TaskStatus::Done, true);
    settle();
    EXPECT_EQ(titles(), QStringList({other->title(), later->title()}));
    // Somebody else begins anew, and undo gives it back with its date.
    {
        MVTask copy(later);
        copy.delegateToUser = contact(u"Cleo"_s);
        ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    }
    EXPECT_EQ(WaitingFor::inWords(*later), u"Cleo, since today, not asked yet"_s);
    run(ActionId::Undo);
    EXPECT_EQ(WaitingFor::inWords(*later), u"Ann, since yesterday, asked Nov 21, 2026"_s);
}

TEST_F(ChaseTest, TasksOfHiddenCalendarsAreNowhereAskedAbout)
{
    const ContactPtr ann = contact(u"Ann"_s);
    const TaskPtr roof = give(u"Roof"_s, ann, 2);
    give(u"Door"_s, ann, 20)->setTypeCalendarID(u"hidden"_s);
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(WaitingFor::rows(), std::vector<RowId>({roof->rowId()}));
    EXPECT_EQ(WaitingFor::tasksOf(*ann), std::vector<TaskPtr>({roof}));
}

TEST_F(ChaseTest, WhatOthersHaveIsWorkedOnWhereItIsListed)
{
    const ContactPtr ann = contact(u"Ann"_s);
    const auto mail = context().insert<EntityEmail>();
    mail->setMail(u"ann@example.org"_s);
    mail->setContact(ann);
    const TaskPtr roof = give(u"Mend the roof"_s, ann, 2);
    const TaskPtr bank = give(u"Ask the bank"_s, contact(u"Bob"_s), 10);
    go(SidebarItem::People);
    static_cast<TabsViewController &>(current()).selectItem(ann);
    settle();
    const auto told = [](TableViewExtended &table) {
        QStringList rows;
        for (int row = 0; row < table.model()->rowCount(); ++row)
            rows << table.model()->index(row, 0).data(Qt::AccessibleTextRole).toString();
        return rows.join(u'\n');
    };
    EXPECT_EQ(told(find<TableViewExtended>(window(), "tableViewLinkedTasks")),
              u"Mend the roof, since Nov 2, 2026 (19 days), not asked yet\n"_s);

    // What was noted about her is one step away, too.
    EXPECT_FALSE(find<QWidget>(window(), "notesStrip").isVisible());
    const auto note = context().insert<EntityNote>();
    note->setTitle(u"Likes <tea>"_s);
    note->setContact(ann);
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    ASSERT_TRUE(find<QWidget>(window(), "notesStrip").isVisible());
    EXPECT_TRUE(find<QLabel>(window(), "labelNotes").text().contains(u">Likes &lt;tea&gt;</a>"_s));
    Q_EMIT find<QLabel>(window(), "labelNotes").linkActivated(u"0"_s);
    settle();
    EXPECT_EQ(controller().detailStack()->top()->record(), note);

    go(SidebarItem::WaitingFor);
    auto &list = static_cast<RecordListScreen &>(current());
    EXPECT_EQ(told(*list.table()), u"Mend the roof, Ann, since Nov 2, 2026 (19 days), not asked yet\n"
                                   u"Ask the bank, Bob, since Nov 10, 2026 (11 days), not asked yet"_s);
    auto &ask = find<ToolBarButton>(window(), "buttonAskAgain");
    list.table()->clearSelection();
    EXPECT_FALSE(ask.isEnabled()) << "Nothing is selected";
    list.table()->setFocus();
    list.table()->selectRow(1);
    ASSERT_TRUE(ask.isEnabled());
    // Without an address there is no mail, and nothing was asked unless the user says so.
    for (const int answer : {Alert::secondButton, Alert::firstButton}) {
        EXPECT_FALSE(bank->lastAsked());
        const ScriptedAlerts alerts({answer});
        QTest::mouseClick(&ask, Qt::LeftButton);
        settle();
        EXPECT_EQ(alerts.asked().front().message, u"Bob has no email address."_s);
    }
    EXPECT_EQ(opened, QStringList());
    EXPECT_FALSE(roof->lastAsked());
    EXPECT_TRUE(told(*list.table()).endsWith(u"asked Nov 21, 2026"_s)) << told(*list.table()).toStdString();
    // The same from the menu, which has all else that tasks have in their rows.
    const QPoint place = list.table()->visualRect(list.table()->tableModel()->index(0)).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, list.table()->viewport()->mapToGlobal(place));
    QCoreApplication::sendEvent(list.table()->viewport(), &event);
    auto &menu = find<TaskPopupMenu>(current(), "taskPopupMenu");
    ASSERT_EQ(menu.actions().front()->objectName(), u"actionAskAgain"_s);
    menu.actions().front()->trigger();
    menu.close();
    settle();
    EXPECT_EQ(opened.size(), 1);
    EXPECT_EQ(roof->lastAsked(), localDate(2026, 11, 21, 9, 15));
    run(ActionId::PlanTomorrow);
    EXPECT_EQ(roof->dueDate(), localDate(2026, 11, 22, 23, 59));
    EXPECT_FALSE(bank->dueDate());

    // What is ticked leaves once that was seen, and comes back to its place.
    QTest::keyClick(list.table(), Qt::Key_Space);
    EXPECT_EQ(roof->status(), TaskStatus::Done);
    EXPECT_EQ(list.table()->tableModel()->rowCount(), 2);
    ASSERT_TRUE(QTest::qWaitFor([&] { return list.table()->tableModel()->rowCount() == 1; }, 3000));
    run(ActionId::Undo);
    settle();
    EXPECT_TRUE(told(*list.table()).startsWith(u"Mend the roof"_s)) << told(*list.table()).toStdString();
    EXPECT_EQ(list.selectedRecord(), roof);
}

TEST_F(ChaseTest, ManyAreAskedAtOnceOnlyByWhoMeansIt)
{
    for (const QString &name : {u"Ann"_s, u"Bob"_s, u"Cleo"_s, u"Dora"_s}) {
        const ContactPtr one = contact(name);
        const auto mail = context().insert<EntityEmail>();
        mail->setMail(name + u"@example.org"_s);
        mail->setContact(one);
        give(u"Ask "_s + name, one, 2);
    }
    go(SidebarItem::WaitingFor);
    auto &list = static_cast<RecordListScreen &>(current());
    list.table()->selectAll();
    for (const int answer : {Alert::secondButton, Alert::firstButton}) {
        const ScriptedAlerts alerts({answer});
        QTest::mouseClick(&find<ToolBarButton>(window(), "buttonAskAgain"), Qt::LeftButton);
        settle();
        EXPECT_EQ(alerts.asked().front().message, u"Ask 4 people again?"_s);
        EXPECT_EQ(opened.size(), answer == Alert::firstButton ? 4 : 0);
    }
}

TEST_F(ChaseTest, AListAndAGroupAreMadeAboveThePeople)
{
    const ContactPtr ann = contact(u"Ann"_s);
    contact(u"Bob"_s);
    give(u"Paint the door"_s, ann, 20);
    go(SidebarItem::People);
    run(ActionId::FilterTasks);
    auto &segment = find<MVSegmentView>(current(), "segmentActive");
    QTest::keyClick(&segment, Qt::Key_Right);
    QTest::keyClick(&segment, Qt::Key_Space);
    ASSERT_EQ(segment.selectedIndex(), 1);
    QTest::mouseClick(&find<QPushButton>(current(), "buttonAction"), Qt::LeftButton);
    const auto lists = [] { return DBWorker::allContactPrivateList(); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return lists().size() == 1; }));
    EXPECT_EQ(lists().at(0)->criteria(), 1);
    EXPECT_EQ(lists().at(0)->allCompanies(), true);
    const auto shown = [this] {
        return static_cast<RecordListScreen &>(current()).table()->model()->rowCount();
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return shown() == 1; })) << "It is gone to";
    // Its filter changes the list itself.
    EXPECT_EQ(find<QAbstractButton>(current(), "buttonFilter").text(), u"Filtered"_s);
    ASSERT_TRUE(QTest::qWaitFor([this] { return outline().findChild<QLineEdit *>(); })) << "It is named";
    QTest::keyClick(outline().findChild<QLineEdit *>(), Qt::Key_Escape);
    run(ActionId::FilterTasks);
    auto &again = find<MVSegmentView>(current(), "segmentActive");
    EXPECT_EQ(again.selectedIndex(), 1);
    QTest::keyClick(&again, Qt::Key_Right);
    QTest::keyClick(&again, Qt::Key_Space);
    QTest::mouseClick(&find<QPushButton>(current(), "buttonAction"), Qt::LeftButton);
    settle();
    EXPECT_EQ(lists().at(0)->criteria(), 2);
    EXPECT_EQ(shown(), 1);
    // What is chosen there and not saved is not there at the next look.
    run(ActionId::FilterTasks);
    QTest::keyClick(&find<MVSegmentView>(current(), "segmentActive"), Qt::Key_Home);
    QTest::keyClick(&find<MVSegmentView>(current(), "segmentActive"), Qt::Key_Space);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([] { return !QApplication::activePopupWidget(); }));
    settle();
    run(ActionId::FilterTasks);
    EXPECT_EQ(find<MVSegmentView>(current(), "segmentActive").selectedIndex(), 2);
    QApplication::activePopupWidget()->close();

    go(SidebarItem::People);
    QTest::mouseClick(&find<QAbstractButton>(current(), "buttonGroup"), Qt::LeftButton);
    auto &members = find<WindowAddContactsGroup>(window(), "WindowAddContactsGroup");
    auto &people = find<CheckList>(members, "tableContacts");
    ASSERT_EQ(people.textOf(1), u"Ann"_s);
    Q_EMIT people.linePressed(1);
    QTest::mouseClick(&find<QPushButton>(members, "buttonDone"), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return DBWorker::allContactPrivateGroup().size() == 1; }));
    EXPECT_EQ(DBWorker::allContactPrivateGroup().at(0)->contacts(), std::vector<ContactPtr>({ann}));

    // Nobody is in it any more: it offers to take somebody in.
    ann->context()->deleteObject(ann);
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    ASSERT_TRUE(QTest::qWaitFor([&] { return shown() == 0; }));
    EXPECT_EQ(find<QPushButton>(current(), "buttonAddFirst").text(), u"Edit contacts group"_s);
    QTest::mouseClick(&find<QPushButton>(current(), "buttonAddFirst"), Qt::LeftButton);
    EXPECT_EQ(
        find<CheckList>(find<WindowAddContactsGroup>(window(), "WindowAddContactsGroup"), "tableContacts")
            .textOf(1),
        u"Bob"_s);
}

TEST_F(ChaseTest, WhoLeavesTheListWhileTheyAreEditedIsNotAskedAbout)
{
    const ContactPtr ann = contact(u"Ann"_s);
    contact(u"Bob"_s);
    MVContactGroup inactive;
    inactive.title = u"Idle"_s;
    inactive.criteria = 2;
    inactive.allCompanies = true;
    inactive.allCategories = true;
    NotificationCenter::defaultCenter().post(notifications::saveNewContactGroup, inactive);
    const auto shown = [this] {
        const auto *list = qobject_cast<RecordListScreen *>(controller().currentScreen());
        return list ? list->table()->model()->rowCount() : -1;
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return shown() == 2; }));
    static_cast<TabsViewController &>(current()).selectItem(ann);
    settle();
    auto *pane = dynamic_cast<RecordPane *>(controller().detailStack()->top());
    ASSERT_NE(pane, nullptr);
    pane->clickButtonEdit();
    auto *lastName = QApplication::focusWidget();
    QTest::keyClicks(lastName, u"a"_s);
    ASSERT_TRUE(pane->hasChanges());
    // No question is scripted: one would fail the test.
    give(u"Paint the door"_s, ann, 21);
    settle();
    ASSERT_TRUE(QTest::qWaitFor([&] { return shown() == 1; }));
    settle();
    EXPECT_EQ(controller().detailStack()->top(), pane);
    EXPECT_TRUE(pane->isEditing());
    pane->dropEdit();
}

TEST_F(ChaseTest, BirthdaysAreToldInTimeAndLeadToWhoHasThem)
{
    const ContactPtr soon = contact(u"Ann"_s, localDate(1990, 11, 24));
    contact(u"Leap"_s, localDate(2000, 2, 29));
    contact(u"Eve"_s, localDate(1950, 12, 31));
    contact(u"Newton"_s, localDate(1643, 1, 4));
    const auto told = [](Date first, Date last) {
        QStringList lines;
        for (const Birthdays::Birthday &one : Birthdays::between(first, last))
            lines << Birthdays::inWords(one) + u' ' +
                         QString::number(Calendar::current().dayNumber(one.day) -
                                         Calendar::current().dayNumber(first));
        return lines;
    };
    EXPECT_EQ(told(localDate(2026, 12, 20), localDate(2027, 1, 10)),
              QStringList({u"Eve, 76 11"_s, u"Newton 15"_s}));
    EXPECT_EQ(told(localDate(2027, 2, 28), localDate(2027, 2, 28)), QStringList(u"Leap, 27 0"_s));
    EXPECT_EQ(told(localDate(2028, 2, 28), localDate(2028, 2, 28)), QStringList());
    EXPECT_EQ(told(localDate(2028, 2, 29), localDate(2028, 2, 29)), QStringList(u"Leap, 28 0"_s));
    EXPECT_EQ(told(localDate(2027, 1, 1), localDate(2027, 12, 31)).size(), 4);

    go(SidebarItem::People);
    auto &label = find<QLabel>(current(), "labelBirthdays");
    ASSERT_TRUE(label.isVisible());
    EXPECT_TRUE(label.text().contains(u"Ann, 36</a> Tue, Nov 24"_s)) << label.text().toStdString();
    Q_EMIT label.linkActivated(u"0"_s);
    settle();
    EXPECT_EQ(static_cast<RecordListScreen &>(current()).selectedRecord(), soon);
    context().deleteObject(soon);
    EXPECT_FALSE(DBWorker::saveContext());
    settle();
    EXPECT_EQ(label.text(), QString());
}

TEST_F(ChaseTest, ACallIsTickedOffOnItsSheetAndWhatWasSaidIsNoted)
{
    const ContactPtr ann = contact(u"Ann"_s);
    const auto works = context().insert<EntityCompany>();
    works->setTitle(u"Works"_s);
    ann->setCompany(works);
    const auto phone = context().insert<EntityPhone>();
    phone->setNumber(u"+49 (30) 12-34"_s);
    phone->setContact(ann);
    const TaskPtr call = give(u"Roof"_s, ann, 20);
    call->setType(TaskType::EmailCall);
    call->setDueDate(localDate(2026, 11, 23, 10, 0));
    const TaskPtr other = give(u"Door"_s, ann, 20);
    other->setType(TaskType::EmailCall);
    other->setDueDate(localDate(2026, 11, 24, 10, 0));
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(CallSheet(works).calls(), std::vector<TaskPtr>({call, other}))
        << "Who works there is called, too";
    EXPECT_EQ(CallSheet(works).numbers().front().owner, u"Ann"_s);

    go(SidebarItem::People);
    static_cast<TabsViewController &>(current()).selectItem(ann);
    settle();
    QTest::mouseClick(&find<QPushButton>(window(), "buttonCallSheet"), Qt::LeftButton);
    auto *sheet = window().findChild<CallSheetWindow *>();
    ASSERT_NE(sheet, nullptr);
    Q_EMIT find<QLabel>(*sheet, "labelNumber").linkActivated(u"link"_s);
    EXPECT_EQ(opened, QStringList(u"tel:+49301234"_s));
    const auto tickFirst = [sheet] {
        for (auto *check : sheet->findChildren<QAbstractButton *>(u"checkCall"_s)) {
            if (check->isVisible())
                return QTest::mouseClick(check, Qt::LeftButton);
        }
    };
    find<QWidget>(*sheet, "checkCall").setFocus();
    tickFirst();
    settle();
    EXPECT_EQ(call->status(), TaskStatus::Done);
    auto *note = sheet->findChild<RecordWindow *>();
    ASSERT_NE(note, nullptr);
    QTest::keyClicks(note->findChild<QTextEdit *>(u"textFieldDetails"_s), u"They come on Monday"_s);
    note->clickButtonSave();
    settle();
    ASSERT_EQ(ann->note().size(), 1u);
    EXPECT_EQ(ann->note()[0]->title(), u"Roof"_s);
    EXPECT_EQ(ann->note()[0]->detail(), u"They come on Monday"_s);
    EXPECT_EQ(sheet->focusWidget()->accessibleName(), u"Door"_s) << "the keys go on with the next";
    // Nobody has to write one.
    tickFirst();
    settle();
    EXPECT_EQ(other->status(), TaskStatus::Done);
    note = sheet->findChild<RecordWindow *>();
    ASSERT_NE(note, nullptr);
    note->clickButtonClose();
    settle();
    EXPECT_EQ(CallSheet(ann).lastNotes().size(), 1u);
    EXPECT_TRUE(CallSheet(ann).calls().empty());
}

TEST_F(ChaseTest, ASheetClosesNoNoteUnderTheHandsOfWhoWrites)
{
    const ContactPtr ann = contact(u"Ann"_s);
    for (const QString &title : {u"Roof"_s, u"Feast"_s}) {
        const TaskPtr call = give(title, ann, 2);
        call->setType(TaskType::EmailCall);
        call->setDueDate(localDate(2026, 11, 23, 10));
        call->setAllowsContentModifications(title == u"Roof"_s);
    }
    ASSERT_FALSE(DBWorker::saveContext());
    go(SidebarItem::People);
    static_cast<TabsViewController &>(current()).selectItem(ann);
    settle();
    QTest::mouseClick(&find<QPushButton>(window(), "buttonCallSheet"), Qt::LeftButton);
    const QPointer<CallSheetWindow> sheet = window().findChild<CallSheetWindow *>();
    ASSERT_TRUE(sheet);
    std::vector<QAbstractButton *> boxes;
    for (auto *box : sheet->findChildren<QAbstractButton *>(u"checkCall"_s))
        if (box->isVisible())
            boxes.push_back(box);
    ASSERT_EQ(boxes.size(), 1u) << "a calendar that lets nobody change it has the other";
    QTest::mouseClick(boxes.front(), Qt::LeftButton);
    settle();
    EXPECT_EQ(stored(u"Feast"_s)->status(), TaskStatus::Open);
    const QPointer<RecordWindow> note = sheet->findChild<RecordWindow *>();
    ASSERT_TRUE(note);
    QTest::keyClicks(note->findChild<QTextEdit *>(u"textFieldDetails"_s), u"They come on Monday"_s);
    {
        const ScriptedAlerts alerts({Alert::secondButton, Alert::secondButton});
        sheet->close();
        EXPECT_FALSE(controller().closeNewWindows());
        EXPECT_EQ(alerts.asked().size(), 2u) << "the way out of the sheet, and that of the program";
    }
    settle();
    ASSERT_TRUE(sheet && sheet->isVisible() && note);
    // Who was called goes, and what was said stays to be saved.
    context().deleteObject(ann);
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    ASSERT_TRUE(note && note->isVisible());
    note->clickButtonSave();
    settle();
    EXPECT_FALSE(sheet);
    EXPECT_EQ(context().count(EntityNote::fetchRequest()), 1);
}

TEST_F(ChaseTest, WhatACompanySaidIsFoundAgainAndNothingIsLeftOutInSilence)
{
    const auto works = context().insert<EntityCompany>();
    works->setTitle(u"Works"_s);
    const ContactPtr ann = contact(u"Ann"_s);
    ann->setCompany(works);
    const TaskPtr call = add(u"Offer"_s, [&](MVTask &copy) {
        copy.type = TaskType::EmailCall;
        copy.company = works;
    });
    call->setDueDate(localDate(2026, 11, 23, 10, 0));
    ASSERT_FALSE(DBWorker::saveContext());
    CallSheetWindow sheet(works, nullptr);
    sheet.show();
    QTest::mouseClick(&find<QAbstractButton>(sheet, "checkCall"), Qt::LeftButton);
    settle();
    auto *note = sheet.findChild<RecordWindow *>();
    ASSERT_NE(note, nullptr);
    QTest::keyClicks(note->focusWidget(), u"They agree"_s);
    note->clickButtonSave();
    settle();
    ASSERT_EQ(CallSheet(works).lastNotes().size(), 1u);
    EXPECT_EQ(CallSheet(works).lastNotes()[0]->title(), u"Offer"_s);
    EXPECT_EQ(CallSheet(works).lastNotes()[0]->detail(), u"They agree"_s);
    QTest::keyClick(&sheet, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(CallSheet(works).lastNotes().size(), 0u);
    QTest::keyClick(&sheet, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(CallSheet(works).calls().size(), 1u) << "ticked by mistake";
    QTest::keyClick(&sheet, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(&sheet, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    settle();
    EXPECT_TRUE(CallSheet(ann).lastNotes().empty());
    works->setTitle(u"Mills"_s);
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(CallSheet(works).lastNotes().size(), 1u) << "whatever it is called";
    go(SidebarItem::Companies);
    static_cast<TabsViewController &>(current()).selectItem(works);
    settle();
    EXPECT_TRUE(find<QLabel>(window(), "labelNotes").text().contains(u">Offer</a>"_s));

    for (int number = 0; number < 7; ++number) {
        const auto more = context().insert<EntityNote>();
        more->setTitle(u"%1 note"_s);
        more->setContact(ann);
    }
    for (int number = 0; number < 23; ++number) {
        const auto phone = context().insert<EntityPhone>();
        phone->setNumber(u"030 %1"_s.arg(number));
        phone->setContact(ann);
    }
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    QStringList words;
    for (const auto *label : sheet.findChildren<QLabel *>())
        words << label->text();
    EXPECT_EQ(words.filter(u" more"_s), QStringList({u"3 more"_s, u"3 more"_s})) << "numbers, and 8 notes";
    EXPECT_EQ(sheet.findChildren<QLabel *>(u"labelNumber"_s).size(), 20);
    go(SidebarItem::People);
    static_cast<TabsViewController &>(current()).selectItem(ann);
    settle();
    const QString told = find<QLabel>(*controller().detailStack()->top(), "labelNotes").text();
    EXPECT_TRUE(told.endsWith(u" and 2 more"_s)) << told.toStdString();
    EXPECT_EQ(told.count(u">%1 note</a>"_s), 5) << told.toStdString();
}

TEST_F(ChaseTest, PeopleLeaveAsAFileAndRowsAsText)
{
    contact(u"Ann"_s);
    contact(u"Bob"_s);
    go(SidebarItem::People);
    auto &list = static_cast<RecordListScreen &>(current());
    list.table()->selectRow(1);
    list.table()->setFocus();
    run(ActionId::Copy);
    EXPECT_EQ(QApplication::clipboard()->text(), u"Bob"_s);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"people.vcf"_s);
    {
        const ScriptedAlerts alerts({Alert::secondButton});
        run(ActionId::Export);
    }
    auto *dialog = window().findChild<QFileDialog *>();
    ASSERT_NE(dialog, nullptr);
    Q_EMIT dialog->fileSelected(path);
    dialog->close();
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray cards = file.readAll();
    EXPECT_EQ(cards.count("BEGIN:VCARD"), 1) << "What is selected";
    EXPECT_TRUE(cards.contains("FN:Bob\r\n")) << cards.constData();
}

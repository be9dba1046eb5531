// What the user has arranged is there again.

#include "foundation/UserDefaults.h"
#include "records/TaskManager.h"
#include "shell/FirstHints.h"
#include "shell/WindowMemory.h"
#include "support/TestSupport.h"
#include "ui/support/ShellTest.h"
#include "widgets/EmptyState.h"
#include "widgets/SplitPanes.h"

#include <QHelpEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QToolButton>
#include <QToolTip>

using namespace Qt::Literals::StringLiterals;

class MemoryTest : public ShellTest
{
protected:
    bool isOpen(SidebarItem heading) { return outline().isExpanded(sidebar().indexOf(heading)); }
};

TEST_F(MemoryTest, TheSidebarAndTheWindowComeBackAsTheyWereLeft)
{
    const bool wereOpen = isOpen(SidebarItem::Contacts);
    pressSidebar(SidebarItem::Contacts);
    ASSERT_NE(isOpen(SidebarItem::Contacts), wereOpen);
    const auto isKept = [](const QString &key) { return UserDefaults::standard().contains(key); };
    EXPECT_TRUE(QTest::qWaitFor([&] { return isKept(u"sidebarOpen"_s); }));

    // Where the desktop puts it is not the user's doing.
    EXPECT_FALSE(isKept(u"windowPlaces"_s));
    QTest::qWait(1200);
    window().resize(900, 640);
    EXPECT_TRUE(QTest::qWaitFor([&] { return isKept(u"windowPlaces"_s); }));
    UserDefaults::standard().setObject(u"sidebarWidth"_s, 190);

    outline().setExpanded(sidebar().indexOf(SidebarItem::Contacts), wereOpen);
    window().resize(1080, 700);
    window().hide();
    const WindowMemory next(window(), sidebar());
    window().show();
    EXPECT_NE(isOpen(SidebarItem::Contacts), wereOpen);
    EXPECT_EQ(window().size(), QSize(900, 640));
    EXPECT_EQ(window().splitViewMain()->sizes().constFirst(), 190);
}

TEST_F(MemoryTest, AListIsWhereItWasLeft)
{
    QStringList many;
    for (int number = 0; number < 60; ++number)
        many << u"task %1"_s.arg(number);
    addInbox(many);
    showList(SidebarItem::NotDone);
    list().clearSelection();
    list().verticalScrollBar()->setValue(700);
    showList(SidebarItem::Today);
    showList(SidebarItem::NotDone);
    EXPECT_EQ(list().verticalScrollBar()->value(), 700);
}

TEST_F(MemoryTest, AListBesideItsPaneComesBackWithWhatWasReadLast)
{
    for (int number = 0; number < 40; ++number) {
        const auto note = context().insert<EntityNote>();
        note->setTitle(u"note %1"_s.arg(number));
    }
    ASSERT_FALSE(DBWorker::saveContext());
    controller().commands()->action(ActionId::ShowNotes)->trigger();
    settle();
    const auto notes = [this] {
        return controller().currentScreen()->findChild<TableViewExtended *>(u"tableViewNotes"_s);
    };
    ASSERT_TRUE(notes());
    notes()->selectRow(30);
    notes()->scrollToRow(30);
    settle();
    const ObjectPtr read = controller().currentScreen()->selectedRecord();
    const int place = notes()->verticalScrollBar()->value();
    ASSERT_GT(place, 0);
    showList(SidebarItem::Today);
    controller().commands()->action(ActionId::ShowNotes)->trigger();
    settle();
    EXPECT_EQ(controller().currentScreen()->selectedRecord(), read);
    EXPECT_EQ(notes()->verticalScrollBar()->value(), place);
    EXPECT_EQ(controller().detailStack()->top()->record(), read);
}

TEST_F(MemoryTest, AnEmptyListOffersItsFirstRecord)
{
    showList(SidebarItem::Inbox);
    auto &button = find<QPushButton>(screen(), "buttonAddFirst");
    ASSERT_TRUE(button.isVisible());
    button.click();
    EXPECT_EQ(QApplication::focusWidget()->objectName(), u"captureField"_s);
    QTest::keyClicks(QApplication::focusWidget(), u"first"_s);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(shownTitles(), QStringList{u"first"_s});
    EXPECT_FALSE(button.isVisible());
    showList(SidebarItem::Done);
    EXPECT_EQ(screen().findChild<QPushButton *>(u"buttonAddFirst"_s), nullptr) << "nothing is typed there";
}

TEST_F(MemoryTest, AHintGoesOnceItIsFollowedAndAllGoWithTheFirstDay)
{
    auto &all = find<FirstHints>(window(), "firstHints");
    const auto &words = find<QLabel>(all, "labelHint");
    ASSERT_TRUE(all.isVisible());
    EXPECT_TRUE(words.text().contains(u"Ctrl+L"_s));
    run(ActionId::AddInLine);
    EXPECT_TRUE(words.text().contains(u"Alt+1"_s)) << "the next one";
    run(ActionId::Search);
    EXPECT_TRUE(words.text().contains(u"Alt+1"_s)) << "that one was not its turn yet";
    addInbox({u"a"_s});
    list().selectRow(0);
    run(ActionId::PlanTomorrow);
    EXPECT_TRUE(words.text().contains(u"Ctrl+Z"_s)) << "nobody is told to search who has done so";
    {
        const FrozenClock tomorrow(localDate(2026, 11, 22, 9, 16));
        all.refresh();
        EXPECT_FALSE(all.isVisible()) << "the day is over";
    }
    const FrozenClock evening(localDate(2026, 11, 21, 20));
    all.refresh();
    EXPECT_TRUE(all.isVisible());
    find<QToolButton>(all, "buttonNoHints").click();
    EXPECT_FALSE(all.isVisible());
    const FirstHints next(*controller().commands());
    EXPECT_TRUE(next.isHidden()) << "they do not come back";
}

TEST_F(MemoryTest, AHintGoesAlsoOnceItIsFollowedWithoutItsKeys)
{
    const auto &words = find<QLabel>(find<FirstHints>(window(), "firstHints"), "labelHint");
    showList(SidebarItem::Inbox);
    QTest::keyClicks(&find<QWidget>(screen(), "captureField"), u"a"_s);
    ASSERT_TRUE(words.text().contains(u"Ctrl+L"_s));
    QTest::keyClick(&find<QWidget>(screen(), "captureField"), Qt::Key_Return);
    EXPECT_TRUE(words.text().contains(u"Alt+1"_s)) << words.text().toStdString();
    MVTask copy(stored(u"a"_s));
    copy.title = u"b"_s;
    ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    EXPECT_TRUE(words.text().contains(u"Alt+1"_s)) << "it has no other day";
    copy.dueDate = localDate(2026, 12, 1);
    ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    EXPECT_TRUE(words.text().contains(u"Ctrl+F"_s)) << words.text().toStdString();
    QTest::keyClicks(&find<QWidget>(window(), "searchField"), u"b"_s);
    EXPECT_TRUE(words.text().contains(u"Ctrl+Z"_s)) << words.text().toStdString();
    ASSERT_FALSE(context().undo());
    EXPECT_TRUE(words.text().contains(u"F1"_s)) << words.text().toStdString();
}

TEST_F(MemoryTest, TipsTellTheKeysOfEachPart)
{
    controller().goToList(SidebarItem::Calendar);
    const auto tipAt = [this](const char *name, double share) {
        QWidget &control = find<QWidget>(window(), name);
        const QPoint place(qRound(control.width() * share), control.height() / 2);
        QHelpEvent wish(QEvent::ToolTip, place, control.mapToGlobal(place));
        QCoreApplication::sendEvent(&control, &wish);
        return QToolTip::text();
    };
    EXPECT_EQ(tipAt("calendarSegment", 0.1), u"Day (Ctrl+Shift+5)"_s);
    EXPECT_EQ(tipAt("calendarSegment", 0.9), u"Month (Ctrl+Shift+7)"_s);
    EXPECT_EQ(tipAt("daysCalendarController", 0.1), u"Previous (Ctrl+Shift+PgUp)"_s);
    EXPECT_EQ(tipAt("daysCalendarController", 0.9), u"Next (Ctrl+Shift+PgDown)"_s);
}

// What the user has arranged is there again.

#include "foundation/UserDefaults.h"
#include "shell/WindowMemory.h"
#include "ui/support/ShellTest.h"
#include "widgets/EmptyState.h"
#include "widgets/SplitPanes.h"

#include <QPushButton>
#include <QScrollBar>

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

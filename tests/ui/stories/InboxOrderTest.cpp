// The Inbox is put in order, by the mouse and by the keys.

#include "ui/support/ShellTest.h"

using namespace Qt::Literals::StringLiterals;

class InboxOrderTest : public ShellTest
{
protected:
    InboxOrderTest() { addInbox({u"a"_s, u"b"_s, u"c"_s, u"d"_s}); }
    QPoint upperHalfOf(int row) { return middleOf(row) - QPoint(0, 15); }
    QPoint lowerHalfOf(int row) { return middleOf(row) + QPoint(0, 15); }
};

TEST_F(InboxOrderTest, ADraggedTaskFallsAboveTheRowItIsDroppedOnAndStaysSelected)
{
    drag(2, upperHalfOf(0));
    EXPECT_EQ(inboxTitles(), (QStringList{u"c"_s, u"a"_s, u"b"_s, u"d"_s}));
    EXPECT_EQ(shownTitles(), inboxTitles());
    EXPECT_EQ(selectedTitles(), QStringList{u"c"_s});

    drag(0, lowerHalfOf(2));
    EXPECT_EQ(inboxTitles(), (QStringList{u"a"_s, u"b"_s, u"c"_s, u"d"_s}));
    EXPECT_EQ(selectedTitles(), QStringList{u"c"_s});
}

TEST_F(InboxOrderTest, SeveralTasksAreDraggedTogether)
{
    clickRow(0);
    clickRow(2, Qt::ControlModifier);
    drag(2, upperHalfOf(3));
    EXPECT_EQ(inboxTitles(), (QStringList{u"b"_s, u"a"_s, u"c"_s, u"d"_s}));
    EXPECT_EQ(selectedTitles(), (QStringList{u"a"_s, u"c"_s}));
}

TEST_F(InboxOrderTest, ADropBelowTheLastTaskChangesNothing)
{
    drag(0, lowerHalfOf(3));
    drag(0, lowerHalfOf(3) + QPoint(0, 60));
    EXPECT_EQ(inboxTitles(), (QStringList{u"a"_s, u"b"_s, u"c"_s, u"d"_s}));
}

TEST_F(InboxOrderTest, TheKeysMoveATaskToEveryPlaceTheLastOneIncluded)
{
    clickRow(1);
    key(Qt::Key_Down, Qt::AltModifier);
    key(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(inboxTitles(), (QStringList{u"a"_s, u"c"_s, u"d"_s, u"b"_s}));
    EXPECT_EQ(selectedTitles(), QStringList{u"b"_s});
    key(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(inboxTitles().last(), u"b"_s);
    for (int step = 0; step < 4; ++step)
        key(Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(inboxTitles(), (QStringList{u"b"_s, u"a"_s, u"c"_s, u"d"_s}));
}

TEST_F(InboxOrderTest, APressOnOneOfSeveralSelectedRowsSelectsItAloneOnlyWhenReleased)
{
    clickRow(0);
    clickRow(2, Qt::ShiftModifier);
    QTest::mousePress(list().viewport(), Qt::LeftButton, {}, middleOf(1));
    EXPECT_EQ(selectedTitles().size(), 3);
    QTest::mouseRelease(list().viewport(), Qt::LeftButton, {}, middleOf(1));
    EXPECT_EQ(selectedTitles(), QStringList{u"b"_s});
}

TEST_F(InboxOrderTest, EscapeGivesUpADrag)
{
    QTest::mousePress(list().viewport(), Qt::LeftButton, {}, middleOf(2));
    QTest::mouseMove(list().viewport(), middleOf(1));
    QTest::mouseMove(list().viewport(), upperHalfOf(0));
    EXPECT_TRUE(list().isDragging());
    key(Qt::Key_Escape);
    EXPECT_FALSE(list().isDragging());
    QTest::mouseRelease(list().viewport(), Qt::LeftButton, {}, upperHalfOf(0));
    EXPECT_EQ(inboxTitles(), (QStringList{u"a"_s, u"b"_s, u"c"_s, u"d"_s}));
}

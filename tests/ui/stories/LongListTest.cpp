// A list of a hundred thousand rows is as quick as a short one.

#include "shell/tasks/TaskTableCell.h"
#include "widgets/TableViewExtended.h"

#include <QElapsedTimer>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Groups of a header, eight items and a gap; it counts the rows that were looked at.
class LongModel : public TableModel
{
public:
    explicit LongModel(int rows)
        : count(rows)
    {}

    RowKind kindOf(int row) const override
    {
        const int place = row % 10;
        return place == 0 ? RowKind::Header : place == 9 ? RowKind::Separator : RowKind::Item;
    }
    int rowCount(const QModelIndex &parent = {}) const override { return parent.isValid() ? 0 : count; }
    QVariant data(const QModelIndex &, int) const override
    {
        ++looks;
        return {};
    }

    mutable int looks = 0;

private:
    int count;
};

class LongListTest : public testing::Test
{
protected:
    LongListTest()
    {
        view.setItemDelegate(&cell);
        view.setModel(&model);
        view.resize(800, 600);
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
        view.setFocus();
    }
    void key(Qt::Key pressed, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&view, pressed, modifiers);
    }

    LongModel model{100000};
    TaskTableCell cell;
    TableViewExtended view;
};

} // namespace

TEST_F(LongListTest, OnlyRowsInSightAreLookedAt)
{
    model.looks = 0;
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum() / 2);
    view.grab();
    EXPECT_LT(model.looks, 200);
}

TEST_F(LongListTest, AKeyPressIsAnsweredAsInAShortList)
{
    const auto millisecondsOfPresses = [this] {
        view.selectRow(1);
        key(Qt::Key_End);
        QElapsedTimer timer;
        timer.start();
        for (int press = 0; press < 20; ++press) {
            key(Qt::Key_Up, Qt::ShiftModifier);
            view.viewport()->repaint();
        }
        return timer.elapsed();
    };
    const qint64 amongMany = millisecondsOfPresses();
    LongModel few(100);
    view.setModel(&few);
    EXPECT_LT(amongMany, 5 * millisecondsOfPresses() + 100);
    view.setModel(nullptr);
}

TEST_F(LongListTest, TheKeysStopAtItemsOnly)
{
    view.selectRow(8);
    key(Qt::Key_Down);
    EXPECT_EQ(view.currentRow(), 11);
    key(Qt::Key_Up);
    EXPECT_EQ(view.currentRow(), 8);
    key(Qt::Key_Home);
    EXPECT_EQ(view.currentRow(), 1);
    key(Qt::Key_Up);
    EXPECT_EQ(view.currentRow(), 1);
    key(Qt::Key_End);
    EXPECT_EQ(view.currentRow(), 99998);
    EXPECT_TRUE(view.viewport()->rect().contains(view.visualRect(view.currentIndex())));
    key(Qt::Key_PageUp);
    EXPECT_TRUE(model.isItem(view.currentRow()));
    EXPECT_LT(view.currentRow(), 99998 - 5);
}

TEST_F(LongListTest, ExtendingTheSelectionLeavesHeadersAndGapsOut)
{
    view.selectRow(7);
    for (int step = 0; step < 3; ++step)
        key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(view.selectedRows(), (std::set<int>{7, 8, 11, 12}));
    key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(view.selectedRows(), (std::set<int>{7, 8, 11}));
    view.selectAll();
    EXPECT_EQ(view.selectedCount(), 80000);
}

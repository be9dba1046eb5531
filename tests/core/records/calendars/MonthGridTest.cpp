#include "records/calendars/MonthGridLayout.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace {

CalendarForDaysItem monthBar(qint64 lane, qint64 column, qint64 duration)
{
    CalendarForDaysItem item;
    item.row = lane;
    item.column = column;
    item.duration = duration;
    return item;
}

using Cell = MonthGridLayout::Cell;

TEST(MonthGrid, CellsDivideTheGridAndBarsStandBelowTheDaysNumber)
{
    const MonthGridLayout layout({700, 500}, {}, {{}, {monthBar(1, 2, 3), monthBar(2, 6, 9)}, {}, {}, {}});
    EXPECT_EQ(layout.rowCount(), 5);
    EXPECT_EQ(layout.cellFrame({1, 6}), QRectF(600, 100, 100, 100));
    ASSERT_EQ(layout.bars().size(), 2u);
    EXPECT_EQ(layout.bars().at(0).frame, QRectF(201, 128, 297, 15));
    EXPECT_EQ(layout.bars().at(1).frame, QRectF(601, 145, 897, 15));
    EXPECT_EQ(layout.barAt({300, 130}), 0);
    EXPECT_EQ(layout.barAt({650, 150}), 1);
    EXPECT_EQ(layout.barAt({300, 150}), std::nullopt);
    const std::optional<Cell> cell = layout.cellAt({699.9, 400});
    ASSERT_TRUE(cell);
    EXPECT_EQ(std::pair(cell->row, cell->column), std::pair(4, 6));
    for (const QPointF outside : {QPointF(700, 10), QPointF(-1, 10), QPointF(10, 500), QPointF(10, -1)})
        EXPECT_FALSE(layout.cellAt(outside));
}

TEST(MonthGrid, WhatDoesNotFitIsCountedInEachCellThatItCovers)
{
    // Three lanes fit.
    CalendarForDaysItems items{monthBar(3, 0, 7), monthBar(4, 1, 3), monthBar(5, 3, 1), monthBar(4, 5, 20),
                               monthBar(4, 0, 0)};
    const MonthGridLayout layout({700, 400}, {}, {{}, items, {}, {}});
    EXPECT_EQ(layout.maxVisibleRows(), 3);
    QString counts;
    for (int column = 0; column < 7; ++column)
        counts += QString::number(layout.hiddenIn({1, column}));
    EXPECT_EQ(counts, u"1112011"_qs);
    EXPECT_EQ(layout.hiddenIn({0, 3}), 0);
    EXPECT_TRUE(layout.bars().at(0).isVisible);
    EXPECT_FALSE(layout.bars().at(1).isVisible);
    EXPECT_EQ(layout.bars().at(4).frame.width(), 0);
    EXPECT_FALSE(layout.barAt(layout.bars().at(1).frame.center()));
    EXPECT_EQ(layout.moreLabelFrame({1, 2}), QRectF(209, 182, 91, 17));
}

TEST(MonthGrid, ALowWindowOrALargeTextLeavesOnlyTheCounts)
{
    const std::vector<CalendarForDaysItems> one{{monthBar(1, 0, 1)}};
    for (const double height : {0.0, 30.0, 57.9}) {
        const MonthGridLayout low({700, height}, {}, one);
        EXPECT_LE(low.maxVisibleRows(), 0);
        EXPECT_EQ(low.hiddenIn({0, 0}), 1) << height;
    }
    EXPECT_EQ(MonthGridLayout({700, 58}, {}, one).maxVisibleRows(), 1);
    const MonthGridMetrics large = MonthGridMetrics::forText(30);
    EXPECT_EQ(large.eventHeight, 30);
    EXPECT_EQ(large.dayLabelBottom, 37);
    EXPECT_EQ(MonthGridLayout({700, 98}, large, one).maxVisibleRows(), 0);
    EXPECT_EQ(MonthGridLayout({700, 99}, large, one).maxVisibleRows(), 1);
    EXPECT_EQ(MonthGridMetrics::forText(5).eventHeight, 15);
    EXPECT_FALSE(MonthGridLayout({700, 500}, {}, {}).cellAt({1, 1}));
}

} // namespace

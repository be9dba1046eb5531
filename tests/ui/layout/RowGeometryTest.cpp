#include "widgets/RowGeometry.h"
#include "support/TestSupport.h"
#include "widgets/RowDrag.h"

#include <gtest/gtest.h>

#include <random>

TEST(RowGeometryTest, FindsWhatAWalkOverAllGeneratedRowsWouldFind)
{
    std::mt19937 random(testSeed());
    for (int round = 0; round < 20; ++round) {
        std::vector<int> heights(random() % 60);
        for (int &height : heights)
            height = random() % 3 == 0 ? 10 : 51;
        const RowGeometry geometry(static_cast<int>(heights.size()),
                                   [&](int row) { return heights[static_cast<std::size_t>(row)]; });
        int top = 0;
        for (int row = 0; row < geometry.count(); ++row) {
            const int height = heights[static_cast<std::size_t>(row)];
            ASSERT_EQ(geometry.top(row), top);
            ASSERT_EQ(geometry.heightOf(row), height);
            ASSERT_EQ(geometry.rowAt(top), row);
            ASSERT_EQ(geometry.rowAt(top + height - 1), row);
            top += height;
        }
        ASSERT_EQ(geometry.totalHeight(), top);
        ASSERT_EQ(geometry.top(geometry.count()), top);
    }
}

TEST(RowGeometryTest, HasNoRowAboveTheFirstAndBelowTheLast)
{
    const RowGeometry geometry(3, [](int) { return 20; });
    EXPECT_EQ(geometry.rowAt(-1), -1);
    EXPECT_EQ(geometry.rowAt(60), -1);
    EXPECT_EQ(RowGeometry().rowAt(0), -1);
    EXPECT_EQ(RowGeometry().top(0), 0);
}

TEST(RowDragTest, CountsTheDraggedRowsAboveTheTarget)
{
    RowDrag drag;
    drag.begin({1, 4, 6});
    EXPECT_EQ(drag.rowsAboveRow(0), 0);
    EXPECT_EQ(drag.rowsAboveRow(4), 1);
    EXPECT_EQ(drag.rowsAboveRow(5), 2);
    EXPECT_EQ(drag.rowsAboveRow(9), 3);
    drag.end();
    EXPECT_FALSE(drag.isActive());
    EXPECT_EQ(drag.target(), -1);
}

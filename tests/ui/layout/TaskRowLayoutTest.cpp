#include "shell/tasks/TaskRowLayout.h"

#include <gtest/gtest.h>

#include <vector>

static TaskRowLayout::Input rowOf(int width, int height = 51)
{
    return {.row = QRect(0, 100, width, height), .titleHeight = 18, .detailHeight = 15, .titleWidth = 180};
}

static std::vector<QRect> partsOf(const TaskRowLayout &layout)
{
    std::vector<QRect> parts = {layout.checkBox, layout.priorityDot, layout.title, layout.overdueMark,
                                layout.date};
    parts.insert(parts.end(), layout.signs.begin(), layout.signs.end());
    parts.insert(parts.end(), layout.details.begin(), layout.details.end());
    std::erase_if(parts, [](const QRect &part) { return part.isEmpty(); });
    return parts;
}

static void expectApart(const TaskRowLayout::Input &input)
{
    const TaskRowLayout layout = TaskRowLayout::of(input);
    const std::vector<QRect> parts = partsOf(layout);
    EXPECT_EQ(layout.details.size(), input.detailWidths.size());
    for (std::size_t one = 0; one < parts.size(); ++one) {
        ASSERT_TRUE(layout.card.contains(parts[one])) << "width " << input.row.width() << ", part " << one;
        for (std::size_t other = one + 1; other < parts.size(); ++other)
            ASSERT_FALSE(parts[one].intersects(parts[other])) << "width " << input.row.width();
    }
}

TEST(TaskRowLayoutTest, KeepsAllPartsOnTheCardAndApartAtEveryWidth)
{
    for (int width = 300; width <= 2400; width += 37) {
        for (const int height : {34, 51, 80}) {
            for (const int dateWidth : {0, 60, 190}) {
                for (const int titleWidth : {0, 120, 4000}) {
                    TaskRowLayout::Input input = rowOf(width, height);
                    input.isOverdue = dateWidth == 60;
                    input.dateWidth = dateWidth;
                    input.titleWidth = titleWidth;
                    input.signs = dateWidth == 190 ? 2 : 0;
                    input.detailWidths = {dateWidth * 2, 60, 700, 30};
                    expectApart(input);
                    input.detailWidths.clear();
                    expectApart(input);
                }
            }
        }
    }
}

TEST(TaskRowLayoutTest, TheDateStaysNearTheTitleAndItsLineDependsOnTheWidthOfTheListOnly)
{
    for (const int dateWidth : {50, 190}) {
        TaskRowLayout::Input input = rowOf(1900);
        input.dateWidth = dateWidth;
        const TaskRowLayout wide = TaskRowLayout::of(input);
        EXPECT_LT(wide.date.right() - wide.title.left(), 900);
        EXPECT_LT(wide.date.top(), wide.title.bottom());
        input.row.setWidth(420);
        const TaskRowLayout narrow = TaskRowLayout::of(input);
        EXPECT_GT(narrow.date.top(), narrow.title.bottom());
        EXPECT_EQ(narrow.date.left(), narrow.title.left());
    }
    TaskRowLayout::Input plain = rowOf(420);
    EXPECT_NEAR(TaskRowLayout::of(plain).title.center().y(), TaskRowLayout::of(plain).card.center().y(), 1);
}

TEST(TaskRowLayoutTest, TellsBelowTheTitleWhereTwoLinesFitAndBesideItElsewhere)
{
    TaskRowLayout::Input input = rowOf(900);
    input.detailWidths = {90, 120};
    const TaskRowLayout two = TaskRowLayout::of(input);
    EXPECT_GT(two.details[0].top(), two.title.bottom());
    EXPECT_EQ(two.details[0].width(), 90);
    EXPECT_GT(two.details[1].left(), two.details[0].right());
    input.row.setHeight(34);
    const TaskRowLayout one = TaskRowLayout::of(input);
    EXPECT_GT(one.details[0].left(), one.title.right());
    EXPECT_LT(one.details[0].top(), one.title.bottom());
    // A long title leaves nothing to them, and no detail is cut to a stump.
    input.titleWidth = 700;
    EXPECT_TRUE(TaskRowLayout::of(input).details[1].isEmpty());
}

TEST(TaskRowLayoutTest, AlignsTitlesWhetherOrNotThereIsACheckBox)
{
    TaskRowLayout::Input input = rowOf(900);
    const int left = TaskRowLayout::of(input).title.left();
    input.hasCheckBox = false;
    EXPECT_EQ(TaskRowLayout::of(input).title.left(), left);
    EXPECT_TRUE(TaskRowLayout::of(input).checkBox.isEmpty());
}

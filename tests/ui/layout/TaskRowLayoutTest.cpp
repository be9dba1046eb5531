#include "shell/tasks/TaskRowLayout.h"

#include <gtest/gtest.h>

#include <vector>

static TaskRowLayout::Input rowOf(int width)
{
    return {.row = QRect(0, 100, width, 51), .titleHeight = 18, .detailHeight = 15};
}

static std::vector<QRect> partsOf(const TaskRowLayout &layout)
{
    std::vector<QRect> parts;
    for (const QRect &part : {layout.checkBox, layout.priorityDot, layout.title, layout.project,
                              layout.overdueMark, layout.date}) {
        if (!part.isEmpty())
            parts.push_back(part);
    }
    return parts;
}

TEST(TaskRowLayoutTest, KeepsAllPartsOnTheCardAndApartAtEveryWidth)
{
    for (int width = 300; width <= 2400; width += 37) {
        for (const bool isOverdue : {false, true}) {
            for (const int dateWidth : {0, 60, 190}) {
                TaskRowLayout::Input input = rowOf(width);
                input.isOverdue = isOverdue;
                input.dateWidth = dateWidth;
                input.projectWidth = dateWidth * 2;
                const TaskRowLayout layout = TaskRowLayout::of(input);
                const std::vector<QRect> parts = partsOf(layout);
                for (std::size_t one = 0; one < parts.size(); ++one) {
                    ASSERT_TRUE(layout.card.contains(parts[one])) << "width " << width << ", part " << one;
                    for (std::size_t other = one + 1; other < parts.size(); ++other)
                        ASSERT_FALSE(parts[one].intersects(parts[other])) << "width " << width;
                }
            }
        }
    }
}

TEST(TaskRowLayoutTest, PutsTheDateBelowTheTitleOnlyWhereTheTitleWouldStarve)
{
    TaskRowLayout::Input input = rowOf(900);
    input.dateWidth = 150;
    EXPECT_FALSE(TaskRowLayout::of(input).isTwoLines);
    input.row.setWidth(420);
    const TaskRowLayout narrow = TaskRowLayout::of(input);
    EXPECT_TRUE(narrow.isTwoLines);
    EXPECT_GE(narrow.date.top(), narrow.title.bottom());
    input.dateWidth = 0;
    EXPECT_FALSE(TaskRowLayout::of(input).isTwoLines);
}

TEST(TaskRowLayoutTest, AlignsTitlesWhetherOrNotThereIsACheckBox)
{
    TaskRowLayout::Input input = rowOf(900);
    const int left = TaskRowLayout::of(input).title.left();
    input.hasCheckBox = false;
    EXPECT_EQ(TaskRowLayout::of(input).title.left(), left);
    EXPECT_TRUE(TaskRowLayout::of(input).checkBox.isEmpty());
}

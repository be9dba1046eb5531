#include "shell/home/HomeColumns.h"
#include "shell/home/HomeRowLayout.h"

#include <gtest/gtest.h>

TEST(HomeLayout, ThePartsFillTheScreenWithoutOverlapAtEveryWidth)
{
    for (int width = 440; width <= 1900; ++width) {
        const HomeColumns columns = HomeColumns::of({width, 701});
        const QRect parts[] = {columns.calendar, columns.overdue, columns.week};
        int area = 0;
        for (const QRect &part : parts) {
            area += part.width() * part.height();
            for (const QRect &other : parts)
                EXPECT_TRUE(part == other || !part.intersects(other)) << width;
        }
        EXPECT_EQ(area, width * 701);
        EXPECT_GE(std::min(columns.overdue.width(), columns.week.width()), 230) << width;
        EXPECT_EQ(columns.overdue.left(), width - qRound(width * 0.6485)) << "where a pane begins";
    }
}

TEST(HomeLayout, TheLinesOfARowStandBelowEachOtherInsideOfTheirCard)
{
    for (const bool hasProject : {false, true}) {
        const HomeRowLayout layout = HomeRowLayout::of({.row = {0, 100, 240, hasProject ? 85 : 60},
                                                        .titleHeight = 18,
                                                        .detailHeight = 16,
                                                        .hasCheckBox = true,
                                                        .isTickable = true,
                                                        .hasProject = hasProject,
                                                        .hasDate = true,
                                                        .hasDateIcon = true});
        for (const QRect &part : {layout.title, layout.date, layout.checkBox, layout.dateIcon})
            EXPECT_TRUE(layout.card.contains(part));
        EXPECT_GT(layout.title.left(), layout.checkBox.right());
        EXPECT_GT(layout.date.left(), layout.dateIcon.right());
        EXPECT_GT(layout.date.top(), hasProject ? layout.project.bottom() : layout.title.bottom());
        EXPECT_EQ(hasProject, layout.project.top() > layout.title.bottom());
    }
}

TEST(HomeLayout, WhatThereIsToTellFollowsTheDateAsFarAsThereIsRoom)
{
    HomeRowLayout::Input input{.row = {0, 0, 300, 60},
                               .titleHeight = 18,
                               .detailHeight = 16,
                               .hasDate = true,
                               .titleWidth = 120,
                               .dateWidth = 60,
                               .signs = 2,
                               .detailWidths = {70, 90, 80}};
    const HomeRowLayout wide = HomeRowLayout::of(input);
    EXPECT_GT(wide.signs.at(0).left(), wide.title.left() + 120);
    EXPECT_LE(wide.signs.at(1).right(), wide.card.right());
    EXPECT_GT(wide.details.at(0).left(), wide.date.right());
    EXPECT_EQ(wide.details.at(0).width(), 70);
    EXPECT_LE(wide.details.at(1).right(), wide.card.right()) << "is cut off";
    EXPECT_TRUE(wide.details.at(2).isEmpty());
    input.row.setWidth(120);
    input.titleWidth = 500;
    const HomeRowLayout narrow = HomeRowLayout::of(input);
    EXPECT_LT(narrow.title.right(), narrow.signs.at(0).left());
    EXPECT_LE(narrow.signs.at(1).right(), narrow.card.right());
    EXPECT_TRUE(narrow.details.at(0).isEmpty());
}

TEST(HomeLayout, TitlesStandInOneLineWhetherOrNotTheirRowCanBeTicked)
{
    HomeRowLayout::Input input{.row = {0, 0, 240, 60}, .titleHeight = 18, .isTickable = true};
    const HomeRowLayout without = HomeRowLayout::of(input);
    input.hasCheckBox = true;
    EXPECT_TRUE(without.checkBox.isEmpty());
    EXPECT_EQ(HomeRowLayout::of(input).title, without.title);
}

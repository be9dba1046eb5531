#pragma once

#include <QRect>

#include <vector>

/// Where the parts of a task row stand, written from left to right; a view mirrors it where texts run the
/// other way.
///
/// The title stands above what there is to tell, the date beside both and never far from them. A narrow row
/// has the date on the second line, and a row that is too low for two lines has it all on one.
struct TaskRowLayout
{
    /// What the layout depends on, all in device-independent pixels.
    struct Input
    {
        QRect row;
        int titleHeight = 0;
        int detailHeight = 0;
        int titleWidth = 0;
        int dateWidth = 0;
        /// How wide each detail is, with its sign.
        std::vector<int> detailWidths = {};
        /// How many signs there are, of repetition and the like.
        int signs = 0;
        bool hasCheckBox = true;
        bool isOverdue = false;
    };

    QRect card;
    QRect checkBox;
    QRect priorityDot;
    QRect title;
    /// Behind the title.
    std::vector<QRect> signs;
    /// Empty where there was no room; the last one that is not may be narrower than it wanted to be.
    std::vector<QRect> details;
    QRect overdueMark;
    QRect date;

    static TaskRowLayout of(const Input &input);
};

#pragma once

#include <QRect>

/// Where the parts of a task row stand, written from left to right; a view mirrors it where texts run the
/// other way.
struct TaskRowLayout
{
    /// What the layout depends on, all in device-independent pixels.
    struct Input
    {
        QRect row;
        int titleHeight = 0;
        int detailHeight = 0;
        int dateWidth = 0;
        int projectWidth = 0;
        bool hasCheckBox = true;
        bool isOverdue = false;
    };

    QRect card;
    QRect checkBox;
    QRect priorityDot;
    QRect title;
    QRect project;
    QRect overdueMark;
    QRect date;
    /// Whether date and project stand below the title for want of width.
    bool isTwoLines = false;

    static TaskRowLayout of(const Input &input);
};

#pragma once

#include <QRect>

#include <vector>

/// Where the parts of a row of Home stand, written from left to right; a view mirrors it where texts run the
/// other way. Title, project and date stand below each other; behind the title are its signs, behind the date
/// what else there is to tell, as far as there is room.
struct HomeRowLayout
{
    /// What the layout depends on, all in device-independent pixels.
    struct Input
    {
        QRect row;
        int titleHeight = 0;
        int detailHeight = 0;
        bool hasCheckBox = false;
        /// Whether the list has check boxes, in whose place a row without one has nothing.
        bool isTickable = false;
        bool hasProject = false;
        bool hasDate = false;
        bool hasDateIcon = false;
        int titleWidth = 0;
        int dateWidth = 0;
        /// How many signs there are, of repetition and the like.
        int signs = 0;
        /// How wide each detail is, with its sign.
        std::vector<int> detailWidths = {};
    };

    /// How far cards and headers stay from the edges of a list.
    static constexpr int margin = 14;

    QRect card;
    QRect checkBox;
    QRect title;
    QRect project;
    QRect dateIcon;
    QRect date;
    std::vector<QRect> signs;
    /// Empty where there was no room; the last one that is not may be narrower than it wanted to be.
    std::vector<QRect> details;

    static HomeRowLayout of(const Input &input);
    /// The card of a row.
    static QRect cardOf(const QRect &row);
};

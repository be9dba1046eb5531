#pragma once

#include <QRect>

/// Where the parts of a row of Home stand, written from left to right; a view mirrors it where texts run the
/// other way. Title, project and date stand below each other, each over the whole width.
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
    };

    /// How far cards and headers stay from the edges of a list.
    static constexpr int margin = 14;

    QRect card;
    QRect checkBox;
    QRect title;
    QRect project;
    QRect dateIcon;
    QRect date;

    static HomeRowLayout of(const Input &input);
    /// The card of a row.
    static QRect cardOf(const QRect &row);
};

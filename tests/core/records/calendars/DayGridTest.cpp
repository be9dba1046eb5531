#include "records/calendars/AllDayLanes.h"
#include "records/calendars/TimedGridLayout.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace {

/// Wednesday, in the week from Sunday the 15th.
const int wednesday = 18;

TimedItem appointment(OptionalDate start, OptionalDate due)
{
    return {nullptr, false, start, due};
}

TimedItem call(OptionalDate due, OptionalDate start = {})
{
    return {nullptr, true, start, due};
}

class DayGrid : public testing::Test
{
protected:
    Date at(int day, int hour, int minute = 0) const { return localDate(2026, 11, day, hour, minute); }
    TimedGridLayout week(const std::vector<TimedItem> &items, const DayGridMetrics &metrics = {}) const
    {
        return {at(15, 9, 15), {7, 700}, metrics, items};
    }
    TimedGridLayout day(const std::vector<TimedItem> &items) const
    {
        return {at(wednesday, 9, 15), {1, 700}, {}, items};
    }
    /// "column: left,top width x height" of each item.
    static QString framesOf(const TimedGridLayout &layout)
    {
        QStringList frames;
        for (const TimedGridLayout::Placed &one : layout.placed())
            frames.append(QStringLiteral("%1: %2,%3 %4x%5")
                              .arg(one.column)
                              .arg(one.frame.x())
                              .arg(one.frame.y())
                              .arg(one.frame.width())
                              .arg(one.frame.height()));
        return frames.join(u"; "_qs);
    }
};

TEST_F(DayGrid, AnItemStandsOnTheDayOfItsStart)
{
    EXPECT_EQ(framesOf(week({appointment(at(wednesday, 9), at(wednesday, 10, 30)), call(at(20, 9))})),
              u"3: 301,630 97x105; 5: 501,630 97x17"_qs);
    EXPECT_EQ(framesOf(day({appointment(at(wednesday, 9), at(wednesday, 10, 30))})), u"0: 1,630 697x105"_qs);
    // Over midnight it is as low as an item may be, and over the week's edge it has a place on its day only.
    EXPECT_EQ(framesOf(week({appointment(at(15, 23), at(16, 1))})), u"0: 1,1610 97x17"_qs);
    EXPECT_EQ(framesOf(week({appointment(at(14, 23), at(15, 1))})), QString());
    EXPECT_EQ(framesOf(day({appointment(at(17, 23), at(wednesday, 1))})), u"0: 1,1610 697x17"_qs);
    EXPECT_EQ(framesOf(week({appointment(std::nullopt, at(16, 9)), appointment(at(16, 9), std::nullopt)})),
              u"1: 101,630 97x17"_qs);
    EXPECT_EQ(framesOf(week({call(at(16, 12), at(17, 9))})), u"2: 201,840 97x17"_qs);

    const TimedGridLayout both = week({appointment(at(16, 9), at(16, 12)), call(at(17, 9))});
    EXPECT_TRUE(both.placed().at(0).isResizable);
    EXPECT_FALSE(both.placed().at(1).isResizable);
    EXPECT_EQ(both.size(), QSizeF(700, 1680));
}

TEST_F(DayGrid, AnAppointmentAndACallThatCrossShareTheColumn)
{
    const std::vector<TimedItem> crossing{call(at(wednesday, 10)),
                                          appointment(at(wednesday, 9, 30), at(wednesday, 11)),
                                          call(at(wednesday, 10, 45))};
    EXPECT_EQ(framesOf(week(crossing)), u"3: 352,700 46x17; 3: 301,665 48x105; 3: 352,752 46x17"_qs);
    EXPECT_EQ(framesOf(day(crossing)), u"0: 352,700 346x17; 0: 1,665 348x105; 0: 352,752 346x17"_qs);
    EXPECT_EQ(framesOf(week({appointment(at(16, 9), at(16, 11)), appointment(at(16, 10), at(16, 12)),
                             call(at(17, 10)), call(at(17, 10))})),
              u"1: 101,630 97x140; 1: 101,700 97x140; 2: 201,700 97x17; 2: 201,700 97x17"_qs);
    // One right after the other is no crossing.
    EXPECT_EQ(framesOf(week({appointment(at(16, 9), at(16, 10)), call(at(16, 10))})),
              u"1: 101,630 97x70; 1: 101,700 97x17"_qs);
}

TEST_F(DayGrid, PointsAreItemsAndMoments)
{
    using Step = CalendarManager::DragStep;
    const TimedGridLayout layout =
        week({appointment(at(16, 9), at(16, 12)), appointment(at(16, 10), at(16, 11))});
    EXPECT_EQ(layout.itemAt({150, 640}), 0);
    EXPECT_EQ(layout.itemAt({150, 720}), 1);
    EXPECT_EQ(layout.itemAt({150, 800}), 0);
    EXPECT_EQ(layout.itemAt({250, 720}), std::nullopt);
    const auto moment = [&layout](double x, double y, Step step) {
        const OptionalDate date = layout.momentAt({x, y}, step);
        return date ? wallClock(*date).left(19) : QString();
    };
    EXPECT_EQ(moment(350, 708, Step::Minute), u"2026-11-18 10:06:01"_qs);
    EXPECT_EQ(moment(350, 708, Step::Quarter), u"2026-11-18 10:00:00"_qs);
    EXPECT_EQ(moment(350, 710, Step::Quarter), u"2026-11-18 10:15:00"_qs);
    // A drag never leaves its day by being rounded.
    EXPECT_EQ(moment(350, 1679, Step::Quarter), u"2026-11-18 23:45:00"_qs);
    EXPECT_EQ(moment(350, -3, Step::Quarter), u"2026-11-18 00:00:00"_qs);
    EXPECT_EQ(moment(700, 700, Step::Quarter), QString());
    EXPECT_EQ(moment(-1, 700, Step::Quarter), QString());
}

TEST_F(DayGrid, WhatIsOutOfSightIsPointedTo)
{
    const TimedGridLayout layout = week({appointment(at(16, 3), at(16, 4)), appointment(at(16, 1), at(16, 5)),
                                         call(at(16, 12)), call(at(16, 20)), call(at(17, 20))});
    const auto hidden = [&layout](int column, double top, double bottom) {
        const TimedGridLayout::Hidden found = layout.hiddenIn(column, top, bottom);
        return std::pair(found.above.value_or(-1), found.below.value_or(-1));
    };
    EXPECT_EQ(hidden(1, 400, 800), std::pair(1, 2));
    EXPECT_EQ(hidden(1, 300, 840), std::pair(0, 3));
    EXPECT_EQ(hidden(1, 0, 1680), std::pair(-1, -1));
    EXPECT_EQ(hidden(2, 400, 800), std::pair(-1, 4));
    EXPECT_EQ(hidden(3, 400, 800), std::pair(-1, -1));
    EXPECT_EQ(layout.markerOf(2), QRectF(251, 0, 97, 5));
}

TEST_F(DayGrid, LabelsStandAtTheirHoursAndTheLineAtThePresent)
{
    const TimedGridLayout layout = week({});
    const auto labels = layout.hourLabels(14);
    ASSERT_EQ(labels.size(), 23u);
    EXPECT_EQ(labels.front().hour, 1);
    EXPECT_EQ(labels.front().frame, QRectF(0, 61, 46, 16));
    EXPECT_EQ(labels.back().hour, 23);
    for (const auto &label : labels)
        EXPECT_EQ(label.frame.center().y() + 1,
                  CalendarManager::convertTimeToPixel(at(wednesday, label.hour), 35));
    EXPECT_EQ(layout.currentTimeLine(at(wednesday, 9, 15)), QRectF(11, 644, 700, 5));
    EXPECT_TRUE(layout.currentTimeLine(at(15, 0)));
    EXPECT_TRUE(layout.currentTimeLine(at(21, 23, 59)));
    EXPECT_FALSE(layout.currentTimeLine(at(14, 23, 59)));
    EXPECT_FALSE(layout.currentTimeLine(at(22, 0)));
    EXPECT_FALSE(day({}).currentTimeLine(at(19, 12)));
}

TEST_F(DayGrid, LanesOfAWeekScrollAfterTenAndTheListOfADayAfterEight)
{
    const AllDayLanes week{{7, 700}, {}};
    EXPECT_EQ(week.frame(1, 0, 1), QRectF(1, 2, 97, 17));
    EXPECT_EQ(week.frame(3, 2, 4), QRectF(201, 44, 397, 17));
    EXPECT_EQ(week.frame(1, 0, 33).width(), 3297);
    EXPECT_EQ(week.areaHeight(0), 0);
    EXPECT_EQ(week.areaHeight(3), 63);
    EXPECT_EQ(week.areaHeight(11), 210);
    EXPECT_EQ(week.documentHeight(11), 231);
    EXPECT_EQ(week.laneAt(0), 1);
    EXPECT_EQ(week.laneAt(21), 1);
    EXPECT_EQ(week.laneAt(21.5), 2);
    const AllDayLanes day{{1, 700}, {}};
    EXPECT_EQ(day.frame(2, 0, 1), QRectF(1, 23, 697, 17));
    EXPECT_EQ(day.areaHeight(0), 2);
    EXPECT_EQ(day.areaHeight(9), 170);
}

TEST_F(DayGrid, ALargeTextMakesRoomForItself)
{
    const DayGridMetrics metrics = DayGridMetrics::scaled(1.5, 30.2);
    EXPECT_EQ(metrics.eventHeight(), 31);
    EXPECT_EQ(DayGridMetrics::scaled(2, 30).eventHeight(), 35);
    EXPECT_EQ(framesOf(week({call(at(16, 9))}, metrics)), u"1: 101,945 97x31"_qs);
    EXPECT_EQ(week({}, metrics).size().height(), 2520);
    DayGridMetrics unset;
    unset.rowHeight = 0;
    EXPECT_EQ(week({}, unset).size().height(), 1680);
}

} // namespace

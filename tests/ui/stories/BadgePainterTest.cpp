// The pill beside a row of the sidebar.

#include "widgets/BadgePainter.h"
#include "widgets/Theme.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

namespace {

/// How a badge looks at the end of an empty row.
QImage painted(const BadgePainter &badge, Qt::LayoutDirection direction = Qt::LeftToRight)
{
    QImage image(200, 33, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    badge.paint(painter, image.rect(), direction);
    return image;
}

/// The middle of all pixels that a colour gives on black; -1 if there is none.
int middleOf(const QImage &image, const QColor &fill)
{
    QImage onBlack(1, 1, QImage::Format_RGB32);
    onBlack.fill(Qt::black);
    QPainter(&onBlack).fillRect(onBlack.rect(), fill);
    const QColor color = onBlack.pixelColor(0, 0);
    int first = -1;
    int last = -1;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixelColor(x, y) != color)
                continue;
            first = first < 0 ? x : first;
            last = x;
        }
    }
    return first < 0 ? -1 : (first + last) / 2;
}

} // namespace

TEST(BadgePainterTest, ShowsWhatIsOverdueLeftOfTheTotalOrOneNumberAlone)
{
    const QFont font = Theme::font(Theme::FontRole::SmallStrong);
    const BadgePainter none(0, 0, font);
    EXPECT_EQ(none.width(), 0);
    QImage blank(200, 33, QImage::Format_RGB32);
    blank.fill(Qt::black);
    EXPECT_EQ(painted(none), blank);

    const BadgePainter both(3, 12, font);
    const QImage two = painted(both);
    const int overdue = middleOf(two, Theme::badgeOverdue);
    const int total = middleOf(two, Theme::badge);
    ASSERT_GE(overdue, 0);
    EXPECT_LT(overdue, total);
    EXPECT_GT(overdue, two.width() - both.width()) << "both stand at the end of the row";
    for (const BadgePainter &single : {BadgePainter(0, 12, font), BadgePainter(3, 0, font)}) {
        EXPECT_LT(single.width(), both.width());
        EXPECT_EQ(middleOf(painted(single), Theme::badgeOverdue), -1);
        EXPECT_GE(middleOf(painted(single), Theme::badge), 0);
    }
    EXPECT_GT(BadgePainter(0, 12345, font).width(), BadgePainter(0, 1, font).width());

    const QImage mirrored = painted(both, Qt::RightToLeft);
    EXPECT_LT(middleOf(mirrored, Theme::badge), both.width()) << "the end of the row is on the left there";
}

#include "shell/tasks/TaskRowLayout.h"

#include "widgets/Theme.h"

#include <algorithm>

namespace {

constexpr int checkBoxSize = 22;
constexpr int checkBoxLeft = 14;
constexpr int dotSize = 8;
constexpr int dotGap = 12;
constexpr int titleGap = 10;
constexpr int overdueSize = 12;
constexpr int overdueGap = 5;
constexpr int trailing = 16;
constexpr int columnGap = 16;
constexpr int signGap = 7;
constexpr int detailGap = 14;
/// Narrower than this, a detail says nothing.
constexpr int leastDetailWidth = 48;
/// In a narrower card the date stands below the title.
constexpr int leastWidthOfDateColumn = 460;
/// The date does not go further away from the title than this, however wide the window is.
constexpr int mostTextWidth = 860;
/// Between the title and the second line.
constexpr int lineGap = 2;
/// What a title on one line with its details leaves to them.
constexpr int leastTitleWidth = 200;

QRect middle(const QRect &row, int left, int width, int height)
{
    return {left, row.top() + (row.height() - height) / 2, width, height};
}

/// Places parts one after the other on a line.
class Line
{
public:
    Line(int firstLeft, int lastRight, int lineTop, int lineHeight)
        : left(firstLeft)
        , right(lastRight)
        , top(lineTop)
        , height(lineHeight)
    {}

    int room() const { return right - left; }

    QRect place(int width, int gap)
    {
        const QRect placed(left, top, std::clamp(width, 0, std::max(room(), 0)), height);
        left += placed.width() + gap;
        return placed;
    }

    QRect placeMark(int size, int gap)
    {
        const QRect placed(left, top + (height - size) / 2, size, size);
        left += size + gap;
        return placed;
    }

private:
    int left;
    int right;
    int top;
    int height;
};

void placeDetails(TaskRowLayout &layout, const std::vector<int> &widths, Line line)
{
    layout.details.assign(widths.size(), {});
    for (size_t detail = 0; detail < widths.size(); ++detail) {
        if (line.room() < std::min(widths[detail], leastDetailWidth))
            return;
        layout.details[detail] = line.place(widths[detail], detailGap);
    }
}

/// The title takes what its words need, the signs follow it.
void placeTitle(TaskRowLayout &layout, const TaskRowLayout::Input &input, Line line)
{
    const int signs = input.signs * (input.detailHeight + signGap);
    layout.title = line.place(std::min(input.titleWidth, line.room() - signs), signGap);
    for (int sign = 0; sign < input.signs && line.room() >= input.detailHeight; ++sign)
        layout.signs.push_back(line.placeMark(input.detailHeight - 2, signGap));
}

void placeDate(TaskRowLayout &layout, const TaskRowLayout::Input &input, Line &line, int gap)
{
    if (input.dateWidth == 0)
        return;
    if (input.isOverdue)
        layout.overdueMark = line.placeMark(overdueSize, overdueGap);
    layout.date = line.place(input.dateWidth, gap);
}

/// The date at the trailing edge, which it gives back less of.
int placeDateColumn(TaskRowLayout &layout, const TaskRowLayout::Input &input, int right)
{
    if (input.dateWidth == 0)
        return right;
    const int mark = input.isOverdue ? overdueSize + overdueGap : 0;
    const int left = right - input.dateWidth - mark;
    Line column(left, right, middle(layout.card, 0, 0, input.detailHeight).top(), input.detailHeight);
    placeDate(layout, input, column, 0);
    return left - columnGap;
}

} // namespace

TaskRowLayout TaskRowLayout::of(const Input &input)
{
    TaskRowLayout layout;
    // The scroll bar stands in the margin, so that cards end where the toolbar does.
    layout.card =
        input.row.adjusted(Theme::contentMargin, 0, Theme::scrollBarWidth - Theme::contentMargin, 0);
    const int boxLeft = layout.card.left() + checkBoxLeft;
    if (input.hasCheckBox)
        layout.checkBox = middle(layout.card, boxLeft, checkBoxSize, checkBoxSize);
    const int dotLeft = boxLeft + checkBoxSize + dotGap;
    layout.priorityDot = middle(layout.card, dotLeft, dotSize, dotSize);
    const int left = dotLeft + dotSize + titleGap;
    const int end = layout.card.right() + 1 - trailing;

    const int bothLines = input.titleHeight + lineGap + input.detailHeight;
    const bool fitsTwoLines = bothLines <= layout.card.height();
    const bool hasDateColumn = !fitsTwoLines || layout.card.width() >= leastWidthOfDateColumn;
    const int right =
        hasDateColumn ? placeDateColumn(layout, input, std::min(end, left + mostTextWidth)) : end;
    const bool hasSecondLine =
        fitsTwoLines && (!input.detailWidths.empty() || (!hasDateColumn && input.dateWidth > 0));
    if (hasSecondLine) {
        const int top = middle(layout.card, 0, 0, bothLines).top();
        placeTitle(layout, input, Line(left, right, top, input.titleHeight));
        Line second(left, right, top + input.titleHeight + lineGap, input.detailHeight);
        if (!hasDateColumn)
            placeDate(layout, input, second, detailGap);
        placeDetails(layout, input.detailWidths, second);
        return layout;
    }
    const int top = middle(layout.card, 0, 0, input.titleHeight).top();
    placeTitle(layout, input, Line(left, right, top, input.titleHeight));
    const int used = layout.signs.empty() ? layout.title.right() : layout.signs.back().right();
    placeDetails(layout, input.detailWidths,
                 Line(std::max(used + columnGap, left + leastTitleWidth), right,
                      middle(layout.card, 0, 0, input.detailHeight).top(), input.detailHeight));
    return layout;
}

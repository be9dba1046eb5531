#include "shell/tasks/TaskRowLayout.h"

#include "widgets/Theme.h"

#include <algorithm>

constexpr int checkBoxSize = 22;
constexpr int checkBoxLeft = 14;
constexpr int dotSize = 8;
constexpr int dotGap = 12;
constexpr int titleGap = 10;
constexpr int overdueSize = 16;
constexpr int overdueGap = 5;
constexpr int trailing = 16;
constexpr int columnGap = 16;
constexpr int leastTitleWidth = 200;

static QRect middle(const QRect &row, int left, int width, int height)
{
    return {left, row.top() + (row.height() - height) / 2, width, height};
}

/// Date and project at the trailing edge, the title takes the rest.
static void placeInOneLine(TaskRowLayout &layout, const TaskRowLayout::Input &input, int titleLeft)
{
    int right = layout.card.right() + 1 - trailing;
    const auto takeFromEnd = [&](int width, int height, int gap) {
        if (width == 0)
            return QRect();
        const QRect place = middle(layout.card, right - width, width, height);
        right -= width + gap;
        return place;
    };
    layout.date = takeFromEnd(input.dateWidth, input.detailHeight, input.isOverdue ? overdueGap : columnGap);
    layout.overdueMark = takeFromEnd(input.isOverdue ? overdueSize : 0, overdueSize, columnGap);
    layout.project = takeFromEnd(input.projectWidth, input.detailHeight, columnGap);
    layout.title = middle(layout.card, titleLeft, std::max(right - titleLeft, 0), input.titleHeight);
}

/// The title above; overdue mark, date and project share the line below it.
static void placeInTwoLines(TaskRowLayout &layout, const TaskRowLayout::Input &input, int titleLeft)
{
    const int right = layout.card.right() + 1 - trailing;
    const int top = layout.card.top() + (layout.card.height() - input.titleHeight - input.detailHeight) / 2;
    const int line = top + input.titleHeight;
    layout.title = QRect(titleLeft, top, std::max(right - titleLeft, 0), input.titleHeight);
    int left = titleLeft;
    if (input.isOverdue) {
        layout.overdueMark =
            QRect(left, line + (input.detailHeight - overdueSize) / 2, overdueSize, overdueSize);
        left += overdueSize + overdueGap;
    }
    layout.date = QRect(left, line, std::clamp(right - left, 0, input.dateWidth), input.detailHeight);
    left += layout.date.width() > 0 ? layout.date.width() + columnGap : 0;
    layout.project = QRect(left, line, std::clamp(right - left, 0, input.projectWidth), input.detailHeight);
}

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
    const int titleLeft = dotLeft + dotSize + titleGap;
    const int trailingWidth = input.dateWidth + input.projectWidth + (input.isOverdue ? overdueSize : 0);
    const int titleWidth = layout.card.right() - trailing - trailingWidth - 2 * columnGap - titleLeft;
    layout.isTwoLines = trailingWidth > 0 && titleWidth < leastTitleWidth;
    if (layout.isTwoLines)
        placeInTwoLines(layout, input, titleLeft);
    else
        placeInOneLine(layout, input, titleLeft);
    return layout;
}

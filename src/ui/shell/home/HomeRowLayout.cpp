#include "shell/home/HomeRowLayout.h"

#include "widgets/Theme.h"

#include <algorithm>

constexpr int checkBoxSize = 22;
constexpr int inset = 14;
constexpr int checkBoxGap = 12;
constexpr int lineGap = 3;
constexpr int iconSize = 14;
constexpr int iconGap = 5;

QRect HomeRowLayout::cardOf(const QRect &row)
{
    // The scroll bar stands in the margin.
    return row.adjusted(margin, 0, Theme::scrollBarWidth - margin, 0);
}

HomeRowLayout HomeRowLayout::of(const Input &input)
{
    HomeRowLayout layout;
    layout.card = cardOf(input.row);
    int left = layout.card.left() + inset;
    const QRect box(left, layout.card.top() + (layout.card.height() - checkBoxSize) / 2, checkBoxSize,
                    checkBoxSize);
    if (input.hasCheckBox)
        layout.checkBox = box;
    if (input.isTickable)
        left = box.right() + 1 + checkBoxGap;
    const int right = std::max(layout.card.right() + 1 - inset, left);
    const int details = (input.hasProject ? 1 : 0) + (input.hasDate ? 1 : 0);
    const int lines = input.titleHeight + details * (lineGap + input.detailHeight);
    int top = layout.card.top() + (layout.card.height() - lines) / 2;
    layout.title = {left, top, right - left, input.titleHeight};
    top += input.titleHeight + lineGap;
    if (input.hasProject) {
        layout.project = {left, top, right - left, input.detailHeight};
        top += input.detailHeight + lineGap;
    }
    if (!input.hasDate)
        return layout;
    if (input.hasDateIcon) {
        layout.dateIcon = {left, top + (input.detailHeight - iconSize) / 2, iconSize, iconSize};
        left += iconSize + iconGap;
    }
    layout.date = {left, top, std::max(right - left, 0), input.detailHeight};
    return layout;
}

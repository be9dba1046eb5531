#include "shell/home/HomeRowLayout.h"

#include "widgets/Theme.h"

#include <algorithm>

constexpr int checkBoxSize = 22;
constexpr int inset = 14;
constexpr int checkBoxGap = 12;
constexpr int lineGap = 3;
constexpr int iconSize = 14;
constexpr int iconGap = 5;
constexpr int detailGap = 12;
/// In less than that nothing can be read.
constexpr int leastDetailWidth = 48;

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
    const int signs = input.signs * (iconSize + iconGap);
    layout.title = {left, top, std::max(right - left - signs, 0), input.titleHeight};
    int signLeft = left + std::min(input.titleWidth, layout.title.width()) + iconGap;
    for (int sign = 0; sign < input.signs; ++sign, signLeft += iconSize + iconGap)
        layout.signs.push_back({signLeft, top + (input.titleHeight - iconSize) / 2, iconSize, iconSize});
    top += input.titleHeight + lineGap;
    if (input.hasProject) {
        layout.project = {left, top, right - left, input.detailHeight};
        top += input.detailHeight + lineGap;
    }
    layout.details.assign(input.detailWidths.size(), {});
    if (!input.hasDate)
        return layout;
    if (input.hasDateIcon) {
        layout.dateIcon = {left, top + (input.detailHeight - iconSize) / 2, iconSize, iconSize};
        left += iconSize + iconGap;
    }
    const bool isAlone = input.detailWidths.empty();
    layout.date = {left, top, std::max(isAlone ? right - left : std::min(input.dateWidth, right - left), 0),
                   input.detailHeight};
    left += layout.date.width() + detailGap;
    for (std::size_t detail = 0; detail < input.detailWidths.size(); ++detail) {
        const int width = std::min(input.detailWidths[detail], right - left);
        if (width < std::min(leastDetailWidth, input.detailWidths[detail]))
            break;
        layout.details[detail] = {left, top, width, input.detailHeight};
        left += width + detailGap;
    }
    return layout;
}

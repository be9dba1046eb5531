#include "shell/home/HomeColumns.h"

/// A list of less shows the first words of a title at most.
constexpr int leastWidthOfList = 230;

HomeColumns HomeColumns::of(const QSize &size)
{
    HomeColumns columns;
    const int lists = qRound(size.width() * paneWidth);
    const int left = size.width() - lists;
    columns.calendar = {0, 0, left, size.height()};
    columns.areListsStacked = lists < 2 * leastWidthOfList;
    if (columns.areListsStacked) {
        const int half = size.height() / 2;
        columns.overdue = {left, 0, lists, half};
        columns.week = {left, half, lists, size.height() - half};
        return columns;
    }
    const int half = lists / 2;
    columns.overdue = {left, 0, half, size.height()};
    columns.week = {left + half, 0, lists - half, size.height()};
    return columns;
}

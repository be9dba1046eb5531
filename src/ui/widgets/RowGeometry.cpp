#include "widgets/RowGeometry.h"

#include <algorithm>

RowGeometry::RowGeometry(int count, const std::function<int(int row)> &heightOf)
    : rowCount(count)
{
    for (int row = 0; row < count; ++row) {
        const int rowHeight = heightOf(row);
        if (runs.empty() || runs.back().rowHeight != rowHeight)
            runs.push_back({row, height, rowHeight});
        height += rowHeight;
    }
}

const RowGeometry::Run &RowGeometry::runOfRow(int row) const
{
    const auto after = std::ranges::upper_bound(runs, row, {}, &Run::firstRow);
    return *std::prev(after);
}

int RowGeometry::top(int row) const
{
    if (row < 0 || runs.empty())
        return 0;
    if (row >= rowCount)
        return height;
    const Run &run = runOfRow(row);
    return run.top + (row - run.firstRow) * run.rowHeight;
}

int RowGeometry::heightOf(int row) const
{
    return row < 0 || row >= rowCount ? 0 : runOfRow(row).rowHeight;
}

int RowGeometry::rowAt(int y) const
{
    if (y < 0 || y >= height)
        return -1;
    const Run &run = *std::prev(std::ranges::upper_bound(runs, y, {}, &Run::top));
    return run.firstRow + (y - run.top) / run.rowHeight;
}

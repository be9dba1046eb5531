#pragma once

#include <functional>
#include <vector>

/// Where the rows of a list stand: rows of mixed heights below each other, found in logarithmic time.
class RowGeometry
{
public:
    RowGeometry() = default;
    /// Asks once for the height of each row; neighbours of one height are kept as one run.
    RowGeometry(int count, const std::function<int(int row)> &heightOf);

    int count() const { return rowCount; }
    int totalHeight() const { return height; }
    /// The upper edge of a row; for `count()` the lower edge of the last one.
    int top(int row) const;
    int heightOf(int row) const;
    /// The row at a height, or -1 above the first and below the last.
    int rowAt(int y) const;

private:
    struct Run
    {
        int firstRow;
        int top;
        int rowHeight;
    };
    const Run &runOfRow(int row) const;

    std::vector<Run> runs;
    int rowCount = 0;
    int height = 0;
};

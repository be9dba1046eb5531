#include "records/calendars/DayGridMetrics.h"

#include "records/calendars/Truncation.h"

int DayColumns::columnAt(double x) const
{
    const int column = truncated<int>(x / columnWidth());
    return x >= 0 && column < count ? column : -1;
}

DayGridMetrics DayGridMetrics::scaled(double factor, double textHeight)
{
    DayGridMetrics metrics;
    metrics.rowHeight *= factor;
    metrics.gridIndent *= factor;
    metrics.textHeight = textHeight;
    return metrics;
}

int DayGridMetrics::eventHeight() const
{
    return std::max(truncated<int>(heightOfRow() * 0.5), truncated<int>(std::ceil(textHeight)));
}

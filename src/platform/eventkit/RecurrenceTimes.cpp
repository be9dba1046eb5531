#include "eventkit/RecurrenceTimes.h"

#include <algorithm>

namespace {

std::vector<int> ascending(std::vector<int> values)
{
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    return values;
}

std::vector<int> valuesOr(const std::vector<int> &values, bool isStepped, int valueOfStart)
{
    if (values.empty() && !isStepped)
        return {valueOfStart};
    return ascending(values);
}

} // namespace

RecurrenceTimes::RecurrenceTimes(const RecurrencePattern &pattern, const WallClock &start)
    : hours(valuesOr(pattern.byHour, pattern.frequency <= RecurrenceUnit::Hourly, start.hour))
    , minutes(valuesOr(pattern.byMinute, pattern.frequency <= RecurrenceUnit::Minutely, start.minute))
{
    std::vector<int> wanted = pattern.bySecond;
    std::replace(wanted.begin(), wanted.end(), 60, 59);
    seconds = valuesOr(wanted, pattern.frequency == RecurrenceUnit::Secondly, start.second);
}

void keepSetPositions(WallSeconds &moments, const std::vector<int> &positions)
{
    if (positions.empty())
        return;
    WallSeconds kept;
    const int size = static_cast<int>(moments.size());
    for (const int position : positions) {
        const int index = position > 0 ? position - 1 : size + position;
        if (index >= 0 && index < size)
            kept.push_back(moments[std::size_t(index)]);
    }
    std::sort(kept.begin(), kept.end());
    kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
    moments.swap(kept);
}

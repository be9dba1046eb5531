#include "records/dates/MVDate.h"

#include "foundation/Calendar.h"
#include "foundation/DateFormatter.h"
#include "foundation/Region.h"

#include <QHash>

static constexpr int mostDaysKept = 20'000;

/// Days read back by their number, for one state of the region.
struct DaysReadBack
{
    quint64 generation = 0;
    QHash<int, OptionalDate> byNumber;
};

static QHash<int, OptionalDate> &daysReadBack()
{
    static thread_local DaysReadBack days;
    const quint64 present = Region::generation();
    if (present != days.generation || days.byNumber.size() >= mostDaysKept)
        days = DaysReadBack{present, {}};
    return days.byNumber;
}

static OptionalDate readBack(Date date)
{
    const QString pattern = QStringLiteral("YY:MM:DD");
    return DateFormatter::date(DateFormatter::string(date, pattern), pattern);
}

OptionalDate MVDate::dayByPattern(Date date)
{
    auto &days = daysReadBack();
    const int number = Calendar::current().dayNumber(date);
    if (const auto known = days.constFind(number); known != days.constEnd())
        return *known;
    return *days.insert(number, readBack(date));
}

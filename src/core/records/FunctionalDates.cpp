#include "records/Functional.h"

#include "foundation/Calendar.h"

#include <cmath>

Date Functional::dateWithZeroSeconds(Date date)
{
    static constexpr double secondsPerMinute = 60;
    return Date::fromReferenceSeconds(std::floor(date.referenceSeconds() / secondsPerMinute) *
                                      secondsPerMinute);
}

Date Functional::dateWithoutTimeOfDate(Date date)
{
    return Calendar::current().startOfDay(date);
}

bool Functional::sameMinute(Date one, Date other)
{
    return dateWithZeroSeconds(one) == dateWithZeroSeconds(other);
}

int Functional::dateValidationsMainStartDate(OptionalDate mainStartDate, OptionalDate mainDueDate,
                                             OptionalDate additionalStartDate, OptionalDate addationalDueDate)
{
    const auto isLater = [](const OptionalDate &one, const OptionalDate &other) {
        return one && other && *one > *other;
    };
    if (isLater(mainStartDate, additionalStartDate))
        return 1;
    if (isLater(additionalStartDate, mainDueDate))
        return 2;
    if (isLater(addationalDueDate, mainDueDate))
        return 4;
    return isLater(mainStartDate, addationalDueDate) ? 3 : 0;
}

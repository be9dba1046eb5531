#include "records/Functional.h"

#include "foundation/DateFormatter.h"

#include <cmath>

Date Functional::dateWithZeroSeconds(Date date)
{
    static constexpr double secondsPerMinute = 60;
    return Date::fromReferenceSeconds(std::floor(date.referenceSeconds() / secondsPerMinute) *
                                      secondsPerMinute);
}

static OptionalDate readBack(Date date, const QString &pattern)
{
    return DateFormatter::date(DateFormatter::string(date, pattern), pattern);
}

Date Functional::dateWithoutTimeOfDate(Date date)
{
    return readBack(date, QStringLiteral("dd-MM-yyyy")).value_or(date);
}

std::optional<bool> Functional::sameMinute(Date one, Date other)
{
    const QString pattern = QStringLiteral("YY:MM:DD:HH:mm");
    const OptionalDate first = readBack(one, pattern);
    const OptionalDate second = readBack(other, pattern);
    return first && second ? std::optional(*first == *second) : std::nullopt;
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

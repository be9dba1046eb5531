#include "widgets/MonthPage.h"

#include "foundation/Calendar.h"
#include "foundation/DateFormatter.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

/// A moment that is the same day whatever the clock does at midnight.
static Date noonOf(const Calendar &calendar, const DateComponents &day)
{
    return calendar.dateFromComponents({.year = day.year, .month = day.month, .day = day.day, .hour = 12});
}

MonthPage MonthPage::of(Date date)
{
    const Calendar calendar = Calendar::current();
    DateComponents first = calendar.shortComponents(date);
    first.day = 1;
    const Date firstNoon = noonOf(calendar, first);
    const int lead = (calendar.weekday(firstNoon) - calendar.firstWeekday() + columns) % columns;
    MonthPage page;
    page.title = DateFormatter::string(firstNoon, u"LLLL yyyy"_s);
    for (int index = 0; index < columns * rows; ++index) {
        const Date noon = calendar.dateByAdding(CalendarUnit::Day, index - lead, firstNoon);
        if (index < columns)
            page.weekdays << DateFormatter::string(noon, u"EEEEEE"_s);
        page.days[static_cast<std::size_t>(index)] = {.start = calendar.startOfDay(noon),
                                                      .number = calendar.day(noon),
                                                      .isInMonth = calendar.month(noon) == first.month,
                                                      .isToday = calendar.isDateInToday(noon)};
    }
    return page;
}

int MonthPage::indexOf(Date date) const
{
    const Date start = Calendar::current().startOfDay(date);
    const auto found = std::ranges::find(days, start, &Day::start);
    return found == days.end() ? -1 : static_cast<int>(found - days.begin());
}

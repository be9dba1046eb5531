#include "records/people/Birthdays.h"

#include "foundation/Calendar.h"
#include "foundation/Localization.h"
#include "foundation/TextFolding.h"
#include "records/dates/MVDate.h"
#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"

#include <algorithm>
#include <chrono>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The month and day of a moment as a number that grows with the year, in UTC: near enough to leave most
/// people out without asking the calendar.
int roughDayOfYear(Date date)
{
    using namespace std::chrono;
    constexpr sys_days reference = 2001y / January / 1;
    const auto sinceReference = floor<days>(duration<double>(date.referenceSeconds()));
    const year_month_day day(reference + days(sinceReference.count()));
    return static_cast<int>(static_cast<unsigned>(day.month()) * 32 + static_cast<unsigned>(day.day()));
}

/// Whether a day of the year lies in a stretch that may go over New Year, or a little beside it.
class RoughStretch
{
public:
    RoughStretch(Date first, Date last)
        : from(roughDayOfYear(first - Seconds(std::chrono::days(2))))
        , to(roughDayOfYear(last + Seconds(std::chrono::days(3))))
        , isWholeYear(last - first > Seconds(std::chrono::days(350)))
    {}
    bool holds(Date birthday) const
    {
        const int day = roughDayOfYear(birthday);
        return isWholeYear || (from <= to ? from <= day && day <= to : from <= day || day <= to);
    }

private:
    int from;
    int to;
    bool isWholeYear;
};

/// The day of a birthday in a year.
Date dayIn(int year, const DateComponents &born, const Calendar &calendar)
{
    DateComponents wanted;
    wanted.year = year;
    wanted.month = born.month;
    wanted.day = 1;
    const Date month = calendar.dateFromComponents(wanted);
    wanted.day = std::min(born.day.value_or(1), calendar.daysInMonth(month));
    return calendar.startOfDay(calendar.dateFromComponents(wanted));
}

} // namespace

std::vector<Birthdays::Birthday> Birthdays::between(Date first, Date last)
{
    constexpr int oldest = 120;
    const Calendar calendar = Calendar::current();
    const Date start = calendar.startOfDay(first);
    const RoughStretch stretch(start, last);
    const NameOrder order = preferredNameOrder();
    std::vector<Birthday> found;
    const FetchRequest request = EntityContacts::fetchRequest().where(Predicate::format("birthday != nil"));
    mainContext().visit(request, {"birthday", "firstName", "lastName"}, [&](const RowReader &row) {
        const OptionalDate born = row.date(0);
        if (!born || !stretch.holds(*born))
            return;
        const DateComponents bornOn = calendar.shortComponents(MVDate::getNearestDay(*born));
        for (int year = calendar.year(start); year <= calendar.year(last); ++year) {
            const Date day = dayIn(year, bornOn, calendar);
            if (day < start || day > last)
                continue;
            const int age = year - bornOn.year.value_or(year);
            found.push_back({row.rowId(), fullNameIn(order, row.text(1), row.text(2)), day,
                             age > 0 && age <= oldest ? std::optional(age) : std::nullopt});
        }
    });
    std::ranges::stable_sort(found, [](const Birthday &one, const Birthday &other) {
        return one.day != other.day ? one.day < other.day
                                    : localizedCaseInsensitiveCompare(one.name, other.name) < 0;
    });
    return found;
}

QString Birthdays::inWords(const Birthday &birthday)
{
    const QString name = birthday.name.isEmpty() ? localized(u"No Name"_s) : birthday.name;
    return birthday.age ? localized(u"%1, %2"_s).arg(name).arg(*birthday.age) : name;
}

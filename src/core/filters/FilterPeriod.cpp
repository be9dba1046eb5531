#include "filters/FilterPeriod.h"

#include "foundation/DateFormatter.h"
#include "foundation/UserDefaults.h"
#include "store/state/SettingsKeys.h"

namespace filters {

namespace {

const QString periodPattern = QStringLiteral("YYYY-MM-dd HH:mm:ss ZZZ");

} // namespace

OptionalDate firstRun()
{
    return dateOfValue(UserDefaults::standard().object(settings::firstRun));
}

OptionalDate dateThroughText(const QVariant &value)
{
    const QString text = value.canConvert<Date>() ? DateFormatter::string(value.value<Date>(), periodPattern)
                                                  : value.toString();
    return DateFormatter::date(text, periodPattern);
}

OptionalDate dateOfValue(const QVariant &value)
{
    return value.canConvert<Date>() ? OptionalDate(value.value<Date>()) : dateThroughText(value);
}

} // namespace filters

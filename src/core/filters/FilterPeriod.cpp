#include "filters/FilterPeriod.h"

#include "foundation/DateFormatter.h"
#include "foundation/UserDefaults.h"
#include "store/state/SettingsKeys.h"

namespace filters {

OptionalDate firstRun()
{
    return dateOfValue(UserDefaults::standard().object(settings::firstRun));
}

OptionalDate dateOfValue(const QVariant &value)
{
    if (value.canConvert<Date>())
        return value.value<Date>();
    return DateFormatter::date(value.toString(), QStringLiteral("yyyy-MM-dd HH:mm:ss ZZZ"));
}

} // namespace filters

#include "store/state/DataConteiner.h"

#include "foundation/Region.h"
#include "foundation/UserDefaults.h"
#include "store/state/CloudUserDefaults.h"
#include "store/state/SettingsKeys.h"

namespace {

constexpr qint64 secondsPerDay = 24 * 60 * 60;
constexpr qint64 ninetyThreeDays = 93 * secondsPerDay;
constexpr qint64 halfAYear = 186 * secondsPerDay;
constexpr qint64 aYear = 365 * secondsPerDay;

/// The tag of a language without its region, as the list of languages with their own rule has it.
bool writesLastNameFirst(const QString &language)
{
    for (const char *one : {"zh-Hant", "zh-Hans", "ja", "ko"}) {
        const QLatin1String tag(one);
        if (language == tag || language.startsWith(tag + u'-'))
            return true;
    }
    return false;
}

} // namespace

qint64 DataConteiner::rightIntervalAccessCalendar() const
{
    switch (CloudUserDefaults::integerForKey(settings::syncPeriodType)) {
    case 0:
        return ninetyThreeDays;
    case 2:
        return aYear;
    default:
        return halfAYear;
    }
}

qint64 DataConteiner::calendarFrequencyDay() const
{
    switch (CloudUserDefaults::integerForKey(settings::frequencyCalendarPeriod)) {
    case 0:
        return 1;
    case 1:
        return 3;
    default:
        return 7;
    }
}

qint64 DataConteiner::contactsDisplayOrder() const
{
    if (writesLastNameFirst(Region::preferredLocalizations().value(0)))
        return 1;
    return UserDefaults::standard().integer(settings::contactDisplayOrder);
}
